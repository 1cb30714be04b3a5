// One PSK Reporter payload, any bytes: no crash, and whatever is handed on
// is a whole report - both locators usable by the path model, a frequency,
// and both calls.
#include "FuzzChecks.h"
#include "PskReporterPayload.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const QByteArrayView payload(reinterpret_cast<const char *>(data),
                                 static_cast<qsizetype>(size));
    zkr::PskReporterIntake intake("DL9OWN", "JO62QM", size % 2 == 0);
    const std::optional<zkr::Reception> r = intake.take(payload, QDateTime());
    check(!r || (!zkr::Check_Locator(r->tx.locator) && !zkr::Check_Locator(r->rx.locator) &&
                 r->frequencyMhz > 0 && !r->tx.call.isEmpty() && !r->rx.call.isEmpty() &&
                 !r->tx.call.contains(u' ')));
    return 0;
}
