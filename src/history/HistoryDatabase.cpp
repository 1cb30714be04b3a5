#include "HistoryDatabase.h"

#include "CallBook.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QDir>
#include <QFileInfo>
#include <QLockFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QtEndian>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <limits>

namespace zkr {

namespace {

// Marks a file as ours in its header ("ZKRM"), so that a path pointing at
// any other database is refused instead of altered.
constexpr qint64 ApplicationId = 0x5A4B524D;
// 2: the spot's approximate path, the report table.
constexpr int SchemaVersion = 2;

const QString Columns = QStringLiteral(
    "received, spot_minute, line_key, source, line, spotter, frequency, dx, comment, time, "
    "tail1, tail2, locator1, locator2, mode, cloud, muf, critical, own_muf, azimuth, elevation, "
    "far, path_km, own_km, panes, es_printed, error, printed, colours");

// A report keeps what came in, in the smallest types SQLite has: the time in
// seconds, the frequency in Hz, the source as a number, when it was received
// as milliseconds after its time (0, no bytes, for a log line). The key is
// what makes a report a repeat and sorts the rows by time, so the table
// needs no index: restore, prune and export read a range of the key.
const QString ReportTable = QStringLiteral(
    "CREATE TABLE IF NOT EXISTS report (time INTEGER NOT NULL, source INTEGER NOT NULL, "
    "tx_call TEXT NOT NULL, rx_call TEXT NOT NULL, frequency INTEGER NOT NULL, mode TEXT NOT "
    "NULL, snr INTEGER, tx_locator TEXT NOT NULL, rx_locator TEXT NOT NULL, own INTEGER NOT "
    "NULL, received INTEGER, PRIMARY KEY (time, source, tx_call, rx_call, frequency)) "
    "WITHOUT ROWID");
const QString ReportColumns = QStringLiteral(
    "time, source, tx_call, rx_call, frequency, mode, snr, tx_locator, rx_locator, own, received");

// Fixed numbers in the file, whatever order the enum has.
int reportSourceCode(ReportSource source) {
    switch (source) {
    case ReportSource::Wsjtx:
        return 0;
    case ReportSource::AllTxt:
        return 1;
    case ReportSource::PskReporter:
        return 2;
    }
    return -1;
}

std::optional<ReportSource> reportSourceOfCode(qint64 code) {
    for (const ReportSource source :
         {ReportSource::Wsjtx, ReportSource::AllTxt, ReportSource::PskReporter}) {
        if (reportSourceCode(source) == code) {
            return source;
        }
    }
    return std::nullopt;
}

// The first whole second at or after `ms`: a report of second s lies in a
// range from `ms` when s * 1000 >= ms.
qint64 secondsFrom(qint64 ms) {
    const qint64 seconds = ms / 1000 - (ms % 1000 < 0 ? 1 : 0);
    return ms % 1000 == 0 ? seconds : seconds + 1;
}

QString nextConnectionName() {
    static std::atomic<int> counter{0};
    return QStringLiteral("zkr_history_%1").arg(counter.fetch_add(1));
}

QSqlDatabase database(const QString &name) {
    return QSqlDatabase::database(name, false);
}

// Which lines are repeats: a web page that shows a spot again, or a file
// replayed again. 64 bits of SHA-1 keep the unique index small.
qint64 lineKey(const QString &source, const QString &line) {
    QCryptographicHash hash(QCryptographicHash::Sha1);
    hash.addData(source.toUtf8());
    hash.addData(QByteArrayView("\n", 1));
    hash.addData(line.toUtf8());
    return qFromBigEndian<qint64>(hash.result().constData());
}

void appendVarint(QByteArray &out, quint64 value) {
    while (value >= 0x80) {
        out.append(static_cast<char>((value & 0x7F) | 0x80));
        value >>= 7;
    }
    out.append(static_cast<char>(value));
}

bool readVarint(const QByteArray &in, qsizetype &pos, quint64 &value) {
    value = 0;
    for (int shift = 0; pos < in.size() && shift < 64; shift += 7) {
        const auto byte = static_cast<quint8>(in.at(pos++));
        value |= static_cast<quint64>(byte & 0x7F) << shift;
        if ((byte & 0x80) == 0) {
            return true;
        }
    }
    return false;
}

// The printed runs as one text and (length, colour) pairs. The text mostly
// starts with the spot's line, which is stored once: flag byte 1.
struct PrintedRuns {
    QString text;
    QByteArray colours;
};

PrintedRuns encodeRuns(const EvaluatedSpot &spot) {
    PrintedRuns out;
    for (const TextRun &run : spot.runs) {
        out.text += run.text;
        appendVarint(out.colours, static_cast<quint64>(run.text.size()));
        appendVarint(out.colours, run.colour);
    }
    const bool linePrefix = !spot.line.isEmpty() && out.text.startsWith(spot.line);
    if (linePrefix) {
        out.text.remove(0, spot.line.size());
    }
    out.colours.prepend(linePrefix ? '\1' : '\0');
    return out;
}

bool decodeRuns(const QString &line, const QString &stored, const QByteArray &colours,
                QList<TextRun> &runs) {
    if (colours.isEmpty()) {
        return false;
    }
    const QString text = colours.at(0) == '\1' ? line + stored : stored;
    qsizetype pos = 1;
    qsizetype offset = 0;
    while (pos < colours.size()) {
        quint64 length = 0;
        quint64 colour = 0;
        if (!readVarint(colours, pos, length) || !readVarint(colours, pos, colour) ||
            length > static_cast<quint64>(text.size() - offset)) {
            return false;
        }
        const auto size = static_cast<qsizetype>(length);
        runs.append(TextRun{text.mid(offset, size), static_cast<std::uint32_t>(colour)});
        offset += size;
    }
    return offset == text.size();
}

// The call book's table: one row a call, the call itself the key.
const QString CallBookTable = QStringLiteral(
    "CREATE TABLE IF NOT EXISTS callbook (call TEXT PRIMARY KEY, locator TEXT NOT NULL, "
    "learned INTEGER NOT NULL, source TEXT NOT NULL) WITHOUT ROWID");

// The approximate path in a few bytes; NULL for none.
QVariant encodeApproximate(const std::optional<ApproximatePath> &path) {
    if (!path) {
        return {};
    }
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out.setVersion(QDataStream::Qt_6_0);
    const EsPath &es = path->es;
    out << static_cast<quint8>(path->spotter) << static_cast<quint8>(path->dx)
        << path->uncertaintyKm << path->spotterLocator.toUtf8() << path->dxLocator.toUtf8()
        << es.cloud.toUtf8() << es.muf << es.critical << es.ownMuf << es.azimuth << es.elevation
        << es.far.toUtf8() << es.pathKm << es.ownKm;
    return bytes;
}

std::optional<ApproximatePath> decodeApproximate(const QByteArray &bytes) {
    if (bytes.isEmpty()) {
        return std::nullopt;
    }
    QDataStream in(bytes);
    in.setVersion(QDataStream::Qt_6_0);
    quint8 spotter = 0;
    quint8 dx = 0;
    QByteArray spotterLocator;
    QByteArray dxLocator;
    QByteArray cloud;
    QByteArray far;
    ApproximatePath path;
    EsPath &es = path.es;
    in >> spotter >> dx >> path.uncertaintyKm >> spotterLocator >> dxLocator >> cloud >> es.muf >>
        es.critical >> es.ownMuf >> es.azimuth >> es.elevation >> far >> es.pathKm >> es.ownKm;
    const auto located = [](quint8 value) {
        return value <= static_cast<quint8>(Located::Country);
    };
    if (in.status() != QDataStream::Ok || !in.atEnd() || !located(spotter) || !located(dx)) {
        return std::nullopt;
    }
    path.spotter = static_cast<Located>(spotter);
    path.dx = static_cast<Located>(dx);
    path.spotterLocator = QString::fromUtf8(spotterLocator);
    path.dxLocator = QString::fromUtf8(dxLocator);
    es.cloud = QString::fromUtf8(cloud);
    es.far = QString::fromUtf8(far);
    return path;
}

EvaluatedSpot spotOf(const QSqlQuery &query, QString &source) {
    EvaluatedSpot spot;
    spot.received = QDateTime::fromMSecsSinceEpoch(query.value(0).toLongLong(), Qt::UTC);
    source = query.value(3).toString();
    spot.line = query.value(4).toString();
    spot.spotter = query.value(5).toString();
    spot.frequencyMhz = query.value(6).toDouble();
    spot.frequency = static_cast<float>(spot.frequencyMhz);
    spot.dxCall = query.value(7).toString();
    spot.comment = query.value(8).toString();
    spot.time = query.value(9).toString();
    spot.tail1 = query.value(10).toString();
    spot.tail2 = query.value(11).toString();
    spot.locator1 = query.value(12).toString();
    spot.locator2 = query.value(13).toString();
    spot.mode = query.value(14).toString();
    if (!query.isNull(15)) {
        spot.es = EsPath{
            query.value(15).toString(), query.value(16).toDouble(), query.value(17).toDouble(),
            query.value(18).toDouble(), query.value(19).toDouble(), query.value(20).toDouble(),
            query.value(21).toString(), query.value(22).toDouble(), query.value(23).toDouble()};
    }
    spot.panes = query.value(24).toUInt();
    spot.esResultPrinted = query.value(25).toInt() != 0;
    spot.error = query.value(26).toString();
    if (!decodeRuns(spot.line, query.value(27).toString(), query.value(28).toByteArray(),
                    spot.runs)) {
        // A row whose runs do not add up prints nothing rather than garbage.
        spot.runs.clear();
        spot.panes = 0;
    }
    spot.approximate = decodeApproximate(query.value(29).toByteArray());
    return spot;
}

// nullopt for a source this version does not know.
std::optional<Reception> reportOf(const QSqlQuery &query) {
    const auto source = reportSourceOfCode(query.value(1).toLongLong());
    if (!source) {
        return std::nullopt;
    }
    Reception report;
    report.source = *source;
    const qint64 seconds = query.value(0).toLongLong();
    report.time = QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC);
    report.tx.call = query.value(2).toString();
    report.rx.call = query.value(3).toString();
    report.frequencyMhz = static_cast<double>(query.value(4).toLongLong()) / 1e6;
    report.mode = query.value(5).toString();
    if (!query.isNull(6)) {
        report.snr = query.value(6).toInt();
    }
    report.tx.locator = query.value(7).toString();
    report.rx.locator = query.value(8).toString();
    report.atOwnStation = query.value(9).toInt() != 0;
    if (!query.isNull(10)) {
        report.received =
            QDateTime::fromMSecsSinceEpoch(seconds * 1000 + query.value(10).toLongLong(), Qt::UTC);
    }
    return report;
}

QVariant optionalText(const std::optional<EsPath> &es, QString EsPath::*field) {
    return es ? QVariant((*es).*field) : QVariant();
}

QVariant optionalNumber(const std::optional<EsPath> &es, double EsPath::*field) {
    return es ? QVariant((*es).*field) : QVariant();
}

} // namespace

