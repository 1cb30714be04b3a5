#include "HistoryCsv.h"

#include "HistoryDatabase.h"
#include "SpotLineParsing.h"

#include <QIODevice>
#include <QStringList>

#include <algorithm>
#include <iterator>

namespace zkr {

namespace {

const QString Separator = QStringLiteral(",");
const QString RowEnd = QStringLiteral("\r\n");

QString field(const QString &text) {
    if (!text.contains(QLatin1Char(',')) && !text.contains(QLatin1Char('"')) &&
        !text.contains(QLatin1Char('\r')) && !text.contains(QLatin1Char('\n'))) {
        return text;
    }
    QString quoted = text;
    quoted.replace(QLatin1String("\""), QLatin1String("\"\""));
    return QLatin1Char('"') + quoted + QLatin1Char('"');
}

QString utc(const QDateTime &time) {
    return time.isValid() ? time.toUTC().toString(Qt::ISODate) : QString();
}

QString number(double value, int decimals) {
    return QString::number(value, 'f', decimals);
}

QString paneNames(unsigned panes) {
    static const char *const Names[] = {"All", "VHF", "2m", "Es"};
    QStringList names;
    for (unsigned i = 0; i < 4; ++i) {
        if ((panes & (1U << i)) != 0) {
            names.append(QLatin1String(Names[i]));
        }
    }
    return names.join(QLatin1Char(' '));
}

// The spotter's call: the colon after it separates it on a cluster line.
QString spotterCall(const QString &spotter) {
    return spotter.endsWith(QLatin1Char(':')) ? spotter.chopped(1) : spotter;
}

// The comment as the spotter wrote it. On a cluster line the comment column
// reaches into the time column, so a long comment ends in the time's first
// digits; they go where the line has its time in that column.
QString commentText(const EvaluatedSpot &spot) {
    const int timeStart = ClusterColumns[8];
    const qsizetype overlap =
        std::min<qsizetype>(ClusterColumns[6] + ClusterColumns[7] - timeStart, spot.time.size());
    QString comment = spot.comment;
    if (!spot.time.isEmpty() &&
        QStringView(spot.line).mid(timeStart - 1, spot.time.size()) == spot.time &&
        comment.endsWith(QStringView(spot.time).left(overlap))) {
        comment.chop(overlap);
    }
    return comment.trimmed();
}

// A square alone carries "??" for the path model; the cell has it as found.
QString locatorCell(const QString &locator) {
    return locator.endsWith(QLatin1String("??")) ? locator.chopped(2) : locator;
}

// What a cell is made from: a spot and the name of its source, or a report.
struct Row {
    const EvaluatedSpot *spot = nullptr;
    const Reception *report = nullptr;
    QString source;

