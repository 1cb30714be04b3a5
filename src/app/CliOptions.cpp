#include "CliOptions.h"

#include "HistoryCsv.h"
#include "Locators.h"

#include <QCommandLineParser>

namespace zkr {

QString cliUsage() {
    return QStringLiteral(
        "Usage: zkr_muf_cli --locator LOC [--call CALL] [--es-only] [--over144] [--eval-all]\n"
        "                   [--web] [--json | --jsonl | --watch [--watch-bands LIST]] [FILE]\n"
        "       zkr_muf_cli --locator LOC --call CALL --cluster HOST:PORT [--seconds N]\n"
        "                   [--es-only] [--over144] [--eval-all] [--json | --jsonl]\n"
        "       zkr_muf_cli --export-csv FROM TO [--db PATH]\n"
        "\n"
        "Replays recorded DX-cluster text (FILE, or standard input when FILE is missing\n"
        "or \"-\"), or listens to a live cluster, evaluates the spots for sporadic-E\n"
        "propagation and prints the panes All, VHF, 2m and Es, newest spot first.\n"
        "\n"
        "  --locator LOC        own Maidenhead locator, required: JO62QM, or a square alone\n"
        "                       (JO62) for its centre\n"
        "  --call CALL          own call sign, the login at the cluster (default NOCALL)\n"
        "  --cluster HOST:PORT  log into this telnet cluster and stay, reconnecting after\n"
        "                       a drop, until --seconds have passed or SIGINT/SIGTERM\n"
        "  --seconds N          with --cluster: stop after N seconds\n"
        "  --es-only            print Es spots only\n"
        "  --over144            print spots of 144 MHz and above only\n"
        "  --eval-all           also compute spots that carry no mode marker\n"
        "  --web                FILE is a downloaded web spot page, not cluster text\n"
        "  --json               print the panes as JSON, with the colour of every segment\n"
        "  --jsonl              print one JSON object per spot as soon as it is evaluated\n"
        "  --export-csv FROM TO print the spot history received from FROM up to (not\n"
        "                       including) TO as CSV; times in ISO 8601, UTC unless a zone\n"
        "                       is given: 2024-06-01T14:00Z, 2024-06-01T16:00+02:00, or a\n"
        "                       date alone for its midnight UTC\n"
        "  --db PATH            the history file to export (default: the program's own)\n"
        "  --watch              print one line per level an Es cloud reaches for the own\n"
        "                       station (\"2 m open via JN14 ...\"), instead of the panes\n"
        "  --watch-bands LIST   with --watch: the bands to watch, of 50,70,144 (default 144)\n"
        "  -h, --help           print this help\n"
        "  --version            print the version\n"
        "\n"
        "Exit status: 0 on success, 1 when the history cannot be read, 2 for bad\n"
        "arguments or an unreadable FILE.\n");
}

namespace {

std::variant<CliOptions, QString> parseExport(const QString &from, const QStringList &rest,
                                              const QString &database, CliOptions options) {
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

    QCommandLineParser parser;
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    parser.addOptions({locator, call, esOnly, over144, evalAll, web, json, jsonLines, cluster,
                       seconds, help, version, exportCsv, db, watch, watchBands});
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
        return parseExport(parser.value(exportCsv), files, parser.value(db), options);
    }
    if (parser.isSet(db)) {
        return QStringLiteral("--db goes with --export-csv");
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
        if (!parser.isSet(cluster)) {
            return QStringLiteral("--seconds goes with --cluster");
        }
    }
    if (parser.isSet(cluster)) {
        const QString target = parser.value(cluster);
        const qsizetype colon = target.lastIndexOf(QLatin1Char(':'));
        bool ok = false;
        const int port = colon > 0 ? target.mid(colon + 1).toInt(&ok) : 0;
        if (!ok || port <= 0 || port > 65535) {
            return QStringLiteral("--cluster needs HOST:PORT, not \"%1\"").arg(target);
        }
        options.clusterHost = target.left(colon);
        options.clusterPort = static_cast<quint16>(port);
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
