#include "EsWatch.h"
#include "IniFile.h"
#include "QtPrinters.h"
#include "WatchTestSpots.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace zkr {
namespace {

using test::esSpot;
using test::Sighting;
using test::T0;

// Levels held by one spot or report, and the level shown: own MUF and
// elevation as rounded for printing, the band, the horizon; approximate
// paths raise "rising" at most, a decode at the own station confirms alone.
TEST(EsWatchLevels, OneSpotHoldsTheLevelsOfItsNumbers) {
    using enum WatchLevel;
    const WatchSettings all{.band50 = true, .band70 = true};
    const WatchSettings defaults;
    // clang-format off
    const struct { const char *name; Sighting spot; WatchSettings settings; WatchLevel shown;
                   std::vector<WatchLevel> held; } cases[] = {
        {"below rising", {.ownMuf = 99.4, .ownKm = 1600}, defaults, None, {Open50, Confirmed50, Open70}},
        {"rising rounds up", {.ownMuf = 99.5, .ownKm = 1600}, defaults, Rising, {Open50, Confirmed50, Open70, Rising}},
        {"2 m open", {.ownMuf = 143.5, .ownKm = 1600}, defaults, Open144, {Open50, Confirmed50, Open70, Rising, Open144}},
        {"under the horizon", {.ownMuf = 150, .elevation = -0.6, .ownKm = 1600}, defaults, Rising, {Rising}},
        {"-0.5 rounds to 0", {.ownMuf = 150, .elevation = -0.5, .ownKm = 1600}, defaults, Open144,
         {Open50, Confirmed50, Open70, Rising, Open144}},
        {"2 m Es under the horizon", {.ownMuf = 0, .elevation = -3, .frequency = 144.3f}, defaults, None, {}},
        {"2 m Es, own MUF 143", {.ownMuf = 143.4, .frequency = 144.3f}, defaults, Rising, {Open50, Open70, Rising}},
        {"2 m Es, 2 m open", {.ownMuf = 144, .frequency = 144.3f}, defaults, Confirmed144,
         {Open50, Open70, Rising, Open144, Confirmed144}},
        {"no Es marker", {.ownMuf = 150, .frequency = 144.3f, .mode = "MS"}, defaults, Open144,
         {Open50, Open70, Rising, Open144}},
        {"148.001 MHz", {.ownMuf = 150, .frequency = 148.001f}, defaults, Open144, {Open50, Open70, Rising, Open144}},
        {"6 m confirmed", {.ownMuf = 60}, all, Confirmed50, {Open50, Confirmed50}},
        {"6 m Es, own MUF 49", {.ownMuf = 49.4}, all, None, {}},
        {"4 m off by default", {.ownMuf = 75, .ownKm = 1600}, defaults, None, {Open50, Confirmed50, Open70}},
        {"4 m switched on", {.ownMuf = 75, .ownKm = 1600}, all, Open70, {Open50, Confirmed50, Open70}},
        {"approximate 2 m Es", {.ownMuf = 150, .frequency = 144.3f, .kind = "approximate"}, all, Rising, {Rising}},
        {"decoded here on 6 m", {.ownMuf = 30, .frequency = 50.313f, .kind = "own"}, all, Confirmed50, {Confirmed50}},
        {"decoded here, 2,400 km", {.ownMuf = 60, .frequency = 50.313f, .kind = "own", .pathKm = 2400}, all, None, {}},
        {"PSK Reporter on 2 m", {.ownMuf = 150, .frequency = 144.174f, .kind = "psk"}, defaults, Confirmed144,
         {Open50, Open70, Rising, Open144, Confirmed144}},
        {"PSK Reporter on 10 m", {.ownMuf = 150, .frequency = 28.074f, .kind = "psk"}, all, None, {}},
    };
    // clang-format on
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        EsWatch watch;
        watch.setSettings(c.settings);
        watch.setWallClock([] { return T0; });
        test::feed(watch, c.spot);
        unsigned expected = 0;
        for (WatchLevel level : c.held) {
            expected |= 1u << static_cast<int>(level);
        }
        const bool kept = expected != 0 || QString(c.spot.kind) == "spot";
        ASSERT_EQ(watch.clouds().size(), kept ? 1u : 0u);
        if (kept) {
            const WatchCloud &cloud = *watch.clouds().front();
            EXPECT_EQ(std::tuple(cloud.square, cloud.level, cloud.levels),
                      std::tuple(QString("JN14"), c.shown, expected));
        }
    }
}

TEST(EsWatchLevels, DoubtfulAndIncompleteSpotsAreNoClouds) {
    EvaluatedSpot noPath = esSpot({}), failed = esSpot({});
    noPath.es.reset();
    failed.error = "Overflow";
    const std::pair<EvaluatedSpot, std::size_t> cases[] = {
        {noPath, 0},
        {failed, 0},
        {esSpot({.mode = "??"}), 0},
        {esSpot({.frequency = 50.1f, .muf = 199.5}), 0}, // a 6 m MUF of 200
        {esSpot({.frequency = 28.5f, .muf = 251}), 0},
        {esSpot({.frequency = 50.1f, .muf = 199.4}), 1}};
    int row = 0;
    for (const auto &[spot, clouds] : cases) {
        EsWatch watch;
        watch.setWallClock([] { return T0; });
        watch.addSpot(spot);
        EXPECT_EQ(watch.clouds().size(), clouds) << row++;
    }
}

