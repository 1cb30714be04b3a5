// WSJT-X datagrams, anything at all: the decoder must neither crash nor read
// past a datagram, and what it reports must be whole: a call, both
// locators as reports carry them, a finite frequency, a time not after the
// datagram's arrival. Input: datagrams, each after its size (two bytes, big
// endian).
#include "Locators.h"
#include "WsjtxDecoder.h"

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

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const QDateTime now(QDate(2023, 6, 12), QTime(18, 30, 20), Qt::UTC);
    zkr::WsjtxDecoder decoder;
    decoder.setOwnStation(QStringLiteral("DL9OWN"), QStringLiteral("JO40"));
    for (std::size_t at = 0; at + 2 <= size;) {
        const std::size_t length =
            std::min<std::size_t>((std::size_t(data[at]) << 8) | data[at + 1], size - at - 2);
        const QByteArrayView datagram(reinterpret_cast<const char *>(data + at + 2),
                                      static_cast<qsizetype>(length));
        at += 2 + length;
        const std::optional<zkr::Reception> report =
            decoder.decode(datagram, now, QStringView(u"127.0.0.1"));
        check(decoder.instanceCount() <= zkr::WsjtxDecoder::MaxInstances);
        if (report) {
            check(!report->tx.call.isEmpty() && reportLocator(report->tx.locator) &&
                  reportLocator(report->rx.locator) && report->atOwnStation);
            check(std::isfinite(report->frequencyMhz) && report->time.isValid() &&
                  report->time <= now.addSecs(3600) && report->received == now);
        }
    }
    return 0;
}
