#pragma once

#include "EsMapView.h"
#include "EsNowStrip.h"
#include "EsWatch.h"
#include "WatchAlerts.h"

#include <QObject>

class QTimer;

namespace zkr {

struct ProgramState;
class Platform;
class SpotPipeline;
class frmZKR_MUF;

// The Es watch in the window: takes every evaluated spot and reception
// report, alerts through the platform, and feeds the "Es now" strip and the
// Map tab. Spots of a replayed file run on their own times, live spots on
// the wall clock.
class EsWatchLink : public QObject {
    Q_OBJECT
public:
    // How often the strip's ages and the levels move without spots.
    static constexpr int AgingMs = 30 * 1000;

    EsWatchLink(ProgramState &state, Platform &platform, SpotPipeline &pipeline,
                frmZKR_MUF &window);

    EsWatch &watch() { return watch_; }
    EsNowStrip &strip() { return *strip_; }
    EsMapView &map() { return *map_; }
    // Reads the watch's section of the settings file (after a start or a
    // save of the setup).
    void readSettings();
    // The own station of the map follows the settings.
    void followOwnLocator();
    // Shows the spot's line in the All pane, selected; false when the pane
    // no longer holds it.
    bool selectInAllPane(const WatchSpot &spot);

    // A spot for the watch, live from the pipeline.
    void addSpot(const EvaluatedSpot &spot);
    // Spots restored from the history: their clouds come back on the map,
    // their alerts do not.
    void addRestored(const QList<EvaluatedSpot> &spots);
    void addRestoredReports(const QList<Reception> &reports);
    // A reception report (an FT8 decode, a PSK Reporter report).
    void addReport(const Reception &report);
    // A decode log plays on its own times, from a clean watch; after it the
    // next live spot or report puts the watch back on the wall clock.
    void beginLogReplay();
    void endLogReplay() { logReplay_ = false; }

private:
    // Reads the settings once and puts the watch on the clock of the source.
    void prepare();

    ProgramState &state_;
    Platform &platform_;
    frmZKR_MUF &window_;
    EsWatch watch_;
    WatchAlerts alerts_;
    EsNowStrip *strip_;
    EsMapView *map_;
    QTimer *aging_;
    bool settingsRead_ = false;
    bool logReplay_ = false;
    QString ownLocator_;
};

} // namespace zkr
