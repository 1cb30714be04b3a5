#include "FrmTelnet.h"
#include "LocalClusterServer.h"
#include "PaneView.h"
#include "ProgramState.h"
#include "QtPrinters.h"
#include "RunTimeError.h"
#include "ScriptedPlatform.h"
#include "SiteDefaults.h"
#include "SpotSources.h"
#include "WaitFor.h"
#include "frmZKR_MUF.h"

#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBlock>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>

namespace zkr {
namespace {

using test::waitFor;

// The main window as the console sees it: every call is written down.
struct FakeHost : FrmTelnet::Host {
    QStringList calls;
    std::function<void()> duringReplay = [] {};

    void sendData(const QString &text) override { calls << "send " + text; }
    void prepareFileReplay() override { calls << "prepareFileReplay"; }
    void Replay_SpotFile() override {
        calls << "Replay_SpotFile";
        duringReplay();
    }
    void startWebRefresh() override { calls << "startWebRefresh"; }
    void Evaluate_SpotPage() override { calls << "Evaluate_SpotPage"; }
    void runStartup() override { calls << "runStartup"; }
};

class ConsoleTest : public ::testing::Test {
protected:
    ConsoleTest() {
        platform_.setApplicationFolder(folder_.path());
        state_.Telnet_DebugFile = "Telnet_Debug_Datei.txt";
    }
    template <class T = QWidget> T *child(const char *name) {
        return console_->findChild<T *>(QLatin1String(name));
    }
    void click(const char *name) { child<QPushButton>(name)->click(); }
    QByteArray debugFile() {
        QFile file(QDir(folder_.path()).filePath("Telnet_Debug_Datei.txt"));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QTemporaryDir folder_;
    ProgramState state_;
    ScriptedPlatform platform_;
    FakeHost host_;
    std::unique_ptr<FrmTelnet> owned_ = std::make_unique<FrmTelnet>(state_, platform_, host_);
    FrmTelnet *console_ = owned_.get();
};

TEST_F(ConsoleTest, HasItsControlsWithTheirDesignTextsAndATitleByConnection) {
    const std::pair<const char *, const char *> controls[] = {
        {"txtCommand", "SH/FDX/20 on vhf"},
        {"Command1", "SendData"},
        {"CMD_Debug_Datei_laden", "Debug Datei laden"},
        {"CMD_Debug_Datei", "Debug Datei erstellen"},
        {"Connect_Manuell", "Connect"},
        {"Label1", "Host:"},
        {"Label2", "Port:"},
        {"Label3", "Call"},
        {"Label6", ""},
        {"txthost", ""},
        {"txtport", ""},
        {"txtdata", ""},
        {"Text1", ""}};
    for (const auto &[name, text] : controls) {
        ASSERT_NE(child(name), nullptr) << name;
        EXPECT_EQ(child(name)->property("text").toString(), QLatin1String(text)) << name;
    }
    EXPECT_EQ(console_->windowTitle(), "Telnet");
    state_.Telnet_Connected = true;
    owned_ = std::make_unique<FrmTelnet>(state_, platform_, host_);
    console_ = owned_.get();
    EXPECT_EQ(console_->windowTitle(), "Connected");
    EXPECT_EQ(child("Label6")->palette().color(QPalette::Window), QColor(0, 255, 0));
}

TEST_F(ConsoleTest, EveryRecordingAppendsTheWholeRecordAsSingleBytes) {
    state_.Console_Lines = {"", "login: ", QString::fromLatin1("DX de G4ABC: 50110.0 S\xe9\r\n")};
    const QByteArray once = "\r\nlogin: \r\nDX de G4ABC: 50110.0 S\xe9\r\n\r\n";
    click("CMD_Debug_Datei");
    click("CMD_Debug_Datei");
    EXPECT_EQ(debugFile(), once + once);
    EXPECT_TRUE(platform_.messages().isEmpty());

    // A folder in the file's place cannot be written: reported, not lost.
    QFile::remove(QDir(folder_.path()).filePath("Telnet_Debug_Datei.txt"));
    ASSERT_TRUE(QDir(folder_.path()).mkdir("Telnet_Debug_Datei.txt"));
    click("CMD_Debug_Datei");
    ASSERT_EQ(platform_.messages().size(), 1);
    EXPECT_TRUE(platform_.messages()[0].startsWith("Run-time error"));
}

// The program's own replay is tested below; here the one that fails.
TEST_F(ConsoleTest, LoadingKeepsItsButtonOffUntilTheReplayEndsEvenWhenItFails) {
    state_.RunMode = "TELNETCLUSTER";
    bool enabledDuringReplay = true;
    host_.duringReplay = [&] {
        enabledDuringReplay = child("CMD_Debug_Datei_laden")->isEnabled();
        throw RunTimeError(RunTimeError::FileNotFound, "gone.txt");
    };
    click("CMD_Debug_Datei_laden");
    EXPECT_EQ(state_.RunMode, "FILE");
    EXPECT_EQ(host_.calls, QStringList({"prepareFileReplay", "Replay_SpotFile"}));
    EXPECT_FALSE(enabledDuringReplay);
    EXPECT_TRUE(child("CMD_Debug_Datei_laden")->isEnabled());
    EXPECT_EQ(platform_.messages().size(), 1);
}

TEST_F(ConsoleTest, ConnectKeepsTheWebModeAndLeavesEveryOtherForTelnet) {
    const std::tuple<const char *, const char *, QStringList> cases[] = {
        {"WEBCLUSTER", "WEBCLUSTER", {"startWebRefresh", "Evaluate_SpotPage", "runStartup"}},
        {"FILE", "TELNETCLUSTER", {"runStartup"}},
        {"webcluster", "TELNETCLUSTER", {"runStartup"}}}; // an exact comparison
    for (const auto &[mode, modeAfter, calls] : cases) {
        state_.RunMode = mode;
        host_.calls.clear();
        click("Connect_Manuell");
        EXPECT_EQ(state_.RunMode, modeAfter) << mode;
        EXPECT_EQ(host_.calls, calls) << mode;
    }
}

TEST_F(ConsoleTest, TheRecordPaneIsBlackAndBoundedTheDataFieldFilledWhenShown) {
    auto *pane = child<QPlainTextEdit>("RichTextBox1");
    console_->appendRecord("Welcome\r\n\r\nlogin: ");
    console_->appendRecord("DL1ABC\r\n");
    EXPECT_EQ(pane->toPlainText(), "Welcome\n\nlogin: DL1ABC\n");
    const QTextCharFormat format = pane->document()->firstBlock().begin().fragment().charFormat();
    EXPECT_EQ(format.foreground().color(), QColor(Qt::black));
    const int lines = FrmTelnet::RecordLineLimit + 500;
    for (int i = 0; i < lines; ++i) {
        console_->appendRecord(QStringLiteral("DX de line %1\r\n").arg(i));
    }
    EXPECT_LE(pane->document()->blockCount(), FrmTelnet::RecordLineLimit);
    EXPECT_TRUE(pane->toPlainText().endsWith(QStringLiteral("DX de line %1\n").arg(lines - 1)));

    // A hidden console shows the last spot line when it comes up, unless
    // its fields were filled afresh since.
    console_->setDataField("SP9HWY: 50110.0 OH1XYZ");
    console_->show();
    EXPECT_EQ(child("txtdata")->property("text"), "SP9HWY: 50110.0 OH1XYZ");
    console_->hide();
    console_->setDataField("SP9HWY: 50130.0 OH3XYZ");
    console_->setFields("127.0.0.2", "8000", "DL2XYZ");
    console_->show();
    EXPECT_EQ(child("txtdata")->property("text"), "DL2XYZ");
}

// The program as a user starts it, settings beside it, the cluster on this
// machine; the console is the main window's own.
class ConsoleInProgramTest : public ConsoleTest {
protected:
    ConsoleInProgramTest() {
        EXPECT_TRUE(LocalClusterServer::writeSettings(folder_.path(), node_.port()));
        console_ = &window_.sources().console();
    }
    void startAndWaitForPrompt() {
        window_.Form_Load();
        auto *status = window_.findChild<QLabel *>("Label_Telnet_Status");
        ASSERT_TRUE(waitFor([&] { return status->text().startsWith(" Connected to GB7TST"); }));
    }

