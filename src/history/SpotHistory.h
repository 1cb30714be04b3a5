#pragma once

#include "EvaluatedSpot.h"
#include "HistorySettings.h"

#include <QDateTime>
#include <QList>
#include <QObject>

#include <memory>

namespace zkr {

class SpotStore;

// The program's spot history: stores every live spot and, at start, hands
// out the spots of the last hours, oldest first, before the live spots that
// came meanwhile. Without a usable file it says so once and lets every spot
// through as if there were no history.
class SpotHistory : public QObject {
    Q_OBJECT
public:
    // The most spots a restore hands out: what a pane keeps.
    static constexpr qint64 RestoreLimit = 100000;

    explicit SpotHistory(QObject *parent = nullptr);
    ~SpotHistory() override;

    // Opens the file and starts the restore. With `holdLive`, live spots
    // recorded before the restore is done are held back and come after it
    // (released), so that they stay on top of the restored ones.
    void start(const HistorySettings &settings, bool holdLive);
    bool isStarted() const { return store_ != nullptr; }
    // Commits what is queued and stops (the program ends).
    void close();

    // Stores a live spot from `source` ("web", "file" or the cluster's
    // name). true when the spot is held back until the restore is done.
    bool record(const EvaluatedSpot &spot, const QString &source);
    void exportCsv(const QDateTime &from, const QDateTime &to, const QString &fileName);

    SpotStore *store() const { return store_.get(); }

Q_SIGNALS:
    // Stored spots, oldest first, in chunks.
    void restored(const QList<zkr::EvaluatedSpot> &spots);
    // The restore is done; these live spots were held back meanwhile.
    void released(const QList<zkr::EvaluatedSpot> &spots);
    // Why the history is off; once.
    void statusMessage(const QString &text);
    void exportFinished(bool ok, qint64 rows, const QString &message);

private:
    std::unique_ptr<SpotStore> store_;
    bool holding_ = false;
    QList<EvaluatedSpot> held_;
};

} // namespace zkr
