#include "SpotPipeline.h"

#include <utility>

namespace zkr {

SpotPipeline::SpotPipeline(QObject *parent) : QObject(parent) {}

void SpotPipeline::setSettings(AnalysisSettings settings) {
    evaluator_.setSettings(std::move(settings));
}

void SpotPipeline::evaluateClusterLine(const QString &line) {
    const EvaluatedSpot spot = evaluator_.evaluateClusterLine(line);
    if (isClusterSpot(spot)) {
        Q_EMIT spotEvaluated(spot);
    }
}

void SpotPipeline::evaluatePage(const QStringList &pageLines) {
    Q_EMIT pageStarted();
    unsigned panesWithEs = 0;
    for (const QString &line : pageLines) {
        const EvaluatedSpot spot = evaluator_.evaluateWebLine(line);
        if (spot.esResultPrinted) {
            panesWithEs |= spot.panes;
        }
        Q_EMIT spotEvaluated(spot);
    }
    Q_EMIT pageFinished(panesWithEs);
}

} // namespace zkr
