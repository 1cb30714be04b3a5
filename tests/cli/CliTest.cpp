#include "QtPrinters.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QProcess>
#include <QTemporaryDir>

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
    "DX de S57TW:    144174.0  IK0FTA       JO62QM ES IN80                 1713Z\r\n";

// The fields of the 6 m Es spot seen from JO62QM are the path worked by hand
// in the analysis tests (JO62QM to KP20 at 50.150 MHz): Es MUF 63.57 MHz,
// midpoint JO96GP, own MUF 50.15 MHz, cloud 565.5 km away at azimuth 34.05
// and elevation 8.36 degrees; the far point is KP20LL.
const QString Es6m =
    QString::fromUtf8("SP9HWY:    50150.0  OH1XYZ       JO62QM<ES>KP20                 1712Z"
                      "    MUF= 64MHz@JO96  FOT= 50MHz -> KP20 AZ= 34 EL=  8");
const QString Es2m =
    QString::fromUtf8("S57TW:    144174.0  IK0FTA       JO62QM<ES>IN80                 1713Z"
                      "    MUF=149MHz@JN26  FOT=144MHz -> IN80 AZ=229 EL=  3");
const QString Unmarked =
    QString::fromUtf8("F6ABC:     50200.0  EA7KW        JN18DT KP20                    1712Z");
const QString Ms2m =
    QString::fromUtf8("DL8EBW:   144300.0  OZ1ABC       JO62QM JO65 ms                 1711Z");
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
    QString write(const QByteArray &content, const QString &name = "session.txt") {
        const QString path = folder.filePath(name);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return path;
    }
    QTemporaryDir folder;
};

// The text output cut into its panes: heading name -> lines.
QMap<QString, QStringList> panesOf(const QString &out) {
    QMap<QString, QStringList> panes;
    QString current;
    const QStringList lines = out.split('\n');
    for (const QString &line : lines.mid(0, lines.size() - 1)) {
        if (line.startsWith("== ") && line.endsWith(" ==")) {
            current = line.mid(3, line.size() - 6);
            panes[current];
        } else {
            panes[current] << line;
        }
    }
    return panes;
}

TEST_F(CliTest, ReplaysARecordedSessionIntoTheFourPanesNewestFirst) {
    const Result r = runCli({"--locator", "jo62qm", write(Session)});
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.err, "");
    const QString expected = "== All ==\n" + Es2m + "\n" + Es6m + "\n" + Unmarked + "\n" + Ms2m +
                             "\n" + Hf + "\n" + "== VHF ==\n" + Es2m + "\n" + Es6m + "\n" +
                             Unmarked + "\n" + Ms2m + "\n" + "== 2m ==\n" + Es2m + "\n" + Ms2m +
                             "\n" + "== Es ==\n" + Es2m + "\n" + Es6m + "\n";
    EXPECT_EQ(r.out, expected);
}

struct FilterCase {
    const char *name;
    QStringList options;
    QStringList all, vhf, twoMetres, es;
};

void PrintTo(const FilterCase &c, std::ostream *os) {
    *os << c.name;
}

class CliFilters : public CliTest, public ::testing::WithParamInterface<FilterCase> {};

TEST_P(CliFilters, PickTheSpotsOfEachPane) {
    const FilterCase &c = GetParam();
    const Result r =
        runCli(QStringList{"--locator", "JO62QM"} + c.options + QStringList{write(Session)});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    const QMap<QString, QStringList> panes = panesOf(r.out);
    EXPECT_EQ(panes.keys(), QStringList({"2m", "All", "Es", "VHF"}));
    EXPECT_EQ(panes["All"], c.all);
    EXPECT_EQ(panes["VHF"], c.vhf);
    EXPECT_EQ(panes["2m"], c.twoMetres);
    EXPECT_EQ(panes["Es"], c.es);
}

// The unmarked spot computed as an Es path: flagged doubtful, not an Es spot.
const QString UnmarkedComputed = Unmarked + "Es? MUF= 51MHz@JO55  FOT= 26MHz -> JO57 AZ=343 EL= 18";

INSTANTIATE_TEST_SUITE_P(
    Table, CliFilters,
    ::testing::Values(
        FilterCase{"es_only", {"--es-only"}, {Es2m, Es6m}, {Es2m, Es6m}, {Es2m}, {Es2m, Es6m}},
        FilterCase{"over144", {"--over144"}, {Es2m, Ms2m}, {Es2m, Ms2m}, {Es2m, Ms2m}, {Es2m}},
        FilterCase{"both_filters", {"--over144", "--es-only"}, {Es2m}, {Es2m}, {Es2m}, {Es2m}},
        FilterCase{"eval_all",
                   {"--eval-all"},
                   {Es2m, Es6m, UnmarkedComputed, Ms2m, Hf},
                   {Es2m, Es6m, UnmarkedComputed, Ms2m},
                   {Es2m, Ms2m},
                   {Es2m, Es6m}},
        // The call is only what a "login:" line would be answered with; the
        // program's web-only marker does not switch the replay to web columns.
        FilterCase{"own_call_web_marker",
                   {"--call", "!nocall!"},
                   {Es2m, Es6m, Unmarked, Ms2m, Hf},
                   {Es2m, Es6m, Unmarked, Ms2m},
                   {Es2m, Ms2m},
                   {Es2m, Es6m}}),
    [](const ::testing::TestParamInfo<FilterCase> &p) { return std::string(p.param.name); });

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

// Colours as "#RRGGBB" of every segment in a pane's line.
QStringList colours(const QJsonArray &line) {
    QStringList result;
    for (const QJsonValue &segment : line) {
        result << segment.toArray().at(1).toString();
    }
    return result;
}

