#pragma once

#include "EvaluationView.h"
#include "FrmTelnet.h"
#include "ReceiveHost.h"
#include "ResultPanes.h"
#include "SessionView.h"
#include "SpotFileReplay.h"
#include "TelnetSession.h"
#include "WebClient.h"

#include <memory>

namespace zkr {

struct ProgramState;
class Platform;
class frmZKR_MUF;

// Connects the three spot sources (telnet cluster, web spot page, recorded
// file) with the evaluation cycle and the main window's panes and labels.
class SpotSources : public ReceiveHost,
                    public EvaluationView,
                    public SessionView,
                    public FrmTelnet::Host {
public:
    SpotSources(ProgramState &state, Platform &platform, frmZKR_MUF &window);

    void Telnet_Connect();
    void Replay_SpotFile() override;
    // Fetches the web spot page and evaluates it when it is new.
    void Evaluate_SpotPage() override;
    // Closes the telnet session and shows it as not connected.
    void closeSession();

    // The telnet console, loaded (not shown) on first use.
    FrmTelnet &console();
    // Brings the console up in front, as the user asks for it.
    void showConsole();
    // Hides the console, if it was ever loaded.
    void hideConsole();
    // Closes the console, if it was ever loaded, on the way out.
    void unloadConsole();

    TelnetSession &session() { return session_; }
    WebClient &web() { return web_; }

    // ReceiveHost
    void sendData(const QString &text) override;
    void evaluateClusterLine() override;
    Pane &displayPane(int index) override;
    Pane &workingPane(int index) override;
    void setStatus(const QString &caption, std::uint32_t bgrColour) override;
    void hideWorkLabel() override;
    void processEvents() override;

    // EvaluationView
    void showWorkLabel(const QString &caption) override;
    bool over144Only() override;
    bool esSpotsOnly() override;
    void refreshDisplay() override;
    void setConsoleData(const QString &line) override;

    // SessionView
    void setStatusLabel(const QString &caption, std::uint32_t bgrColour) override;
    void setConsoleState(const QString &caption, std::uint32_t bgrColour) override;
    void prepareConsole(const QString &host, const QString &port, const QString &call) override;
    void appendConsole(const QString &chunk) override;

    // FrmTelnet::Host
    void prepareFileReplay() override;
    void startWebRefresh() override;
    void runStartup() override;

private:
    ResultPanes workingPanes();

    ProgramState &state_;
    Platform &platform_;
    frmZKR_MUF &window_;
    TelnetSession session_;
    WebClient web_;
    SpotFileReplay replay_;
    // A window of its own, like the main window, not one inside it.
    std::unique_ptr<FrmTelnet> console_;
};

} // namespace zkr
