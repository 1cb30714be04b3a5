// A decode log, anything at all, cut into pieces at points taken from the
// input itself, must give the same reports as in one piece, each whole: a
// call, both locators as reports carry them, a finite frequency, the log's
// time. Input: a count byte n (0-15), n piece sizes (1-256 each, used in
// turn), then the log.
#include "AllTxtReader.h"
#include "Locators.h"

#include <QStringList>

#include <cmath>
#include <cstdint>
#include <cstdlib>

namespace {

void check(bool condition) {
    if (!condition) {
        std::abort();
    }
}

bool reportLocator(const QString &locator) {
    return !locator.isEmpty() && zkr::Report_Locator(locator) == locator;
}

QStringList read(QByteArrayView log, const std::uint8_t *sizes, std::size_t count) {
    QStringList reports;
    zkr::AllTxtReader reader;
    reader.setOwnStation(QStringLiteral("DL9OWN"), QStringLiteral("JO40"));
    QObject::connect(&reader, &zkr::AllTxtReader::reception, [&](const zkr::Reception &r) {
        check(!r.tx.call.isEmpty() && reportLocator(r.tx.locator) && reportLocator(r.rx.locator));
        check(std::isfinite(r.frequencyMhz) && r.time.isValid() && r.received == r.time);
        reports << r.tx.call + r.tx.locator + QString::number(r.frequencyMhz, 'f', 6) +
                       r.time.toString(Qt::ISODate) + r.mode;
    });
    qsizetype at = 0;
    for (std::size_t i = 0; at < log.size(); ++i) {
        const qsizetype take =
            std::min<qsizetype>(count == 0 ? log.size() : sizes[i % count] + 1, log.size() - at);
        reader.receive(log.sliced(at, take));
        at += take;
    }
    reader.finish();
    return reports;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const std::size_t count = std::min<std::size_t>(data[0] % 16, size - 1);
    const QByteArrayView log(reinterpret_cast<const char *>(data + 1 + count),
                             static_cast<qsizetype>(size - 1 - count));
    check(read(log, nullptr, 0) == read(log, data + 1, count));
    return 0;
}
