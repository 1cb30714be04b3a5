// The path geometry against Hamlib's locators and GeographicLib's geodesics.

#include "EsPathModel.h"
#include "SpotEvaluator.h"
#include "SpotWork.h"
#include "TestSpots.h"

#include <GeographicLib/Geodesic.hpp>
#include <hamlib/rig.h>
#include <hamlib/rotator.h>

#include <cmath>
#include <random>

using namespace zkr;

namespace {

// Fields A-R, subsquares A-X: what the own-locator check accepts.
QString randomLocator(std::mt19937_64 &random) {
    QString locator;
    for (const auto &[first, count] :
         {std::pair{'A', 18}, {'A', 18}, {'0', 10}, {'0', 10}, {'A', 24}, {'A', 24}}) {
        locator += QChar(first + std::uniform_int_distribution(0, count - 1)(random));
    }
    return locator;
}

double wrap180(double degrees) {
    return std::remainder(degrees, 360.0);
}

TEST(Reference, LocatorsAgreeWithHamlib) {
    rig_set_debug(RIG_DEBUG_NONE);
    std::mt19937_64 random(20250110);
    std::uniform_real_distribution offEdge(-0.45, 0.45);
    for (int i = 0; i < 5000; ++i) {
        const QString locator = randomLocator(random);
        const QByteArray text = locator.toLatin1();
        auto [lat, lon] = Locator_Position(locator);
        double hamlibLat = 0, hamlibLon = 0;
        ASSERT_EQ(locator2longlat(&hamlibLon, &hamlibLat, text.constData()), RIG_OK);
        ASSERT_NEAR(lat, hamlibLat, 1e-9) << text.constData();
        ASSERT_NEAR(lon, hamlibLon, 1e-9) << text.constData();
        ASSERT_EQ(LatLon_To_Locator(lat, lon), locator); // round trip
        // Anywhere in the subsquare but off its edges, where roundings differ.
        lat += offEdge(random) / 24;
        lon += offEdge(random) / 12;
        char hamlib[16] = {};
        ASSERT_EQ(longlat2locator(lon, lat, hamlib, 3), RIG_OK);
        ASSERT_EQ(LatLon_To_Locator(lat, lon), QString::fromLatin1(hamlib)) << lat << " " << lon;
    }
}

// GeographicLib's geodesics with flattening 0 are exact on the sphere: the whole
// path agrees to rounding, the far point's longitude east of 180 reflected.
TEST(Reference, EsPathsAgreeWithGeographicLib) {
    std::mt19937_64 random(20250110);
    const GeographicLib::Geodesic sphere(EarthRadius, 0);
    int reflected = 0;
    for (int i = 0; i < 3000; ++i) {
        SpotWork w;
        w.spot.locator1 = randomLocator(random);
        w.spot.locator2 = randomLocator(random);
        const AnalysisSettings settings{.ownLocator = randomLocator(random)};
        ASSERT_TRUE(Compute_EsPath(w, settings));
        const std::string what =
            (w.spot.locator1 + ' ' + w.spot.locator2 + ' ' + settings.ownLocator).toStdString();
        const auto &[one, two, own, mid, far] = w.points;
        double length = 0, course1 = 0, course2 = 0;
        sphere.Inverse(one.latitude, one.longitude, two.latitude, two.longitude, length, course1,
                       course2);
        double midLat = 0, midLon = 0, ownDistance = 0, ownCourse = 0, atMid = 0;
        sphere.Direct(one.latitude, one.longitude, course1, length / 2, midLat, midLon);
        sphere.Inverse(own.latitude, own.longitude, mid.latitude, mid.longitude, ownDistance,
                       ownCourse, atMid);
        if (length > Pi * EarthRadius - 1 || ownDistance > Pi * EarthRadius - 1 ||
            ownDistance < 1) {
            continue; // midpoint or course not well defined
        }
        ASSERT_NEAR(w.path.pathKm, length, 1e-6) << what;
        ASSERT_NEAR(mid.latitude, midLat, 1e-8) << what;
        ASSERT_NEAR(wrap180(mid.longitude - midLon), 0, 1e-8) << what;
        ASSERT_EQ(w.path.cloud, LatLon_To_Locator(mid.latitude, mid.longitude)) << what;
        ASSERT_NEAR(w.path.ownKm, ownDistance, 1e-6) << what;
        ASSERT_NEAR(wrap180(w.path.azimuth - ownCourse), 0, 1e-7) << what;
        double farLat = 0, farLon = 0;
        sphere.Direct(own.latitude, own.longitude, w.path.azimuth, 2 * w.path.ownKm, farLat,
                      farLon);
        const double change = wrap180(farLon - own.longitude);
        if (std::fabs(farLat) > 89.99 || std::fabs(std::fabs(change) - 180) < 1e-6) {
            continue;
        }
        double expected = own.longitude + change;
        if (expected > 180) {
            expected = 180 - expected;
            ++reflected;
        }
        expected += expected < -180 ? 360 : 0;
        ASSERT_NEAR(far.latitude, farLat, 1e-8) << what;
        ASSERT_NEAR(far.longitude, expected, 1e-8) << what;
        ASSERT_EQ(w.path.far, LatLon_To_Locator(far.latitude, far.longitude)) << what;
    }
    EXPECT_GT(reflected, 50);
}

} // namespace
