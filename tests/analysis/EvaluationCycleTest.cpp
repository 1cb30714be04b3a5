#include "EvaluationCycle.h"
#include "AnalysisTestState.h"
#include "EvaluationView.h"
#include "MemoryPane.h"
#include "QtPrinters.h"
#include "ScriptedPlatform.h"

#include <gtest/gtest.h>

using namespace zkr;

namespace {

// A cluster line as DX Spider sends it (frequency right-aligned to column
// 24, DX call at 27, comment at 40, time at 71).
QString clusterLine(const char *kilohertz, const char *comment) {
    const QString frequency = QString::fromLatin1(kilohertz);
    return QString("DX de SP9HWY:").leftJustified(24 - frequency.size(), ' ') + frequency + "  " +
           QString("OH1XYZ").leftJustified(13, ' ') + QString(comment).leftJustified(31, ' ') +
           "1712Z\r\n";
}

struct Cycle : EvaluationView {
    ProgramState state = analysisState();
    ScriptedPlatform platform;
    MemoryPane pane[4];
    ResultPanes panes{&pane[0], &pane[1], &pane[2], &pane[3]};
    bool over144 = false;
    bool esOnly = false;
    QStringList labels;
    int refreshes = 0;
    bool busyDuringRefresh = false;

    Cycle() {
        state.CrLf = "\r\n";
        state.SpotPrefix = "DX de ";
    }
    void evaluate(const QString &line) {
        state.CurrentSpotLine = line;
        Evaluate_ClusterLine(state, platform, panes, *this);
    }
    QString text(int i) { return pane[i].text(); }