HistoryDatabase::HistoryDatabase() : connection_(nextConnectionName()) {}

HistoryDatabase::~HistoryDatabase() {
    close();
}

bool HistoryDatabase::isOpen() const {
    return database(connection_).isOpen();
}

void HistoryDatabase::close() {
    insert_.reset();
    writeCallBook_.reset();
    insertReport_.reset();
    hasApproximate_ = false;
    hasReports_ = false;
    if (QSqlDatabase::contains(connection_)) {
        {
            QSqlDatabase db = database(connection_);
            db.close();
        }
        QSqlDatabase::removeDatabase(connection_);
    }
    lock_.reset();
}

bool HistoryDatabase::fail(Failure failure, const QString &what) {
    failure_ = failure;
    error_ = what;
    if (failure != Failure::None) {
        close();
    }
    return false;
}

bool HistoryDatabase::exec(const QString &sql) {
    QSqlQuery query(database(connection_));
    if (!query.exec(sql)) {
        error_ = query.lastError().text();
        return false;
    }
    return true;
}

bool HistoryDatabase::has(const QString &table, const QString &column) {
    QSqlQuery query(database(connection_));
    query.prepare(column.isEmpty()
                      ? QStringLiteral("SELECT count(*) FROM sqlite_master WHERE type = 'table' "
                                       "AND name = ?")
                      : QStringLiteral("SELECT count(*) FROM pragma_table_info(?) WHERE name = ?"));
    query.addBindValue(table);
    if (!column.isEmpty()) {
        query.addBindValue(column);
    }
    return query.exec() && query.next() && query.value(0).toLongLong() > 0;
}

