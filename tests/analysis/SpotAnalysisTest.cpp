#include "SpotAnalysis.h"
#include "AnalysisTestState.h"
#include "QtPrinters.h"
#include "ResultOutput.h"
#include "ScriptedPlatform.h"
#include "SpotLineParsing.h"

#include <gtest/gtest.h>

using namespace zkr;
using Run = RecordingPane::Run;
using Runs = std::vector<Run>;

namespace {

Run run(const QString &text, std::uint32_t colour) {
    return Run{text, colour};
}
Run run(const char *text, std::uint32_t colour) {
    return Run{QString::fromLatin1(text), colour};
}

constexpr std::uint32_t Highlight = 0x123456;

// A cluster line laid out as clusters send it: 75 characters with the
// prefix, the time at 65-68 behind it.
QString clusterLine(const char *spotter, const char *kiloHertz, const char *dxCall,
                    const char *comment, const char *time) {
    return QStringLiteral("DX de %1%2  %3 %4 %5Z")
        .arg(QString::fromLatin1(spotter) + QLatin1Char(':'), -9)
        .arg(QString::fromLatin1(kiloHertz), 9)
        .arg(QString::fromLatin1(dxCall), -12)
        .arg(QString::fromLatin1(comment), -30)
        .arg(QString::fromLatin1(time));
}

struct RawCase {
    const char *name;
    const char *line;
    const char *locator1;
    const char *locator2;
    const char *ownLocator;
    Runs printed;
};

class PrintRawLine : public ::testing::TestWithParam<RawCase> {};

TEST_P(PrintRawLine, HighlightsTheOwnSquare) {
    const RawCase &c = GetParam();
    ProgramState s = analysisState();
    s.Spot_Line = QString::fromLatin1(c.line);
    s.Locator_1 = QString::fromLatin1(c.locator1);
    s.Locator_2 = QString::fromLatin1(c.locator2);
    s.OwnLocator = QString::fromLatin1(c.ownLocator);
    s.Spot_Mode = QStringLiteral("TR");
    s.Spot_Frequency = 144.3f;
    TestPanes panes;
    Print_RawLine(s, panes.all, Grey, Highlight);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(panes.pane[i].runs(), c.printed) << i;
    }
    EXPECT_TRUE(panes.pane[3].text().isEmpty());
    EXPECT_EQ(s.Spot_Line, QString::fromLatin1(c.line));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, PrintRawLine,
    ::testing::Values(RawCase{"NotTouching",
                              "DL1ABC: 144300.0 OH1XYZ KP20LL<TR>KP11",
                              "KP20LL",
                              "KP11??",
                              "JO62QM",
                              {run("DL1ABC: 144300.0 OH1XYZ KP20LL<TR>KP11", Grey)}},
                      // Found in the upper-cased line, printed as the line has it.
                      RawCase{"SecondLocator",
                              "DL1ABC: 144300.0 OH1XYZ kp20<TR>jo62qm 73",
                              "KP20??",
                              "JO62QM",
                              "JO62QM",
                              {run("DL1ABC: 144300.0 OH1XYZ kp20<TR>", Grey),
                               run("jo62", Highlight), run("qm 73", Grey)}},
                      RawCase{"LowerCaseOwnLocator",
                              "JO62AA<TR>JO72",
                              "JO62AA",
                              "JO72??",
                              "jo62qm",
                              {run("JO62", Highlight), run("AA<TR>JO72", Grey)}},
                      // The first occurrence of the square is the one highlighted.
                      RawCase{
                          "FirstOccurrence",
                          "SM0JO62: JO62 JO62QM",
                          "JO62??",
                          "JO62QM",
                          "JO62QM",
                          {run("SM0", Grey), run("JO62", Highlight), run(": JO62 JO62QM", Grey)}},
                      RawCase{"LineEndsWithSquare",
                              "DL1ABC: 144300.0 KP20QM JO62",
                              "KP20QM",
                              "JO62??",
                              "JO62QM",
                              {run("DL1ABC: 144300.0 KP20QM ", Grey), run("JO62", Highlight)}},
                      // Touching by the locators, but the square is not in the line.
                      RawCase{"SquareNotInLine",
                              "DL1ABC: 144300.0 OH1XYZ",
                              "JO62QM",
                              "KP20??",
                              "JO62QM",
                              {run("DL1ABC: 144300.0 OH1XYZ", Grey)}},
                      // Without an own square nothing is highlighted.
                      RawCase{"NoOwnLocator",
                              "DL1ABC: 144300.0 OH1XYZ",
                              "",
                              "",
                              "",
                              {run("DL1ABC: 144300.0 OH1XYZ", Grey)}}),
    [](const auto &named) { return std::string(named.param.name); });

struct BracketCase {
    const char *name;
    const char *mode;
    const char *line;
    const char *printed;
};

class BracketModeWords : public ::testing::TestWithParam<BracketCase> {};

TEST_P(BracketModeWords, RewritesEsLinesBeforePrinting) {
    const BracketCase &c = GetParam();
    ProgramState s = analysisState();
    s.Spot_Line = QString::fromLatin1(c.line);
    s.Spot_Mode = QString::fromLatin1(c.mode);
    s.Spot_Frequency = 50.15f;
    TestPanes panes;
    Print_RawLine(s, panes.all, Black, Magenta);
    EXPECT_EQ(s.Spot_Line, QString::fromLatin1(c.printed));
    EXPECT_EQ(panes.pane[0].runs(), Runs{run(c.printed, Black)});
}

