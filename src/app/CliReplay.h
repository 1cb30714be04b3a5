#pragma once

#include "CallBookLocator.h"
#include "ClusterFeed.h"
#include "EsWatch.h"
#include "MemoryPane.h"
#include "PaneWriter.h"
#include "SpotPipeline.h"

#include <QObject>
#include <QStringList>

#include <array>
#include <memory>

class QEventLoop;
class QFileDevice;
class QIODevice;

namespace zkr {

struct CliOptions;
class ClusterSession;

// One run of the tool: spot text from a file, a web page or a live cluster
// through the same feed and pipeline as the window, into four in-memory
// panes, and with --jsonl each evaluated spot to the output as it comes.
// Or reception reports (WSJT-X, a decode log, PSK Reporter) into the
// Reports pane, as JSON lines or into the watch.
class CliReplay : public QObject {
    Q_OBJECT
public:
    // `spotsOut`: where each spot goes as a JSON line, or null; with
    // --watch, where the watch's lines go.
    explicit CliReplay(const CliOptions &options, QFileDevice *spotsOut = nullptr);
    ~CliReplay() override;

    // Feeds all of `input` as received cluster text. Returns the bytes read.
    qint64 replayClusterText(QIODevice &input);
    // Evaluates all of `input` as a downloaded web spot page.
    void evaluateSpotPage(QIODevice &input);
    // Reads all of `input` as a decode log heard at the own station.
    // Returns the bytes read.
    qint64 replayDecodeLog(QIODevice &input);
    // Logs into the cluster of the options (or listens to WSJT-X, or to PSK
    // Reporter) until `seconds` have passed (0: until stopLive),
    // reconnecting after drops. Runs the event loop; returns when done.
    void runLive(int seconds);
    void stopLive();

    ClusterFeed &feed() { return feed_; }
    SpotPipeline &pipeline() { return pipeline_; }
    ClusterSession *session() { return session_; }
    // The Es watch of --watch, or null.
    EsWatch *watch() { return watch_.get(); }
    const std::array<MemoryPane, 4> &panes() const { return panes_; }
    const MemoryPane &reportsPane() const { return reportsPane_; }
    // Locates spots through the call book and the country file and learns
    // from the reports of the run; load and seed it before the run.
    CallBookLocator &callBook() { return callBook_; }
    void useCallBook();
    // Takes one report: learned, kept or not, then printed or watched.
    void takeReport(const Reception &report);
    // Faults reported while evaluating, each text once.
    const QStringList &messages() const { return messages_; }
    void refreshDisplay();

private:
    void onSpot(const EvaluatedSpot &spot);
    void connectFeed(ClusterFeed &feed);
    // Starts the live source of the options; its status goes to stderr.
    void startLive(std::unique_ptr<QObject> &source);

    const CliOptions &options_;
    QFileDevice *spotsOut_;
    std::array<MemoryPane, 4> panes_;
    PaneWriter writer_;
    SpotPipeline pipeline_;
    ClusterFeed feed_;
    ClusterSession *session_ = nullptr;
    QEventLoop *liveLoop_ = nullptr;
    QStringList messages_;
    std::unique_ptr<EsWatch> watch_;
    MemoryPane reportsPane_;
    CallBookLocator callBook_;
    bool learning_ = false;
    bool live_ = false;
    QByteArray line_; // the JSON line being written
};

} // namespace zkr
