#pragma once

#include "MainWindowLink.h"
#include "SettingsFile.h"
#include "SetupDialogLink.h"
#include "StartupWindow.h"

#include <QFile>
#include <QStringList>

namespace zkr::test {

// Records what the settings code asks of the setup dialog.
class RecordingSetupDialog : public SetupDialogLink {
public:
    QStringList events;
    QString call, locator;

    QString callText() const override { return call; }
    void setCallText(const QString &text) override { call = text; }
    QString locatorText() const override { return locator; }
    void setLocatorText(const QString &text) override { locator = text; }
    bool isAutoUpdateChecked() const override { return false; }
    void setAutoUpdateChecked(bool on) override {
        events << QStringLiteral("autoupdate %1").arg(on);
    }
    void Setup_Click() override { events << QStringLiteral("Setup_Click"); }
    void showInFront() override {}
    void setSaveEnabled(bool) override {}
    void centreOver(const QRect &) override {}
    void unload() override {}
};

// A main window without widgets: the settings steps of the start-up run for
// real, the rest is recorded.
class FakeMainWindow : public StartupWindow, public MainWindowLink {
public:
    FakeMainWindow(ProgramState &state, Platform &platform)
        : settings(state, platform, *this, setup) {}

    RecordingSetupDialog setup;
    SettingsFile settings;
    QStringList calls;
    QString callCaption;
    int left = 100, top = 50, tab = 0;
    bool minimized = false;

    void setMainCaption(const QString &) override {}
    void setTimerInterval(int) override {}
    void setTimerEnabled(bool) override {}
    void layoutInitial() override { settings.Read_Position(); }
    void checkSettingsFile() override { settings.Check_SettingsFile(); }
    void showOwnCallLabels(const QString &call, const QString &) override { callCaption = call; }
    void selectTab(int index) override { tab = index; }
    void setSetupSaveEnabled(bool) override {}
    QSize mainWindowSize() override { return QSize(800, 600); }
    void moveMainWindow(QPoint) override {}
    void centreDialogsOverMain() override {}
    void prepareDeveloperConsole() override {}
    void layoutByMode() override {}
    void telnetConnect() override {}
    void replaySpotFile() override {}

    int windowLeft() const override { return left; }
    int windowTop() const override { return top; }
    bool isWindowMinimized() const override { return minimized; }
    int selectedTab() const override { return tab; }
    void Winsock_Close() override { calls << QStringLiteral("Winsock_Close"); }
    void unloadAllWindows() override { calls << QStringLiteral("unloadAllWindows"); }
};

inline QByteArray readBytes(const QString &path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline bool writeBytes(const QString &path, const QByteArray &bytes) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

} // namespace zkr::test
