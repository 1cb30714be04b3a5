#include "ClusterFeed.h"
#include "QtPrinters.h"

#include <gtest/gtest.h>

using namespace zkr;

namespace {

// Every signal of a feed, in order, as one text each.
struct Recorder {
    ClusterFeed feed;
    QStringList events;

    Recorder() {
        QObject::connect(&feed, &ClusterFeed::lineReceived,
                         [this](const QString &l) { events << "L:" + l; });
        QObject::connect(&feed, &ClusterFeed::spotLine,
                         [this](const QString &l) { events << "S:" + l; });
        QObject::connect(&feed, &ClusterFeed::promptBlock,
                         [this](const QString &b) { events << "P:" + b; });
        QObject::connect(&feed, &ClusterFeed::loginRequested, [this] { events << "login"; });
        QObject::connect(&feed, &ClusterFeed::telnetReply, [this](const QByteArray &r) {
            events << "R:" + QString::fromLatin1(r.toHex());
        });
    }
};

// `bytes` in pieces of the given sizes, repeated in turn; none: whole.
QStringList feedCut(const QByteArray &bytes, const QList<int> &sizes) {
    Recorder r;
    qsizetype at = 0;
    for (int i = 0; at < bytes.size(); ++i) {
        const qsizetype size = sizes.isEmpty() ? bytes.size() : sizes.at(i % sizes.size());
        r.feed.receive(QByteArrayView(bytes).sliced(at, std::min(size, bytes.size() - at)));
        at += size;
    }
    r.feed.finish();
    return r.events;
}

// Bytes of a literal, NULs included.
template <std::size_t N> QByteArray raw(const char (&text)[N]) {
    return QByteArray(text, N - 1);
}

const QByteArray Spot1 = "DX de SP9HWY:     50110.0  OH1XYZ       JO90JR<ES>KP20            1712Z";
const QByteArray Spot2 = "DX de G0ABC:    144300.0  SM5ABC       JO89<ES>KP20 login: x     0011Z";
const QByteArray Prompt = "DL1ABC de GB7TST 23-Nov-2026 0011Z dxspider >";

QStringList spot(const QByteArray &line) {
    return {"L:" + QString::fromLatin1(line), "S:" + QString::fromLatin1(line)};
}

QStringList lines(const QList<QByteArray> &texts) {
    QStringList out;
    for (const QByteArray &t : texts) {
        out << "L:" + QString::fromLatin1(t);
    }
    return out;
}

// The prompt line's event and its block around the lines kept before it.
QStringList prompt(const QList<QByteArray> &kept, const QByteArray &line = Prompt) {
    QString block = "\r\n\r\n\r\n";
    for (const QByteArray &k : kept) {
        block += QString::fromLatin1(k) + "\r\n";
    }
    block += QString::fromLatin1(line) + "\r\n\r\n\r\n\r\n";
    return {"L:" + QString::fromLatin1(line), "P:" + block};
}

struct Stream {
    const char *name;
    QByteArray bytes;
    QStringList expected;
};

QList<Stream> streams() {
    const QByteArray longLine(70000, 'x');
    QByteArray manyLines;
    QList<QByteArray> allKept;
    for (int i = 0; i < ClusterFeed::MaxBlockLines + 5; ++i) {
        allKept << "line " + QByteArray::number(i);
        manyLines += allKept.last() + "\n";
    }
    // DX Spider's welcome: a line ending in ">" that is no prompt.
    const QByteArray name = "Please enter your name, set/name <your name>";
    const QByteArray ann1 = "To ALL de G0ABC: first";
    const QByteArray ann2 = "To ALL de G0ABC: second";
    const QByteArray noFrequency = "DX de SP9HWY:      abc.0  OH1XYZ       JO90JR";
    const QByteArray zeroFrequency = "DX de SP9HWY:        0.0  OH1XYZ       JO90JR";
    return {
        {"spots", Spot1 + "\r\n" + Spot2 + "\x07\x07\r\n", spot(Spot1) + spot(Spot2)},
        {"welcome and prompt", "Hello DL1ABC\r\n" + name + "\r\n\r\n" + Prompt + "\r\n",
         lines({"Hello DL1ABC", name, ""}) + prompt({"Hello DL1ABC", name, ""})},
        {"a spot drops the lines kept before it",
         Spot1 + "\r\n" + ann1 + "\r\n" + Spot2 + "\r\n" + ann2 + "\r\n" + Prompt + "\r\n",
         spot(Spot1) + lines({ann1}) + spot(Spot2) + lines({ann2}) + prompt({ann2})},
        {"line ends CR LF, LF, CR and their mixes", "a\rb\nc\r\n\r\nd\n\re\r\r\nf",
         lines({"a", "b", "c", "", "d", "", "e", "", "f"})},
        {"bell pairs",
         "a\x07\x07z\r\n\x07\x07\x07\r\n\x07\x07\x07\x07\r\n" + Spot1 + "\x07\x07\r\n",
         lines({"az", "\x07", ""}) + spot(Spot1)},
        {"telnet negotiation",
         raw("\xff\xfb\x01"
             "a\xff\xff"
             "b\xff\xfd\x18\xff\xfc\x01\xff\xfe\x03\r\xff\xf1\n"
             "\xff\xfa\x18\x01\xff\xff"
             "XY\xff\xf0"
             "c\x00"
             "d\r\n"),
         QStringList{"R:fffe01", "R:fffc18", QString("L:a") + QChar(0xff) + "b", "L:cd"}},
        {"login prompt at the end", "Welcome\r\n\r\nlogin: ",
         lines({"Welcome", ""}) << "login"
                                << "L:login: "},
        {"call prompt, any case",
         "Please enter your CallSign:  ", QStringList{"login", "L:Please enter your CallSign:  "}},
        {"login: in a spot comment", Spot2 + "\r\n" + Spot2, spot(Spot2) + spot(Spot2)},
        {"a prompt amid spots", Spot1 + "\r\n" + Prompt + "\r\n" + Spot2 + "\r\n",
         spot(Spot1) + prompt({}) + spot(Spot2)},
        {"a line above 64 KB", longLine + "\r\n" + Prompt + "\r\n",
         lines({longLine}) + prompt({longLine})},
        {"a DX line without frequency still drops the kept lines",
         "kept\r\n" + noFrequency + "\r\n" + zeroFrequency + "\r\n" + Prompt + "\n",
         lines({"kept"}) + spot(noFrequency) + spot(zeroFrequency) + prompt({})},
        {"the prompt block keeps the newest lines", manyLines + Prompt + "\r\n",
         lines(allKept) + prompt(allKept.mid(5))},
    };
}

TEST(ClusterFeed, GivesTheSameSignalsHoweverTheStreamIsCut) {
    const QList<QList<int>> cuts = {{}, {1}, {1448}, {1, 7, 13, 1000}};
    for (const Stream &s : streams()) {
        for (const QList<int> &cut : cuts) {
            EXPECT_EQ(feedCut(s.bytes, cut), s.expected)
                << s.name << ", pieces of " << (cut.isEmpty() ? 0 : cut.first());
        }
    }
}

TEST(ClusterFeed, AnswersTheLoginOnlyOnceBeforeLoginAndOnlyUnterminated) {
    struct Case {
        const char *name;
        QList<QByteArray> reads;
        int logins;
        bool loggedIn;
    } cases[] = {
        {"terminated", {"Please login: \r\n", "call:x"}, 0, false},
        {"after the prompt", {Prompt + "\r\n", "login: "}, 0, true},
        {"after a spot", {Spot1 + "\r\n", "call: "}, 0, true},
        {"cut spot", {Spot1 + " login:"}, 0, false},
        {"once", {"login: ", "login: "}, 1, true},
        {"cut before the colon", {"login", ": "}, 1, true},
    };
    for (const Case &c : cases) {
        Recorder r;
        for (const QByteArray &read : c.reads) {
            r.feed.receive(read);
        }
        EXPECT_EQ(r.events.count("login"), c.logins) << c.name;
        EXPECT_EQ(r.feed.loggedIn(), c.loggedIn) << c.name;
    }
}

TEST(ClusterFeed, ResetForgetsTheCutLineTheKeptLinesTheLoginAndTheTelnetState) {
    Recorder r;
    r.feed.receive("kept\r\nlogin: ");
    r.feed.receive("half a line\xff\xfb");
    r.feed.reset();
    EXPECT_FALSE(r.feed.loggedIn());
    r.events.clear();
    r.feed.receive("\x01"
                   "a\r\n" +
                   Prompt + "\r\nx");
    r.feed.reset();
    r.feed.receive("\nlogin: ");
    const QStringList expected = QStringList{"L:\x01"
                                             "a"} +
                                 prompt({"\x01"
                                         "a"}) +
                                 QStringList{"L:", "login"};
    EXPECT_EQ(r.events, expected);
}

} // namespace
