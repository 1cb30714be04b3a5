#pragma once

namespace zkr {

// How long a source that lost its server waits before it tries again:
// within a few seconds the first time, then twice as long each time up to
// a limit, and 20 % either way so that many clients dropped together do not
// come back together. Node and broker operators block clients that retry
// every few seconds for hours.
struct RetryPolicy {
    int firstRetryMs = 3000; // the first wait, at most FirstRetryLimitMs
    int maxRetryMs = 300000; // the longest wait

    static constexpr int FirstRetryLimitMs = 5000;

    // The wait before try `attempt` (1 after the first failure); `random`
    // lies in [0, 1) and picks the jitter.
    int delayMs(int attempt, double random) const;
};

} // namespace zkr
