#include "CliOptions.h"

#include "HistoryCsv.h"
#include "Locators.h"
#include "PskReporterSettings.h"

#include <QCommandLineParser>
#include <QHostAddress>
#include <QRegularExpression>

#include <tuple>

namespace zkr {

QString cliUsage() {
    return QStringLiteral(
        "Usage: zkr_muf_cli --locator LOC [--call CALL] [--es-only] [--over144] [--eval-all]\n"
        "                   [--web] [--json | --jsonl | --watch [--watch-bands LIST]] [FILE]\n"
        "       zkr_muf_cli --locator LOC --call CALL --cluster HOST:PORT [--seconds N]\n"
        "                   [--es-only] [--over144] [--eval-all] [--json | --jsonl | --watch]\n"
        "       zkr_muf_cli --locator LOC [--call CALL] [--all-reports]\n"
        "                   (--wsjtx [ADDR:]PORT [--seconds N] | --alltxt FILE |\n"
        "                    --pskreporter HOST[:PORT] [--bands LIST] [--seconds N])\n"
        "                   [--json | --jsonl | --watch [--watch-bands LIST]]\n"
        "       zkr_muf_cli --export-csv FROM TO [--db PATH] [--locator LOC]\n"
        "       zkr_muf_cli --where CALL [--where CALL ...] [--db PATH] [--cty FILE]\n"
        "       zkr_muf_cli --callbook-csv FILE [--db PATH]\n"
        "\n"
        "Replays recorded DX-cluster text (FILE, or standard input when FILE is missing\n"
        "or \"-\"), or listens to a live cluster, evaluates the spots for sporadic-E\n"
        "propagation and prints the panes All, VHF, 2m and Es, newest spot first.\n"
        "With --wsjtx, --alltxt or --pskreporter it takes reception reports instead\n"
        "and prints the Reports pane.\n"
        "\n"
        "  --locator LOC        own Maidenhead locator, required: JO62QM, or a square alone\n"
        "                       (JO62) for its centre\n"
        "  --call CALL          own call sign: the login at the cluster, the receiver of\n"
        "                       the own decodes\n"
        "  --cluster HOST:PORT  log into this telnet cluster and stay, reconnecting after\n"
        "                       a drop, until --seconds have passed or SIGINT/SIGTERM\n"
        "  --wsjtx [ADDR:]PORT  listen for the UDP messages of WSJT-X or JTDX (ADDR\n"
        "                       127.0.0.1 unless given, or a multicast group such as\n"
        "                       239.255.0.1; PORT 0 takes a free one, said on standard\n"
        "                       error) until --seconds have passed or SIGINT/SIGTERM\n"
        "  --alltxt FILE        replay the decode log ALL.TXT of WSJT-X or JTDX (\"-\" for\n"
        "                       standard input), heard at the own station\n"
        "  --pskreporter HOST[:PORT]\n"
        "                       take PSK Reporter's live MQTT feed from this broker\n"
        "                       (the public one is mqtt.pskreporter.info:1883; PORT\n"
        "                       1883 unless given) until --seconds have passed or\n"
        "                       SIGINT/SIGTERM\n"
        "  --bands LIST         with --pskreporter: PSK Reporter's band names, e.g.\n"
        "                       6m,4m,2m (the default), or all for every band\n"
        "  --all-reports        keep every report, also those without a path or whose\n"
        "                       cloud is farther than 1500 km from the own station\n"
        "  --seconds N          with a live source: stop after N seconds\n"
        "  --es-only            print Es spots only\n"
        "  --over144            print spots of 144 MHz and above only\n"
        "  --eval-all           also compute spots that carry no mode marker\n"
        "  --web                FILE is a downloaded web spot page, not cluster text\n"
        "  --json               print the panes as JSON, with the colour of every segment\n"
        "  --jsonl              print one JSON object per spot or report as soon as it is\n"
        "                       evaluated\n"
        "  --watch              print one line per level an Es cloud reaches for the own\n"
        "                       station (\"2 m open via JN14 ...\"), instead of the panes\n"
        "  --watch-bands LIST   with --watch: the bands to watch, of 50,70,144 (default 144)\n"
        "  --export-csv FROM TO print the spot history received from FROM up to (not\n"
        "                       including) TO as CSV; times in ISO 8601, UTC unless a zone\n"
        "                       is given: 2024-06-01T14:00Z, 2024-06-01T16:00+02:00, or a\n"
        "                       date alone for its midnight UTC; reports get their Es\n"
        "                       paths for --locator, else for the program's own locator\n"
        "  --where CALL         say where CALL is: its locator from the call book of the\n"
        "                       history file, how and when it was learned; else its\n"
        "                       country's position and how far off that may be\n"
        "  --callbook-csv FILE  write the call book as CSV to FILE (\"-\" for standard\n"
        "                       output): alone the one of the history file; with a run\n"
        "                       as it is at its end, with what the run learned\n"
        "  --db PATH            the history file to read (default: the program's own);\n"
        "                       its call book also locates the spots of a run\n"
        "  --cty FILE           the country file, cty.dat (default: beside the program's\n"
        "                       data, else /usr/share/hamradio-files/cty.dat)\n"
        "  -h, --help           print this help\n"
        "  --version            print the version\n"
        "\n"
        "Exit status: 0 on success, 1 when the history cannot be read or --where\n"
        "locates no call, 2 for bad arguments or an unreadable FILE.\n");
}

namespace {

std::variant<CliOptions, QString> parseExport(const QString &from, const QStringList &rest,
                                              const QString &database, const QString &locator,
                                              CliOptions options) {
    options.ownLocator = locator.toUpper();
    if (!options.ownLocator.isEmpty() && Check_Locator(options.ownLocator)) {
        return QStringLiteral("\"%1\" is not a Maidenhead locator (e.g. JO62QM)").arg(locator);
    }
    if (rest.size() != 1) {
        return QStringLiteral("--export-csv needs FROM and TO, and nothing else");
    }
    const std::optional<QDateTime> start = parseHistoryTime(from);
    const std::optional<QDateTime> end = parseHistoryTime(rest.front());
    for (const auto &[time, text] : {std::pair{start, from}, {end, rest.front()}}) {
        if (!time) {
            return QStringLiteral("\"%1\" is no time (e.g. 2024-06-01T14:00Z)").arg(text);
        }
    }
    if (!(*start < *end)) {
        return QStringLiteral("FROM must lie before TO");
    }
    options.exportCsv = true;
    options.exportFrom = *start;
    options.exportTo = *end;
    options.databasePath = database;
    return options;
}

// "HOST:PORT", or "HOST" alone for `defaultPort` (-1: the port is needed).
// Nothing when the port is no number in [lowest, 65535] or the host is empty.
std::optional<std::pair<QString, quint16>> hostAndPort(const QString &text, int defaultPort,
                                                       int lowest = 1) {
    const qsizetype colon = text.lastIndexOf(QLatin1Char(':'));
    bool ok = colon < 0 && defaultPort >= 0;
    const int port = colon < 0 ? defaultPort : text.mid(colon + 1).toInt(&ok);
    const QString host = colon < 0 ? text : text.left(colon);
    if (!ok || host.isEmpty() || port < lowest || port > 65535) {
        return std::nullopt;
    }
    return std::pair{host, static_cast<quint16>(port)};
}

// PSK Reporter names its bands by wavelength: "6m", "1.25m", "70cm".
bool isBandName(const QString &band) {
    static const QRegularExpression name(QStringLiteral("^[0-9]+(\\.[0-9]+)?c?m$"));
    return band == QLatin1String("all") || name.match(band).hasMatch();
}

std::optional<QString> parseReports(const QCommandLineParser &parser, CliOptions &options) {
    const QString wsjtx = QStringLiteral("wsjtx");
    const QString pskReporter = QStringLiteral("pskreporter");
    if (parser.isSet(wsjtx)) {
        // A port alone listens where WSJT-X sends by default.
        const QString value = parser.value(wsjtx);
        const auto target = hostAndPort(
            value.contains(QLatin1Char(':')) ? value : QStringLiteral("127.0.0.1:") + value, -1, 0);
        if (!target || QHostAddress(target->first).isNull()) {
            return QStringLiteral("--wsjtx needs [ADDRESS:]PORT, not \"%1\"").arg(value);
        }
        options.reports = ReportSource::Wsjtx;
        std::tie(options.reportHost, options.reportPort) = *target;
    } else if (parser.isSet(pskReporter)) {
        const auto target =
            hostAndPort(parser.value(pskReporter), PskReporterSettings::DefaultPort);
        if (!target) {
            return QStringLiteral("--pskreporter needs HOST[:PORT], not \"%1\"")
                .arg(parser.value(pskReporter));
        }
        options.reports = ReportSource::PskReporter;
        std::tie(options.reportHost, options.reportPort) = *target;
    } else if (parser.isSet(QStringLiteral("alltxt"))) {
        options.reports = ReportSource::AllTxt;
        const QString file = parser.value(QStringLiteral("alltxt"));
        options.fileName = file == QLatin1String("-") ? QString() : file;
    }
    if (parser.isSet(QStringLiteral("bands"))) {
        if (options.reports != ReportSource::PskReporter) {
            return QStringLiteral("--bands goes with --pskreporter");
        }
        options.bands.clear();
        for (const QString &band : parser.value(QStringLiteral("bands")).split(QLatin1Char(','))) {
            const QString name = band.trimmed().toLower();
            if (!isBandName(name)) {
                return QStringLiteral("--bands takes PSK Reporter's band names (6m,4m,2m) or "
                                      "all, not \"%1\"")
                    .arg(band);
            }
            if (!options.bands.contains(name)) {
                options.bands.append(name);
            }
        }
    }
    options.allReports = parser.isSet(QStringLiteral("all-reports"));
    if (!options.reports && options.allReports) {
        return QStringLiteral("--all-reports goes with --wsjtx, --alltxt or --pskreporter");
    }
    if (!options.reports) {
        return std::nullopt;
    }
    for (const char *spotsOnly : {"es-only", "over144", "eval-all", "web"}) {
        if (parser.isSet(QLatin1String(spotsOnly))) {
            return QStringLiteral("--%1 is for cluster spots, not reception reports")
                .arg(QLatin1String(spotsOnly));
        }
    }
    if (!parser.positionalArguments().isEmpty()) {
        return QStringLiteral("reception reports take no FILE (--alltxt FILE reads a log)");
    }
    return std::nullopt;
}

} // namespace

std::variant<CliOptions, QString> parseCliOptions(const QStringList &arguments) {
    const QCommandLineOption locator(QStringLiteral("locator"), QString(), QStringLiteral("LOC"));
    const QCommandLineOption call(QStringLiteral("call"), QString(), QStringLiteral("CALL"));
    const QCommandLineOption esOnly(QStringLiteral("es-only"));
    const QCommandLineOption over144(QStringLiteral("over144"));
    const QCommandLineOption evalAll(QStringLiteral("eval-all"));
    const QCommandLineOption web(QStringLiteral("web"));
    const QCommandLineOption json(QStringLiteral("json"));
    const QCommandLineOption jsonLines(QStringLiteral("jsonl"));
    const QCommandLineOption cluster(QStringLiteral("cluster"), QString(),
                                     QStringLiteral("HOST:PORT"));
    const QCommandLineOption seconds(QStringLiteral("seconds"), QString(), QStringLiteral("N"));
    const QCommandLineOption watch(QStringLiteral("watch"));
    const QCommandLineOption watchBands(QStringLiteral("watch-bands"), QString(),
                                        QStringLiteral("LIST"));
    const QCommandLineOption help(QStringList{QStringLiteral("h"), QStringLiteral("help")});
    const QCommandLineOption version(QStringLiteral("version"));
    const QCommandLineOption exportCsv(QStringLiteral("export-csv"), QString(),
                                       QStringLiteral("FROM"));
    const QCommandLineOption db(QStringLiteral("db"), QString(), QStringLiteral("PATH"));
    const QCommandLineOption wsjtx(QStringLiteral("wsjtx"), QString(), QStringLiteral("PORT"));
    const QCommandLineOption allTxt(QStringLiteral("alltxt"), QString(), QStringLiteral("FILE"));
    const QCommandLineOption pskReporter(QStringLiteral("pskreporter"), QString(),
                                         QStringLiteral("HOST"));
    const QCommandLineOption bands(QStringLiteral("bands"), QString(), QStringLiteral("LIST"));
    const QCommandLineOption allReports(QStringLiteral("all-reports"));
    const QCommandLineOption cty(QStringLiteral("cty"), QString(), QStringLiteral("FILE"));
    const QCommandLineOption where(QStringLiteral("where"), QString(), QStringLiteral("CALL"));
    const QCommandLineOption callBookCsv(QStringLiteral("callbook-csv"), QString(),
                                         QStringLiteral("FILE"));

    QCommandLineParser parser;
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    parser.addOptions({locator,     call,      esOnly,     over144,    evalAll, web,
                       json,        jsonLines, cluster,    seconds,    help,    version,
                       exportCsv,   db,        watch,      watchBands, wsjtx,   allTxt,
                       pskReporter, bands,     allReports, cty,        where,   callBookCsv});
    if (!parser.parse(arguments)) {
        return parser.errorText();
    }

    CliOptions options;
    options.help = parser.isSet(help);
    options.version = parser.isSet(version);
    if (options.help || options.version) {
        return options;
    }
    const QStringList files = parser.positionalArguments();
    if (parser.isSet(exportCsv)) {
        return parseExport(parser.value(exportCsv), files, parser.value(db), parser.value(locator),
                           options);
    }
    options.databasePath = parser.value(db);
    options.countryFile = parser.value(cty);
    options.callBookCsv = parser.value(callBookCsv);
    // Questions to the stored call book: answered alone.
    if (parser.isSet(where)) {
        if (!files.isEmpty() || parser.isSet(callBookCsv)) {
            return QStringLiteral("--where goes alone (with --db, --cty)");
        }
        options.whereCalls = parser.values(where);
        return options;
    }
    if (parser.isSet(callBookCsv) && !parser.isSet(locator) && files.isEmpty()) {
        options.callBookOnly = true;
        return options;
    }
    if (options.callBookCsv == QLatin1String("-")) {
        return QStringLiteral("with a run, --callbook-csv needs a FILE");
    }
    int sources = 0;
    for (const QCommandLineOption *source : {&cluster, &wsjtx, &allTxt, &pskReporter}) {
        sources += parser.isSet(*source) ? 1 : 0;
    }
    if (sources > 1) {
        return QStringLiteral("one source at a time: --cluster, --wsjtx, --alltxt or "
                              "--pskreporter");
    }
    if (const auto error = parseReports(parser, options)) {
        return *error;
    }
    if (files.size() > 1) {
        return QStringLiteral("only one FILE can be replayed, got %1").arg(files.size());
    }
    if (!files.isEmpty() && files.front() != QLatin1String("-")) {
        options.fileName = files.front();
    }
    if (!parser.isSet(locator)) {
        return QStringLiteral("the own locator is required: --locator LOC");
    }
    // Locators are kept upper-case; the check itself takes upper case only.
    options.ownLocator = parser.value(locator).toUpper();
    if (Check_Locator(options.ownLocator)) {
        return QStringLiteral("\"%1\" is not a Maidenhead locator (e.g. JO62QM)")
            .arg(parser.value(locator));
    }
    if (parser.isSet(call)) {
        options.ownCall = parser.value(call).trimmed().toUpper();
        if (options.ownCall.isEmpty()) {
            return QStringLiteral("the call sign given with --call is empty");
        }
    }
    options.esSpotsOnly = parser.isSet(esOnly);
    options.over144Only = parser.isSet(over144);
    options.evalAll = parser.isSet(evalAll);
    options.webPage = parser.isSet(web);
    options.json = parser.isSet(json);
    options.jsonLines = parser.isSet(jsonLines);
    if (options.json && options.jsonLines) {
        return QStringLiteral("--json and --jsonl exclude each other");
    }
    options.watch = parser.isSet(watch);
    if (options.watch && (options.json || options.jsonLines)) {
        return QStringLiteral("--watch excludes --json and --jsonl");
    }
    if (parser.isSet(watchBands)) {
        if (!options.watch) {
            return QStringLiteral("--watch-bands goes with --watch");
        }
        options.watchBands.clear();
        for (const QString &band : parser.value(watchBands).split(QLatin1Char(','))) {
            const int mhz = band.trimmed().toInt();
            if (mhz != 50 && mhz != 70 && mhz != 144) {
                return QStringLiteral("--watch-bands takes 50, 70 and 144, not \"%1\"").arg(band);
            }
            options.watchBands.append(mhz);
        }
    }
    if (parser.isSet(seconds)) {
        bool ok = false;
        options.seconds = parser.value(seconds).toInt(&ok);
        if (!ok || options.seconds <= 0) {
            return QStringLiteral("--seconds needs a positive whole number, not \"%1\"")
                .arg(parser.value(seconds));
        }
        if (!parser.isSet(cluster) && !parser.isSet(wsjtx) && !parser.isSet(pskReporter)) {
            return QStringLiteral("--seconds goes with --cluster, --wsjtx or --pskreporter");
        }
    }
    if (parser.isSet(cluster)) {
        const auto target = hostAndPort(parser.value(cluster), -1);
        if (!target) {
            return QStringLiteral("--cluster needs HOST:PORT, not \"%1\"")
                .arg(parser.value(cluster));
        }
        std::tie(options.clusterHost, options.clusterPort) = *target;
        if (options.webPage || !files.isEmpty()) {
            return QStringLiteral("--cluster takes no FILE and no --web");
        }
        if (!parser.isSet(call)) {
            return QStringLiteral("--cluster needs the own call sign to log in: --call CALL");
        }
    }
    return options;
}

} // namespace zkr
