#pragma once

#include "StartupWindow.h"

#include <QMainWindow>

class QLabel;
class QTabWidget;
class QTimer;

namespace zkr {

struct ProgramState;
class Platform;

// The main window: tab strip with the result panes, status and own-call
// labels, buttons and the one-second web refresh timer.
class frmZKR_MUF : public QMainWindow, public StartupWindow {
    Q_OBJECT
public:
    frmZKR_MUF(ProgramState &state, Platform &platform, QWidget *parent = nullptr);

    // Runs the start-up sequence; call once before showing the window.
    void Form_Load();

    QTabWidget *SSTab1() const { return SSTab1_; }
    QTimer *Timer1() const { return Timer1_; }

    // StartupWindow
    void setMainCaption(const QString &caption) override;
    void setTimerInterval(int milliseconds) override;
    void setTimerEnabled(bool enabled) override;
    void layoutInitial() override;
    void checkSettingsFile() override;
    void showOwnCallLabels(const QString &callCaption, const QString &locatorCaption) override;
    void selectTab(int index) override;
    void setSetupSaveEnabled(bool enabled) override;
    QSize mainWindowSize() override;
    void moveMainWindow(QPoint topLeft) override;
    void centreDialogsOverMain() override;
    void prepareDeveloperConsole() override;
    void layoutByMode() override;
    void telnetConnect() override;
    void replaySpotFile() override;

private:
    ProgramState &state_;
    Platform &platform_;
    QTabWidget *SSTab1_ = nullptr;
    QTimer *Timer1_ = nullptr;
    QLabel *Label_OwnCall_ = nullptr;
    QLabel *Label_OwnLocator_ = nullptr;
};

} // namespace zkr
