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

    static const QRegularExpression notify(
        R"(^notify "ZKR_MUF Es watch" "(.+) via (\w{4})( .*)?" -> (shown|unavailable)$)");
    QStringList other;
    QHash<QString, QStringList> bySquare;
    for (const QString &entry : platform.log()) {
        const auto match = notify.match(entry);
        if (match.hasMatch()) {
            bySquare[match.captured(2)].append(match.captured(1));
        } else if (!entry.startsWith("beep ")) {
            other.append(entry);
        }
    }
    EXPECT_EQ(other, QStringList());
    EXPECT_EQ(platform.log().filter("beep ").size() * 2, platform.log().size()); // one per alert
    // Each square's levels are those of `ranked`, in its order, each once.
    for (auto it = bySquare.cbegin(); it != bySquare.cend(); ++it) {
        QStringList inOrder = ranked;
        inOrder.removeIf([&it](const QString &level) { return !it->contains(level); });
        EXPECT_EQ(*it, inOrder) << it.key().toStdString();
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
