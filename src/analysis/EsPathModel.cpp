#include "EsPathModel.h"

#include "Int16Arithmetic.h"
#include "Locators.h"
#include "Platform.h"
#include "ProgramState.h"
#include "RunTimeError.h"

#include <algorithm>
#include <cmath>

namespace zkr {

namespace {

constexpr double CosineClamp = 0.99999999999;

// Division with the faults of the program's arithmetic: x/0 is a division by
// zero, 0/0 and a result beyond the double range are an overflow.
double divide(double numerator, double denominator) {
    if (denominator == 0) {
        throw RunTimeError(numerator == 0 ? RunTimeError::Overflow : RunTimeError::DivisionByZero);
    }
    const double quotient = numerator / denominator;
    if (!std::isfinite(quotient)) {
        throw RunTimeError(RunTimeError::Overflow);
    }
    return quotient;
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

} // namespace

double Great_Circle_Angle(double latA, double latB, double lonA, double lonB) {
    const double a = latA * Deg2Rad;
    const double b = latB * Deg2Rad;
    double c = std::cos((lonB - lonA) * Deg2Rad) * std::cos(b) * std::cos(a) +
               std::sin(a) * std::sin(b);
    if (c >= CosineClamp) {
        c = CosineClamp;
    }
    if (c <= -CosineClamp) {
        c = -CosineClamp;
    }
    return Pi / 2 - std::atan(divide(c, std::sqrt(1 - c * c)));
}

double Azimuth(double latA, double latB, double lonA, double lonB) {
    if (latB == 0) {
        latB = 0.000001;
    }
    const double a = latA * Deg2Rad;
    const double b = latB * Deg2Rad;
    const double delta = (lonB - lonA) * Deg2Rad;
    const double numerator = std::sin(delta);
    const double denominator = std::tan(b) * std::cos(a) - std::cos(delta) * std::sin(a);
    double azimuth = std::atan(divide(numerator, denominator));
    if (denominator <= 0) {
        azimuth += Pi;
    }
    if (azimuth < 0 && denominator > 0) {
        azimuth += 2 * Pi;
    }
    return azimuth * Rad2Deg;
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
    const double a = latA * Deg2Rad;
    const double b = latB * Deg2Rad;
    const double delta = (lonB - lonA) * Deg2Rad;
    const double bx = std::cos(b) * std::cos(delta);
    const double by = std::cos(b) * std::sin(delta);
    return (lonA * Deg2Rad + Arc_Tangent2(by, std::cos(a) + bx)) * Rad2Deg;
}

double Mid_Latitude(double latA, double lonA, double latB, double lonB) {
    const double a = latA * Deg2Rad;
    const double b = latB * Deg2Rad;
    const double delta = (lonB - lonA) * Deg2Rad;
    const double bx = std::cos(b) * std::cos(delta);
    const double by = std::cos(b) * std::sin(delta);
    const double x = std::cos(a) + bx;
    return Arc_Tangent2(std::sin(a) + std::sin(b), std::sqrt(x * x + by * by)) * Rad2Deg;
}

double Es_Elevation(double angle, std::int16_t earthRadius, std::int16_t esLayerHeight) {
    const double r = earthRadius;
    const double h = add16(earthRadius, esLayerHeight);
    return std::atan(divide(std::cos(angle) - divide(r, h), std::sin(angle))) * Rad2Deg;
}

GeoPoint Destination_Point(double latitude, double longitude, double azimuth, double distance,
                           double radius) {
    const double phi = latitude * Deg2Rad;
    const double course = azimuth * Deg2Rad;
    const double delta = divide(distance, radius);
    const double sinPhi = std::sin(phi);
    const double cosPhi = std::cos(phi);
    const double sinDelta = std::sin(delta);
    const double cosDelta = std::cos(delta);
    const double sinPhi2 =
        std::clamp(sinPhi * cosDelta + cosPhi * sinDelta * std::cos(course), -1.0, 1.0);
    const double lambda =
        std::atan2(std::sin(course) * sinDelta * cosPhi, cosDelta - sinPhi * sinPhi2);
    return GeoPoint{std::asin(sinPhi2) * Rad2Deg, longitude + lambda * Rad2Deg};
}

void Compute_EsPath(ProgramState &s, Platform &platform) {
    // 1. Without a valid own locator nothing can be computed.
    if (Check_Locator(s, s.OwnLocator)) {
        platform.beep(800, 200);
        platform.armBoxPlacement(std::nullopt);
        platform.messageBox(QStringLiteral("Own Locator in ") + s.IniFileName +
                                QStringLiteral(" is wrong !"),
                            MsgButtons::OkOnly, QStringLiteral("ZKR_MUF"));
        return;
    }

    // 2-4. Positions; equal longitudes are pulled apart so that the courses
    // of the path stay defined.
    Locator_To_LatLon(s.Locator_1, s.Spot_Lat1, s.Spot_Lon1);
    Locator_To_LatLon(s.Locator_2, s.Spot_Lat2, s.Spot_Lon2);
    if (s.Spot_Lon2 == s.Spot_Lon1) {
        s.Spot_Lon2 += 0.000001;
    }
    Locator_To_LatLon(s.OwnLocator, s.Own_Lat, s.Own_Lon);

    const double radius = s.EarthRadius;

    // 5-7. The spot path and its midpoint, where the Es cloud is assumed.
    s.Path_Angle = Great_Circle_Angle(s.Spot_Lat1, s.Spot_Lat2, s.Spot_Lon1, s.Spot_Lon2);
    s.Path_Distance = radius * s.Path_Angle;
    s.Path_Azimuth12 = Azimuth(s.Spot_Lat1, s.Spot_Lat2, s.Spot_Lon1, s.Spot_Lon2);
    s.Path_Azimuth21 = Azimuth(s.Spot_Lat2, s.Spot_Lat1, s.Spot_Lon2, s.Spot_Lon1);
    s.Mid_Lon = Mid_Longitude(s.Spot_Lat1, s.Spot_Lon1, s.Spot_Lat2, s.Spot_Lon2);
    s.Mid_Lat = Mid_Latitude(s.Spot_Lat1, s.Spot_Lon1, s.Spot_Lat2, s.Spot_Lon2);
    s.Mid_Locator = LatLon_To_Locator(s.Mid_Lat, s.Mid_Lon);

    // 8. One hop of the spot path: station 1 to the cloud.
    s.Hop_Angle = Great_Circle_Angle(s.Spot_Lat1, s.Mid_Lat, s.Spot_Lon1, s.Mid_Lon);
    s.Hop_Distance = radius * s.Hop_Angle;
    s.Hop_Azimuth = Azimuth(s.Spot_Lat1, s.Mid_Lat, s.Spot_Lon1, s.Mid_Lon);
    s.Path_Elevation = Es_Elevation(s.Hop_Angle, s.EarthRadius, s.EsLayerHeight);

    // 9. The own station towards the cloud.
    s.OwnMid_Angle = Great_Circle_Angle(s.Own_Lat, s.Mid_Lat, s.Own_Lon, s.Mid_Lon);
    s.OwnMid_Distance = radius * s.OwnMid_Angle;
    s.OwnMid_Azimuth = Azimuth(s.Own_Lat, s.Mid_Lat, s.Own_Lon, s.Mid_Lon);
    s.OwnMid_Elevation = Es_Elevation(s.OwnMid_Angle, s.EarthRadius, s.EsLayerHeight);

    // 10. Secant law on a curved earth: k = (R / (R + h))^2.
    const double f = s.Spot_Frequency;
    const double k = std::pow(1.0 + divide(s.EsLayerHeight, s.EarthRadius), -2.0);
    const double pathElevation = s.Path_Elevation < 0 ? 0.0 : s.Path_Elevation;
    const double vertical = 1 - k * cosineSquared(pathElevation);
    s.Es_CriticalFrequency = f * std::sqrt(vertical);
    s.Es_MUF = f * std::sqrt(divide(vertical, 1 - k));
    if (std::floor(s.OwnMid_Elevation + 0.5) < 0) {
        s.Own_MUF = 0;
    } else {
        s.Own_MUF =
            divide(s.Es_CriticalFrequency, std::sqrt(1 - k * cosineSquared(s.OwnMid_Elevation)));
    }

    // 11. A first estimate of the far longitude, superseded at once below.
    s.Far_Lon = wrapToHalfTurn(s.Own_Lon + 2 * (s.Mid_Lon - s.Own_Lon));

    // 12-14. Where a hop from the own station via the cloud comes down.
    const GeoPoint far =
        Destination_Point(s.Own_Lat, s.Own_Lon, s.OwnMid_Azimuth, 2 * s.OwnMid_Distance, radius);
    s.Far_Lat = far.latitude;
    s.Far_Lon = wrapToHalfTurn(far.longitude);
    s.Far_Locator = LatLon_To_Locator(s.Far_Lat, s.Far_Lon);

    // 15.
    s.OwnFar_Angle = Great_Circle_Angle(s.Own_Lat, s.Far_Lat, s.Own_Lon, s.Far_Lon);
    s.OwnFar_Distance = radius * s.OwnFar_Angle;
    s.OwnFar_Azimuth = Azimuth(s.Own_Lat, s.Far_Lat, s.Own_Lon, s.Far_Lon);
    s.OwnFar_Elevation = Es_Elevation(s.OwnFar_Angle / 2, s.EarthRadius, s.EsLayerHeight);
}

} // namespace zkr
