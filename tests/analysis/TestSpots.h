#pragma once

#include "EvaluatedSpot.h"
#include "QtPrinters.h"
#include "RunTimeError.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace zkr {
inline void PrintTo(const TextRun &run, std::ostream *out) {
    ::PrintTo(run.text, out);
    *out << " in " << std::hex << run.colour << std::dec;
}
} // namespace zkr

inline constexpr std::uint32_t K = 0, M = 0xFF00FF, G = 0xB0B0B0; // black, magenta, grey
using Runs = QList<zkr::TextRun>;

// A cluster line as DX Spider sends it: frequency right-aligned to column
// 24, DX call at 27, comment at 40, time at 71 (counted with "DX de ").
inline QString clusterLine(const char *kiloHertz, const char *comment) {
    return QString("DX de SP9HWY:  %1  OH1XYZ       %2 1712Z").arg(kiloHertz, 9).arg(comment, -30);
}

template <typename Call>
void expectFault(Call &&call, zkr::RunTimeError::Code code, const std::string &what) {
    try {
        call();
        ADD_FAILURE() << what << ": no run-time error";
    } catch (const zkr::RunTimeError &error) {
        EXPECT_EQ(error.code(), code) << what;
    }
}
