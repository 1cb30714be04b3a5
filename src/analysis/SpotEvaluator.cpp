#include "SpotEvaluator.h"

#include "EsPathModel.h"
#include "ResultOutput.h"
#include "RunTimeError.h"
#include "SpotAnalysis.h"
#include "SpotWork.h"
#include "TextFunctions.h"

#include <utility>

namespace zkr {

namespace {

// Most spots print one to eight runs.
constexpr qsizetype TypicalRuns = 8;

// Prints the analysed spot as the filters and its mode say. Returns true
// when it is an Es spot whose results were printed.
bool printSpot(EvaluatedSpot &spot, const AnalysisSettings &settings) {
    if (settings.over144Only && spot.frequency < MinFrequency_MHz) {
        return false;
    }
    const bool esSpot = spot.mode == QLatin1String("ES");
    if (!settings.esSpotsOnly) {
        Print_RawLine(spot, settings);
    }
    if (!spot.es) {
        if (!settings.esSpotsOnly) {
            Print_LineEnd(spot);
        }
        return false;
    }
    if (settings.esSpotsOnly) {
        if (!esSpot) {
            return false;
        }
        Print_RawLine(spot, settings);
    }
    Print_MufField(spot);
    Print_MidSquare(spot);
    Print_FotField(spot);
    Print_AzField(spot);
    return esSpot;
}

// Analyses and prints the spot whose line is set. `shapeLine` may rebuild
// the line between analysis and printing. A run-time error abandons the
// spot; a line it left half printed is still ended, so that no later spot
// joins it.
template <typename ShapeLine>
void evaluate(SpotWork &work, const AnalysisSettings &settings, ShapeLine &&shapeLine) {
    EvaluatedSpot &spot = work.spot;
    spot.runs.reserve(TypicalRuns);
    try {
        Analyse_Spot(work, settings);
        shapeLine(spot);
        if (spot.mode == QLatin1String("ES")) {
            Bracket_ModeWords(spot.line);
        }
        spot.esResultPrinted = printSpot(spot, settings);
    } catch (const RunTimeError &error) {
        spot.error = error.userText();
        if (!spot.runs.isEmpty()) {
            Print_LineEnd(spot);
        }
    }
    spot.panes = spot.runs.isEmpty() ? 0 : Selected_Panes(spot);
}

} // namespace

SpotEvaluator::SpotEvaluator(AnalysisSettings settings) : settings_(std::move(settings)) {}

void SpotEvaluator::setSettings(AnalysisSettings settings) {
    settings_ = std::move(settings);
}

EvaluatedSpot SpotEvaluator::evaluateClusterLine(QStringView received, bool utf8) const {
    SpotWork work;
    work.utf8Line = utf8;
    work.spot.line = Prepare_ClusterLine(received, utf8);
    evaluate(work, settings_, [](EvaluatedSpot &) {});
    return std::move(work.spot);
}

EvaluatedSpot SpotEvaluator::evaluateWebLine(QStringView pageLine) const {
    SpotWork work;
    work.spot.line = Clean_SpotLine(trimBlanks(pageLine));
    const int timeColumn = settings_.columns[8];
    evaluate(work, settings_, [timeColumn](EvaluatedSpot &spot) {
        // The printed line takes the shape of a cluster line.
        spot.line = mid(spot.line, 1, timeColumn - 1) + QStringLiteral("  ") + spot.time +
                    QLatin1Char(' ') + spot.tail1 + QLatin1Char(' ') + spot.tail2;
    });
    return std::move(work.spot);
}

QLatin1StringView spotSourceName(SpotSource source) {
    switch (source) {
    case SpotSource::Cluster:
        return QLatin1StringView("cluster");
    case SpotSource::File:
        return QLatin1StringView("file");
    case SpotSource::Web:
        return QLatin1StringView("web");
    }
    return {};
}

QLatin1StringView locatedName(Located how) {
    switch (how) {
    case Located::Comment:
        return QLatin1StringView("comment");
    case Located::CallBook:
        return QLatin1StringView("callbook");
    case Located::Country:
        return QLatin1StringView("country");
    }
    return {};
}

QDateTime EvaluatedSpot::spotTimeUtc() const {
    const QString digits = time.trimmed();
    bool hoursOk = false;
    bool minutesOk = false;
    const int hours = digits.left(2).toInt(&hoursOk);
    const int minutes = digits.mid(2, 2).toInt(&minutesOk);
    if (!received.isValid() || digits.size() < 4 || !hoursOk || !minutesOk || hours > 23 ||
        minutes > 59) {
        return received;
    }
    const QDateTime base = received.toUTC();
    QDateTime made(base.date(), QTime(hours, minutes), Qt::UTC);
    // A spot from 2359Z that arrives at 0001Z was made yesterday.
    if (made > base.addSecs(3600)) {
        made = made.addDays(-1);
    }
    return made;
}

} // namespace zkr
