#pragma once

#include "Locators.h"

#include <cstdint>
#include <numbers>

namespace zkr {

struct AnalysisSettings;
struct EsPath;
struct SpotWork;

// The angle constants of the path model (4 x arc tangent of 1 is the
// double nearest to pi).
inline constexpr double Pi = std::numbers::pi;
inline constexpr double Deg2Rad = Pi / 180.0;
inline constexpr double Rad2Deg = 180.0 / Pi;

// The model's constants: height of the Es layer and radius of the earth in
// km (round(40007 / 2 pi)), the distance beyond which no course is printed,
// and the frequency from which a MUF is a 2 m opening.
inline constexpr std::int16_t EsLayerHeight = 110, EarthRadius = 6367, Distance_Limit = 1500,
                              MinFrequency_MHz = 144;

// Every function below takes and returns degrees unless it says otherwise.
// A floating-point fault (division by zero, overflow) throws RunTimeError
// instead of producing an infinity or NaN.

// Central angle between a and b in radians. The cosine is clamped to
// +-0.99999999999, so identical points give about 4.5e-6 rather than 0.
double Great_Circle_Angle(double latA, double latB, double lonA, double lonB);

// Initial course from a towards b, clockwise from north, 0 to below 360. A
// latitude of b of exactly 0 is taken as 0.000001. The course's tangent is
// N / D with N = sin(dlon), D = tan(latB) cos(latA) - cos(dlon) sin(latA),
// D evaluated without cancellation. When D is 0 it throws
// RunTimeError(DivisionByZero), or RunTimeError(Overflow) when N is 0 too.
double Azimuth(double latA, double latB, double lonA, double lonB);

// Midpoint of the great circle from a to b. Note the argument order (each
// point's latitude next to its longitude), unlike the two functions above.
double Mid_Longitude(double latA, double lonA, double latB, double lonB);
double Mid_Latitude(double latA, double lonA, double latB, double lonB);

// Four-quadrant arc tangent of y / x in radians, built from the ordinary arc
// tangent of the smaller magnitude over the larger. y = x = 0 throws
// RunTimeError(Overflow).
double Arc_Tangent2(double y, double x);

// Elevation angle (degrees) under which a station sees a reflecting layer at
// height `esLayerHeight` above the point at central angle `angle` (radians),
// on an earth of radius `earthRadius` (both km). Negative when the point is
// below the station's horizon.
double Es_Elevation(double angle, std::int16_t earthRadius, std::int16_t esLayerHeight);

// The point reached from (latitude, longitude) along the initial course
// `azimuth` over `distance` on a sphere of radius `radius` (same unit as the
// distance). The longitude is the start longitude plus a change of -180 to
// 180 degrees; it is not normalised.
GeoPoint Destination_Point(double latitude, double longitude, double azimuth, double distance,
                           double radius);

// The points of a path: both ends (the second one's longitude pulled apart
// from the first one's when they are equal), the own station, the cloud at
// the midpoint, and where a hop from the own station via the cloud comes
// down.
struct PathPoints {
    GeoPoint one, two, own, mid, far;
};

// The Es path between two stations on `frequency` MHz as the own station
// sees it: the midpoint square where the cloud is assumed, the Es critical
// frequency and MUF, the own MUF, course, elevation and distance from the
// own station to the cloud, and where a hop from the own station via the
// cloud comes down. Cluster spots and reception reports alike go through
// here. Throws RunTimeError for a floating-point fault.
EsPath Es_Path(GeoPoint one, GeoPoint two, GeoPoint own, double frequency, PathPoints &points);

// The Es path of the spot's two locators seen from the own locator, into
// the scratch (see Es_Path). Returns false, with the
// spot's error set and nothing computed, when the own locator is wrong.
bool Compute_EsPath(SpotWork &work, const AnalysisSettings &settings);

} // namespace zkr
