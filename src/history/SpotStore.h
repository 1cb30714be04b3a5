#pragma once

#include "CallBook.h"
#include "EvaluatedSpot.h"
#include "Reception.h"

#include <QDateTime>
#include <QObject>
#include <QString>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <variant>

namespace zkr {

// Writes evaluated spots, reception reports and the call book's changes into
// the history file on a thread of its own, with its own connection: the
// caller only queues, so a flood never waits for the disk. Rows are
// committed in batches at least every CommitIntervalMs, so a killed program
// loses at most that much. Old spots and reports are deleted in small
// batches between the writes.
//
// Every signal is emitted in the thread that owns the store.
class SpotStore : public QObject {
    Q_OBJECT
public:
    static constexpr qsizetype QueueLimit = 200000; // 20 s of a 10,000 spots/s flood
    static constexpr int CommitIntervalMs = 250;
    static constexpr int RestoreChunk = 1000;
    static constexpr int PruneBatch = 2000;
    static constexpr int PruneIntervalMs = 60000;

    explicit SpotStore(QObject *parent = nullptr);
    // Commits what is queued, then stops.
    ~SpotStore() override;

    // Opens (or creates) the file; opened() or unavailable() follows.
    // `retentionDays` 0 keeps every spot.
    void open(const QString &path, int retentionDays);
    // Queues a spot and returns at once. false when the store cannot take
    // it: not open, failed, or its queue is full (the spot is then counted
    // in droppedCount()). Spots and reports share the queue.
    bool add(const EvaluatedSpot &spot, const QString &source);
    // The same for a report; false also for one without a time.
    bool addReport(const Reception &report);
    // Queues changed entries of the call book (CallBook::takeChanges()).
    void addCallBook(const QList<CallBookEntry> &entries);
    // The own locator the Es paths of restored and exported reports are
    // computed for; none (empty) leaves them without `es`.
    void setOwnLocator(const QString &locator);
    // Reads the spots received since `since` (at most the newest `limit`)
    // and hands them out oldest first: restored() in chunks, then
    // restoreFinished().
    void restore(const QDateTime &since, qint64 limit);
    // The same for the reports heard since `since`: restoredReports() in
    // chunks, then reportsRestoreFinished().
    void restoreReports(const QDateTime &since, qint64 limit);
    // Keeps the `keep` most recently learned entries of the stored call
    // book and hands them out: callBookRestored() in chunks.
    void restoreCallBook(qint64 keep);
    // Writes the spots received in [from, to) as CSV into `fileName`;
    // exportFinished() follows.
    void exportCsv(const QDateTime &from, const QDateTime &to, const QString &fileName);
    // Waits until everything queued so far is committed: for the end of the
    // program and for tests, never on the way of a spot.
    void flush();
    // Flushes and stops; the store takes no more spots.
    void close();

    bool hasFailed() const { return failed_; }
    qint64 droppedCount() const { return dropped_; }

Q_SIGNALS:
    void opened(const QString &path);
    // The history cannot be used (cannot open, in use, damaged, a write
    // failed); emitted once.
    void unavailable(const QString &reason);
    // Spots and reports committed since open, repeats included.
    void committed(qint64 total);
    void restored(const QList<zkr::EvaluatedSpot> &spots);
    void restoreFinished(qint64 count);
    void restoredReports(const QList<zkr::Reception> &reports);
    void reportsRestoreFinished(qint64 count);
    void callBookRestored(const QList<zkr::CallBookEntry> &entries);
    void exportFinished(bool ok, qint64 rows, const QString &message);

private:
    struct Job {
        enum class Kind {
            Spot,
            Report,
            CallBook,
            OwnLocator,
            Open,
            Restore,
            RestoreReports,
            RestoreCallBook,
            Export,
            Flush,
            Stop
        } kind;
        std::variant<std::monostate, EvaluatedSpot, Reception, QList<CallBookEntry>> row;
        QString text; // source of a spot, path of Open and Export, the own locator
        qint64 from = 0;
        qint64 to = 0; // Restore: the most rows
        std::function<void()> done;
    };
    void push(Job job);
    bool queueRow(Job job);
    void run();
    void post(std::function<void()> emitter);
    template <typename Row, typename Signal> void postChunk(QList<Row> &chunk, Signal signal);

    std::mutex mutex_;
    std::condition_variable wake_;
    std::deque<Job> queue_;
    qsizetype queuedSpots_ = 0;
    bool closed_ = false;
    std::atomic<bool> failed_{false};
    std::atomic<qint64> dropped_{0};
    std::thread thread_;
};

} // namespace zkr
