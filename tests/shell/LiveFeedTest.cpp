// The live feed end to end: a cluster on this machine, the program's window
// logged into it, and the spots it sends however the network cuts them.
#include "ShellFakes.h"

#include <QTcpServer>
#include <QTest>

using namespace zkr;
using test::waitFor;

namespace {

QByteArray spot(int n, const char *comment) {
    const char *frequencies[] = {"50110.0", "144300.0", "70150.0", "14074.0", "144174.0"};
    return QStringLiteral("DX de SP9HWY:  %1  OK%2      %3 1712Z")
        .arg(QString::fromLatin1(frequencies[n % 5]), 9)
        .arg(n, 4, 10, QLatin1Char('0'))
        .arg(QString::fromLatin1(comment), -30)
        .toLatin1();
}

// What a busy node sends: spots of every kind, announcements, a command's
// answer with its prompt, bells, a comment that says "login:", and a last
// spot that tells the test everything arrived; records glued, UTF-8.
QByteArray stream(int first, int count) {
    const char *comments[] = {"JO90JR<ES>KP20", "JO62QM JO65 MS", "IO91 JN45 es", "\xE2\x82\xAC",
                              "IM98 JO62QM ES", "login: pse",     "KP20 JO62 TR", "JN25 KO05 ES"};
    QByteArray out;
    for (int n = first; n < first + count; ++n) {
        out += spot(n, comments[n % 8]);
        out += n % 17 == 0 ? "" : n % 9 == 0 ? "\x07\x07\r\n" : "\r\n";
        if (n % 25 == 0) {
            out += "To ALL de G4ABC: 6m open\r\nDL1ABC de GB7TST 21-Nov-2026 1712Z dxspider >\r\n";
        }
    }
    return out;
}

// The program in telnet mode against a node on this machine.
struct Program : test::ProgramRig {
    Program() {
        ClusterSession::Options fast;
        fast.firstRetryMs = 100;
        window.sources().session().setOptions(fast);
        start();
        EXPECT_TRUE(waitFor([this] { return status().startsWith(" Connected to GB7TST"); }));
    }
    QString status() { return label("Label_Telnet_Status"); }
    bool shows(const QString &text) const { return pane(0).contains(text); }
    // Sends `bytes` in pieces of the sizes given (repeating), `gapMs` apart.
    void send(const QByteArray &bytes, const QList<int> &sizes, int gapMs) {
        node.sendInPieces(bytes, sizes, gapMs);
        EXPECT_TRUE(waitFor([this] { return node.piecesSent(); }));
    }
};

// Whole, in network segments, in odd pieces.
TEST(LiveFeed, GivesThePanesOfAFileReplayOfTheSameBytesHoweverCut) {
    const std::pair<QList<int>, int> cuts[] = {
        {{}, 0}, {{1448}, 20}, {{1, 7, 13, 1000, 3, 211}, 2}};
    for (const auto &[sizes, gapMs] : cuts) {
        SCOPED_TRACE(sizes.size());
        Program program;
        program.send(stream(1, 120), sizes, gapMs);
        program.node.greeting = spot(121, "JO62QM<ES>KP20") + "\r\n"; // at once after the login
        program.node.closeClients();
        ASSERT_TRUE(waitFor([&] { return program.node.logins().size() == 2; }));
        program.send(spot(9999, "JO90JR<ES>KP20") + "\r\n", sizes, gapMs);
        ASSERT_TRUE(waitFor([&] { return program.shows(QStringLiteral("OK9999")); }));

        // The record of what was heard, replayed by the headless tool.
        const auto tool =
            test::toolPanes(program.state.Console_Lines.join(QString()).toLatin1(), false);
        for (int pane = 0; pane < 4; ++pane) {
            EXPECT_EQ(test::paneLines(program.window.workingPane(pane)), tool[pane])
                << "pane " << pane;
        }
        // Every spot of the stream is in the All pane, the "login:" one too.
        EXPECT_TRUE(
            program.shows(QString::fromUtf8("OK0003      \xE2\x82\xAC"))); // UTF-8 read as such
        for (int n = 1; n <= 121; ++n) {
            EXPECT_TRUE(program.shows(QStringLiteral("OK%1").arg(n, 4, 10, QLatin1Char('0')))) << n;
        }
    }
}

// The session's own retries are tested with it, coming back by itself in the
// window above; here what the window says and that a click on the status
// connects at once.
TEST(LiveFeed, AfterADropTheStatusCountsTheAttemptsAndAClickConnectsAtOnce) {
    Program program;
    ClusterSession::Options slow;
    slow.firstRetryMs = 60000;
    program.window.sources().session().setOptions(slow);
    program.node.closeClients();
    ASSERT_TRUE(waitFor([&] { return program.status().startsWith("Reconnecting in "); }));
    EXPECT_TRUE(program.status().endsWith("(attempt 1) to GB7TST"));
    program.window.Label_Telnet_Status_Click();
    EXPECT_TRUE(waitFor([&] { return program.status().startsWith(" Connected to GB7TST"); }, 3000));
    EXPECT_EQ(program.node.logins(), QStringList({"DL1ABC", "DL1ABC"}));
    EXPECT_TRUE(program.platform.messages().isEmpty()); // a drop is no reason for a box

    // Asked for again while it waits (a first-run setup, then the start-up),
    // a refused session tries at once and its failure is reported once.
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost, 0);
    program.state.Telnet_Port = QString::number(probe.serverPort());
    probe.close();
    program.window.sources().Telnet_Connect();
    ASSERT_TRUE(waitFor([&] { return program.status().startsWith("Reconnecting"); }));
    program.window.sources().Telnet_Connect();
    EXPECT_TRUE(waitFor([&] {
        return program.status().contains("(attempt 2)") || program.platform.messages().size() > 1;
    }));
    EXPECT_EQ(program.platform.messages().size(), 1);
}

} // namespace