bool HistoryDatabase::open(const QString &path, Access access) {
    close();
    failure_ = Failure::None;
    error_.clear();
    const QFileInfo file(path);
    if (file.exists() && !file.isFile()) {
        return fail(Failure::CannotOpen, QStringLiteral("%1 is not a file").arg(path));
    }
    if (access == Access::Reader && !file.exists()) {
        return fail(Failure::CannotOpen, QStringLiteral("%1 does not exist").arg(path));
    }
    if (access == Access::Writer) {
        if (!QDir().mkpath(file.absolutePath())) {
            return fail(Failure::CannotOpen,
                        QStringLiteral("cannot create the folder %1").arg(file.absolutePath()));
        }
        lock_ = std::make_unique<QLockFile>(path + QStringLiteral(".lock"));
        // Never stale by age: a program may write for weeks. A lock left by
        // a crashed or killed program is taken over (its process is gone).
        lock_->setStaleLockTime(0);
        if (!lock_->tryLock(0)) {
            const bool held = lock_->error() == QLockFile::LockFailedError;
            lock_.reset();
            return fail(held ? Failure::Locked : Failure::CannotOpen,
                        held ? QStringLiteral("%1 is in use by another ZKR_MUF").arg(path)
                             : QStringLiteral("cannot lock %1").arg(path));
        }
    }
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection_);
        db.setDatabaseName(path);
        if (!db.open()) {
            return fail(Failure::CannotOpen, db.lastError().text());
        }
    }
    exec(QStringLiteral("PRAGMA busy_timeout=2000"));
    QSqlQuery query(database(connection_));
    if (!query.exec(QStringLiteral("PRAGMA application_id")) || !query.next()) {
        return fail(Failure::Damaged, query.lastError().text());
    }
    const qint64 id = query.value(0).toLongLong();
    if (!query.exec(QStringLiteral("SELECT count(*) FROM sqlite_master")) || !query.next()) {
        return fail(Failure::Damaged, query.lastError().text());
    }
    const bool empty = query.value(0).toLongLong() == 0;
    query.finish();
    if (id != ApplicationId && !(id == 0 && empty && access == Access::Writer)) {
        return fail(Failure::Damaged, QStringLiteral("%1 is no spot history").arg(path));
    }
    if (access == Access::Writer) {
        // WAL with NORMAL: a commit survives a killed program without
        // waiting for the disk; a power cut loses at most the last commits.
        if (!query.exec(QStringLiteral("PRAGMA journal_mode=WAL")) || !query.next() ||
            query.value(0).toString() != QLatin1String("wal")) {
            return fail(Failure::Damaged, query.lastError().text());
        }
        query.finish();
        const bool created =
            exec(QStringLiteral("PRAGMA synchronous=NORMAL")) && begin() &&
            exec(QStringLiteral(
                "CREATE TABLE IF NOT EXISTS spot (id INTEGER PRIMARY KEY, received INTEGER NOT "
                "NULL, spot_minute INTEGER NOT NULL, line_key INTEGER NOT NULL, source TEXT NOT "
                "NULL, line TEXT NOT NULL, spotter TEXT, frequency REAL, dx TEXT, comment TEXT, "
                "time TEXT, tail1 TEXT, tail2 TEXT, locator1 TEXT, locator2 TEXT, mode TEXT, "
                "cloud TEXT, muf REAL, critical REAL, own_muf REAL, azimuth REAL, elevation "
                "REAL, far TEXT, path_km REAL, own_km REAL, panes INTEGER, es_printed INTEGER, "
                "error TEXT, printed TEXT, colours BLOB, approximate BLOB)")) &&
            // A file of the first version gains what it lacks; its spots stay.
            (has(QStringLiteral("spot"), QStringLiteral("approximate")) ||
             exec(QStringLiteral("ALTER TABLE spot ADD COLUMN approximate BLOB"))) &&
            exec(QStringLiteral("CREATE UNIQUE INDEX IF NOT EXISTS spot_repeat ON spot "
                                "(spot_minute, line_key)")) &&
            exec(QStringLiteral("CREATE INDEX IF NOT EXISTS spot_received ON spot (received)")) &&
            exec(CallBookTable) && exec(ReportTable) &&
            exec(QStringLiteral("PRAGMA application_id=%1").arg(ApplicationId)) &&
            exec(QStringLiteral("PRAGMA user_version=%1").arg(SchemaVersion)) && commit();
        if (!created) {
            return fail(Failure::Damaged, error_);
        }
    }
    // Reads the table once, so that a damaged one shows now, not later.
    if (!query.exec(QStringLiteral("SELECT max(id) FROM spot"))) {
        return fail(Failure::Damaged, query.lastError().text());
    }
    hasApproximate_ = has(QStringLiteral("spot"), QStringLiteral("approximate"));
    hasReports_ = has(QStringLiteral("report"));
    return true;
}

