#pragma once

#include "PskReporterSettings.h"
#include "Reception.h"

#include <QDateTime>
#include <QString>
#include <QStringList>

#include <optional>
#include <variant>

namespace zkr {

// What the replay tool was asked to do.
struct CliOptions {
    QString ownLocator; // upper-cased, checked
    // Upper-cased: the login at a cluster, the receiver of the own decodes,
    // and the call whose PSK Reporter reports are the own station's.
    QString ownCall;
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
    QString fileName; // "" for standard input; with --alltxt the decode log
    // A live cluster instead of a file: host and port, and how long to stay
    // (0: until SIGINT or SIGTERM; for every live source).
    QString clusterHost;
    quint16 clusterPort = 0;
    int seconds = 0;
    // Reception reports instead of spots: WSJT-X's UDP messages (address or
    // multicast group, port), a decode log (fileName), or PSK Reporter's
    // feed (broker, port, band names).
    std::optional<ReportSource> reports;
    QString reportHost;
    quint16 reportPort = 0;
    QStringList bands = PskReporterSettings().bands;
    // Keep reports whose cloud is beyond the distance limit, or without path.
    bool allReports = false;
    // The country file; "" for the first of CountryFile::candidatePaths.
    QString countryFile;
    // --export-csv FROM TO: the spot history received in [FROM, TO) as CSV,
    // from --db or the program's own history file.
    bool exportCsv = false;
    QDateTime exportFrom;
    QDateTime exportTo;
    QString databasePath;
    // --where CALL (repeatable): where the history's call book and the
    // country file put these calls.
    QStringList whereCalls;
    // --callbook-csv FILE ("-": standard output): the call book as CSV,
    // the history's alone, or with a run as it is at the end of the run.
    QString callBookCsv;
    bool callBookOnly = false;

    bool live() const {
        return !clusterHost.isEmpty() || (reports && *reports != ReportSource::AllTxt);
    }
};

// Reads the tool's command line (program name first). Returns the options,
// or a message saying what is wrong with the arguments.
std::variant<CliOptions, QString> parseCliOptions(const QStringList &arguments);

QString cliUsage();

} // namespace zkr
