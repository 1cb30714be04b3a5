#include "ReportSources.h"

#include "EsWatchLink.h"
#include "MemoryPane.h"
#include "OwnCall.h"
#include "PaneView.h"
#include "Platform.h"
#include "ProgramFolders.h"
#include "ProgramState.h"
#include "ReportOutput.h"
#include "RunTimeError.h"
#include "SpotPipeline.h"

#include <QDir>
#include <QFileInfo>
#include <QTimer>

namespace zkr {

namespace {

QString learnedFromText(LearnedFrom from) {
    switch (from) {
    case LearnedFrom::Own:
        return QStringLiteral("the own station in Setup");
    case LearnedFrom::Wsjtx:
        return QStringLiteral("a WSJT-X/JTDX decode");
    case LearnedFrom::AllTxt:
        return QStringLiteral("a decode log");
    case LearnedFrom::PskReporter:
        return QStringLiteral("PSK Reporter");
    case LearnedFrom::Spotter:
        return QStringLiteral("a spotter's locator on the cluster");
    case LearnedFrom::Comment:
        return QStringLiteral("a cluster comment");
    }
    return QString();
}

} // namespace

ReportSources::ReportSources(ProgramState &state, Platform &platform, SpotPipeline &pipeline,
                             EsWatchLink &watch, MemoryPane &pane, PaneView &view, QObject *parent)
    : QObject(parent), state_(state), platform_(platform), pipeline_(pipeline), watch_(watch),
      pane_(pane), view_(view), flush_(new QTimer(this)) {
    pipeline_.setLocator(&callBook_);
    flush_->setSingleShot(true);
    flush_->setInterval(0);
    connect(flush_, &QTimer::timeout, this, &ReportSources::flushPane);
    connect(&listener_, &WsjtxListener::reception, this, &ReportSources::takeReport);
    connect(&psk_, &PskReporterClient::reception, this, &ReportSources::takeReport);
    connect(&reader_, &AllTxtReader::reception, this, &ReportSources::takeReport);
    connect(&listener_, &WsjtxListener::statusChanged, this,
            [this](const QString &text) { setStatus(Source::Wsjtx, text); });
    connect(&psk_, &PskReporterClient::statusChanged, this,
            [this](const QString &text) { setStatus(Source::PskReporter, text); });
    connect(&replay_, &FileReplay::finished, this, [this] {
        replayingLog_ = false;
        flushPane();
        // Live reports that follow run on the wall clock again.
        watch_.endLogReplay();
        Q_EMIT notice(QStringLiteral("Replayed %1: %2 reports, %3 in range")
                          .arg(logName_)
                          .arg(logReports_)
                          .arg(logShown_));
    });
    wsjtxStatus_ = QStringLiteral("WSJT-X: off");
    pskStatus_ = psk_.statusText();
}

ReportSources::~ReportSources() {
    // The pipeline outlives this object for a moment.
    pipeline_.setLocator(nullptr);
}

QString ReportSources::ownCall() const {
    // The markers of the web list and the file replay are no station.
    const QString call = state_.OwnCall.trimmed().toUpper();
    return call.startsWith(QLatin1Char('!')) ? QString() : call;
}

QString ReportSources::ownLocator() const {
    return usableOwnLocator(state_.OwnLocator);
}

void ReportSources::start() {
    if (!countriesTried_) {
        // Beside a portable program, else in the installation's data folder,
        // else where the distribution put it.
        const QString programFolder = platform_.applicationFolder();
        QStringList paths = CountryFile::candidatePaths(programFolder);
        for (const QString &path :
             CountryFile::candidatePaths(ProgramFolders::installedDataFolder(programFolder))) {
            if (!paths.contains(path)) {
                paths << path;
            }
        }
        loadCountries(paths);
    }
    applySettings();
}

void ReportSources::loadCountries(const QStringList &paths) {
    const bool first = !countriesTried_;
    countriesTried_ = true;
    for (const QString &path : paths) {
        if (QFileInfo::exists(path) && callBook_.countries().load(path)) {
            return;
        }
    }
    if (first) {
        Q_EMIT notice(QStringLiteral("No country file (cty.dat) found; calls are placed by "
                                     "their learned locators only. Looked in ") +
                      paths.join(QStringLiteral(", ")));
    }
}

void ReportSources::applySettings() {
    const QString call = ownCall();
    const QString locator = ownLocator();
    listener_.setOwnStation(call, locator);
    reader_.setOwnStation(call, locator);
    if (!call.isEmpty() && !locator.isEmpty()) {
        callBook_.learnOwn(call, locator, QDateTime::currentDateTimeUtc());
    }
    if (!live_) {
        return;
    }
    const WsjtxSettings wsjtx = WsjtxSettings::read(state_.IniFilePath);
    if (wsjtx != wsjtxRunning_) {
        wsjtxRunning_ = wsjtx;
        listener_.start(wsjtx);
        if (!wsjtx.enabled) {
            setStatus(Source::Wsjtx, QStringLiteral("WSJT-X: off"));
        }
    }
    const PskRun psk{PskReporterSettings::read(state_.IniFilePath), call, locator};
    if (psk != pskRunning_) {
        pskRunning_ = psk;
        if (psk.settings.enabled) {
            psk_.start(psk.settings.host, psk.settings.port, psk.settings.bands, call, locator,
                       psk.settings.allReports);
        } else {
            psk_.stop();
        }
    }
}

void ReportSources::setStatus(Source source, const QString &text) {
    (source == Source::Wsjtx ? wsjtxStatus_ : pskStatus_) = text;
    Q_EMIT statusChanged(source, text);
}

QString ReportSources::status(Source source) const {
    return source == Source::Wsjtx ? wsjtxStatus_ : pskStatus_;
}

// --- The road of a report ---

void ReportSources::takeReport(const Reception &report) {
    callBook_.learn(report);
    watch_.addReport(report);
    // Live reports that come meanwhile are not the log's.
    const bool fromLog = replayingLog_ && report.source == ReportSource::AllTxt;
    logReports_ += fromLog ? 1 : 0;
    if (Is_ReportInRange(report)) {
        logShown_ += fromLog ? 1 : 0;
        if (held_) {
            // Bounded like the pane: what it would drop anyway is not kept.
            if (held_->size() >= pane_.maxLines()) {
                held_->removeFirst();
            }
            held_->append(report);
        } else {
            showReport(report);
        }
    }
    Q_EMIT reportEvaluated(report);
}

void ReportSources::showReport(const Reception &report) {
    // Newest on top, like the spot panes.
    pane_.setCaret(0);
    for (const TextRun &run : Report_Runs(report)) {
        pane_.insertColored(run.text, run.colour);
    }
    pane_.setCaret(0);
    flush_->start();
}

void ReportSources::holdLiveReports() {
    if (!held_) {
        held_.emplace();
    }
}

void ReportSources::restoreReports(const QList<Reception> &reports) {
    watch_.addRestoredReports(reports);
    for (const Reception &report : reports) {
        if (Is_ReportInRange(report)) {
            showReport(report);
        }
    }
}

void ReportSources::releaseLiveReports() {
    if (!held_) {
        return;
    }
    const QList<Reception> held = std::move(*held_);
    held_.reset();
    for (const Reception &report : held) {
        showReport(report);
    }
}

void ReportSources::restoreCallBook(const QList<CallBookEntry> &entries) {
    for (const CallBookEntry &entry : entries) {
        callBook_.book().restore(entry);
    }
}

void ReportSources::flushPane() {
    flush_->stop();
    if (pane_.hasUncommitted()) {
        pane_.commit();
        view_.refresh();
    }
}

// --- Decode log ---

void ReportSources::openDecodeLog() {
    FileDialogRequest request;
    request.title = QStringLiteral("Open a decode log of WSJT-X or JTDX");
    // The dialog adds the patterns to the descriptions itself.
    request.filter = QStringLiteral("Decode logs|ALL.TXT;*.TXT;*.txt|All files|*");
    request.mustExist = true;
    // Where the two programs keep it on Linux, beside our own data folder.
    request.initialFolder = QDir::homePath();
    const QDir shared(QDir(platform_.userFolder(UserFolder::Data)).filePath(QStringLiteral("..")));
    for (const char *program : {"WSJT-X", "JTDX"}) {
        if (shared.exists(QLatin1String(program))) {
            request.initialFolder = QDir::cleanPath(shared.filePath(QLatin1String(program)));
            break;
        }
    }
    const QString chosen = platform_.openFileDialog(request);
    if (chosen.isEmpty()) {
        return;
    }
    reader_.setOwnStation(ownCall(), ownLocator());
    logName_ = QFileInfo(chosen).fileName();
    logReports_ = 0;
    logShown_ = 0;
    // The watch runs on the log's times while it plays, as for a recorded
    // cluster file: else a log of yesterday would be over at once.
    watch_.beginLogReplay();
    replayingLog_ = replay_.start(chosen, reader_);
    if (!replayingLog_) {
        watch_.endLogReplay();
        reportRunTimeError(platform_,
                           RunTimeError(RunTimeError::FileNotFound,
                                        chosen + QStringLiteral(": ") + replay_.errorString()));
        return;
    }
    Q_EMIT notice(QStringLiteral("Replaying ") + logName_);
}

// --- Where is this call ---

QString ReportSources::whereIs(const QString &typed) const {
    const QString call = typed.trimmed().toUpper();
    if (call.isEmpty()) {
        return QString();
    }
    const std::optional<CallPosition> position = callBook_.where(call);
    if (!position) {
        return call + QStringLiteral(": not known");
    }
    if (position->how == Located::Country) {
        return call + QStringLiteral(": %1, country file: %2, within %3 km")
                          .arg(position->locator, position->country)
                          .arg(qRound(position->uncertaintyKm));
    }
    return call + QStringLiteral(": %1, from %2, %3")
                      .arg(position->locator, learnedFromText(position->from),
                           position->learned.toUTC().toString(QStringLiteral("yyyy-MM-dd HH:mm")) +
                               QLatin1Char('Z'));
}

} // namespace zkr
