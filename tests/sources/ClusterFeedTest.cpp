#include "ClusterFeed.h"
#include "QtPrinters.h"

#include <gtest/gtest.h>

using namespace zkr;

namespace {

// Every signal of a feed, in order, as one text each.
struct Recorder {
    ClusterFeed feed;
    QStringList events;

    Recorder() {
        for (const auto &[signal, tag] :
             {std::pair{&ClusterFeed::lineReceived, "L:"}, {&ClusterFeed::promptBlock, "P:"}}) {
            QObject::connect(&feed, signal, [this, tag](const QString &t) { events << tag + t; });
        }
        QObject::connect(&feed, &ClusterFeed::spotLine, [this](const QString &t, bool utf8) {
            events << (utf8 ? "U:" : "S:") + t; // U: it came as UTF-8
        });
        QObject::connect(&feed, &ClusterFeed::loginRequested, [this] { events << "login"; });
        QObject::connect(&feed, &ClusterFeed::telnetReply, [this](const QByteArray &r) {
            events << "R:" + QString::fromLatin1(r.toHex());
        });
    }
};

// `bytes` in pieces of the given sizes, repeated in turn; none: whole.
QStringList feedCut(const QByteArray &bytes, const QList<int> &sizes) {
    Recorder r;
    qsizetype at = 0;
    for (int i = 0; at < bytes.size(); ++i) {
        const qsizetype size = sizes.isEmpty() ? bytes.size() : sizes.at(i % sizes.size());
        r.feed.receive(QByteArrayView(bytes).sliced(at, std::min(size, bytes.size() - at)));
        at += size;
    }
    r.feed.finish();
    return r.events;
}

const QByteArray Spot1 = "DX de SP9HWY:     50110.0  OH1XYZ       JO90JR<ES>KP20            1712Z";
const QByteArray Spot2 = "DX de G0ABC:    144300.0  SM5ABC       JO89<ES>KP20 login: x     0011Z";
const QByteArray Prompt = "DL1ABC de GB7TST 23-Nov-2026 0011Z dxspider >";

QStringList lines(const QList<QByteArray> &texts, bool spots = false) {
    QStringList out;
    for (const QByteArray &t : texts) {
        out << "L:" + QString::fromLatin1(t);
        if (spots) {
            out << "S:" + QString::fromLatin1(t);
        }
    }
    return out;
}

// The prompt line's event and its block around the lines kept before it.
QStringList prompt(const QList<QByteArray> &kept) {
    QString block = "\r\n\r\n\r\n";
    for (const QByteArray &k : kept + QList<QByteArray>{Prompt}) {
        block += QString::fromLatin1(k) + "\r\n";
    }
    return lines({Prompt}) << "P:" + block + "\r\n\r\n\r\n";
}

TEST(ClusterFeed, GivesTheSameSignalsHoweverTheStreamIsCut) {
    QByteArray manyLines;
    QList<QByteArray> allKept;
    for (int i = 0; i < ClusterFeed::MaxBlockLines + 5; ++i) {
        allKept << "line " + QByteArray::number(i);
        manyLines += allKept.last() + "\n";
    }
    const QByteArray longLine(70000, 'x');
    // DX Spider's welcome: a line ending in ">" that is no prompt.
    const QByteArray name = "Please enter your name, set/name <your name>";
    const QByteArray ann = "To ALL de G0ABC: hello";
    const QByteArray noFrequency = "DX de SP9HWY:      abc.0  OH1XYZ       JO90JR";
    const struct {
        const char *name;
        QByteArray bytes;
        QStringList expected;
    } streams[] = {
        {"welcome, a line above 64 KB and prompt",
         longLine + "\r\n" + name + "\r\n\r\n" + Prompt + "\r\n",
         lines({longLine, name, ""}) + prompt({longLine, name, ""})},
        {"a spot drops the lines kept before it",
         Spot1 + "\r\n" + ann + "\r\n" + Spot2 + "\r\n" + ann + "\n" + Prompt + "\r\n",
         lines({Spot1}, true) + lines({ann}) + lines({Spot2}, true) + lines({ann}) + prompt({ann})},
        {"line ends CR LF, LF, CR and their mixes", "a\rb\nc\r\n\r\nd\n\re\r\r\nf",
         lines({"a", "b", "c", "", "d", "", "e", "", "f"})},
        {"bell pairs",
         "a\x07\x07z\r\n\x07\x07\x07\r\n\x07\x07\x07\x07\r\n" + Spot1 + "\x07\x07\r\n",
         lines({"az", "\x07", ""}) + lines({Spot1}, true)},
        {"telnet negotiation",
         QByteArrayLiteral(
             "\xff\xfb\x01"
             "a\xff\xff"
             "b\xff\xfd\x18\xff\xfc\x01\xff\xfe\x03\r\xff\xf1\n\xff\xfa\x18\x01\xff\xff"
             "XY\xff\xf0"
             "c\0d\r\n"),
         QStringList{"R:fffe01", "R:fffc18", QString("L:a") + QChar(0xff) + "b", "L:cd"}},
        {"login prompt at the end",
         "Welcome\r\n\r\nlogin: ", lines({"Welcome", ""}) + QStringList{"login", "L:login: "}},
        {"login: in a spot comment, a prompt amid spots", Spot2 + "\r\n" + Prompt + "\r\n" + Spot1,
         lines({Spot2}, true) + prompt({}) + lines({Spot1}, true)},
        {"a DX line without frequency still drops the kept lines",
         "kept\r\n" + noFrequency + "\r\n" + Prompt + "\n",
         lines({"kept"}) + lines({noFrequency}, true) + prompt({})},
        {"the prompt block keeps the newest lines", manyLines + Prompt + "\r\n",
         lines(allKept) + prompt(allKept.mid(5))},
        {"the welcome or a spot right after the login request",
         Prompt + "\r\nlogin: Hello DL1ABC\r\nlogin: " + Spot1 + "\r\n",
         prompt({}) + lines({"login: ", "Hello DL1ABC", "login: "}) + lines({Spot1}, true)},
        {"records glued without a line end", Spot1 + Spot2 + Spot1 + "\r\n" + ann + Spot1 + "\n",
         lines({Spot1 + Spot2 + Spot1}) + QStringList{"S:" + Spot1, "S:" + Spot2, "S:" + Spot1} +
             lines({ann + Spot1})},
        {"UTF-8 where valid, else Windows-1252",
         "DX de \xC3\xA9\r\nDX de \x80\xE9\xC3\xA9\r\n",
         {"L:DX de é", "U:DX de é", "L:DX de €éÃ©", "S:DX de €éÃ©"}},
    };
    for (const auto &s : streams) {
        for (const QList<int> &cut : QList<QList<int>>{{}, {1}, {1448}, {1, 7, 13, 1000}}) {
            EXPECT_EQ(feedCut(s.bytes, cut), s.expected)
                << s.name << ", pieces of " << cut.value(0);
        }
    }
}

TEST(ClusterFeed, AnswersTheLoginOnlyOnceBeforeLoginAndOnlyUnterminated) {
    const struct {
        QList<QByteArray> reads;
        int logins;
        bool loggedIn;
    } cases[] = {
        {{"Please login: \r\n", "call:x"}, 0, false}, // terminated
        {{Prompt + "\r\n", "login: "}, 0, true},
        {{Spot1 + "\r\n", "call: "}, 0, true},
        {{Spot1 + " login:"}, 0, false}, // a cut spot
        {{"login: ", "login: "}, 1, true},
        {{"Please enter your CallSign:  "}, 1, true}, // any case
    };
    for (const auto &c : cases) {
        Recorder r;
        for (const QByteArray &read : c.reads) {
            r.feed.receive(read);
        }
        EXPECT_EQ(r.events.count("login"), c.logins) << c.reads.join('|').constData();
        EXPECT_EQ(r.feed.loggedIn(), c.loggedIn) << c.reads.join('|').constData();
    }
}

TEST(ClusterFeed, ResetForgetsTheCutLineTheKeptLinesTheLoginAndTheTelnetState) {
    Recorder r;
    r.feed.receive("kept\r\nlogin: half a line\xff\xfb");
    r.feed.reset();
    r.events.clear();
    const QByteArray line = QByteArray(1, '\x01') + "a";
    r.feed.receive(line + "\nlogin: ");
    r.feed.receive("\r\n" + Prompt + "\r\n");
    EXPECT_EQ(r.events, lines({line}) + QStringList{"login"} + lines({"login: "}) +
                            prompt({line, "login: "}));
}

} // namespace
