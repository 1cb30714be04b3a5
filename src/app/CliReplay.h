#pragma once

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
    // Logs into the cluster of the options and listens until `seconds` have
    // passed (0: until stopLive), reconnecting after drops. Runs the event
    // loop; returns when done.
    void runLive(int seconds);
    void stopLive();

    ClusterFeed &feed() { return feed_; }
    SpotPipeline &pipeline() { return pipeline_; }
    ClusterSession *session() { return session_; }
    // The Es watch of --watch, or null.
    EsWatch *watch() { return watch_.get(); }
    const std::array<MemoryPane, 4> &panes() const { return panes_; }
    // Faults reported while evaluating, each text once.
    const QStringList &messages() const { return messages_; }
    void refreshDisplay();

private:
    void onSpot(const EvaluatedSpot &spot);
    void connectFeed(ClusterFeed &feed);

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
};

} // namespace zkr
