#include "SpotSources.h"

#include "HistorySettings.h"
#include "MsgBox_Pos.h"
#include "OwnCall.h"
#include "PaneView.h"
#include "Platform.h"
#include "ProgramState.h"
#include "RunModes.h"
#include "RunTimeError.h"
#include "SpotLineParsing.h"
#include "SpotPage.h"
#include "frmZKR_MUF.h"

#include <QFileInfo>
#include <QScopeGuard>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace zkr {

namespace {

constexpr std::uint32_t White = 0xFFFFFF;
constexpr std::uint32_t Red = 0x0000FF;
constexpr std::uint32_t Green = 0x00FF00;
constexpr std::uint32_t Yellow = 0x00FFFF;

const QString ConnectError = QStringLiteral(
    "Telnet_Error, can't connect. Make sure host and port are correct or even if host exists. "
    "Check firewall settings and your Call in setup.");

ResultPanes workingPanes(frmZKR_MUF &window) {
    return {&window.workingPane(0), &window.workingPane(1), &window.workingPane(2),
            &window.workingPane(3)};
}

} // namespace

SpotSources::SpotSources(ProgramState &state, Platform &platform, frmZKR_MUF &window)
    : state_(state), platform_(platform), window_(window), writer_(workingPanes(window)) {
    // The record starts as the empty element 0; the first chunk becomes 1.
    if (state_.Console_Lines.isEmpty()) {
        state_.Console_Lines.append(QString());
    }
    connectFeed(session_.feed());
    connectFeed(fileFeed_);
    connect(&pipeline_, &SpotPipeline::spotEvaluated, this, &SpotSources::onSpot);
    connect(&history_, &SpotHistory::restored, this, &SpotSources::showRestored);
    connect(&history_, &SpotHistory::released, this, [this](const QList<EvaluatedSpot> &spots) {
        for (const EvaluatedSpot &spot : spots) {
            showSpot(spot);
        }
    });
    connect(&history_, &SpotHistory::statusMessage, this, [this](const QString &text) {
        historyNote_ = QStringLiteral(" (no spot history)");
        window_.setStatusLabel(text, Red);
    });
    connect(&history_, &SpotHistory::exportFinished, this,
            [this](bool ok, qint64 rows, const QString &message) {
                window_.setStatusLabel(ok ? QStringLiteral("Exported %1 spots").arg(rows)
                                          : QStringLiteral("Export failed: ") + message,
                                       ok ? White : Red);
            });
    connect(&pipeline_, &SpotPipeline::pageStarted, this, [this] { writer_.beginPage(); });
    connect(&pipeline_, &SpotPipeline::pageFinished, this, [this](unsigned panesWithEs) {
        writer_.endPage(panesWithEs);
        window_.refreshPanes();
    });
    connect(&session_, &ClusterSession::statusChanged, this, &SpotSources::onSessionStatus);
    connect(&session_, &ClusterSession::attemptFailed, this, &SpotSources::onAttemptFailed);
    // The record keeps the bytes (one character each), so that its replay
    // reads the lines as the session did; the console shows them decoded.
    connect(&session_, &ClusterSession::bytesReceived, this,
            [this](const QByteArray &bytes) { record(QString::fromLatin1(bytes)); });
    connect(&session_, &ClusterSession::textReceived, this, [this](const QString &text) {
        if (console_ != nullptr) {
            console_->appendRecord(text);
        }
    });
    connect(&replay_, &FileReplay::finished, this, [this] {
        fileFeed_.finish();
        // The end of a replay is seen: the work label goes, the status says
        // what came of it.
        window_.hideWorkLabel();
        window_.showStatusCaption(QStringLiteral("Replayed ") +
                                  QFileInfo(replayFileName_).fileName() + QStringLiteral(": ") +
                                  QString::number(replayedSpots_) + QStringLiteral(" spots"));
    });
    connect(&web_, &WebClient::progress, this,
            [this](const QString &caption) { window_.showWorkLabel(caption); });
    connect(&web_, &WebClient::fetched, this, &SpotSources::onPage);
    connect(&web_, &WebClient::failed, this, &SpotSources::onPageFailed);
    // The update check's page: handed to whoever asked, the spot source and
    // the status stay as they are.
    connect(&updateWeb_, &WebClient::fetched, this,
            [this](const QString &page) { finishUpdateFetch(page); });
    connect(&updateWeb_, &WebClient::failed, this, [this] { finishUpdateFetch(std::nullopt); });
}

SpotSources::~SpotSources() {
    // The session must not report to a window that is going away.
    disconnect(&session_, nullptr, this, nullptr);
    session_.stop();
}

