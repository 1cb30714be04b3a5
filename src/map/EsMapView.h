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
// watch keeps as a marker coloured by its MUF, fading with age, hollow when
// only approximate paths saw it, labelled with its square and the kinds of
// source that saw it. Clouds within the distance limit get the great circle
// from the station through the cloud to the far square. Until the user
// zooms or pans, the view takes in every cloud within the distance limit.
// The wheel zooms, a drag pans, a double click goes back to that view;
// hovering a marker lists its spots and reports, a click on it chooses its
// newest spot.
//
// What does not move with the clouds (coast, grid, station) is painted once
// into a cached image, the grid's labels into another, again only after a
// resize, zoom or pan; grid labels under a cloud's label are left out.
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
    // The kinds of source that saw a cloud: "DX" cluster spots, "RX"
    // decodes at the own station, "PSK" reports of others; for example
    // "DX RX".
    static QString sourceTags(const WatchCloud &cloud);
    // Whether the view follows the clouds (the user has not zoomed or
    // panned since the start or the last double click).
    bool followsClouds() const { return !userMoved_; }
    // Fits the view to the own station and the clouds within the distance
    // limit (at least the default view); true when the view changed.
    bool fitToClouds();

Q_SIGNALS:
    void spotChosen(const zkr::WatchSpot &spot);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void leaveEvent(QEvent *event) override;

private:
    void buildBackground();
    // The grid's labels into `gridText_`, their rects into `gridTextRects_`.
    void drawGridLabels(double south, double north, double west, double east, bool squares);
    // Cloud labels placed apart from each other and from the markers, while
    // there are few clouds; and what the grid's labels must leave free.
    struct CloudLabels {
        QStringList texts;
        std::vector<QRectF> rects; // empty where there was no room
        std::vector<QRectF> covered;
    };
    CloudLabels layOutLabels(const std::vector<const WatchCloud *> &clouds,
                             const QFont &font) const;
    void drawClouds(QPainter &painter);
    void drawLegend(QPainter &painter, const std::vector<const WatchCloud *> &clouds);
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
    QPixmap gridText_;
    std::vector<QRectF> gridTextRects_;
    bool userMoved_ = false;
    bool backgroundStale_ = true;
    int backgroundBuilds_ = 0;
    QPoint dragFrom_;
    bool dragging_ = false;
    bool dragged_ = false;
    QLabel *spotList_;
    const WatchCloud *hovered_ = nullptr;
};

} // namespace zkr
