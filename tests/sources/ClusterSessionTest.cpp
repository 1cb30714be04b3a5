#include "ClusterSession.h"
#include "FileReplay.h"
#include "LocalClusterServer.h"
#include "QtPrinters.h"
#include "WaitFor.h"

#include <QBuffer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryFile>

#include <gtest/gtest.h>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

using namespace zkr;
using test::waitFor;
using State = ClusterSession::State;

namespace {

// A session on a local node, with everything it reports.
struct Watched {
    ClusterSession session;
    QStringList spots;
    QStringList statuses;
    QStringList failures;

    explicit Watched(ClusterSession::Options options) {
        session.setOptions(options);
        QObject::connect(&session.feed(), &ClusterFeed::spotLine,
                         [this](const QString &line) { spots << line; });
        QObject::connect(&session, &ClusterSession::statusChanged,
                         [this](State, const QString &text) { statuses << text; });
        QObject::connect(&session, &ClusterSession::attemptFailed,
                         [this](const QString &reason) { failures << reason; });
    }
    void start(quint16 port) { session.start("GB7TST", "127.0.0.1", port, "DL1ABC"); }
    bool loggedIn() {
        return waitFor([this] { return session.state() == State::LoggedIn; });
    }
};

ClusterSession::Options quick() {
    ClusterSession::Options o;
    o.firstRetryMs = 200;
    o.maxRetryMs = 1000;
    o.connectTimeoutMs = 2000;
    o.writeGapMs = 20;
    return o;
}

QByteArray spotLine(int n) {
    return "DX de SP9HWY:     50110.0  OH" + QByteArray::number(n).rightJustified(4, '0') +
           "     JO90JR<ES>KP20            1712Z";
}

// A flood as a node sends it: spots ending in bells, an announcement, a
// refused telnet option, a command's answer and the prompt.
QByteArray flood(int spots) {
    QByteArray bytes = "\xff\xfb\x01";
    for (int i = 0; i < spots; ++i) {
        bytes += spotLine(i) + "\x07\x07\r\n";
        if (i % 7 == 3) {
            bytes +=
                "To ALL de G0ABC: hello\r\nsh/dx answer\n" + LocalClusterServer::prompt("DL1ABC");
        }
    }
    return bytes;
}

QStringList replayed(const QByteArray &bytes) {
    ClusterFeed feed;
    QStringList spots;
    QObject::connect(&feed, &ClusterFeed::spotLine, [&](const QString &l) { spots << l; });
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    FileReplay::replayAll(buffer, feed);
    return spots;
}

quint16 freePort() {
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost, 0);
    return probe.serverPort(); // closed again: nothing listens there
}

int socketOption(QTcpSocket &socket, int level, int name) {
    int value = -1;
    socklen_t size = sizeof value;
    ::getsockopt(static_cast<int>(socket.socketDescriptor()), level, name, &value, &size);
    return value;
}

TEST(FileReplay, InTheBackgroundGivesWhatReplayAllGives) {
    const QByteArray bytes = flood(600); // two slices and a half
    QTemporaryFile file;
    ASSERT_TRUE(file.open());
    file.write(bytes + spotLine(600)); // the last line unterminated
    file.close();
    ClusterFeed feed;
    QStringList spots;
    QObject::connect(&feed, &ClusterFeed::spotLine, [&](const QString &l) { spots << l; });
    FileReplay replay;
    int finished = 0;
    QObject::connect(&replay, &FileReplay::finished, [&] { ++finished; });
    EXPECT_FALSE(replay.start(file.fileName() + ".missing", feed));
    EXPECT_FALSE(replay.errorString().isEmpty());
    ASSERT_TRUE(replay.start(file.fileName(), feed));
    EXPECT_TRUE(spots.isEmpty()) << "nothing before the event loop turns";
    ASSERT_TRUE(waitFor([&] { return finished == 1; }));
    EXPECT_FALSE(replay.isRunning());
    EXPECT_EQ(spots, replayed(bytes) << QString::fromLatin1(spotLine(600)));
}

TEST(ClusterSession, LogsInAndGetsTheSpotsOfAFileReplayHoweverTheNodeCutsTheStream) {
    LocalClusterServer node;
    Watched w(quick());
    w.start(node.port());
    ASSERT_TRUE(w.loggedIn());
    EXPECT_EQ(node.logins(), QStringList{"DL1ABC"});

    const QByteArray bytes = flood(200);
    const QStringList expected = replayed(bytes);
    ASSERT_EQ(expected.size(), 200);
    const struct {
        QList<int> pieces;
        int gapMs;
    } cuts[] = {{{}, 0}, {{1}, 0}, {{1448}, 20}, {{1, 7, 13, 1000}, 1}};
    for (const auto &cut : cuts) {
        w.spots.clear();
        node.sendInPieces(bytes, cut.pieces, cut.gapMs);
        EXPECT_TRUE(waitFor([&] { return node.piecesSent() && w.spots.size() >= 200; }));
        EXPECT_EQ(w.spots, expected) << "pieces of " << cut.pieces.value(0);
    }
    // Each refusal went back to the node.
    EXPECT_TRUE(waitFor([&] { return node.received().count("\xff\xfe\x01") == 4; }));
}

