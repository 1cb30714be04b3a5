#include "SpotSources.h"

#include "EvaluationCycle.h"
#include "MsgBox_Pos.h"
#include "PaneView.h"
#include "Platform.h"
#include "ProgramState.h"
#include "ResultOutput.h"
#include "RunTimeError.h"
#include "SpotPage.h"
#include "frmZKR_MUF.h"

#include <QTimer>

namespace zkr {

SpotSources::SpotSources(ProgramState &state, Platform &platform, frmZKR_MUF &window)
    : state_(state), platform_(platform), window_(window), session_(state, platform, *this) {
    // The console record starts as the empty elements 0 to 10, like the
    // program's other line stores; the first received chunk becomes 1.
    if (state_.Console_Lines.isEmpty()) {
        state_.Console_Lines.resize(11);
    }
    session_.setReceiveHost(this);
    web_.setCaptionHandler([this](const QString &caption) { window_.showWorkLabel(caption); });
    web_.setFailureHandler([this](int) {
        MsgBox_Timed(state_, platform_, window_);
        state_.FirstFetch = true;
        state_.Web_Offline = true;
        window_.showWorkLabel(QStringLiteral("OFFLINE !"));
        platform_.processEvents();
    });
}

ResultPanes SpotSources::workingPanes() {
    return {&window_.workingPane(0), &window_.workingPane(1), &window_.workingPane(2),
            &window_.workingPane(3)};
}

void SpotSources::Telnet_Connect() {
    session_.Telnet_Connect();
}

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

void SpotSources::closeSession() {
    session_.socket().abort();
    session_.Winsock_Close();
}

void SpotSources::Replay_SpotFile() {
    try {
        replay_.Replay_SpotFile(state_, platform_, *this);
    } catch (const RunTimeError &error) {
        reportRunTimeError(platform_, error);
    }
}

void SpotSources::Evaluate_SpotPage() {
    if (state_.Busy) {
        return; // a batch is still running
    }
    window_.showWorkLabel(QStringLiteral("DOWNLOADING"));
    const QString page = web_.Open_Url(state_.WebCluster_Url);
    if (!web_.lastUrlOpened()) {
        return;
    }
    if (Is_ErrorPage(page)) {
        const std::uint32_t black = Colour_Value(state_.Color_Black);
        for (int i = 0; i < 4; ++i) {
            window_.displayPane(i)->clear();
            Print_Colored(*window_.displayPane(i), QStringLiteral("The Webserver may be down !"),
                          black);
        }
        window_.showWorkLabel(QStringLiteral("OFFLINE !"));
        platform_.processEvents();
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
    window_.hideWorkLabel();
    platform_.processEvents();
    Evaluate_SpotLines(state_, platform_, workingPanes(), *this, state_.SpotPage_Lines);
}

void SpotSources::sendData(const QString &text) {
    session_.sendData(text);
}

void SpotSources::evaluateClusterLine() {
    Evaluate_ClusterLine(state_, platform_, workingPanes(), *this);
}

Pane &SpotSources::displayPane(int index) {
    return *window_.displayPane(index);
}

Pane &SpotSources::workingPane(int index) {
    return window_.workingPane(index);
}

void SpotSources::setStatus(const QString &caption, std::uint32_t bgrColour) {
    window_.setStatusLabel(caption, bgrColour);
}

void SpotSources::hideWorkLabel() {
    window_.hideWorkLabel();
}

void SpotSources::processEvents() {
    platform_.processEvents();
}

void SpotSources::showWorkLabel(const QString &caption) {
    window_.showWorkLabel(caption);
}

bool SpotSources::over144Only() {
    return window_.over144Only();
}

bool SpotSources::esSpotsOnly() {
    return window_.esSpotsOnly();
}

void SpotSources::refreshDisplay() {
    window_.refreshPanes();
}

void SpotSources::setConsoleData(const QString &line) {
    console().setDataField(line);
}

void SpotSources::setStatusLabel(const QString &caption, std::uint32_t bgrColour) {
    window_.setStatusLabel(caption, bgrColour);
}

void SpotSources::setConsoleState(const QString &caption, std::uint32_t bgrColour) {
    console().setConnectionState(caption, bgrColour);
}

void SpotSources::prepareConsole(const QString &host, const QString &port, const QString &call) {
    FrmTelnet &window = console();
    window.setFields(host, port, call);
    // Loads the console without showing it; a shown console goes down to
    // the task bar.
    window.setWindowState(window.windowState() | Qt::WindowMinimized);
}

void SpotSources::appendConsole(const QString &chunk) {
    console().appendRecord(chunk);
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