bool HistoryDatabase::execBound(QSqlQuery &query, const QVariantList &values) {
    for (int i = 0; i < values.size(); ++i) {
        query.bindValue(i, values.at(i));
    }
    if (!query.exec()) {
        error_ = query.lastError().text();
        return false;
    }
    return true;
}

bool HistoryDatabase::begin() {
    return exec(QStringLiteral("BEGIN"));
}

bool HistoryDatabase::commit() {
    return exec(QStringLiteral("COMMIT"));
}

bool HistoryDatabase::insert(const EvaluatedSpot &spot, const QString &source) {
    if (insert_ == nullptr) {
        // Prepared once: a flood inserts thousands a second.
        insert_ = std::make_unique<QSqlQuery>(database(connection_));
        if (!insert_->prepare(QStringLiteral("INSERT OR IGNORE INTO spot (") + Columns +
                              QStringLiteral(", approximate) VALUES (?,?,?,?,?,?,?,?,?,?,?,?,?,?,"
                                             "?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)"))) {
            error_ = insert_->lastError().text();
            insert_.reset();
            return false;
        }
    }
    QSqlQuery &query = *insert_;
    const QDateTime made = spot.spotTimeUtc();
    const PrintedRuns printed = encodeRuns(spot);
    const std::optional<EsPath> &es = spot.es;
    const QVariantList values{spot.received.toMSecsSinceEpoch(),
                              made.isValid() ? made.toSecsSinceEpoch() / 60 : 0,
                              lineKey(source, spot.line),
                              source,
                              spot.line,
                              spot.spotter,
                              spot.frequencyMhz,
                              spot.dxCall,
                              spot.comment,
                              spot.time,
                              spot.tail1,
                              spot.tail2,
                              spot.locator1,
                              spot.locator2,
                              spot.mode,
                              optionalText(es, &EsPath::cloud),
                              optionalNumber(es, &EsPath::muf),
                              optionalNumber(es, &EsPath::critical),
                              optionalNumber(es, &EsPath::ownMuf),
                              optionalNumber(es, &EsPath::azimuth),
                              optionalNumber(es, &EsPath::elevation),
                              optionalText(es, &EsPath::far),
                              optionalNumber(es, &EsPath::pathKm),
                              optionalNumber(es, &EsPath::ownKm),
                              spot.panes,
                              spot.esResultPrinted ? 1 : 0,
                              spot.error.isEmpty() ? QVariant() : QVariant(spot.error),
                              printed.text,
                              printed.colours,
                              encodeApproximate(spot.approximate)};
    return execBound(query, values);
}

