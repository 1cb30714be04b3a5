#pragma once

#include "ElidedLabel.h"
#include "MainStatusLabel.h"
#include "MainWindowLink.h"
#include "MemoryPane.h"
#include "SettingsFile.h"
#include "SetupDialogHost.h"
#include "StartupWindow.h"

#include <QMainWindow>

#include <array>
#include <functional>
#include <memory>
#include <optional>

class QAction;
class QDateTime;
class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTabWidget;
class QTimer;
class QVBoxLayout;

namespace zkr {

struct ProgramState;
class Platform;
class SetupDialogLink;
class frmZKR_MUF_Setup;
class frmInfo;
class PaneView;
class SpotSources;
class EsWatchLink;
class ReportSources;

// The main window: tab strip with the result panes, the map and the
// reception reports, status and own-call labels, buttons, the File menu, the
// where box, the report sources' status bar and the one-second web refresh
// timer.
//
// Window positions, here and in the settings file, are logical
// (device-independent) pixels of the desktop, the same on every run
// whatever the screen's scaling.
class frmZKR_MUF : public QMainWindow,
                   public StartupWindow,
                   public MainWindowLink,
                   public MainStatusLabel,
                   public SetupDialogHost {
    Q_OBJECT
public:
    static constexpr int PaneCount = 4;
    // The Map tab comes after the panes' tabs, the Reports tab after it (so
    // that a saved tab index of an older version still means the same tab).
    static constexpr int MapTab = PaneCount;
    static constexpr int ReportsTab = MapTab + 1;
    // How often what the call book learned goes into the history: often
    // enough that the changes taken at once stay a few milliseconds' work
    // even when a feed teaches a thousand new calls a second.
    static constexpr int CallBookSavingMs = 5 * 1000;

    frmZKR_MUF(ProgramState &state, Platform &platform, QWidget *parent = nullptr);
    ~frmZKR_MUF() override;

    // Runs the start-up sequence; call once before showing the window.
    void Form_Load();

    QTabWidget *SSTab1() const { return SSTab1_; }
    QTimer *Timer1() const { return Timer1_; }
    // Pane i of the visible set (RichTextBox1, on tab i) and of the set the
    // output is built in (RichTextBox2, in memory: the visible pane shows
    // its committed lines).
    PaneView *displayPane(int index) const;
    MemoryPane &workingPane(int index);
    // The Reports tab's pane and the working pane behind it.
    PaneView *reportsPane() const { return reportsView_; }
    MemoryPane &reportsWorkingPane() { return reportsWorking_; }
    // Commits the working panes and repaints the visible ones.
    void refreshPanes();
    // The status label (caption and &H00BBGGRR background, made visible)
    // and the work label.
    void setStatusLabel(const QString &caption, std::uint32_t bgrColour);
    // Shows a passing message in the status for a few seconds; the status
    // set meanwhile comes back after it.
    void showTransientStatus(const QString &caption, int milliseconds = 6000);
    // When the last spot came in, shown beside the status (UTC).
    void showLastSpot(const QDateTime &received);
    void showWorkLabel(const QString &caption);
    void hideWorkLabel();
    bool over144Only() const;
    bool esSpotsOnly() const;
    // Both filter check boxes disabled, hidden and unchecked.
    void disableFilters();
    SettingsFile &settings() { return settings_; }
    SpotSources &sources() { return *sources_; }
    // The Es watch with its strip and Map tab.
    EsWatchLink &esWatch() { return *watchLink_; }
    // WSJT-X, PSK Reporter, the decode log and the call book.
    ReportSources &reports() { return *reports_; }
    SetupDialogLink &setupDialog() { return *setupDialog_; }
    frmZKR_MUF_Setup &setupWindow() { return *setup_; }
    // Hands what the call book learned since the last time to the history.
    void saveCallBook();
    // Commits the history, the call book's last lessons included (the
    // program ends).
    void closeHistory();
    // The About window, created on first use.
    frmInfo &aboutWindow();

    // Event handlers, public so that other windows (and tests) can run them.
    void Timer1_Timer();
    void Check_EsSpotsOnly_Click();
    void Check_Over144MHZOnly_Click();
    void Label_Telnet_Status_Click();
    [[noreturn]] void Command_End_Click();
    void About_Click();
    void Setup_Click();
    // Opens the telnet console in front.
    void Command_Telnet_Click();
    // Clears the clipboard and puts the visible pane's selection on it, or
    // its whole text when nothing is selected.
    void Copy_Click();
    // File menu.
    void OpenDecodeLog_Click();
    void ReplaySpotFile_Click();
    // The where box: what the call book knows of the call typed.
    void WhereCall_Enter();

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

    // MainWindowLink
    int windowLeft() const override;
    int windowTop() const override;
    bool isWindowMinimized() const override;
    int selectedTab() const override;
    void Winsock_Close() override;
    void unloadAllWindows() override;

    // MainStatusLabel
    void showStatusCaption(const QString &caption) override;

    // SetupDialogHost (showOwnCallLabels is the StartupWindow one)
    SettingsFile &settingsFile() override { return settings_; }
    QRect mainFrame() const override { return frameGeometry(); }
    void setRefreshTimer(bool enabled) override;
    void layoutForRunMode(bool emptyPanes) override;
    void hideConsole() override;
    void closeTelnetSession() override;
    void Telnet_Connect() override;
    void Replay_SpotFile() override;
    void fetchPage(const QString &url, std::function<void(std::optional<QString>)> done) override;

protected:
    void closeEvent(QCloseEvent *event) override;
    void showEvent(QShowEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    // The one place that makes a result pane.
    PaneView *createPane(QWidget *parent, MemoryPane &source);
    static QFont paneFont(int pointSize);

    void buildControls();
    void buildMenuAndStatusBar();
    void applyColours();
    void applyModeSettings(bool secondPass);
    void clearPanes();
    void filterClicked(bool &changedFlag);
    void showStatusText(const QString &caption);
    // What runs once the window is on screen: where the settings live, and
    // the update check when the user wants one.
    void afterFirstShow();
    // Runs a handler started by the user or a timer; a run-time error ends
    // the handler and is reported, the program goes on.
    void runHandler(const std::function<void()> &handler);

    ProgramState &state_;
    Platform &platform_;
    // A window of its own, owned by this one.
    frmZKR_MUF_Setup *setup_ = nullptr;
    SetupDialogLink *setupDialog_ = nullptr;
    SettingsFile settings_;
    frmInfo *info_ = nullptr;
    std::unique_ptr<SpotSources> sources_;
    EsWatchLink *watchLink_ = nullptr;
    std::unique_ptr<ReportSources> reports_;
    QVBoxLayout *column_ = nullptr;
    bool unloading_ = false;

    QTabWidget *SSTab1_ = nullptr;
    std::array<PaneView *, PaneCount> RichTextBox1_{};
    std::array<MemoryPane, PaneCount> RichTextBox2_;
    QCheckBox *Check_Over144MHZOnly_ = nullptr;
    QCheckBox *Check_EsSpotsOnly_ = nullptr;
    QPushButton *Command_End_ = nullptr;
    QPushButton *About_ = nullptr;
    QPushButton *Setup_ = nullptr;
    QPushButton *Command_Telnet_ = nullptr;
    QTimer *Timer1_ = nullptr;
    ElidedLabel *Label_Telnet_Status_ = nullptr;
    QLabel *Label_LastSpot_ = nullptr;
    QTimer *transientTimer_ = nullptr;
    QString regularStatus_;      // shown again when a passing message ends
    qint64 lastSpotSecond_ = -1; // of the last spot shown
    bool shownOnce_ = false;
    QLabel *Label_OwnCall_ = nullptr;
    QLabel *Label_OwnLocator_ = nullptr;
    QLabel *Label2_ = nullptr;
    QAction *copyAction_ = nullptr;
    QAction *exportAction_ = nullptr;
    PaneView *reportsView_ = nullptr;
    MemoryPane reportsWorking_;
    QLineEdit *text_WhereCall_ = nullptr;
    ElidedLabel *Label_WhereAnswer_ = nullptr;
    ElidedLabel *Label_WsjtxStatus_ = nullptr;
    ElidedLabel *Label_PskStatus_ = nullptr;
    ElidedLabel *Label_ReportNotice_ = nullptr;
};

} // namespace zkr
