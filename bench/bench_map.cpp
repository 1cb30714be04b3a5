// Repaint time of the Map tab with 1,000 clouds (the background of coast
// and grid cached), and the time to rebuild that background after a zoom
// or pan. Prints its figures; run a Release or RelWithDebInfo build.

#include "EsMapView.h"
#include "EsWatch.h"
#include "MapGeometry.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QPainter>

#include <cstdio>
#include <ctime>
#include <functional>
#include <vector>

namespace {

// 1,000 clouds in different squares over Europe, spotted over the last 30
// minutes, with MUFs across the whole legend.
void fill(zkr::EsWatch &watch, const QDateTime &now) {
    int made = 0;
    for (int row = 0; row < 40 && made < 1000; ++row) {
        for (int column = 0; column < 25 && made < 1000; ++column, ++made) {
            const double lat = 35.5 + row;
            const double lon = -10 + column * 2.0;
            zkr::EvaluatedSpot spot;
            spot.frequency = 50.150f;
            spot.mode = QStringLiteral("ES");
            spot.dxCall = QStringLiteral("EA1XY");
            spot.spotter = QStringLiteral("DL1AB");
            spot.received = now.addSecs(-(made % 30) * 60);
            zkr::EsPath es;
            es.cloud = zkr::LatLon_To_Locator(lat, lon);
            es.muf = 30 + (made * 7) % 160;
            es.ownMuf = es.muf * 0.9;
            es.elevation = 3;
            es.ownKm = 600 + (made % 20) * 60;
            es.far = zkr::LatLon_To_Locator(lat - 8, lon - 4);
            spot.es = es;
            spot.runs = {{QStringLiteral("DL1AB:    50150.0  EA1XY"), 0}};
            watch.addSpot(spot);
        }
    }
}

double cpuSeconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

struct Cost {
    double wallMs;
    double cpuMs; // all threads of the process: less dependent on a busy machine
};

Cost costPer(int rounds, const std::function<void()> &work) {
    QElapsedTimer timer;
    const double cpuStart = cpuSeconds();
    timer.start();
    for (int i = 0; i < rounds; ++i) {
        work();
    }
    return {static_cast<double>(timer.nsecsElapsed()) / 1e6 / rounds,
            (cpuSeconds() - cpuStart) * 1e3 / rounds};
}

} // namespace

int main(int argc, char *argv[]) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const QDateTime now(QDate(2024, 6, 15), QTime(18, 0), Qt::UTC);
    zkr::EsWatch watch;
    watch.setWallClock([now] { return now; });
    fill(watch, now);
    // Some squares repeat: distinct clouds are what is drawn.
    std::size_t clouds = watch.clouds().size();

    zkr::EsMapView map(watch);
    map.resize(1000, 600);
    map.setOwnLocator(QStringLiteral("JO62QM"));
    map.setCoastlines(zkr::Coastlines::load(
        zkr::EsMapView::coastlineFile({QCoreApplication::applicationDirPath()})));
    QImage image(map.size(), QImage::Format_ARGB32_Premultiplied);
    map.render(&image); // builds the background once

    const Cost repaint = costPer(50, [&] { map.render(&image); });
    const Cost rebuild = costPer(20, [&] {
        map.invalidateBackground();
        map.render(&image);
    });
    std::printf("clouds on the map:              %zu\n", clouds);
    std::printf("repaint, background cached:     %.2f ms (cpu %.2f ms)\n", repaint.wallMs,
                repaint.cpuMs);
    std::printf("repaint after zoom or pan:      %.2f ms (cpu %.2f ms)\n", rebuild.wallMs,
                rebuild.cpuMs);
    std::printf("background builds:              %d\n", map.backgroundBuilds());
    return 0;
}
