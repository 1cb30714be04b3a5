#pragma once

#include "ProgramState.h"
#include "RecordingPane.h"
#include "ResultPanes.h"
#include "SpotLineParsing.h"

#include <array>
#include <cmath>
#include <cstdint>

// Colour values the program keeps as the texts below.
inline constexpr std::uint32_t Black = 0;
inline constexpr std::uint32_t Magenta = 0xFF00FF;
inline constexpr std::uint32_t Grey = 0xB0B0B0;

// The state the analysis sees after start-up, with own locator JO62QM and
// the cluster column table.
inline zkr::ProgramState analysisState() {
    zkr::ProgramState s;
    s.Pi = 4.0 * std::atan(1.0);
    s.Rad2Deg = 180.0 / s.Pi;
    s.Deg2Rad = s.Pi / 180.0;
    s.CrLf = QStringLiteral("\r\n");
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
    s.Column_Count = 15;
    return s;
}

// Four recording panes and the pointers the printers take.
struct TestPanes {
    TestPanes() = default;
    TestPanes(const TestPanes &) = delete;
    TestPanes &operator=(const TestPanes &) = delete;

    std::array<RecordingPane, 4> pane;
    zkr::ResultPanes all{&pane[0], &pane[1], &pane[2], &pane[3]};
};