    LocalClusterServer node_;
    frmZKR_MUF window_{state_, platform_};
};

TEST_F(ConsoleInProgramTest, FollowsTheSessionAndSendsCommandsToTheCluster) {
    startAndWaitForPrompt();
    EXPECT_FALSE(console_->isVisible()); // loaded, not shown
    EXPECT_EQ(child("txtport")->property("text"), QString::number(node_.port()));
    EXPECT_EQ(child("Label6")->property("text"), " Connected");
    EXPECT_EQ(child("Label6")->palette().color(QPalette::Window), QColor(0, 255, 0));
    EXPECT_TRUE(child<QPlainTextEdit>("RichTextBox1")->toPlainText().contains("dxspider >"));

    click("Command1");
    EXPECT_TRUE(waitFor([&] { return node_.received() == "SH/FDX/20 on vhf\r\n"; }));
    click("CMD_Debug_Datei"); // the empty element 0 first, then the chunks
    EXPECT_TRUE(debugFile().startsWith("\r\nWelcome to the test node"));
    EXPECT_TRUE(debugFile().endsWith(LocalClusterServer::prompt("DL1ABC") + "\r\n"));

    node_.closeClients();
    ASSERT_TRUE(waitFor([&] { return child("Label6")->property("text") == "not connected"; }));
    EXPECT_EQ(child("Label6")->palette().color(QPalette::Window), QColor(255, 0, 0));
}

TEST_F(ConsoleInProgramTest, WithoutASessionRecordsTheStartRecordAndSendsNothing) {
    platform_.setCommandLine("/FILE"); // the replay's file dialog is cancelled
    window_.Form_Load();
    click("CMD_Debug_Datei");
    EXPECT_EQ(debugFile(), QByteArray("\r\n").repeated(11));
    click("Command1");
    QTest::qWait(50);
    EXPECT_FALSE(node_.hasClient());
    EXPECT_TRUE(platform_.messages().isEmpty());
}

TEST_F(ConsoleInProgramTest, LoadingADebugFileSwitchesToFileModeAndConnectGoesBack) {
    startAndWaitForPrompt();
    const QString path = QDir(folder_.path()).filePath("recorded.txt");
    QFile recorded(path);
    ASSERT_TRUE(recorded.open(QIODevice::WriteOnly));
    recorded.write("\r\nDX de SP9HWY:    50110.0  OH1XYZ       JO90JR<ES>KP20                 "
                   "1712Z\r\n\r\n");
    recorded.close();
    window_.Timer1()->start(); // what the replay must switch off
    for (QCheckBox *filter : window_.centralWidget()->findChildren<QCheckBox *>()) {
        filter->setEnabled(true);
        filter->setVisible(true);
        filter->setChecked(true);
    }

    platform_.answerFileDialog(path);
    click("CMD_Debug_Datei_laden");
    EXPECT_EQ(state_.RunMode, "FILE");
    EXPECT_FALSE(window_.Timer1()->isActive());
    for (QCheckBox *filter : window_.centralWidget()->findChildren<QCheckBox *>()) {
        EXPECT_FALSE(filter->isEnabled() || filter->isVisibleTo(&window_) || filter->isChecked());
    }
    EXPECT_TRUE(window_.displayPane(0)->text().contains("OH1XYZ"));
    EXPECT_TRUE(state_.Telnet_Connected); // the session is left open

    click("Connect_Manuell");
    EXPECT_EQ(state_.RunMode, "TELNETCLUSTER");
    EXPECT_TRUE(waitFor([&] { return node_.logins().size() == 2; }));
}

TEST_F(ConsoleInProgramTest, ShownMinimisedOnADeveloperWorkstationAndUpByTheTelnetButton) {
    platform_.setEnvironmentValue("COMPUTERNAME", site::DeveloperWorkstation2);
    window_.Form_Load();
    EXPECT_TRUE(console_->isVisible() && console_->isMinimized());
    EXPECT_EQ(child("txtdata")->property("text"), "DL1ABC");
    window_.findChild<QPushButton *>("Command_Telnet")->click();
    EXPECT_TRUE(console_->isVisible() && !console_->isMinimized());
}

} // namespace
} // namespace zkr
