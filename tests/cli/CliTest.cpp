#include "CallBook.h"
#include "CountryExcerpt.h"
#include "HistoryDatabase.h"
#include "HistorySpots.h"
#include "LocalClusterServer.h"
#include "PaneOutput.h"
#include "PskReporterBroker.h"
#include "QtPrinters.h"
#include "WaitFor.h"
#include "WsjtxDatagrams.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QUdpSocket>

#include <gtest/gtest.h>

namespace {

// A recorded session as the console writes it: greeting, login, spots in
// DX Spider's layout (an HF spot with a Latin-1 comment, a 2 m MS spot with
// the cluster's bell pair, one without a frequency, one without a mode
// marker, two Es spots), a WWV line and a prompt.
const QByteArray Session =
    "\r\n"
    "Hello DL1ABC, this is GB7TST\r\n"
    "login: \r\n"
    "DX de G4ABC:     14074.0  EA7KW        tnx J\xFCrgen 73                  1710Z\r\n"
    "DX de DL8EBW:   144300.0  OZ1ABC       JO62QM JO65 ms                 1711Z\x07\x07\r\n"
    "WWV de VE7CC <18>:   SFI=152, A=8, K=2, No Storms -> No Storms\r\n"
    "DX de OK1DIX:             IK0FTA       JN61 ES JO62                   1711Z\r\n"
    "DL1ABC de GB7TST  1-Jun-2024 1711Z dxspider >\r\n"
    "DX de F6ABC:     50200.0  EA7KW        JN18DT KP20                    1712Z\r\n"
    "DX de SP9HWY:    50150.0  OH1XYZ       JO62QM<ES>KP20                 1712Z\r\n"
    "DX de S57TW:    144174.0  9A1ZZ        JO62QM ES IN80                 1713Z\r\n";

// The fields of the 6 m Es spot seen from JO62QM are the path worked by hand
// in the analysis tests (JO62QM to KP20 at 50.150 MHz): Es MUF 63.57 MHz,
// midpoint JO96GP, own MUF 50.15 MHz, cloud 565.5 km away at azimuth 34.05
// and elevation 8.36 degrees; the far point is KP20LL.
const QString Es6m = "SP9HWY:    50150.0  OH1XYZ       JO62QM<ES>KP20                 1712Z"
                     "    MUF= 64MHz@JO96  FOT= 50MHz -> KP20 AZ= 34 EL=  8";
const QString Es2m = "S57TW:    144174.0  9A1ZZ        JO62QM<ES>IN80                 1713Z"
                     "    MUF=149MHz@JN26  FOT=144MHz -> IN80 AZ=229 EL=  3";
const QString Unmarked = "F6ABC:     50200.0  EA7KW        JN18DT KP20                    1712Z";
const QString Ms2m = "DL8EBW:   144300.0  OZ1ABC       JO62QM JO65 ms                 1711Z";
const QString Hf = QString::fromUtf8(
    "G4ABC:     14074.0  EA7KW        tnx J\xC3\xBCrgen 73                  1710Z");
// The prompt in the All pane, three empty lines either side, where it came.
const QStringList Prompt{"", "", "", "DL1ABC de GB7TST  1-Jun-2024 1711Z dxspider >", "", "", ""};

struct Result {
    int exitCode = -1;
    QString out;
    QString err;
};

Result runCli(const QStringList &arguments, const QByteArray &input = {}) {
    QProcess tool;
    tool.start(QStringLiteral(ZKR_MUF_CLI), arguments);
    EXPECT_TRUE(tool.waitForStarted());
    tool.write(input);
    tool.closeWriteChannel();
    EXPECT_TRUE(tool.waitForFinished(30000));
    EXPECT_EQ(tool.exitStatus(), QProcess::NormalExit);
    return {tool.exitCode(), QString::fromUtf8(tool.readAllStandardOutput()),
            QString::fromUtf8(tool.readAllStandardError())};
}

class CliTest : public ::testing::Test {
protected:
    QString write(const QByteArray &content, const QString &name = "input.txt") {
        const QString path = folder.filePath(name);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return path;
    }
    // A history and country file of the test's own, not the machine's.
    QStringList files() {
        return {"--db", folder.filePath("none"), "--cty", write(CountryExcerpt, "cty")};
    }
    QTemporaryDir folder;
};

// A web spot page as the service sends it: the redirect script, then one
// spot per table row.
QByteArray webPage(const QStringList &rows) {
    const QByteArray script =
        QByteArray("setTimeout(function(){window.location.href = \"http://example.org/\"}, 6E4)")
            .leftJustified(79, ' ', true);
    return "<html><head><script>" + script + "</script></head><body><tr><td>" +
           rows.join("</td></tr>\n<tr><td>").toLatin1() + "</td></tr></body></html>";
}

const QString Web6mRow =
    "SP9HWY         50150.0 OH1XYZ       JO62QM ES KP20                     1712Z";
const QString WebHfRow =
    "G4ABC          14074.0 EA7KW        FT8 -12dB                          1711Z";
// The page's lines rebuilt in the shape of a cluster line; the 6 m one gets
// the fields of the hand-worked path.
const QString Web6m =
    "SP9HWY         50150.0 OH1XYZ       JO62QM<ES>KP20                       1712 "
    "     MUF= 64MHz@JO96  FOT= 50MHz -> KP20 AZ= 34 EL=  8";
const QString WebHf =
    "G4ABC          14074.0 EA7KW        FT8 -12dB                            1711  ";
const QString NoEs = "Sorry - no Es-spots found !";
const QString Down = "The Webserver may be down !";

// Each pane newest first. "file" stands for a file of the input; without one
// or with "-" it comes on standard input, with line ends of every kind there:
// LF, a lone CR, none after the last line.
TEST_F(CliTest, PrintEachPaneNewestFirst) {
    QByteArray mixed = Session;
    mixed.replace("\r\n", "\n").replace("WWV", "\rWWV").chop(1);
    const QList<QStringList> session{QStringList{Es2m, Es6m, Unmarked} + Prompt +
                                         QStringList{Ms2m, Hf},
                                     {Es2m, Es6m, Unmarked, Ms2m},
                                     {Es2m, Ms2m},
                                     {Es2m, Es6m}};
    const struct {
        QStringList options;
        QByteArray input;
        QList<QStringList> panes; // All, VHF, 2m, Es
    } cases[] = {
        {{"file"}, Session, session},
        {{}, Session, session},
        {{"-"}, mixed, session},
        {{"--es-only", "file"},
         Session,
         {QStringList{Es2m, Es6m} + Prompt, {Es2m, Es6m}, {Es2m}, {Es2m, Es6m}}},
        {{"--web", "file"},
         webPage({Web6mRow, WebHfRow}),
         {{Web6m, WebHf}, {Web6m}, {NoEs}, {Web6m}}},
        {{"--web", "file"}, "<h1>Server Error</h1>", {{Down}, {Down}, {Down}, {Down}}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.options.join(' ').toStdString());
        QStringList arguments{"--locator", "jo62qm"};
        for (const QString &option : c.options) {
            arguments << (option == "file" ? write(c.input) : option);
        }
        const bool piped = !c.options.contains("file");
        const Result r = runCli(arguments + files(), piped ? c.input : QByteArray());
        EXPECT_EQ(r.exitCode, 0);
        EXPECT_EQ(r.err, "");
        QString expected;
        const QStringList names{"All", "VHF", "2m", "Es"};
        for (int i = 0; i < 4; ++i) {
            expected += "== " + names[i] + " ==\n" + (c.panes[i] + QStringList{""}).join('\n');
        }
        EXPECT_EQ(r.out, expected);
    }
}

TEST_F(CliTest, JsonCarriesTheSegmentsAndJsonLinesEverySpot) {
    const Result r = runCli({"--json", "--locator", "JO62QM", write(Session)});
    ASSERT_EQ(r.exitCode, 0);
    const QJsonObject document = QJsonDocument::fromJson(r.out.toUtf8()).object();
    EXPECT_EQ(document.value("messages").toArray(), QJsonArray());
    const QJsonArray panes = document.value("panes").toArray();
    EXPECT_EQ(panes[2].toObject().value("name"), "2m");
    const QJsonArray all = panes.at(0).toObject().value("lines").toArray();
    ASSERT_EQ(all.size(), 12) << r.out.toStdString();
    // Compared as JSON text, which a failure prints readably.
    const auto json = [](const QJsonArray &line) {
        return QString(QJsonDocument(line).toJson(QJsonDocument::Compact));
    };
    // The 2 m Es spot: own square highlighted, the fields magenta from a MUF
    // of 144 MHz or more, the equally coloured fields joined into one.
    EXPECT_EQ(json(all[0].toArray()),
              json({QJsonArray{Es2m.left(33), "#000000"}, QJsonArray{"JO62", "#FF00FF"},
                    QJsonArray{Es2m.mid(37, 32), "#000000"}, QJsonArray{Es2m.mid(69), "#FF00FF"}}));
    EXPECT_EQ(json(all[6].toArray()), R"([[")" + Prompt[3] + R"(","#0000FF"]])");

    // --jsonl: one object per spot, in the order the spots came, with the Es path.
    const QStringList lines = runCli({"--jsonl", "--locator", "JO62QM", write(Session)})
                                  .out.split('\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 5); // the spot without a frequency is no spot
    QList<QJsonObject> spots;
    for (const QString &line : lines) {
        QJsonParseError error;
        spots.append(QJsonDocument::fromJson(line.toUtf8(), &error).object());
        ASSERT_EQ(error.error, QJsonParseError::NoError) << line.toStdString();
    }
    EXPECT_TRUE(runCli({"--jsonl", "--web", "--locator", "JO62QM", write(webPage({Web6mRow}))})
                    .out.startsWith(R"({"source":"web","time":"1712")"));
    EXPECT_TRUE(lines[0].startsWith(R"({"source":"file","time":"1710","spotter":"G4ABC",)"
                                    R"("frequency_mhz":14.074,"dx":"EA7KW",)"))
        << lines[0].toStdString();
    EXPECT_TRUE(lines[0].contains(R"("es":null,"panes":["All"])")) << lines[0].toStdString();
    // The hand-worked path of the analysis tests, rounded as JSON gives it.
    const QJsonObject es6m = spots[3];
    EXPECT_TRUE(lines[3].contains(
        R"("spotter":"SP9HWY","frequency_mhz":50.15,"dx":"OH1XYZ",)"
        R"("comment":"JO62QM<ES>KP20                 171","mode":"ES",)"
        R"("locators":["JO62QM","KP20??"],"es":{"cloud":"JO96GP","muf_mhz":63.6,)"
        R"("critical_mhz":11.7,"own_muf_mhz":50.2,"azimuth":34,"elevation":8.4,"far":"KP20LL",)"
        R"("path_km":1131,"own_km":566},"panes":["All","VHF","Es"])"))
        << lines[3].toStdString();
    QString printed;
    for (const QJsonValue &run : es6m.value("runs").toArray()) {
        printed += run[0].toString();
    }
    EXPECT_EQ(printed, Es6m);
    EXPECT_DOUBLE_EQ(spots[4].value("frequency_mhz").toDouble(), 144.174); // not 9A1ZZ's 9
}

// Live: logs in, takes the spots as they come, and ends after --seconds or
// on SIGTERM with the panes printed.
TEST_F(CliTest, LiveClusterUntilTheTimeIsUpOrATermSignal) {
    for (const bool bySignal : {false, true}) {
        LocalClusterServer node;
        QProcess tool;
        const QString address = QString("127.0.0.1:%1").arg(node.port());
        QStringList arguments{"--locator", "JO62QM", "--call", "DL1ABC", "--cluster", address};
        arguments +=
            (bySignal ? QStringList{} : QStringList{"--seconds", "3", "--jsonl"}) + files();
        tool.start(QStringLiteral(ZKR_MUF_CLI), arguments);
        ASSERT_TRUE(zkr::test::waitFor([&] { return node.logins() == QStringList{"DL1ABC"}; }));
        node.send(
            "DX de SP9HWY:    50150.0  OH1XYZ       JO62QM<ES>KP20                 1712Z\r\n");
        if (bySignal) {
            QTest::qWait(300);
            tool.terminate();
        }
        ASSERT_TRUE(zkr::test::waitFor([&] { return tool.state() == QProcess::NotRunning; }));
        EXPECT_EQ(tool.exitCode(), 0);
        EXPECT_EQ(QString(tool.readAllStandardError()),
                  "trying to connect to " + address + "\nConnected to " + address + "\n"); // once
        const QString out = QString::fromUtf8(tool.readAllStandardOutput());
        if (bySignal) {
            EXPECT_TRUE(out.startsWith("== All ==\n")) << out.toStdString();
            EXPECT_TRUE(out.contains(Es6m)) << out.toStdString();
        } else {
            EXPECT_TRUE(out.startsWith(R"({"source":"cluster","time":"1712","spotter":"SP9HWY")"))
                << out.toStdString();
            EXPECT_EQ(out.count('\n'), 1);
        }
    }
}

// --watch prints a line per level reached, stamped with the spot time, and
// no panes; the bands chosen decide which levels count.
TEST_F(CliTest, WatchPrintsOneLinePerLevelReached) {
    const QString session = write(Session);
    // A decode at the own station over one Es hop confirms its band alone.
    const QString log =
        write("240601_171200   144.174 Rx FT8    -12  0.2 1000 CQ I5ABC JN53\n", "ALL.TXT");
    const struct {
        QStringList arguments;
        QStringList lines;
    } cases[] = {
        {{session}, {"1713Z rising via JN26 FOT=116MHz AZ=232 EL=9 -> IN93"}}, // 2 m is not open
        {{"--watch-bands", "50", session},
         {"1712Z 6 m open via JO96 FOT=62MHz AZ=34 EL=3 -> KP52",
          "1712Z 6 m confirmed via JO96 FOT=62MHz AZ=34 EL=3 -> KP52",
          "1713Z 6 m open via JN26 FOT=116MHz AZ=232 EL=9 -> IN93"}},
        {{"--alltxt", log},
         {"1712Z rising via JN56 FOT=144MHz AZ=174 EL=15 -> JN53",
          "1712Z 2 m open via JN56 FOT=144MHz AZ=174 EL=15 -> JN53",
          "1712Z confirmed via JN56 FOT=144MHz AZ=174 EL=15 -> JN53"}},
    };
    for (const auto &c : cases) {
        const Result r =
            runCli(QStringList{"--locator", "JO50AA", "--watch"} + files() + c.arguments);
        EXPECT_EQ(r.exitCode, 0);
        EXPECT_EQ(r.out.split('\n', Qt::SkipEmptyParts), c.lines);
    }
}

// OH1XYZ's CQ from KP20, heard at JO62QM, is the hand-worked 6 m path of
// the spot tests; W1AW's cloud is far beyond the distance limit. Each line
// holds what is given.
TEST_F(CliTest, ReportLinesOfADecodeLog) {
    const QString log = write("240601_171200    50.149 Rx FT8    -12  0.2 1000 CQ OH1XYZ KP20\n"
                              "240601_171215    50.149 Rx FT8      3  0.2 1000 CQ W1AW FN31\n");
    const QString oh1xyz =
        R"({"source":"alltxt","time":"2024-06-01T17:12:00Z","frequency_mhz":50.15,"mode":"FT8",)"
        R"("snr":-12,"tx":{"call":"OH1XYZ","locator":"KP20"},"rx":{"call":"DL1ABC",)"
        R"("locator":"JO62QM"},"es":{"cloud":"JO96GP",)";
    const QString csv = folder.filePath("book.csv");
    const struct {
        QStringList options;
        QStringList lines;
    } cases[] = {
        {{"--jsonl"}, {oh1xyz}},
        {{"--jsonl", "--all-reports"},
         {oh1xyz, R"("elevation":-12.1,"far":"FN31LL","path_km":6262,"own_km":3131})"}},
        {{"--callbook-csv", csv},
         {"== Reports ==",
          "1712Z   50.1500 FT8  -12 OH1XYZ     KP20   > DL1ABC     JO62QM  1131 km alltxt          "
          "MUF= 64MHz@JO96  FOT= 50MHz -> KP20 AZ= 34 EL=  8"}},
    };
    for (const auto &c : cases) {
        const Result r =
            runCli(QStringList{"--locator", "JO62QM", "--call", "DL1ABC", "--alltxt", log} +
                   files() + c.options);
        EXPECT_EQ(r.exitCode, 0) << r.err.toStdString();
        const QStringList lines = r.out.split('\n', Qt::SkipEmptyParts);
        ASSERT_EQ(lines.size(), c.lines.size()) << r.out.toStdString();
        for (qsizetype i = 0; i < lines.size(); ++i) {
            EXPECT_TRUE(lines[i].contains(c.lines[i])) << lines[i].toStdString();
        }
    }
    // The book as it stands at the end: what the log taught, and the own call.
    QFile book(csv);
    ASSERT_TRUE(book.open(QIODevice::ReadOnly));
    const QStringList rows = QString(book.readAll()).split('\n', Qt::SkipEmptyParts);
    EXPECT_EQ(rows.mid(2), (QStringList{"OH1XYZ,KP20,2024-06-01T17:12:00Z,alltxt",
                                        "W1AW,FN31,2024-06-01T17:12:15Z,alltxt"}));
    EXPECT_TRUE(rows.value(1).startsWith("DL1ABC,JO62QM,") && rows.value(1).endsWith(",own"))
        << rows.join('|').toStdString();
}

// Where the stored call book puts a call, else its country; --callbook-csv
// alone writes the stored book.
TEST_F(CliTest, WhereAndTheStoredCallBook) {
    const QString db = folder.filePath("history.sqlite");
    zkr::HistoryDatabase history; // open beside the tool, as the program's would be
    ASSERT_TRUE(history.open(db, zkr::HistoryDatabase::Access::Writer));
    ASSERT_TRUE(history.writeCallBook(
        {{"DL1ABC", "JO62QM", QDateTime(QDate(2024, 6, 1), QTime(14, 0), Qt::UTC),
          zkr::LearnedFrom::Wsjtx}}));
    const struct {
        QStringList arguments;
        int exitCode;
        QString out;
    } cases[] = {
        {{"--where", "dl1abc"},
         0,
         "DL1ABC JO62QM within 5 km, learned from wsjtx at 2024-06-01T14:00:00Z (Fed. Rep. of "
         "Germany)\n"},
        {{"--where", "EA8ZZ", "--where", "DL1ABC/MM"},
         1,
         "EA8ZZ IL28BH within 300 km, the position of its country Canary Islands\n"
         "DL1ABC/MM not located\n"},
        {{"--callbook-csv", "-"},
         0,
         "call,locator,learned_utc,source\nDL1ABC,JO62QM,2024-06-01T14:00:00Z,wsjtx\n"},
    };
    for (const auto &c : cases) {
        const Result r = runCli(c.arguments + files() + QStringList{"--db", db});
        EXPECT_EQ(r.exitCode, c.exitCode);
        EXPECT_EQ(r.out, c.out);
    }
}

// Live decodes: WSJT-X's datagrams to the tool's port on 127.0.0.1; a
// Status without a grid makes the own station the receiver.
TEST_F(CliTest, LiveWsjtxDecodesAreHeardAtTheOwnStation) {
    QProcess tool;
    tool.start(ZKR_MUF_CLI, QStringList{"--locator", "JO62QM", "--call", "DL1ABC", "--wsjtx",
                                        "127.0.0.1:0", "--jsonl"} +
                                files());
    QString status;
    ASSERT_TRUE(
        zkr::test::waitFor([&] { return (status += tool.readAllStandardError()).endsWith('\n'); }));
    ASSERT_TRUE(status.startsWith("WSJT-X: listening on 127.0.0.1 port ")) << status.toStdString();
    const quint16 port = status.section(' ', -1).trimmed().toUShort();
    QUdpSocket wsjtx;
    wsjtx.writeDatagram(zkr::test::status("A", 50149000, "", ""), QHostAddress::LocalHost, port);
    wsjtx.writeDatagram(zkr::test::decode("A", QTime(17, 12), -12, 1000, "CQ OH1XYZ KP20"),
                        QHostAddress::LocalHost, port);
    ASSERT_TRUE(zkr::test::waitFor([&] { return tool.canReadLine(); })); // at once, not at the end
    const QJsonObject report = QJsonDocument::fromJson(tool.readLine()).object();
    tool.terminate();
    ASSERT_TRUE(tool.waitForFinished());
    EXPECT_EQ(tool.exitCode(), 0);
    EXPECT_EQ(report["source"], "wsjtx");
    EXPECT_EQ(report["rx"].toObject(), (QJsonObject{{"call", "DL1ABC"}, {"locator", "JO62QM"}}));
    EXPECT_EQ(report["es"]["cloud"], "JO96GP");
}

// PSK Reporter from a mosquitto of the test's own: the bands asked for, and
// by default only the reports whose cloud is near the own station.
TEST_F(CliTest, LivePskReporterKeepsTheBandsAndTheNearReports) {
    zkr::test::LocalBroker broker;
    ASSERT_TRUE(broker.start());
    QProcess tool;
    tool.start(ZKR_MUF_CLI, QStringList{"--locator", "JO62QM", "--pskreporter",
                                        QString("127.0.0.1:%1").arg(broker.port()), "--bands",
                                        "2M, 6m", "--jsonl"} +
                                files());
    QString status;
    ASSERT_TRUE(zkr::test::waitFor(
        [&] { return (status += tool.readAllStandardError()).contains("subscribed to 2 bands"); }));
    // The one kept comes without an SNR: null.
    const auto payload = [](const char *sender, const char *locator) {
        const bool full = QByteArray(locator) != "JN53";
        return QByteArray(R"({"f":144174000,"md":"FT8",)") + (full ? R"("rp":-7,)" : "") +
               R"("t":1717261920,"sc":")" + sender + R"(","sl":")" + locator +
               R"(","rc":"DL9XYZ","rl":"JO62"})";
    };
    for (const auto &[band, sender, locator] :
         {std::tuple{"10m", "I5ABC", "JN53"}, {"2m", "W1AW", "FN31"}, {"2m", "I5ABC", "JN53"}}) {
        ASSERT_TRUE(broker.publish(QByteArray("pskr/filter/v2/") + band + "/FT8/A/B/C/D/1/2",
                                   payload(sender, locator)));
    }
    ASSERT_TRUE(zkr::test::waitFor([&] { return tool.canReadLine(); }));
    tool.terminate();
    ASSERT_TRUE(tool.waitForFinished());
    const QString out = tool.readAllStandardOutput();
    EXPECT_EQ(out.count('\n'), 1) << out.toStdString();
    EXPECT_TRUE(out.startsWith(R"({"source":"pskreporter","time":"2024-06-01T17:12:00Z",)"
                               R"("frequency_mhz":144.174,"mode":"FT8","snr":null,)"
                               R"("tx":{"call":"I5ABC","locator":"JN53"},)"
                               R"("rx":{"call":"DL9XYZ","locator":"JO62"})"))
        << out.toStdString();
}

