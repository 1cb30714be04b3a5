#include "SpotLineParsing.h"
#include "Int16Arithmetic.h"
#include "ProgramState.h"
#include "QtPrinters.h"

#include <gtest/gtest.h>

using namespace zkr;

namespace {

struct Fields {
    const char *spotter;
    float frequency;
    const char *dxCall;
    const char *comment;
    const char *time;
    const char *tail1;
    const char *tail2;
};

void expectFields(const ProgramState &s, const Fields &f) {
    EXPECT_EQ(s.Spot_Spotter, QString::fromLatin1(f.spotter));
    EXPECT_EQ(s.Spot_Frequency, f.frequency);
    EXPECT_EQ(s.Spot_DXCall, QString::fromLatin1(f.dxCall));
    EXPECT_EQ(s.Spot_Comment, QString::fromLatin1(f.comment));
    EXPECT_EQ(s.Spot_Time, QString::fromLatin1(f.time));
    EXPECT_EQ(s.Spot_Tail1, QString::fromLatin1(f.tail1));
    EXPECT_EQ(s.Spot_Tail2, QString::fromLatin1(f.tail2));
}

ProgramState stateFor(const char *runMode) {
    ProgramState s;
    s.RunMode = QString::fromLatin1(runMode);
    Load_ColumnTable(s);
    return s;
}

// A cluster line as DX Spider sends it: frequency right-aligned to column
// 24, DX call at 27, comment at 40, time at 71 (counted with "DX de ").
QString clusterLine(const char *spotter, const char *kilohertz, const char *dxCall,
                    const char *comment, const char *time) {
    const QString frequency = QString::fromLatin1(kilohertz);
    return (QStringLiteral("DX de ") + QString::fromLatin1(spotter) + QLatin1Char(':'))
               .leftJustified(24 - frequency.size(), QLatin1Char(' ')) +
           frequency + QStringLiteral("  ") +
           QString::fromLatin1(dxCall).leftJustified(13, QLatin1Char(' ')) +
           QString::fromLatin1(comment).leftJustified(31, QLatin1Char(' ')) +
           QString::fromLatin1(time) + QLatin1Char('Z');
}

const QString ClusterLine = clusterLine("SP9HWY", "50110.0", "OH1XYZ", "JO90JR<ES>KP20", "1712");
// The comment column ends three characters into the time column, so the
// comment carries the first three digits of the time.
const char *const ClusterComment = "JO90JR<ES>KP20                 171";

struct ClusterCase {
    const char *name;
    QString received;
    Fields expected;
};

class ClusterColumns : public ::testing::TestWithParam<ClusterCase> {};

TEST_P(ClusterColumns, CutsPreparedLineIntoFields) {
    for (const char *mode : {"TELNETCLUSTER", "FILE", "telnetcluster"}) {
        ProgramState s = stateFor(mode);
        s.Spot_Line = Prepare_ClusterLine(GetParam().received);
        Extract_SpotFields(s);
        SCOPED_TRACE(mode);
        expectFields(s, GetParam().expected);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Table, ClusterColumns,
    ::testing::Values(
        ClusterCase{
            "plain", ClusterLine, {"SP9HWY:", 50.11f, "OH1XYZ", ClusterComment, "1712", "", ""}},
        ClusterCase{"crlf",
                    ClusterLine + QStringLiteral("\r\n"),
                    {"SP9HWY:", 50.11f, "OH1XYZ", ClusterComment, "1712", "", ""}},
        // Cut to 75 characters before the prefix goes: the time column is
        // still inside, the tail fields are empty.
        ClusterCase{"long_line",
                    ClusterLine + QString(125, QLatin1Char('X')),
                    {"SP9HWY:", 50.11f, "OH1XYZ", ClusterComment, "1712", "", ""}},
        // Without the prefix the same columns apply to the raw text.
        ClusterCase{"no_prefix",
                    QStringLiteral("To ALL de DL1ABC: good Es opening on 6m now"),
                    {"To ALL de", 0.0f, "good Es open", "g on 6m now", "", "", ""}},
        // Frequency with leading blanks, kept to float precision.
        ClusterCase{"microwave",
                    clusterLine("DL1ABC", "1296012.5", "DL0XYZ", "JO62QM JO31", "0930"),
                    {"DL1ABC:", 1296.0125f, "DL0XYZ", "JO62QM JO31                    093", "0930",
                     "", ""}},
        // The frequency column reaches into the DX call column: a call that
        // starts with a digit right after the two blanks adds to the number.
        ClusterCase{"overlap",
                    clusterLine("DL1ABC", "14074.0", "9A1A", "FT8", "0815"),
                    {"DL1ABC:", static_cast<float>(14074.09 / 1000.0), "9A1A",
                     "FT8                            081", "0815", "", ""}}),
    [](const auto &caseInfo) { return std::string(caseInfo.param.name); });

TEST(WebColumns, CutsAWebLineWithTailFields) {
    ProgramState s = stateFor("WEBCLUSTER");
    // spotter 1-11, frequency 13-22, DX call 24-35, comment 37-70, time 72-75,
    // tails 77-78 and 80-84.
    s.Spot_Line = QStringLiteral("%1 %2 %3 %4 %5 %6 %7")
                      .arg(QStringLiteral("DL1ABC"), -11)
                      .arg(QStringLiteral("50110.0"), 10)
                      .arg(QStringLiteral("OH1XYZ"), -12)
                      .arg(QStringLiteral("JO62QM KP20 es"), -34)
                      .arg(QStringLiteral("1712"), 4)
                      .arg(QStringLiteral("OH"), 2)
                      .arg(QStringLiteral("Finla"), 5);
    Extract_SpotFields(s);
    expectFields(s, {"DL1ABC", 50.11f, "OH1XYZ", "JO62QM KP20 es", "1712", "OH", "Finla"});
}

TEST(UnknownRunMode, LeavesTableAtZeroAndEveryFieldEmpty) {
    ProgramState s = stateFor("PIGEON");
    EXPECT_EQ(s.Column_Count, 0);
    s.Spot_Line = Prepare_ClusterLine(ClusterLine);
    Extract_SpotFields(s);
    expectFields(s, {"", 0.0f, "", "", "", "", ""});
}

TEST(UnknownRunMode, KeepsAnEarlierTable) {
    ProgramState s = stateFor("WEBCLUSTER");
    s.RunMode = QStringLiteral("PIGEON");
    Load_ColumnTable(s);
    EXPECT_EQ(s.SpotLine_Columns, WebColumns);
    EXPECT_EQ(s.Column_Count, 15);
}

TEST(PrepareClusterLine, CutsAtSeventyFiveBeforeRemovingThePrefix) {
    const QString exact = QStringLiteral("DX de ") + QString(69, QLatin1Char('a'));
    ASSERT_EQ(exact.size(), 75);
    EXPECT_EQ(Prepare_ClusterLine(exact).size(), 69);
    EXPECT_EQ(Prepare_ClusterLine(exact + QLatin1Char('b')), QString(69, QLatin1Char('a')));
    // Only a final CR LF is cut; a lone LF stays part of the line.
    EXPECT_EQ(Prepare_ClusterLine(QStringLiteral("abc\n")), QStringLiteral("abc\n"));
    EXPECT_EQ(Prepare_ClusterLine(QStringLiteral("abc\r\n\r\n")), QStringLiteral("abc\r\n"));
    // The prefix is case-sensitive.
    EXPECT_EQ(Prepare_ClusterLine(QStringLiteral("dx de X")), QStringLiteral("dx de X"));
}

QStringList numbered(int count) {
    QStringList list;
    for (int i = 0; i < count; ++i) {
        list.append(QString::number(i));
    }
    return list;
}

TEST(ArrayRemoveAt, MovesTheRestDownAndClearsTheLastPlace) {
    struct Case {
        int index;
        std::optional<int> last;
        bool keepSize;
        QStringList expected;
    };
    const Case cases[] = {
        {1, std::nullopt, true, {"0", "2", "3", "4", ""}},
        {1, 3, true, {"0", "2", "3", "", "4"}},
        {4, std::nullopt, true, {"0", "1", "2", "3", ""}},
        {1, std::nullopt, false, {"0", "2", "3", "4"}},
        {0, 0, false, {"0"}},
    };
    for (const Case &c : cases) {
        QStringList list = numbered(5);
        Array_RemoveAt(list, static_cast<std::int16_t>(c.index), c.last, c.keepSize);
        EXPECT_EQ(list, c.expected) << c.index;
    }
}

TEST(TrimSpotLines, DropsTheOldestLinesAndBoundsTheList) {
    ProgramState s;
    s.MaxSpotLines = 250;
    s.SpotLines = numbered(261); // upper bound 260
    s.SpotLine_Count = 5;
    Trim_SpotLines(s);
    EXPECT_EQ(s.SpotLines.size(), 247); // bounds 0 .. 250 - 4
    EXPECT_EQ(s.SpotLines.at(0), QStringLiteral("0"));
    EXPECT_EQ(s.SpotLines.at(1), QStringLiteral("6")); // lines 1 .. 5 dropped
    EXPECT_EQ(s.SpotLines.at(246), QStringLiteral("251"));
    EXPECT_EQ(s.SpotLine_Count, 246);
    EXPECT_FALSE(s.Busy);
}

TEST(TrimSpotLines, LeavesAListWithinTheLimit) {
    ProgramState s;
    s.MaxSpotLines = 250;
    s.SpotLines = numbered(251);
    s.SpotLine_Count = 3;
    Trim_SpotLines(s);
    EXPECT_EQ(s.SpotLines, numbered(251));
    EXPECT_EQ(s.SpotLine_Count, 3);
}

TEST(TrimSpotLines, EndsWithoutAPositiveCount) {
    // No pass could shrink the list; the call must return, not loop.
    ProgramState s;
    s.MaxSpotLines = 2;
    s.SpotLines = numbered(10);
    s.SpotLine_Count = 0;
    Trim_SpotLines(s);
    EXPECT_EQ(s.SpotLines.size(), 10);
    EXPECT_FALSE(s.Busy);
}

TEST(Int16, OverflowIsAnErrorNotAWrap) {
    EXPECT_EQ(add16(32766, 1), 32767);
    EXPECT_THROW(add16(32767, 1), RunTimeError);
    EXPECT_THROW(add16(-32768, -1), RunTimeError);
    EXPECT_EQ(roundToInt16(2.5), 2);
    EXPECT_THROW(roundToInt16(32767.5), RunTimeError);
    EXPECT_THROW(roundToInt16(std::nan("")), RunTimeError);
}

} // namespace
