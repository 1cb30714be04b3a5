#pragma once

#include "EvaluatedSpot.h"
#include "Reception.h"

#include <QString>

#include <functional>
#include <memory>

class QLockFile;
class QSqlQuery;

namespace zkr {

struct CallBookEntry;

// The spot history file: one SQLite connection, used by one thread only.
// Rows hold the spot's line, its source ("web", "file" or the cluster's
// name), when it came, its fields, the Es results, its approximate path and
// the printed runs, so that a spot read back prints exactly as it did.
// Reception reports have a table of their own that keeps only what came in
// (about 60 bytes a report); their Es path is computed again when read.
class HistoryDatabase {
public:
    using SpotVisitor = std::function<bool(const EvaluatedSpot &, const QString &source)>;
    using ReportVisitor = std::function<bool(const Reception &)>;

    enum class Access {
        Writer, // takes the lock beside the file: one program writes at a time
        Reader, // reads beside a running program (export)
    };
    enum class Failure { None, CannotOpen, Locked, Damaged };

    HistoryDatabase();
    ~HistoryDatabase();
    HistoryDatabase(const HistoryDatabase &) = delete;
    HistoryDatabase &operator=(const HistoryDatabase &) = delete;

    // Opens the file, creating it when missing (a reader never creates).
    // Never changes a file that is not a spot history, and never deletes one.
    bool open(const QString &path, Access access);
    void close();
    bool isOpen() const;
    Failure failure() const { return failure_; }
    QString errorString() const { return error_; }

    bool begin();
    bool commit();
    // Stores one spot unless the same line from the same source was stored
    // for the same spot minute; true also for such a repeat.
    bool insert(const EvaluatedSpot &spot, const QString &source);
    // Spots received and, with `reports`, reports heard in [fromMs, toMs)
    // (milliseconds since the epoch, UTC), merged oldest first (a spot before
    // a report of the same time); a visitor returns false to stop. Reports
    // come without `es`.
    bool read(qint64 fromMs, qint64 toMs, const SpotVisitor &spots,
              const ReportVisitor &reports = {});
    // When the `n`-th newest spot was received, or the earliest possible
    // time when there are fewer.
    qint64 startOfNewest(qint64 n);
    // Deletes at most `limit` spots received before `beforeMs`; the number
    // deleted, or -1 on failure.
    qint64 prune(qint64 beforeMs, int limit);
    qint64 count();

    // Stores one report unless a report from the same source, of the same
    // second, transmitter, receiver and frequency (Hz) is stored (a log
    // replayed again); true also for such a repeat. false for a report
    // without a time.
    bool insertReport(const Reception &report);
    // The newest `limit` reports heard since `fromMs`, oldest first,
    // without `es`.
    bool readNewestReports(qint64 fromMs, qint64 limit, const ReportVisitor &visit);
    // Deletes at most `limit` reports heard before `beforeMs`; the number
    // deleted, or -1 on failure.
    qint64 pruneReports(qint64 beforeMs, int limit);
    qint64 countReports();
    // "ok", or what SQLite found wrong.
    QString integrityCheck();

    // The call book (src/callbook), in a table of its own: each entry
    // replaces the call's stored one. Call within begin/commit for many.
    bool writeCallBook(const QList<CallBookEntry> &entries);
    // Every stored entry, in no particular order; `visit` returns false to
    // stop. A file written before the table existed has none.
    bool readCallBook(const std::function<bool(const CallBookEntry &)> &visit);
    // Keeps the `keep` most recently learned entries; the number deleted,
    // or -1 on failure.
    qint64 pruneCallBook(qint64 keep);

private:
    bool exec(const QString &sql);
    // Binds `values` in order to the prepared `query` and runs it.
    bool execBound(QSqlQuery &query, const QVariantList &values);
    bool fail(Failure failure, const QString &what);
    bool has(const QString &table, const QString &column = QString());

    QString connection_;
    std::unique_ptr<QLockFile> lock_;
    std::unique_ptr<QSqlQuery> insert_;
    std::unique_ptr<QSqlQuery> writeCallBook_;
    std::unique_ptr<QSqlQuery> insertReport_;
    // What a file of an older version lacks (a reader never adds it).
    bool hasApproximate_ = false;
    bool hasReports_ = false;
    Failure failure_ = Failure::None;
    QString error_;
};

} // namespace zkr
