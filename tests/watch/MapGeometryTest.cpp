#include "MapGeometry.h"
#include "EsPathModel.h"
#include "QtPrinters.h"

#include <QDataStream>
#include <QFile>

#include <gtest/gtest.h>

#include <cmath>

namespace zkr {
namespace {

double kmBetween(GeoPoint a, GeoPoint b) {
    return EarthRadius * Great_Circle_Angle(a.latitude, b.latitude, a.longitude, b.longitude);
}

// Distance and course from the centre are true on the map; the inverse
// gives the point back.
TEST(AzimuthalProjection, DistanceAndCourseFromTheCentreAreTrue) {
    const GeoPoint berlin{52.5, 13.4};
    const AzimuthalProjection projection(berlin);
    struct Case {
        GeoPoint point;
    };
    const Case cases[] = {{{52.5, 13.4}},  {{46.3, 7.1}},   {{40.4, -4.1}}, {{60.2, 24.9}},
                          {{-33.9, 18.4}}, {{35.7, 139.7}}, {{52.5, 13.5}}, {{89.0, -100}}};
    for (const Case &c : cases) {
        SCOPED_TRACE(testing::Message() << c.point.latitude << " " << c.point.longitude);
        const QPointF km = projection.project(c.point);
        const double distance = kmBetween(berlin, c.point);
        EXPECT_NEAR(std::hypot(km.x(), km.y()), distance, 0.05);
        if (distance > 1) {
            const double course = std::fmod(std::atan2(km.x(), km.y()) * Rad2Deg + 360, 360);
            EXPECT_NEAR(
                course,
                Azimuth(berlin.latitude, c.point.latitude, berlin.longitude, c.point.longitude),
                1e-6);
        }
        const auto back = projection.inverse(km);
        ASSERT_TRUE(back.has_value());
        EXPECT_NEAR(back->latitude, c.point.latitude, 1e-7);
        if (std::abs(c.point.latitude) < 89.9) {
            EXPECT_NEAR(back->longitude, c.point.longitude, 1e-7);
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
    struct Case {
        QPointF mouse;
        double factor;
        double width;
    };
    const Case cases[] = {{{100, 100}, 2, 2000},
                          {{900, 400}, 0.5, 8000},
                          {{500, 250}, 1000, 200},
                          {{0, 0}, 1e-4, 40000}};
    for (const Case &c : cases) {
        MapViewport zoomed = view;
        const QPointF before = zoomed.toKm(c.mouse);
        zoomed.zoomAt(c.mouse, c.factor);
        EXPECT_DOUBLE_EQ(zoomed.widthKm(), c.width);
        const QPointF after = zoomed.toKm(c.mouse);
        EXPECT_NEAR(after.x(), before.x(), 1e-6);
        EXPECT_NEAR(after.y(), before.y(), 1e-6);
    }
    MapViewport panned = view;
    const QPointF under = panned.toKm(QPointF(300, 200));
    panned.panByPixels(QPointF(50, -20));
    EXPECT_NEAR(panned.toPixel(under).x(), 350, 1e-9);
    EXPECT_NEAR(panned.toPixel(under).y(), 180, 1e-9);
    panned.reset();
    EXPECT_EQ(panned.toPixel(QPointF(0, 0)), QPointF(500, 250));
}

// The legend's classes, with the MUF rounded as printed.
TEST(MufColourScale, ClassesFollowTheLegend) {
    struct Case {
        double muf;
        int index;
    };
    const Case cases[] = {{0, 0},     {49.49, 0}, {49.5, 1},   {69.4, 1},  {69.5, 2},
                          {99.49, 2}, {99.5, 3},  {143.49, 3}, {143.5, 4}, {400, 4}};
    for (const Case &c : cases) {
        EXPECT_EQ(mufClass(c.muf), c.index) << c.muf;
    }
    const QStringList labels{"< 50", "50–70", "70–100", "100–144", "≥ 144"};
    for (int i = 0; i < MufClassCount; ++i) {
        EXPECT_EQ(QString::fromUtf8(mufClassAt(i).label), labels[i]);
    }
    EXPECT_EQ(mufClassAt(4).rgb, 0xFF00FFu); // the magenta of a 2 m result
    struct Fade {
        double age;
        int alpha;
    };
    const Fade fades[] = {{-5, 255}, {0, 255}, {900, 158}, {1800, 60}, {5000, 60}};
    for (const Fade &f : fades) {
        EXPECT_EQ(fadeAlpha(f.age), f.alpha) << f.age;
    }
}

TEST(Maidenhead, CentresGridAndLabels) {
    struct Case {
        const char *locator;
        std::optional<GeoPoint> centre;
    };
    const Case cases[] = {
        {"JO62", GeoPoint{52.5, 13}},
        {"jo62", GeoPoint{52.5, 13}},
        {"JO62QM", GeoPoint{52.52083, 13.375}},
        {"AA00", GeoPoint{-89.5, -179}},
        {"RR99XX", GeoPoint{89.97917, 179.95833}},
        {"JO6", std::nullopt},
        {"JO62Q", std::nullopt},
        {"SO62", std::nullopt},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.locator);
        const auto centre = locatorCentre(QString(c.locator));
        ASSERT_EQ(centre.has_value(), c.centre.has_value());
        if (centre) {
            EXPECT_NEAR(centre->latitude, c.centre->latitude, 1e-4);
            EXPECT_NEAR(centre->longitude, c.centre->longitude, 1e-4);
        }
    }
    // Over 40-60 N, 0-20 E: meridians at 0 and 20 and parallels at 40, 50
    // and 60 for the fields; every 2 and 1 degrees for the squares.
    EXPECT_EQ(maidenheadGrid(false, 40, 60, 0, 20).size(), 2u + 3u);
    EXPECT_EQ(maidenheadGrid(true, 40, 60, 0, 20).size(), 11u + 21u);
    const auto fields = maidenheadLabels(false, 45, 55, 5, 15);
    QStringList names;
    for (const GridLabel &label : fields) {
        names.append(label.text);
    }
    EXPECT_EQ(names, QStringList({"JN", "JO"}));
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
    struct Broken {
        const char *name;
        QByteArray bytes;
    };
    QByteArray huge = coastFile(1, {});
    huge.chop(4);
    huge += QByteArray::fromHex("01000000ffffff7f");
    const Broken broken[] = {
        {"empty", {}},
        {"other magic", "ZKRD" + coastFile(1, rings).mid(4)},
        {"other version", coastFile(2, rings)},
        {"cut in a point", coastFile(1, rings, 2)},
        {"cut in a count", coastFile(1, rings, 17)},
        {"a count beyond the file", huge},
    };
    for (const Broken &b : broken) {
        EXPECT_TRUE(Coastlines::parse(b.bytes).rings.empty()) << b.name;
    }
    // The shipped file: Europe's land is there.
    const Coastlines shipped = Coastlines::load(ZKR_COASTLINES);
    EXPECT_GT(shipped.rings.size(), 1000u);
}

} // namespace
} // namespace zkr
