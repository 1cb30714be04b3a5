// One PSK Reporter payload, any bytes: no crash, and whatever is handed on
// is a whole report - both locators usable by the path model, a frequency,
// both calls - and every payload is counted exactly once.
#include "PskReporterPayload.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const QByteArrayView payload(reinterpret_cast<const char *>(data),
                                 static_cast<qsizetype>(size));
    zkr::PskReporterIntake intake(QStringLiteral("DL9OWN"), QStringLiteral("JO62QM"),
                                  size % 2 == 0);
    const std::optional<zkr::Reception> r = intake.take(payload, QDateTime());
    const auto usable = [](const QString &locator) {
        return (locator.size() == 4 || locator.size() == 6) && locator == locator.toUpper();
    };
    if (r && (!usable(r->tx.locator) || !usable(r->rx.locator) || !(r->frequencyMhz > 0) ||
              r->tx.call.isEmpty() || r->rx.call.isEmpty() || r->tx.call.contains(u' '))) {
        std::abort();
    }
    const zkr::PskReporterCounters &n = intake.counters();
    if (n.received != 1 || n.badPayload + n.noLocator + n.filtered + n.kept != 1 ||
        r.has_value() != (n.kept == 1)) {
        std::abort();
    }
    return 0;
}
