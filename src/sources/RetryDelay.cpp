#include "RetryDelay.h"

#include <algorithm>
#include <cmath>

namespace zkr {

int RetryPolicy::delayMs(int attempt, double random) const {
    const double base =
        std::min<double>(firstRetryMs * std::pow(2.0, std::max(attempt, 1) - 1), maxRetryMs);
    const double jitter = 0.8 + 0.4 * random;
    double delay = std::min<double>(base * jitter, maxRetryMs);
    if (attempt <= 1) {
        delay = std::min<double>(delay, FirstRetryLimitMs);
    }
    return std::max(0, static_cast<int>(delay));
}

} // namespace zkr