void SpotSources::connectFeed(ClusterFeed &feed) {
    connect(&feed, &ClusterFeed::spotLine, this, [this, &feed](const QString &line, bool utf8) {
        const bool file = &feed == &fileFeed_;
        currentSource_ = file                           ? QStringLiteral("file")
                         : state_.Telnet_Call.isEmpty() ? state_.Telnet_Host
                                                        : state_.Telnet_Call;
        onSpotLine(line, utf8, file ? SpotSource::File : SpotSource::Cluster);
    });
    connect(&feed, &ClusterFeed::promptBlock, this, &SpotSources::onPrompt);
}

void SpotSources::applyAnalysisSettings() {
    AnalysisSettings settings;
    // An own locator that cannot be used is none: the spots go out without
    // Es results and the window says to set one, instead of a fault per spot.
    settings.ownLocator = usableOwnLocator(state_.OwnLocator);
    settings.columns = Load_ColumnTable(state_.RunMode);
    settings.evalAll = state_.Eval_Flag;
    settings.over144Only = window_.over144Only();
    settings.esSpotsOnly = window_.esSpotsOnly();
    settings.settingsFileName = state_.IniFileName;
    pipeline_.setSettings(settings);
}

// --- Telnet cluster ---

void SpotSources::Telnet_Connect() {
    bool ok = false;
    const int port = state_.Telnet_Port.trimmed().toInt(&ok);
    applyAnalysisSettings();
    FrmTelnet &window = console();
    window.setFields(state_.Telnet_Host, state_.Telnet_Port, state_.OwnCall);
    // Loads the console without showing it; a shown one goes to the task bar.
    window.setWindowState(window.windowState() | Qt::WindowMinimized);
    if (!ok || port <= 0 || port > 65535) {
        // A port that is no number cannot even be tried.
        session_.stop();
        platform_.beep(800, 200);
        platform_.armBoxPlacement(std::nullopt);
        platform_.messageBox(ConnectError, MsgButtons::Information, QStringLiteral("Attention!"));
        return;
    }
    if (session_.isActiveFor(state_.Telnet_Host, static_cast<quint16>(port), state_.OwnCall)) {
        // Asked again for the session under way (a first-run setup, then the
        // start-up): one connection, one report of its failure. A waiting
        // one tries at once; an open one is opened anew below.
        if (session_.state() == ClusterSession::State::Connecting) {
            return;
        }
        if (session_.state() == ClusterSession::State::Waiting) {
            session_.retryNow();
            return;
        }
    }
    // The user asked for this connection: its first failure deserves a box,
    // the retries that follow only the status label.
    reportFailure_ = true;
    session_.start(state_.Telnet_Call, state_.Telnet_Host, static_cast<quint16>(port),
                   state_.OwnCall);
}

void SpotSources::closeSession() {
    reportFailure_ = false;
    session_.stop();
}

void SpotSources::onSessionStatus(ClusterSession::State state, const QString &text) {
    using State = ClusterSession::State;
    const bool up = state == State::Connected || state == State::LoggedIn;
    if (up) {
        reportFailure_ = false;
    }
    if (up != state_.Telnet_Connected) {
        state_.Telnet_Connected = up;
        console().setConnectionState(
            up ? QStringLiteral(" Connected") : QStringLiteral("not connected"), up ? Green : Red);
    }
    const std::uint32_t colour = state == State::LoggedIn                                  ? Yellow
                                 : state == State::Connecting || state == State::Connected ? White
                                                                                           : Red;
    window_.setStatusLabel((state == State::Idle ? NotConnectedText : text) + historyNote_, colour);
}

void SpotSources::onAttemptFailed() {
    if (!reportFailure_) {
        return;
    }
    reportFailure_ = false;
    platform_.beep(800, 200);
    platform_.armBoxPlacement(std::nullopt);
    platform_.messageBox(ConnectError, MsgButtons::Information, QStringLiteral("Attention!"));
}

void SpotSources::sendData(const QString &text) {
    session_.send(text);
}

void SpotSources::record(const QString &chunk) {
    QStringList &lines = state_.Console_Lines;
    if (lines.size() - 1 >= ConsoleRecordLimit ||
        recordChars_ + chunk.size() > ConsoleRecordChars) {
        // Drop the oldest chunks until a tenth of both limits is free, so the
        // record costs the same per chunk in a run of any length.
        qsizetype drop = 0;
        qsizetype freed = 0;
        while (drop < lines.size() - 1 &&
               (lines.size() - 1 - drop > ConsoleRecordLimit * 9 / 10 ||
                recordChars_ - freed + chunk.size() > ConsoleRecordChars * 9 / 10)) {
            freed += lines.at(1 + drop).size();
            ++drop;
        }
        lines.remove(1, drop);
        recordChars_ -= freed;
    }
    lines.append(chunk);
    recordChars_ += chunk.size();
}

