#pragma once

#include <QPoint>
#include <QSize>
#include <QString>

namespace zkr {

// What the start-up sequence asks of the main window and of the parts it
// calls into. The main window implements it; tests record the calls.
class StartupWindow {
public:
    virtual ~StartupWindow() = default;

    virtual void setMainCaption(const QString &caption) = 0;
    virtual void setTimerInterval(int milliseconds) = 0;
    virtual void setTimerEnabled(bool enabled) = 0;
    // First layout pass: colours, saved position, screen fit.
    virtual void layoutInitial() = 0;
    // Reads the settings file, or runs the first-run dialogue.
    virtual void checkSettingsFile() = 0;
    virtual void showOwnCallLabels(const QString &callCaption, const QString &locatorCaption) = 0;
    virtual void selectTab(int index) = 0;
    virtual void setSetupSaveEnabled(bool enabled) = 0;
    virtual QSize mainWindowSize() = 0;
    virtual void moveMainWindow(QPoint topLeft) = 0;
    // Centres the setup dialog and the About window over the main window.
    virtual void centreDialogsOverMain() = 0;
    // Opens the telnet console minimised with host, port and call filled in.
    virtual void prepareDeveloperConsole() = 0;
    // Second layout pass by run mode (may run the first web evaluation).
    virtual void layoutByMode() = 0;
    virtual void telnetConnect() = 0;
    virtual void replaySpotFile() = 0;
};

} // namespace zkr
