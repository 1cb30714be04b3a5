#pragma once

#include "EvaluatedSpot.h"
#include "SpotEvaluator.h"

#include <QDateTime>
#include <QObject>
#include <QStringList>

#include <functional>

namespace zkr {

// A stage every evaluated spot passes before it is emitted: it may learn from
// the spot and give it an approximate path (see src/callbook). It must
// leave the printed line, the runs and `es` alone.
class SpotLocator {
public:
    virtual ~SpotLocator() = default;
    // `received` is the line as it came (a cluster line before it is cut to
    // 75 characters, or the page line).
    virtual void locate(EvaluatedSpot &spot, QStringView received,
                        const AnalysisSettings &settings) = 0;
};

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
    // The stage for spots whose comment does not locate both ends; none by
    // default. Not owned: it must stay alive while it is set.
    void setLocator(SpotLocator *locator) { locator_ = locator; }

    // Whether an evaluated cluster line is a spot: a "DX de " line without a
    // positive frequency is a notice.
    static bool isClusterSpot(const EvaluatedSpot &spot) { return spot.frequency > 0; }

    // Evaluates a cluster or file line (`utf8`: it came as UTF-8) and emits
    // spotEvaluated when it is a spot. Page lines are the web's.
    void evaluateClusterLine(const QString &line, bool utf8 = false,
                             SpotSource source = SpotSource::Cluster);
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
    SpotLocator *locator_ = nullptr;
    QDateTime pageReceived_;
    unsigned panesWithEs_ = 0;
};

} // namespace zkr
