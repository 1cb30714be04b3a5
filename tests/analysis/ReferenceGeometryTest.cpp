// The path geometry against Hamlib's locator functions and GeographicLib's
// geodesics on a sphere: code written elsewhere, for other programs.

#include "AnalysisTestState.h"
#include "EsPathModel.h"
#include "Locators.h"
#include "ScriptedPlatform.h"

#include <GeographicLib/Geodesic.hpp>
#include <hamlib/rig.h>
#include <hamlib/rotator.h>

#include <cmath>
#include <random>

using namespace zkr;

namespace {

constexpr double Radius = 6367.0;
// Hamlib reckons 111.2 km per degree of arc: an earth of 6371.17 km.
constexpr double HamlibKmPerDegree = 111.2;

class Reference : public ::testing::Test {
protected:
    void SetUp() override { rig_set_debug(RIG_DEBUG_NONE); }

    // Fields A-R, subsquares A-X: what the own-locator check accepts.
    QString randomLocator() {
        const auto pick = [this](int count) {
            return std::uniform_int_distribution(0, count - 1)(random_);
        };
        const char16_t locator[6] = {char16_t(u'A' + pick(18)), char16_t(u'A' + pick(18)),
                                     char16_t(u'0' + pick(10)), char16_t(u'0' + pick(10)),
                                     char16_t(u'A' + pick(24)), char16_t(u'A' + pick(24))};
        return QString(reinterpret_cast<const QChar *>(locator), 6);
    }
    double uniform(double from, double to) {
        return std::uniform_real_distribution(from, to)(random_);
    }

