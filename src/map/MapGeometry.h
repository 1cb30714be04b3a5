#pragma once

#include "Locators.h"

#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QString>
#include <QStringView>

#include <cstdint>
#include <optional>
#include <vector>

namespace zkr {

// Azimuthal equidistant projection centred on the own station: distances
// and courses from the station are true, so every great circle through it
// is a straight line. Map coordinates are km east (x) and north (y) of the
// centre, on the earth of the path model.
class AzimuthalProjection {
public:
    explicit AzimuthalProjection(GeoPoint centre = {});

    GeoPoint centre() const { return centre_; }
    QPointF project(GeoPoint point) const;
    // The point at map coordinates `km`; none beyond the antipode.
    std::optional<GeoPoint> inverse(QPointF km) const;

private:
    GeoPoint centre_;
    double sinLat0_;
    double cosLat0_;
};

// What part of the map plane a widget shows: its centre (map km), its width
// in km, and the widget's size in pixels. Pixel y grows downwards.
class MapViewport {
public:
    static constexpr double DefaultWidthKm = 4000;
    static constexpr double MinWidthKm = 200;
    static constexpr double MaxWidthKm = 40000;

    void setPixelSize(double width, double height);
    double pixelWidth() const { return pixelWidth_; }
    double pixelHeight() const { return pixelHeight_; }
    double widthKm() const { return widthKm_; }
    QPointF centreKm() const { return centreKm_; }
    // Pixels per km.
    double scale() const { return pixelWidth_ / widthKm_; }

    QPointF toPixel(QPointF km) const;
    QPointF toKm(QPointF pixel) const;
    // The map area in sight, km.
    QRectF visibleKm() const;

    // Moves the view by a drag of `pixels`.
    void panByPixels(QPointF pixels);
    // Zooms by `factor` (> 1 zooms in) keeping the map point under `pixel`
    // where it is; the width stays within its limits.
    void zoomAt(QPointF pixel, double factor);
    void reset();
    // Shows all of `km` as large as the pixels allow, centred; the width
    // stays within its limits.
    void fit(const QRectF &km);

private:
    double pixelWidth_ = 1;
    double pixelHeight_ = 1;
    double widthKm_ = DefaultWidthKm;
    QPointF centreKm_;
};

// The MUF colour scale of the map's markers and legend.
struct MufClass {
    const char *label; // "< 50", "50-70", ...
    std::uint32_t rgb; // 0xRRGGBB
};
inline constexpr int MufClassCount = 5;
const MufClass &mufClassAt(int index);
// The class of a MUF in MHz, rounded as printed: < 50, 50-70, 70-100,
// 100-144, >= 144 MHz.
int mufClass(double mufMhz);
// Opacity (0-255) of a marker whose cloud was last spotted `ageSecs` ago:
// full when new, fading to a trace at 30 minutes.
int fadeAlpha(double ageSecs);

// The centre of a 4- or 6-character locator (the true centre, not the
// path model's subsquare LL); none for a malformed one.
std::optional<GeoPoint> locatorCentre(QStringView locator);

// One line of the Maidenhead grid, sampled densely enough to bend with the
// projection, with the label of the area east/north of it.
struct GridLine {
    std::vector<GeoPoint> points;
};
// Meridians and parallels of the fields (every 20 degrees of longitude, 10
// of latitude) or, with `squares`, of the squares (2 and 1 degrees) within
// the given bounds of latitude and longitude.
std::vector<GridLine> maidenheadGrid(bool squares, double south, double north, double west,
                                     double east);
// Labels: the field ("JO") or square ("JO62") with the centre it sits on.
struct GridLabel {
    QString text;
    GeoPoint centre;
};
std::vector<GridLabel> maidenheadLabels(bool squares, double south, double north, double west,
                                        double east);

// Places labels beside their anchors, in the order given (the most
// important first): right of the anchor, else left, above or below, `gap`
// pixels away, where the label overlaps neither a label placed before nor
// an obstacle (the markers). A label without room gets an empty rect.
struct LabelRequest {
    QPointF anchor;
    QSizeF size;
};
std::vector<QRectF> placeLabels(const std::vector<LabelRequest> &labels, double gap,
                                const std::vector<QRectF> &obstacles);

// Land outlines read from the coastline file (see tools/make_coastlines.py):
// rings of points in degrees.
struct Coastlines {
    std::vector<std::vector<GeoPoint>> rings;
    // Reads the file; empty on a missing or malformed file.
    static Coastlines load(const QString &path);
    static Coastlines parse(const QByteArray &bytes);
};

} // namespace zkr
