#include "TextFunctions.h"
#include "QtPrinters.h"
#include "RunTimeError.h"

#include <gtest/gtest.h>

using namespace zkr;

namespace {

struct NumberCase {
    const char *text;
    double expected;
};

class LeadingNumber : public ::testing::TestWithParam<NumberCase> {};

TEST_P(LeadingNumber, ReadsTheLeadingNumber) {
    const NumberCase &c = GetParam();
    EXPECT_DOUBLE_EQ(leadingNumber(QString::fromLatin1(c.text)), c.expected) << c.text;
}

INSTANTIATE_TEST_SUITE_P(
    Table, LeadingNumber,
    ::testing::Values(NumberCase{"50110.0", 50110.0}, NumberCase{"  1296012.5", 1296012.5},
                      // blanks and tabs anywhere are skipped, also between digits
                      NumberCase{"14 0\t74.5", 14074.5}, NumberCase{"\t7", 7},
                      // one decimal point; the second one stops the reading
                      NumberCase{"1.2.3", 1.2}, NumberCase{".5", 0.5}, NumberCase{"5.", 5},
                      // the first other character stops the reading
                      NumberCase{"144300DL1ABC", 144300}, NumberCase{"2.0 beta", 2},
                      NumberCase{"1.30", 1.3}, NumberCase{"1e3", 1},
                      // no leading number gives 0
                      NumberCase{"", 0}, NumberCase{"   ", 0}, NumberCase{"DL1ABC 144", 0},
                      NumberCase{".", 0}, NumberCase{"-", 0},
                      // a sign counts only before the first digit
                      NumberCase{"-12.5", -12.5}, NumberCase{" +3", 3}, NumberCase{"3-4", 3},
                      NumberCase{"--3", 0}));

TEST(LeadingNumber, NumberBeyondADoubleIsAnOverflow) {
    const QString huge = QString(400, QLatin1Char('9'));
    try {
        leadingNumber(huge);
        FAIL() << "no error raised";
    } catch (const RunTimeError &error) {
        EXPECT_EQ(error.code(), RunTimeError::Overflow);
    }
}

TEST(Mid, NeverFailsAndCountsFromOne) {
    const QString text = QStringLiteral("ABCDEF");
    struct Case {
        int start;
        int length;
        const char *expected;
    } cases[] = {
        {1, 3, "ABC"}, {4, 10, "DEF"}, {6, 1, "F"}, {7, 1, ""},  {100, 5, ""},
        {0, 3, ""},    {-2, 3, ""},    {2, 0, ""},  {2, -1, ""},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(mid(text, c.start, c.length), QString::fromLatin1(c.expected))
            << c.start << "," << c.length;
    }
    EXPECT_EQ(mid(text, 3), QStringLiteral("CDEF"));
    EXPECT_EQ(mid(text, 7), QString());
}

TEST(InStr, FindsFromAOneBasedStart) {
    const QString text = QStringLiteral("DX de DX de");
    EXPECT_EQ(inStr(text, u"DX de"), 1);
    EXPECT_EQ(inStr(text, u"DX de", 2), 7);
    EXPECT_EQ(inStr(text, u"dx de"), 0); // case-sensitive
    EXPECT_EQ(inStr(text, u"x", 100), 0);
    EXPECT_EQ(inStr(text, u"x", 0), 0);
}

TEST(TrimBlanks, RemovesSpacesOnlyAtBothEnds) {
    EXPECT_EQ(trimBlanks(u"  DL1ABC  "), QStringLiteral("DL1ABC"));
    EXPECT_EQ(trimBlanks(u"\tDL1ABC "), QStringLiteral("\tDL1ABC"));
    EXPECT_EQ(trimBlanks(u"a b"), QStringLiteral("a b"));
    EXPECT_EQ(trimBlanks(u"    "), QString());
}

TEST(RoundHalfEven, RoundsTiesToEven) {
    EXPECT_EQ(roundHalfEven(0.5), 0);
    EXPECT_EQ(roundHalfEven(1.5), 2);
    EXPECT_EQ(roundHalfEven(2.5), 2);
    EXPECT_EQ(roundHalfEven(-1.5), -2);
    EXPECT_EQ(roundHalfEven(2.6), 3);
}

} // namespace
