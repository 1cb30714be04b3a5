#pragma once

#include "PskReporterSettings.h"
#include "SetupDialogLink.h"
#include "UpdateCheck.h"
#include "WatchSettings.h"
#include "WsjtxSettings.h"

#include <QDialog>

#include <array>
#include <functional>
#include <optional>

class QCheckBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSpinBox;
class QTreeWidget;
class QTreeWidgetItem;

namespace zkr {

struct ProgramState;
class Platform;
class SetupDialogHost;

// The setup dialog: own call sign and locator, the telnet cluster picked
// from the cluster list, the automatic update check, the sources of
// reception reports (WSJT-X/JTDX over UDP, PSK Reporter) with the status of
// every source, the Es watch's alerts. Saving checks the
// entries, writes the settings and switches the main window to the source
// the call sign asks for: "!NOCALL!" the web spot list, "!FILE!" a recorded
// file, any other call the telnet cluster.
class frmZKR_MUF_Setup : public QDialog, public SetupDialogLink {
    Q_OBJECT
public:
    // Shows the dialog modally and returns when it is closed. Tests put
    // their clicks in one instead, so that nothing blocks.
    using ModalSession = std::function<void(frmZKR_MUF_Setup &)>;

    frmZKR_MUF_Setup(ProgramState &state, Platform &platform, SetupDialogHost &host,
                     QWidget *parent = nullptr);

    void setModalSession(ModalSession session) { modalSession_ = std::move(session); }

    // Event handlers, public so that the main window and tests can run them.
    void text_Call_Change();
    void text_Locator_Change();
    void ListView1_ItemClick(QTreeWidgetItem *item);
    void CheckBox_AutoUpdate_Click();
    void CommandButton_Check_for_Updates_Click();
    void Command_ExitwWthoutSave_Click();
    void Command_SaveConfig_Click();

    // The cluster list in use: the user's own, else the shipped one; "" when
    // there is none.
    QString clusterListPath() const;
    // The check of the download page; the main window runs it in the
    // background after start-up.
    UpdateCheck &updateCheck() { return updateCheck_; }

    // The Es watch's boxes: bands, levels, sound.
    WatchSettings watchSettings() const;
    void setWatchSettings(const WatchSettings &settings);
    // The report sources' fields.
    WsjtxSettings wsjtxSettings() const;
    void setWsjtxSettings(const WsjtxSettings &settings);
    PskReporterSettings pskReporterSettings() const;
    void setPskReporterSettings(const PskReporterSettings &settings);

    // The line under each source that says how it is doing.
    enum class SourceRow { Cluster, Wsjtx, PskReporter };
    void setSourceStatus(SourceRow row, const QString &text);

    // SetupDialogLink
    QString callText() const override;
    void setCallText(const QString &text) override;
    QString locatorText() const override;
    void setLocatorText(const QString &text) override;
    bool isAutoUpdateChecked() const override;
    void setAutoUpdateChecked(bool checked) override;
    void Setup_Click() override;
    void showInFront() override;
    void setSaveEnabled(bool enabled) override;
    void centreOver(const QRect &mainFrame) override;
    void unload() override;

Q_SIGNALS:
    // The settings file was written by Save.
    void settingsSaved();

protected:
    // Escape and the window's close box leave without saving.
    void reject() override;
    // Centres once more when the frame's size is known.
    void showEvent(QShowEvent *event) override;

private:
    void buildControls();
    QGroupBox *buildSources();
    // Writes the sections of the Es watch and the report sources.
    void writeOwnSections();
    void applyColours();
    // The look of unsaved changes, and back.
    void markEdited();
    void resetButtons();
    void readSettings();
    // In telnet mode: the list file, with the cluster in use marked.
    void loadClusterList();
    void markClusterRow(bool marked);
    // The update controls can only be used with a download page, and
    // "Check now" only once at a time.
    void enableUpdateControls();
    // Runs a handler started by the user; a run-time error ends it and is
    // reported, the program goes on.
    void runHandler(const std::function<void()> &handler);

    ProgramState &state_;
    Platform &platform_;
    SetupDialogHost &host_;
    UpdateCheck updateCheck_;
    ModalSession modalSession_;
    bool inSession_ = false;
    std::optional<QRect> centreTarget_;

    QLabel *Label12_ = nullptr;
    QLineEdit *text_Call_ = nullptr;
    QLabel *Label13_ = nullptr;
    QLineEdit *text_Locator_ = nullptr;
    QGroupBox *Frame2_ = nullptr;
    QTreeWidget *ListView1_ = nullptr;
    QLabel *Label_ClusterList_ = nullptr; // says when the list is missing or empty
    QCheckBox *CheckBox_AutoUpdate_ = nullptr;
    QPushButton *CommandButton_Check_for_Updates_ = nullptr;
    QGroupBox *Frame_EsWatch_ = nullptr;
    // 50, 70, 144 MHz, rising, open, confirmed, sound: WatchSettings' order.
    std::array<QCheckBox *, 7> watchBoxes_{};
    QGroupBox *Frame_Sources_ = nullptr;
    // Cluster, WSJT-X, PSK Reporter: SourceRow's order.
    std::array<QLabel *, 3> sourceStatus_{};
    QCheckBox *CheckBox_Wsjtx_ = nullptr;
    QLineEdit *text_WsjtxAddress_ = nullptr;
    QSpinBox *spin_WsjtxPort_ = nullptr;
    QLineEdit *text_WsjtxGroup_ = nullptr;
    QCheckBox *CheckBox_PskReporter_ = nullptr;
    QLineEdit *text_PskHost_ = nullptr;
    QSpinBox *spin_PskPort_ = nullptr;
    QLineEdit *text_PskBands_ = nullptr;
    QCheckBox *CheckBox_PskAllReports_ = nullptr;
    QPushButton *Command_SaveConfig_ = nullptr;
    QPushButton *Command_ExitwWthoutSave_ = nullptr;
};

} // namespace zkr
