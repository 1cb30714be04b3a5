#pragma once

#include "EvaluatedSpot.h"

#include <QDateTime>
#include <QString>

#include <optional>

class QIODevice;

namespace zkr {

class HistoryDatabase;

// The spot history as CSV for spreadsheets (RFC 4180: comma, CR LF, fields
// with a comma, quote or line break in double quotes, quotes doubled), UTF-8
// after a byte-order mark, one header row, one row per spot with its Es
// results; a value that does not exist is an empty cell.
QString historyCsvHeader();
QString historyCsvRow(const EvaluatedSpot &spot, const QString &source);

// Writes the spots received in [from, to) as CSV. The number of rows, or
// nullopt with `error` set.
std::optional<qint64> exportHistoryCsv(HistoryDatabase &database, const QDateTime &from,
                                       const QDateTime &to, QIODevice &out, QString &error);

// A time of the export range: ISO 8601, UTC unless it names another zone,
// "2024-06-01T14:00Z", "2024-06-01T14:00:30+02:00", or a date alone for its
// midnight UTC. nullopt when it is none of these.
std::optional<QDateTime> parseHistoryTime(const QString &text);

} // namespace zkr
