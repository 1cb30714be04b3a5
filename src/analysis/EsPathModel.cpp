#include "EsPathModel.h"

#include "Int16Arithmetic.h"
#include "Locators.h"
#include "RunTimeError.h"
#include "SpotEvaluator.h"
#include "SpotWork.h"

#include <algorithm>
#include <cmath>

namespace zkr {

namespace {

constexpr double CosineClamp = 0.99999999999;

[[noreturn, gnu::cold, gnu::noinline]] void fault(RunTimeError::Code code) {
    throw RunTimeError(code);
}

// Division with the faults of the program's arithmetic: x/0 is a division by
// zero, 0/0 and a result beyond the double range are an overflow.
inline double divide(double numerator, double denominator) {
    if (denominator == 0) {
        fault(numerator == 0 ? RunTimeError::Overflow : RunTimeError::DivisionByZero);
    }
    const double quotient = numerator / denominator;
    if (!std::isfinite(quotient)) {
        fault(RunTimeError::Overflow);
    }
    return quotient;
}

// A point with the sine and cosine of its latitude, worked out once: a path
// computation visits each of its five points several times.
struct Point {
    double lat = 0; // degrees
    double lon = 0; // degrees
    double phi = 0; // latitude in radians
    double sinLat = 0;
    double cosLat = 0;
};

Point pointAt(double lat, double lon) {
    const double phi = lat * Deg2Rad;
    return Point{lat, lon, phi, std::sin(phi), std::cos(phi)};
}

// The point a course is taken towards: a latitude of exactly 0 becomes
// 0.000001 degree.
Point courseTarget(const Point &b) {
    return b.lat == 0 ? pointAt(0.000001, b.lon) : b;
}

double centralAngle(const Point &a, const Point &b, double cosDelta) {
    double c = cosDelta * b.cosLat * a.cosLat + a.sinLat * b.sinLat;
    if (c >= CosineClamp) {
        c = CosineClamp;
    }
    if (c <= -CosineClamp) {
        c = -CosineClamp;
    }
    return Pi / 2 - std::atan(divide(c, std::sqrt(1 - c * c)));
}

// Course from a to b (b already through courseTarget) with N = sin(delta)
// and D = tan(b) cos(a) - cos(delta) sin(a). D is written without its
// cancellation, (sin(b - a) + sin(a) cos(b) (1 - cos(delta))) / cos(b), and
// 1 - cos(delta) as sin^2(delta) / (1 + cos(delta)) where that is the
// exact form: taken literally, nearly coinciding points (the hop of a spot
// that names one locator twice) round D to exactly 0 and fault where the
// true D is tiny but not zero, so D is 0 only where the geometry says so.
double course(const Point &a, const Point &b, double sinDelta, double cosDelta) {
    const double versine = cosDelta >= 0 ? sinDelta * sinDelta / (1 + cosDelta) : 1 - cosDelta;
    const double denominator = (std::sin(b.phi - a.phi) + a.sinLat * b.cosLat * versine) / b.cosLat;
    double azimuth = std::atan(divide(sinDelta, denominator));
    if (denominator <= 0) {
        azimuth += Pi;
    }
    if (azimuth < 0 && denominator > 0) {
        azimuth += 2 * Pi;
    }
    return azimuth * Rad2Deg;
}

struct Leg {
    double angle = 0;  // radians
    double course = 0; // degrees
};

double courseBetween(const Point &a, const Point &b) {
    const Point target = courseTarget(b);
    const double delta = (target.lon - a.lon) * Deg2Rad;
    return course(a, target, std::sin(delta), std::cos(delta));
}

// Central angle and course from a to b, sharing the longitude difference.
Leg legBetween(const Point &a, const Point &b) {
    if (b.lat == 0) {
        return Leg{centralAngle(a, b, std::cos((b.lon - a.lon) * Deg2Rad)), courseBetween(a, b)};
    }
    const double delta = (b.lon - a.lon) * Deg2Rad;
    const double sinDelta = std::sin(delta);
    const double cosDelta = std::cos(delta);
    return Leg{centralAngle(a, b, cosDelta), course(a, b, sinDelta, cosDelta)};
}

// Midpoint of the great circle from a to b, degrees.
Point midpoint(const Point &a, const Point &b) {
    const double delta = (b.lon - a.lon) * Deg2Rad;
    const double bx = b.cosLat * std::cos(delta);
    const double by = b.cosLat * std::sin(delta);
    const double x = a.cosLat + bx;
    const double lon = (a.lon * Deg2Rad + Arc_Tangent2(by, x)) * Rad2Deg;
    const double lat = Arc_Tangent2(a.sinLat + b.sinLat, std::sqrt(x * x + by * by)) * Rad2Deg;
    return pointAt(lat, lon);
}

double wrapToHalfTurn(double longitude) {
    if (longitude > 180.0) {
        // Reflected, not shifted by 360: 190 becomes -10.
        longitude = 180.0 - longitude;
    }
    if (longitude < -180.0) {
        longitude += 360.0;
    }
    return longitude;
}

// Cosine squared of an elevation in degrees, the cosine taken as the sine of
// the complementary angle.
double cosineSquared(double elevation) {
    const double cosine = std::sin((90.0 - elevation) * Deg2Rad);
    return cosine * cosine;
}

GeoPoint destination(const Point &start, double azimuth, double distance, double radius) {
    const double bearing = azimuth * Deg2Rad;
    const double delta = divide(distance, radius);
    const double sinDelta = std::sin(delta);
    const double cosDelta = std::cos(delta);
    const double sinPhi2 = std::clamp(
        start.sinLat * cosDelta + start.cosLat * sinDelta * std::cos(bearing), -1.0, 1.0);
    const double lambda =
        std::atan2(std::sin(bearing) * sinDelta * start.cosLat, cosDelta - start.sinLat * sinPhi2);
    return GeoPoint{std::asin(sinPhi2) * Rad2Deg, start.lon + lambda * Rad2Deg};
}

} // namespace

double Great_Circle_Angle(double latA, double latB, double lonA, double lonB) {
    return centralAngle(pointAt(latA, lonA), pointAt(latB, lonB),
                        std::cos((lonB - lonA) * Deg2Rad));
}

double Azimuth(double latA, double latB, double lonA, double lonB) {
    return courseBetween(pointAt(latA, lonA), pointAt(latB, lonB));
}

double Arc_Tangent2(double y, double x) {
    const double ax = std::fabs(x);
    const double ay = std::fabs(y);
    double angle = 0;
    if (ax >= ay) {
        angle = std::atan(divide(ay, ax));
    } else {
        angle = Pi / 2 - std::atan(divide(ax, ay));
    }
    if (x < 0) {
        angle = Pi - angle;
    }
    return y < 0 ? -angle : angle;
}

double Mid_Longitude(double latA, double lonA, double latB, double lonB) {
    return midpoint(pointAt(latA, lonA), pointAt(latB, lonB)).lon;
}

double Mid_Latitude(double latA, double lonA, double latB, double lonB) {
    return midpoint(pointAt(latA, lonA), pointAt(latB, lonB)).lat;
}

double Es_Elevation(double angle, std::int16_t earthRadius, std::int16_t esLayerHeight) {
    const double r = earthRadius;
    const double h = add16(earthRadius, esLayerHeight);
    return std::atan(divide(std::cos(angle) - divide(r, h), std::sin(angle))) * Rad2Deg;
}

GeoPoint Destination_Point(double latitude, double longitude, double azimuth, double distance,
                           double radius) {
    return destination(pointAt(latitude, longitude), azimuth, distance, radius);
}

EsPath Es_Path(GeoPoint first, GeoPoint second, GeoPoint ownPosition, double frequency,
               PathPoints &points) {
    // Equal longitudes are pulled apart so that the courses of the path stay
    // defined.
    if (second.longitude == first.longitude) {
        second.longitude += 0.000001;
    }
    points.one = first;
    points.two = second;
    points.own = ownPosition;
    const Point one = pointAt(first.latitude, first.longitude);
    const Point two = pointAt(second.latitude, second.longitude);
    const Point own = pointAt(ownPosition.latitude, ownPosition.longitude);

    const double radius = EarthRadius;
    EsPath path;

    // The spot path and its midpoint, where the Es cloud is assumed.
    // Courses that no result needs are worked out all the same: where one
    // is undefined, the path fails.
    const Leg spotPath = legBetween(one, two);
    path.pathKm = radius * spotPath.angle;
    courseBetween(two, one);
    const Point mid = midpoint(one, two);
    points.mid = GeoPoint{mid.lat, mid.lon};
    LatLon_To_Locator(mid.lat, mid.lon, path.cloud);

    // One hop of the path: station 1 to the cloud.
    const Leg hop = legBetween(one, mid);
    const double pathElevation = Es_Elevation(hop.angle, EarthRadius, EsLayerHeight);

    // The own station towards the cloud.
    const Leg ownMid = legBetween(own, mid);
    path.ownKm = radius * ownMid.angle;
    path.azimuth = ownMid.course;
    path.elevation = Es_Elevation(ownMid.angle, EarthRadius, EsLayerHeight);

    // Secant law on a curved earth: k = (R / (R + h))^2.
    const double f = frequency;
    const double k = std::pow(1.0 + divide(EsLayerHeight, EarthRadius), -2.0);
    const double vertical = 1 - k * cosineSquared(pathElevation < 0 ? 0.0 : pathElevation);
    path.critical = f * std::sqrt(vertical);
    path.muf = f * std::sqrt(divide(vertical, 1 - k));
    if (std::floor(path.elevation + 0.5) < 0) {
        path.ownMuf = 0;
    } else {
        path.ownMuf = divide(path.critical, std::sqrt(1 - k * cosineSquared(path.elevation)));
    }

    // Where a hop from the own station via the cloud comes down.
    const GeoPoint reached = destination(own, path.azimuth, 2 * path.ownKm, radius);
    points.far = GeoPoint{reached.latitude, wrapToHalfTurn(reached.longitude)};
    LatLon_To_Locator(points.far.latitude, points.far.longitude, path.far);

    // The course from the own station to that point, for its faults.
    courseBetween(own, pointAt(points.far.latitude, points.far.longitude));
    return path;
}

bool Compute_EsPath(SpotWork &work, const AnalysisSettings &settings) {
    // Until the user sets a locator the spots go out without Es results:
    // that is a state the window shows once, not a fault of every spot.
    if (settings.ownLocator.isEmpty()) {
        return false;
    }
    // Without a valid own locator nothing can be computed.
    if (Check_Locator(settings.ownLocator)) {
        work.spot.error = QStringLiteral("Own Locator in ") + settings.settingsFileName +
                          QStringLiteral(" is wrong !");
        return false;
    }
    work.path = Es_Path(Locator_Position(work.spot.locator1), Locator_Position(work.spot.locator2),
                        Locator_Position(settings.ownLocator), work.spot.frequency, work.points);
    work.pathComputed = true;
    return true;
}

} // namespace zkr
