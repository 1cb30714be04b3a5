#include "Locators.h"
#include "AnalysisTestState.h"

#include <limits>

using namespace zkr;

namespace {

TEST(FindLocators, CutsTwoLocatorsOutOfTheUpperCasedComment) {
    const struct {
        const char *comment, *locator1, *locator2, *rest;
    } cases[] = {
        {"JO62QM<ES>KP20", "JO62QM", "KP20??", "<ES>"},
        {"KP20 JO62QM", "JO62QM", "KP20??", ""}, // six characters first, wherever
        {"jo62qm es kp20lm tnx", "JO62QM", "KP20LM", "ES  TNX"},
        {"JO62QMKP20LM", "JO62QM", "KP20LM", ""},
        {"TNX QSO 73", "", "", "TNX QSO 73"},
        {"JO62QZ KP20", "JO62QZ", "KP20??", ""}, // any letter as subsquare
        {"SO62QM TNX", "", "", "SO62QM TNX"},    // no field S
        {"JO62Q1", "JO62??", "", "Q1"},
        {"JO6JO62QM2", "JO62QM", "JO62??", ""}, // the cut joins a new square
        {"50.110 FN42 FN31PR", "FN31PR", "FN42??", "50.110"},
    };
    for (const auto &c : cases) {
        ProgramState s = analysisState();
        s.Spot_Comment = QString::fromLatin1(c.comment);
        Find_Locators(s);
        EXPECT_EQ(s.Locator_1, QString::fromLatin1(c.locator1)) << c.comment;
        EXPECT_EQ(s.Locator_2, QString::fromLatin1(c.locator2)) << c.comment;
        EXPECT_EQ(s.Comment_Upper, QString::fromLatin1(c.rest)) << c.comment;
    }
}

TEST(CheckLocator, AcceptsSquaresAndSubsquaresOnly) {
    ProgramState s = analysisState();
    for (const char *good : {"JO62QM", "JO62", "AA00AA", "RR99XX"}) {
        EXPECT_FALSE(Check_Locator(s, QString::fromLatin1(good)) || s.Locator_Wrong) << good;
    }
    for (const char *bad : {"JO62QZ", "JO6", "JO62Q", "JO62QMA", "jo62qm", "SO62QM", "JOA2QM"}) {
        EXPECT_TRUE(Check_Locator(s, QString::fromLatin1(bad)) && s.Locator_Wrong) << bad;
    }
}

TEST(LocatorToLatLon, GivesTheSubsquareCentre) {
    // lon = (c1 - 65) * 20 - 180 + 2 * c3 + (c5 - 65) / 12 + 1/24,
    // lat = (c2 - 65) * 10 - 90 + c4 + (c6 - 65) / 24 + 1/48.
    const struct {
        const char *locator, *rewritten;
        double lat, lon;
    } cases[] = {
        {"JO62QM", "JO62QM", 50 + 2 + 12.0 / 24 + 1.0 / 48, 0 + 12 + 16.0 / 12 + 1.0 / 24},
        {"AA00AA", "AA00AA", -90 + 1.0 / 48, -180 + 1.0 / 24},
        // A square alone is taken at subsquare LL, which the caller sees.
        {"KP20??", "KP20LL", 60 + 0 + 11.0 / 24 + 1.0 / 48, 20 + 4 + 11.0 / 12 + 1.0 / 24},
    };
    for (const auto &c : cases) {
        QString locator = QString::fromLatin1(c.locator);
        double lat = 0, lon = 0;
        Locator_To_LatLon(locator, lat, lon);
        EXPECT_EQ(locator, QString::fromLatin1(c.rewritten));
        EXPECT_NEAR(lat, c.lat, 1e-12) << c.locator;
        EXPECT_NEAR(lon, c.lon, 1e-12) << c.locator;
    }
    // Too short to read six characters; a field code beyond 16 bits.
    for (const QString &bad :
         {QStringLiteral("JO62"), QStringLiteral("J??"), QStringLiteral("\u4E00O62QM")}) {
        QString locator = bad;
        double lat = 7, lon = 7;
        expectFault([&] { Locator_To_LatLon(locator, lat, lon); },
                    bad.size() == 6 ? RunTimeError::Overflow : RunTimeError::InvalidArgument,
                    bad.toStdString());
        EXPECT_EQ(lat + lon, 14);
    }
}

TEST(LatLonToLocator, NamesTheSubsquareOfAPosition) {
    const struct {
        double lat, lon;
        const char *locator;
    } cases[] = {{52.52, 13.375, "JO62QM"},
                 {-33.854, 151.208, "QF56OD"},
                 {0, 0, "JJ00AA"},
                 {-90, -180, "AA00AA"},
                 {89.999, 179.999, "RR99XX"},
                 {53.5, 184.5, "SO23GM"}}; // east of 180: field S
    for (const auto &c : cases) {
        EXPECT_EQ(LatLon_To_Locator(c.lat, c.lon), QString::fromLatin1(c.locator)) << c.locator;
    }
    const double nan = std::numeric_limits<double>::quiet_NaN();
    expectFault([&] { LatLon_To_Locator(nan, 0); }, RunTimeError::Overflow, "NaN");
    expectFault([] { LatLon_To_Locator(0, 1e6); }, RunTimeError::Overflow, "beyond 16 bits");
    // 'A' + 209 and 'A' - 91 are no character codes.
    expectFault([] { LatLon_To_Locator(2000, 0); }, RunTimeError::InvalidArgument, "2000");
    expectFault([] { LatLon_To_Locator(0, -2000); }, RunTimeError::InvalidArgument, "-2000");
}

} // namespace