TEST(ClusterSession, ComesBackByItselfAfterTheNodeDropsTheLinkAndLosesNoSpotAfterIt) {
    LocalClusterServer node;
    Watched w(quick());
    w.start(node.port());
    ASSERT_TRUE(w.loggedIn());

    // Two whole spots and half of a third, then the node hangs up.
    node.send(spotLine(1) + "\r\n" + spotLine(2) + "\r\n" + spotLine(3).left(30));
    node.closeClients();
    ASSERT_TRUE(waitFor([&] { return w.failures.size() == 1; }));
    EXPECT_EQ(w.spots, QStringList({spotLine(1), spotLine(2)}));
    EXPECT_EQ(w.session.attempt(), 1);
    EXPECT_TRUE(w.statuses.contains("Reconnecting to GB7TST in 1 s (attempt 1)"))
        << testing::PrintToString(w.statuses);

    ASSERT_TRUE(
        waitFor([&] { return node.logins().size() == 2 && w.session.state() == State::LoggedIn; }));
    EXPECT_EQ(w.session.attempt(), 0);
    node.send(spotLine(4) + "\r\n" + spotLine(5) + "\r\n");
    EXPECT_TRUE(waitFor([&] { return w.spots.size() == 4; }));
    EXPECT_EQ(w.spots.mid(2), QStringList({spotLine(4), spotLine(5)}));
}

TEST(ClusterSession, RetriesARefusedPortCountingDownUntilANodeListensThere) {
    const quint16 port = freePort();
    ClusterSession::Options options = quick();
    options.firstRetryMs = 1500; // 1.2 to 1.8 s with jitter: "2 s", a second later "1 s"
    options.maxRetryMs = 60000;
    options.keepAliveIdleS = 61;
    options.keepAliveIntervalS = 7;
    options.keepAliveCount = 4;
    Watched w(options);
    w.start(port);
    const QString endpoint = QString(" GB7TST 127.0.0.1:%1").arg(port);
    EXPECT_EQ(w.statuses.value(0), " trying to connect to" + endpoint);
    ASSERT_TRUE(waitFor([&] { return w.session.attempt() == 2; }));
    EXPECT_EQ(w.failures.size(), 2);
    EXPECT_TRUE(w.statuses.contains("Reconnecting to GB7TST in 2 s (attempt 1)"))
        << testing::PrintToString(w.statuses);
    EXPECT_TRUE(w.statuses.contains("Reconnecting to GB7TST in 1 s (attempt 1)"))
        << testing::PrintToString(w.statuses);
    EXPECT_TRUE(w.statuses.last().endsWith(" s (attempt 2)")) << testing::PrintToString(w.statuses);
    EXPECT_FALSE(w.session.send("early\r\n"));

    LocalClusterServer node(port);
    w.session.retryNow();
    EXPECT_EQ(w.session.state(), State::Connecting);
    ASSERT_TRUE(w.loggedIn());
    EXPECT_EQ(w.statuses.last(), " Connected to" + endpoint);
    EXPECT_EQ(w.session.attempt(), 0);

    QTcpSocket &socket = w.session.socket();
    EXPECT_EQ(socketOption(socket, SOL_SOCKET, SO_KEEPALIVE), 1);
    EXPECT_EQ(socketOption(socket, IPPROTO_TCP, TCP_KEEPIDLE), 61);
    EXPECT_EQ(socketOption(socket, IPPROTO_TCP, TCP_KEEPINTVL), 7);
    EXPECT_EQ(socketOption(socket, IPPROTO_TCP, TCP_KEEPCNT), 4);
    EXPECT_EQ(socketOption(socket, IPPROTO_TCP, TCP_USER_TIMEOUT), (61 + 7 * 4) * 1000);

    EXPECT_TRUE(w.session.send("sh/dx\r\n"));
    EXPECT_TRUE(w.session.send("sh/wwv\r\n"));
    EXPECT_TRUE(waitFor([&] { return node.received() == "sh/dx\r\nsh/wwv\r\n"; }))
        << node.received().toStdString();

    w.session.stop();
    EXPECT_EQ(w.statuses.last(), " Not connected !");
    node.closeClients();
    EXPECT_FALSE(waitFor([&] { return w.session.state() != State::Idle; }, 300));
    EXPECT_EQ(w.failures.size(), 2);
}

} // namespace
