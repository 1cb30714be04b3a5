#include "WatchAlerts.h"

#include "Platform.h"

namespace zkr {

WatchAlerts::WatchAlerts(EsWatch &watch, Platform &platform, QObject *parent)
    : QObject(parent), watch_(watch), platform_(platform) {
    connect(&watch_, &EsWatch::levelReached, this,
            [this](const WatchCloud &, WatchLevel level, const QString &text) {
                onLevel(level, text);
            });
}

int WatchAlerts::beepFrequency(WatchLevel level) {
    switch (level) {
    case WatchLevel::Confirmed144:
        return 1400;
    case WatchLevel::Open144:
        return 1200;
    case WatchLevel::Rising:
        return 1000;
    default:
        return 800;
    }
}

void WatchAlerts::onLevel(WatchLevel level, const QString &text) {
    const bool notified = platform_.notify(Title, text);
    if (watch_.settings().sound) {
        platform_.beep(beepFrequency(level), BeepMs);
    }
    Q_EMIT alerted(level, text, notified);
}

} // namespace zkr