bool HistoryDatabase::read(qint64 fromMs, qint64 toMs, const SpotVisitor &spots,
                           const ReportVisitor &reports) {
    QSqlQuery spotRows(database(connection_));
    QSqlQuery reportRows(database(connection_));
    spotRows.setForwardOnly(true);
    reportRows.setForwardOnly(true);
    const auto fault = [this](const QSqlQuery &query) {
        error_ = query.lastError().text();
        return false;
    };
    bool spot = false;
    bool report = false;
    if (spots) {
        spotRows.prepare(
            QStringLiteral("SELECT ") + Columns +
            (hasApproximate_ ? QStringLiteral(", approximate") : QStringLiteral(", NULL")) +
            QStringLiteral(" FROM spot WHERE received >= ? AND received < ? "
                           "ORDER BY received, id"));
        spotRows.addBindValue(fromMs);
        spotRows.addBindValue(toMs);
        if (!spotRows.exec()) {
            return fault(spotRows);
        }
        spot = spotRows.next();
    }
    if (reports && hasReports_) {
        reportRows.prepare(QStringLiteral("SELECT ") + ReportColumns +
                           QStringLiteral(" FROM report WHERE time >= ? AND time < ? ORDER BY "
                                          "time, source, tx_call, rx_call, frequency"));
        reportRows.addBindValue(secondsFrom(fromMs));
        reportRows.addBindValue(secondsFrom(toMs));
        if (!reportRows.exec()) {
            return fault(reportRows);
        }
        report = reportRows.next();
    }
    // Two cursors, each in time order, merged.
    while (spot || report) {
        if (spot && (!report ||
                     spotRows.value(0).toLongLong() <= reportRows.value(0).toLongLong() * 1000)) {
            QString source;
            if (!spots(spotOf(spotRows, source), source)) {
                return true;
            }
            spot = spotRows.next();
        } else {
            const std::optional<Reception> heard = reportOf(reportRows);
            if (heard && !reports(*heard)) {
                return true;
            }
            report = reportRows.next();
        }
    }
    if (spotRows.lastError().isValid()) {
        return fault(spotRows);
    }
    if (reportRows.lastError().isValid()) {
        return fault(reportRows);
    }
    return true;
}

