#include "EsWatchLink.h"

#include "PaneView.h"
#include "Platform.h"
#include "ProgramState.h"
#include "RunModes.h"
#include "SpotPipeline.h"
#include "frmZKR_MUF.h"

#include <QTabWidget>
#include <QTimer>

namespace zkr {

EsWatchLink::EsWatchLink(ProgramState &state, Platform &platform, SpotPipeline &pipeline,
                         frmZKR_MUF &window)
    : QObject(&window), state_(state), platform_(platform), window_(window),
      alerts_(watch_, platform), strip_(new EsNowStrip(watch_)), map_(new EsMapView(watch_)),
      aging_(new QTimer(this)) {
    watch_.setWallClock([] { return QDateTime::currentDateTimeUtc(); });
    connect(&pipeline, &SpotPipeline::spotEvaluated, this, &EsWatchLink::addSpot);
    connect(&alerts_, &WatchAlerts::alerted, strip_, &EsNowStrip::showAlert);
    connect(map_, &EsMapView::spotChosen, this,
            [this](const WatchSpot &spot) { selectInAllPane(spot); });
    connect(aging_, &QTimer::timeout, this, [this] {
        if (!watch_.usesSpotTime()) {
            watch_.refresh();
        }
    });
    aging_->start(AgingMs);
}

void EsWatchLink::readSettings() {
    settingsRead_ = true;
    watch_.setSettings(WatchSettings::read(state_.IniFilePath));
    followOwnLocator();
}

void EsWatchLink::followOwnLocator() {
    const QString own = state_.OwnLocator.toUpper();
    if (own.size() < 4) {
        return;
    }
    if (own == ownLocator_) {
        return;
    }
    ownLocator_ = own;
    map_->setOwnLocator(own);
    // The coast is projected for the station, so it follows it.
    // Beside a portable program, else in the installation's data folder.
    const QString programFolder = platform_.applicationFolder();
    map_->setCoastlines(Coastlines::load(EsMapView::coastlineFile(
        {programFolder, ProgramFolders::installedDataFolder(programFolder)})));
}

void EsWatchLink::prepare() {
    if (!settingsRead_) {
        readSettings();
    }
    // A replayed file keeps its own times, else its opening is over at once.
    const bool replay = logReplay_ || state_.RunMode.toUpper() == FileMode;
    if (replay != watch_.usesSpotTime()) {
        if (replay) {
            watch_.setSpotTimeClock();
        } else {
            watch_.setWallClock([] { return QDateTime::currentDateTimeUtc(); });
        }
    }
}

void EsWatchLink::addSpot(const EvaluatedSpot &spot) {
    prepare();
    watch_.addSpot(spot);
}

void EsWatchLink::addRestored(const QList<EvaluatedSpot> &spots) {
    prepare();
    for (const EvaluatedSpot &spot : spots) {
        watch_.restoreSpot(spot);
    }
}

void EsWatchLink::addRestoredReports(const QList<Reception> &reports) {
    prepare();
    for (const Reception &report : reports) {
        watch_.restoreReport(report);
    }
}

void EsWatchLink::addReport(const Reception &report) {
    prepare();
    watch_.addReport(report);
}

void EsWatchLink::beginLogReplay() {
    logReplay_ = true;
    watch_.clear();
    prepare();
}

bool EsWatchLink::selectInAllPane(const WatchSpot &spot) {
    PaneView *all = window_.displayPane(0);
    const MemoryPane *source = all->source();
    if (source == nullptr || spot.isReport()) {
        return false;
    }
    // Newest first, like the pane: a spot repeated later is found there.
    for (std::int64_t i = 0; i < source->lineCount(); ++i) {
        if (source->line(i).text == spot.printed) {
            window_.SSTab1()->setCurrentIndex(0);
            all->selectLine(i);
            return true;
        }
    }
    return false;
}

} // namespace zkr
