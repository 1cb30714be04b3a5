#include "WatchAlerts.h"
#include "QtPrinters.h"
#include "ScriptedPlatform.h"
#include "WatchTestSpots.h"

#include <gtest/gtest.h>

namespace zkr {
namespace {

using test::esSpot;
using test::T0;

// Every alert is a notification and, with sound on, a beep; without a
// notification service the strip hears of it and nothing else is said.
TEST(WatchAlerts, NotifyAndSoundThroughThePlatform) {
    struct Case {
        const char *name;
        bool notifications;
        bool sound;
        QStringList log;
        bool notified;
    };
    const QString rising = "rising via JN14 FOT=152MHz AZ=226 EL=5 -> IN83";
    const QString open = "2 m open via JN14 FOT=152MHz AZ=226 EL=5 -> IN83";
    const Case cases[] = {
        {"notification and sound",
         true,
         true,
         {"notify \"ZKR_MUF Es watch\" \"" + rising + "\" -> shown", "beep 1000 150",
          "notify \"ZKR_MUF Es watch\" \"" + open + "\" -> shown", "beep 1200 150"},
         true},
        {"sound off",
         true,
         false,
         {"notify \"ZKR_MUF Es watch\" \"" + rising + "\" -> shown",
          "notify \"ZKR_MUF Es watch\" \"" + open + "\" -> shown"},
         true},
        {"no notification service",
         false,
         true,
         {"notify \"ZKR_MUF Es watch\" \"" + rising + "\" -> unavailable", "beep 1000 150",
          "notify \"ZKR_MUF Es watch\" \"" + open + "\" -> unavailable", "beep 1200 150"},
         false},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        ScriptedPlatform platform;
        platform.setNotificationsAvailable(c.notifications);
        EsWatch watch;
        WatchSettings settings;
        settings.sound = c.sound;
        watch.setSettings(settings);
        watch.setWallClock([] { return T0; });
        WatchAlerts alerts(watch, platform);
        QStringList strip;
        QObject::connect(&alerts, &WatchAlerts::alerted,
                         [&strip, &c](const QString &text, bool notified) {
                             EXPECT_EQ(notified, c.notified);
                             strip.append(text);
                         });
        watch.addSpot(esSpot({.ownMuf = 151.6, .ownKm = 1600}));
        EXPECT_EQ(platform.log(), c.log);
        EXPECT_EQ(strip, (QStringList{rising, open}));
        EXPECT_TRUE(platform.messages().isEmpty());
    }
}

TEST(WatchAlerts, SwitchedOffLevelsAndBandsStaySilent) {
    struct Case {
        const char *name;
        WatchSettings settings;
        QStringList heard;
    };
    WatchSettings noRising;
    noRising.rising = false;
    WatchSettings sixOnly;
    sixOnly.band144 = false;
    sixOnly.band50 = true;
    WatchSettings nothing;
    nothing.band144 = false;
    const Case cases[] = {
        {"defaults",
         WatchSettings(),
         {"rising via JN14", "2 m open via JN14", "confirmed via JN14"}},
        {"rising off", noRising, {"2 m open via JN14", "confirmed via JN14"}},
        {"6 m only", sixOnly, {"6 m open via JN14"}},
        {"no band", nothing, {}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        ScriptedPlatform platform;
        EsWatch watch;
        watch.setSettings(c.settings);
        watch.setWallClock([] { return T0; });
        WatchAlerts alerts(watch, platform);
        QStringList heard;
        QObject::connect(&alerts, &WatchAlerts::alerted, [&heard](const QString &text, bool) {
            heard.append(text.section(" FOT", 0, 0));
        });
        watch.addSpot(esSpot({.ownMuf = 150, .ownKm = 1000, .frequency = 144.3f}));
        EXPECT_EQ(heard, c.heard);
        EXPECT_EQ(platform.log().filter("notify").size(), c.heard.size());
    }
}

} // namespace
} // namespace zkr
