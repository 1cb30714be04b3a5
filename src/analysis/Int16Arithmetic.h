#pragma once

#include "RunTimeError.h"

#include <cmath>
#include <cstdint>
#include <limits>

namespace zkr {

// 16-bit integer arithmetic that raises an overflow instead of wrapping:
// counters and positions kept as 16-bit values stop with a reported error.
inline std::int16_t toInt16(long long value) {
    if (value < std::numeric_limits<std::int16_t>::min() ||
        value > std::numeric_limits<std::int16_t>::max()) {
        throw RunTimeError(RunTimeError::Overflow);
    }
    return static_cast<std::int16_t>(value);
}

// Converts with round-half-to-even, as integer assignment of a number does.
inline std::int16_t roundToInt16(double value) {
    if (!std::isfinite(value)) {
        throw RunTimeError(RunTimeError::Overflow);
    }
    const double rounded = std::nearbyint(value);
    if (rounded < std::numeric_limits<std::int16_t>::min() ||
        rounded > std::numeric_limits<std::int16_t>::max()) {
        throw RunTimeError(RunTimeError::Overflow);
    }
    return static_cast<std::int16_t>(rounded);
}

inline std::int16_t add16(std::int16_t a, long long b) {
    return toInt16(static_cast<long long>(a) + b);
}

} // namespace zkr