// A cloud counts for 15 minutes after its last spot and is kept for the map
// for 30; its reading is the best of the 5 minutes up to its newest spot.
TEST(EsWatchExpiry, CloudsCountFifteenMinutesAndStayThirty) {
    for (const auto &[secondsAfter, live, kept] : {std::tuple{0, true, true},
                                                   {899, true, true},
                                                   {900, false, true},
                                                   {1799, false, true},
                                                   {1800, false, false}}) {
        SCOPED_TRACE(secondsAfter);
        QDateTime now = T0;
        EsWatch watch;
        watch.setWallClock([&now] { return now; });
        watch.addSpot(esSpot({.ownMuf = 150}));
        now = T0.addSecs(secondsAfter);
        watch.refresh();
        ASSERT_EQ(watch.clouds().size(), kept ? 1u : 0u);
        EXPECT_EQ(watch.bestCloud() != nullptr, live);
        if (kept) {
            EXPECT_EQ(watch.clouds().front()->level, live ? WatchLevel::Open144 : WatchLevel::None);
            EXPECT_EQ(watch.clouds().front()->keptMuf(), 90);
        }
    }
    QDateTime now = T0;
    EsWatch watch;
    watch.setWallClock([&now] { return now; });
    for (const auto &[minute, ownMuf, reading] :
         {std::tuple{0, 150, 150}, {4, 80, 150}, {5, 70, 80}}) {
        now = T0.addSecs(minute * 60);
        watch.addSpot(esSpot({.ownMuf = double(ownMuf), .minutes = double(minute)}));
        EXPECT_EQ(watch.clouds().front()->ownMuf, reading) << minute;
    }
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
// and level within 10 minutes (their full text is in WatchAlertsTest).
TEST(EsWatchAlerts, LevelsAreAnnouncedOnceWithinTenMinutes) {
    struct Step {
        double minute, ownMuf;
        const char *cloud;
        QStringList alerts;
        bool restored = false; // from the history
    };
    const QString rising = "rising via JN14", open = "2 m open via JN14";
    const std::vector<Step> cases[] = {
        {{0, 150, "JN14AA", {rising, open}}, {16, 150, "JN14AA", {rising, open}}},
        {{0, 120, "JN14AA", {rising}}, {1, 125, "JN14XX", {}}, {2, 150, "JN14AA", {open}}},
        {{0, 110, "JN14AA", {rising}}, {1, 110, "JN24AA", {"rising via JN24"}}},
        {{0, 110, "JN14AA", {rising}},
         {6, 90, "JN14AA", {}},
         {7, 110, "JN14AA", {}},
         {13, 90, "JN14AA", {}},
         {14, 110, "JN14AA", {rising}}},
        {{0, 150, "JN14AA", {}, true}, {1, 150, "JN14AA", {}}, {2, 120, "JN24AA", {}, true}},
        {{0, 120, "JN14AA", {}, true}, {1, 150, "JN14AA", {open}}},
    };
    for (const auto &steps : cases) {
        QDateTime now = T0;
        EsWatch watch;
        watch.setWallClock([&now] { return now; });
        QStringList heard;
        QObject::connect(&watch, &EsWatch::levelReached,
                         [&heard](const WatchCloud &, WatchLevel, const QString &text) {
                             heard.append(text.section(" FOT", 0, 0));
                         });
        for (const Step &step : steps) {
            now = T0.addSecs(static_cast<qint64>(step.minute * 60));
            watch.refresh();
            heard.clear();
            const EvaluatedSpot spot = esSpot({.cloud = step.cloud,
                                               .ownMuf = step.ownMuf,
                                               .ownKm = 1600,
                                               .minutes = step.minute});
            step.restored ? watch.restoreSpot(spot) : watch.addSpot(spot);
            EXPECT_EQ(heard, step.alerts) << &steps - &cases[0] << " at " << step.minute;
        }
    }
}

// The strip's cloud: live and above the own horizon, highest level first,
// then highest own MUF; and its words.
TEST(EsWatchBest, HighestLevelThenHighestOwnMufAsTheStripSaysIt) {
    const std::pair<std::vector<Sighting>, const char *> cases[] = {
        {{}, ""},
        {{{.ownMuf = 0, .elevation = -2}}, ""},
        {{{.cloud = "JN14AA", .ownMuf = 60}, {.cloud = "JO20AA", .ownMuf = 80}}, "JO20"},
        {{{.cloud = "JN14AA", .ownMuf = 170, .ownKm = 1600},
          {.cloud = "JO20AA", .ownMuf = 20, .ownKm = 800, .frequency = 144.2f}},
         "JN14"},
        {{{.cloud = "JN14AA", .ownMuf = 170, .minutes = -20}, {.cloud = "JO20AA", .ownMuf = 20}},
         "JO20"},
    };
    for (const auto &[spots, best] : cases) {
        EsWatch watch;
        watch.setWallClock([] { return T0; });
        for (const Sighting &spot : spots) {
            watch.addSpot(esSpot(spot));
        }
        const WatchCloud *shown = watch.bestCloud();
        EXPECT_EQ(shown != nullptr ? shown->square : QString(), QString(best));
    }
    // clang-format off
    const std::tuple<Sighting, int, const char *> strips[] = {
        {{.ownMuf = 151.6, .elevation = 4.4}, 30,
         "JN14  2 m open  FOT 152 MHz  AZ 226 EL 4  -> IN83  opens 6 m 4 m 2 m  just now"},
        {{.ownMuf = 69.5, .elevation = 4.4}, 239, "JN14  FOT 70 MHz  AZ 226 EL 4  -> IN83  opens 6 m 4 m  3 min ago"},
        {{.ownMuf = 120, .elevation = 0}, 60, "JN14  rising  FOT 120 MHz  AZ 226 EL 0  -> IN83  opens 6 m 4 m  1 min ago"},
        {{.ownMuf = 150, .elevation = -1}, 0, "JN14  rising  FOT 150 MHz  AZ 226 EL -1  -> IN83  just now"},
        {{.ownMuf = 151.6, .elevation = 4.4, .kind = "approximate"}, 0,
         "JN14  rising  FOT ~152 MHz  AZ 226 EL 4  -> IN83  just now"},
        {{.ownMuf = 60, .elevation = 4.4, .frequency = 50.3134f, .kind = "own"}, 0,
         "JN14  heard EA7ABC IM76 on 50.313 via JN14  FOT 60 MHz  AZ 226 EL 4  -> IN83  opens 6 m  just now"},
    };
    // clang-format on
    for (const auto &[spot, later, text] : strips) {
        EsWatch watch;
        watch.setWallClock([] { return T0; });
        test::feed(watch, spot);
        EXPECT_EQ(EsWatch::describe(watch.clouds().front(), T0.addSecs(later)), text);
    }
    EXPECT_EQ(EsWatch::describe(nullptr, T0), "no Es clouds in range");
}

// A replayed file runs on the spots' own times: the latest spot is "now",
// each spot's hhmm taken on the day nearest it.
TEST(EsWatchClock, ReplayedSpotsKeepTheirOwnTime) {
    EsWatch watch;
    watch.setSpotTimeClock();
    auto replayed = [&watch](const char *hhmm, const char *cloud) {
        EvaluatedSpot spot = esSpot({.cloud = cloud, .ownMuf = 150});
        spot.time = hhmm;
        spot.received = QDateTime(QDate(2024, 6, 20), QTime(9, 0), Qt::UTC); // much later
        watch.addSpot(spot);
    };
    replayed("2352", "JN14AA");
    replayed("0005", "JO20AA"); // after midnight
    EXPECT_EQ(watch.now(), QDateTime(QDate(2024, 6, 20), QTime(0, 5), Qt::UTC));
    EXPECT_EQ(watch.clouds().size(), 2u);
    replayed("0008", "JO20AA");
    EXPECT_EQ(watch.bestCloud()->square, "JO20"); // JN14's 15 minutes are over

    const QDateTime now(QDate(2024, 6, 20), QTime(0, 5), Qt::UTC);
    for (const auto &[days, hour, minute, aligned] :
         {std::tuple{0, 0, 1, 0}, {0, 23, 55, -1}, {-1, 0, 10, 0}, {-3, 11, 0, 0}}) {
        const QTime time(hour, minute);
        EXPECT_EQ(EsWatch::alignToNow(QDateTime(now.date().addDays(days), time, Qt::UTC), now),
                  QDateTime(now.date().addDays(aligned), time, Qt::UTC))
            << days << " " << hour;
    }
}

// The settings section: defaults; a written section reads back; unknown
// words keep the default.
TEST(WatchSettingsFile, DefaultsRoundTripAndBadWords) {
    QTemporaryDir folder;
    const QString ini = folder.filePath("zkr_muf.ini");
    EXPECT_EQ(WatchSettings::read(ini), WatchSettings()); // what they enable: WatchAlertsTest
    const WatchSettings changed{
        .band50 = true, .band144 = false, .confirmed = false, .sound = false};
    ASSERT_TRUE(changed.write(ini));
    EXPECT_EQ(WatchSettings::read(ini), changed);
    EXPECT_FALSE(changed.enabled(WatchLevel::Confirmed50)); // "confirmed" off
    Ini_Write(WatchSettings::Section, "Band50", "maybe", ini);
    Ini_Write(WatchSettings::Section, "Band70", "ON", ini);
    const WatchSettings read = WatchSettings::read(ini);
    EXPECT_TRUE(!read.band50 && !read.sound && read.band70); // band50: the default again
}

} // namespace
} // namespace zkr