    void showWorkLabel(const QString &caption) override { labels << caption; }
    void hideWorkLabel() override { labels << "hidden"; }
    void processEvents() override {}
    bool over144Only() override { return over144; }
    bool esSpotsOnly() override { return esOnly; }
    void refreshDisplay() override {
        ++refreshes;
        busyDuringRefresh = state.Busy;
        for (MemoryPane &p : pane) {
            p.commit();
        }
    }
    void setConsoleData(const QString &) override {}
};

TEST(EvaluateClusterLine, PrintsAnEsSpotWithItsFieldsIntoItsPanes) {
    Cycle c;
    c.evaluate(clusterLine("50110.0", "JO90JR<ES>KP20"));
    const QString raw = clusterLine("50110.0", "JO90JR<ES>KP20").mid(6).chopped(2);
    for (int i : {0, 1, 3}) {
        EXPECT_TRUE(c.text(i).startsWith(raw)) << i << c.text(i).toStdString();
        EXPECT_TRUE(c.text(i).contains("MUF=")) << i;
        EXPECT_TRUE(c.text(i).endsWith("\r\n")) << i;
        EXPECT_EQ(c.pane[i].caret(), 0);
    }
    EXPECT_EQ(c.text(2), ""); // not on 2 m
    EXPECT_FALSE(c.state.Busy);
    EXPECT_TRUE(c.busyDuringRefresh);
    EXPECT_EQ(c.refreshes, 1);
    EXPECT_EQ(c.labels, QStringList({"CALCULATING"}));
}

struct FilterCase {
    const char *name;
    const char *kilohertz;
    const char *comment;
    bool over144;
    bool esOnly;
    bool evalAll;
    const char *pane0; // "" nothing, "raw" raw line only, "fields" raw line and fields
};

class EvaluateFilters : public ::testing::TestWithParam<FilterCase> {};

TEST_P(EvaluateFilters, DecideWhatIsPrinted) {
    const FilterCase &f = GetParam();
    Cycle c;
    c.over144 = f.over144;
    c.esOnly = f.esOnly;
    c.state.Eval_Flag = f.evalAll;
    c.evaluate(clusterLine(f.kilohertz, f.comment));
    const QString text = c.text(0);
    const QString expected = f.pane0;
    if (expected.isEmpty()) {
        EXPECT_EQ(text, "");
    } else {
        EXPECT_TRUE(text.startsWith("SP9HWY:")) << text.toStdString();
        EXPECT_EQ(text.contains("MUF="), expected == "fields") << text.toStdString();
        EXPECT_EQ(text.count("\r\n"), 1) << text.toStdString();
    }
}

INSTANTIATE_TEST_SUITE_P(
    Table, EvaluateFilters,
    ::testing::Values(
        FilterCase{"es_50_over144_prints_nothing", "50110.0", "JO90JR<ES>KP20", true, false, false,
                   ""},
        FilterCase{"es_exactly_144_passes", "144000.0", "JO90JR<ES>KP20", true, false, false,
                   "fields"},
        FilterCase{"ms_prints_raw_only", "50110.0", "JO90JR<MS>KP20", false, false, false, "raw"},
        FilterCase{"equal_locators_raw_only", "50110.0", "KP20 ES KP20", false, false, false,
                   "raw"},
        FilterCase{"one_locator_raw_only", "50110.0", "JO90JR ES", false, false, false, "raw"},
        FilterCase{"no_mode_raw_only", "50110.0", "JO90JR KP20", false, false, false, "raw"},
        FilterCase{"no_mode_with_eval_all", "50110.0", "JO90JR KP20", false, false, true, "fields"},
        FilterCase{"es_only_hides_ms", "50110.0", "JO90JR<MS>KP20", false, true, false, ""},
        FilterCase{"es_only_keeps_es", "50110.0", "JO90JR<ES>KP20", false, true, false, "fields"},
        FilterCase{"es_only_hides_unmarked_even_with_eval_all", "50110.0", "JO90JR KP20", false,
                   true, true, ""}),
    [](const auto &caseInfo) { return std::string(caseInfo.param.name); });

TEST(EvaluateClusterLine, NewestSpotGoesOnTop) {
    Cycle c;
    c.evaluate(clusterLine("50110.0", "first JO90JR<ES>KP20"));
    c.evaluate(clusterLine("50120.0", "second"));
    const QStringList lines = c.text(0).split("\r\n");
    ASSERT_GE(lines.size(), 3);
    EXPECT_TRUE(lines[0].contains("second"));
    EXPECT_TRUE(lines[1].contains("first"));
}

TEST(EvaluateClusterLine, CutsTheLineToSeventyFiveCharacters) {
    Cycle c;
    const QString line = clusterLine("50110.0", "x").chopped(2); // 75 characters
    ASSERT_EQ(line.size(), 75);
    c.evaluate(line);
    EXPECT_TRUE(c.text(0).startsWith(line.mid(6) + "\r\n"));
    c.pane[0].clear();
    c.evaluate(line + "Q");
    EXPECT_TRUE(c.text(0).startsWith(line.mid(6) + "\r\n"));
}

TEST(EvaluateClusterLine, AFailingSpotIsEndedAndBusyCleared) {
    Cycle c;
    c.state.Color_Magenta = "magenta"; // no colour value: the raw line cannot be printed
    EXPECT_THROW(c.evaluate(clusterLine("50110.0", "JO90JR<ES>KP20")), RunTimeError);
    EXPECT_FALSE(c.state.Busy);
    EXPECT_EQ(c.refreshes, 1);
    c.state.Color_Magenta = "16711935";
    c.evaluate(clusterLine("50110.0", "next"));
    EXPECT_TRUE(c.text(0).startsWith("SP9HWY:")) << c.text(0).toStdString();
}

TEST(EvaluateSpotLines, MarksPanesWithoutEsSpots) {
    Cycle c;
    c.state.SpotLine_Columns = WebColumns;
    const QString webLine = QString("%1 %2 %3 %4 %5")
                                .arg("DL1ABC", -11)
                                .arg("50110.0", 10)
                                .arg("OH1XYZ", -12)
                                .arg("JO90JR &lt;ES&gt; KP20", -34)
                                .arg("1712");
    Evaluate_SpotLines(c.state, c.platform, c.panes, c, {webLine, "  "});
    EXPECT_TRUE(c.text(0).contains("<ES>"));
    EXPECT_TRUE(c.text(0).contains("MUF="));
    EXPECT_FALSE(c.text(0).contains("Sorry"));
    EXPECT_FALSE(c.text(3).contains("Sorry"));
    EXPECT_EQ(c.text(2), "Sorry - no Es-spots found !\r\n");
    EXPECT_FALSE(c.state.Busy);

    Evaluate_SpotLines(c.state, c.platform, c.panes, c, {});
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(c.text(i), "Sorry - no Es-spots found !\r\n") << i;
    }
}

TEST(CleanSpotLine, UndoesEntitiesInOrderAndDropsTheDegreeSign) {
    struct Case {
        QString in;
        QString out;
    } cases[] = {
        {"JO62&lt;ES&gt;KP20", "JO62<ES>KP20"},
        {"R&amp;D &quot;x&quot;", "R&D \"x\""},
        {"&amp;lt;", "&lt;"}, // "&lt;" is undone before "&amp;" makes a new one
        {"&lt;&lt;&lt;", "<<<"},
        {QString("55") + QChar(176) + "N", "55N"},
        // "<>" ends the comment: it and the six characters before it blank out.
        {"DL1ABC  50110.0 OH1XYZ ABCDEFGH<> 1712", "DL1ABC  50110.0 OH1XYZ AB         1712"},
        // Near the start there are fewer than six characters to blank; the
        // line keeps its length all the same (found by fuzzing).
        {"ab<>cd", "    cd"},
        {"<>", "  "},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(Clean_SpotLine(c.in), c.out) << c.in.toStdString();
    }
}

} // namespace
