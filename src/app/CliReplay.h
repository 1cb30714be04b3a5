#pragma once

#include "DiscardingPane.h"
#include "EvaluationView.h"
#include "MemoryPane.h"
#include "ProgramState.h"
#include "ReceiveHost.h"
#include "ResultPanes.h"
#include "ScriptedPlatform.h"

#include <QStringList>

#include <array>

class QIODevice;

namespace zkr {

struct CliOptions;

// One run of the program without windows: start-up as the program does it
// (run mode "FILE", or "WEBCLUSTER" for a web page), then spot text through
// the same receive processor and evaluation as a replayed file, into four
// in-memory working panes. A display refresh commits them; the committed
// lines are what the run shows. Message boxes are answered by a script and
// their texts kept.
class CliReplay : public ReceiveHost, public EvaluationView {
public:
    explicit CliReplay(const CliOptions &options);

    // Feeds `input` line by line (lines end at CR LF, CR or LF) to the receive
    // processor as Latin-1 text. Returns the number of lines. A run-time
    // error ends the replay and is reported like any other.
    long long replayClusterText(QIODevice &input);
    // Evaluates all of `input` as a downloaded web spot page.
    void evaluateSpotPage(QIODevice &input);
    // One received chunk through the receive processor, as from a session.
    void receiveChunk(const QString &text);

    const std::array<MemoryPane, 4> &panes() const { return panes_; }
    const QStringList &messages() const { return platform_.messages(); }

    // ReceiveHost: sends go nowhere, there is no session.
    void sendData(const QString &) override {}
    void evaluateClusterLine() override;
    Pane &displayPane(int) override { return display_; }
    Pane &workingPane(int index) override;
    void setStatus(const QString &, std::uint32_t) override {}

    // EvaluationView, and the labels and events both interfaces share.
    void showWorkLabel(const QString &) override {}
    void hideWorkLabel() override {}
    void processEvents() override {}
    bool over144Only() override { return over144Only_; }
    bool esSpotsOnly() override { return esSpotsOnly_; }
    void refreshDisplay() override;
    void setConsoleData(const QString &) override {}

private:
    ProgramState state_;
    ScriptedPlatform platform_;
    std::array<MemoryPane, 4> panes_;
    ResultPanes working_{&panes_[0], &panes_[1], &panes_[2], &panes_[3]};
    DiscardingPane display_;
    bool over144Only_;
    bool esSpotsOnly_;
};

} // namespace zkr
