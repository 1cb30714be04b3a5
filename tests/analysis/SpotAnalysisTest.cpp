#include "SpotAnalysis.h"
#include "AnalysisTestState.h"
#include "ResultOutput.h"
#include "ScriptedPlatform.h"

using namespace zkr;
using Run = RecordingPane::Run;
using Runs = std::vector<Run>;

namespace {

Run run(const QString &text, std::uint32_t colour) {
    return Run{text, colour};
}
Run run(const char *text, std::uint32_t colour) {
    return run(QString::fromLatin1(text), colour);
}

constexpr std::uint32_t Highlight = 0x123456;

// A cluster line as clusters send it: 75 characters, the time at 71-74.
QString clusterLine(const char *kiloHertz, const char *comment) {
    return Prepare_ClusterLine(QStringLiteral("DX de %1%2  %3 %4 1234Z")
                                   .arg(QStringLiteral("DL1ABC:"), -9)
                                   .arg(QString::fromLatin1(kiloHertz), 9)
                                   .arg(QStringLiteral("OH1XYZ"), -12)
                                   .arg(QString::fromLatin1(comment), -30));
}

TEST(PrintRawLine, HighlightsTheFirstOwnSquareInTheLine) {
    const struct {
        const char *line, *locator1, *locator2;
        Runs printed;
    } cases[] = {
        {"OH1XYZ KP20LL<TR>KP11", "KP20LL", "KP11??", {run("OH1XYZ KP20LL<TR>KP11", Grey)}},
        // Found in the upper-cased line, printed as the line has it.
        {"x kp20<TR>jo62qm 73",
         "KP20??",
         "JO62QM",
         {run("x kp20<TR>", Grey), run("jo62", Highlight), run("qm 73", Grey)}},
        {"JO62AA<TR>JO72", "JO62AA", "JO72??", {run("JO62", Highlight), run("AA<TR>JO72", Grey)}},
        {"SM0JO62: JO62QM",
         "JO62QM",
         "JO72??",
         {run("SM0", Grey), run("JO62", Highlight), run(": JO62QM", Grey)}},
        // Touching by its locators, but the square is not in the line.
        {"DL1ABC: OH1XYZ", "JO62QM", "KP20??", {run("DL1ABC: OH1XYZ", Grey)}},
    };
    for (const auto &c : cases) {
        ProgramState s = analysisState();
        s.Spot_Line = QString::fromLatin1(c.line);
        s.Locator_1 = QString::fromLatin1(c.locator1);
        s.Locator_2 = QString::fromLatin1(c.locator2);
        s.OwnLocator = QStringLiteral("jo62qm"); // the own square is upper-cased
        s.Spot_Mode = QStringLiteral("TR");
        s.Spot_Frequency = 144.3f;
        TestPanes panes;
        Print_RawLine(s, panes.all, Grey, Highlight);
        EXPECT_EQ(panes.pane[2].runs(), c.printed) << c.line;
        EXPECT_TRUE(panes.pane[3].text().isEmpty());
    }
}

TEST(PrintRawLine, BracketsFreeStandingModeWordsOfEsSpots) {
    const struct {
        const char *mode, *line, *printed;
    } cases[] = {
        {"ES", "A ES B es C Es D eS E", "A<ES>B<ES>C<ES>D eS E"},
        {"ES", "x ms y tr z sat w eme v Ms u Tr t", "x<MS>y<TR>z<SAT>w<EME>v<MS>u<TR>t"},
        {"ES", " MS TR EME SAT ", "<MS>TR<EME>SAT "}, // a blank goes to the first word
        {"ES", " MS ES ", " MS<ES>"},                 // all " ES " first
        {"ES", "ESKIMO YES  a Eme b Sat c", "ESKIMO YES  a Eme b Sat c"},
        {"MS", "a ES b MS c", "a ES b MS c"},
    };
    for (const auto &c : cases) {
        ProgramState s = analysisState();
        s.Spot_Line = QString::fromLatin1(c.line);
        s.Spot_Mode = QString::fromLatin1(c.mode);
        TestPanes panes;
        Print_RawLine(s, panes.all, Black, Magenta);
        EXPECT_EQ(s.Spot_Line, QString::fromLatin1(c.printed));
        EXPECT_EQ(panes.pane[0].runs(), Runs{run(c.printed, Black)});
    }
}

TEST(AnalyseSpot, ComputesThePathOnlyForTwoLocators) {
    // The comment column reaches into the time, so the comment ends in "123".
    const struct {
        const char *comment, *locator1, *locator2, *mode;
        bool computed;
    } cases[] = {
        {"JO62QM<ES>KP20", "JO62QM", "KP20??", "ES", true},
        {"KP20 ES", "KP20??", "", "ES", false},
        {"jo62qm JO62AA", "JO62QM", "JO62AA", "TR", true},
    };
    for (const auto &c : cases) {
        ProgramState s = analysisState();
        ScriptedPlatform platform;
        s.OwnLocator = QStringLiteral("JO62QZ"); // every computation shows up
        s.Spot_Line = clusterLine("50110.0", c.comment);
        Analyse_Spot(s, platform);
        EXPECT_EQ(s.Spot_Comment.right(3), QStringLiteral("123"));
        EXPECT_EQ(s.Locator_1, QString::fromLatin1(c.locator1)) << c.comment;
        EXPECT_EQ(s.Locator_2, QString::fromLatin1(c.locator2)) << c.comment;
        EXPECT_EQ(s.Spot_Mode, QString::fromLatin1(c.mode)) << c.comment;
        EXPECT_EQ(platform.messages().size(), c.computed ? 1 : 0) << c.comment;
    }
}

TEST(AnalyseSpot, AnEsSpotPrintsItsWholeResultLine) {
    ProgramState s = analysisState();
    ScriptedPlatform platform;
    s.Spot_Line = clusterLine("50150.0", "JO62QM<ES>KP20");
    Analyse_Spot(s, platform);
    TestPanes panes;
    Print_RawLine(s, panes.all, Black, Magenta);
    Print_MufField(s, panes.all);
    Print_MidSquare(s, panes.all);
    Print_FotField(s, panes.all);
    Print_AzField(s, panes.all);
    // The path OwnAtFirstEnd of the path model test: Es MUF 63.57 -> 64, cloud
    // over JO96, own MUF 50.15 -> 50, 565.5 km at 34.05 degrees, elevation
    // 8.36 -> 8. Nothing reaches 144 MHz, the cloud is above the horizon.
    const Runs expected{
        run("DL1ABC:    50150.0  OH1XYZ       ", Black), run("JO62", Magenta),
        run(QStringLiteral("QM<ES>KP20") + QString(16, u' ') +
                QStringLiteral(" 1234Z    MUF= 64MHz@JO96  FOT= 50MHz -> KP20 AZ= 34 EL=  8\r\n"),
            Black)};
    for (std::size_t i : {0, 1, 3}) {
        EXPECT_EQ(panes.pane[i].runs(), expected) << i;
    }
    EXPECT_TRUE(panes.pane[2].text().isEmpty());
    EXPECT_TRUE(platform.log().isEmpty());
}

} // namespace
