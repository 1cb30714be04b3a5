#pragma once

#include "EsWatch.h"
#include "MapGeometry.h"

#include <QPixmap>
#include <QPolygonF>
#include <QWidget>

#include <vector>

class QLabel;

namespace zkr {

// The Map tab: coastlines, the Maidenhead grid and the own station on an
// azimuthal equidistant map centred on the station, and every cloud the
// watch keeps as a marker coloured by its MUF, fading with age. Clouds
// within the distance limit get the great circle from the station through
// the cloud to the far square. The wheel zooms, a drag pans; hovering a
// marker lists its spots, a click on it chooses its newest spot.
//
// What does not move with the clouds (coast, grid, labels, station) is
// painted once into a cached image, again only after a resize, zoom or pan.
class EsMapView : public QWidget {
    Q_OBJECT
public:
    explicit EsMapView(EsWatch &watch, QWidget *parent = nullptr);

    void setOwnLocator(const QString &locator);
    void setCoastlines(const Coastlines &coast);
    MapViewport &viewport() { return viewport_; }
    // The cloud whose marker is at `pixel`, if any.
    const WatchCloud *cloudAt(QPointF pixel) const;
    // Where a cloud's marker is drawn, pixels.
    QPointF markerPixel(const WatchCloud &cloud) const;
    // The background is rebuilt at the next paint.
    void invalidateBackground();
    int backgroundBuilds() const { return backgroundBuilds_; }

    // The coastline file: in the first of these folders that has one, else
    // in the desktop's data folders.
    static QString coastlineFile(const QStringList &folders);

Q_SIGNALS:
    void spotChosen(const zkr::WatchSpot &spot);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void leaveEvent(QEvent *event) override;

private:
    void buildBackground();
    void drawClouds(QPainter &painter);
    void drawLegend(QPainter &painter);
    void showSpots(const WatchCloud *cloud, QPoint globalPos);
    QPointF pixelOf(GeoPoint point) const;

    EsWatch &watch_;
    AzimuthalProjection projection_;
    MapViewport viewport_;
    QString ownLocator_;
    // The coast projected once per own station: km on the map plane.
    std::vector<QPolygonF> coastKm_;
    std::vector<QRectF> coastBounds_;
    QPixmap background_;
    bool backgroundStale_ = true;
    int backgroundBuilds_ = 0;
    QPoint dragFrom_;
    bool dragging_ = false;
    bool dragged_ = false;
    QLabel *spotList_;
    const WatchCloud *hovered_ = nullptr;
};

} // namespace zkr
