#pragma once

#include "ResultPanes.h"

#include <QString>
#include <QStringList>

namespace zkr {

struct ProgramState;
class Platform;
class EvaluationView;

// Evaluates CurrentSpotLine, a line from the cluster or a replayed file:
// analyses it, prints it into the working panes by the filter boxes and its
// mode, puts the panes' carets back to the top (so the next spot lands above
// it) and refreshes the display. Busy is held for the whole cycle and is
// cleared whatever happens; a run-time error abandons the spot (its line is
// still ended, so no later spot joins it) and is rethrown after the cycle.
void Evaluate_ClusterLine(ProgramState &state, Platform &platform, const ResultPanes &panes,
                          EvaluationView &view);

// Evaluates one batch of web spot page lines (newest first) into emptied
// working panes, then marks every pane that got no Es spot with
// "Sorry - no Es-spots found !" and refreshes the display.
void Evaluate_SpotLines(ProgramState &state, Platform &platform, const ResultPanes &panes,
                        EvaluationView &view, const QStringList &pageLines);

// Undoes the HTML character entities of a web spot line ("&lt;", "&gt;",
// "&amp;", "&quot;", in that order, each until none is left), drops the
// degree sign, and blanks a "<>" with the six characters before it.
QString Clean_SpotLine(QString line);

} // namespace zkr
