#include "FrmTelnet.h"
#include "LocalClusterServer.h"
#include "PaneView.h"
#include "ProgramState.h"
#include "QtPrinters.h"
#include "ScriptedPlatform.h"
#include "SiteDefaults.h"
#include "SpotSources.h"
#include "frmZKR_MUF.h"

#include <QCheckBox>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>

namespace zkr {
namespace {

bool waitFor(const std::function<bool()> &condition, int ms = 10000) {
    QElapsedTimer clock;
    clock.start();
    while (!condition() && clock.elapsed() < ms) {
        QTest::qWait(10);
    }
    return condition();
}

QColor background(const QWidget *widget) {
    return widget->palette().color(widget->backgroundRole());
}

// The program started as a user starts it, settings file beside it, the
// cluster on this machine.
class ConsoleWiringTest : public ::testing::Test {
protected:
    void writeSettings() {
        QFile ini(QDir(folder_.path()).filePath("zkr_muf.ini"));
        ASSERT_TRUE(ini.open(QIODevice::WriteOnly));
        ini.write(QString("[Version]\r\nVersion=1.30\r\n[Call]\r\nOwnCall=DL1ABC\r\n[Locator]\r\n"
                          "OwnLocator=JO62QM\r\n[Telnet]\r\nTelnet_Call=GB7TST\r\n"
                          "Telnet_Host=127.0.0.1\r\nTelnet_Port=%1\r\n[AutoUpdateCheck]\r\n"
                          "UpdateCheck=off\r\n")
                      .arg(node_.port())
                      .toLatin1());
        ini.close();
    }
    void start(const QString &commandLine = QString()) {
        writeSettings();
        platform_.setApplicationFolder(folder_.path());
        platform_.setCommandLine(commandLine);
        window_.Form_Load();
    }
    // Waits until the cluster's prompt has come in.
    void waitForPrompt() {
        ASSERT_TRUE(waitFor([&] { return status()->text().startsWith(" Connected to GB7TST"); }))
            << status()->text().toStdString();
    }
    QLabel *status() { return window_.findChild<QLabel *>("Label_Telnet_Status"); }
    FrmTelnet &console() { return window_.sources().console(); }
    template <class T> T *consoleChild(const char *name) {
        return console().findChild<T *>(QLatin1String(name));
    }
    QByteArray debugFile() {
        QFile file(QDir(folder_.path()).filePath("Telnet_Debug_Datei.txt"));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    LocalClusterServer node_;
    QTemporaryDir folder_;
    ProgramState state_;
    ScriptedPlatform platform_;
    frmZKR_MUF window_{state_, platform_};
};

TEST_F(ConsoleWiringTest, FollowsTheSessionAndSendsCommandsToTheCluster) {
    start();
    EXPECT_FALSE(console().isVisible()); // loaded by the connect, not shown
    EXPECT_EQ(consoleChild<QLineEdit>("txthost")->text(), "127.0.0.1");
    EXPECT_EQ(consoleChild<QLineEdit>("txtport")->text(), QString::number(node_.port()));
    EXPECT_EQ(consoleChild<QLineEdit>("txtdata")->text(), "DL1ABC");

    auto *label6 = consoleChild<QLabel>("Label6");
    ASSERT_TRUE(waitFor([&] { return label6->text() == " Connected"; }));
    EXPECT_EQ(background(label6), QColor(0, 255, 0));
    waitForPrompt();
    const QString record = consoleChild<QPlainTextEdit>("RichTextBox1")->toPlainText();
    EXPECT_TRUE(record.contains("login: ")) << record.toStdString();
    EXPECT_TRUE(record.contains("dxspider >")) << record.toStdString();

    consoleChild<QPushButton>("Command1")->click();
    EXPECT_TRUE(waitFor([&] { return node_.received() == "SH/FDX/20 on vhf\r\n"; }))
        << node_.received().toStdString();

    // The recording starts with the empty element 0, then the chunks.
    consoleChild<QPushButton>("CMD_Debug_Datei")->click();
    const QByteArray file = debugFile();
    EXPECT_TRUE(file.startsWith("\r\nWelcome to the test node")) << file.toStdString();
    EXPECT_TRUE(file.contains("login: \r\n"));
    EXPECT_TRUE(file.endsWith(LocalClusterServer::prompt("DL1ABC") + "\r\n"));

    node_.closeClients();
    ASSERT_TRUE(waitFor([&] { return label6->text() == "not connected"; }));
    EXPECT_EQ(background(label6), QColor(255, 0, 0));
}

TEST_F(ConsoleWiringTest, WithoutASessionRecordsTheStartRecordAndSendsNothing) {
    start("/FILE"); // the replay's file dialog is cancelled
    ASSERT_EQ(state_.RunMode, "FILE");
    consoleChild<QPushButton>("CMD_Debug_Datei")->click();
    EXPECT_EQ(debugFile(), QByteArray("\r\n").repeated(11));

    consoleChild<QPushButton>("Command1")->click();
    QTest::qWait(50);
    EXPECT_FALSE(node_.hasClient());
    EXPECT_TRUE(node_.received().isEmpty());
    EXPECT_TRUE(platform_.messages().isEmpty()) << platform_.messages().join(" | ").toStdString();
}

TEST_F(ConsoleWiringTest, LoadingADebugFileSwitchesToFileModeAndConnectGoesBack) {
    start();
    waitForPrompt();
    const QString spot = QString("DX de SP9HWY:").leftJustified(17, ' ') + "50110.0  " +
                         QString("OH1XYZ").leftJustified(13, ' ') +
                         QString("JO90JR<ES>KP20").leftJustified(31, ' ') + "1712Z";
    const QString path = QDir(folder_.path()).filePath("Telnet_Debug_Datei.txt");
    QFile recorded(path);
    ASSERT_TRUE(recorded.open(QIODevice::WriteOnly));
    recorded.write(("\r\n" + spot + "\r\n\r\n").toLatin1());
    recorded.close();
    // What the replay must switch off.
    window_.Timer1()->start();
    for (QCheckBox *filter : window_.findChildren<QCheckBox *>()) {
        filter->setEnabled(true);
        filter->setVisible(true);
        filter->setChecked(true);
    }

    platform_.answerFileDialog(path);
    consoleChild<QPushButton>("CMD_Debug_Datei_laden")->click();
    EXPECT_EQ(state_.RunMode, "FILE");
    EXPECT_EQ(platform_.lastFileDialog().title, "Select the File...");
    EXPECT_EQ(platform_.lastFileDialog().initialFolder, folder_.path());
    EXPECT_FALSE(window_.Timer1()->isActive());
    for (QCheckBox *filter : window_.findChildren<QCheckBox *>()) {
        EXPECT_FALSE(filter->isEnabled() || filter->isVisibleTo(&window_) || filter->isChecked())
            << filter->objectName().toStdString();
    }
    EXPECT_TRUE(window_.displayPane(0)->text().contains("OH1XYZ"));
    EXPECT_TRUE(consoleChild<QPushButton>("CMD_Debug_Datei_laden")->isEnabled());
    EXPECT_TRUE(state_.Telnet_Connected); // the session is left open

    consoleChild<QPushButton>("Connect_Manuell")->click();
    EXPECT_EQ(state_.RunMode, "TELNETCLUSTER");
    EXPECT_TRUE(waitFor([&] { return node_.logins().size() == 2; }));
}

TEST_F(ConsoleWiringTest, ShownMinimisedOnlyOnDeveloperWorkstationsAndByTheTelnetButton) {
    const std::pair<QString, bool> computers[] = {{site::DeveloperWorkstation1, true},
                                                  {site::DeveloperWorkstation2, true},
                                                  {"ZKR-DEVWS-7f3a91", false},
                                                  {"SHACK-PC", false}};
    writeSettings();
    for (const auto &[computer, developer] : computers) {
        SCOPED_TRACE(computer.toStdString());
        ProgramState state;
        ScriptedPlatform platform;
        platform.setApplicationFolder(folder_.path());
        platform.setEnvironmentValue("COMPUTERNAME", computer);
        frmZKR_MUF window(state, platform);
        window.Form_Load();
        FrmTelnet &shown = window.sources().console();
        EXPECT_EQ(shown.isVisible(), developer);
        EXPECT_TRUE(shown.isMinimized());
        EXPECT_EQ(shown.findChild<QLineEdit *>("txtdata")->text(), "DL1ABC");

        window.findChild<QPushButton *>("Command_Telnet")->click();
        EXPECT_TRUE(shown.isVisible());
        EXPECT_FALSE(shown.isMinimized());
    }
}

} // namespace
} // namespace zkr
