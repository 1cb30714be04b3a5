#include "SpotHistory.h"

#include "SpotStore.h"

namespace zkr {

SpotHistory::SpotHistory(QObject *parent) : QObject(parent) {}

SpotHistory::~SpotHistory() {
    close();
}

void SpotHistory::start(const HistorySettings &settings, bool holdLive, const QString &ownLocator) {
    if (store_ != nullptr) {
        return;
    }
    store_ = std::make_unique<SpotStore>();
    connect(store_.get(), &SpotStore::unavailable, this, [this](const QString &reason) {
        Q_EMIT statusMessage(QStringLiteral("Spot history off: ") + reason);
    });
    connect(store_.get(), &SpotStore::restored, this, &SpotHistory::restored);
    connect(store_.get(), &SpotStore::restoreFinished, this, [this] {
        holding_ = false;
        const QList<EvaluatedSpot> held = std::exchange(held_, {});
        Q_EMIT released(held);
    });
    connect(store_.get(), &SpotStore::exportFinished, this, &SpotHistory::exportFinished);
    connect(store_.get(), &SpotStore::restoredReports, this, &SpotHistory::restoredReports);
    connect(store_.get(), &SpotStore::reportsRestoreFinished, this, [this] {
        restoringReports_ = false;
        Q_EMIT reportsRestoreFinished();
    });
    connect(store_.get(), &SpotStore::callBookRestored, this, &SpotHistory::callBookRestored);
    store_->open(settings.databasePath, settings.retentionDays);
    store_->setOwnLocator(ownLocator);
    store_->restoreCallBook(CallBookLimit);
    if (settings.restoreHours > 0) {
        holding_ = holdLive;
        const QDateTime since =
            QDateTime::currentDateTimeUtc().addSecs(-3600LL * settings.restoreHours);
        store_->restore(since, RestoreLimit);
        store_->restoreReports(since, ReportRestoreLimit);
        restoringReports_ = true;
    }
}

void SpotHistory::setOwnLocator(const QString &locator) {
    if (store_ != nullptr) {
        store_->setOwnLocator(locator);
    }
}

void SpotHistory::close() {
    if (store_ != nullptr) {
        store_->close();
    }
}

bool SpotHistory::record(const EvaluatedSpot &spot, const QString &source) {
    if (store_ == nullptr) {
        return false;
    }
    store_->add(spot, source);
    if (holding_) {
        held_.append(spot);
    }
    return holding_;
}

bool SpotHistory::recordReport(const Reception &report) {
    return store_ != nullptr && store_->addReport(report);
}

void SpotHistory::recordCallBook(const QList<CallBookEntry> &entries) {
    if (store_ != nullptr) {
        store_->addCallBook(entries);
    }
}

void SpotHistory::exportCsv(const QDateTime &from, const QDateTime &to, const QString &fileName) {
    if (store_ == nullptr) {
        Q_EMIT exportFinished(false, 0, QStringLiteral("the spot history is off"));
        return;
    }
    store_->exportCsv(from, to, fileName);
}

} // namespace zkr
