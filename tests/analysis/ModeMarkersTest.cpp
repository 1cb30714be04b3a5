#include "ModeMarkers.h"
#include "AnalysisTestState.h"
#include "QtPrinters.h"

#include <gtest/gtest.h>

using namespace zkr;

namespace {

struct ModeCase {
    const char *locator1;
    const char *locator2;
    const char *comment; // Comment_Upper before
    const char *mode;
    const char *rest; // Comment_Upper after
};

class FindMode : public ::testing::TestWithParam<ModeCase> {};

TEST_P(FindMode, ClassifiesAndCutsTheMarker) {
    const ModeCase &c = GetParam();
    ProgramState s = analysisState();
    s.Locator_1 = QString::fromLatin1(c.locator1);
    s.Locator_2 = QString::fromLatin1(c.locator2);
    s.Comment_Upper = QString::fromLatin1(c.comment);
    s.Spot_Mode = QStringLiteral("stale");
    Find_Mode(s);
    EXPECT_EQ(s.Spot_Mode, QString::fromLatin1(c.mode));
    EXPECT_EQ(s.Comment_Upper, QString::fromLatin1(c.rest));
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, FindMode,
    ::testing::Values(
        ModeCase{"", "", "", "??", ""}, ModeCase{"", "", "ES", "ES", ""},
        ModeCase{"", "", "TNX ES", "ES", "TNX"}, ModeCase{"", "", "ES TNX", "ES", "TNX"},
        ModeCase{"", "", "JT65 MS", "MS", "JT65"}, ModeCase{"", "", "TR 59", "TR", "59"},
        ModeCase{"", "", "EME", "EME", ""}, ModeCase{"", "", "VIA SAT", "SAT", "VIA"},
        ModeCase{"", "", "<ESTNX", "ES", "TNX"}, ModeCase{"", "", "GOOD ES>", "ES", "GOOD "},
        ModeCase{"", "", "(MS) 2 PINGS", "MS", " 2 PINGS"},
        ModeCase{"", "", "73 :ES: 73", "ES", "73  73"}, ModeCase{"", "", ":SAT:", "SAT", ""},
        ModeCase{"", "", "CQ <TR", "TR", "CQ "}, ModeCase{"", "", "BIG MUF 144", "MUF", "BIG144"},
        ModeCase{"", "", "MUF 144", "MUF", "144"}, ModeCase{"", "", "<MUF>", "MUF", ">"},
        ModeCase{"", "", "MUF", "??", "MUF"},
        // Markers are upper-cased before the tests.
        ModeCase{"", "", "tnx es", "ES", "TNX"},
        // "ES " needs its blank.
        ModeCase{"", "", "ESKIMO", "??", "ESKIMO"}),
    [](const auto &numbered) { return "Case" + std::to_string(numbered.index); });

INSTANTIATE_TEST_SUITE_P(
    Ordering, FindMode,
    ::testing::Values(
        // A free-standing word in the middle: the blanks go with it.
        ModeCase{"", "", "TNX ES 73", "ES", "TNX73"},
        // The end/begin group is tried before any bracketed marker.
        ModeCase{"", "", "<MS> ES", "ES", "<MS>"}, ModeCase{"", "", "EME ES", "ES", "EME"},
        // Among bracketed markers ES comes before EME.
        ModeCase{"", "", "(ES) <EME>", "ES", " <EME>"},
        ModeCase{"", "", "<EME> (ES)", "ES", "<EME> "},
        // Only the first occurrence is cut.
        ModeCase{"", "", "<ES><ES>", "ES", "<ES>"},
        // " MUF " and "MUF>" come before the MUF2 forms.
        ModeCase{"", "", "HIGH MUF2 NOW", "MUF", "HIGHNOW"},
        ModeCase{"", "", "HIGH MUF2", "MUF", "HIGH"}, ModeCase{"", "", "MUF2 HIGH", "MUF", "HIGH"},
        ModeCase{"", "", "MUF2 MUF>", "MUF", "MUF2 "},
        // Both locators in one square: TR, and the comment is not looked at.
        ModeCase{"JO62QM", "JO62AA", "<ES>", "TR", "<ES>"},
        ModeCase{"JO62??", "JO62QM", "", "TR", ""},
        // One locator alone, or two squares: the markers decide.
        ModeCase{"JO62QM", "", "<ES>", "ES", ""}, ModeCase{"JO62QM", "JO72??", "<ES>", "ES", ""}),
    [](const auto &numbered) { return "Case" + std::to_string(numbered.index); });

} // namespace
