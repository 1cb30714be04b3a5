#pragma once

#include "EsWatch.h"

#include <QObject>

namespace zkr {

class Platform;

// Tells the user when the watch reaches a level: a desktop notification and
// a short sound (when switched on) with it, both through the platform. The
// strip holds every alert for a while, so without a notification service
// nothing is lost, and nobody is told that the service is missing.
class WatchAlerts : public QObject {
    Q_OBJECT
public:
    static inline const QString Title = QStringLiteral("ZKR_MUF Es watch");
    static constexpr int BeepMs = 150;

    WatchAlerts(EsWatch &watch, Platform &platform, QObject *parent = nullptr);

    // The sound of a level: higher for the levels nearer to a 2 m QSO.
    static int beepFrequency(WatchLevel level);

Q_SIGNALS:
    // After every alert; `notified` is false when the desktop could not show
    // it.
    void alerted(zkr::WatchLevel level, const QString &text, bool notified);

private:
    void onLevel(WatchLevel level, const QString &text);

    EsWatch &watch_;
    Platform &platform_;
};

} // namespace zkr
