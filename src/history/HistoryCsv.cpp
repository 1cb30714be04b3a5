#include "HistoryCsv.h"

#include "HistoryDatabase.h"

#include <QIODevice>
#include <QStringList>

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

} // namespace

QString historyCsvHeader() {
    return QStringLiteral("received_utc,spot_time_utc,source,spotter,frequency_mhz,dx,comment,"
                          "mode,locator1,locator2,cloud,muf_mhz,critical_mhz,fot_mhz,azimuth,"
                          "elevation,far,path_km,own_km,panes,line") +
           RowEnd;
}

QString historyCsvRow(const EvaluatedSpot &spot, const QString &source) {
    QStringList fields{utc(spot.received),
                       utc(spot.spotTimeUtc()),
                       source,
                       spot.spotter,
                       number(spot.frequencyMhz, 4),
                       spot.dxCall,
                       spot.comment.trimmed(),
                       spot.mode,
                       spot.locator1,
                       spot.locator2};
    if (spot.es) {
        const EsPath &es = *spot.es;
        fields << es.cloud << number(es.muf, 2) << number(es.critical, 2) << number(es.ownMuf, 2)
               << number(es.azimuth, 1) << number(es.elevation, 1) << es.far << number(es.pathKm, 0)
               << number(es.ownKm, 0);
    } else {
        for (int i = 0; i < 9; ++i) {
            fields << QString();
        }
    }
    fields << paneNames(spot.panes) << spot.line;
    for (QString &text : fields) {
        text = field(text);
    }
    return fields.join(Separator) + RowEnd;
}

std::optional<qint64> exportHistoryCsv(HistoryDatabase &database, const QDateTime &from,
                                       const QDateTime &to, QIODevice &out, QString &error) {
    if (out.write(historyCsvHeader().toUtf8()) < 0) {
        error = out.errorString();
        return std::nullopt;
    }
    qint64 rows = 0;
    bool written = true;
    const bool read = database.read(from.toMSecsSinceEpoch(), to.toMSecsSinceEpoch(),
                                    [&](const EvaluatedSpot &spot, const QString &source) {
                                        written =
                                            out.write(historyCsvRow(spot, source).toUtf8()) >= 0;
                                        rows += written ? 1 : 0;
                                        return written;
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
