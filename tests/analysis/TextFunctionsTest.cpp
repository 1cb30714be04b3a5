#include "TextFunctions.h"
#include "TestSpots.h"

using namespace zkr;

namespace {

TEST(LeadingNumber, ReadsTheNumberAFrequencyColumnBeginsWith) {
    // Blanks and tabs anywhere are skipped, one decimal point, a sign only
    // first; the first other character stops.
    // clang-format off
    for (const auto &[text, number] : std::initializer_list<std::pair<const char *, double>>{
             {"50110.0", 50110.0}, {"  1296012.5", 1296012.5}, {"14 0\t74.5", 14074.5},
             {"1.2.3", 1.2}, {".5", 0.5}, {"5.", 5}, {"144300DL1ABC", 144300}, {"1e3", 1},
             {"", 0}, {"DL1ABC 144", 0}, {".", 0}, {"-", 0}, {"-12.5", -12.5}, {" +3", 3},
             {"3-4", 3}, {"--3", 0}}) {
        EXPECT_DOUBLE_EQ(leadingNumber(QString::fromLatin1(text)), number) << text;
    }
    // clang-format on
    expectFault([] { leadingNumber(QString(400, '9')); }, RunTimeError::Overflow, "1e400");
    EXPECT_EQ(leadingNumber(QString("0.") + QString(400, '0') + "1"), 0); // too small is 0
}

} // namespace
