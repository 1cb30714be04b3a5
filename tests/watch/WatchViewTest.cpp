#include "EsMapView.h"
#include "EsNowStrip.h"
#include "QtPrinters.h"
#include "WatchTestSpots.h"

#include <QApplication>
#include <QLabel>
#include <QTest>
#include <QWheelEvent>

#include <gtest/gtest.h>

namespace zkr {
namespace {

// The strip holds per band the highest level reached, 2 m before 4 m
// before 6 m; a lower level of a band does not replace a higher one.
TEST(EsNowStrip, HoldsTheHighestAlertOfEachBand) {
    using enum WatchLevel;
    const std::pair<std::vector<std::pair<WatchLevel, const char *>>, const char *> cases[] = {
        {{{Confirmed144, "c2 FOT=150MHz"}, {Confirmed70, "c4"}}, "ALERT c2, c4  |  "},
        {{{Open144, "o2"}, {Rising, "r2"}, {Open50, "o6"}}, "ALERT o2, o6  |  "},
        {{{Rising, "r2"}, {Open144, "o2"}}, "ALERT o2  |  "},
    };
    for (const auto &[alerts, shown] : cases) {
        EsWatch watch;
        EsNowStrip strip(watch);
        for (const auto &[level, text] : alerts) {
            strip.showAlert(level, text);
        }
        EXPECT_EQ(strip.text(), QString(shown) + "Es now: no Es clouds in range");
    }
}

// Until the user zooms, the map takes in a cloud 1,200 km south of the
// station; after a zoom it stays where the user put it.
TEST(EsMapView, FitsTheCloudsInRangeUntilTheUserZooms) {
    EsWatch watch;
    watch.setWallClock([] { return test::T0; });
    EsMapView map(watch);
    map.setOwnLocator("JO62QM");
    map.resize(1000, 560);
    const auto visible = [&] {
        map.grab(); // paints, and so fits
        return map.rect().contains(map.markerPixel(*watch.bestCloud()).toPoint());
    };
    test::feed(watch, {.cloud = "JN61AA", .ownKm = 1200});
    EXPECT_TRUE(visible());
    QWheelEvent zoom(QPointF(500, 280), QPointF(), {}, QPoint(0, 240), Qt::NoButton, {},
                     Qt::NoScrollPhase, false);
    QApplication::sendEvent(&map, &zoom);
    test::feed(watch, {.cloud = "JN40AA", .ownMuf = 150, .ownKm = 1450});
    EXPECT_FALSE(visible());
    EXPECT_FALSE(map.followsClouds());
}

// Spots, reports and an approximate path on one map: the marker of a cloud
// that only an approximate path saw is hollow, the others filled; labels
// name the kinds of source, hovering lists the reports. With ZKR_SHOTS set
// to a folder the strip, the map and the list are saved there as images.
TEST(EsMapView, SourcesHollowMarkersAndReportsInTheList) {
    EsWatch watch;
    watch.setWallClock([] { return test::T0; });
    test::feed(watch, {.cloud = "JN54AA", .ownMuf = 150, .frequency = 144.3f});
    test::feed(watch, {.cloud = "JN54AB", .ownMuf = 60, .frequency = 50.3134f, .kind = "own"});
    test::feed(watch, {.cloud = "JN54AC", .frequency = 50.2f, .kind = "psk"});
    test::feed(watch, {.cloud = "JN37AA", .ownMuf = 120, .kind = "approximate"});
    EsMapView map(watch);
    map.setOwnLocator("JO62QM");
    map.setCoastlines(Coastlines::load(ZKR_COASTLINES));
    map.resize(1000, 560);
    const QImage shot = map.grab().toImage();
    ASSERT_EQ(watch.clouds().size(), 2u);
    for (const WatchCloud *cloud : watch.clouds()) {
        const bool exact = cloud->square == "JN54";
        EXPECT_EQ(EsMapView::sourceTags(*cloud), exact ? "DX RX PSK" : "DX");
        // The centre in the MUF colour (a new marker is nearly opaque), or not.
        const QColor centre = shot.pixelColor(map.markerPixel(*cloud).toPoint());
        const QColor muf(QRgb(mufClassAt(mufClass(cloud->keptMuf())).rgb));
        const int apart = std::abs(centre.red() - muf.red()) +
                          std::abs(centre.green() - muf.green()) +
                          std::abs(centre.blue() - muf.blue());
        EXPECT_EQ(apart < 60, exact) << apart;
    }
    map.show();
    QTest::mouseMove(&map, map.markerPixel(*watch.bestCloud()).toPoint());
    QLabel *list = map.findChild<QLabel *>();
    ASSERT_TRUE(list != nullptr && list->isVisible());
    EXPECT_TRUE(
        list->text().contains("1200Z DL1AA heard EA7ABC IM76 on 50.313 FT8 -12 dB (wsjtx)"));
    if (const QString folder = qEnvironmentVariable("ZKR_SHOTS"); !folder.isEmpty()) {
        EsNowStrip strip(watch);
        strip.resize(1000, strip.sizeHint().height());
        strip.grab().save(folder + "/strip.png");
        shot.save(folder + "/map.png");
        list->grab().save(folder + "/list.png");
    }
}

} // namespace
} // namespace zkr