// --- The road of a spot ---

void SpotSources::onSpotLine(const QString &line, bool utf8, SpotSource source) {
    recentLines_.push_back({line, utf8});
    if (recentLines_.size() > MaxSpotLines) {
        recentLines_.pop_front();
    }
    pipeline_.evaluateClusterLine(line, utf8, source);
}

void SpotSources::onSpot(const EvaluatedSpot &spot) {
    if (!history_.record(spot, currentSource_)) {
        showSpot(spot);
    }
}

void SpotSources::showSpot(const EvaluatedSpot &spot) {
    writer_.writeSpot(spot);
    if (!writer_.inPage()) {
        window_.refreshPanes();
    }
    window_.showLastSpot(spot.received);
    ++replayedSpots_;
    if (console_ != nullptr) {
        console_->setDataField(spot.line);
    }
    if (!spot.error.isEmpty() && spot.error != lastReportedError_) {
        // Once per kind of fault: a flood of the same fault is one report.
        lastReportedError_ = spot.error;
        platform_.beep(800, 200);
        platform_.armBoxPlacement(std::nullopt);
        platform_.messageBox(spot.error, MsgButtons::OkOnly, QStringLiteral("ZKR_MUF"));
    }
}

void SpotSources::onPrompt(const QString &block) {
    writer_.writePrompt(block);
    window_.refreshPanes();
}

void SpotSources::reevaluateRecent() {
    applyAnalysisSettings();
    // Rebuilt straight into the panes: these spots were delivered already.
    const SpotEvaluator evaluator(pipeline_.settings());
    for (int i = 0; i < frmZKR_MUF::PaneCount; ++i) {
        window_.workingPane(i).clear();
    }
    for (const auto &[line, utf8] : recentLines_) {
        const EvaluatedSpot spot = evaluator.evaluateClusterLine(line, utf8);
        if (SpotPipeline::isClusterSpot(spot)) {
            writer_.writeSpot(spot);
        }
    }
    window_.refreshPanes();
}

// --- Spot history ---

void SpotSources::startHistory() {
    if (!historyEnabled_ || history_.isStarted()) {
        return;
    }
    // A web page replaces the panes every minute: there the restored spots
    // only go to those who subscribe to the history.
    const bool intoPanes = state_.RunMode != WebMode;
    if (!intoPanes) {
        disconnect(&history_, &SpotHistory::restored, this, &SpotSources::showRestored);
    }
    // Restored reports get their paths for the own station.
    history_.start(HistorySettings::read(state_.IniFilePath, state_.Folders.history), intoPanes,
                   usableOwnLocator(state_.OwnLocator));
}

void SpotSources::showRestored(const QList<EvaluatedSpot> &spots) {
    // As printed when they came, whatever the filters say now.
    for (const EvaluatedSpot &spot : spots) {
        writer_.writeSpot(spot);
    }
    window_.refreshPanes();
}

void SpotSources::exportHistory(int hours) {
    FileDialogRequest request;
    request.title = QStringLiteral("Export the spot history");
    // The dialog adds the patterns to the description itself.
    request.filter = QStringLiteral("CSV files|*.csv");
    request.initialFolder = platform_.userFolder(UserFolder::Documents);
    request.save = true;
    request.defaultSuffix = QStringLiteral("csv");
    QString chosen = platform_.openFileDialog(request);
    if (chosen.isEmpty()) {
        return;
    }
    // A name without its extension would open in no spreadsheet, whatever
    // dialog the desktop gave.
    if (!chosen.endsWith(QLatin1String(".csv"), Qt::CaseInsensitive)) {
        chosen += QLatin1String(".csv");
    }
    const QDateTime now = QDateTime::currentDateTimeUtc();
    history_.exportCsv(hours > 0 ? now.addSecs(-3600LL * hours)
                                 : QDateTime::fromMSecsSinceEpoch(0, Qt::UTC),
                       now.addSecs(1), chosen);
}

// --- Recorded file ---