QString text(const QJsonArray &line) {
    QString result;
    for (const QJsonValue &segment : line) {
        result += segment.toArray().at(0).toString();
    }
    return result;
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
    const QJsonDocument json = QJsonDocument::fromJson(r.out.toUtf8(), &error);
    ASSERT_EQ(error.error, QJsonParseError::NoError) << error.errorString().toStdString();
    EXPECT_EQ(json.object().value("messages").toArray(), QJsonArray());
    const QJsonArray panes = json.object().value("panes").toArray();
    ASSERT_EQ(panes.size(), 4);
    QStringList names;
    for (const QJsonValue &pane : panes) {
        names << pane.toObject().value("name").toString();
    }
    EXPECT_EQ(names, QStringList({"All", "VHF", "2m", "Es"}));

    const QJsonArray all = panes.at(0).toObject().value("lines").toArray();
    ASSERT_EQ(all.size(), 12);
    // Newest first: the prompt with three empty lines on each side, then the
    // spots.
    for (int i : {0, 1, 2, 4, 5}) {
        EXPECT_EQ(all.at(i).toArray(), QJsonArray()) << i;
    }
    EXPECT_EQ(all.at(3).toArray(),
              QJsonArray({QJsonArray(
                  {QString("GB7TST dxspider >") + QChar(0x83) + QChar(0), "#0000FF"})}));
    EXPECT_TRUE(text(all.at(6).toArray()).contains("\"q\\\"  1714Z    MUF= 64MHz"));
    // The 2 m Es spot: own square highlighted, the fields magenta from a MUF
    // of 144 MHz or more, the equally coloured fields joined into one.
    const QJsonArray es2m = all.at(7).toArray();
    EXPECT_EQ(text(es2m), Es2m);
    EXPECT_EQ(colours(es2m), QStringList({"#000000", "#FF00FF", "#000000", "#FF00FF"}));
    EXPECT_EQ(es2m.at(3).toArray().at(0).toString(),
              "    MUF=149MHz@JN26  FOT=144MHz -> IN80 AZ=229 EL=  3");
    // The 6 m one stays black but for the own square.
    EXPECT_EQ(text(all.at(8).toArray()), Es6m);
    EXPECT_EQ(colours(all.at(8).toArray()), QStringList({"#000000", "#FF00FF", "#000000"}));
    EXPECT_EQ(text(all.at(11).toArray()), Hf);
    EXPECT_EQ(colours(all.at(11).toArray()), QStringList({"#000000"}));
    // The prompt goes into every pane, whatever its band.
    EXPECT_EQ(panes.at(2).toObject().value("lines").toArray().at(3), all.at(3));
}

// A web spot page as the service sends it: the redirect script, then one
// spot per table row.
QByteArray webPage(const QStringList &rows) {
    const QByteArray script =
        QByteArray(
            "setTimeout(function(){window.location.href = \"http://www.example.org/\"}, 60000)")
            .leftJustified(79, ' ', true);
    return "<html><head><script>" + script + "</script></head><body>" +
           rows.join("</td></tr>\n<tr><td>").prepend("<tr><td>").append("</td></tr>").toLatin1() +
           "</body></html>";
}

struct WebCase {
    const char *name;
    QByteArray page;
    QStringList all, vhf, twoMetres, es;
};

void PrintTo(const WebCase &c, std::ostream *os) {
    *os << c.name;
}

class CliWeb : public CliTest, public ::testing::WithParamInterface<WebCase> {};

TEST_P(CliWeb, EvaluatesADownloadedPage) {
    const WebCase &c = GetParam();
    const Result r = runCli({"--web", "--locator", "JO62QM", write(c.page, "page.html")});
    ASSERT_EQ(r.exitCode, 0);
    const QMap<QString, QStringList> panes = panesOf(r.out);
    EXPECT_EQ(panes["All"], c.all);
    EXPECT_EQ(panes["VHF"], c.vhf);
    EXPECT_EQ(panes["2m"], c.twoMetres);
    EXPECT_EQ(panes["Es"], c.es);
}

const QString Web6mRow =
    "SP9HWY         50150.0 OH1XYZ       JO62QM ES KP20                     1712Z";
const QString WebHfRow =
    "G4ABC          14074.0 EA7KW        FT8 -12dB                          1711Z";
// The page's line rebuilt in the shape of a cluster line, then the fields of
// the hand-worked path.
const QString Web6m =
    "SP9HWY         50150.0 OH1XYZ       JO62QM<ES>KP20                       1712 "
    "     MUF= 64MHz@JO96  FOT= 50MHz -> KP20 AZ= 34 EL=  8";
const QString WebHf =
    "G4ABC          14074.0 EA7KW        FT8 -12dB                            1711  ";
const QString NoEs = "Sorry - no Es-spots found !";
const QString Down = "The Webserver may be down !";

INSTANTIATE_TEST_SUITE_P(
    Table, CliWeb,
    ::testing::Values(
        WebCase{"spots", webPage({Web6mRow, WebHfRow}), {Web6m, WebHf}, {Web6m}, {NoEs}, {Web6m}},
        WebCase{"no_es", webPage({WebHfRow}), {WebHf, NoEs}, {NoEs}, {NoEs}, {NoEs}},
        WebCase{"error_page",
                "<html><body><h1>Server Error</h1></body></html>",
                {Down},
                {Down},
                {Down},
                {Down}}),
    [](const ::testing::TestParamInfo<WebCase> &p) { return std::string(p.param.name); });

TEST_F(CliTest, HelpPrintsTheUsage) {
    const Result r = runCli({"--help"});
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_TRUE(r.out.startsWith("Usage: zkr_muf_cli --locator LOC")) << r.out.toStdString();
}

TEST_F(CliTest, WrongArgumentsAndUnreadableFilesExitWithStatusTwo) {
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
