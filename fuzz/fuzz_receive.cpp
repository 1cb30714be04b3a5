// Bytes from a cluster, cut into reads at points taken from the input
// itself, must give the same signals as the same bytes in one read, and no
// line may hold a line end. Input: a count byte n (0-15), n piece sizes
// (1-256 each, used in turn), then the stream.
#include "ClusterFeed.h"

#include <QStringList>

#include <cstdint>
#include <cstdlib>

namespace {

struct Run {
    QStringList events; // every signal but the login request
    int logins = 0;
};

void check(bool condition) {
    if (!condition) {
        std::abort();
    }
}

bool hasLineEnd(const QString &text) {
    return text.contains(QLatin1Char('\r')) || text.contains(QLatin1Char('\n'));
}

Run feed(QByteArrayView stream, const std::uint8_t *sizes, std::size_t count) {
    Run run;
    zkr::ClusterFeed feed;
    QObject::connect(&feed, &zkr::ClusterFeed::lineReceived, [&](const QString &line) {
        check(!hasLineEnd(line));
        run.events << QStringLiteral("L") + line;
    });
    QObject::connect(&feed, &zkr::ClusterFeed::spotLine, [&](const QString &line) {
        check(!hasLineEnd(line) && line.lastIndexOf(QLatin1String("DX de ")) == 0); // one record
        run.events << QStringLiteral("S") + line;
    });
    QObject::connect(&feed, &zkr::ClusterFeed::promptBlock, [&](const QString &block) {
        check(block.startsWith(QLatin1String("\r\n\r\n\r\n")) &&
              block.endsWith(QLatin1String(">\r\n\r\n\r\n\r\n")));
        run.events << QStringLiteral("P") + block;
    });
    QObject::connect(&feed, &zkr::ClusterFeed::telnetReply, [&](const QByteArray &reply) {
        check(reply.size() == 3 && static_cast<std::uint8_t>(reply.at(0)) == 255);
        run.events << QStringLiteral("R") + QString::fromLatin1(reply.toHex());
    });
    QObject::connect(&feed, &zkr::ClusterFeed::loginRequested, [&] { ++run.logins; });
    qsizetype at = 0;
    for (std::size_t i = 0; at < stream.size(); ++i) {
        const qsizetype size = count == 0 ? stream.size() : sizes[i % count] + 1;
        const qsizetype take = std::min(size, stream.size() - at);
        feed.receive(stream.sliced(at, take));
        at += take;
    }
    feed.finish();
    return run;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const std::size_t count = std::min<std::size_t>(data[0] % 16, size - 1);
    const QByteArrayView stream(reinterpret_cast<const char *>(data + 1 + count),
                                static_cast<qsizetype>(size - 1 - count));
    const Run whole = feed(stream, nullptr, 0);
    const Run cut = feed(stream, data + 1, count);
    check(whole.events == cut.events);
    // Whether the text "ends" in a login request depends on where a read
    // ends, so a cut stream may be answered where the whole one is not;
    // never the other way round, and never twice.
    check(whole.logins <= cut.logins && cut.logins <= 1);
    return 0;
}
