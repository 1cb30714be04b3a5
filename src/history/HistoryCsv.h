#pragma once

#include "EvaluatedSpot.h"
#include "Reception.h"

#include <QDateTime>
#include <QString>

#include <optional>

class QIODevice;

namespace zkr {

class HistoryDatabase;

// The spot history as CSV for spreadsheets (RFC 4180: comma, CR LF, fields
// with a comma, quote or line break in double quotes, quotes doubled), UTF-8
// after a byte-order mark, one header row, one row per spot or report with
// its Es results; a value that does not exist is an empty cell. A spot
// without an exact path has its approximate one in the Es cells, marked
// "yes" in `approximate`, with how its ends were found in `located`.
QString historyCsvHeader();
QString historyCsvRow(const EvaluatedSpot &spot, const QString &source);
QString historyCsvRow(const Reception &report);

// Writes the spots received and the reports heard in [from, to) as CSV, in
// time order. A report's Es cells are computed for `ownLocator` (empty
// without one). The number of rows, or nullopt with `error` set.
std::optional<qint64> exportHistoryCsv(HistoryDatabase &database, const QDateTime &from,
                                       const QDateTime &to, QIODevice &out, QString &error,
                                       const QString &ownLocator = QString());

// A time of the export range: ISO 8601, UTC unless it names another zone,
// "2024-06-01T14:00Z", "2024-06-01T14:00:30+02:00", or a date alone for its
// midnight UTC. nullopt when it is none of these.
std::optional<QDateTime> parseHistoryTime(const QString &text);

} // namespace zkr
