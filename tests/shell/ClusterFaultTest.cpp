#include "LocalClusterServer.h"
#include "PaneView.h"
#include "ProcessMemory.h"
#include "ProgramState.h"
#include "QtPrinters.h"
#include "ScriptedPlatform.h"
#include "TelnetSession.h"
#include "WaitFor.h"
#include "frmZKR_MUF.h"

#include <QElapsedTimer>
#include <QLabel>
#include <QSet>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <netinet/in.h>
#include <poll.h>
#include <random>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

using namespace zkr;

namespace {

using test::waitFor;

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
        EXPECT_TRUE(LocalClusterServer::writeSettings(folder.path(), port));
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

// A node that floods from a thread of its own, so the flood keeps its pace
// however busy the program is; only TCP's flow control holds it back.
class FloodingNode {
public:
    FloodingNode() {
        listener_ = socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        if (listener_ < 0 || bind(listener_, reinterpret_cast<sockaddr *>(&address), length) != 0 ||
            listen(listener_, 1) != 0 ||
            getsockname(listener_, reinterpret_cast<sockaddr *>(&address), &length) != 0) {
            ADD_FAILURE() << "no listening socket";
            return;
        }
        port_ = ntohs(address.sin_port);
    }
    ~FloodingNode() {
        finish();
        close(client_);
        close(listener_);
    }
    quint16 port() const { return port_; }

    // Logs the program in, then sends `perSecond` spots a second, 50 to a
    // write, for `seconds` seconds.
    void start(int perSecond, int seconds) {
        thread_ = std::thread([=, this] {
            if (!logIn()) {
                return;
            }
            const auto begin = std::chrono::steady_clock::now();
            const int writes = perSecond / 50 * seconds;
            for (int i = 0; i < writes; ++i) {
                std::this_thread::sleep_until(
                    begin + std::chrono::microseconds(1000000LL * i / (perSecond / 50)));
                if (!send(batch(i * 50))) {
                    return;
                }
                sent_ += 50;
            }
            seconds_ =
                std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
        });
    }
    void finish() {
        if (thread_.joinable()) {
            thread_.join();
        }
    }
    int sent() const { return sent_; }
    double seconds() const { return seconds_; }
    bool send(const QByteArray &bytes) {
        qsizetype done = 0;
        while (done < bytes.size()) {
            const ssize_t n = ::send(client_, bytes.constData() + done,
                                     static_cast<size_t>(bytes.size() - done), MSG_NOSIGNAL);
            if (n <= 0) {
                return false;
            }
            done += n;
        }
        return true;
    }

private:
    static QByteArray batch(int first) {
        QByteArray out;
        for (int i = first; i < first + 50; ++i) {
            out += spot(qPrintable(QString("F%1").arg(i, 6, 10, QChar('0'))), "JO62QM JO65 MS");
        }
        return out;
    }
    bool logIn() {
        pollfd waiting{listener_, POLLIN, 0};
        if (poll(&waiting, 1, 10000) != 1 || (client_ = accept(listener_, nullptr, nullptr)) < 0 ||
            !send("login: ")) {
            return false;
        }
        QByteArray call;
        pollfd reading{client_, POLLIN, 0};
        char c = 0;
        while (!call.endsWith("\r\n") && poll(&reading, 1, 10000) == 1 &&
               recv(client_, &c, 1, 0) == 1) {
            call += c;
        }
        return call == "DL1ABC\r\n" && send(LocalClusterServer::prompt("DL1ABC"));
    }

    int listener_ = -1;
    int client_ = -1;
    quint16 port_ = 0;
    std::thread thread_;
    std::atomic<int> sent_{0};
    std::atomic<double> seconds_{0};
};

// 10,000 spots a second for 30 seconds. A chunk is handled by itself: when a
// read cuts a line, the chunk that starts with its tail is not searched for
// spots, so a flood loses spots by design. It must not stop, hang or grow
// the program, and the window must keep answering meanwhile.
TEST(ClusterFaults, AFloodOfSpotsLeavesTheProgramWorkingAndBounded) {
    FloodingNode node;
    Connected c(node.port());
    node.start(10000, 30);
    ASSERT_TRUE(waitFor([&] { return c.status->text().startsWith(" Connected to "); }));
    const long residentBefore = test::residentKiB();

    // The longest the window went without handling an event.
    QElapsedTimer sinceTick;
    sinceTick.start();
    qint64 longestGap = 0;
    QTimer ticks;
    QObject::connect(&ticks, &QTimer::timeout,
                     [&] { longestGap = std::max(longestGap, sinceTick.restart()); });
    ticks.start(20);
    ASSERT_TRUE(waitFor([&] { return node.sent() == 300000; }, 120000));
    node.finish();
    ASSERT_TRUE(c.settle());
    ticks.stop();

    const long residentAfter = test::residentKiB();
    // The "All" pane keeps the newest lines; count the flood's spots in it.
    const QString all = c.all();
    QSet<QStringView> shown;
    int oldest = 300000;
    for (qsizetype at = all.indexOf(" F"); at >= 0; at = all.indexOf(" F", at + 1)) {
        const QStringView call = QStringView(all).mid(at + 1, 7);
        if (call.mid(1).toInt() > 0 || call == u"F000000") {
            shown.insert(call);
            oldest = std::min(oldest, call.mid(1).toInt());
        }
    }
    std::printf(
        "flood: %d spots sent in %.1f s; the All pane's %lld lines show %lld of the %d from "
        "F%06d on; "
        "%d console chunks kept; longest pause of the window %lld ms; "
        "resident %ld -> %ld KiB\n",
        node.sent(), node.seconds(), static_cast<long long>(c.window->workingPane(0).lineCount()),
        static_cast<long long>(shown.size()), node.sent() - oldest, oldest,
        c.state.Console_LineCount, static_cast<long long>(longestGap), residentBefore,
        residentAfter);
    ::testing::Test::RecordProperty("spots_in_all_pane", static_cast<int>(shown.size()));
    ::testing::Test::RecordProperty("longest_pause_ms", static_cast<int>(longestGap));

    EXPECT_GT(shown.size(), 3000); // more than one spot in a hundred
    EXPECT_LE(c.state.SpotLines.size(), c.state.MaxSpotLines + 1);
    EXPECT_LE(c.state.Console_LineCount, TelnetSession::ConsoleRecordLimit);
    for (int pane = 0; pane < 4; ++pane) {
        EXPECT_LE(c.window->workingPane(pane).lineCount(), MemoryPane::DefaultMaxLines);
    }
    ASSERT_TRUE(node.send(spot("OK9ZZZ")));
    ASSERT_TRUE(waitFor([&] { return c.shows("OK9ZZZ"); }));
    EXPECT_TRUE(c.state.Telnet_Connected);
    EXPECT_TRUE(c.platform.messages().isEmpty()) << c.platform.messages().join('\n').toStdString();
}

} // namespace
