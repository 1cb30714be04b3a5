#include "LocalClusterServer.h"
#include "PaneView.h"
#include "ProgramState.h"
#include "QtPrinters.h"
#include "ScriptedPlatform.h"
#include "frmZKR_MUF.h"

#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>
#include <random>

using namespace zkr;

namespace {

bool waitFor(const std::function<bool()> &condition, int ms = 10000) {
    QElapsedTimer clock;
    clock.start();
    while (!condition() && clock.elapsed() < ms) {
        QTest::qWait(10);
    }
    return condition();
}

QByteArray spot(const char *dxCall, const char *comment = "JO90JR<ES>KP20") {
    return (QString("DX de SP9HWY:     50110.0  ") + QString(dxCall).leftJustified(13, ' ') +
            QString(comment).leftJustified(31, ' ') + "1712Z\r\n")
        .toLatin1();
}

// The program in telnet mode, logged in to a cluster on this machine.
struct Connected {
    LocalClusterServer node;
    QTemporaryDir folder;
    ProgramState state;
    ScriptedPlatform platform;
    std::unique_ptr<frmZKR_MUF> window;
    QLabel *status = nullptr;

    Connected() {
        start(node.port());
        EXPECT_TRUE(waitFor([this] { return status->text().startsWith(" Connected to "); }));
    }
    // Started against some other server, without waiting for anything.
    explicit Connected(quint16 port) { start(port); }
    void start(quint16 port) {
        QFile ini(folder.filePath("zkr_muf.ini"));
        EXPECT_TRUE(ini.open(QIODevice::WriteOnly));
        ini.write(
            QString(
                "[Version]\r\nVersion=1.30\r\n[Call]\r\nOwnCall=DL1ABC\r\n[Locator]\r\n"
                "OwnLocator=JO62QM\r\n[Telnet]\r\nTelnet_Call=GB7TST\r\nTelnet_Host=127.0.0.1\r\n"
                "Telnet_Port=%1\r\n[AutoUpdateCheck]\r\nUpdateCheck=off\r\n")
                .arg(port)
                .toLatin1());
        ini.close();
        platform.setApplicationFolder(folder.path());
        window = std::make_unique<frmZKR_MUF>(state, platform);
        window->Form_Load();
        status = window->findChild<QLabel *>("Label_Telnet_Status");
    }
    QString all() const { return window->displayPane(0)->text(); }
    // Waits until everything sent was taken in: no new chunk for a while.
    bool settle() {
        if (!waitFor([this] { return node.socketIdle(); })) {
            return false;
        }
        int chunks = -1;
        for (int rounds = 0; rounds < 100 && chunks != state.Console_LineCount; ++rounds) {
            chunks = state.Console_LineCount;
            QTest::qWait(150);
        }
        return chunks == state.Console_LineCount && !state.Busy;
    }
    bool shows(const char *dxCall) const { return all().contains(QLatin1String(dxCall)); }
};

// Whatever the cluster sends, the next good spot still arrives.
TEST(ClusterFaults, GarbageLongLinesAndNulsLeaveTheSessionWorking) {
    Connected c;
    std::mt19937 random(73);
    QByteArray garbage(64 * 1024, '\0');
    for (char &b : garbage) {
        b = static_cast<char>(random());
    }
    const QByteArray megabyteLine = "DX de " + QByteArray(1024 * 1024, 'x') + "\r\n";
    const QByteArray megabyteSpot = spot("OK1LNG", QByteArray(1024 * 1024, 'w').constData());
    const QByteArray markup = spot("<b>HTML</b>", "JO90JR <a href=x>ES</a> \x01\x7f\xff");
    for (const QByteArray &fault :
         {garbage, megabyteLine, megabyteSpot, QByteArray("DX de \0\0\0\r\n", 11), markup}) {
        // Each chunk stands for itself: the good spot must come in one of
        // its own, after the fault has been taken in.
        c.node.send(fault);
        ASSERT_TRUE(c.settle());
        c.node.send(spot("OK1AAA"));
        ASSERT_TRUE(waitFor([&] { return c.shows("OK1AAA"); })) << c.all().left(300).toStdString();
        c.window->workingPane(0).clear();
        c.window->refreshPanes();
    }
    EXPECT_TRUE(c.state.Telnet_Connected);
    EXPECT_FALSE(c.state.Busy);
    EXPECT_TRUE(c.platform.messages().isEmpty()) << c.platform.messages().join('\n').toStdString();
    // Markup from the cluster is shown as the characters it is made of.
    c.node.send(markup);
    ASSERT_TRUE(waitFor([&] { return c.shows("<b>HTML</b>"); }));
}

TEST(ClusterFaults, ClosedMidLineKeepsTheCutSpotAndTurnsTheStatusRed) {
    Connected c;
    c.node.send(spot("OK1AAA") + spot("OK2BBB").left(40));
    ASSERT_TRUE(waitFor([&] { return c.shows("OK2BBB"); }));
    c.node.closeClients();
    ASSERT_TRUE(waitFor([&] { return !c.state.Telnet_Connected; }));
    EXPECT_TRUE(c.status->text().startsWith(" Not connected !"));
    EXPECT_TRUE(c.shows("OK1AAA"));
    EXPECT_FALSE(c.state.Busy);
}

// Nothing in telnet mode runs on a clock (the one timer drives the web
// refresh and stays off), so a cluster silent for minutes is to the program
// what one silent for a second is. Before the login prompt the status keeps
// saying the program is still trying; whatever comes late is taken as usual.
TEST(ClusterFaults, ASilentClusterLeavesTheStatusTellingTheState) {
    QTcpServer node;
    ASSERT_TRUE(node.listen(QHostAddress::LocalHost, 0));
    Connected c(node.serverPort());
    ASSERT_TRUE(waitFor([&] { return node.hasPendingConnections() && c.state.Telnet_Connected; }));
    QTcpSocket *socket = node.nextPendingConnection();
    EXPECT_FALSE(c.window->Timer1()->isActive());

    const QString trying =
        " trying to connect to GB7TST 127.0.0.1:" + QString::number(node.serverPort());
    const auto silence = [&](const QString &expectedStatus) {
        const int chunks = c.state.Console_LineCount;
        const QStringList before = c.platform.log();
        QTest::qWait(1000);
        EXPECT_EQ(c.status->text().left(expectedStatus.size()), expectedStatus);
        EXPECT_TRUE(c.state.Telnet_Connected);
        EXPECT_EQ(c.state.Console_LineCount, chunks);
        EXPECT_EQ(c.platform.log(), before); // no box, no beep
    };
    silence(trying);

    socket->write("login: ");
    ASSERT_TRUE(waitFor([&] { return socket->bytesAvailable() >= 8; }));
    EXPECT_EQ(socket->readAll(), QByteArray("DL1ABC\r\n"));
    socket->write(LocalClusterServer::prompt("GB7TST"));
    ASSERT_TRUE(waitFor([&] { return c.status->text().startsWith(" Connected to GB7TST"); }));
    silence(" Connected to GB7TST");

    socket->write(spot("OK1AAA"));
    ASSERT_TRUE(waitFor([&] { return c.shows("OK1AAA"); }));
}

// A chunk is handled by itself: when a read cuts a line, the chunk that
// starts with its tail is not searched for spots. A flood therefore loses
// spots by design; it must not stop, hang or grow the program.
TEST(ClusterFaults, AFloodOfSpotsLeavesTheProgramWorkingAndBounded) {
    Connected c;
    QByteArray flood;
    for (int i = 0; i < 3000; ++i) {
        flood += spot(qPrintable(QString("F%1").arg(i, 5, 10, QChar('0'))), "JO62QM JO65 MS");
        if (i % 50 == 49) {
            c.node.send(flood); // 50 spots to a chunk, as a busy node sends them
            flood.clear();
        }
    }
    ASSERT_TRUE(c.settle());
    EXPECT_TRUE(c.shows("F00000")); // the first chunk starts with a spot
    EXPECT_LE(c.state.SpotLines.size(), c.state.MaxSpotLines + 1);
    c.node.send(spot("OK9ZZZ"));
    ASSERT_TRUE(waitFor([&] { return c.shows("OK9ZZZ"); }));
    EXPECT_TRUE(c.state.Telnet_Connected);
}

} // namespace
