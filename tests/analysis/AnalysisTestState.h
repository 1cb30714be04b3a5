#pragma once

#include "ProgramState.h"
#include "RecordingPane.h"
#include "ResultPanes.h"
#include "RunTimeError.h"
#include "SpotLineParsing.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>

inline constexpr std::uint32_t Black = 0;
inline constexpr std::uint32_t Magenta = 0xFF00FF;
inline constexpr std::uint32_t Grey = 0xB0B0B0;

// The state after start-up, own locator JO62QM, cluster columns.
inline zkr::ProgramState analysisState() {
    zkr::ProgramState s;
    s.EarthRadius = 6367;
    s.EsLayerHeight = 110;
    s.Distance_Limit = 1500;
    s.MinFrequency_MHz = 144;
    s.Color_Black = QStringLiteral("0");
    s.Color_Magenta = QStringLiteral("16711935");
    s.Color_Grey = QStringLiteral("11579568");
    s.IniFileName = QStringLiteral("zkr_muf.ini");
    s.OwnLocator = QStringLiteral("JO62QM");
    s.SpotLine_Columns = zkr::ClusterColumns;
    return s;
}

struct TestPanes {
    TestPanes() = default;
    TestPanes(const TestPanes &) = delete;
    TestPanes &operator=(const TestPanes &) = delete;
    std::array<RecordingPane, 4> pane;
    zkr::ResultPanes all{&pane[0], &pane[1], &pane[2], &pane[3]};
};

template <typename Call>
void expectFault(Call &&call, zkr::RunTimeError::Code code, const std::string &what) {
    try {
        call();
        ADD_FAILURE() << what << ": no run-time error";
    } catch (const zkr::RunTimeError &error) {
        EXPECT_EQ(error.code(), code) << what;
    }
}
