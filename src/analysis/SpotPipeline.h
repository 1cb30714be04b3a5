#pragma once

#include "EvaluatedSpot.h"
#include "SpotEvaluator.h"

#include <QObject>
#include <QStringList>

namespace zkr {

// The one road of a spot: a line goes in, an evaluated spot comes out to
// every subscriber (panes, console, headless output, alerts, history).
class SpotPipeline : public QObject {
    Q_OBJECT
public:
    explicit SpotPipeline(QObject *parent = nullptr);

    const AnalysisSettings &settings() const { return evaluator_.settings(); }
    void setSettings(AnalysisSettings settings);

    // Evaluates a cluster or file line and emits spotEvaluated.
    void evaluateClusterLine(const QString &line);
    // Evaluates the lines of one web spot page: pageStarted, a spotEvaluated
    // for every line, then pageFinished with the panes that got Es results.
    void evaluatePage(const QStringList &pageLines);

Q_SIGNALS:
    void spotEvaluated(const zkr::EvaluatedSpot &spot);
    void pageStarted();
    void pageFinished(unsigned panesWithEs);

private:
    SpotEvaluator evaluator_;
};

} // namespace zkr