INSTANTIATE_TEST_SUITE_P(
    Cases, BracketModeWords,
    ::testing::Values(BracketCase{"EsSpellings", "ES", "A ES B es C Es D eS E",
                                  "A<ES>B<ES>C<ES>D eS E"},
                      BracketCase{"AllWords", "ES", "x ms y tr z sat w eme v Ms u Tr t",
                                  "x<MS>y<TR>z<SAT>w<EME>v<MS>u<TR>t"},
                      // A blank belongs to the first word that takes it.
                      BracketCase{"SharedBlanks", "ES", " MS TR EME SAT ", "<MS>TR<EME>SAT "},
                      // All " ES " first, then the other words.
                      BracketCase{"WordOrder", "ES", " MS ES ", " MS<ES>"},
                      BracketCase{"NotFreeStanding", "ES", "ESKIMO YES  ES", "ESKIMO YES  ES"},
                      BracketCase{"MixedCaseLongWords", "ES", "a Eme b Sat c", "a Eme b Sat c"},
                      BracketCase{"OtherModeUnchanged", "MS", "a ES b MS c", "a ES b MS c"},
                      BracketCase{"NoModeUnchanged", "??", "a es b", "a es b"}),
    [](const auto &named) { return std::string(named.param.name); });

TEST(PrintRawLineEs, BracketsAndHighlightsTogether) {
    ProgramState s = analysisState();
    s.Spot_Line = QStringLiteral("JO62QM ES KP20");
    s.Locator_1 = QStringLiteral("JO62QM");
    s.Locator_2 = QStringLiteral("KP20??");
    s.Spot_Mode = QStringLiteral("ES");
    s.Spot_Frequency = 50.15f;
    TestPanes panes;
    Print_RawLine(s, panes.all, Black, Magenta);
    EXPECT_EQ(panes.pane[3].runs(), (Runs{run("JO62", Magenta), run("QM<ES>KP20", Black)}));
    EXPECT_TRUE(panes.pane[2].text().isEmpty());
}

TEST(AnalyseSpot, ComputesThePathOnlyForTwoLocators) {
    struct Case {
        const char *comment;
        const char *locator1;
        const char *locator2;
        const char *mode;
        bool computed;
    };
    // The comment column reaches into the time (65-68), so a comment read
    // from a cluster line ends in the time's first three digits.
    const Case cases[] = {
        {"JO62QM<ES>KP20", "JO62QM", "KP20??", "ES", true},
        {"KP20 ES", "KP20??", "", "ES", false},
        {"TNX QSO", "", "", "??", false},
        {"JO62QM JO62AA", "JO62QM", "JO62AA", "TR", true},
        {"jo62qm (ms) jo73", "JO62QM", "JO73??", "MS", true},
    };
    for (const Case &c : cases) {
        ProgramState s = analysisState();
        ScriptedPlatform platform;
        // A wrong own locator makes every path computation visible.
        s.OwnLocator = QStringLiteral("JO62QZ");
        s.Spot_Line =
            Prepare_ClusterLine(clusterLine("DL1ABC", "50110.0", "OH1XYZ", c.comment, "1234"));
        Analyse_Spot(s, platform);
        EXPECT_EQ(s.Spot_DXCall, QStringLiteral("OH1XYZ")) << c.comment;
        EXPECT_EQ(s.Locator_1, QString::fromLatin1(c.locator1)) << c.comment;
        EXPECT_EQ(s.Locator_2, QString::fromLatin1(c.locator2)) << c.comment;
        EXPECT_EQ(s.Spot_Mode, QString::fromLatin1(c.mode)) << c.comment;
        EXPECT_EQ(s.Spot_Comment.right(3), QStringLiteral("123")) << c.comment;
        EXPECT_EQ(platform.messages().size(), c.computed ? 1 : 0) << c.comment;
    }
}

TEST(AnalyseSpot, AnEsSpotPrintsItsWholeResultLine) {
    ProgramState s = analysisState();
    ScriptedPlatform platform;
    s.Spot_Line =
        Prepare_ClusterLine(clusterLine("DL1ABC", "50150.0", "OH1XYZ", "JO62QM<ES>KP20", "1234"));
    Analyse_Spot(s, platform);
    ASSERT_EQ(s.Spot_Mode, QStringLiteral("ES"));
    TestPanes panes;
    Print_RawLine(s, panes.all, Black, Magenta);
    Print_MufField(s, panes.all);
    Print_MidSquare(s, panes.all);
    Print_FotField(s, panes.all);
    Print_AzField(s, panes.all);
    // The path JO62QM-KP20LL from JO62QM worked by hand (see the path model
    // test OwnAtFirstEnd): Es MUF 63.57 -> 64, cloud over JO96, own MUF 50.15
    // -> 50, 565.5 km at 34.05 degrees, elevation 8.36 -> 8; nothing reaches
    // 144 MHz and the cloud is above the horizon, so all fields are black.
    const Runs expected{
        run("DL1ABC:    50150.0  OH1XYZ       ", Black), run("JO62", Magenta),
        run(QStringLiteral("QM<ES>KP20") + QString(16, u' ') +
                QStringLiteral(" 1234Z    MUF= 64MHz@JO96  FOT= 50MHz -> KP20 AZ= 34 EL=  8\r\n"),
            Black)};
    EXPECT_EQ(panes.pane[0].runs(), expected);
    EXPECT_EQ(panes.pane[1].runs(), expected);
    EXPECT_EQ(panes.pane[3].runs(), expected);
    EXPECT_TRUE(panes.pane[2].text().isEmpty());
    EXPECT_TRUE(platform.log().isEmpty());
}

} // namespace
