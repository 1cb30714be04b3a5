#pragma once

#include "ClusterFeed.h"
#include "ClusterSession.h"
#include "FileReplay.h"
#include "FrmTelnet.h"
#include "PaneWriter.h"
#include "SpotHistory.h"
#include "SpotPipeline.h"
#include "WebClient.h"

#include <QObject>

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace zkr {

struct ProgramState;
class Platform;
class frmZKR_MUF;

// Wires the three spot sources (telnet cluster, web spot page, recorded
// file) to the one pipeline, and the pipeline to the window: every spot is
// evaluated once and handed as a value to the panes and the console (and to
// anyone else who subscribes to pipeline()).
class SpotSources : public QObject, public FrmTelnet::Host {
    Q_OBJECT
public:
    // Spot lines kept to rebuild the panes when a filter changes.
    static constexpr std::size_t MaxSpotLines = 250;
    // The console's record of received text, for its debug file.
    static constexpr int ConsoleRecordLimit = 20000;
    static constexpr qsizetype ConsoleRecordChars = 4 * 1024 * 1024;
    // Web page lines evaluated per event-loop turn (a few milliseconds).
    static constexpr qsizetype PageSliceLines = 2000;
    // The status of a closed session.
    static inline const QString NotConnectedText =
        QStringLiteral(" Not connected !") +
        QStringLiteral(" Click to Check Setup or check your firewall settings !");

    SpotSources(ProgramState &state, Platform &platform, frmZKR_MUF &window);
    ~SpotSources() override;

    SpotPipeline &pipeline() { return pipeline_; }
    ClusterSession &session() { return session_; }
    WebClient &web() { return web_; }
    // Fetches the download page on a client of its own, so that it never
    // waits for a spot page; `done` gets the page or none.
    void fetchUpdatePage(const QString &url, std::function<void(std::optional<QString>)> done);
    WebClient &updateWeb() { return updateWeb_; }

    // Connects to the configured cluster and keeps connecting.
    void Telnet_Connect();
    // Closes the session for good (until the next Telnet_Connect).
    void closeSession();
    void Replay_SpotFile() override;
    // Starts fetching the web spot page; it is evaluated when it arrives.
    void Evaluate_SpotPage() override;
    // The filters changed: the panes are rebuilt from the recent spot lines.
    void reevaluateRecent();
    // The analysis settings from the program state and the filter boxes.
    void applyAnalysisSettings();

    // The spot history: on only where the program enables it (tests of
    // other parts start with empty panes). Started once, after the
    // settings are read; closed (everything committed) when the program ends.
    void enableHistory() { historyEnabled_ = true; }
    void startHistory();
    void closeHistory() { history_.close(); }
    SpotHistory &history() { return history_; }
    // Asks where to write the spots of the last `hours` (0: all) as CSV.
    void exportHistory(int hours);

    // The telnet console, loaded (not shown) on first use.
    FrmTelnet &console();
    void showConsole();
    void hideConsole();
    void unloadConsole();

    // FrmTelnet::Host
    void sendData(const QString &text) override;
    void prepareFileReplay() override;
    void startWebRefresh() override;
    void runStartup() override;

private:
    void onSpotLine(const QString &line, bool utf8, SpotSource source);
    void onSpot(const EvaluatedSpot &spot);
    void showSpot(const EvaluatedSpot &spot);
    void showRestored(const QList<EvaluatedSpot> &spots);
    void onPrompt(const QString &block);
    void onSessionStatus(ClusterSession::State state, const QString &text);
    void onAttemptFailed();
    void onPage(const QString &page);
    void onPageFailed();
    void evaluatePageSlice();
    void record(const QString &chunk);
    void connectFeed(ClusterFeed &feed);
    void finishUpdateFetch(std::optional<QString> page);

    ProgramState &state_;
    Platform &platform_;
    frmZKR_MUF &window_;
    SpotPipeline pipeline_;
    PaneWriter writer_;
    ClusterSession session_;
    ClusterFeed fileFeed_;
    FileReplay replay_;
    WebClient web_;
    WebClient updateWeb_;
    std::function<void(std::optional<QString>)> updateDone_;
    QString replayFileName_;
    std::deque<std::pair<QString, bool>> recentLines_; // a line and whether it came as UTF-8
    qsizetype recordChars_ = 0;
    qsizetype replayedSpots_ = 0; // spots since the last replay began
    qsizetype pageNext_ = 0;      // the page line the next slice starts at
    bool reportFailure_ = false;
    // From a page's fetch until it is evaluated or its failure reported:
    // one page at a time, however often the timer or the user asks.
    bool pageCycle_ = false;
    QString lastReportedError_;
    SpotHistory history_;
    bool historyEnabled_ = false;
    // Where the spots being evaluated come from, as the history names it.
    QString currentSource_;
    // Added to the session status once the history is off.
    QString historyNote_;
    // A window of its own, like the main window, not one inside it.
    std::unique_ptr<FrmTelnet> console_;
};

} // namespace zkr
