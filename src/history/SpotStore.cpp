#include "SpotStore.h"

#include "HistoryCsv.h"
#include "HistoryDatabase.h"

#include <QSaveFile>

#include <chrono>
#include <future>
#include <limits>
#include <optional>

namespace zkr {

namespace {

using Clock = std::chrono::steady_clock;

QString describe(const HistoryDatabase &db) {
    return db.errorString();
}

} // namespace

SpotStore::SpotStore(QObject *parent) : QObject(parent), thread_([this] { run(); }) {}

SpotStore::~SpotStore() {
    close();
}

void SpotStore::post(std::function<void()> emitter) {
    QMetaObject::invokeMethod(this, std::move(emitter), Qt::QueuedConnection);
}

void SpotStore::push(Job job) {
    {
        const std::lock_guard lock(mutex_);
        if (closed_) {
            return;
        }
        queue_.push_back(std::move(job));
    }
    wake_.notify_one();
}

void SpotStore::open(const QString &path, int retentionDays) {
    push(Job{Job::Kind::Open, {}, path, retentionDays, 0, {}});
}

bool SpotStore::queueRow(Job job) {
    if (failed_) {
        return false;
    }
    {
        const std::lock_guard lock(mutex_);
        if (closed_) {
            return false;
        }
        if (queuedSpots_ >= QueueLimit) {
            ++dropped_;
            return false;
        }
        queue_.push_back(std::move(job));
        ++queuedSpots_;
    }
    wake_.notify_one();
    return true;
}

bool SpotStore::add(const EvaluatedSpot &spot, const QString &source) {
    return queueRow(Job{Job::Kind::Spot, spot, source, 0, 0, {}});
}

bool SpotStore::addReport(const Reception &report) {
    return report.time.isValid() && queueRow(Job{Job::Kind::Report, report, {}, 0, 0, {}});
}

void SpotStore::addCallBook(const QList<CallBookEntry> &entries) {
    if (!entries.isEmpty() && !failed_) {
        push(Job{Job::Kind::CallBook, entries, {}, 0, 0, {}});
    }
}

void SpotStore::setOwnLocator(const QString &locator) {
    push(Job{Job::Kind::OwnLocator, {}, locator, 0, 0, {}});
}

void SpotStore::restore(const QDateTime &since, qint64 limit) {
    push(Job{Job::Kind::Restore, {}, {}, since.toMSecsSinceEpoch(), limit, {}});
}

void SpotStore::restoreReports(const QDateTime &since, qint64 limit) {
    push(Job{Job::Kind::RestoreReports, {}, {}, since.toMSecsSinceEpoch(), limit, {}});
}

void SpotStore::restoreCallBook(qint64 keep) {
    push(Job{Job::Kind::RestoreCallBook, {}, {}, 0, keep, {}});
}

template <typename Row, typename Signal>
void SpotStore::postChunk(QList<Row> &chunk, Signal signal) {
    if (!chunk.isEmpty()) {
        post([this, rows = std::exchange(chunk, {}), signal] { Q_EMIT(this->*signal)(rows); });
    }
}

void SpotStore::exportCsv(const QDateTime &from, const QDateTime &to, const QString &fileName) {
    push(
        Job{Job::Kind::Export, {}, fileName, from.toMSecsSinceEpoch(), to.toMSecsSinceEpoch(), {}});
}

void SpotStore::flush() {
    auto done = std::make_shared<std::promise<void>>();
    std::future<void> finished = done->get_future();
    {
        const std::lock_guard lock(mutex_);
        if (closed_) {
            return;
        }
        queue_.push_back(Job{Job::Kind::Flush, {}, {}, 0, 0, [done] { done->set_value(); }});
    }
    wake_.notify_one();
    finished.wait();
}

void SpotStore::close() {
    {
        const std::lock_guard lock(mutex_);
        if (closed_) {
            return;
        }
        queue_.push_back(Job{Job::Kind::Stop, {}, {}, 0, 0, {}});
        closed_ = true;
    }
    wake_.notify_one();
    thread_.join();
}

void SpotStore::run() {
    HistoryDatabase db;
    bool usable = false;
    bool inTransaction = false;
    int retentionDays = 0;
    QString ownLocator;
    qint64 uncommitted = 0;
    qint64 total = 0;
    Clock::time_point commitDue;
    Clock::time_point pruneDue = Clock::time_point::max();

    const auto failNow = [&](const QString &reason) {
        usable = false;
        inTransaction = false;
        db.close();
        if (!failed_.exchange(true)) {
            post([this, reason] { Q_EMIT unavailable(reason); });
        }
    };
    const auto commitNow = [&] {
        if (!inTransaction) {
            return;
        }
        inTransaction = false;
        if (!db.commit()) {
            failNow(describe(db));
            return;
        }
        total += uncommitted;
        uncommitted = 0;
        post([this, count = total] { Q_EMIT committed(count); });
    };
    const auto pruneStep = [&] {
        const qint64 cutoff =
            QDateTime::currentDateTimeUtc().addDays(-retentionDays).toMSecsSinceEpoch();
        const qint64 spots = db.prune(cutoff, PruneBatch);
        const qint64 reports = spots < 0 ? -1 : db.pruneReports(cutoff, PruneBatch);
        if (reports < 0) {
            failNow(describe(db));
            return;
        }
        // A full batch means more to delete: the next batch right after the
        // rows that are waiting.
        pruneDue = Clock::now() + (spots == PruneBatch || reports == PruneBatch
                                       ? Clock::duration::zero()
                                       : std::chrono::milliseconds(PruneIntervalMs));
    };

    for (;;) {
        std::optional<Job> job;
        {
            std::unique_lock lock(mutex_);
            const Clock::time_point due =
                inTransaction ? commitDue
                              : (usable && retentionDays > 0 ? pruneDue : Clock::time_point::max());
            if (due == Clock::time_point::max()) {
                wake_.wait(lock, [this] { return !queue_.empty(); });
            } else {
                wake_.wait_until(lock, due, [this] { return !queue_.empty(); });
            }
            if (!queue_.empty()) {
                job = std::move(queue_.front());
                queue_.pop_front();
                if (job->kind == Job::Kind::Spot || job->kind == Job::Kind::Report) {
                    --queuedSpots_;
                }
            }
        }
        if (!job) {
            if (inTransaction) {
                commitNow();
            } else if (usable) {
                pruneStep();
            }
            continue;
        }
        switch (job->kind) {
        case Job::Kind::Spot:
        case Job::Kind::Report:
        case Job::Kind::CallBook: {
            if (!usable) {
                break;
            }
            if (!inTransaction) {
                if (!db.begin()) {
                    failNow(describe(db));
                    break;
                }
                inTransaction = true;
                commitDue = Clock::now() + std::chrono::milliseconds(CommitIntervalMs);
            }
            const bool written = job->kind == Job::Kind::Spot
                                     ? db.insert(std::get<EvaluatedSpot>(job->row), job->text)
                                 : job->kind == Job::Kind::Report
                                     ? db.insertReport(std::get<Reception>(job->row))
                                     : db.writeCallBook(std::get<QList<CallBookEntry>>(job->row));
            if (!written) {
                failNow(describe(db));
                break;
            }
            uncommitted += job->kind == Job::Kind::CallBook ? 0 : 1;
            // In a flood the queue never runs dry: commit on time anyway.
            if (Clock::now() >= commitDue) {
                commitNow();
            }
            break;
        }
        case Job::Kind::OwnLocator:
            ownLocator = job->text;
            break;
        case Job::Kind::Open:
            commitNow();
            usable = db.open(job->text, HistoryDatabase::Access::Writer);
            if (usable) {
                retentionDays = static_cast<int>(job->from);
                pruneDue = Clock::now();
                post([this, path = job->text] { Q_EMIT opened(path); });
            } else if (!failed_.exchange(true)) {
                post([this, reason = describe(db)] { Q_EMIT unavailable(reason); });
            }
            break;
        case Job::Kind::Restore: {
            commitNow();
            qint64 count = 0;
            if (usable) {
                const qint64 from = std::max(job->from, db.startOfNewest(job->to));
                QList<EvaluatedSpot> chunk;
                const bool read = db.read(from, std::numeric_limits<qint64>::max(),
                                          [&](const EvaluatedSpot &spot, const QString &) {
                                              chunk.append(spot);
                                              ++count;
                                              if (chunk.size() >= RestoreChunk) {
                                                  postChunk(chunk, &SpotStore::restored);
                                              }
                                              return true;
                                          });
                postChunk(chunk, &SpotStore::restored);
                if (!read) {
                    failNow(describe(db));
                }
            }
            post([this, count] { Q_EMIT restoreFinished(count); });
            break;
        }
        case Job::Kind::RestoreReports: {
            commitNow();
            qint64 count = 0;
            if (usable) {
                QList<Reception> chunk;
                const bool read =
                    db.readNewestReports(job->from, job->to, [&](const Reception &report) {
                        chunk.append(report);
                        // Derived again: the file keeps only what came in.
                        Evaluate_Reception(chunk.back(), ownLocator);
                        ++count;
                        if (chunk.size() >= RestoreChunk) {
                            postChunk(chunk, &SpotStore::restoredReports);
                        }
                        return true;
                    });
                postChunk(chunk, &SpotStore::restoredReports);
                if (!read) {
                    failNow(describe(db));
                }
            }
            post([this, count] { Q_EMIT reportsRestoreFinished(count); });
            break;
        }
        case Job::Kind::RestoreCallBook: {
            commitNow();
            if (!usable) {
                break;
            }
            QList<CallBookEntry> chunk;
            const bool read =
                db.pruneCallBook(job->to) >= 0 && db.readCallBook([&](const CallBookEntry &entry) {
                    chunk.append(entry);
                    if (chunk.size() >= RestoreChunk) {
                        postChunk(chunk, &SpotStore::callBookRestored);
                    }
                    return true;
                });
            postChunk(chunk, &SpotStore::callBookRestored);
            if (!read) {
                failNow(describe(db));
            }
            break;
        }
        case Job::Kind::Export: {
            commitNow();
            if (!usable) {
                post([this] {
                    Q_EMIT exportFinished(false, 0, QStringLiteral("the spot history is off"));
                });
                break;
            }
            QSaveFile file(job->text);
            QString error;
            std::optional<qint64> rows;
            if (file.open(QIODevice::WriteOnly)) {
                rows = exportHistoryCsv(db, QDateTime::fromMSecsSinceEpoch(job->from, Qt::UTC),
                                        QDateTime::fromMSecsSinceEpoch(job->to, Qt::UTC), file,
                                        error, ownLocator);
                if (rows && !file.commit()) {
                    rows.reset();
                    error = file.errorString();
                }
            } else {
                error = file.errorString();
            }
            post([this, ok = rows.has_value(), count = rows.value_or(0), error] {
                Q_EMIT exportFinished(ok, count, error);
            });
            break;
        }
        case Job::Kind::Flush:
            commitNow();
            job->done();
            break;
        case Job::Kind::Stop:
            commitNow();
            db.close();
            return;
        }
    }
}

} // namespace zkr
