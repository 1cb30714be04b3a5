#include "SpotEvaluator.h"
#include "SpotAnalysis.h"
#include "TestSpots.h"

#include <numeric>

using namespace zkr;

namespace {

// Own locator JO62QM; `filters` holds o (over 144 only), e (Es spots only),
// a (evaluate all).
AnalysisSettings settings(const std::string &filters = "") {
    const auto has = [&](char c) { return filters.find(c) != std::string::npos; };
    return {.ownLocator = "JO62QM",
            .evalAll = has('a'),
            .over144Only = has('o'),
            .esSpotsOnly = has('e')};
}

QString joined(const EvaluatedSpot &spot) {
    return std::accumulate(spot.runs.begin(), spot.runs.end(), QString(),
                           [](const QString &text, const TextRun &run) { return text + run.text; });
}

TEST(EvaluateClusterLine, AnEsSpotBecomesACompleteValue) {
    const SpotEvaluator evaluator(settings());
    const QString input = clusterLine("50150.0", "JO62QM es KP20") + "\r\n";
    const EvaluatedSpot spot = evaluator.evaluateClusterLine(input);
    const QString line = "SP9HWY:    50150.0  OH1XYZ       JO62QM<ES>KP20                 1712Z";
    EXPECT_EQ(spot.line, line);
    ASSERT_TRUE(spot.es.has_value());
    EXPECT_NEAR(spot.es->muf, 63.57481562977738, 1e-9);
    // Nothing reaches 144 MHz and the cloud is above the horizon: only the
    // own square stands out.
    const Runs expected{{line.left(33), K},
                        {"JO62", M},
                        {line.mid(37) + "    MUF= 64MHz@JO96  FOT= 50MHz -> KP20 AZ= 34 EL=  8", K},
                        {"\r\n", K}};
    EXPECT_EQ(spot.runs, expected);
    EXPECT_EQ(spot.panes, 0b1011u);
    evaluator.evaluateClusterLine(clusterLine("144300.0", "jo90jr JN18 eme"));
    EXPECT_EQ(evaluator.evaluateClusterLine(input), spot) << "keeps nothing from spot to spot";
}

TEST(EvaluateClusterLine, FiltersDecideWhatIsPrintedNotWhatIsComputed) {
    // clang-format off
    // printed: "" nothing, "raw" the line, "full" the line and the results.
    const struct { const char *kiloHertz, *comment, *filters; bool computed; const char *printed;
                   unsigned panes; } cases[] = {
        {"50110.0", "JO90JR<ES>KP20", "", true, "full", 0b1011},
        {"143999.9", "JO90JR<ES>KP20", "o", true, "", 0},
        {"144000.0", "JO90JR<ES>KP20", "o", true, "full", 0b1111},
        {"50110.0", "JO90JR<MS>KP20", "", false, "raw", 0b0011},
        {"50110.0", "KP20 ES KP20", "", false, "raw", 0b0011}, // one square: TR
        {"50110.0", "JO90JR ES", "", false, "raw", 0b1011},
        {"50110.0", "JO90JR KP20", "", false, "raw", 0b0011},
        {"50110.0", "JO90JR KP20", "a", true, "full", 0b0011},
        {"50110.0", "JO90JR<MS>KP20", "a", false, "raw", 0b0011},
        {"50110.0", "JO90JR<MS>KP20", "e", false, "", 0},
        {"50110.0", "JO90JR ES", "e", false, "", 0},
        {"50110.0", "JO90JR<ES>KP20", "e", true, "full", 0b1011},
        {"50110.0", "JO90JR KP20", "ea", true, "", 0},
    };
    // clang-format on
    for (const auto &c : cases) {
        const EvaluatedSpot spot = SpotEvaluator(settings(c.filters))
                                       .evaluateClusterLine(clusterLine(c.kiloHertz, c.comment));
        const std::string what = std::string(c.comment) + " " + c.kiloHertz + " " + c.filters;
        EXPECT_EQ(spot.es.has_value(), c.computed) << what;
        const QString printed = joined(spot);
        const bool full = printed.startsWith(spot.line) && printed.count("\r\n") == 1 &&
                          printed.indexOf("MUF=") == spot.line.size() + 4;
        EXPECT_EQ(printed.isEmpty()               ? ""
                  : printed == spot.line + "\r\n" ? "raw"
                  : full                          ? "full"
                                                  : printed,
                  c.printed)
            << what;
        EXPECT_EQ(spot.panes, c.panes) << what;
        EXPECT_EQ(spot.esResultPrinted, full && spot.mode == "ES") << what;
    }
}

TEST(EvaluateClusterLine, FailuresAreReportedInTheValue) {
    const QString esLine = clusterLine("50110.0", "JO90JR<ES>KP20");
    // A frequency too large for the results to print, read from a wide column.
    const QString huge = "X: 99999999999999999999 JO90JR<ES>KP20";
    // clang-format off
    const struct { const char *own; QString line; ColumnTable columns; bool computed;
                   const char *error; Runs runs; unsigned panes; } cases[] = {
        // A wrong own locator: printed as a spot that is not computed.
        {"JO62QZ", esLine, ClusterColumns, false, "Own Locator in zkr_muf.ini is wrong !",
         {{esLine.mid(6), K}, {"\r\n", K}}, 0b1011},
        // Half printed: the line is still ended.
        {"JO62QM", huge, ColumnTable{1, 2, 4, 20, 0, 0, 25, 20}, true,
         "Run-time error '6':\r\n\r\nOverflow", {{huge, K}, {"\r\n", K}}, 0b1001},
        {"JO62QM", QString(45, '9'), ColumnTable{1, 2, 1, 45}, false,
         "Run-time error '6':\r\n\r\nOverflow", {}, 0}, // beyond a float
    };
    // clang-format on
    for (const auto &c : cases) {
        const EvaluatedSpot spot =
            SpotEvaluator({.ownLocator = c.own, .columns = c.columns}).evaluateClusterLine(c.line);
        EXPECT_EQ(spot.error, c.error) << c.own;
        EXPECT_EQ(spot.es.has_value(), c.computed) << c.own;
        EXPECT_EQ(spot.runs, c.runs) << c.own;
        EXPECT_EQ(spot.panes, c.panes) << c.own;
        EXPECT_FALSE(spot.esResultPrinted) << c.own;
    }
}

TEST(PrepareClusterLine, CutsAtSeventyFiveBeforeRemovingThePrefix) {
    const QString exact = "DX de " + QString(69, 'a');
    EXPECT_EQ(Prepare_ClusterLine(exact), QString(69, 'a'));
    EXPECT_EQ(Prepare_ClusterLine(exact + "b"), QString(69, 'a'));
    // Only one final CR LF is cut; the prefix is case-sensitive.
    EXPECT_EQ(Prepare_ClusterLine(u"abc\r\n") + "|" + Prepare_ClusterLine(u"abc\n") + "|" +
                  Prepare_ClusterLine(u"abc\r\n\r\n") + "|" + Prepare_ClusterLine(u"dx de X") +
                  Prepare_ClusterLine(u"DX deX"),
              "abc|abc\n|abc\r\n|dx de XDX deX");
    for (const QByteArray last : {"é", "€", "𝄞"}) { // 75 bytes as UTF-8, never cut inside one
        const QString line = exact.left(75 - last.size()) + QString::fromUtf8(last);
        EXPECT_EQ(Prepare_ClusterLine(line, true), line.mid(6)) << last.constData();
        const QString longer = "DX de a" + line.mid(6);
        EXPECT_EQ(Prepare_ClusterLine(longer, true), longer.mid(6).chopped(last.size() / 2));
    }
}

TEST(PrintRawLine, HighlightsTheFirstOwnSquareInTheLine) {
    // clang-format off
    const struct { const char *line, *locator1, *locator2; Runs printed; } cases[] = {
        {"OH1XYZ KP20LL<TR>KP11", "KP20LL", "KP11??", {{"OH1XYZ KP20LL<TR>KP11", K}}},
        // Found in the upper-cased line, printed as the line has it.
        {"x kp20<TR>jo62qm 73", "KP20??", "JO62QM", {{"x kp20<TR>", K}, {"jo62", M}, {"qm 73", K}}},
        {"JO62AA<TR>JO72", "JO62AA", "JO72??", {{"JO62", M}, {"AA<TR>JO72", K}}},
        {"KP20<TR>JO62A", "KP20??", "JO62??", {{"KP20<TR>", K}, {"JO62", M}, {"A", K}}},
        {"SM0JO62: JO62QM", "JO62QM", "JO72??", {{"SM0", K}, {"JO62", M}, {": JO62QM", K}}},
        {"DL1ABC: OH1XYZ", "JO62QM", "KP20??", {{"DL1ABC: OH1XYZ", K}}},
    };
    // clang-format on
    const AnalysisSettings s{.ownLocator = "jo62qm"}; // compared upper-cased
    for (const auto &c : cases) {
        EvaluatedSpot spot;
        spot.line = c.line;
        spot.locator1 = c.locator1;
        spot.locator2 = c.locator2;
        Print_RawLine(spot, s);
        EXPECT_EQ(spot.runs, c.printed) << c.line;
    }
}

TEST(BracketModeWords, BracketsTheModeWordsOfEsSpotsOnly) {
    // An Es spot's are bracketed as in AnEsSpotBecomesACompleteValue; an MS spot's stay.
    EXPECT_TRUE(SpotEvaluator(settings())
                    .evaluateClusterLine(clusterLine("50110.0", "JO90JR ms KP20 es"))
                    .line.contains(" JO90JR ms KP20 es "));
    for (const auto &[line, bracketed] :
         {std::pair{"A ES B es C Es D eS E", "A<ES>B<ES>C<ES>D eS E"},
          {"x ms y tr z Ms u Tr t eme v TR w SAT q", "x<MS>y<TR>z<MS>u<TR>t<EME>v<TR>w<SAT>q"},
          {" MS TR EME SAT ", "<MS>TR<EME>SAT "}, // a blank goes to the first word
          {" MS ES ", " MS<ES>"},                 // all " ES " first
          {"ESKIMO YES  a Eme b Sat c", "ESKIMO YES  a Eme b Sat c"}}) {
        QString text = line;
        Bracket_ModeWords(text);
        EXPECT_EQ(text, bracketed);
    }
}

TEST(EvaluateWebLine, CleansTheLineAndPrintsItInTheClusterShape) {
    // Spotter, frequency, DX call and comment in columns 1, 13, 24 and 37,
    // the time and the tails at 72, 77 and 80 once the entities are undone.
    const QString head =
        QString("%1 %2 %3 ").arg("DL1ABC", -11).arg("50110.0", 10).arg("OH1XYZ", -12);
    const EvaluatedSpot spot =
        SpotEvaluator({.ownLocator = "JO62QM", .columns = WebColumns})
            .evaluateWebLine("  " + head + QString("JO90JR &lt;ES&gt; KP20").leftJustified(40) +
                             " 1712 OH Finla  ");
    EXPECT_EQ(spot.line, head + QString("JO90JR <ES> KP20").leftJustified(34) + "   1712 OH Finla");
    EXPECT_TRUE(spot.esResultPrinted && joined(spot).startsWith(spot.line + "    MUF="));
}

TEST(CleanSpotLine, UndoesEntitiesInOrderAndDropsTheDegreeSign) {
    // "&lt;" is undone before "&amp;" makes a new one. "<>" ends the comment:
    // it and the six characters before it (if there are) blank out.
    for (const auto &[in, out] :
         {std::pair<QString, QString>{"R&amp;D &quot;x&quot; &lt;ES&gt;", "R&D \"x\" <ES>"},
          {"&amp;lt;", "&lt;"},
          {"55\u00B0N", "55N"},
          {"ab<>cd", "    cd"},
          {"OH1XYZ ABCDEFGH<> 1712", "OH1XYZ AB         1712"}}) {
        EXPECT_EQ(Clean_SpotLine(in), out) << in.toStdString();
    }
}

} // namespace
