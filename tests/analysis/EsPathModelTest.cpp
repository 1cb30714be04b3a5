#include "EsPathModel.h"
#include "AnalysisTestState.h"
#include "QtPrinters.h"
#include "RunTimeError.h"
#include "ScriptedPlatform.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace zkr;

namespace {

template <typename F> void expectFault(F &&call, RunTimeError::Code code, const char *what) {
    try {
        call();
        ADD_FAILURE() << what << ": no run-time error";
    } catch (const RunTimeError &error) {
        EXPECT_EQ(error.code(), code) << what;
    }
}

TEST(PathConstants, MatchWhatStartUpStores) {
    EXPECT_EQ(Pi, 4.0 * std::atan(1.0));
    EXPECT_EQ(Deg2Rad, Pi / 180.0);
    EXPECT_EQ(Rad2Deg, 180.0 / Pi);
}

TEST(GreatCircleAngle, ClampsTheCosine) {
    struct Case {
        double latA, latB, lonA, lonB, angle;
    };
    // The clamp: pi/2 - atan(c / sqrt(1 - c^2)) with c = 0.99999999999 is
    // acos(c) = 4.472136140e-6 rad (about sqrt(2e-11)), 0.0285 km on 6367 km.
    const double clamped = 4.472136140076799e-06;
    const Case cases[] = {
        {52.52, 52.52, 13.375, 13.375, clamped},
        {0, 0, 0, 90, Pi / 2},
        {0, 90, 0, 0, Pi / 2},
        {0, 0, 0, 180, Pi - clamped},
        {45, -45, 10, 190, Pi - clamped},
        // 60 degrees of longitude on the equator.
        {0, 0, -30, 30, Pi / 3},
    };
    for (const Case &c : cases) {
        EXPECT_NEAR(Great_Circle_Angle(c.latA, c.latB, c.lonA, c.lonB), c.angle, 1e-12)
            << c.latA << " " << c.latB << " " << c.lonA << " " << c.lonB;
    }
    EXPECT_NEAR(6367 * clamped, 0.02847, 1e-5);
}

TEST(Azimuth, CoversEveryQuadrant) {
    struct Case {
        double latA, latB, lonA, lonB, azimuth;
    };
    // Along meridians and the equator the course is exact up to the 1e-6
    // degree that replaces a destination latitude of 0.
    const Case cases[] = {
        {0, 10, 0, 0, 0},   // D > 0, A = 0
        {0, 0, 0, 10, 90},  // D tiny and positive
        {10, 0, 0, 0, 180}, // N = 0, D < 0: + pi
        {0, 0, 10, 0, 270}, // A < 0, D > 0: + 2 pi
    };
    for (const Case &c : cases) {
        EXPECT_NEAR(Azimuth(c.latA, c.latB, c.lonA, c.lonB), c.azimuth, 1e-4)
            << c.latA << " " << c.latB << " " << c.lonA << " " << c.lonB;
    }
    // South-west of (-10, 0): the spherical course
    // atan2(sin(dlon) cos(latB), cos(latA) sin(latB) - sin(latA) cos(latB) cos(dlon))
    // = atan2(-0.1710101, 0.3394221) + 360 = 333.2597946 degrees (by hand).
    EXPECT_NEAR(Azimuth(-10, 10, 0, -10), 333.25979464427286, 1e-9);
    // JO62QM towards KP20LL: 34.0482319 degrees (same formula).
    EXPECT_NEAR(Azimuth(52.520833333333336, 60.479166666666664, 13.375, 24.958333333333336),
                34.048231906934284, 1e-9);
}

TEST(Azimuth, DividingByZeroIsARunTimeError) {
    // Identical points: N = sin(0) = 0 and D = 0.
    expectFault([] { Azimuth(30, 30, 10, 10); }, RunTimeError::Overflow, "0/0");
    // On one parallel with a longitude difference so small that its square
    // vanishes: N is not 0, D is.
    expectFault([] { Azimuth(30, 30, 0, 1e-168); }, RunTimeError::DivisionByZero, "x/0");
}

TEST(Azimuth, NearlyCoincidingPointsHaveACourse) {
    // Half of the 0.000001 degree that separates two equal locators: the
    // tangent form of D cancels to exactly 0 here at many latitudes.
    for (double latitude = -89.5; latitude < 90; latitude += 0.25) {
        const double course = Azimuth(latitude, latitude, 13.375, 13.375 + 0.0000005);
        EXPECT_TRUE(course >= 0 && course < 360) << latitude;
    }
}

TEST(ArcTangent2, AgreesWithTheLibraryInAllQuadrants) {
    const double points[][2] = {{1, 1},   {1, -1},      {-1, -1},  {-1, 1}, {0, 1},
                                {0, -1},  {1, 0},       {-1, 0},   {3, 4},  {4, 3},
                                {-3, -4}, {1e-300, -1}, {-2, 1e-9}};
    for (const auto &p : points) {
        EXPECT_NEAR(Arc_Tangent2(p[0], p[1]), std::atan2(p[0], p[1]), 1e-15) << p[0] << " " << p[1];
    }
    expectFault([] { Arc_Tangent2(0, 0); }, RunTimeError::Overflow, "0/0");
}

TEST(Midpoint, TakesEachPointsLatitudeNextToItsLongitude) {
    // (50N 10E) to (60N 30E): with Bx = cos60 cos20, By = cos60 sin20, by hand
    // lon = 10 + atan2(By, cos50 + Bx) = 18.7378931, lat = atan2(sin50 + sin60,
    // sqrt((cos50 + Bx)^2 + By^2)) = 55.4045286.
    const double lon = Mid_Longitude(50, 10, 60, 30);
    const double lat = Mid_Latitude(50, 10, 60, 30);
    EXPECT_NEAR(lon, 18.737893068937925, 1e-9);
    EXPECT_NEAR(lat, 55.40452855357341, 1e-9);
    // The midpoint halves the path.
    EXPECT_NEAR(Great_Circle_Angle(50, lat, 10, lon), Great_Circle_Angle(lat, 60, lon, 30), 1e-12);
    EXPECT_NEAR(2 * Great_Circle_Angle(50, lat, 10, lon), Great_Circle_Angle(50, 60, 10, 30),
                1e-12);
    // Across the date line the midpoint longitude is not wrapped.
    EXPECT_NEAR(Mid_Longitude(0, 179, 0, -170), 184.5, 1e-9);
}

TEST(EsElevation, IsZeroWhereTheLayerMeetsTheHorizon) {
    // cos(theta) = R / H = 6367 / 6477 at theta = 0.18456143 rad (1175 km).
    EXPECT_NEAR(Es_Elevation(0.1845614340831989, 6367, 110), 0, 1e-9);
    // A quarter circle away: atan(-6367/6477) = -44.5093132 degrees.
    EXPECT_NEAR(Es_Elevation(Pi / 2, 6367, 110), -44.50931316866517, 1e-9);
    // Straight overhead, almost.
    EXPECT_NEAR(Es_Elevation(1e-9, 6367, 110), 90, 1e-5);
    expectFault([] { Es_Elevation(0, 6367, 110); }, RunTimeError::DivisionByZero, "sin 0");
}

struct PathCase {
    const char *name;
    const char *locator1;
    const char *locator2;
    const char *own;
    float frequency;
    // Expected values, computed by hand from the formulas (a small script of
    // the same steps, using acos and atan2 in place of the arc-tangent forms).
    double midLat, midLon;
    const char *midLocator;
    double pathElevation, esMuf, ownMidDistance, ownMidAzimuth, ownMidElevation, ownMuf;
    double farLat, farLon;
    const char *farLocator;
};

class ComputeEsPath : public ::testing::TestWithParam<PathCase> {};

TEST_P(ComputeEsPath, MatchesTheHandWorkedPath) {
    const PathCase &c = GetParam();
    ProgramState s = analysisState();
    ScriptedPlatform platform;
    s.Locator_1 = QString::fromLatin1(c.locator1);
    s.Locator_2 = QString::fromLatin1(c.locator2);
    s.OwnLocator = QString::fromLatin1(c.own);
    s.Spot_Frequency = c.frequency;
    Compute_EsPath(s, platform);
    EXPECT_TRUE(platform.log().isEmpty());
    EXPECT_NEAR(s.Mid_Lat, c.midLat, 1e-9);
    EXPECT_NEAR(s.Mid_Lon, c.midLon, 1e-9);
    EXPECT_EQ(s.Mid_Locator, QString::fromLatin1(c.midLocator));
    EXPECT_NEAR(s.Path_Elevation, c.pathElevation, 1e-9);
    EXPECT_NEAR(s.Es_MUF, c.esMuf, 1e-9);
    EXPECT_NEAR(s.OwnMid_Distance, c.ownMidDistance, 1e-7);
    EXPECT_NEAR(s.OwnMid_Azimuth, c.ownMidAzimuth, 1e-9);
    EXPECT_NEAR(s.OwnMid_Elevation, c.ownMidElevation, 1e-9);
    EXPECT_NEAR(s.Own_MUF, c.ownMuf, 1e-9);
    EXPECT_NEAR(s.Far_Lat, c.farLat, 1e-9);
    EXPECT_NEAR(s.Far_Lon, c.farLon, 1e-9);
    EXPECT_EQ(s.Far_Locator, QString::fromLatin1(c.farLocator));
    // The "??" completion is written back into the spot's locators.
    EXPECT_FALSE(s.Locator_1.endsWith(QLatin1String("??")));
    EXPECT_FALSE(s.Locator_2.endsWith(QLatin1String("??")));
}

INSTANTIATE_TEST_SUITE_P(
    HandWorked, ComputeEsPath,
    ::testing::Values(
        // 1131 km, own station at the first end. Hop 565.5 km, theta 0.0888218:
        // E = atan((cos theta - 6367/6477) / sin theta) = 8.3635079 degrees;
        // k = (1 + 110/6367)^-2 = 0.9663221; 1 - k cos^2 E = 0.0541220;
        // MUF = 50.15 * sqrt(0.0541220 / 0.0336779) = 63.5748 MHz. From the
        // first end the cloud is seen under the path's own elevation, so the
        // own MUF is the spot frequency, and the far point is the second end.
        PathCase{"OwnAtFirstEnd", "JO62QM", "KP20??", "JO62QM", 50.150f, 56.63332528061953,
                 18.55592794968445, "JO96GP", 8.36350785629095, 63.57481562977738,
                 565.5286269987249, 34.0482319069343, 8.36350785629095, 50.150001525878906,
                 60.479166666666664, 24.958333333333336, "KP20LL"},
        // 107 km: a steep hop (63.6 degrees), 1 - k cos^2 E = 0.8087379, MUF =
        // 50.15 * sqrt(0.8087379 / 0.0336779) = 245.755 MHz.
        PathCase{"ShortHop", "JO62QM", "JO72??", "JO62QM", 50.150f, 52.502641521981424,
                 14.167041834568403, "JO72CM", 63.58364120121313, 245.75493684690753,
                 53.60414433815383, 91.8470208247378, 63.58364120121313, 50.150001525878906,
                 52.47916666666668, 14.95833333333398, "JO72LL"},
        // London to Belgrade seen from Sydney: 16341 km away, elevation
        // -73.4 degrees, so no own MUF. The far point's raw longitude 239.398
        // is reflected to 180 - 239.398 = -59.398.
        PathCase{"BelowTheHorizon", "IO91WM", "KN04??", "QF56OD", 28.885f, 48.482217848675646,
                 11.145214271596025, "JN58NL", 3.1968258249830237, 30.146194151120387,
                 16341.461206627573, 308.51681345291803, -73.38221249250978, 0, -44.395336739150565,
                 -59.398464251998035, "GE05HO"},
        // Near the date line: the hop from RO73AA via the cloud at 178.96 E
        // lands at 183.962 E, reported as 180 - 183.962 = -3.962.
        PathCase{"FarPointPastTheDateLine", "RO83LL", "AO03LL", "RO73AA", 50.110f,
                 53.495862946410774, 178.95833333333331, "RO93LL", 38.914739880887396,
                 175.89940609014633, 331.0058466281659, 78.86056725044213, 16.742550011948232,
                 95.66106457974345, 53.765209022192224, -3.9619667921780035, "IO83AS"}),
    [](const auto &named) { return std::string(named.param.name); });

TEST(ComputeEsPathEdges, AWrongOwnLocatorIsReportedAndChangesNothing) {
    for (const char *own : {"JO62QZ", "jo62qm", "JO6", ""}) {
        ProgramState s = analysisState();
        ScriptedPlatform platform;
        s.OwnLocator = QString::fromLatin1(own);
        s.Locator_1 = QStringLiteral("JO62QM");
        s.Locator_2 = QStringLiteral("KP20??");
        s.Es_MUF = 12.5;
        s.Far_Locator = QStringLiteral("AA00AA");
        Compute_EsPath(s, platform);
        EXPECT_EQ(platform.log(),
                  QStringList({QStringLiteral("beep 800 200"), QStringLiteral("arm centre"),
                               QStringLiteral("msgbox 0 \"ZKR_MUF\" \"Own Locator in zkr_muf.ini "
                                              "is wrong !\" -> 1")}))
            << own;
        EXPECT_TRUE(s.Locator_Wrong);
        EXPECT_EQ(s.Es_MUF, 12.5);
        EXPECT_EQ(s.Far_Locator, QStringLiteral("AA00AA"));
        EXPECT_EQ(s.Locator_2, QStringLiteral("KP20??"));
    }
}

TEST(ComputeEsPathEdges, AFourCharacterOwnLocatorCannotBeConverted) {
    ProgramState s = analysisState();
    ScriptedPlatform platform;
    s.OwnLocator = QStringLiteral("JO62");
    s.Locator_1 = QStringLiteral("JO62QM");
    s.Locator_2 = QStringLiteral("KP20??");
    expectFault([&] { Compute_EsPath(s, platform); }, RunTimeError::InvalidArgument, "JO62");
    EXPECT_TRUE(platform.log().isEmpty());
}

TEST(ComputeEsPathEdges, ASpotNamingOneLocatorTwiceIsComputed) {
    // One locator per degree of latitude, from pole to pole.
    for (char16_t field = u'A'; field <= u'R'; ++field) {
        for (char16_t square = u'0'; square <= u'9'; ++square) {
            ProgramState s = analysisState();
            ScriptedPlatform platform;
            s.Locator_1 = QStringLiteral("J") + QChar(field) + QLatin1Char('5') + QChar(square) +
                          QStringLiteral("LL");
            s.Locator_2 = s.Locator_1;
            s.Spot_Frequency = 50.1f;
            Compute_EsPath(s, platform);
            // The clamp: 4.47e-6 rad, 0.0285 km.
            EXPECT_NEAR(s.Path_Angle, 4.472136140076799e-06, 1e-15) << s.Locator_1.toStdString();
            EXPECT_NEAR(s.Path_Distance, 0.02847409, 1e-7);
        }
    }
}

TEST(ComputeEsPathEdges, EqualLongitudesArePulledApart) {
    ProgramState s = analysisState();
    ScriptedPlatform platform;
    s.Locator_1 = QStringLiteral("JO62QM");
    s.Locator_2 = QStringLiteral("JO65QM");
    s.Spot_Frequency = 50.2f;
    Compute_EsPath(s, platform);
    EXPECT_EQ(s.Spot_Lon1, 13.375);
    EXPECT_EQ(s.Spot_Lon2, 13.375 + 0.000001);
    // Due north, three degrees of latitude.
    EXPECT_NEAR(s.Path_Azimuth12, 0, 1e-4);
    EXPECT_NEAR(s.Path_Azimuth21, 180, 1e-4);
    EXPECT_NEAR(s.Path_Distance, 6367 * 3 * Deg2Rad, 1e-6);
}

} // namespace
