#include "RetryDelay.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace zkr;

namespace {

// Node operators block clients that retry every few seconds for hours.
TEST(RetryPolicy, WaitsTwiceAsLongEachTimeWithinTheJitterUpToTheLimit) {
    const RetryPolicy policy{3000, 40000};
    const struct {
        int attempt;
        int waitMs; // before the jitter of 20 % either way
    } cases[] = {{0, 3000}, {1, 3000}, {2, 6000}, {3, 12000}, {4, 24000}, {5, 40000}, {30, 40000}};
    for (const auto &c : cases) {
        for (const double random : {0.0, 0.5, 0.9999}) {
            const int wait = policy.delayMs(c.attempt, random);
            EXPECT_GE(wait, c.waitMs * 8 / 10) << c.attempt << " " << random;
            EXPECT_LE(wait, std::min(c.waitMs * 12 / 10, 40000)) << c.attempt << " " << random;
        }
    }
    // The first retry comes within 5 s whatever the jitter.
    EXPECT_LE((RetryPolicy{4800, 40000}.delayMs(1, 0.9999)), RetryPolicy::FirstRetryLimitMs);
}

} // namespace
