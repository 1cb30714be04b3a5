#pragma once

#include "CallBook.h"
#include "EvaluatedSpot.h"
#include "HistorySettings.h"
#include "Reception.h"

#include <QDateTime>
#include <QList>
#include <QObject>

#include <memory>

namespace zkr {

class SpotStore;

// The program's spot history: stores every live spot, reception report and
// the call book's changes and, at start, hands out the stored call book, then
// the spots of the last hours, oldest first, before the live spots that came
// meanwhile, then the reports of the last hours. Without a usable file it
// says so once and lets every spot through as if there were no history.
class SpotHistory : public QObject {
    Q_OBJECT
public:
    // The most spots a restore hands out: what a pane keeps.
    static constexpr qint64 RestoreLimit = 100000;
    // The most reports: what the Reports pane keeps (two hours at 100
    // reports a second would be 720,000).
    static constexpr qint64 ReportRestoreLimit = 100000;
    // The call book in the file is cut to this at start, so that it stays
    // bounded (the book in memory keeps as many).
    static constexpr qint64 CallBookLimit = 500000;

    explicit SpotHistory(QObject *parent = nullptr);
    ~SpotHistory() override;

    // Opens the file and starts the restore. With `holdLive`, live spots
    // recorded before the restore is done are held back and come after it
    // (released), so that they stay on top of the restored ones. Restored
    // and exported reports get their Es path computed for `ownLocator`;
    // without one they come without `es` and the receiver computes it.
    void start(const HistorySettings &settings, bool holdLive,
               const QString &ownLocator = QString());
    // The own locator changed: for the reports of later exports.
    void setOwnLocator(const QString &locator);
    bool isStarted() const { return store_ != nullptr; }
    // From start() until restoredReports() has handed out the last chunk.
    bool isRestoringReports() const { return restoringReports_; }
    // Commits what is queued and stops (the program ends).
    void close();

    // Stores a live spot from `source` ("web", "file" or the cluster's
    // name). true when the spot is held back until the restore is done.
    bool record(const EvaluatedSpot &spot, const QString &source);
    // Queues a report (never waits, never holds it back); false when the
    // history is off or full, or the report has no time.
    bool recordReport(const Reception &report);
    // Queues changed entries of the call book (CallBook::takeChanges()).
    void recordCallBook(const QList<CallBookEntry> &entries);
    void exportCsv(const QDateTime &from, const QDateTime &to, const QString &fileName);

    SpotStore *store() const { return store_.get(); }

Q_SIGNALS:
    // Stored spots, oldest first, in chunks.
    void restored(const QList<zkr::EvaluatedSpot> &spots);
    // The restore is done; these live spots were held back meanwhile.
    void released(const QList<zkr::EvaluatedSpot> &spots);
    // Stored reports of the last RestoreHours, oldest first, in chunks,
    // after the spots; live reports are not held back meanwhile.
    void restoredReports(const QList<zkr::Reception> &reports);
    void reportsRestoreFinished();
    // The stored call book, in chunks, before the spots.
    void callBookRestored(const QList<zkr::CallBookEntry> &entries);
    // Why the history is off; once.
    void statusMessage(const QString &text);
    void exportFinished(bool ok, qint64 rows, const QString &message);

private:
    std::unique_ptr<SpotStore> store_;
    bool holding_ = false;
    bool restoringReports_ = false;
    QList<EvaluatedSpot> held_;
};

} // namespace zkr
