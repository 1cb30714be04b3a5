// The path geometry against Hamlib's locator functions and GeographicLib's
// geodesics on a sphere: code written elsewhere, for other programs.

#include "AnalysisTestState.h"
#include "EsPathModel.h"
#include "Locators.h"
#include "QtPrinters.h"
#include "ScriptedPlatform.h"

#include <GeographicLib/Geodesic.hpp>
#include <hamlib/rig.h>
#include <hamlib/rotator.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>

using namespace zkr;

namespace {

// Hamlib reckons 111.2 km per degree of arc, an earth of 6371.17 km.
constexpr double HamlibKmPerDegree = 111.2;
constexpr double Radius = 6367.0;

class Reference : public ::testing::Test {
protected:
    void SetUp() override { rig_set_debug(RIG_DEBUG_NONE); }

    // A locator of the check's alphabet: fields A-R, subsquares A-X.
    QString randomLocator() {
        std::uniform_int_distribution<int> field(0, 17);
        std::uniform_int_distribution<int> digit(0, 9);
        std::uniform_int_distribution<int> sub(0, 23);
        QString locator;
        locator += QChar(u'A' + field(random_));
        locator += QChar(u'A' + field(random_));
        locator += QChar(u'0' + digit(random_));
        locator += QChar(u'0' + digit(random_));
        locator += QChar(u'A' + sub(random_));
        locator += QChar(u'A' + sub(random_));
        return locator;
    }
    double uniform(double from, double to) {
        return std::uniform_real_distribution<double>(from, to)(random_);
    }

