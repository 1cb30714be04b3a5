#include "EsOpening.h"
#include "CliOptions.h"
#include "CliReplay.h"
#include "QtPrinters.h"
#include "ScriptedPlatform.h"
#include "WatchAlerts.h"

#include <QBuffer>
#include <QRegularExpression>

#include <gtest/gtest.h>

namespace zkr {
namespace {

using test::EsOpening;

struct Heard {
    QString square;
    QString level;
};

// The alerts of the platform's record, and everything else it recorded.
std::vector<Heard> alertsOf(const QStringList &log, QStringList &other) {
    static const QRegularExpression notify(
        R"(^notify "ZKR_MUF Es watch" "(.+) via (\w{4})( .*)?" -> (shown|unavailable)$)");
    std::vector<Heard> heard;
    for (const QString &entry : log) {
        const auto match = notify.match(entry);
        if (match.hasMatch()) {
            heard.push_back({match.captured(2), match.captured(1)});
        } else if (!entry.startsWith("beep ")) {
            other.append(entry);
        }
    }
    return heard;
}

// The whole opening through the feed, the pipeline and the watch on the
// spots' own clock: every cloud square raises each level at most once and
// in the order of the levels, each with its beep and nothing else said; the
// clouds above the own horizon reach "confirmed" where they peak, the one
// under it nothing. (The platform cannot change what the watch raises:
// WatchAlertsTest has the alerts without a notification service or sound.)
TEST(EsOpeningReplay, EachLevelOncePerCloudInOrder) {
    const EsOpening opening = EsOpening::generate();
    ASSERT_EQ(opening.clouds.size(), 3u);
    ASSERT_GT(opening.lines.size(), 150);
    const QStringList ranked{"rising", "2 m open", "confirmed"};
    CliOptions options;
    options.ownLocator = EsOpening::OwnLocator;
    options.watch = true;
    CliReplay run(options);
    run.watch()->setSettings(WatchSettings());
    ScriptedPlatform platform;
    WatchAlerts alerts(*run.watch(), platform);
    QBuffer input;
    input.setData(opening.bytes());
    input.open(QIODevice::ReadOnly);
    run.replayClusterText(input);

    QStringList other;
    const std::vector<Heard> heard = alertsOf(platform.log(), other);
    EXPECT_EQ(other, QStringList());
    EXPECT_EQ(platform.log().filter("beep ").size(), qsizetype(heard.size()));
    QHash<QString, QStringList> bySquare;
    for (const Heard &h : heard) {
        ASSERT_TRUE(ranked.contains(h.level)) << h.level.toStdString();
        QStringList &levels = bySquare[h.square];
        if (!levels.isEmpty()) {
            EXPECT_LT(ranked.indexOf(levels.last()), ranked.indexOf(h.level))
                << h.square.toStdString() << " after " << levels.join(", ").toStdString();
        }
        levels.append(h.level);
    }
    for (const EsOpening::Cloud &cloud : opening.clouds) {
        SCOPED_TRACE(cloud.name.toStdString());
        ASSERT_GE(cloud.peakMuf, 160);
        ASSERT_LT(cloud.km, 1500);
        // A cloud under the own horizon does not serve the own station.
        EXPECT_EQ(bySquare.value(cloud.peakSquare), cloud.underHorizon ? QStringList{} : ranked);
    }
}

} // namespace
} // namespace zkr
