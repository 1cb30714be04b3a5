#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

#include <variant>

namespace zkr {

// What the replay tool was asked to do.
struct CliOptions {
    QString ownLocator;                         // upper-cased, checked
    QString ownCall = QStringLiteral("NOCALL"); // upper-cased; only sent on "login:"
    bool esSpotsOnly = false;
    bool over144Only = false;
    bool evalAll = false;
    bool webPage = false;
    bool json = false;
    bool jsonLines = false; // one object per evaluated spot, as it is evaluated
    bool help = false;
    bool version = false;
    // One line per level the Es watch reaches, instead of the panes; the
    // bands it watches (MHz: 50, 70, 144).
    bool watch = false;
    QList<int> watchBands{144};
    QString fileName; // "" for standard input
    // A live cluster instead of a file: host and port, and how long to stay
    // (0: until SIGINT or SIGTERM).
    QString clusterHost;
    quint16 clusterPort = 0;
    int seconds = 0;
    // --export-csv FROM TO: the spot history received in [FROM, TO) as CSV,
    // from --db or the program's own history file.
    bool exportCsv = false;
    QDateTime exportFrom;
    QDateTime exportTo;
    QString databasePath;
};

// Reads the tool's command line (program name first). Returns the options,
// or a message saying what is wrong with the arguments.
std::variant<CliOptions, QString> parseCliOptions(const QStringList &arguments);

QString cliUsage();

} // namespace zkr
