// A decode log, anything at all, fed a byte at a time must give the reports
// it gives in one piece, each whole (a call, both locators as reports carry
// them, a finite frequency, the log's time).
#include "AllTxtReader.h"
#include "FuzzChecks.h"

#include <QStringList>

#include <cmath>

namespace {

QStringList read(QByteArrayView log, qsizetype piece) {
    QStringList reports;
    zkr::AllTxtReader reader;
    reader.setOwnStation(QStringLiteral("DL9OWN"), QStringLiteral("JO40"));
    QObject::connect(&reader, &zkr::AllTxtReader::reception, [&](const zkr::Reception &r) {
        check(!r.tx.call.isEmpty() && wholeLocator(r.tx.locator) && wholeLocator(r.rx.locator) &&
              std::isfinite(r.frequencyMhz) && r.time.isValid() && r.received == r.time);
        reports << r.tx.call + r.tx.locator + QString::number(r.frequencyMhz, 'f', 6) +
                       r.time.toString(Qt::ISODate) + r.mode;
    });
    for (qsizetype at = 0; at < log.size(); at += piece) {
        reader.receive(log.sliced(at, std::min(piece, log.size() - at)));
    }
    reader.finish();
    return reports;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const QByteArrayView log(reinterpret_cast<const char *>(data), qsizetype(size));
    check(read(log, log.size()) == read(log, 1));
    return 0;
}
