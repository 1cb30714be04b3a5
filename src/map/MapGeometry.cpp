#include "MapGeometry.h"

#include "EsPathModel.h"

#include <QDataStream>
#include <QFile>

#include <algorithm>
#include <array>
#include <cmath>

namespace zkr {

namespace {

constexpr double Radius = EarthRadius;

} // namespace

// --- Projection ---

AzimuthalProjection::AzimuthalProjection(GeoPoint centre)
    : centre_(centre), sinLat0_(std::sin(centre.latitude * Deg2Rad)),
      cosLat0_(std::cos(centre.latitude * Deg2Rad)) {}

QPointF AzimuthalProjection::project(GeoPoint point) const {
    const double lat = point.latitude * Deg2Rad;
    const double dLon = (point.longitude - centre_.longitude) * Deg2Rad;
    const double sinLat = std::sin(lat);
    const double cosLat = std::cos(lat);
    const double cosC =
        std::clamp(sinLat0_ * sinLat + cosLat0_ * cosLat * std::cos(dLon), -1.0, 1.0);
    const double c = std::acos(cosC);
    // c / sin c tends to 1 at the centre; at the antipode every direction
    // is the same point, put at the edge straight south.
    const double sinC = std::sin(c);
    if (sinC < 1e-12) {
        return c < 1 ? QPointF() : QPointF(0, -Pi * Radius);
    }
    const double k = Radius * c / sinC;
    return QPointF(k * cosLat * std::sin(dLon),
                   k * (cosLat0_ * sinLat - sinLat0_ * cosLat * std::cos(dLon)));
}

std::optional<GeoPoint> AzimuthalProjection::inverse(QPointF km) const {
    const double rho = std::hypot(km.x(), km.y());
    const double c = rho / Radius;
    if (c > Pi) {
        return std::nullopt;
    }
    if (rho < 1e-9) {
        return centre_;
    }
    const double sinC = std::sin(c);
    const double cosC = std::cos(c);
    const double lat =
        std::asin(std::clamp(cosC * sinLat0_ + km.y() * sinC * cosLat0_ / rho, -1.0, 1.0));
    double lon = centre_.longitude * Deg2Rad +
                 std::atan2(km.x() * sinC, rho * cosLat0_ * cosC - km.y() * sinLat0_ * sinC);
    lon = std::remainder(lon * Rad2Deg, 360.0);
    return GeoPoint{lat * Rad2Deg, lon};
}

// --- Viewport ---

void MapViewport::setPixelSize(double width, double height) {
    pixelWidth_ = std::max(width, 1.0);
    pixelHeight_ = std::max(height, 1.0);
}

QPointF MapViewport::toPixel(QPointF km) const {
    const double s = scale();
    return QPointF(pixelWidth_ / 2 + (km.x() - centreKm_.x()) * s,
                   pixelHeight_ / 2 - (km.y() - centreKm_.y()) * s);
}

QPointF MapViewport::toKm(QPointF pixel) const {
    const double s = scale();
    return QPointF(centreKm_.x() + (pixel.x() - pixelWidth_ / 2) / s,
                   centreKm_.y() - (pixel.y() - pixelHeight_ / 2) / s);
}

QRectF MapViewport::visibleKm() const {
    const double heightKm = widthKm_ * pixelHeight_ / pixelWidth_;
    return QRectF(centreKm_.x() - widthKm_ / 2, centreKm_.y() - heightKm / 2, widthKm_, heightKm);
}

void MapViewport::panByPixels(QPointF pixels) {
    const double s = scale();
    centreKm_ -= QPointF(pixels.x() / s, -pixels.y() / s);
}

void MapViewport::zoomAt(QPointF pixel, double factor) {
    if (!(factor > 0)) {
        return;
    }
    const QPointF anchor = toKm(pixel);
    widthKm_ = std::clamp(widthKm_ / factor, MinWidthKm, MaxWidthKm);
    // Put the anchor back under the pixel.
    const QPointF moved = toKm(pixel);
    centreKm_ += anchor - moved;
}

void MapViewport::reset() {
    widthKm_ = DefaultWidthKm;
    centreKm_ = QPointF();
}

void MapViewport::fit(const QRectF &km) {
    const double aspect = pixelWidth_ / pixelHeight_;
    widthKm_ = std::clamp(std::max(km.width(), km.height() * aspect), MinWidthKm, MaxWidthKm);
    centreKm_ = km.center();
}

// --- Labels ---

std::vector<QRectF> placeLabels(const std::vector<LabelRequest> &labels, double gap,
                                const std::vector<QRectF> &obstacles) {
    std::vector<QRectF> placed;
    placed.reserve(labels.size());
    const auto free = [&](const QRectF &rect) {
        const auto hits = [&rect](const QRectF &other) { return other.intersects(rect); };
        return std::none_of(placed.begin(), placed.end(), hits) &&
               std::none_of(obstacles.begin(), obstacles.end(), hits);
    };
    for (const LabelRequest &label : labels) {
        const double w = label.size.width();
        const double h = label.size.height();
        const QPointF a = label.anchor;
        const QRectF candidates[] = {
            {a.x() + gap, a.y() - h / 2, w, h},
            {a.x() - gap - w, a.y() - h / 2, w, h},
            {a.x() - w / 2, a.y() - gap - h, w, h},
            {a.x() - w / 2, a.y() + gap, w, h},
        };
        const auto *chosen = std::find_if(std::begin(candidates), std::end(candidates), free);
        placed.push_back(chosen != std::end(candidates) ? *chosen : QRectF());
    }
    return placed;
}

// --- Colour scale ---

const MufClass &mufClassAt(int index) {
    static const std::array<MufClass, MufClassCount> classes{{
        {"< 50", 0x3060E0},
        {"50\u201370", 0x20A040},
        {"70\u2013100", 0xE0C000},
        {"100\u2013144", 0xF07010},
        {"\u2265 144", 0xFF00FF},
    }};
    return classes.at(static_cast<std::size_t>(std::clamp(index, 0, MufClassCount - 1)));
}

int mufClass(double mufMhz) {
    const double mhz = std::floor(mufMhz + 0.5);
    if (mhz >= 144) {
        return 4;
    }
    if (mhz >= 100) {
        return 3;
    }
    if (mhz >= 70) {
        return 2;
    }
    if (mhz >= 50) {
        return 1;
    }
    return 0;
}

int fadeAlpha(double ageSecs) {
    constexpr double Full = 255;
    constexpr double Trace = 60;
    constexpr double Span = 30 * 60;
    const double t = std::clamp(ageSecs / Span, 0.0, 1.0);
    return static_cast<int>(std::lround(Full - (Full - Trace) * t));
}

// --- Maidenhead ---

std::optional<GeoPoint> locatorCentre(QStringView locator) {
    if (locator.size() != 4 && locator.size() != 6) {
        return std::nullopt;
    }
    const QString upper = locator.toString().toUpper();
    if (Check_Locator(upper)) {
        return std::nullopt;
    }
    auto code = [&upper](int i) { return upper.at(i).unicode(); };
    double lon = (code(0) - 'A') * 20.0 - 180 + (code(2) - '0') * 2.0;
    double lat = (code(1) - 'A') * 10.0 - 90 + (code(3) - '0') * 1.0;
    if (upper.size() == 6) {
        lon += (code(4) - 'A') / 12.0 + 1 / 24.0;
        lat += (code(5) - 'A') / 24.0 + 1 / 48.0;
    } else {
        lon += 1;
        lat += 0.5;
    }
    return GeoPoint{lat, lon};
}

std::vector<GridLine> maidenheadGrid(bool squares, double south, double north, double west,
                                     double east) {
    const double stepLon = squares ? 2 : 20;
    const double stepLat = squares ? 1 : 10;
    south = std::max(south, -90.0);
    north = std::min(north, 90.0);
    west = std::max(west, -180.0);
    east = std::min(east, 180.0);
    std::vector<GridLine> lines;
    // Half a degree per sample bends a field line smoothly; a square line
    // is short and needs few.
    const double sample = squares ? 0.5 : 1.0;
    for (double lon = std::ceil(west / stepLon) * stepLon; lon <= east; lon += stepLon) {
        GridLine line;
        for (double lat = south; lat < north + sample; lat += sample) {
            line.points.push_back({std::min(lat, north), lon});
        }
        lines.push_back(std::move(line));
    }
    for (double lat = std::ceil(south / stepLat) * stepLat; lat <= north; lat += stepLat) {
        GridLine line;
        for (double lon = west; lon < east + sample; lon += sample) {
            line.points.push_back({lat, std::min(lon, east)});
        }
        lines.push_back(std::move(line));
    }
    return lines;
}

std::vector<GridLabel> maidenheadLabels(bool squares, double south, double north, double west,
                                        double east) {
    const double stepLon = squares ? 2 : 20;
    const double stepLat = squares ? 1 : 10;
    std::vector<GridLabel> labels;
    const double firstLon = std::max(std::floor(west / stepLon) * stepLon, -180.0);
    const double firstLat = std::max(std::floor(south / stepLat) * stepLat, -90.0);
    for (double lon = firstLon; lon < std::min(east, 180.0); lon += stepLon) {
        for (double lat = firstLat; lat < std::min(north, 90.0); lat += stepLat) {
            const int field = static_cast<int>((lon + 180) / 20);
            const int row = static_cast<int>((lat + 90) / 10);
            QString text;
            text += QChar(u'A' + field);
            text += QChar(u'A' + row);
            if (squares) {
                text += QChar(u'0' + static_cast<int>(std::fmod(lon + 180, 20) / 2));
                text += QChar(u'0' + static_cast<int>(std::fmod(lat + 90, 10)));
            }
            labels.push_back({text, {lat + stepLat / 2, lon + stepLon / 2}});
        }
    }
    return labels;
}

// --- Coastlines ---

Coastlines Coastlines::load(const QString &path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    return parse(file.readAll());
}

Coastlines Coastlines::parse(const QByteArray &bytes) {
    QDataStream in(bytes);
    in.setByteOrder(QDataStream::LittleEndian);
    char magic[4] = {};
    if (in.readRawData(magic, 4) != 4 || QByteArray(magic, 4) != "ZKRC") {
        return {};
    }
    quint16 version = 0;
    quint32 ringCount = 0;
    in >> version >> ringCount;
    if (version != 1) {
        return {};
    }
    Coastlines coast;
    for (quint32 r = 0; r < ringCount && in.status() == QDataStream::Ok; ++r) {
        quint32 count = 0;
        in >> count;
        // A count larger than what is left is a broken file, not a reason
        // to reserve gigabytes.
        if (in.status() != QDataStream::Ok || count > static_cast<quint32>(bytes.size()) / 4) {
            return {};
        }
        std::vector<GeoPoint> ring;
        ring.reserve(count);
        for (quint32 i = 0; i < count; ++i) {
            qint16 lon = 0;
            qint16 lat = 0;
            in >> lon >> lat;
            ring.push_back({lat / 100.0, lon / 100.0});
        }
        if (in.status() != QDataStream::Ok) {
            return {};
        }
        coast.rings.push_back(std::move(ring));
    }
    return coast;
}

} // namespace zkr
