#pragma once

#include "EvaluatedSpot.h"
#include "SpotEvaluator.h"

#include <QDateTime>
#include <QObject>
#include <QStringList>

#include <functional>

namespace zkr {

// The one road of a spot: a line goes in, an evaluated spot comes out to
// every subscriber (panes, console, headless output, alerts, history).
class SpotPipeline : public QObject {
    Q_OBJECT
public:
    explicit SpotPipeline(QObject *parent = nullptr);

    const AnalysisSettings &settings() const { return evaluator_.settings(); }
    void setSettings(AnalysisSettings settings);
    // Where the received time of each spot comes from (UTC); the system
    // clock unless a test or a replay sets another.
    void setClock(std::function<QDateTime()> clock);

    // Whether an evaluated cluster line is a spot: a "DX de " line without a
    // positive frequency is a notice.
    static bool isClusterSpot(const EvaluatedSpot &spot) { return spot.frequency > 0; }

    // Evaluates a cluster or file line (`utf8`: it came as UTF-8) and emits
    // spotEvaluated when it is a spot.
    void evaluateClusterLine(const QString &line, bool utf8 = false);
    // Evaluates the lines of one web spot page: pageStarted, a spotEvaluated
    // for every line, then pageFinished with the panes that got Es results.
    void evaluatePage(const QStringList &pageLines);
    // The same in parts, so that a large page can be evaluated a slice per
    // event-loop turn: beginPage, lines [from, to) in order, endPage.
    void beginPage();
    void evaluatePageLines(const QStringList &pageLines, qsizetype from, qsizetype to);
    void endPage();

Q_SIGNALS:
    void spotEvaluated(const zkr::EvaluatedSpot &spot);
    void pageStarted();
    void pageFinished(unsigned panesWithEs);

private:
    SpotEvaluator evaluator_;
    std::function<QDateTime()> clock_;
    QDateTime pageReceived_;
    unsigned panesWithEs_ = 0;
};

} // namespace zkr
