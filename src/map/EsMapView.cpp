#include "EsMapView.h"

#include "EsPathModel.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QRegion>
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
// Markers get their square and sources written beside them while there are
// few.
constexpr std::size_t MaxLabelledClouds = 60;

QColor fromRgb(std::uint32_t value, int alpha = 255) {
    QColor colour = QColor::fromRgb(static_cast<QRgb>(value));
    colour.setAlpha(alpha);
    return colour;
}

// A cloud's marker: filled with its MUF colour, or hollow for a cloud that
// only approximate paths saw.
void drawMarker(QPainter &painter, QPointF at, std::uint32_t rgb, int alpha, bool hollow) {
    if (hollow) {
        painter.setPen(QPen(fromRgb(rgb, alpha), 2.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawEllipse(at, MarkerRadius - 1, MarkerRadius - 1);
    } else {
        painter.setPen(QPen(QColor(0, 0, 0, alpha), 1));
        painter.setBrush(fromRgb(rgb, alpha));
        painter.drawEllipse(at, MarkerRadius, MarkerRadius);
    }
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
    userMoved_ = false;
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

    drawGridLabels(south, north, west, east, squares);

    // The own station.
    const QPointF own = viewport_.toPixel(QPointF());
    painter.setPen(QPen(Qt::black, 2));
    painter.setBrush(Qt::white);
    painter.drawEllipse(own, 5, 5);
    painter.setFont(font());
    painter.drawText(own + QPointF(8, -8), ownLocator_);
    backgroundStale_ = false;
}

void EsMapView::drawGridLabels(double south, double north, double west, double east, bool squares) {
    const qreal ratio = devicePixelRatioF();
    gridText_ = QPixmap(size() * ratio);
    gridText_.setDevicePixelRatio(ratio);
    gridText_.fill(Qt::transparent);
    gridTextRects_.clear();
    QPainter painter(&gridText_);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF inSight = rect().adjusted(-20, -20, 20, 20);
    if (squares) {
        QFont small = font();
        small.setPointSizeF(small.pointSizeF() * 0.75);
        painter.setFont(small);
        painter.setPen(QColor(0x80, 0x88, 0xA0));
        for (const GridLabel &label : maidenheadLabels(true, south, north, west, east)) {
            const QPointF at = pixelOf(label.centre);
            if (inSight.contains(at)) {
                const QRectF box(at.x() - 30, at.y() - 8, 60, 16);
                QRectF drawn;
                painter.drawText(box, Qt::AlignCenter, label.text.right(2), &drawn);
                gridTextRects_.push_back(drawn);
            }
        }
    }
    QFont bold = font();
    bold.setBold(true);
    bold.setPointSizeF(bold.pointSizeF() * 1.4);
    painter.setFont(bold);
    painter.setPen(QColor(0x40, 0x50, 0x80, 0xB0));
    const QFontMetricsF metrics(bold);
    for (const GridLabel &label : maidenheadLabels(false, south, north, west, east)) {
        // Fields are labelled near their south-west corner, out of the way
        // of the squares' labels.
        const QPointF at = pixelOf({label.centre.latitude - 4.5, label.centre.longitude - 8.5});
        if (inSight.contains(at)) {
            painter.drawText(at, label.text);
            gridTextRects_.push_back(QRectF(at.x(), at.y() - metrics.ascent(),
                                            metrics.horizontalAdvance(label.text),
                                            metrics.height()));
        }
    }
}

QString EsMapView::sourceTags(const WatchCloud &cloud) {
    bool spot = false, here = false, others = false;
    for (const WatchSpot &seen : cloud.spots) {
        spot = spot || !seen.isReport();
        here = here || seen.atOwnStation;
        others = others || (seen.isReport() && !seen.atOwnStation);
    }
    QStringList tags;
    for (const auto &[seen, tag] : {std::pair{spot, "DX"}, {here, "RX"}, {others, "PSK"}}) {
        if (seen) {
            tags.append(QLatin1String(tag));
        }
    }
    return tags.join(QLatin1Char(' '));
}

bool EsMapView::fitToClouds() {
    const double aspect = viewport_.pixelHeight() / viewport_.pixelWidth();
    const double width = MapViewport::DefaultWidthKm;
    double left = -width / 2, right = width / 2;
    double bottom = -width * aspect / 2, top = width * aspect / 2;
    // Room for the marker and its label beyond the outermost clouds.
    constexpr double MarginKm = 250;
    for (const WatchCloud *cloud : watch_.clouds()) {
        if (cloud->spots.empty() || cloud->best.ownKm >= Distance_Limit) {
            continue;
        }
        const QPointF km = projection_.project(locatorCentre(cloud->square).value_or(GeoPoint{}));
        left = std::min(left, km.x() - MarginKm);
        right = std::max(right, km.x() + MarginKm);
        bottom = std::min(bottom, km.y() - MarginKm);
        top = std::max(top, km.y() + MarginKm);
    }
    const double widthBefore = viewport_.widthKm();
    const QPointF centreBefore = viewport_.centreKm();
    viewport_.fit(QRectF(left, bottom, right - left, top - bottom));
    return viewport_.widthKm() != widthBefore || viewport_.centreKm() != centreBefore;
}

EsMapView::CloudLabels EsMapView::layOutLabels(const std::vector<const WatchCloud *> &clouds,
                                               const QFont &font) const {
    const QFontMetricsF metrics(font);
    CloudLabels labels;
    // Among many clouds the grid's labels stay: a label each is too dear.
    if (clouds.size() > MaxLabelledClouds) {
        return labels;
    }
    const QPointF own = viewport_.toPixel(QPointF());
    labels.covered.push_back(QRectF(own.x() - 6, own.y() - 6, 12, 12));
    const QFontMetricsF station(this->font());
    labels.covered.push_back(QRectF(own.x() + 8, own.y() - 8 - station.ascent(),
                                    station.horizontalAdvance(ownLocator_), station.height()));
    for (const WatchCloud *cloud : clouds) {
        const QPointF at = markerPixel(*cloud);
        labels.covered.push_back(QRectF(at.x() - MarkerRadius, at.y() - MarkerRadius,
                                        2 * MarkerRadius, 2 * MarkerRadius));
    }
    // The most telling clouds get their place first.
    std::vector<const WatchCloud *> ranked = clouds;
    std::sort(ranked.begin(), ranked.end(), [](const WatchCloud *a, const WatchCloud *b) {
        return a->level != b->level ? a->level > b->level : a->lastSpot > b->lastSpot;
    });
    std::vector<LabelRequest> requests;
    for (const WatchCloud *cloud : ranked) {
        labels.texts.append((cloud->square + QLatin1Char(' ') + sourceTags(*cloud)).trimmed());
        requests.push_back(
            {markerPixel(*cloud),
             QSizeF(metrics.horizontalAdvance(labels.texts.back()) + 4, metrics.height())});
    }
    labels.rects = placeLabels(requests, MarkerRadius + 2, labels.covered);
    labels.covered.insert(labels.covered.end(), labels.rects.begin(), labels.rects.end());
    return labels;
}

void EsMapView::drawClouds(QPainter &painter) {
    const QDateTime now = watch_.now();
    const std::vector<const WatchCloud *> clouds = watch_.clouds();
    const QPointF own = viewport_.toPixel(QPointF());
    QFont small = font();
    small.setPointSizeF(small.pointSizeF() * 0.85);
    const CloudLabels labels = layOutLabels(clouds, small);

    // The grid's labels, less those under a cloud's marker or label.
    QRegion hidden;
    for (const QRectF &label : gridTextRects_) {
        if (std::any_of(labels.covered.begin(), labels.covered.end(),
                        [&label](const QRectF &other) { return other.intersects(label); })) {
            hidden += label.toAlignedRect().adjusted(-1, -1, 1, 1);
        }
    }
    painter.save();
    painter.setClipRegion(QRegion(rect()) - hidden);
    painter.drawPixmap(0, 0, gridText_);
    painter.restore();

    // Every painter call costs a pass of the rasterizer (threads included):
    // clouds are gathered into one path per kind, colour and fade step, so
    // a thousand clouds are a few dozen calls.
    constexpr int FadeSteps = 6;
    constexpr std::size_t PerKind = MufClassCount * FadeSteps;
    struct Bucket {
        QList<QLineF> paths;
        QList<QLineF> farPaths;
        std::vector<QPointF> centres;
    };
    // Exact clouds first, then those only approximate paths saw.
    std::array<Bucket, 2 * PerKind> buckets;
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
            buckets[(cloud->approximate ? PerKind : 0) +
                    static_cast<std::size_t>(mufClass(cloud->keptMuf()) * FadeSteps + stepOf(age))];
        const QPointF at = markerPixel(*cloud);
        bucket.centres.push_back(at);
        if (cloud->best.ownKm < Distance_Limit) {
            bucket.paths.append(QLineF(own, at));
            if (const auto far = locatorCentre(cloud->best.far)) {
                bucket.farPaths.append(QLineF(at, pixelOf(*far)));
            }
        }
    }
    const auto colourOf = [](std::size_t i) {
        return mufClassAt(static_cast<int>(i % PerKind / FadeSteps)).rgb;
    };
    const auto alphaOf = [](std::size_t i) {
        return fadeAlpha((static_cast<double>(i % FadeSteps) + 0.5) * EsWatch::CloudKeptSecs /
                         FadeSteps);
    };
    // Thin opaque paths without antialiasing, faded towards the sea colour
    // rather than made transparent: the raster engine draws translucent
    // lines some twenty times slower, a thousand of them a frame each.
    // Approximate paths are lighter.
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setBrush(Qt::NoBrush);
    for (std::size_t i = 0; i < buckets.size(); ++i) {
        const double weight = alphaOf(i) * (i < PerKind ? 0.75 : 0.35) / 255.0;
        const QColor full = fromRgb(colourOf(i), 255);
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
    // Markers are stamped from one drawn marker per kind, colour and fade
    // step.
    const qreal ratio = devicePixelRatioF();
    const int side = static_cast<int>(std::ceil((MarkerRadius + 1.5) * 2));
    for (std::size_t i = 0; i < buckets.size(); ++i) {
        if (buckets[i].centres.empty()) {
            continue;
        }
        QPixmap marker(QSize(side, side) * ratio);
        marker.setDevicePixelRatio(ratio);
        marker.fill(Qt::transparent);
        {
            QPainter stamp(&marker);
            stamp.setRenderHint(QPainter::Antialiasing);
            drawMarker(stamp, QPointF(side / 2.0, side / 2.0), colourOf(i), alphaOf(i),
                       i >= PerKind);
        }
        for (const QPointF &at : buckets[i].centres) {
            painter.drawPixmap(at - QPointF(side / 2.0, side / 2.0), marker);
        }
    }
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(small);
    for (std::size_t i = 0; i < labels.rects.size(); ++i) {
        if (labels.rects[i].isNull()) {
            continue;
        }
        painter.fillRect(labels.rects[i], QColor(255, 255, 255, 170));
        painter.setPen(Qt::black);
        painter.drawText(labels.rects[i], Qt::AlignCenter, labels.texts[static_cast<qsizetype>(i)]);
    }
}

void EsMapView::drawLegend(QPainter &painter, const std::vector<const WatchCloud *> &clouds) {
    const QFontMetrics metrics(font());
    const int row = metrics.height() + 2;
    const int sample = 26; // room for a marker or a piece of line before a text
    // Left the MUF colours, right what lines, fading, hollow markers and
    // the labels' tags mean.
    const QStringList meanings{QStringLiteral("Lines and markers"),
                               QStringLiteral("your station to a cloud within 1500 km"),
                               QStringLiteral("on to where a hop via it comes down"),
                               QStringLiteral("older: fades out over 30 minutes"),
                               QStringLiteral("approximate path (call book, country)"),
                               QStringLiteral("DX spot, RX heard here, PSK Reporter")};
    int right = 0;
    for (const QString &text : meanings) {
        right = std::max(right, metrics.horizontalAdvance(text));
    }
    const int left = metrics.horizontalAdvance(QStringLiteral("100\u2013144 MHz")) + sample + 8;
    const QSize size(left + sample + right + 16, row * (MufClassCount + 1) + 8);
    // In the corner that hides the fewest clouds, bottom left if it hides none.
    QRect box;
    std::size_t hidden = 0;
    for (const QPoint corner : {QPoint(8, height() - 8 - size.height()),
                                QPoint(width() - 8 - size.width(), height() - 8 - size.height()),
                                QPoint(8, 8), QPoint(width() - 8 - size.width(), 8)}) {
        const QRect here(corner, size);
        const auto under = static_cast<std::size_t>(
            std::count_if(clouds.begin(), clouds.end(), [&](const WatchCloud *cloud) {
                return here.adjusted(-40, -10, 40, 10).contains(markerPixel(*cloud).toPoint());
            }));
        if (box.isNull() || under < hidden) {
            box = here;
            hidden = under;
        }
    }
    painter.setPen(QColor(0x80, 0x80, 0x80));
    painter.setBrush(QColor(255, 255, 255, 220));
    painter.drawRect(box);
    painter.setPen(Qt::black);
    const int top = box.top() + 4;
    painter.drawText(box.left() + 8, top + metrics.ascent(), QStringLiteral("Es MUF"));
    for (int i = 0; i < MufClassCount; ++i) {
        const int y = top + row * (i + 1);
        drawMarker(painter, QPointF(box.left() + 14, y + row / 2.0), mufClassAt(i).rgb, 255, false);
        painter.setPen(Qt::black);
        painter.drawText(box.left() + sample, y + metrics.ascent(),
                         QString::fromUtf8(mufClassAt(i).label) + QStringLiteral(" MHz"));
    }
    const int x = box.left() + left;
    const QColor ink = fromRgb(mufClassAt(3).rgb);
    for (int i = 0; i < meanings.size(); ++i) {
        const int y = top + row * i;
        const double middle = y + row / 2.0;
        switch (i) {
        case 1:
        case 2:
            painter.setPen(QPen(ink, 1.5, i == 1 ? Qt::SolidLine : Qt::DashLine));
            painter.drawLine(QPointF(x, middle), QPointF(x + sample - 6, middle));
            break;
        case 3:
            drawMarker(painter, QPointF(x + 8, middle), mufClassAt(3).rgb, fadeAlpha(1500), false);
            break;
        case 4:
            drawMarker(painter, QPointF(x + 8, middle), mufClassAt(3).rgb, 255, true);
            break;
        default:
            break;
        }
        painter.setPen(Qt::black);
        painter.drawText(i == 0 ? x : x + sample, y + metrics.ascent(), meanings[i]);
    }
}

void EsMapView::paintEvent(QPaintEvent *) {
    if (!userMoved_ && fitToClouds()) {
        backgroundStale_ = true;
    }
    if (backgroundStale_ || background_.size() != size() * devicePixelRatioF()) {
        buildBackground();
    }
    QPainter painter(this);
    painter.drawPixmap(0, 0, background_);
    painter.setRenderHint(QPainter::Antialiasing);
    drawClouds(painter);
    drawLegend(painter, watch_.clouds());
}

void EsMapView::resizeEvent(QResizeEvent *event) {
    QWidget::resizeEvent(event);
    viewport_.setPixelSize(width(), height());
    invalidateBackground();
}

void EsMapView::wheelEvent(QWheelEvent *event) {
    const double steps = event->angleDelta().y() / 120.0;
    viewport_.zoomAt(event->position(), std::pow(1.25, steps));
    userMoved_ = true;
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
            userMoved_ = true;
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
    if (cloud == nullptr) {
        return;
    }
    // Reports are not in the panes: the newest spot is chosen.
    const auto spot = std::find_if(cloud->spots.begin(), cloud->spots.end(),
                                   [](const WatchSpot &seen) { return !seen.isReport(); });
    if (spot != cloud->spots.end()) {
        Q_EMIT spotChosen(*spot);
    }
}

void EsMapView::mouseDoubleClickEvent(QMouseEvent *event) {
    if (event->button() == Qt::LeftButton) {
        userMoved_ = false;
        invalidateBackground();
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
    QStringList sources;
    for (const WatchSpot &spot : cloud->spots) {
        if (!sources.contains(spot.source)) {
            sources.append(spot.source);
        }
    }
    lines.append(QStringLiteral("seen by ") + sources.join(QStringLiteral(", ")));
    int listed = 0;
    for (const WatchSpot &spot : cloud->spots) {
        if (++listed > MaxSpotsListed) {
            lines.append(QStringLiteral("... %1 more").arg(cloud->spots.size() - MaxSpotsListed));
            break;
        }
        // Approximate paths are marked: their ends are guessed.
        lines.append((spot.approximate ? QStringLiteral("~ ") : QString()) + spot.printed);
    }
    spotList_->setText(lines.join(QLatin1Char('\n')));
    spotList_->adjustSize();
    spotList_->move(globalPos + QPoint(14, 14));
    spotList_->show();
}

} // namespace zkr
