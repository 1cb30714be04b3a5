#include "WatchAlerts.h"
#include "QtPrinters.h"
#include "ScriptedPlatform.h"
#include "WatchTestSpots.h"

#include <gtest/gtest.h>

namespace zkr {
namespace {

// Every alert of a level switched on is a notification and, with sound on,
// a beep of its level, even without a notification service (then only the
// strip shows it); its own MUF and elevation rounded as printed.
TEST(WatchAlerts, NotifyAndSoundThroughThePlatform) {
    const QString n = "notify \"ZKR_MUF Es watch\" \"%1 via JN14 FOT=152MHz "
                      "AZ=226 EL=4 -> IN83\"";
    const QString rising = n.arg("rising") + " -> shown", open = n.arg("2 m open") + " -> shown",
                  confirmed = n.arg("confirmed") + " -> shown";
    const struct {
        WatchSettings settings;
        bool notifications;
        QStringList log;
    } cases[] = {
        {{}, true, {rising, "beep 1000 150", open, "beep 1200 150", confirmed, "beep 1400 150"}},
        {{.sound = false}, true, {rising, open, confirmed}},
        {{},
         false,
         {n.arg("rising") + " -> unavailable", "beep 1000 150",
          n.arg("2 m open") + " -> unavailable", "beep 1200 150",
          n.arg("confirmed") + " -> unavailable", "beep 1400 150"}},
        {{.rising = false}, true, {open, "beep 1200 150", confirmed, "beep 1400 150"}},
        {{.band50 = true, .band144 = false},
         true,
         {n.arg("6 m open") + " -> shown", "beep 800 150"}},
        {{.band144 = false}, true, {}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(&c - &cases[0]);
        ScriptedPlatform platform;
        platform.setNotificationsAvailable(c.notifications);
        EsWatch watch;
        watch.setSettings(c.settings);
        watch.setWallClock([] { return test::T0; });
        WatchAlerts alerts(watch, platform);
        QStringList strip;
        QObject::connect(&alerts, &WatchAlerts::alerted,
                         [&strip, &c](WatchLevel, const QString &text, bool notified) {
                             EXPECT_EQ(notified, c.notifications);
                             strip.append("notify \"ZKR_MUF Es watch\" \"" + text + "\"");
                         });
        watch.addSpot(
            test::esSpot({.ownMuf = 151.6, .elevation = 4.4, .ownKm = 1000, .frequency = 144.3f}));
        EXPECT_EQ(platform.log(), c.log);
        EXPECT_EQ(strip.size(), c.log.filter("notify").size());
    }
}

} // namespace
} // namespace zkr