qint64 HistoryDatabase::prune(qint64 beforeMs, int limit) {
    QSqlQuery query(database(connection_));
    query.prepare(QStringLiteral("DELETE FROM spot WHERE id IN (SELECT id FROM spot WHERE "
                                 "received < ? ORDER BY received LIMIT ?)"));
    query.addBindValue(beforeMs);
    query.addBindValue(limit);
    if (!query.exec()) {
        error_ = query.lastError().text();
        return -1;
    }
    return query.numRowsAffected();
}

qint64 HistoryDatabase::startOfNewest(qint64 n) {
    QSqlQuery query(database(connection_));
    query.prepare(QStringLiteral("SELECT received FROM spot ORDER BY received DESC LIMIT 1 "
                                 "OFFSET ?"));
    query.addBindValue(std::max<qint64>(n - 1, 0));
    if (n <= 0 || !query.exec() || !query.next()) {
        return std::numeric_limits<qint64>::min();
    }
    return query.value(0).toLongLong();
}

qint64 HistoryDatabase::count() {
    QSqlQuery query(database(connection_));
    if (!query.exec(QStringLiteral("SELECT count(*) FROM spot")) || !query.next()) {
        error_ = query.lastError().text();
        return -1;
    }
    return query.value(0).toLongLong();
}

QString HistoryDatabase::integrityCheck() {
    QSqlQuery query(database(connection_));
    if (!query.exec(QStringLiteral("PRAGMA integrity_check"))) {
        return query.lastError().text();
    }
    QStringList found;
    while (query.next()) {
        found.append(query.value(0).toString());
    }
    return found.join(QLatin1Char('\n'));
}

bool HistoryDatabase::insertReport(const Reception &report) {
    if (!report.time.isValid()) {
        error_ = QStringLiteral("a report without a time");
        return false;
    }
    if (insertReport_ == nullptr) {
        insertReport_ = std::make_unique<QSqlQuery>(database(connection_));
        if (!insertReport_->prepare(QStringLiteral("INSERT OR IGNORE INTO report (") +
                                    ReportColumns +
                                    QStringLiteral(") VALUES (?,?,?,?,?,?,?,?,?,?,?)"))) {
            error_ = insertReport_->lastError().text();
            insertReport_.reset();
            return false;
        }
    }
    QSqlQuery &query = *insertReport_;
    const qint64 seconds = report.time.toSecsSinceEpoch();
    // A text column that is missing binds as NULL, which the table refuses
    // and INSERT OR IGNORE would drop without a word: "" instead.
    const auto text = [](const QString &value) {
        return value.isNull() ? QStringLiteral("") : value;
    };
    const QVariantList values{seconds,
                              reportSourceCode(report.source),
                              text(report.tx.call),
                              text(report.rx.call),
                              static_cast<qint64>(std::llround(report.frequencyMhz * 1e6)),
                              text(report.mode),
                              report.snr ? QVariant(*report.snr) : QVariant(),
                              text(report.tx.locator),
                              text(report.rx.locator),
                              report.atOwnStation ? 1 : 0,
                              report.received.isValid()
                                  ? QVariant(report.received.toMSecsSinceEpoch() - seconds * 1000)
                                  : QVariant()};
    return execBound(query, values);
}

bool HistoryDatabase::readNewestReports(qint64 fromMs, qint64 limit, const ReportVisitor &visit) {
    if (!hasReports_ || limit <= 0) {
        return true;
    }
    QSqlQuery query(database(connection_));
    // The second of the limit-th newest report; reports of that second
    // beyond the limit are skipped, the oldest first.
    query.prepare(QStringLiteral("SELECT time FROM report ORDER BY time DESC LIMIT 1 OFFSET ?"));
    query.addBindValue(limit - 1);
    if (!query.exec()) {
        error_ = query.lastError().text();
        return false;
    }
    const qint64 from =
        query.next() ? std::max(fromMs, query.value(0).toLongLong() * 1000) : fromMs;
    query.prepare(QStringLiteral("SELECT count(*) FROM report WHERE time >= ?"));
    query.addBindValue(secondsFrom(from));
    if (!query.exec() || !query.next()) {
        error_ = query.lastError().text();
        return false;
    }
    qint64 skip = query.value(0).toLongLong() - limit;
    query.finish();
    return read(from, std::numeric_limits<qint64>::max(), {}, [&](const Reception &report) {
        if (skip > 0) {
            --skip;
            return true;
        }
        return visit(report);
    });
}

