#include "TelnetSession.h"
#include "LocalClusterServer.h"
#include "MemoryPane.h"
#include "ProgramState.h"
#include "QtPrinters.h"
#include "ReceiveHost.h"
#include "ScriptedPlatform.h"
#include "SessionView.h"
#include "SpotLineParsing.h"
#include "WaitFor.h"

#include <QTcpServer>
#include <QTest>

#include <gtest/gtest.h>

#include <functional>

using namespace zkr;

namespace {

using test::waitFor;

struct Session : SessionView, ReceiveHost {
    ProgramState state;
    ScriptedPlatform platform;
    TelnetSession session{state, platform, *this};
    QString status;
    std::uint32_t statusColour = 0;
    QString consoleState;
    QString console;
    QStringList evaluated;
    MemoryPane panes[8];
    std::function<void()> duringEvaluation;

    Session() {
        state.RunMode = "TELNETCLUSTER";
        Load_ColumnTable(state);
        state.SpotPrefix = "DX de ";
        state.OwnCall = "DL1ABC";
        state.MaxSpotLines = 250;
        state.Telnet_Call = "GB7TST";
        state.Telnet_Host = "127.0.0.1";
        session.setReceiveHost(this);
    }

    // SessionView
    void setStatusLabel(const QString &caption, std::uint32_t colour) override {
        status = caption;
        statusColour = colour;
    }
    void setConsoleState(const QString &caption, std::uint32_t) override { consoleState = caption; }
    void prepareConsole(const QString &, const QString &, const QString &) override {}
    void appendConsole(const QString &chunk) override { console += chunk; }
    // ReceiveHost
    void sendData(const QString &text) override { session.sendData(text); }
    void evaluateClusterLine() override {
        state.Busy = true;
        evaluated << state.CurrentSpotLine;
        if (duringEvaluation) {
            duringEvaluation();
        }
        state.Busy = false;
    }
    Pane &displayPane(int i) override { return panes[i]; }
    Pane &workingPane(int i) override { return panes[4 + i]; }
    void setStatus(const QString &caption, std::uint32_t colour) override {
        setStatusLabel(caption, colour);
    }
    void hideWorkLabel() override {}
    void processEvents() override {}
};

const QByteArray Spot =
    "DX de SP9HWY:     50110.0  OH1XYZ       JO90JR<ES>KP20                 1712Z\r\n";

TEST(TelnetSession, LogsInRecognisesThePromptAndEvaluatesSpots) {
    LocalClusterServer node;
    Session s;
    s.state.Telnet_Port = QString::number(node.port());
    s.session.Telnet_Connect();
    EXPECT_EQ(s.status, " trying to connect to GB7TST 127.0.0.1:" + s.state.Telnet_Port);
    ASSERT_TRUE(waitFor([&] { return node.hasClient(); }));
    EXPECT_EQ(node.logins(), QStringList({"DL1ABC"}));
    ASSERT_TRUE(waitFor([&] { return s.status.startsWith(" Connected to "); }));
    EXPECT_TRUE(s.state.Telnet_Connected);
    EXPECT_EQ(s.statusColour, 0x00FFFFu);
    EXPECT_EQ(s.consoleState, " Connected");

    node.send(Spot + Spot);
    ASSERT_TRUE(waitFor([&] { return s.evaluated.size() == 2; }));
    EXPECT_TRUE(s.console.contains("login: "));
    EXPECT_GE(s.state.Console_LineCount, 3);
}

TEST(TelnetSession, TextArrivingDuringAnEvaluationIsFetchedAfterIt) {
    LocalClusterServer node;
    Session s;
    s.state.Telnet_Port = QString::number(node.port());
    s.session.Telnet_Connect();
    ASSERT_TRUE(waitFor([&] { return s.state.Telnet_Connected && node.hasClient(); }));
    ASSERT_TRUE(waitFor([&] { return s.status.startsWith(" Connected to "); }));
    bool sentMore = false;
    s.duringEvaluation = [&] {
        if (!sentMore) {
            sentMore = true;
            node.send(Spot);
            QTest::qWait(100); // arrival while Busy: must not be fetched now
        }
    };
    node.send(Spot);
    ASSERT_TRUE(waitFor([&] { return s.evaluated.size() == 2; }));
}

TEST(TelnetSession, ClosedByTheClusterTurnsTheStatusRed) {
    LocalClusterServer node;
    Session s;
    s.state.Telnet_Port = QString::number(node.port());
    s.session.Telnet_Connect();
    ASSERT_TRUE(waitFor([&] { return s.status.startsWith(" Connected to "); }));
    node.closeClients();
    ASSERT_TRUE(waitFor([&] { return !s.state.Telnet_Connected; }));
    EXPECT_EQ(s.status, " Not connected ! Click to Check Setup or check your firewall settings !");
    EXPECT_EQ(s.statusColour, 0x0000FFu);
    EXPECT_EQ(s.consoleState, "not connected");
    EXPECT_TRUE(s.platform.messages().isEmpty());
}

TEST(TelnetSession, RefusedOrImpossibleConnectionsAreReported) {
    QTcpServer closed;
    ASSERT_TRUE(closed.listen(QHostAddress::LocalHost, 0));
    const QString port = QString::number(closed.serverPort());
    closed.close();
    const QString expected =
        "msgbox 64 \"Attention!\" \"Telnet_Error, can't connect. Make sure host and port are "
        "correct or "
        "even if host exists. Check firewall settings and your Call in setup.\" -> 1";
    for (const QString &badPort : {port, QString("73OO"), QString("70000")}) {
        Session s;
        s.state.Telnet_Port = badPort;
        s.session.Telnet_Connect();
        ASSERT_TRUE(waitFor([&] { return !s.platform.messages().isEmpty(); }))
            << badPort.toStdString();
        EXPECT_EQ(s.platform.log().mid(s.platform.log().size() - 3),
                  QStringList({"beep 800 200", "arm centre", expected}));
        EXPECT_FALSE(s.state.Telnet_Connected);
    }
}

TEST(TelnetSession, ConsoleRecordStaysSmallWhateverTheChunks) {
    LocalClusterServer node;
    Session s;
    s.state.Telnet_Port = QString::number(node.port());
    s.session.Telnet_Connect();
    ASSERT_TRUE(waitFor([&] { return s.status.startsWith(" Connected to "); }));
    const QByteArray big(256 * 1024, 'x');
    for (int i = 0; i < 40; ++i) { // 10 MB of text
        node.send(big);
        ASSERT_TRUE(waitFor([&] { return node.socketIdle(); }));
        QTest::qWait(5);
    }
    QTest::qWait(100);
    qsizetype characters = 0;
    for (const QString &chunk : s.state.Console_Lines) {
        characters += chunk.size();
    }
    EXPECT_GT(characters, 0);
    EXPECT_LE(characters, TelnetSession::ConsoleRecordChars);
    EXPECT_TRUE(s.state.Console_Lines.first().isEmpty());
    EXPECT_EQ(s.state.Console_Lines.size(), s.state.Console_LineCount + 1);
}

TEST(TelnetSession, SendingWithoutASessionIsRefused) {
    Session s;
    EXPECT_FALSE(s.session.sendData("SH/DX\r\n"));
}

} // namespace
