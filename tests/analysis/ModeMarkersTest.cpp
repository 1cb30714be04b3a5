#include "ModeMarkers.h"
#include "AnalysisTestState.h"

using namespace zkr;

namespace {

TEST(FindMode, ClassifiesInTestOrderAndCutsTheMarker) {
    const struct {
        const char *locator1, *locator2, *comment, *mode, *rest;
    } cases[] = {
        {"", "", "", "??", ""},
        {"", "", "ES", "ES", ""},
        {"", "", "TNX ES", "ES", "TNX"},
        {"", "", "ES TNX", "ES", "TNX"},
        {"", "", "JT65 MS", "MS", "JT65"},
        {"", "", "EME", "EME", ""},
        {"", "", "<ESTNX", "ES", "TNX"},
        {"", "", "(MS) 2 PINGS", "MS", " 2 PINGS"},
        {"", "", "73 :ES: 73", "ES", "73  73"},
        {"", "", "BIG MUF 144", "MUF", "BIG144"},
        {"", "", "MUF", "??", "MUF"},
        {"", "", "tnx es", "ES", "TNX"},    // upper-cased first
        {"", "", "ESKIMO", "??", "ESKIMO"}, // "ES " needs its blank
        {"", "", "TNX ES 73", "ES", "TNX73"},
        // The end/begin group comes before all bracketed markers, and among
        // those ES comes before EME.
        {"", "", "<MS> ES", "ES", "<MS>"},
        {"", "", "(ES) <EME>", "ES", " <EME>"},
        {"", "", "<EME> (ES)", "ES", "<EME> "},
        {"", "", "<ES><ES>", "ES", "<ES>"},
        {"", "", "HIGH MUF2 NOW", "MUF", "HIGHNOW"},
        {"", "", "HIGH MUF2", "MUF", "HIGH"},
        {"", "", "MUF2 MUF>", "MUF", "MUF2 "},
        // One square: TR, and the comment is not looked at.
        {"JO62QM", "JO62AA", "<ES>", "TR", "<ES>"},
        {"JO62??", "JO62QM", "", "TR", ""},
        {"JO62QM", "", "<ES>", "ES", ""},
    };
    for (const auto &c : cases) {
        ProgramState s = analysisState();
        s.Locator_1 = QString::fromLatin1(c.locator1);
        s.Locator_2 = QString::fromLatin1(c.locator2);
        s.Comment_Upper = QString::fromLatin1(c.comment);
        s.Spot_Mode = QStringLiteral("stale");
        Find_Mode(s);
        EXPECT_EQ(s.Spot_Mode, QString::fromLatin1(c.mode)) << c.comment;
        EXPECT_EQ(s.Comment_Upper, QString::fromLatin1(c.rest)) << c.comment;
    }
}

} // namespace