qint64 HistoryDatabase::pruneReports(qint64 beforeMs, int limit) {
    if (!hasReports_) {
        return 0;
    }
    QSqlQuery query(database(connection_));
    query.prepare(QStringLiteral(
        "DELETE FROM report WHERE (time, source, tx_call, rx_call, frequency) IN (SELECT time, "
        "source, tx_call, rx_call, frequency FROM report WHERE time < ? ORDER BY time LIMIT ?)"));
    query.addBindValue(secondsFrom(beforeMs));
    query.addBindValue(limit);
    if (!query.exec()) {
        error_ = query.lastError().text();
        return -1;
    }
    return query.numRowsAffected();
}

qint64 HistoryDatabase::countReports() {
    QSqlQuery query(database(connection_));
    if (!hasReports_) {
        return 0;
    }
    if (!query.exec(QStringLiteral("SELECT count(*) FROM report")) || !query.next()) {
        error_ = query.lastError().text();
        return -1;
    }
    return query.value(0).toLongLong();
}

bool HistoryDatabase::writeCallBook(const QList<CallBookEntry> &entries) {
    if (writeCallBook_ == nullptr) {
        writeCallBook_ = std::make_unique<QSqlQuery>(database(connection_));
        if (!writeCallBook_->prepare(
                QStringLiteral("INSERT OR REPLACE INTO callbook (call, "
                               "locator, learned, source) VALUES (?,?,?,?)"))) {
            error_ = writeCallBook_->lastError().text();
            writeCallBook_.reset();
            return false;
        }
    }
    QSqlQuery &query = *writeCallBook_;
    for (const CallBookEntry &entry : entries) {
        query.bindValue(0, entry.call);
        query.bindValue(1, entry.locator);
        query.bindValue(2, entry.learned.toSecsSinceEpoch());
        query.bindValue(3, learnedFromName(entry.from).toString());
        if (!query.exec()) {
            error_ = query.lastError().text();
            return false;
        }
    }
    return true;
}

bool HistoryDatabase::readCallBook(const std::function<bool(const CallBookEntry &)> &visit) {
    QSqlQuery query(database(connection_));
    query.setForwardOnly(true);
    if (!query.exec(QStringLiteral("SELECT count(*) FROM sqlite_master WHERE name = 'callbook'")) ||
        !query.next()) {
        error_ = query.lastError().text();
        return false;
    }
    if (query.value(0).toInt() == 0) {
        return true;
    }
    if (!query.exec(QStringLiteral("SELECT call, locator, learned, source FROM callbook"))) {
        error_ = query.lastError().text();
        return false;
    }
    while (query.next()) {
        const auto from = learnedFromName(query.value(3).toString());
        if (!from) {
            continue; // from a source this version does not know
        }
        const CallBookEntry entry{
            query.value(0).toString(), query.value(1).toString(),
            QDateTime::fromSecsSinceEpoch(query.value(2).toLongLong(), Qt::UTC), *from};
        if (!visit(entry)) {
            break;
        }
    }
    if (query.lastError().isValid()) {
        error_ = query.lastError().text();
        return false;
    }
    return true;
}

qint64 HistoryDatabase::pruneCallBook(qint64 keep) {
    QSqlQuery query(database(connection_));
    // Counting is cheaper than sorting the whole book at every start.
    if (!query.exec(QStringLiteral("SELECT count(*) FROM callbook")) || !query.next()) {
        error_ = query.lastError().text();
        return -1;
    }
    if (query.value(0).toLongLong() <= keep) {
        return 0;
    }
    query.prepare(QStringLiteral("DELETE FROM callbook WHERE call IN (SELECT call FROM callbook "
                                 "ORDER BY learned DESC LIMIT -1 OFFSET ?)"));
    query.addBindValue(std::max<qint64>(keep, 0));
    if (!query.exec()) {
        error_ = query.lastError().text();
        return -1;
    }
    return query.numRowsAffected();
}

} // namespace zkr
