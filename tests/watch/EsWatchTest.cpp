#include "EsWatch.h"
#include "IniFile.h"
#include "QtPrinters.h"
#include "WatchTestSpots.h"

#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace zkr {
namespace {

using test::esSpot;
using test::SpotSpec;
using test::T0;

WatchSettings allBands() {
    WatchSettings settings;
    settings.band50 = settings.band70 = settings.band144 = true;
    return settings;
}

// Levels held by one spot, and the level shown, against the printed rules:
// own MUF and elevation as rounded for printing, the band of the spot and
// the distance limit.
TEST(EsWatchLevels, OneSpotHoldsTheLevelsOfItsNumbers) {
    constexpr auto Rising = WatchLevel::Rising, Open144 = WatchLevel::Open144,
                   Conf144 = WatchLevel::Confirmed144, Open50 = WatchLevel::Open50,
                   Open70 = WatchLevel::Open70, Conf50 = WatchLevel::Confirmed50,
                   None = WatchLevel::None;
    struct Case {
        const char *name;
        SpotSpec spot;
        WatchSettings settings;
        WatchLevel shown;
        std::vector<WatchLevel> held;
    };
    const WatchSettings defaults;
    const Case cases[] = {
        {"below rising", {.ownMuf = 99.4, .ownKm = 1600}, defaults, None, {Open50, Open70}},
        {"rising rounds up",
         {.ownMuf = 99.5, .ownKm = 1600},
         defaults,
         Rising,
         {Open50, Open70, Rising}},
        {"2 m open",
         {.ownMuf = 143.5, .ownKm = 1600},
         defaults,
         Open144,
         {Open50, Open70, Rising, Open144}},
        {"under the horizon opens nothing",
         {.ownMuf = 150, .elevation = -0.6, .ownKm = 1600},
         defaults,
         Rising,
         {Rising}},
        {"elevation rounding to 0 is above",
         {.ownMuf = 150, .elevation = -0.5, .ownKm = 1600},
         defaults,
         Open144,
         {Open50, Open70, Rising, Open144}},
        {"a 144 MHz Es spot within the limit confirms",
         {.ownMuf = 0, .elevation = -3, .ownKm = 1499, .frequency = 144.3f},
         defaults,
         Conf144,
         {Conf144}},
        {"at the distance limit it does not",
         {.ownMuf = 0, .elevation = -3, .ownKm = 1500, .frequency = 144.3f},
         defaults,
         None,
         {}},
        {"a 144 MHz spot without Es marker does not",
         {.ownMuf = 0, .elevation = -3, .ownKm = 900, .frequency = 144.3f, .mode = "MS"},
         defaults,
         None,
         {}},
        {"148.001 MHz is not 2 m",
         {.ownMuf = 0, .elevation = -3, .ownKm = 900, .frequency = 148.001f},
         defaults,
         None,
         {}},
        {"a 6 m spot near enough confirms 6 m",
         {.ownMuf = 60, .ownKm = 900},
         allBands(),
         Conf50,
         {Open50, Conf50}},
        {"6 m and 4 m are off by default",
         {.ownMuf = 75, .ownKm = 1600},
         defaults,
         None,
         {Open50, Open70}},
        {"4 m when switched on",
         {.ownMuf = 75, .ownKm = 1600},
         allBands(),
         Open70,
         {Open50, Open70}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        EsWatch watch;
        watch.setSettings(c.settings);
        watch.setWallClock([] { return T0; });
        watch.addSpot(esSpot(c.spot));
        ASSERT_EQ(watch.clouds().size(), 1u);
        const WatchCloud &cloud = *watch.clouds().front();
        EXPECT_EQ(cloud.square, "JN14");
        EXPECT_EQ(cloud.level, c.shown);
        unsigned expected = 0;
        for (WatchLevel level : c.held) {
            expected |= 1u << static_cast<int>(level);
        }
        EXPECT_EQ(cloud.levels, expected);
    }
}

TEST(EsWatchLevels, DoubtfulAndIncompleteSpotsAreNoClouds) {
    struct Case {
        const char *name;
        EvaluatedSpot spot;
    };
    EvaluatedSpot noPath = esSpot({});
    noPath.es.reset();
    EvaluatedSpot failed = esSpot({});
    failed.error = "Overflow";
    const Case cases[] = {
        {"no Es path", noPath},
        {"evaluation failed", failed},
        {"no mode marker", esSpot({.mode = "??"})},
        {"6 m MUF of 200", esSpot({.frequency = 50.1f, .muf = 199.5})},
        {"MUF above 250", esSpot({.frequency = 28.5f, .muf = 251})},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        EsWatch watch;
        watch.setWallClock([] { return T0; });
        watch.addSpot(c.spot);
        EXPECT_TRUE(watch.clouds().empty());
    }
    EsWatch watch;
    watch.setWallClock([] { return T0; });
    watch.addSpot(esSpot({.frequency = 50.1f, .muf = 199.4}));
    EXPECT_EQ(watch.clouds().size(), 1u);
}

// A cloud counts for 15 minutes after its last spot and is kept for the map
// for 30.
TEST(EsWatchExpiry, CloudsCountFifteenMinutesAndStayThirty) {
    struct Case {
        int secondsAfter;
        bool live;
        bool kept;
    };
    const Case cases[] = {{0, true, true},     {899, true, true},    {900, false, true},
                          {1799, false, true}, {1800, false, false}, {7200, false, false}};
    for (const Case &c : cases) {
        SCOPED_TRACE(c.secondsAfter);
        QDateTime now = T0;
        EsWatch watch;
        watch.setWallClock([&now] { return now; });
        watch.addSpot(esSpot({.ownMuf = 150}));
        now = T0.addSecs(c.secondsAfter);
        watch.refresh();
        const auto clouds = watch.clouds();
        ASSERT_EQ(clouds.size(), c.kept ? 1u : 0u);
        EXPECT_EQ(watch.bestCloud() != nullptr, c.live);
        if (c.kept) {
            EXPECT_EQ(clouds.front()->live, c.live);
            EXPECT_EQ(clouds.front()->level, c.live ? WatchLevel::Open144 : WatchLevel::None);
            EXPECT_EQ(clouds.front()->keptMuf(), 90);
        }
    }
}

// Only the spots of the 5 minutes up to the newest make the cloud's numbers; the spots
// kept per cloud are bounded.
TEST(EsWatchExpiry, OldSpotsLeaveTheNumbersAndTheListIsBounded) {
    QDateTime now = T0;
    EsWatch watch;
    watch.setWallClock([&now] { return now; });
    watch.addSpot(esSpot({.ownMuf = 150, .minutes = 0}));
    now = T0.addSecs(4 * 60);
    watch.addSpot(esSpot({.ownMuf = 80, .minutes = 4}));
    EXPECT_EQ(watch.clouds().front()->ownMuf, 150);
    now = T0.addSecs(5 * 60);
    watch.addSpot(esSpot({.ownMuf = 70, .minutes = 5}));
    EXPECT_EQ(watch.clouds().front()->ownMuf, 80);
    EXPECT_EQ(watch.clouds().front()->level, WatchLevel::None);
    now = T0.addSecs(16 * 60);
    watch.refresh();
    EXPECT_EQ(watch.clouds().front()->ownMuf, 80); // no newer spot: the reading stays
    now = T0.addSecs(20 * 60);
    watch.refresh();
    EXPECT_EQ(watch.clouds().front()->ownMuf, 0);

    for (int i = 0; i < 100; ++i) {
        watch.addSpot(esSpot({.ownMuf = 80.0 + i, .minutes = 20}));
    }
    EXPECT_EQ(watch.clouds().front()->spots.size(), EsWatch::MaxSpotsPerCloud);
    EXPECT_EQ(watch.clouds().front()->spots.front().es.ownMuf, 179);
}

// Alerts: on reaching a level, in rank order, never twice for one square
// and level within 10 minutes.
TEST(EsWatchAlerts, LevelsAreAnnouncedOnceWithinTenMinutes) {
    struct Step {
        double minute;
        double ownMuf;
        const char *cloud;
        std::vector<QString> alerts;
    };
    struct Case {
        const char *name;
        std::vector<Step> steps;
    };
    const Case cases[] = {
        {"a jump announces both levels in order",
         {{0, 150, "JN14AA", {"rising via JN14", "2 m open via JN14"}}}},
        {"staying up is no news",
         {{0, 120, "JN14AA", {"rising via JN14"}},
          {1, 125, "JN14XX", {}},
          {2, 150, "JN14AA", {"2 m open via JN14"}}}},
        {"the same square is one cloud; another square is another",
         {{0, 110, "JN14AA", {"rising via JN14"}}, {1, 110, "JN24AA", {"rising via JN24"}}}},
        {"falling and rising again within ten minutes is no news",
         {{0, 110, "JN14AA", {"rising via JN14"}},
          {6, 90, "JN14AA", {}},
          {7, 110, "JN14AA", {}},
          {13, 90, "JN14AA", {}},
          {14, 110, "JN14AA", {"rising via JN14"}}}},
        {"a reading is the best of the five minutes up to the newest spot",
         {{0, 110, "JN14AA", {"rising via JN14"}},
          {4, 90, "JN14AA", {}},
          {6, 90, "JN14AA", {}},
          {11, 110, "JN14AA", {"rising via JN14"}}}},
        {"expired and back after ten minutes",
         {{0, 150, "JN14AA", {"rising via JN14", "2 m open via JN14"}},
          {16, 150, "JN14AA", {"rising via JN14", "2 m open via JN14"}}}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        QDateTime now = T0;
        EsWatch watch;
        watch.setWallClock([&now] { return now; });
        QStringList heard;
        QObject::connect(&watch, &EsWatch::levelReached,
                         [&heard](const WatchCloud &, WatchLevel, const QString &text) {
                             heard.append(text.section(" FOT", 0, 0));
                         });
        for (const Step &step : c.steps) {
            SCOPED_TRACE(step.minute);
            heard.clear();
            now = T0.addSecs(static_cast<qint64>(step.minute * 60));
            watch.refresh();
            heard.clear();
            watch.addSpot(esSpot({.cloud = step.cloud,
                                  .ownMuf = step.ownMuf,
                                  .ownKm = 1600,
                                  .minutes = step.minute}));
            EXPECT_EQ(heard, QStringList(step.alerts.begin(), step.alerts.end()));
        }
    }
}

TEST(EsWatchAlerts, TextSaysLevelCloudFotCourseAndFarSquare) {
    EsWatch watch;
    watch.setWallClock([] { return T0; });
    QStringList heard;
    QObject::connect(
        &watch, &EsWatch::levelReached,
        [&heard](const WatchCloud &, WatchLevel, const QString &text) { heard.append(text); });
    watch.addSpot(esSpot({.ownMuf = 151.6, .elevation = 4.4, .ownKm = 1600}));
    EXPECT_EQ(heard, (QStringList{"rising via JN14 FOT=152MHz AZ=226 EL=4 -> IN83",
                                  "2 m open via JN14 FOT=152MHz AZ=226 EL=4 -> IN83"}));
}

// The strip's cloud: live and above the own horizon, highest level first,
// then highest own MUF.
TEST(EsWatchBest, HighestLevelThenHighestOwnMuf) {
    struct Case {
        const char *name;
        std::vector<SpotSpec> spots;
        const char *best;
    };
    const Case cases[] = {
        {"none", {}, ""},
        {"under the horizon is out of range", {{.ownMuf = 0, .elevation = -2}}, ""},
        {"higher own MUF wins at one level",
         {{.cloud = "JN14AA", .ownMuf = 60}, {.cloud = "JO20AA", .ownMuf = 80}},
         "JO20"},
        {"confirmed beats open",
         {{.cloud = "JN14AA", .ownMuf = 170, .ownKm = 1600},
          {.cloud = "JO20AA", .ownMuf = 20, .ownKm = 800, .frequency = 144.2f}},
         "JO20"},
        {"an expired cloud is not shown",
         {{.cloud = "JN14AA", .ownMuf = 170, .minutes = -20}, {.cloud = "JO20AA", .ownMuf = 20}},
         "JO20"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        EsWatch watch;
        watch.setWallClock([] { return T0; });
        for (const SpotSpec &spot : c.spots) {
            watch.addSpot(esSpot(spot));
        }
        const WatchCloud *best = watch.bestCloud();
        EXPECT_EQ(best != nullptr ? best->square : QString(), QString(c.best));
    }
}

// A replayed file runs on the spots' own times: the latest spot is "now".
TEST(EsWatchClock, ReplayedSpotsKeepTheirOwnTime) {
    EsWatch watch;
    watch.setSpotTimeClock();
    // Received all at once, much later, as a replay does.
    auto replayed = [](const char *hhmm, const char *cloud, double ownMuf) {
        EvaluatedSpot spot = esSpot({.cloud = cloud, .ownMuf = ownMuf});
        spot.time = hhmm;
        spot.received = QDateTime(QDate(2024, 6, 20), QTime(9, 0), Qt::UTC);
        return spot;
    };
    watch.addSpot(replayed("2352", "JN14AA", 150));
    watch.addSpot(replayed("0005", "JO20AA", 120)); // after midnight
    EXPECT_EQ(watch.now(), QDateTime(QDate(2024, 6, 20), QTime(0, 5), Qt::UTC));
    ASSERT_NE(watch.bestCloud(), nullptr);
    EXPECT_EQ(watch.bestCloud()->square, "JN14");
    watch.addSpot(replayed("0006", "JO20AA", 120));
    watch.addSpot(replayed("0010", "JO20AA", 120));
    EXPECT_EQ(watch.bestCloud()->square, "JO20"); // JN14's 15 minutes are over
    EXPECT_EQ(watch.clouds().size(), 2u);
}

TEST(EsWatchClock, SpotTimeIsTakenOnTheDayNearestNow) {
    const QDateTime now(QDate(2024, 6, 20), QTime(0, 5), Qt::UTC);
    struct Case {
        QDateTime spot;
        QDateTime aligned;
    };
    const QDate day(2024, 6, 20);
    const Case cases[] = {
        {QDateTime(day, QTime(0, 1), Qt::UTC), QDateTime(day, QTime(0, 1), Qt::UTC)},
        {QDateTime(day, QTime(23, 55), Qt::UTC),
         QDateTime(day.addDays(-1), QTime(23, 55), Qt::UTC)},
        {QDateTime(day.addDays(-1), QTime(0, 10), Qt::UTC), QDateTime(day, QTime(0, 10), Qt::UTC)},
        {QDateTime(day.addDays(-3), QTime(11, 0), Qt::UTC), QDateTime(day, QTime(11, 0), Qt::UTC)},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.spot.toString(Qt::ISODate).toStdString());
        EXPECT_EQ(EsWatch::alignToNow(c.spot, now), c.aligned);
    }
}

// The settings section: defaults alert for 144 MHz only; a written section
// reads back; unknown words keep the default.
TEST(WatchSettingsFile, DefaultsRoundTripAndBadWords) {
    QTemporaryDir folder;
    const QString ini = folder.filePath("zkr_muf.ini");
    const WatchSettings defaults = WatchSettings::read(ini);
    EXPECT_EQ(defaults, WatchSettings());
    EXPECT_TRUE(defaults.enabled(WatchLevel::Open144));
    EXPECT_TRUE(defaults.enabled(WatchLevel::Rising));
    EXPECT_FALSE(defaults.enabled(WatchLevel::Open50));
    EXPECT_FALSE(defaults.enabled(WatchLevel::Confirmed70));

    WatchSettings changed;
    changed.band50 = true;
    changed.band144 = false;
    changed.confirmed = false;
    changed.sound = false;
    ASSERT_TRUE(changed.write(ini));
    EXPECT_EQ(WatchSettings::read(ini), changed);
    EXPECT_FALSE(changed.enabled(WatchLevel::Rising));
    EXPECT_FALSE(changed.enabled(WatchLevel::Confirmed50));
    EXPECT_TRUE(changed.enabled(WatchLevel::Open50));

    Ini_Write(WatchSettings::Section, "Band50", "maybe", ini);
    Ini_Write(WatchSettings::Section, "Band70", "ON", ini);
    const WatchSettings read = WatchSettings::read(ini);
    EXPECT_FALSE(read.band50); // the default, not the "on" written before
    EXPECT_FALSE(read.sound);
    EXPECT_TRUE(read.band70);
}

} // namespace
} // namespace zkr

namespace zkr {
namespace {

// The strip's words: level, numbers as printed, the bands a hop opens (none
// under the horizon) and the age in whole minutes.
TEST(EsWatchStrip, DescribesTheCloudAsPrinted) {
    struct Case {
        const char *name;
        test::SpotSpec spot;
        int secondsLater;
        const char *text;
    };
    const Case cases[] = {
        {"2 m",
         {.ownMuf = 151.6, .elevation = 4.4, .ownKm = 1600},
         30,
         "JN14  2 m open  FOT 152 MHz  AZ 226 EL 4  -> IN83  opens 6 m 4 m 2 m  just now"},
        {"6 m only, three minutes",
         {.ownMuf = 69.5, .elevation = 4.4, .ownKm = 1600},
         239,
         "JN14  FOT 70 MHz  AZ 226 EL 4  -> IN83  opens 6 m 4 m  3 min ago"},
        {"rising",
         {.ownMuf = 120, .elevation = 0, .ownKm = 1600},
         60,
         "JN14  rising  FOT 120 MHz  AZ 226 EL 0  -> IN83  opens 6 m 4 m  1 min ago"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        EsWatch watch;
        watch.setWallClock([] { return test::T0; });
        watch.addSpot(test::esSpot(c.spot));
        EXPECT_EQ(EsWatch::describe(watch.bestCloud(), test::T0.addSecs(c.secondsLater)), c.text);
    }
    EXPECT_EQ(EsWatch::describe(nullptr, test::T0), "no Es clouds in range");
}

} // namespace
} // namespace zkr
