#include "FrmTelnet.h"
#include "ProgramState.h"
#include "QtPrinters.h"
#include "RunTimeError.h"
#include "ScriptedPlatform.h"

#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTextBlock>

#include <gtest/gtest.h>

#include <functional>

namespace zkr {
namespace {

// The main window as the console sees it: every call is written down.
struct FakeHost : FrmTelnet::Host {
    QStringList calls;
    QStringList sent;
    std::function<void()> duringReplay;

    void sendData(const QString &text) override { sent << text; }
    void prepareFileReplay() override { calls << "prepareFileReplay"; }
    void Replay_SpotFile() override {
        calls << "Replay_SpotFile";
        if (duringReplay) {
            duringReplay();
        }
    }
    void startWebRefresh() override { calls << "startWebRefresh"; }
    void Evaluate_SpotPage() override { calls << "Evaluate_SpotPage"; }
    void runStartup() override { calls << "runStartup"; }
};

QByteArray readAll(const QString &path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

QColor background(const QWidget *widget) {
    return widget->palette().color(widget->backgroundRole());
}

class FrmTelnetTest : public ::testing::Test {
protected:
    FrmTelnetTest() {
        platform_.setApplicationFolder(dir_.path());
        state_.Telnet_DebugFile = QStringLiteral("Telnet_Debug_Datei.txt");
        state_.Console_Lines.resize(11);
    }
    FrmTelnet &console() {
        if (!console_) {
            console_ = std::make_unique<FrmTelnet>(state_, platform_, host_);
        }
        return *console_;
    }
    template <class T> T *child(const char *name) {
        return console().findChild<T *>(QLatin1String(name));
    }
    void click(const char *name) { child<QPushButton>(name)->click(); }

    QTemporaryDir dir_;
    ProgramState state_;
    ScriptedPlatform platform_;
    FakeHost host_;
    std::unique_ptr<FrmTelnet> console_;
};

TEST_F(FrmTelnetTest, HasItsControlsWithTheirDesignTexts) {
    const std::pair<const char *, const char *> buttons[] = {
        {"Command1", "SendData"},
        {"CMD_Debug_Datei_laden", "Debug Datei laden"},
        {"CMD_Debug_Datei", "Debug Datei erstellen"},
        {"Connect_Manuell", "Connect"}};
    for (const auto &[name, caption] : buttons) {
        ASSERT_NE(child<QPushButton>(name), nullptr) << name;
        EXPECT_EQ(child<QPushButton>(name)->text(), QLatin1String(caption)) << name;
    }
    const std::pair<const char *, const char *> labels[] = {
        {"Label1", "Host:"}, {"Label2", "Port:"}, {"Label3", "Call"}, {"Label6", ""}};
    for (const auto &[name, caption] : labels) {
        ASSERT_NE(child<QLabel>(name), nullptr) << name;
        EXPECT_EQ(child<QLabel>(name)->text(), QLatin1String(caption)) << name;
    }
    const std::pair<const char *, const char *> fields[] = {{"txtCommand", "SH/FDX/20 on vhf"},
                                                            {"txthost", ""},
                                                            {"txtport", ""},
                                                            {"txtdata", ""},
                                                            {"Text1", ""}};
    for (const auto &[name, text] : fields) {
        ASSERT_NE(child<QLineEdit>(name), nullptr) << name;
        EXPECT_EQ(child<QLineEdit>(name)->text(), QLatin1String(text)) << name;
    }
    ASSERT_NE(child<QPlainTextEdit>("RichTextBox1"), nullptr);
    EXPECT_TRUE(child<QPlainTextEdit>("RichTextBox1")->isReadOnly());
    EXPECT_FALSE(console().isVisible()); // loaded, not shown
}

TEST_F(FrmTelnetTest, LoadedWhileConnectedTitlesItselfConnectedOnGreen) {
    for (const bool connected : {false, true}) {
        state_.Telnet_Connected = connected;
        console_.reset();
        EXPECT_EQ(console().windowTitle(), connected ? "Connected" : "Telnet");
        EXPECT_EQ(background(child<QLabel>("Label6")) == QColor(0, 255, 0), connected);
    }
}

TEST_F(FrmTelnetTest, ConnectionStateAndFieldsAreShown) {
    console().setFields("127.0.0.1", "7300", "DL1ABC");
    EXPECT_EQ(child<QLineEdit>("txthost")->text(), "127.0.0.1");
    EXPECT_EQ(child<QLineEdit>("txtport")->text(), "7300");
    EXPECT_EQ(child<QLineEdit>("txtdata")->text(), "DL1ABC");
    // The spot lines of the evaluation go to the data field; a hidden
    // console shows the last one when it comes up, unless the fields were
    // filled afresh since.
    console().setDataField("SP9HWY: 50110.0 OH1XYZ");
    console().setDataField("SP9HWY: 144300.0 EA5XYZ");
    console().show();
    EXPECT_EQ(child<QLineEdit>("txtdata")->text(), "SP9HWY: 144300.0 EA5XYZ");
    console().setDataField("SP9HWY: 50120.0 OH2XYZ");
    EXPECT_EQ(child<QLineEdit>("txtdata")->text(), "SP9HWY: 50120.0 OH2XYZ");
    console().hide();
    console().setDataField("SP9HWY: 50130.0 OH3XYZ");
    console().setFields("127.0.0.2", "8000", "DL2XYZ");
    console().show();
    EXPECT_EQ(child<QLineEdit>("txtdata")->text(), "DL2XYZ");

    console().setConnectionState(" Connected", 0x00FF00);
    EXPECT_EQ(child<QLabel>("Label6")->text(), " Connected");
    EXPECT_EQ(background(child<QLabel>("Label6")), QColor(0, 255, 0));
    console().setConnectionState("not connected", 0x0000FF);
    EXPECT_EQ(child<QLabel>("Label6")->text(), "not connected");
    EXPECT_EQ(background(child<QLabel>("Label6")), QColor(255, 0, 0));
}

TEST_F(FrmTelnetTest, SendDataSendsTheCommandWithCrLf) {
    click("Command1");
    child<QLineEdit>("txtCommand")->setText("SH/DX 5");
    click("Command1");
    EXPECT_EQ(host_.sent, QStringList({"SH/FDX/20 on vhf\r\n", "SH/DX 5\r\n"}));
}

TEST_F(FrmTelnetTest, EveryRecordingAppendsTheWholeRecordAsSingleBytes) {
    state_.Console_Lines = {
        "", "login: ", QString::fromLatin1("DX de G4ABC:  50110.0  S\xe9 1712Z\r\n")};
    const QByteArray once = "\r\nlogin: \r\nDX de G4ABC:  50110.0  S\xe9 1712Z\r\n\r\n";
    click("CMD_Debug_Datei");
    const QString path = QDir(dir_.path()).filePath("Telnet_Debug_Datei.txt");
    EXPECT_EQ(readAll(path), once);
    click("CMD_Debug_Datei");
    EXPECT_EQ(readAll(path), once + once);
    EXPECT_EQ(state_.Console_Lines.size(), 3); // the record is kept
    EXPECT_TRUE(platform_.messages().isEmpty());
}

TEST_F(FrmTelnetTest, ARecordingThatCannotBeWrittenIsReported) {
    // A folder in the debug file's place cannot be opened for writing.
    ASSERT_TRUE(QDir(dir_.path()).mkdir("Telnet_Debug_Datei.txt"));
    click("CMD_Debug_Datei");
    ASSERT_EQ(platform_.messages().size(), 1);
    EXPECT_TRUE(platform_.messages()[0].startsWith("Run-time error"))
        << platform_.messages()[0].toStdString();
    EXPECT_TRUE(platform_.messages()[0].contains("Telnet_Debug_Datei.txt"));
}

TEST_F(FrmTelnetTest, LoadingSwitchesToFileModeAndReplaysWithTheButtonOff) {
    for (const bool fails : {false, true}) {
        SCOPED_TRACE(fails ? "replay fails" : "replay succeeds");
        host_.calls.clear();
        platform_.clearLog();
        state_.RunMode = "TELNETCLUSTER";
        bool enabledDuringReplay = true;
        host_.duringReplay = [&] {
            enabledDuringReplay = child<QPushButton>("CMD_Debug_Datei_laden")->isEnabled();
            if (fails) {
                throw RunTimeError(RunTimeError::FileNotFound, "gone.txt");
            }
        };
        click("CMD_Debug_Datei_laden");
        EXPECT_EQ(state_.RunMode, "FILE");
        EXPECT_EQ(host_.calls, QStringList({"prepareFileReplay", "Replay_SpotFile"}));
        EXPECT_FALSE(enabledDuringReplay);
        EXPECT_TRUE(child<QPushButton>("CMD_Debug_Datei_laden")->isEnabled());
        EXPECT_EQ(platform_.messages().size(), fails ? 1 : 0);
    }
}

TEST_F(FrmTelnetTest, ConnectKeepsTheWebModeAndLeavesEveryOtherForTelnet) {
    struct Case {
        const char *mode;
        const char *modeAfter;
        QStringList calls;
    };
    const Case cases[] = {
        {"WEBCLUSTER", "WEBCLUSTER", {"startWebRefresh", "Evaluate_SpotPage", "runStartup"}},
        {"FILE", "TELNETCLUSTER", {"runStartup"}},
        {"TELNETCLUSTER", "TELNETCLUSTER", {"runStartup"}},
        // The comparison is exact.
        {"webcluster", "TELNETCLUSTER", {"runStartup"}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.mode);
        state_.RunMode = c.mode;
        host_.calls.clear();
        click("Connect_Manuell");
        EXPECT_EQ(state_.RunMode, c.modeAfter);
        EXPECT_EQ(host_.calls, c.calls);
    }
}

TEST_F(FrmTelnetTest, TheRecordPaneShowsChunksInBlackAndStaysBounded) {
    auto *pane = child<QPlainTextEdit>("RichTextBox1");
    console().appendRecord("Welcome\r\n\r\nlogin: ");
    console().appendRecord("DL1ABC\r\n");
    EXPECT_EQ(pane->toPlainText(), "Welcome\n\nlogin: DL1ABC\n");
    const QTextBlock first = pane->document()->firstBlock();
    EXPECT_EQ(first.begin().fragment().charFormat().foreground().color(), QColor(Qt::black));

    const int lines = FrmTelnet::RecordLineLimit + 500;
    for (int i = 0; i < lines; ++i) {
        console().appendRecord(QStringLiteral("DX de line %1\r\n").arg(i));
    }
    EXPECT_LE(pane->document()->blockCount(), FrmTelnet::RecordLineLimit);
    EXPECT_TRUE(pane->toPlainText().endsWith(QStringLiteral("DX de line %1\n").arg(lines - 1)));
}

} // namespace
} // namespace zkr
