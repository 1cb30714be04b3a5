#include "EsPathModel.h"
#include "Reception.h"
#include "SpotEvaluator.h"
#include "SpotWork.h"
#include "TestSpots.h"

using namespace zkr;

namespace {

// acos(0.99999999999), the clamped angle of identical points: 0.0285 km.
constexpr double Clamped = 4.472136140076799e-06;

SpotWork pathWork(const QString &locator1, const QString &locator2, float frequency) {
    SpotWork work;
    work.spot.locator1 = locator1;
    work.spot.locator2 = locator2;
    work.spot.frequency = frequency;
    return work;
}

TEST(PathGeometry, DateLineHorizonAndFaults) {
    EXPECT_NEAR(Mid_Longitude(0, 179, 0, -170), 184.5, 1e-9); // not wrapped
    // cos(theta) = 6367/6477 at 0.18456143 rad: the layer on the horizon.
    EXPECT_NEAR(Es_Elevation(0.1845614340831989, EarthRadius, EsLayerHeight), 0, 1e-9);
    // Identical points: 0/0. Longitudes so close their square vanishes: x/0.
    expectFault([] { Azimuth(30, 30, 10, 10); }, RunTimeError::Overflow, "0/0");
    expectFault([] { Azimuth(30, 30, 0, 1e-168); }, RunTimeError::DivisionByZero, "x/0");
    expectFault([] { Arc_Tangent2(0, 0); }, RunTimeError::Overflow, "atan2(0, 0)");
    expectFault([] { Es_Elevation(0, 6367, 110); }, RunTimeError::DivisionByZero, "sin 0");
}

// Values worked by a script of the same steps with acos and atan2 in place.
TEST(ComputeEsPath, MatchesTheHandWorkedPaths) {
    // clang-format off
    const struct { const char *locator1, *locator2, *own; float frequency; EsPath path; }
    cases[] = {
        // 1131 km, the own station at one end: own MUF = f, the far point the other end.
        {"JO62QM", "KP20??", "JO62QM", 50.150f,
         {"JO96GP", 63.57481562977738, 11.666959850858632, 50.150001525878906, 34.0482319069343,
          8.36350785629095, "KP20LL", 1131.0572539974512, 565.5286269987249}},
        // London-Belgrade seen from Sydney: elevation -73.4, no own MUF. The
        // far point's raw longitude 239.398 becomes 180 - 239.398.
        {"IO91WM", "KN04??", "QF56OD", 28.885f,
         {"JN58NL", 30.146194151120387, 5.5322918884340995, 0, 308.51681345291803,
          -73.38221249250978, "GE05HO", 1743.5875669475356, 16341.461206627573}},
        // 2557 km: the hop below the horizon counts as E = 0, so MUF = f, critical
        // f sqrt(1 - k), k = (1 + 110/6367)^-2; from JO62QM the cloud at -1.12 degrees
        // rounds to -1: no own MUF.
        {"HN88LL", "JO62??", "JO62QM", 50.150f,
         {"IO71CV", 50.150001525878906, 9.2032992707395, 0, 274.5302019245686,
          -1.1199822133858064, "HN88HH", 2556.64708676103, 1306.0586709152697}},
    };
    // clang-format on
    for (const auto &c : cases) {
        SpotWork work = pathWork(c.locator1, c.locator2, c.frequency);
        ASSERT_TRUE(Compute_EsPath(work, AnalysisSettings{.ownLocator = c.own})) << c.locator1;
        const EsPath &got = work.path, &want = c.path;
        EXPECT_EQ(got.cloud + " " + got.far, want.cloud + " " + want.far);
        const double values[][2] = {
            {got.muf, want.muf},         {got.critical, want.critical},   {got.ownMuf, want.ownMuf},
            {got.azimuth, want.azimuth}, {got.elevation, want.elevation}, {got.pathKm, want.pathKm},
            {got.ownKm, want.ownKm}};
        for (std::size_t i = 0; i < std::size(values); ++i) {
            EXPECT_NEAR(values[i][0], values[i][1], 1e-7) << c.locator1 << " value " << i;
        }
    }
}

TEST(ComputeEsPath, ASpotNamingOneLocatorTwiceIsComputed) {
    // One latitude per degree, pole to pole. The hop to the midpoint spans
    // 0.0000005 degree of longitude, where the tangent form of the course's
    // denominator cancels to exactly 0 at most latitudes.
    for (char16_t field = u'A'; field <= u'R'; ++field) {
        for (char16_t square = u'0'; square <= u'9'; ++square) {
            const QString locator = QString("J_5_LL").replace(1, 1, field).replace(3, 1, square);
            SpotWork work = pathWork(locator, locator, 50.15f);
            ASSERT_TRUE(Compute_EsPath(work, AnalysisSettings{.ownLocator = "JO62QM"}));
            EXPECT_EQ(work.points.two.longitude, work.points.one.longitude + 0.000001);
            EXPECT_NEAR(work.path.pathKm, 6367 * Clamped, 1e-9) << locator.toStdString();
        }
    }
}

// A report goes through the path model of the spots: the same ends on the
// same frequency give the same path; without both usable ends there is none.
TEST(EvaluateReception, SharesTheSpotPathAndNeedsBothEnds) {
    SpotWork work = pathWork("JO62QM", "KP20??", 50.150f);
    ASSERT_TRUE(Compute_EsPath(work, AnalysisSettings{.ownLocator = "JN58NL"}));
    // clang-format off
    const struct { const char *tx, *rx, *own; bool computed; } cases[] = {
        {"JO62QM", "KP20", "JN58NL", true},  {"JO62QM", "", "JN58NL", false},
        {"JO62QM", "KP20", "JN58", true},    {"JO62QM", "KP20", "JN58NZ", false},
        {"JO62QZ", "KP20", "JN58NL", false},
    };
    // clang-format on
    for (const auto &c : cases) {
        Reception report;
        report.frequencyMhz = 50.150001525878906; // the spot's float, widened
        report.tx.locator = c.tx;
        report.rx.locator = c.rx;
        EXPECT_EQ(Evaluate_Reception(report, c.own), c.computed) << c.tx << c.rx << c.own;
        ASSERT_EQ(report.es.has_value(), c.computed) << c.tx << c.rx << c.own;
        if (c.computed && QString(c.own) == "JN58NL") {
            EXPECT_EQ(*report.es, work.path) << c.tx << c.rx;
        }
    }
}

} // namespace
