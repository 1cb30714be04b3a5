#include "EsMapView.h"

#include "EsPathModel.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QStandardPaths>
#include <QWheelEvent>

#include <algorithm>
#include <array>
#include <cmath>

namespace zkr {

namespace {

const QColor SeaColour(0xC8, 0xE0, 0xF6);

constexpr double MarkerRadius = 6;
constexpr int MaxSpotsListed = 12;
// Markers get their square written beside them while there are few.
constexpr std::size_t MaxLabelledClouds = 60;

QColor fromRgb(std::uint32_t value, int alpha = 255) {
    QColor colour = QColor::fromRgb(static_cast<QRgb>(value));
    colour.setAlpha(alpha);
    return colour;
}

} // namespace

EsMapView::EsMapView(EsWatch &watch, QWidget *parent)
    : QWidget(parent), watch_(watch), spotList_(new QLabel(this, Qt::ToolTip)) {
    setObjectName(QStringLiteral("EsMapView"));
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMinimumSize(200, 150);
    // Spot lines come from the network: shown as they are, never as markup.
    spotList_->setTextFormat(Qt::PlainText);
    spotList_->setFont(QFont(QStringLiteral("Monospace"), 9));
    spotList_->setMargin(4);
    spotList_->setStyleSheet(
        QStringLiteral("background: #FFFFE0; color: black; border: 1px solid gray;"));
    spotList_->hide();
    connect(&watch_, &EsWatch::cloudsChanged, this, [this] {
        // The clouds may be gone: the list of a marker is asked for again.
        hovered_ = nullptr;
        spotList_->hide();
        update();
    });
}

QString EsMapView::coastlineFile(const QStringList &folders) {
    const QString name = QStringLiteral("coastlines.bin");
    for (const QString &folder : folders) {
        const QString path = QDir(folder).filePath(name);
        if (QFileInfo::exists(path)) {
            return path;
        }
    }
    const QString installed = QStandardPaths::locate(QStandardPaths::GenericDataLocation,
                                                     QStringLiteral("zkr_muf/") + name);
    return installed.isEmpty() ? QDir(folders.value(0)).filePath(name) : installed;
}

void EsMapView::setOwnLocator(const QString &locator) {
    if (locator == ownLocator_ && !coastKm_.empty()) {
        return;
    }
    ownLocator_ = locator;
    projection_ = AzimuthalProjection(locatorCentre(locator).value_or(GeoPoint{}));
    viewport_.reset();
    invalidateBackground();
}

void EsMapView::setCoastlines(const Coastlines &coast) {
    coastKm_.clear();
    coastBounds_.clear();
    // Near the antipode the projection tears: a ring that comes close to it
    // (or holds it) would wind round the whole plane and turn land into sea.
    // Rings reaching beyond 16,000 km are left out; no land lies 4,000 km
    // from every coast, so every ring holding the antipode is among them.
    const double edge = Pi * EarthRadius * 0.8;
    for (const auto &ring : coast.rings) {
        QPolygonF polygon;
        polygon.reserve(static_cast<qsizetype>(ring.size()));
        bool tooFar = false;
        for (const GeoPoint &point : ring) {
            const QPointF km = projection_.project(point);
            tooFar = tooFar || std::hypot(km.x(), km.y()) > edge;
            polygon.append(km);
        }
        if (tooFar) {
            continue;
        }
        coastBounds_.push_back(polygon.boundingRect());
        coastKm_.push_back(std::move(polygon));
    }
    invalidateBackground();
}

void EsMapView::invalidateBackground() {
    backgroundStale_ = true;
    update();
}

QPointF EsMapView::pixelOf(GeoPoint point) const {
    return viewport_.toPixel(projection_.project(point));
}

QPointF EsMapView::markerPixel(const WatchCloud &cloud) const {
    return pixelOf(locatorCentre(cloud.square).value_or(GeoPoint{}));
}

const WatchCloud *EsMapView::cloudAt(QPointF pixel) const {
    const WatchCloud *nearest = nullptr;
    double nearestDistance = MarkerRadius + 3;
    for (const WatchCloud *cloud : watch_.clouds()) {
        const QPointF delta = markerPixel(*cloud) - pixel;
        const double distance = std::hypot(delta.x(), delta.y());
        if (distance <= nearestDistance) {
            nearest = cloud;
            nearestDistance = distance;
        }
    }
    return nearest;
}

void EsMapView::buildBackground() {
    ++backgroundBuilds_;
    const qreal ratio = devicePixelRatioF();
    background_ = QPixmap(size() * ratio);
    background_.setDevicePixelRatio(ratio);
    background_.fill(SeaColour);
    QPainter painter(&background_);
    painter.setRenderHint(QPainter::Antialiasing);

    // Coast: map km to pixels by one transform, land painted where in sight.
    const double s = viewport_.scale();
    const QPointF c = viewport_.centreKm();
    const QTransform toPixels(s, 0, 0, -s, viewport_.pixelWidth() / 2 - c.x() * s,
                              viewport_.pixelHeight() / 2 + c.y() * s);
    const QRectF visible = viewport_.visibleKm();
    painter.setPen(QPen(QColor(0x90, 0x90, 0x80), 0.8));
    painter.setBrush(QColor(0xF4, 0xF1, 0xE4));
    QPainterPath land;
    land.setFillRule(Qt::WindingFill);
    for (std::size_t i = 0; i < coastKm_.size(); ++i) {
        if (coastBounds_[i].intersects(visible)) {
            land.addPolygon(toPixels.map(coastKm_[i]));
            land.closeSubpath();
        }
    }
    painter.drawPath(land);

    // The grid: fields always, squares when they are wide enough to read.
    const auto corners = {visible.topLeft(), visible.topRight(), visible.bottomLeft(),
                          visible.bottomRight(), visible.center()};
    double south = 90, north = -90, west = 180, east = -180;
    for (const QPointF &corner : corners) {
        if (const auto point = projection_.inverse(corner)) {
            south = std::min(south, point->latitude);
            north = std::max(north, point->latitude);
            west = std::min(west, point->longitude);
            east = std::max(east, point->longitude);
        }
    }
    // The corners do not bound the view on a curved grid: widen a little,
    // and take the whole globe for a wide view.
    if (viewport_.widthKm() > 8000 || north < south) {
        south = -90, north = 90, west = -180, east = 180;
    } else {
        south -= 10, north += 10, west -= 20, east += 20;
    }
    const double squarePixels = 2 * 111 * std::cos(projection_.centre().latitude * Deg2Rad) * s;
    const bool squares = squarePixels >= 22;
    painter.setBrush(Qt::NoBrush);
    auto drawGrid = [&](bool ofSquares, const QPen &pen) {
        painter.setPen(pen);
        QPainterPath grid;
        for (const GridLine &line : maidenheadGrid(ofSquares, south, north, west, east)) {
            QPolygonF polyline;
            for (const GeoPoint &point : line.points) {
                polyline.append(pixelOf(point));
            }
            grid.addPolygon(polyline);
        }
        painter.drawPath(grid);
    };
    if (squares) {
        drawGrid(true, QPen(QColor(0xB0, 0xB8, 0xC8), 0.5));
    }
    drawGrid(false, QPen(QColor(0x60, 0x70, 0x90), 1.0));

    QFont small = font();
    small.setPointSizeF(small.pointSizeF() * 0.75);
    const QRectF inSight = rect().adjusted(-20, -20, 20, 20);
    if (squares) {
        painter.setFont(small);
        painter.setPen(QColor(0x80, 0x88, 0xA0));
        for (const GridLabel &label : maidenheadLabels(true, south, north, west, east)) {
            const QPointF at = pixelOf(label.centre);
            if (inSight.contains(at)) {
                painter.drawText(QRectF(at.x() - 30, at.y() - 8, 60, 16), Qt::AlignCenter,
                                 label.text.right(2));
            }
        }
    }
    QFont bold = font();
    bold.setBold(true);
    bold.setPointSizeF(bold.pointSizeF() * 1.4);
    painter.setFont(bold);
    painter.setPen(QColor(0x40, 0x50, 0x80, 0xB0));
    for (const GridLabel &label : maidenheadLabels(false, south, north, west, east)) {
        // Fields are labelled near their south-west corner, out of the way
        // of the squares' labels.
        const QPointF at = pixelOf({label.centre.latitude - 4.5, label.centre.longitude - 8.5});
        if (inSight.contains(at)) {
            painter.drawText(at, label.text);
        }
    }

    // The own station.
    const QPointF own = viewport_.toPixel(QPointF());
    painter.setPen(QPen(Qt::black, 2));
    painter.setBrush(Qt::white);
    painter.drawEllipse(own, 5, 5);
    painter.setFont(font());
    painter.drawText(own + QPointF(8, -8), ownLocator_);
    backgroundStale_ = false;
}

void EsMapView::drawClouds(QPainter &painter) {
    const QDateTime now = watch_.now();
    const std::vector<const WatchCloud *> clouds = watch_.clouds();
    const QPointF own = viewport_.toPixel(QPointF());
    // Every painter call costs a pass of the rasterizer (threads included):
    // clouds are gathered into one path per colour and fade step, so a
    // thousand clouds are a few dozen calls.
    constexpr int FadeSteps = 6;
    struct Bucket {
        QList<QLineF> paths;
        QList<QLineF> farPaths;
        std::vector<QPointF> centres;
    };
    std::array<Bucket, MufClassCount * FadeSteps> buckets;
    auto stepOf = [](double age) {
        return std::clamp(static_cast<int>(age / (EsWatch::CloudKeptSecs / FadeSteps)), 0,
                          FadeSteps - 1);
    };
    for (const WatchCloud *cloud : clouds) {
        if (cloud->spots.empty()) {
            continue;
        }
        const double age = static_cast<double>(cloud->lastSpot.secsTo(now));
        Bucket &bucket =
            buckets[static_cast<std::size_t>(mufClass(cloud->keptMuf()) * FadeSteps + stepOf(age))];
        const QPointF at = markerPixel(*cloud);
        bucket.centres.push_back(at);
        if (cloud->best.ownKm < Distance_Limit) {
            bucket.paths.append(QLineF(own, at));
            if (const auto far = locatorCentre(cloud->best.far)) {
                bucket.farPaths.append(QLineF(at, pixelOf(*far)));
            }
        }
    }
    // Thin opaque paths without antialiasing, faded towards the sea colour
    // rather than made transparent: the raster engine draws translucent
    // lines some twenty times slower, a thousand of them a frame each.
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setBrush(Qt::NoBrush);
    for (std::size_t i = 0; i < buckets.size(); ++i) {
        const double weight = fadeAlpha((static_cast<double>(i % FadeSteps) + 0.5) *
                                        EsWatch::CloudKeptSecs / FadeSteps) *
                              0.75 / 255.0;
        const QColor full = fromRgb(mufClassAt(static_cast<int>(i / FadeSteps)).rgb, 255);
        const auto mix = [weight](int ink, int sea) {
            return static_cast<int>(std::lround(ink * weight + sea * (1 - weight)));
        };
        const QColor colour(mix(full.red(), SeaColour.red()), mix(full.green(), SeaColour.green()),
                            mix(full.blue(), SeaColour.blue()));
        painter.setPen(QPen(colour, 0));
        painter.drawLines(buckets[i].paths);
        painter.setPen(QPen(colour, 0, Qt::DashLine));
        painter.drawLines(buckets[i].farPaths);
    }
    // Markers are stamped from one drawn marker per colour and fade step.
    const qreal ratio = devicePixelRatioF();
    const int side = static_cast<int>(std::ceil((MarkerRadius + 1.5) * 2));
    for (std::size_t i = 0; i < buckets.size(); ++i) {
        if (buckets[i].centres.empty()) {
            continue;
        }
        const int alpha = fadeAlpha((static_cast<double>(i % FadeSteps) + 0.5) *
                                    EsWatch::CloudKeptSecs / FadeSteps);
        QPixmap marker(QSize(side, side) * ratio);
        marker.setDevicePixelRatio(ratio);
        marker.fill(Qt::transparent);
        {
            QPainter stamp(&marker);
            stamp.setRenderHint(QPainter::Antialiasing);
            stamp.setPen(QPen(QColor(0, 0, 0, alpha), 1));
            stamp.setBrush(fromRgb(mufClassAt(static_cast<int>(i / FadeSteps)).rgb, alpha));
            stamp.drawEllipse(QPointF(side / 2.0, side / 2.0), MarkerRadius, MarkerRadius);
        }
        for (const QPointF &at : buckets[i].centres) {
            painter.drawPixmap(at - QPointF(side / 2.0, side / 2.0), marker);
        }
    }
    painter.setRenderHint(QPainter::Antialiasing);
    if (clouds.size() <= MaxLabelledClouds) {
        QFont small = font();
        small.setPointSizeF(small.pointSizeF() * 0.85);
        painter.setFont(small);
        painter.setPen(Qt::black);
        for (const WatchCloud *cloud : clouds) {
            painter.drawText(markerPixel(*cloud) + QPointF(MarkerRadius + 2, 4), cloud->square);
        }
    }
}

void EsMapView::drawLegend(QPainter &painter) {
    const QFontMetrics metrics(font());
    const int row = metrics.height() + 2;
    const QRect box(8, height() - 8 - row * (MufClassCount + 1) - 8,
                    metrics.horizontalAdvance(QStringLiteral("100\u2013144 MHz")) + 40,
                    row * (MufClassCount + 1) + 8);
    painter.setPen(QColor(0x80, 0x80, 0x80));
    painter.setBrush(QColor(255, 255, 255, 220));
    painter.drawRect(box);
    painter.setPen(Qt::black);
    painter.drawText(box.left() + 8, box.top() + 4 + metrics.ascent(), QStringLiteral("Es MUF"));
    for (int i = 0; i < MufClassCount; ++i) {
        const int y = box.top() + 4 + row * (i + 1);
        painter.setBrush(fromRgb(mufClassAt(i).rgb));
        painter.drawEllipse(QPointF(box.left() + 14, y + row / 2.0), 5, 5);
        painter.drawText(box.left() + 26, y + metrics.ascent(),
                         QString::fromUtf8(mufClassAt(i).label) + QStringLiteral(" MHz"));
    }
}

void EsMapView::paintEvent(QPaintEvent *) {
    if (backgroundStale_ || background_.size() != size() * devicePixelRatioF()) {
        buildBackground();
    }
    QPainter painter(this);
    painter.drawPixmap(0, 0, background_);
    painter.setRenderHint(QPainter::Antialiasing);
    drawClouds(painter);
    drawLegend(painter);
}

void EsMapView::resizeEvent(QResizeEvent *event) {
    QWidget::resizeEvent(event);
    viewport_.setPixelSize(width(), height());
    invalidateBackground();
}

void EsMapView::wheelEvent(QWheelEvent *event) {
    const double steps = event->angleDelta().y() / 120.0;
    viewport_.zoomAt(event->position(), std::pow(1.25, steps));
    invalidateBackground();
    event->accept();
}

void EsMapView::mousePressEvent(QMouseEvent *event) {
    if (event->button() == Qt::LeftButton) {
        dragging_ = true;
        dragged_ = false;
        dragFrom_ = event->position().toPoint();
    }
}

void EsMapView::mouseMoveEvent(QMouseEvent *event) {
    const QPoint at = event->position().toPoint();
    if (dragging_) {
        const QPoint delta = at - dragFrom_;
        if (dragged_ || delta.manhattanLength() > 3) {
            dragged_ = true;
            dragFrom_ = at;
            viewport_.panByPixels(delta);
            spotList_->hide();
            invalidateBackground();
        }
        return;
    }
    const WatchCloud *cloud = cloudAt(at);
    if (cloud != hovered_) {
        hovered_ = cloud;
        showSpots(cloud, event->globalPosition().toPoint());
    }
}

void EsMapView::mouseReleaseEvent(QMouseEvent *event) {
    if (event->button() != Qt::LeftButton) {
        return;
    }
    const bool click = dragging_ && !dragged_;
    dragging_ = false;
    if (!click) {
        return;
    }
    const WatchCloud *cloud = cloudAt(event->position());
    if (cloud != nullptr && !cloud->spots.empty()) {
        Q_EMIT spotChosen(cloud->spots.front());
    }
}

void EsMapView::leaveEvent(QEvent *event) {
    QWidget::leaveEvent(event);
    hovered_ = nullptr;
    spotList_->hide();
}

void EsMapView::showSpots(const WatchCloud *cloud, QPoint globalPos) {
    if (cloud == nullptr) {
        spotList_->hide();
        return;
    }
    QStringList lines{EsWatch::describe(cloud, watch_.now())};
    int listed = 0;
    for (const WatchSpot &spot : cloud->spots) {
        if (++listed > MaxSpotsListed) {
            lines.append(QStringLiteral("... %1 more").arg(cloud->spots.size() - MaxSpotsListed));
            break;
        }
        lines.append(spot.printed);
    }
    spotList_->setText(lines.join(QLatin1Char('\n')));
    spotList_->adjustSize();
    spotList_->move(globalPos + QPoint(14, 14));
    spotList_->show();
}

} // namespace zkr
