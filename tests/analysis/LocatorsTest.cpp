#include "Locators.h"
#include "AnalysisTestState.h"
#include "QtPrinters.h"
#include "RunTimeError.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace zkr;

namespace {

struct FindCase {
    const char *comment;
    const char *locator1;
    const char *locator2;
    const char *rest; // Comment_Upper afterwards
};

class FindLocators : public ::testing::TestWithParam<FindCase> {};

TEST_P(FindLocators, TakesTwoLocatorsOutOfTheComment) {
    const FindCase &c = GetParam();
    ProgramState s = analysisState();
    s.Spot_Comment = QString::fromLatin1(c.comment);
    Find_Locators(s);
    EXPECT_EQ(s.Locator_1, QString::fromLatin1(c.locator1));
    EXPECT_EQ(s.Locator_2, QString::fromLatin1(c.locator2));
    EXPECT_EQ(s.Comment_Upper, QString::fromLatin1(c.rest));
    EXPECT_EQ(s.Spot_Comment, QString::fromLatin1(c.comment));
}

INSTANTIATE_TEST_SUITE_P(
    Comments, FindLocators,
    ::testing::Values(FindCase{"JO62QM<ES>KP20", "JO62QM", "KP20??", "<ES>"},
                      // A six-character locator is taken first wherever it stands.
                      FindCase{"KP20 JO62QM", "JO62QM", "KP20??", ""},
                      FindCase{"jo62qm es kp20lm tnx", "JO62QM", "KP20LM", "ES  TNX"},
                      FindCase{"JO62QMKP20LM", "JO62QM", "KP20LM", ""},
                      FindCase{"TNX QSO 73", "", "", "TNX QSO 73"}, FindCase{"", "", "", ""},
                      FindCase{"JO62", "JO62??", "", ""},
                      // The search takes Y and Z as subsquare letters; the field stops at R.
                      FindCase{"JO62QZ KP20", "JO62QZ", "KP20??", ""},
                      FindCase{"SO62QM TNX", "", "", "SO62QM TNX"},
                      // No six-character match: the square is taken, the rest stays.
                      FindCase{"JO62Q1", "JO62??", "", "Q1"},
                      // The second search runs on the text left after the first cut.
                      FindCase{"JO6JO62QM2", "JO62QM", "JO62??", ""},
                      FindCase{"CQ JO62QM CQ", "JO62QM", "", "CQ  CQ"},
                      FindCase{"50.110 FN42 FN31PR", "FN31PR", "FN42??", "50.110"}));

TEST(CheckLocator, AcceptsSquaresAndSubsquaresOnly) {
    struct Case {
        const char *locator;
        bool wrong;
    };
    const Case cases[] = {{"JO62QM", false}, {"JO62", false},  {"AA00AA", false}, {"RR99XX", false},
                          {"JO62QZ", true},  {"JO6", true},    {"JO62Q", true},   {"JO62QMA", true},
                          {"jo62qm", true},  {"SO62QM", true}, {"JOA2QM", true},  {"", true}};
    ProgramState s = analysisState();
    for (const Case &c : cases) {
        s.Locator_Wrong = !c.wrong;
        EXPECT_EQ(Check_Locator(s, QString::fromLatin1(c.locator)), c.wrong) << c.locator;
        EXPECT_EQ(s.Locator_Wrong, c.wrong) << c.locator;
    }
}

TEST(LocatorToLatLon, ConvertsToTheSubsquareCentre) {
    struct Case {
        const char *locator;
        const char *rewritten;
        double latitude;
        double longitude;
    };
    // By hand: longitude = (c1 - 65) * 20 - 180 + 2 * c3 + (c5 - 65) / 12 + 1/24,
    // latitude = (c2 - 65) * 10 - 90 + c4 + (c6 - 65) / 24 + 1/48.
    const Case cases[] = {
        // J=9, O=14, Q=16, M=12: 0 + 12 + 16/12 + 1/24 = 13.375; 50 + 2 + 12/24 + 1/48.
        {"JO62QM", "JO62QM", 52.5 + 1.0 / 48, 13.375},
        {"AA00AA", "AA00AA", -90 + 1.0 / 48, -180 + 1.0 / 24},
        {"RR99XX", "RR99XX", 89 + 23.0 / 24 + 1.0 / 48, 178 + 23.0 / 12 + 1.0 / 24},
        // A square alone becomes subsquare LL: 11/12 + 1/24 east, 11/24 + 1/48 north.
        {"KP20??", "KP20LL", 60 + 11.0 / 24 + 1.0 / 48, 20 + 4 + 11.0 / 12 + 1.0 / 24},
        // Subsquares Y and Z from the comment search lie beyond the square.
        {"JO62ZZ", "JO62ZZ", 52 + 25.0 / 24 + 1.0 / 48, 12 + 25.0 / 12 + 1.0 / 24},
    };
    for (const Case &c : cases) {
        QString locator = QString::fromLatin1(c.locator);
        double latitude = 0;
        double longitude = 0;
        Locator_To_LatLon(locator, latitude, longitude);
        EXPECT_EQ(locator, QString::fromLatin1(c.rewritten));
        EXPECT_NEAR(latitude, c.latitude, 1e-12) << c.locator;
        EXPECT_NEAR(longitude, c.longitude, 1e-12) << c.locator;
    }
}

TEST(LocatorToLatLon, RejectsTextsItCannotRead) {
    double latitude = 7;
    double longitude = 7;
    // A four-character locator has no fifth and sixth character to read.
    for (const char *text : {"JO62", "JO62Q", "J??"}) {
        QString locator = QString::fromLatin1(text);
        try {
            Locator_To_LatLon(locator, latitude, longitude);
            ADD_FAILURE() << text << " was converted";
        } catch (const RunTimeError &error) {
            EXPECT_EQ(error.code(), RunTimeError::InvalidArgument) << text;
        }
    }
    // The field letter's code overflows the 16-bit field arithmetic.
    QString locator = QStringLiteral("\u4E00O62QM");
    try {
        Locator_To_LatLon(locator, latitude, longitude);
        ADD_FAILURE() << "converted";
    } catch (const RunTimeError &error) {
        EXPECT_EQ(error.code(), RunTimeError::Overflow);
    }
    EXPECT_EQ(latitude, 7);
    EXPECT_EQ(longitude, 7);
}

TEST(LatLonToLocator, NamesTheSubsquareOfAPosition) {
    struct Case {
        double latitude;
        double longitude;
        const char *locator;
    };
    const Case cases[] = {
        {52.52, 13.375, "JO62QM"},
        {-33.854, 151.208, "QF56OD"},
        {0, 0, "JJ00AA"},
        {-90, -180, "AA00AA"},
        {89.999, 179.999, "RR99XX"},
        {-44.395, -59.398, "GE05HO"},
        // East of the 180th meridian: field S, which no locator has.
        {53.5, 184.5, "SO23GM"},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(LatLon_To_Locator(c.latitude, c.longitude), QString::fromLatin1(c.locator))
            << c.latitude << " " << c.longitude;
    }
}

TEST(LatLonToLocator, RoundTripsEveryFieldAndSquare) {
    const QString letters = QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWX");
    int checked = 0;
    for (int field = 0; field < 18 * 18; ++field) {
        for (int square = 0; square < 100; ++square) {
            for (int sub = 0; sub < 24 * 24; sub += 23) {
                const QString locator = QString(letters[field / 18]) + letters[field % 18] +
                                        QChar(u'0' + square / 10) + QChar(u'0' + square % 10) +
                                        letters[sub / 24] + letters[sub % 24];
                QString copy = locator;
                double latitude = 0;
                double longitude = 0;
                Locator_To_LatLon(copy, latitude, longitude);
                ASSERT_EQ(LatLon_To_Locator(latitude, longitude), locator);
                ++checked;
            }
        }
    }
    EXPECT_EQ(checked, 18 * 18 * 100 * 26);
}

TEST(LatLonToLocator, FaultsInsteadOfBadCharacters) {
    struct Case {
        double latitude;
        double longitude;
        RunTimeError::Code code;
    };
    const Case cases[] = {
        {std::numeric_limits<double>::quiet_NaN(), 0, RunTimeError::Overflow},
        {0, std::numeric_limits<double>::infinity(), RunTimeError::Overflow},
        {0, 1.0e6, RunTimeError::Overflow},
        // 'A' + 209 and 'A' - 91 are beyond the character codes 0-255.
        {2000, 0, RunTimeError::InvalidArgument},
        {0, -2000, RunTimeError::InvalidArgument},
    };
    for (const Case &c : cases) {
        try {
            LatLon_To_Locator(c.latitude, c.longitude);
            ADD_FAILURE() << c.latitude << " " << c.longitude << " gave a locator";
        } catch (const RunTimeError &error) {
            EXPECT_EQ(error.code(), c.code) << c.latitude << " " << c.longitude;
        }
    }
}

} // namespace
