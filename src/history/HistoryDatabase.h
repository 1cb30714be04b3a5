#pragma once

#include "EvaluatedSpot.h"

#include <QString>

#include <functional>
#include <memory>

class QLockFile;
class QSqlQuery;

namespace zkr {

struct CallBookEntry;

// The spot history file: one SQLite connection, used by one thread only.
// Rows hold the spot's line, its source ("web", "file" or the cluster's
// name), when it came, its fields, the Es results and the printed runs, so
// that a spot read back prints exactly as it did.
class HistoryDatabase {
public:
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
    // Spots received in [fromMs, toMs) (milliseconds since the epoch, UTC),
    // oldest first; `visit` returns false to stop.
    bool read(qint64 fromMs, qint64 toMs,
              const std::function<bool(const EvaluatedSpot &, const QString &source)> &visit);
    // When the `n`-th newest spot was received, or the earliest possible
    // time when there are fewer.
    qint64 startOfNewest(qint64 n);
    // Deletes at most `limit` spots received before `beforeMs`; the number
    // deleted, or -1 on failure.
    qint64 prune(qint64 beforeMs, int limit);
    qint64 count();
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
    bool fail(Failure failure, const QString &what);

    QString connection_;
    std::unique_ptr<QLockFile> lock_;
    std::unique_ptr<QSqlQuery> insert_;
    std::unique_ptr<QSqlQuery> writeCallBook_;
    Failure failure_ = Failure::None;
    QString error_;
};

} // namespace zkr
