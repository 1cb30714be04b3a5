#pragma once

#include "ProgramState.h"
#include "StartupWindow.h"

#include <utility>

namespace zkr {

// The main window's part of start-up for a run without windows. The own call
// and locator come from the command line instead of a settings file, which
// is neither read nor written; the caller starts the source itself once
// start-up is done, so the source steps do nothing here.
class HeadlessStartupWindow : public StartupWindow {
public:
    HeadlessStartupWindow(ProgramState &state, QString ownCall, QString ownLocator)
        : state_(state), ownCall_(std::move(ownCall)), ownLocator_(std::move(ownLocator)) {}

    void checkSettingsFile() override {
        state_.OwnCall = ownCall_;
        state_.OwnLocator = ownLocator_;
    }
    void setMainCaption(const QString &) override {}
    void setTimerInterval(int) override {}
    void setTimerEnabled(bool) override {}
    void layoutInitial() override {}
    void showOwnCallLabels(const QString &, const QString &) override {}
    void selectTab(int) override {}
    void setSetupSaveEnabled(bool) override {}
    QSize mainWindowSize() override { return {}; }
    void moveMainWindow(QPoint) override {}
    void centreDialogsOverMain() override {}
    void prepareDeveloperConsole() override {}
    void layoutByMode() override {}
    void telnetConnect() override {}
    void replaySpotFile() override {}

private:
    ProgramState &state_;
    QString ownCall_;
    QString ownLocator_;
};

} // namespace zkr
