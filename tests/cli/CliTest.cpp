#include "QtPrinters.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

// A recorded session as the console writes it: greeting, login, spots in
// DX Spider's layout (an HF spot with a Latin-1 comment, a 2 m MS spot with
// the cluster's bell pair, one without a frequency, one without a mode
// marker, two Es spots), a WWV line and a prompt (which, replayed line by
// line, lacks the line end that marks a prompt).
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
    "DX de S57TW:    144174.0  IK0FTA       JO62QM ES IN80                 1713Z\r\n";

// The fields of the 6 m Es spot seen from JO62QM are the path worked by hand
// in the analysis tests (JO62QM to KP20 at 50.150 MHz): Es MUF 63.57 MHz,
// midpoint JO96GP, own MUF 50.15 MHz, cloud 565.5 km away at azimuth 34.05
// and elevation 8.36 degrees; the far point is KP20LL.
const QString Es6m = "SP9HWY:    50150.0  OH1XYZ       JO62QM<ES>KP20                 1712Z"
                     "    MUF= 64MHz@JO96  FOT= 50MHz -> KP20 AZ= 34 EL=  8";
const QString Es2m = "S57TW:    144174.0  IK0FTA       JO62QM<ES>IN80                 1713Z"
                     "    MUF=149MHz@JN26  FOT=144MHz -> IN80 AZ=229 EL=  3";
