#include "TextFunctions.h"
#include "TestSpots.h"

using namespace zkr;

namespace {

TEST(LeadingNumber, ReadsTheNumberAFrequencyColumnBeginsWith) {
    const struct {
        const char *text;
        double number;
    } cases[] = {
        {"50110.0", 50110.0},
        {"  1296012.5", 1296012.5},
        {"14 0\t74.5", 14074.5}, // blanks and tabs anywhere are skipped
        {"1.2.3", 1.2},
        {".5", 0.5},
        {"5.", 5}, // one decimal point
        {"144300DL1ABC", 144300},
        {"1e3", 1}, // the first other character stops
        {"", 0},
        {"DL1ABC 144", 0},
        {".", 0},
        {"-", 0}, // no number
        {"-12.5", -12.5},
        {" +3", 3},
        {"3-4", 3},
        {"--3", 0}, // a sign only first
    };
    for (const auto &c : cases) {
        EXPECT_DOUBLE_EQ(leadingNumber(QString::fromLatin1(c.text)), c.number) << c.text;
    }
    expectFault([] { leadingNumber(QString(400, '9')); }, RunTimeError::Overflow, "1e400");
    EXPECT_EQ(leadingNumber(QString("0.") + QString(400, '0') + "1"), 0); // too small is 0
}

TEST(TextFunctions, PositionsCountFromOneAndNeverFail) {
    const QString text = "ABCDEF";
    const struct {
        int start, length;
        const char *mid;
    } cases[] = {{1, 3, "ABC"}, {4, 10, "DEF"}, {6, 1, "F"}, {7, 1, ""},
                 {0, 3, ""},    {-2, 3, ""},    {2, 0, ""},  {2, -1, ""}};
    for (const auto &c : cases) {
        EXPECT_EQ(mid(text, c.start, c.length), c.mid) << c.start << "," << c.length;
    }
    EXPECT_EQ(mid(text, 3) + "|" + mid(text, 7) + "|" + left(text, 2) + "|" + right(text, 2),
              "CDEF||AB|EF");
    EXPECT_EQ(inStr(u"DX de DX de", u"DX de"), 1);
    EXPECT_EQ(inStr(u"DX de DX de", u"DX de", 2), 7);
    EXPECT_EQ(inStr(u"DX de DX de", u"dx de"), 0); // case-sensitive
    EXPECT_EQ(inStr(u"DX", u"X", 0), 0);
    EXPECT_EQ(trimBlanks(u"  DL1 ABC  ") + "|" + trimBlanks(u"\tDL1ABC ") + "|" + trimBlanks(u"  "),
              "DL1 ABC|\tDL1ABC|");
}

} // namespace
