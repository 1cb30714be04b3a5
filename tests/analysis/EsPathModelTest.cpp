#include "EsPathModel.h"
#include "AnalysisTestState.h"
#include "ScriptedPlatform.h"

#include <cmath>

using namespace zkr;

namespace {

// acos(0.99999999999), the clamped angle of identical points: 0.0285 km.
constexpr double Clamped = 4.472136140076799e-06;

TEST(PathGeometry, AnglesAndCoursesByHand) {
    const struct {
        double latA, latB, lonA, lonB, angle, course;
    } cases[] = {
        {52.52, 52.52, 13.375, 13.375, Clamped, -1}, // course undefined
        {0, 0, 0, 180, Pi - Clamped, -1},
        {0, 0, -30, 30, Pi / 3, 90}, // latitude 0 is taken as 0.000001
        {0, 10, 0, 0, 10 * Deg2Rad, 0},
        {10, 0, 0, 0, 10 * Deg2Rad, 180}, // D < 0: + pi
        {0, 0, 10, 0, 10 * Deg2Rad, 270}, // A < 0, D > 0: + 2 pi
        // atan2(sin(-10) cos10, cos(-10) sin10 - sin(-10) cos10 cos(-10)) =
        // atan2(-0.1710101, 0.3394221) = -26.7402054 -> 333.2597946.
        {-10, 10, 0, -10, -1, 333.25979464427286},
    };
    for (const auto &c : cases) {
        if (c.angle >= 0) {
            EXPECT_NEAR(Great_Circle_Angle(c.latA, c.latB, c.lonA, c.lonB), c.angle, 1e-12);
        }
        if (c.course >= 0) {
            EXPECT_NEAR(Azimuth(c.latA, c.latB, c.lonA, c.lonB), c.course, 1e-4) << c.course;
        }
    }
    // Identical points: 0/0. Longitudes so close their square vanishes: x/0.
    expectFault([] { Azimuth(30, 30, 10, 10); }, RunTimeError::Overflow, "0/0");
    expectFault([] { Azimuth(30, 30, 0, 1e-168); }, RunTimeError::DivisionByZero, "x/0");
    expectFault([] { Arc_Tangent2(0, 0); }, RunTimeError::Overflow, "atan2(0, 0)");
    expectFault([] { Es_Elevation(0, 6367, 110); }, RunTimeError::DivisionByZero, "sin 0");
}

TEST(PathGeometry, MidpointTakesEachLatitudeNextToItsLongitude) {
    // (50N 10E)-(60N 30E), Bx = cos60 cos20, By = cos60 sin20: lon = 10 +
    // atan2(By, cos50 + Bx) = 18.7378931, lat = atan2(sin50 + sin60,
    // sqrt((cos50 + Bx)^2 + By^2)) = 55.4045286.
    EXPECT_NEAR(Mid_Longitude(50, 10, 60, 30), 18.737893068937925, 1e-9);
    EXPECT_NEAR(Mid_Latitude(50, 10, 60, 30), 55.40452855357341, 1e-9);
    EXPECT_NEAR(Mid_Longitude(0, 179, 0, -170), 184.5, 1e-9); // not wrapped
    // cos(theta) = 6367/6477 at 0.18456143 rad: the layer on the horizon.
    EXPECT_NEAR(Es_Elevation(0.1845614340831989, 6367, 110), 0, 1e-9);
}

struct PathCase {
    const char *name, *locator1, *locator2, *own;
    float frequency;
    double midLat, midLon, esMuf, ownMidDistance, ownMidAzimuth, ownMidElevation, ownMuf;
    double farLat, farLon;
    const char *midLocator, *farLocator;
};

// Expected values worked from the formulas with a small script of the same
// steps (acos and atan2 in place of the arc-tangent forms); the
// intermediate numbers are in the comments.
const PathCase Paths[] = {
    // 1131 km, own station at the first end. Hop 565.5 km, theta =
    // 0.0888218: E = atan((cos theta - 6367/6477) / sin theta) = 8.3635079;
    // k = (1 + 110/6367)^-2 = 0.9663221; 1 - k cos^2 E = 0.0541220; MUF =
    // 50.15 * sqrt(0.0541220 / (1 - k)) = 63.5748. The own station sees the
    // cloud under the same elevation, so its MUF is the spot frequency, and
    // the far point is the other end.
    {"OwnAtFirstEnd", "JO62QM", "KP20??", "JO62QM", 50.150f, 56.63332528061953, 18.55592794968445,
     63.57481562977738, 565.5286269987249, 34.0482319069343, 8.36350785629095, 50.150001525878906,
     60.479166666666664, 24.958333333333336, "JO96GP", "KP20LL"},
    // London-Belgrade seen from Sydney, 16341 km: elevation -73.4, no own
    // MUF. The far point's raw longitude 239.398 becomes 180 - 239.398.
    {"BelowTheHorizon", "IO91WM", "KN04??", "QF56OD", 28.885f, 48.482217848675646,
     11.145214271596025, 30.146194151120387, 16341.461206627573, 308.51681345291803,
     -73.38221249250978, 0, -44.395336739150565, -59.398464251998035, "JN58NL", "GE05HO"},
    // By the date line: from RO73AA via the cloud at 178.96 E the hop lands
    // at 183.962 E, reported as 180 - 183.962 = -3.962.
    {"FarPointPastTheDateLine", "RO83LL", "AO03LL", "RO73AA", 50.110f, 53.495862946410774,
     178.95833333333331, 175.89940609014633, 331.0058466281659, 78.86056725044213,
     16.742550011948232, 95.66106457974345, 53.765209022192224, -3.9619667921780035, "RO93LL",
     "IO83AS"},
};

TEST(ComputeEsPath, MatchesTheHandWorkedPaths) {
    for (const PathCase &c : Paths) {
        SCOPED_TRACE(c.name);
        ProgramState s = analysisState();
        ScriptedPlatform platform;
        s.Locator_1 = QString::fromLatin1(c.locator1);
        s.Locator_2 = QString::fromLatin1(c.locator2);
        s.OwnLocator = QString::fromLatin1(c.own);
        s.Spot_Frequency = c.frequency;
        Compute_EsPath(s, platform);
        EXPECT_TRUE(platform.log().isEmpty());
        const double got[] = {s.Mid_Lat,         s.Mid_Lon,        s.Es_MUF,
                              s.OwnMid_Distance, s.OwnMid_Azimuth, s.OwnMid_Elevation,
                              s.Own_MUF,         s.Far_Lat,        s.Far_Lon};
        const double want[] = {c.midLat,         c.midLon,        c.esMuf,
                               c.ownMidDistance, c.ownMidAzimuth, c.ownMidElevation,
                               c.ownMuf,         c.farLat,        c.farLon};
        for (std::size_t i = 0; i < std::size(got); ++i) {
            EXPECT_NEAR(got[i], want[i], 1e-7) << "value " << i;
        }
        EXPECT_EQ(s.Mid_Locator, QString::fromLatin1(c.midLocator));
        EXPECT_EQ(s.Far_Locator, QString::fromLatin1(c.farLocator));
        EXPECT_FALSE(s.Locator_2.endsWith(QLatin1String("??"))); // rewritten to LL
    }
}

TEST(ComputeEsPath, AHopBeyondTheHorizonIsTakenAtElevationZero) {
    // London to Cyprus, 3534 km: the hop's elevation is -4.44 degrees, taken
    // as 0, so 1 - k cos^2 E = 1 - k: the MUF is the spot frequency and the
    // critical frequency f sqrt(1 - k) = 50.15 * 0.1835154 = 9.2033 MHz.
    ProgramState s = analysisState();
    ScriptedPlatform platform;
    s.Locator_1 = QStringLiteral("IO91WM");
    s.Locator_2 = QStringLiteral("KM72??");
    s.Spot_Frequency = 50.150f;
    Compute_EsPath(s, platform);
    EXPECT_NEAR(s.Path_Elevation, -4.439759767253495, 1e-9);
    EXPECT_NEAR(s.Es_MUF, 50.150001525878906, 1e-9);
    EXPECT_NEAR(s.Es_CriticalFrequency, 9.2032992707395, 1e-9);
}

TEST(ComputeEsPath, AWrongOwnLocatorIsReportedAndChangesNothing) {
    for (const char *own : {"JO62QZ", "jo62qm", ""}) {
        ProgramState s = analysisState();
        ScriptedPlatform platform;
        s.OwnLocator = QString::fromLatin1(own);
        s.Locator_1 = QStringLiteral("JO62QM");
        s.Locator_2 = QStringLiteral("KP20??");
        s.Es_MUF = 12.5;
        Compute_EsPath(s, platform);
        EXPECT_EQ(platform.log(),
                  QStringList({QStringLiteral("beep 800 200"), QStringLiteral("arm centre"),
                               QStringLiteral("msgbox 0 \"ZKR_MUF\" \"Own Locator "
                                              "in zkr_muf.ini is wrong !\" -> 1")}));
        EXPECT_EQ(s.Es_MUF, 12.5);
        EXPECT_EQ(s.Locator_2, QStringLiteral("KP20??"));
    }
    // A square alone passes the check but has no subsquare to convert.
    ProgramState s = analysisState();
    ScriptedPlatform platform;
    s.OwnLocator = QStringLiteral("JO62");
    s.Locator_1 = QStringLiteral("JO62QM");
    s.Locator_2 = QStringLiteral("KP20??");
    expectFault([&] { Compute_EsPath(s, platform); }, RunTimeError::InvalidArgument, "JO62");
}

TEST(ComputeEsPath, ASpotNamingOneLocatorTwiceIsComputed) {
    // One latitude per degree, pole to pole. The hop to the midpoint spans
    // 0.0000005 degree of longitude, where the tangent form of the course's
    // denominator cancels to exactly 0 at most latitudes.
    for (char16_t field = u'A'; field <= u'R'; ++field) {
        for (char16_t square = u'0'; square <= u'9'; ++square) {
            ProgramState s = analysisState();
            ScriptedPlatform platform;
            s.Locator_1 = QStringLiteral("J") + QChar(field) + QLatin1Char('5') + QChar(square) +
                          QStringLiteral("LL");
            s.Locator_2 = s.Locator_1;
            Compute_EsPath(s, platform);
            EXPECT_EQ(s.Spot_Lon2, s.Spot_Lon1 + 0.000001);
            EXPECT_NEAR(s.Path_Distance, 6367 * Clamped, 1e-9) << s.Locator_1.toStdString();
        }
    }
}

} // namespace
