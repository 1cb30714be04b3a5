// WSJT-X datagrams (each after its size, two bytes big endian), anything at
// all: no crash, no read past one, every report whole (a call, both
// locators as reports carry them, a finite frequency, a time before now).
#include "FuzzChecks.h"
#include "WsjtxDecoder.h"

#include <cmath>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const QDateTime now(QDate(2023, 6, 12), QTime(18, 30, 20), Qt::UTC);
    zkr::WsjtxDecoder decoder;
    decoder.setOwnStation(QStringLiteral("DL9OWN"), QStringLiteral("JO40"));
    for (std::size_t at = 0; at + 2 <= size;) {
        const std::size_t length =
            std::min<std::size_t>(data[at] * 256 + data[at + 1], size - at - 2);
        const auto report = decoder.decode(
            QByteArrayView(reinterpret_cast<const char *>(data + at + 2), qsizetype(length)), now,
            QStringView(u"127.0.0.1"));
        at += 2 + length;
        check(decoder.instanceCount() <= zkr::WsjtxDecoder::MaxInstances);
        check(!report || (!report->tx.call.isEmpty() && wholeLocator(report->tx.locator) &&
                          wholeLocator(report->rx.locator) && report->atOwnStation &&
                          std::isfinite(report->frequencyMhz) && report->received == now &&
                          report->time.isValid() && report->time <= now.addSecs(3600)));
    }
    return 0;
}
