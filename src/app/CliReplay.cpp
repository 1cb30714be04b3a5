#include "CliReplay.h"

#include "RunModes.h"
#include "SpotFileReplay.h"
#include "TelnetReceive.h"

#include "CliOptions.h"
#include "EvaluationCycle.h"
#include "HeadlessStartupWindow.h"
#include "ResultOutput.h"
#include "RunTimeError.h"
#include "SpotLineParsing.h"
#include "SpotPage.h"
#include "Startup.h"

#include <QIODevice>

namespace zkr {

CliReplay::CliReplay(const CliOptions &options)
    : over144Only_(options.over144Only), esSpotsOnly_(options.esSpotsOnly) {
    const QString mode = options.webPage ? WebMode : FileMode;
    state_.RunMode = mode;
    HeadlessStartupWindow window(state_, options.ownCall, options.ownLocator);
    Form_Load(state_, platform_, window);
    // The mode is the tool's choice: an own call that happens to be one of
    // the mode markers must not switch the column table.
    state_.RunMode = mode;
    Load_ColumnTable(state_);
    state_.Eval_Flag = options.evalAll;
}

Pane &CliReplay::workingPane(int index) {
    return panes_.at(static_cast<std::size_t>(index));
}

void CliReplay::evaluateClusterLine() {
    Evaluate_ClusterLine(state_, platform_, working_, *this);
}

void CliReplay::refreshDisplay() {
    for (MemoryPane &pane : panes_) {
        pane.commit();
    }
}

long long CliReplay::replayClusterText(QIODevice &input) {
    try {
        return SpotFileReplay::replayDevice(input, state_, *this);
    } catch (const RunTimeError &error) {
        reportRunTimeError(platform_, error);
    }
    return 0;
}

void CliReplay::receiveChunk(const QString &text) {
    state_.Telnet_Text = text;
    try {
        Telnet_Receive(state_, *this);
    } catch (const RunTimeError &error) {
        reportRunTimeError(platform_, error);
    }
}

void CliReplay::evaluateSpotPage(QIODevice &input) {
    const QString page = QString::fromLatin1(input.readAll());
    try {
        if (Is_ErrorPage(page)) {
            const std::uint32_t black = Colour_Value(state_.Color_Black);
            for (MemoryPane &pane : panes_) {
                Print_Colored(pane, QStringLiteral("The Webserver may be down !"), black);
            }
            refreshDisplay();
            return;
        }
        state_.FirstFetch = false;
        state_.SpotPage_Previous = page;
        Evaluate_SpotLines(state_, platform_, working_, *this, Split_SpotPage(Strip_Tags(page)));
    } catch (const RunTimeError &error) {
        reportRunTimeError(platform_, error);
    }
}

} // namespace zkr