TEST_F(CliTest, HelpOrStatusTwoForWrongArgumentsAndUnreadableFiles) {
    const Result help = runCli({"--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_TRUE(help.out.startsWith("Usage: zkr_muf_cli --locator LOC")) << help.out.toStdString();

    const QString session = write(Session);
    const struct {
        QStringList arguments;
        const char *message;
    } cases[] = {
        {{"--locator", "JO62QM", folder.filePath("missing.txt")}, "cannot read"},
        {{session}, "the own locator is required"},
        {{"--locator", "JO62QZ", session}, "\"JO62QZ\" is not a Maidenhead locator"},
        {{"--locator", "JO62QM", "--call", " ", session}, "call sign given with --call is empty"},
        {{"--locator", "JO62QM", session, session}, "only one FILE"},
        {{"--locator", "JO62QM", "--json", "--jsonl", session}, "exclude each other"},
        {{"--locator", "JO62QM", "--call", "DL1ABC", "--cluster", "host"}, "HOST:PORT"},
        {{"--locator", "JO62QM", "--cluster", "127.0.0.1:7300"}, "--call CALL"},
        {{"--locator", "JO62QM", "--seconds", "5", session}, "goes with --cluster"},
        {{"--locator", "JO62QM", "--watch", "--jsonl", session}, "--watch excludes"},
        {{"--locator", "JO62QM", "--watch", "--watch-bands", "50,28", session}, "not \"28\""},
        {{"--locator", "JO62QM", "--pskreporter", "h", "--bands", "6m,six"}, "not \"six\""},
        {{"--locator", "JO62QM", "--alltxt", session, "--bands", "6m"}, "with --pskreporter"},
        {{"--locator", "JO62QM", "--alltxt", session, "--es-only"}, "not reception reports"},
        {{"--locator", "JO62QM", "--wsjtx", "2237", "--alltxt", session}, "one source at a time"},
        {{"--locator", "JO62QM", "--wsjtx", "localhost:2237"}, "[ADDRESS:]PORT"},
        {{"--locator", "JO62QM", "--callbook-csv", "-", session}, "needs a FILE"},
    };
    for (const auto &c : cases) {
        const Result r = runCli(c.arguments);
        EXPECT_EQ(r.exitCode, 2) << c.message;
        EXPECT_EQ(r.out, "") << c.message;
        EXPECT_TRUE(r.err.startsWith("zkr_muf_cli: ")) << r.err.toStdString();
        EXPECT_TRUE(r.err.contains(c.message)) << r.err.toStdString();
    }
}

} // namespace

// Without --db: the history where the program writes it.
TEST_F(CliTest, ExportCsvWritesTheRangeOfAHistoryFile) {
    qputenv("XDG_DATA_HOME", folder.path().toLocal8Bit());
    const QString db = folder.filePath("zkr_muf/history.sqlite");
    {
        zkr::HistoryDatabase history;
        ASSERT_TRUE(history.open(db, zkr::HistoryDatabase::Access::Writer));
        const QDateTime start(QDate(2024, 6, 1), QTime(13, 0), Qt::UTC);
        for (int i = 0; i < 180; ++i) { // one spot a minute, 13:00 to 15:59
            ASSERT_TRUE(history.insert(zkr::test::historySpot(i, start.addSecs(60 * i)), "GB7DJK"));
        }
    }
    const struct {
        QStringList arguments;
        int exitCode;
        int rows; // data rows; the first is spot `first`
        int first;
    } cases[] = {
        {{"--export-csv", "2024-06-01T14:00Z", "2024-06-01T14:30Z", "--db", db}, 0, 30, 60},
        {{"--export-csv", "2024-06-01T14:00Z", "2024-06-01T14:30Z"}, 0, 30, 60},
        {{"--export-csv", "2024-06-01T16:00+02:00", "2024-06-02", "--db", db}, 0, 120, 60},
        {{"--export-csv", "2024-06-02", "2024-06-03", "--db", db}, 0, 0, 0},
        {{"--export-csv", "2024-06-01T15:00Z", "2024-06-01T14:00Z", "--db", db}, 2, -1, 0},
        {{"--export-csv", "today", "2024-06-01", "--db", db}, 2, -1, 0},
        {{"--export-csv", "2024-06-01", "--db", db}, 2, -1, 0},
        {{"--db", db}, 2, -1, 0},
        {{"--export-csv", "2024-06-01", "2024-06-02", "--db", folder.filePath("none")}, 1, -1, 0},
    };
    for (const auto &c : cases) {
        const Result r = runCli(c.arguments);
        EXPECT_EQ(r.exitCode, c.exitCode)
            << c.arguments.join(" ").toStdString() << r.err.toStdString();
        if (c.rows < 0) {
            EXPECT_FALSE(r.err.isEmpty());
            continue;
        }
        bool wellFormed = false;
        const std::vector<QStringList> rows = zkr::test::parseCsv(r.out, &wellFormed);
        EXPECT_TRUE(wellFormed);
        ASSERT_EQ(static_cast<int>(rows.size()), c.rows + 1) << c.arguments.join(" ").toStdString();
        EXPECT_EQ(rows[0].size(), 24);
        if (c.rows > 0) {
            EXPECT_EQ(rows[1].at(rows[0].indexOf("dx")),
                      zkr::test::historySpot(c.first, {}).dxCall);
        }
    }
    EXPECT_FALSE(QFile::exists(folder.filePath("none")));
    // A report's path comes from the own locator: --locator's here. A report
    // without a mode (PSK Reporter's "md" is optional) is stored all the same.
    {
        zkr::HistoryDatabase history;
        ASSERT_TRUE(history.open(db, zkr::HistoryDatabase::Access::Writer));
        zkr::Reception report;
        report.time = QDateTime(QDate(2024, 6, 2), QTime(10, 0), Qt::UTC);
        report.frequencyMhz = 50.313;
        report.tx = {"EA7ABC", "IM76"};
        report.rx = {"DL1ABC", "JO62QM"};
        ASSERT_TRUE(history.insertReport(report));
    }
    const Result r =
        runCli({"--export-csv", "2024-06-02", "2024-06-03", "--db", db, "--locator", "JO62QM"});
    bool wellFormed = false;
    const std::vector<QStringList> rows = zkr::test::parseCsv(r.out, &wellFormed);
    ASSERT_EQ(rows.size(), 2U) << r.err.toStdString();
    EXPECT_EQ(rows[1].at(rows[0].indexOf("cloud")), "JN14KU");
}
