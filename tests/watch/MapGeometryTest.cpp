#include "MapGeometry.h"
#include "EsPathModel.h"
#include "QtPrinters.h"

#include <QDataStream>
#include <QFile>
#include <QLineF>

#include <gtest/gtest.h>

#include <cmath>

namespace zkr {
namespace {

// Distance and course from the centre are true on the map; the inverse
// gives the point back.
TEST(AzimuthalProjection, DistanceAndCourseFromTheCentreAreTrue) {
    const GeoPoint berlin{52.5, 13.4};
    const AzimuthalProjection projection(berlin);
    for (const GeoPoint point :
         {GeoPoint{52.5, 13.4}, {-33.9, 18.4}, {35.7, 139.7}, {52.5, 13.5}, {89.0, -100}}) {
        SCOPED_TRACE(testing::Message() << point.latitude << " " << point.longitude);
        const QPointF km = projection.project(point);
        const double distance = EarthRadius * Great_Circle_Angle(berlin.latitude, point.latitude,
                                                                 berlin.longitude, point.longitude);
        EXPECT_NEAR(std::hypot(km.x(), km.y()), distance, 0.05);
        if (distance > 1) {
            const double course = std::fmod(std::atan2(km.x(), km.y()) * Rad2Deg + 360, 360);
            EXPECT_NEAR(course,
                        Azimuth(berlin.latitude, point.latitude, berlin.longitude, point.longitude),
                        1e-6);
        }
        const auto back = projection.inverse(km);
        ASSERT_TRUE(back.has_value());
        EXPECT_NEAR(back->latitude, point.latitude, 1e-7);
        if (std::abs(point.latitude) < 89.9) {
            EXPECT_NEAR(back->longitude, point.longitude, 1e-7);
        }
    }
    EXPECT_FALSE(projection.inverse(QPointF(0, -EarthRadius * Pi - 1)).has_value());
}

// The view: 4,000 km wide by default, centred on the station; zooming keeps
// the point under the mouse; panning moves by the drag.
TEST(MapViewport, ZoomKeepsThePointUnderTheMouseAndPanFollowsTheDrag) {
    MapViewport view;
    view.setPixelSize(1000, 500);
    EXPECT_EQ(view.toPixel(QPointF(0, 0)), QPointF(500, 250));
    EXPECT_EQ(view.toPixel(QPointF(2000, 1000)), QPointF(1000, 0));
    EXPECT_EQ(view.visibleKm(), QRectF(-2000, -1000, 4000, 2000));
    for (const auto &[mouse, factor, width] : {std::tuple{QPointF(100, 100), 2.0, 2000.0},
                                               {QPointF(900, 400), 0.5, 8000.0},
                                               {QPointF(500, 250), 1000.0, 200.0},
                                               {QPointF(0, 0), 1e-4, 40000.0}}) {
        MapViewport zoomed = view;
        const QPointF before = zoomed.toKm(mouse);
        zoomed.zoomAt(mouse, factor);
        EXPECT_DOUBLE_EQ(zoomed.widthKm(), width);
        EXPECT_NEAR(QLineF(zoomed.toKm(mouse), before).length(), 0, 1e-6);
    }
    MapViewport panned = view;
    const QPointF under = panned.toKm(QPointF(300, 200));
    panned.panByPixels(QPointF(50, -20));
    EXPECT_NEAR(QLineF(panned.toPixel(under), QPointF(350, 180)).length(), 0, 1e-9);
    panned.reset();
    EXPECT_EQ(panned.toPixel(QPointF(0, 0)), QPointF(500, 250));
}

// Labels go right of their marker, else left, above, below, never over an
// earlier label or an obstacle; one without room is left out.
TEST(MapLabels, PlacedApartFromEachOtherAndTheMarkers) {
    const QRectF right(5, -5, 40, 10), left(-45, -5, 40, 10), above(-20, -15, 40, 10),
        below(-20, 5, 40, 10);
    const std::tuple<int, std::vector<QRectF>, std::vector<QRectF>> cases[] = {
        {5, {}, {right, left, above, below, QRectF()}},
        {2, {{44, -1, 4, 2}}, {left, above}},
        {1, {{-60, -60, 120, 120}}, {QRectF()}},
    };
    for (const auto &[count, obstacles, placed] : cases) {
        const std::vector<LabelRequest> labels(count, {QPointF(0, 0), QSizeF(40, 10)});
        EXPECT_EQ(placeLabels(labels, 5, obstacles), placed) << count;
    }
}

// The legend's classes, with the MUF rounded as printed.
TEST(MufColourScale, ClassesFollowTheLegend) {
    const std::pair<double, int> classes[] = {{0.0, 0},   {49.49, 0}, {49.5, 1}, {69.4, 1},
                                              {69.5, 2},  {99.49, 2}, {99.5, 3}, {143.49, 3},
                                              {143.5, 4}, {400.0, 4}};
    for (const auto &[muf, index] : classes) {
        EXPECT_EQ(mufClass(muf), index) << muf;
    }
    for (const auto &[age, alpha] :
         {std::pair{-5, 255}, {0, 255}, {900, 158}, {1800, 60}, {5000, 60}}) {
        EXPECT_EQ(fadeAlpha(age), alpha) << age;
    }
}

TEST(Maidenhead, CentresGridAndLabels) {
    const std::pair<const char *, std::optional<GeoPoint>> cases[] = {
        {"jo62", GeoPoint{52.5, 13}},    {"JO62QM", GeoPoint{52.52083, 13.375}},
        {"AA00", GeoPoint{-89.5, -179}}, {"RR99XX", GeoPoint{89.97917, 179.95833}},
        {"JO6", std::nullopt},           {"JO62Q", std::nullopt},
        {"SO62", std::nullopt}};
    for (const auto &[locator, expected] : cases) {
        const auto centre = locatorCentre(QString(locator));
        ASSERT_EQ(centre.has_value(), expected.has_value()) << locator;
        if (centre) {
            EXPECT_NEAR(centre->latitude, expected->latitude, 1e-4) << locator;
            EXPECT_NEAR(centre->longitude, expected->longitude, 1e-4) << locator;
        }
    }
    // Over 40-60 N, 0-20 E: meridians at 0 and 20 and parallels at 40, 50
    // and 60 for the fields; every 2 and 1 degrees for the squares.
    EXPECT_EQ(maidenheadGrid(false, 40, 60, 0, 20).size(), 2u + 3u);
    EXPECT_EQ(maidenheadGrid(true, 40, 60, 0, 20).size(), 11u + 21u);
    const auto fields = maidenheadLabels(false, 45, 55, 5, 15);
    ASSERT_EQ(fields.size(), 2u);
    EXPECT_EQ(QStringList({fields[0].text, fields[1].text}), QStringList({"JN", "JO"}));
    const auto squares = maidenheadLabels(true, 52.2, 52.8, 12.5, 13.5);
    ASSERT_EQ(squares.size(), 1u);
    EXPECT_EQ(squares.front().text, "JO62");
    EXPECT_DOUBLE_EQ(squares.front().centre.latitude, 52.5);
    EXPECT_DOUBLE_EQ(squares.front().centre.longitude, 13);
}

QByteArray coastFile(quint16 version,
                     const std::vector<std::vector<std::pair<qint16, qint16>>> &rings,
                     int cut = 0) {
    QByteArray bytes = "ZKRC";
    QDataStream out(&bytes, QIODevice::Append);
    out.setByteOrder(QDataStream::LittleEndian);
    out << version << quint32(rings.size());
    for (const auto &ring : rings) {
        out << quint32(ring.size());
        for (const auto &[lon, lat] : ring) {
            out << lon << lat;
        }
    }
    bytes.chop(cut);
    return bytes;
}

TEST(CoastlineFile, ReadsRingsAndRefusesBrokenFiles) {
    const std::vector<std::vector<std::pair<qint16, qint16>>> rings{
        {{1340, 5250}, {-18000, -9000}, {18000, 9000}}, {{0, 0}, {1, 1}, {2, 0}, {0, 0}}};
    const Coastlines coast = Coastlines::parse(coastFile(1, rings));
    ASSERT_EQ(coast.rings.size(), 2u);
    EXPECT_EQ(coast.rings[0].size(), 3u);
    EXPECT_DOUBLE_EQ(coast.rings[0][0].longitude, 13.4);
    EXPECT_DOUBLE_EQ(coast.rings[0][0].latitude, 52.5);
    EXPECT_DOUBLE_EQ(coast.rings[0][1].longitude, -180);
    EXPECT_DOUBLE_EQ(coast.rings[0][2].latitude, 90);
    EXPECT_EQ(coast.rings[1].size(), 4u);
    QByteArray huge = coastFile(1, {});
    huge.chop(4);
    huge += QByteArray::fromHex("01000000ffffff7f");
    // Empty, other magic, other version, cut in a point, in a count, a count
    // beyond the file.
    for (const QByteArray &bytes :
         {QByteArray(), "ZKRD" + coastFile(1, rings).mid(4), coastFile(2, rings),
          coastFile(1, rings, 2), coastFile(1, rings, 17), huge}) {
        EXPECT_TRUE(Coastlines::parse(bytes).rings.empty()) << bytes.size();
    }
    // The shipped file: Europe's land is there.
    const Coastlines shipped = Coastlines::load(ZKR_COASTLINES);
    EXPECT_GT(shipped.rings.size(), 1000u);
}

} // namespace
} // namespace zkr