const QString Unmarked = "F6ABC:     50200.0  EA7KW        JN18DT KP20                    1712Z";
const QString Ms2m = "DL8EBW:   144300.0  OZ1ABC       JO62QM JO65 ms                 1711Z";
const QString Hf = QString::fromUtf8(
    "G4ABC:     14074.0  EA7KW        tnx J\xC3\xBCrgen 73                  1710Z");

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
    QString write(const QByteArray &content) {
        const QString path = folder.filePath("input.txt");
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return path;
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
// The unmarked spot computed as an Es path: flagged doubtful, not an Es spot.
const QString UnmarkedComputed = Unmarked + "Es? MUF= 51MHz@JO55  FOT= 26MHz -> JO57 AZ=343 EL= 18";

struct PaneCase {
    const char *name;
    QStringList options;
    QByteArray input;
    QStringList all, vhf, twoMetres, es;
};

void PrintTo(const PaneCase &c, std::ostream *os) {
    *os << c.name;
}

class CliPanes : public CliTest, public ::testing::WithParamInterface<PaneCase> {};

TEST_P(CliPanes, PrintEachPaneNewestFirst) {
    const PaneCase &c = GetParam();
    const Result r =
        runCli(QStringList{"--locator", "jo62qm"} + c.options + QStringList{write(c.input)});
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.err, "");
    QString expected;
    const QStringList names{"All", "VHF", "2m", "Es"};
    const QStringList *lines[] = {&c.all, &c.vhf, &c.twoMetres, &c.es};
    for (int i = 0; i < 4; ++i) {
        expected += "== " + names[i] + " ==\n";
        for (const QString &line : *lines[i]) {
            expected += line + "\n";
        }
    }
    EXPECT_EQ(r.out, expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, CliPanes,
    ::testing::Values(
        PaneCase{"session",
                 {},
                 Session,
                 {Es2m, Es6m, Unmarked, Ms2m, Hf},
                 {Es2m, Es6m, Unmarked, Ms2m},
                 {Es2m, Ms2m},
                 {Es2m, Es6m}},
        PaneCase{
            "es_only", {"--es-only"}, Session, {Es2m, Es6m}, {Es2m, Es6m}, {Es2m}, {Es2m, Es6m}},
        PaneCase{
            "over144", {"--over144"}, Session, {Es2m, Ms2m}, {Es2m, Ms2m}, {Es2m, Ms2m}, {Es2m}},
        PaneCase{"eval_all",
                 {"--eval-all"},
                 Session,
                 {Es2m, Es6m, UnmarkedComputed, Ms2m, Hf},
                 {Es2m, Es6m, UnmarkedComputed, Ms2m},
                 {Es2m, Ms2m},
                 {Es2m, Es6m}},
        // The call is only what a "login:" line would be answered with; the
        // program's web-only marker does not switch the replay to web columns.
        PaneCase{"own_call_web_marker",
                 {"--call", "!nocall!"},
                 Session,
                 {Es2m, Es6m, Unmarked, Ms2m, Hf},
                 {Es2m, Es6m, Unmarked, Ms2m},
                 {Es2m, Ms2m},
                 {Es2m, Es6m}},
        PaneCase{"web_page",
                 {"--web"},
                 webPage({Web6mRow, WebHfRow}),
                 {Web6m, WebHf},
                 {Web6m},
                 {NoEs},
                 {Web6m}},
        PaneCase{
            "web_error_page", {"--web"}, "<h1>Server Error</h1>", {Down}, {Down}, {Down}, {Down}}),
    [](const ::testing::TestParamInfo<PaneCase> &p) { return std::string(p.param.name); });

TEST_F(CliTest, ReadsStandardInputWithoutFileOrWithADash) {
    const Result file = runCli({"--locator", "JO62QM", write(Session)});
    for (const QStringList &arguments :
         {QStringList{"--locator", "JO62QM"}, QStringList{"--locator", "JO62QM", "-"}}) {
        const Result r = runCli(arguments, Session);
        EXPECT_EQ(r.exitCode, 0);
        EXPECT_EQ(r.out, file.out);
    }
    // Line ends of every kind, and a last line without one.
    QByteArray mixed = Session;
    mixed.replace("\r\n", "\n").replace("WWV", "\rWWV").chop(1);
    EXPECT_EQ(runCli({"--locator", "JO62QM"}, mixed).out, file.out);
}

TEST_F(CliTest, JsonCarriesTheSegmentsWithTheirColours) {
    // A line ending in ">", code 131, code 0 passes the cluster's prompt test
    // (its codes read "621310"), so it is printed as a prompt, in blue. Being
    // last, it shows only through the display refresh at the end of the run.
    const QByteArray quoting =
        "DX de SP9HWY:    50150.0  OH1XYZ       JO62QM<ES>KP20   \"q\\\"  1714Z\r\n";
    const QByteArray prompt("GB7TST dxspider >\x83\0\r\n", 20);
    const Result r = runCli({"--json", "--locator", "JO62QM", write(Session + quoting + prompt)});
    ASSERT_EQ(r.exitCode, 0);
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(r.out.toUtf8(), &error);
    ASSERT_EQ(error.error, QJsonParseError::NoError) << error.errorString().toStdString();
    EXPECT_EQ(document.object().value("messages").toArray(), QJsonArray());
    const QJsonArray panes = document.object().value("panes").toArray();
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(panes[i].toObject().value("name"), QStringList({"All", "VHF", "2m", "Es"})[i]);
    }

    const QJsonArray all = panes.at(0).toObject().value("lines").toArray();
    ASSERT_EQ(all.size(), 12);
    // Newest first: the prompt with three empty lines on each side, then the
    // spots.
    for (int i : {0, 1, 2, 4, 5}) {
        EXPECT_EQ(all.at(i).toArray(), QJsonArray()) << i;
    }
    // Compared as JSON text, which a failure prints readably.
    const auto json = [](const QJsonValue &line) {
        return QString(QJsonDocument(line.toArray()).toJson(QJsonDocument::Compact));
    };
    const auto segment = [](const QString &text, const char *colour) {
        return QJsonArray{text, colour};
    };
    EXPECT_EQ(json(all[3]),
              json(QJsonArray(
                  {segment("GB7TST dxspider >" + QString(QChar(0x83)) + QChar(0), "#0000FF")})));
    EXPECT_TRUE(all[6][2][0].toString().contains("\"q\\\"  1714Z    MUF= 64MHz"));
    // The 2 m Es spot: own square highlighted, the fields magenta from a MUF
    // of 144 MHz or more, the equally coloured fields joined into one.
    EXPECT_EQ(
        json(all[7]),
        json(QJsonArray({segment(Es2m.left(33), "#000000"), segment("JO62", "#FF00FF"),
                         segment(Es2m.mid(37, 32), "#000000"), segment(Es2m.mid(69), "#FF00FF")})));
    // The 6 m one stays black but for the own square.
    EXPECT_EQ(json(all[8]),
              json(QJsonArray({segment(Es6m.left(33), "#000000"), segment("JO62", "#FF00FF"),
                               segment(Es6m.mid(37), "#000000")})));
    // The prompt goes into every pane, whatever its band.
    EXPECT_EQ(panes.at(2).toObject().value("lines").toArray().at(3), all.at(3));
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
        {{"--locator", "JO62QM", folder.path()}, "cannot read"},
        {{session}, "the own locator is required"},
        {{"--locator"}, "Missing value after '--locator'"},
        {{"--locator", "JO62QZ", session}, "\"JO62QZ\" is not a Maidenhead locator"},
        {{"--locator", "JO62", session}, "needs all 6 characters"},
        {{"--locator", "JO62QM", "--verbose", session}, "Unknown option 'verbose'"},
        {{"--locator", "JO62QM", "--call", " ", session}, "call sign given with --call is empty"},
        {{"--locator", "JO62QM", session, session}, "only one FILE"},
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