    std::mt19937_64 random_{20250110};
};

double wrap180(double degrees) {
    return std::remainder(degrees, 360.0);
}

TEST_F(Reference, LocatorCentresAgreeWithHamlib) {
    for (int i = 0; i < 5000; ++i) {
        QString locator = randomLocator();
        const QByteArray text = locator.toLatin1();
        double latitude = 0;
        double longitude = 0;
        Locator_To_LatLon(locator, latitude, longitude);
        double hamlibLongitude = 0;
        double hamlibLatitude = 0;
        ASSERT_EQ(locator2longlat(&hamlibLongitude, &hamlibLatitude, text.constData()), RIG_OK);
        ASSERT_NEAR(latitude, hamlibLatitude, 1e-9) << text.constData();
        ASSERT_NEAR(longitude, hamlibLongitude, 1e-9) << text.constData();
    }
}

TEST_F(Reference, LocatorsOfPositionsAgreeWithHamlib) {
    for (int i = 0; i < 5000; ++i) {
        // Anywhere inside a subsquare but not on its edges, where the two
        // roundings may fall either way.
        QString centre = randomLocator();
        double latitude = 0;
        double longitude = 0;
        Locator_To_LatLon(centre, latitude, longitude);
        latitude += uniform(-0.45, 0.45) / 24;
        longitude += uniform(-0.45, 0.45) / 12;
        char hamlib[16] = {};
        ASSERT_EQ(longlat2locator(longitude, latitude, hamlib, 3), RIG_OK);
        ASSERT_EQ(LatLon_To_Locator(latitude, longitude), QString::fromLatin1(hamlib))
            << latitude << " " << longitude;
    }
}

// Central angle and course between random locators. Hamlib works on a
// sphere of 111.2 km per degree (6371.17 km), ours is 6367 km: the angles
// must agree to rounding (1e-9 rad, about 6 mm), and the distances differ by
// exactly the factor 6367 / 6371.17 = 0.99935 (up to 13 km on the longest
// paths), which the distance check takes out before comparing to 1e-6 km.
// Hamlib rounds its course to whole degrees, so courses agree within half a
// degree; that still catches a wrong quadrant or branch.
TEST_F(Reference, AnglesAndCoursesAgreeWithHamlib) {
    const double radiusRatio = Radius / (HamlibKmPerDegree * 180.0 / Pi);
    int compared = 0;
    for (int i = 0; i < 4000; ++i) {
        QString a = randomLocator();
        QString b = randomLocator();
        double latA = 0, lonA = 0, latB = 0, lonB = 0;
        Locator_To_LatLon(a, latA, lonA);
        Locator_To_LatLon(b, latB, lonB);
        double distance = 0;
        double course = 0;
        ASSERT_EQ(qrb(lonA, latA, lonB, latB, &distance, &course), RIG_OK);
        // Hamlib's special answers for coinciding and antipodal points.
        if (distance == 0 || distance == 180 * HamlibKmPerDegree) {
            continue;
        }
        const double angle = Great_Circle_Angle(latA, latB, lonA, lonB);
        const double hamlibAngle = distance / HamlibKmPerDegree * Deg2Rad;
        ASSERT_NEAR(angle, hamlibAngle, 1e-9) << a.toStdString() << " " << b.toStdString();
        ASSERT_NEAR(Radius * angle, distance * radiusRatio, 1e-6);
        const double ours = Azimuth(latA, latB, lonA, lonB);
        ASSERT_GE(ours, 0);
        ASSERT_LT(ours, 360);
        ASSERT_LE(std::fabs(wrap180(ours - course)), 0.5 + 1e-6)
            << a.toStdString() << " " << b.toStdString() << " " << ours << " " << course;
        ++compared;
    }
    EXPECT_GT(compared, 3900);
}

// The closed-form destination against GeographicLib's direct geodesic with
// flattening 0, that is on the same sphere; both are exact, so they agree to
// rounding.
TEST_F(Reference, DestinationsAgreeWithGeographicLib) {
    const GeographicLib::Geodesic sphere(Radius, 0);
    for (int i = 0; i < 5000; ++i) {
        const double latitude = uniform(-89, 89);
        const double longitude = uniform(-180, 180);
        const double course = uniform(0, 360);
        const double distance = uniform(0, 2 * Pi * Radius);
        double lat2 = 0;
        double lon2 = 0;
        sphere.Direct(latitude, longitude, course, distance, lat2, lon2);
        const GeoPoint ours = Destination_Point(latitude, longitude, course, distance, Radius);
        ASSERT_NEAR(ours.latitude, lat2, 1e-9)
            << latitude << " " << longitude << " " << course << " " << distance;
        // The longitude is the start plus a change of at most half a turn.
        ASSERT_LE(std::fabs(ours.longitude - longitude), 180 + 1e-9);
        if (std::fabs(lat2) < 89.99) {
            ASSERT_NEAR(wrap180(ours.longitude - lon2), 0, 1e-8);
        }
    }
}

// Whole path computations between random locators: the midpoint, the own
// station's distance and course to it, and the far point with its
// reflection east of the 180th meridian, all from GeographicLib.
TEST_F(Reference, EsPathsAgreeWithGeographicLib) {
    const GeographicLib::Geodesic sphere(Radius, 0);
    ScriptedPlatform platform;
    int reflected = 0;
    for (int i = 0; i < 3000; ++i) {
        ProgramState s = analysisState();
        s.Locator_1 = randomLocator();
        s.Locator_2 = randomLocator();
        s.OwnLocator = randomLocator();
        s.Spot_Frequency = 50.1f;
        Compute_EsPath(s, platform);
        const std::string what =
            (s.Locator_1 + QLatin1Char(' ') + s.Locator_2 + QLatin1Char(' ') + s.OwnLocator)
                .toStdString();

        double pathLength = 0, course1 = 0, course2 = 0;
        sphere.Inverse(s.Spot_Lat1, s.Spot_Lon1, s.Spot_Lat2, s.Spot_Lon2, pathLength, course1,
                       course2);
        if (pathLength > Pi * Radius - 1) {
            continue; // nearly antipodal: the midpoint is not defined well
        }
        double midLat = 0, midLon = 0;
        sphere.Direct(s.Spot_Lat1, s.Spot_Lon1, course1, pathLength / 2, midLat, midLon);
        ASSERT_NEAR(s.Mid_Lat, midLat, 1e-8) << what;
        ASSERT_NEAR(wrap180(s.Mid_Lon - midLon), 0, 1e-8) << what;
        ASSERT_NEAR(s.Path_Distance, pathLength, 1e-6) << what;

        double ownDistance = 0, ownCourse = 0, atMid = 0;
        sphere.Inverse(s.Own_Lat, s.Own_Lon, s.Mid_Lat, s.Mid_Lon, ownDistance, ownCourse, atMid);
        if (ownDistance > Pi * Radius - 1 || ownDistance < 1) {
            continue;
        }
        ASSERT_NEAR(s.OwnMid_Distance, ownDistance, 1e-6) << what;
        ASSERT_NEAR(wrap180(s.OwnMid_Azimuth - ownCourse), 0, 1e-7) << what;

        double farLat = 0, farLon = 0;
        sphere.Direct(s.Own_Lat, s.Own_Lon, s.OwnMid_Azimuth, 2 * s.OwnMid_Distance, farLat,
                      farLon);
        const double change = wrap180(farLon - s.Own_Lon);
        if (std::fabs(farLat) > 89.99 || std::fabs(std::fabs(change) - 180) < 1e-6) {
            continue;
        }
        double expectedLon = s.Own_Lon + change;
        if (expectedLon > 180) {
            expectedLon = 180 - expectedLon;
            ++reflected;
        }
        if (expectedLon < -180) {
            expectedLon += 360;
        }
        ASSERT_NEAR(s.Far_Lat, farLat, 1e-8) << what;
        ASSERT_NEAR(s.Far_Lon, expectedLon, 1e-8) << what;
    }
    EXPECT_TRUE(platform.log().isEmpty());
    // Enough far points fall east of the 180th meridian to test the reflection.
    EXPECT_GT(reflected, 50);
}

} // namespace
