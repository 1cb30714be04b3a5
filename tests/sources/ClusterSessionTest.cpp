#include "ClusterSession.h"
#include "FileReplay.h"
#include "LocalClusterServer.h"
#include "QtPrinters.h"
#include "RetryDelay.h"
#include "WaitFor.h"

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
    QStringList spots, statuses, failures;

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
};

QByteArray spotLine(int n) {
    return "DX de SP9HWY:     50110.0  OH" + QByteArray::number(n).rightJustified(4, '0') +
           "     JO90JR<ES>KP20            1712Z";
}

int socketOption(const QTcpSocket &socket, int level, int name) {
    int value = -1;
    socklen_t size = sizeof value;
    ::getsockopt(static_cast<int>(socket.socketDescriptor()), level, name, &value, &size);
    return value;
}

// replayAll, the headless tool's, is LiveFeedTest's reference.
TEST(FileReplay, ReplaysAFileInSlicesInTheBackground) {
    QStringList expected;
    QTemporaryFile file;
    ASSERT_TRUE(file.open());
    for (int i = 0; i <= 1000; ++i) { // two slices, the last line unterminated
        expected << QString::fromLatin1(spotLine(i));
        file.write(spotLine(i) + (i < 1000 ? "\x07\x07\r\n" : ""));
    }
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
    ASSERT_TRUE(waitFor([&] { return finished == 1 && !replay.isRunning(); }));
    EXPECT_EQ(spots, expected);
}

// How the node cuts the stream is the window's end-to-end test (LiveFeedTest).
// The close comes while the session still reads a flood a slice per turn.
TEST(ClusterSession, ComesBackByItselfAfterTheNodeDropsTheLinkAndLosesNoSpotAroundIt) {
    LocalClusterServer node;
    // Retries after 200 ms to 1 s, connect timeout, keep-alive 60/20/5, write gap.
    Watched w({200, 1000, 2000, 60, 20, 5, 20});
    w.start(node.port());
    ASSERT_TRUE(waitFor([&] { return w.session.state() == State::LoggedIn; }));

    // 4000 whole spots and half of one more, then the node hangs up.
    node.send(QByteArray(spotLine(1) + "\r\n").repeated(3999) + spotLine(2) + "\r\n" +
              spotLine(3).left(30));
    node.closeClients();
    ASSERT_TRUE(waitFor([&] { return w.failures.size() == 1; }));
    ASSERT_EQ(w.spots.size(), 4000);
    EXPECT_EQ(w.spots.last(), spotLine(2));

    ASSERT_TRUE(
        waitFor([&] { return node.logins().size() == 2 && w.session.state() == State::LoggedIn; }));
    // A telnet option the session refuses, then two spots.
    node.send("\xff\xfb\x01" + spotLine(4) + "\r\n" + spotLine(5) + "\r\n");
    EXPECT_TRUE(waitFor([&] { return node.received().contains("\xff\xfe\x01"); }));
    EXPECT_TRUE(waitFor([&] { return w.spots.size() == 4002; }));
    EXPECT_EQ(w.spots.mid(4000), QStringList({spotLine(4), spotLine(5)}));
}

// Node operators block clients that retry every few seconds for hours.
TEST(RetryPolicy, WaitsTwiceAsLongEachTimeWithinTheJitterUpToTheLimit) {
    const RetryPolicy policy{3000, 40000};
    const int waits[][3] = {{1, 2400, 3599},   {2, 4800, 7199},   {3, 9600, 14399},   // shortest,
                            {4, 19200, 28799}, {5, 32000, 40000}, {9, 32000, 40000}}; // longest
    for (const auto &[attempt, shortest, longest] : waits) {
        EXPECT_EQ(std::tuple(attempt, policy.delayMs(attempt, 0), policy.delayMs(attempt, 0.9999)),
                  std::tuple(attempt, shortest, longest));
    }
}

TEST(ClusterSession, RetriesARefusedPortCountingDownUntilANodeListensThere) {
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost, 0);
    const quint16 port = probe.serverPort();
    probe.close(); // nothing listens there
    // The first retry 1.2 to 1.8 s with jitter: "2 s", a second later "1 s".
    Watched w({1500, 60000, 2000, 61, 7, 4, 20});
    w.start(port);
    const QString endpoint = QString(" GB7TST 127.0.0.1:%1").arg(port);
    EXPECT_EQ(w.statuses.value(0), " trying to connect to" + endpoint);
    ASSERT_TRUE(waitFor([&] { return w.session.attempt() == 2; }));
    for (const char *status : {"in 2 s (attempt 1)", "in 1 s (attempt 1)"}) {
        EXPECT_TRUE(w.statuses.contains("Reconnecting " + QString(status) + " to GB7TST"));
    }
    EXPECT_TRUE(w.statuses.last().contains(" s (attempt 2)")) << w.statuses.last().toStdString();
    EXPECT_FALSE(w.session.send("early\r\n"));

    LocalClusterServer node(port);
    w.session.retryNow();
    ASSERT_TRUE(waitFor([&] { return w.session.state() == State::LoggedIn; }));
    EXPECT_EQ(w.statuses.last(), " Connected to" + endpoint);
    EXPECT_EQ(w.session.attempt(), 0);

    const QTcpSocket &socket = w.session.socket();
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