    // The spot's or the report's value: `report` of a report, else `spot`.
    template <typename Spot, typename Report> QString cell(Spot ofSpot, Report ofReport) const {
        return spot != nullptr ? ofSpot(*spot) : ofReport(*report);
    }
    // The exact path, else a spot's approximate one (marked in the row).
    const EsPath *es() const {
        if (report != nullptr) {
            return report->es ? &*report->es : nullptr;
        }
        return spot->es ? &*spot->es : (spot->approximate ? &spot->approximate->es : nullptr);
    }
    bool approximate() const { return spot != nullptr && !spot->es && spot->approximate; }
};

QString nothing(const Reception &) {
    return {};
}

// An Es result, or an empty cell when no path was computed.
QString esNumber(const Row &row, double EsPath::*value, int decimals) {
    const EsPath *es = row.es();
    return es != nullptr ? number(es->*value, decimals) : QString();
}

QString esText(const Row &row, QString EsPath::*value) {
    const EsPath *es = row.es();
    return es != nullptr ? es->*value : QString();
}

struct Column {
    const char *name;
    QString (*cell)(const Row &row);
};

// One entry per column, in the file's order; columns added later go at the
// end, so that a sheet that reads a column by its place still finds it. A
// value that does not exist is an empty cell, never a 0 a spreadsheet would
// count. A report fills the spot's columns with its receiver as the
// spotter (and locator1) and its transmitter as the DX (and locator2).
const Column Columns[] = {
    {"received_utc",
     [](const Row &row) {
         return row.cell([](const EvaluatedSpot &spot) { return utc(spot.received); },
                         [](const Reception &report) { return utc(report.received); });
     }},
    {"spot_time_utc",
     [](const Row &row) {
         return row.cell([](const EvaluatedSpot &spot) { return utc(spot.spotTimeUtc()); },
                         [](const Reception &report) { return utc(report.time); });
     }},
    {"source",
     [](const Row &row) {
         return row.report != nullptr ? QString(reportSourceName(row.report->source)) : row.source;
     }},
    {"spotter",
     [](const Row &row) {
         return row.cell([](const EvaluatedSpot &spot) { return spotterCall(spot.spotter); },
                         [](const Reception &report) { return report.rx.call; });
     }},
    // A report's frequency to the Hz.
    {"frequency_mhz",
     [](const Row &row) {
         return row.cell([](const EvaluatedSpot &spot) { return number(spot.frequencyMhz, 4); },
                         [](const Reception &report) { return number(report.frequencyMhz, 6); });
     }},
    {"dx",
     [](const Row &row) {
         return row.cell([](const EvaluatedSpot &spot) { return spot.dxCall; },
                         [](const Reception &report) { return report.tx.call; });
     }},
    {"comment", [](const Row &row) { return row.cell(commentText, nothing); }},
    {"mode",
     [](const Row &row) {
         return row.cell(
             [](const EvaluatedSpot &spot) {
                 return spot.mode == QLatin1String("??") ? QString() : spot.mode;
             },
             [](const Reception &report) { return report.mode; });
     }},
    {"locator1",
     [](const Row &row) {
         return row.cell([](const EvaluatedSpot &spot) { return locatorCell(spot.locator1); },
                         [](const Reception &report) { return report.rx.locator; });
     }},
    {"locator2",
     [](const Row &row) {
         return row.cell([](const EvaluatedSpot &spot) { return locatorCell(spot.locator2); },
                         [](const Reception &report) { return report.tx.locator; });
     }},
    {"cloud", [](const Row &row) { return esText(row, &EsPath::cloud); }},
    {"muf_mhz", [](const Row &row) { return esNumber(row, &EsPath::muf, 2); }},
    {"critical_mhz", [](const Row &row) { return esNumber(row, &EsPath::critical, 2); }},
    // Below the own horizon the cloud gives no FOT at all.
    {"fot_mhz",
     [](const Row &row) {
         return row.es() != nullptr && row.es()->ownMuf > 0 ? esNumber(row, &EsPath::ownMuf, 2)
                                                            : QString();
     }},
    {"azimuth", [](const Row &row) { return esNumber(row, &EsPath::azimuth, 1); }},
    {"elevation", [](const Row &row) { return esNumber(row, &EsPath::elevation, 1); }},
    {"far", [](const Row &row) { return esText(row, &EsPath::far); }},
    {"path_km", [](const Row &row) { return esNumber(row, &EsPath::pathKm, 0); }},
    {"own_km", [](const Row &row) { return esNumber(row, &EsPath::ownKm, 0); }},
    {"panes",
     [](const Row &row) {
         return row.cell([](const EvaluatedSpot &spot) { return paneNames(spot.panes); }, nothing);
     }},
    {"line",
     [](const Row &row) {
         return row.cell([](const EvaluatedSpot &spot) { return spot.line; }, nothing);
     }},
    {"snr_db",
     [](const Row &row) {
         return row.report != nullptr && row.report->snr ? QString::number(*row.report->snr)
                                                         : QString();
     }},
    // The Es cells hold the approximate path of a spot without an exact one.
    {"approximate",
     [](const Row &row) { return row.approximate() ? QStringLiteral("yes") : QString(); }},
    // How the spotter's and the DX's end were put: "callbook/country".
    {"located",
     [](const Row &row) {
         return row.approximate() ? locatedName(row.spot->approximate->spotter) + QLatin1Char('/') +
                                        locatedName(row.spot->approximate->dx)
                                  : QString();
     }},
};

QString csvRow(const Row &row) {
    QStringList cells;
    cells.reserve(static_cast<qsizetype>(std::size(Columns)));
    for (const Column &column : Columns) {
        cells.append(field(column.cell(row)));
    }
    return cells.join(Separator) + RowEnd;
}

} // namespace

QString historyCsvHeader() {
    QStringList names;
    for (const Column &column : Columns) {
        names.append(QLatin1String(column.name));
    }
    return names.join(Separator) + RowEnd;
}

QString historyCsvRow(const EvaluatedSpot &spot, const QString &source) {
    return csvRow(Row{&spot, nullptr, source});
}

QString historyCsvRow(const Reception &report) {
    return csvRow(Row{nullptr, &report, {}});
}

std::optional<qint64> exportHistoryCsv(HistoryDatabase &database, const QDateTime &from,
                                       const QDateTime &to, QIODevice &out, QString &error,
                                       const QString &ownLocator) {
    // The byte-order mark tells spreadsheet programs the text is UTF-8, so
    // that accents in comments read right.
    if (out.write(QByteArrayLiteral("\xEF\xBB\xBF") + historyCsvHeader().toUtf8()) < 0) {
        error = out.errorString();
        return std::nullopt;
    }
    qint64 rows = 0;
    bool written = true;
    const auto write = [&](const QString &row) {
        written = out.write(row.toUtf8()) >= 0;
        rows += written ? 1 : 0;
        return written;
    };
    const bool read = database.read(
        from.toMSecsSinceEpoch(), to.toMSecsSinceEpoch(),
        [&](const EvaluatedSpot &spot, const QString &source) {
            return write(historyCsvRow(spot, source));
        },
        [&](const Reception &stored) {
            Reception report = stored;
            Evaluate_Reception(report, ownLocator);
            return write(historyCsvRow(report));
        });
    if (!written) {
        error = out.errorString();
        return std::nullopt;
    }
    if (!read) {
        error = database.errorString();
        return std::nullopt;
    }
    return rows;
}

std::optional<QDateTime> parseHistoryTime(const QString &text) {
    const QString trimmed = text.trimmed();
    const QDate date = QDate::fromString(trimmed, QStringLiteral("yyyy-MM-dd"));
    if (date.isValid()) {
        return QDateTime(date, QTime(0, 0), Qt::UTC);
    }
    if (!trimmed.contains(QLatin1Char('T'))) {
        return std::nullopt;
    }
    QDateTime time = QDateTime::fromString(trimmed, Qt::ISODate);
    if (!time.isValid()) {
        return std::nullopt;
    }
    if (time.timeSpec() == Qt::LocalTime) {
        time.setTimeSpec(Qt::UTC); // no zone given: the program counts in UTC
    }
    return time.toUTC();
}

} // namespace zkr