    std::mt19937_64 random_{20250110};
};

double wrap180(double degrees) {
    return std::remainder(degrees, 360.0);
}

TEST_F(Reference, LocatorsAgreeWithHamlib) {
    for (int i = 0; i < 5000; ++i) {
        QString locator = randomLocator();
        const QByteArray text = locator.toLatin1();
        double lat = 0, lon = 0, hamlibLat = 0, hamlibLon = 0;
        Locator_To_LatLon(locator, lat, lon);
        ASSERT_EQ(locator2longlat(&hamlibLon, &hamlibLat, text.constData()), RIG_OK);
        ASSERT_NEAR(lat, hamlibLat, 1e-9) << text.constData();
        ASSERT_NEAR(lon, hamlibLon, 1e-9) << text.constData();
        ASSERT_EQ(LatLon_To_Locator(lat, lon), locator); // round trip
        // Anywhere in the subsquare but off its edges, where roundings differ.
        lat += uniform(-0.45, 0.45) / 24;
        lon += uniform(-0.45, 0.45) / 12;
        char hamlib[16] = {};
        ASSERT_EQ(longlat2locator(lon, lat, hamlib, 3), RIG_OK);
        ASSERT_EQ(LatLon_To_Locator(lat, lon), QString::fromLatin1(hamlib)) << lat << " " << lon;
    }
}

// Both work on spheres, so the central angles agree to rounding (1e-9 rad,
// 6 mm), and the distances differ by exactly 6367 / 6371.17 = 0.99935 (up
// to 13 km on the longest paths), which is taken out before comparing them
// to 1e-6 km. Hamlib rounds courses to whole degrees, so they agree within
// half a degree: enough to catch a wrong quadrant or branch.
TEST_F(Reference, AnglesAndCoursesAgreeWithHamlib) {
    const double radiusRatio = Radius / (HamlibKmPerDegree * 180.0 / Pi);
    int compared = 0;
    for (int i = 0; i < 4000; ++i) {
        QString a = randomLocator(), b = randomLocator();
        double latA = 0, lonA = 0, latB = 0, lonB = 0, distance = 0, course = 0;
        Locator_To_LatLon(a, latA, lonA);
        Locator_To_LatLon(b, latB, lonB);
        ASSERT_EQ(qrb(lonA, latA, lonB, latB, &distance, &course), RIG_OK);
        if (distance == 0 || distance == 180 * HamlibKmPerDegree) {
            continue; // Hamlib's fixed answers for coinciding and antipodal points
        }
        const std::string pair = (a + QLatin1Char(' ') + b).toStdString();
        const double angle = Great_Circle_Angle(latA, latB, lonA, lonB);
        ASSERT_NEAR(angle, distance / HamlibKmPerDegree * Deg2Rad, 1e-9) << pair;
        ASSERT_NEAR(Radius * angle, distance * radiusRatio, 1e-6) << pair;
        const double ours = Azimuth(latA, latB, lonA, lonB);
        ASSERT_TRUE(ours >= 0 && ours < 360) << pair;
        ASSERT_LE(std::fabs(wrap180(ours - course)), 0.5 + 1e-6) << pair << " " << ours;
        ++compared;
    }
    EXPECT_GT(compared, 3900);
}

// GeographicLib's direct and inverse geodesics with flattening 0 are exact
// on the sphere, so all agree to rounding.
TEST_F(Reference, DestinationsAgreeWithGeographicLib) {
    const GeographicLib::Geodesic sphere(Radius, 0);
    for (int i = 0; i < 5000; ++i) {
        const double lat = uniform(-89, 89), lon = uniform(-180, 180);
        const double course = uniform(0, 360), distance = uniform(0, 2 * Pi * Radius);
        double lat2 = 0, lon2 = 0;
        sphere.Direct(lat, lon, course, distance, lat2, lon2);
        const GeoPoint ours = Destination_Point(lat, lon, course, distance, Radius);
        ASSERT_NEAR(ours.latitude, lat2, 1e-9) << lat << " " << lon << " " << course;
        ASSERT_LE(std::fabs(ours.longitude - lon), 180 + 1e-9); // a change of half a turn at most
        if (std::fabs(lat2) < 89.99) {
            ASSERT_NEAR(wrap180(ours.longitude - lon2), 0, 1e-8);
        }
    }
}

TEST_F(Reference, EsPathsAgreeWithGeographicLib) {
    const GeographicLib::Geodesic sphere(Radius, 0);
    ScriptedPlatform platform;
    int reflected = 0;
    for (int i = 0; i < 3000; ++i) {
        ProgramState s = analysisState();
        s.Locator_1 = randomLocator();
        s.Locator_2 = randomLocator();
        s.OwnLocator = randomLocator();
        Compute_EsPath(s, platform);
        const std::string what =
            (s.Locator_1 + QLatin1Char(' ') + s.Locator_2 + QLatin1Char(' ') + s.OwnLocator)
                .toStdString();
        double length = 0, course1 = 0, course2 = 0;
        sphere.Inverse(s.Spot_Lat1, s.Spot_Lon1, s.Spot_Lat2, s.Spot_Lon2, length, course1,
                       course2);
        double midLat = 0, midLon = 0, ownDistance = 0, ownCourse = 0, atMid = 0;
        sphere.Direct(s.Spot_Lat1, s.Spot_Lon1, course1, length / 2, midLat, midLon);
        sphere.Inverse(s.Own_Lat, s.Own_Lon, s.Mid_Lat, s.Mid_Lon, ownDistance, ownCourse, atMid);
        if (length > Pi * Radius - 1 || ownDistance > Pi * Radius - 1 || ownDistance < 1) {
            continue; // midpoint or course not well defined
        }
        ASSERT_NEAR(s.Path_Distance, length, 1e-6) << what;
        ASSERT_NEAR(s.Mid_Lat, midLat, 1e-8) << what;
        ASSERT_NEAR(wrap180(s.Mid_Lon - midLon), 0, 1e-8) << what;
        ASSERT_NEAR(s.OwnMid_Distance, ownDistance, 1e-6) << what;
        ASSERT_NEAR(wrap180(s.OwnMid_Azimuth - ownCourse), 0, 1e-7) << what;
        // The far point, its longitude east of 180 reflected as 180 - lon.
        double farLat = 0, farLon = 0;
        sphere.Direct(s.Own_Lat, s.Own_Lon, s.OwnMid_Azimuth, 2 * s.OwnMid_Distance, farLat,
                      farLon);
        const double change = wrap180(farLon - s.Own_Lon);
        if (std::fabs(farLat) > 89.99 || std::fabs(std::fabs(change) - 180) < 1e-6) {
            continue;
        }
        double expected = s.Own_Lon + change;
        if (expected > 180) {
            expected = 180 - expected;
            ++reflected;
        }
        expected += expected < -180 ? 360 : 0;
        ASSERT_NEAR(s.Far_Lat, farLat, 1e-8) << what;
        ASSERT_NEAR(s.Far_Lon, expected, 1e-8) << what;
    }
    EXPECT_TRUE(platform.log().isEmpty());
    EXPECT_GT(reflected, 50);
}

} // namespace
