#pragma once

#include "AllTxtReader.h"
#include "CallBookLocator.h"
#include "FileReplay.h"
#include "PskReporterClient.h"
#include "PskReporterSettings.h"
#include "Reception.h"
#include "WsjtxListener.h"
#include "WsjtxSettings.h"

#include <QObject>
#include <QString>

#include <optional>

class QTimer;

namespace zkr {

struct ProgramState;
class Platform;
class MemoryPane;
class PaneView;
class EsWatchLink;
class SpotPipeline;

// The reception reports in the window: the WSJT-X / JTDX listener, the PSK
// Reporter feed and the replay of a decode log (ALL.TXT), and the call book
// they teach. Every report goes to the call book, the Es watch, the Reports
// pane when its cloud is in range, and out through reportEvaluated(). The
// call book also gives the pipeline's spots their approximate paths.
class ReportSources : public QObject {
    Q_OBJECT
public:
    enum class Source { Wsjtx, PskReporter };
    Q_ENUM(Source)

    ReportSources(ProgramState &state, Platform &platform, SpotPipeline &pipeline,
                  EsWatchLink &watch, MemoryPane &pane, PaneView &view, QObject *parent = nullptr);
    ~ReportSources() override;

    CallBookLocator &callBook() { return callBook_; }
    WsjtxListener &wsjtx() { return listener_; }
    PskReporterClient &pskReporter() { return psk_; }

    // The live sources (UDP, PSK Reporter) run only where the program allows
    // them: tests of other parts never listen or connect.
    void enableLive() { live_ = true; }
    // Once the settings are read: the country file on the first call, then
    // applySettings().
    void start();
    // After the settings changed: the own station goes to every source; a
    // live source whose settings or own station changed starts anew, the
    // others keep running (a busy port is not said again).
    void applySettings();
    // Looks for the country file at `paths` in order; a miss is said once.
    void loadCountries(const QStringList &paths);

    // File menu: asks for a decode log and replays it, a slice per turn.
    void openDecodeLog();
    bool isReplayingLog() const { return replayingLog_; }

    // What the book knows of `typed`: its locator, how and when it was
    // learned, for the window's where box.
    QString whereIs(const QString &typed) const;

    // The history is about to hand back the reports of the last hours: live
    // reports wait for the pane until they are in, so that it stays newest
    // first.
    void holdLiveReports();
    // Stored reports, oldest first: their clouds come back without alerts,
    // those in range go into the pane.
    void restoreReports(const QList<Reception> &reports);
    // The restore is over: the live reports held meanwhile go on top.
    void releaseLiveReports();
    // The stored call book, and what it learned since the last call.
    void restoreCallBook(const QList<CallBookEntry> &entries);
    QList<CallBookEntry> takeCallBookChanges() { return callBook_.book().takeChanges(); }
    QString status(Source source) const;

Q_SIGNALS:
    // Every report, after the book, the watch and the pane took it; the
    // history listens here.
    void reportEvaluated(const zkr::Reception &report);
    // A source's status line changed (plain text).
    void statusChanged(zkr::ReportSources::Source source, const QString &text);
    // A passing message for the window's status (a missing country file, a
    // replay's result).
    void notice(const QString &text);

private:
    struct PskRun {
        PskReporterSettings settings;
        QString call;
        QString locator;
        friend bool operator==(const PskRun &, const PskRun &) = default;
    };

    void takeReport(const Reception &report);
    void showReport(const Reception &report);
    void setStatus(Source source, const QString &text);
    void flushPane();
    QString ownCall() const;
    QString ownLocator() const;

    ProgramState &state_;
    Platform &platform_;
    SpotPipeline &pipeline_;
    EsWatchLink &watch_;
    MemoryPane &pane_;
    PaneView &view_;
    CallBookLocator callBook_;
    WsjtxListener listener_;
    PskReporterClient psk_;
    AllTxtReader reader_;
    FileReplay replay_;
    // The pane is committed once per event-loop turn, however many reports
    // the turn brought.
    QTimer *flush_;
    bool live_ = false;
    // Live reports for the pane while the history restores, oldest first.
    std::optional<QList<Reception>> held_;
    bool countriesTried_ = false;
    std::optional<WsjtxSettings> wsjtxRunning_;
    std::optional<PskRun> pskRunning_;
    QString wsjtxStatus_;
    QString pskStatus_;
    // From the start of a log's replay to its last line (read after the
    // replay's last slice when it has no line end).
    bool replayingLog_ = false;
    QString logName_;
    qint64 logReports_ = 0;
    qint64 logShown_ = 0;
};

} // namespace zkr