void SpotSources::Replay_SpotFile() {
    FileDialogRequest request;
    request.title = QStringLiteral("Select the File...");
    request.mustExist = true;
    request.filter = QStringLiteral("E-skip files (*.txt, *.txt)|*.txt;*.txt|all files (*.*)|*.*");
    request.filterIndex = 1;
    request.initialFolder = platform_.applicationFolder();
    const QString chosen = platform_.openFileDialog(request);
    // Like a file dialog that remembers its file: a cancel replays the last.
    if (!chosen.isEmpty()) {
        replayFileName_ = chosen;
    }
    if (replayFileName_.isEmpty()) {
        return;
    }
    applyAnalysisSettings();
    fileFeed_.reset();
    replayedSpots_ = 0;
    window_.showWorkLabel(QStringLiteral("CALCULATING"));
    if (!replay_.start(replayFileName_, fileFeed_)) {
        window_.hideWorkLabel();
        reportRunTimeError(platform_, RunTimeError(RunTimeError::FileNotFound,
                                                   replayFileName_ + QStringLiteral(": ") +
                                                       replay_.errorString()));
    }
}

// --- Web spot page ---

void SpotSources::Evaluate_SpotPage() {
    if (state_.Busy || pageCycle_ || web_.isBusy()) {
        return; // the setup holds the program, or a page is under way
    }
    pageCycle_ = true;
    window_.showWorkLabel(QStringLiteral("DOWNLOADING"));
    web_.fetch(state_.WebCluster_Url);
}

void SpotSources::onPage(const QString &page) {
    // A box shown while the page is evaluated lets the refresh timer run.
    auto cycleEnd = qScopeGuard([this] { pageCycle_ = false; });
    if (Is_ErrorPage(page)) {
        writer_.writeNotice(QStringLiteral("The Webserver may be down !"));
        window_.refreshPanes();
        window_.showWorkLabel(QStringLiteral("OFFLINE !"));
        // The next good page shows even if it is the one seen before.
        state_.SpotPage_Previous.clear();
        return;
    }
    if (page == state_.SpotPage_Previous) {
        state_.FirstFetch = true;
        window_.hideWorkLabel();
        return;
    }
    state_.FirstFetch = false;
    state_.Web_Offline = false;
    state_.SpotPage_Previous = page;
    state_.SpotPage_Lines = Split_SpotPage(Strip_Tags(page));
    applyAnalysisSettings();
    currentSource_ = QStringLiteral("web");
    // Evaluated a slice per event-loop turn: a page of megabytes must not
    // freeze the window. The cycle ends with the last slice.
    cycleEnd.dismiss();
    window_.showWorkLabel(QStringLiteral("CALCULATING"));
    pageNext_ = 0;
    pipeline_.beginPage();
    evaluatePageSlice();
}

void SpotSources::evaluatePageSlice() {
    auto cycleEnd = qScopeGuard([this] {
        pageCycle_ = false;
        pipeline_.endPage();
        window_.hideWorkLabel();
    });
    const QStringList &lines = state_.SpotPage_Lines;
    const qsizetype end = std::min(lines.size(), pageNext_ + PageSliceLines);
    const qsizetype from = std::exchange(pageNext_, end);
    pipeline_.evaluatePageLines(lines, from, end);
    if (end < lines.size() && state_.RunMode == WebMode) {
        cycleEnd.dismiss();
        QTimer::singleShot(0, this, [this] { evaluatePageSlice(); });
    }
}

void SpotSources::onPageFailed() {
    // The warning waits for the user; the timer must not stack more behind it.
    const auto cycleEnd = qScopeGuard([this] { pageCycle_ = false; });
    MsgBox_Timed(state_, platform_, window_);
    state_.FirstFetch = true;
    state_.Web_Offline = true;
    window_.showWorkLabel(QStringLiteral("OFFLINE !"));
}

// --- Update page ---

void SpotSources::fetchUpdatePage(const QString &url,
                                  std::function<void(std::optional<QString>)> done) {
    if (updateDone_ || !updateWeb_.fetch(url)) {
        done(std::nullopt); // one check at a time
        return;
    }
    updateDone_ = std::move(done);
}

void SpotSources::finishUpdateFetch(std::optional<QString> page) {
    if (auto done = std::exchange(updateDone_, nullptr)) {
        done(std::move(page));
    }
}

// --- Console ---

FrmTelnet &SpotSources::console() {
    if (console_ == nullptr) {
        console_ = std::make_unique<FrmTelnet>(state_, platform_, *this);
    }
    return *console_;
}

void SpotSources::showConsole() {
    FrmTelnet &window = console();
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
    window.activateWindow();
}

void SpotSources::hideConsole() {
    if (console_ != nullptr) {
        console_->hide();
    }
}

void SpotSources::unloadConsole() {
    if (console_ != nullptr) {
        console_->close();
    }
}

void SpotSources::prepareFileReplay() {
    window_.Timer1()->stop();
    window_.hideWorkLabel();
    window_.disableFilters();
}

void SpotSources::startWebRefresh() {
    window_.Timer1()->start();
}

void SpotSources::runStartup() {
    window_.Form_Load();
}

} // namespace zkr
