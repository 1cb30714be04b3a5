#include "SpotPipeline.h"

#include <utility>

namespace zkr {

SpotPipeline::SpotPipeline(QObject *parent)
    : QObject(parent), clock_([] { return QDateTime::currentDateTimeUtc(); }) {}

void SpotPipeline::setClock(std::function<QDateTime()> clock) { clock_ = std::move(clock); }

void SpotPipeline::setSettings(AnalysisSettings settings) {
    evaluator_.setSettings(std::move(settings));
}

void SpotPipeline::evaluateClusterLine(const QString &line) {
    EvaluatedSpot spot = evaluator_.evaluateClusterLine(line);
    if (isClusterSpot(spot)) {
        spot.received = clock_();
        Q_EMIT spotEvaluated(spot);
    }
}

void SpotPipeline::evaluatePage(const QStringList &pageLines) {
    Q_EMIT pageStarted();
    unsigned panesWithEs = 0;
    const QDateTime received = clock_(); // one page, one arrival
    for (const QString &line : pageLines) {
        EvaluatedSpot spot = evaluator_.evaluateWebLine(line);
        spot.received = received;
        if (spot.esResultPrinted) {
            panesWithEs |= spot.panes;
        }
        Q_EMIT spotEvaluated(spot);
    }
    Q_EMIT pageFinished(panesWithEs);
}

} // namespace zkr
