#include "SpotPipeline.h"

#include <utility>

namespace zkr {

SpotPipeline::SpotPipeline(QObject *parent)
    : QObject(parent), clock_([] { return QDateTime::currentDateTimeUtc(); }) {}

void SpotPipeline::setClock(std::function<QDateTime()> clock) {
    clock_ = std::move(clock);
}

void SpotPipeline::setSettings(AnalysisSettings settings) {
    evaluator_.setSettings(std::move(settings));
}

void SpotPipeline::evaluateClusterLine(const QString &line, bool utf8, SpotSource source) {
    EvaluatedSpot spot = evaluator_.evaluateClusterLine(line, utf8);
    if (isClusterSpot(spot)) {
        spot.received = clock_();
        spot.source = source;
        if (locator_ != nullptr) {
            locator_->locate(spot, line, evaluator_.settings());
        }
        Q_EMIT spotEvaluated(spot);
    }
}

void SpotPipeline::evaluatePage(const QStringList &pageLines) {
    beginPage();
    evaluatePageLines(pageLines, 0, pageLines.size());
    endPage();
}

void SpotPipeline::beginPage() {
    pageReceived_ = clock_(); // one page, one arrival
    panesWithEs_ = 0;
    Q_EMIT pageStarted();
}

void SpotPipeline::evaluatePageLines(const QStringList &pageLines, qsizetype from, qsizetype to) {
    for (qsizetype i = from; i < to; ++i) {
        EvaluatedSpot spot = evaluator_.evaluateWebLine(pageLines.at(i));
        spot.received = pageReceived_;
        spot.source = SpotSource::Web;
        if (locator_ != nullptr) {
            locator_->locate(spot, pageLines.at(i), evaluator_.settings());
        }
        if (spot.esResultPrinted) {
            panesWithEs_ |= spot.panes;
        }
        Q_EMIT spotEvaluated(spot);
    }
}

void SpotPipeline::endPage() {
    Q_EMIT pageFinished(panesWithEs_);
}

} // namespace zkr
