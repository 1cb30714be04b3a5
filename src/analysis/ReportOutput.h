#pragma once

#include "EvaluatedSpot.h"

#include <QList>

namespace zkr {

struct Reception;

// Whether a report belongs in the Reports pane: its path was computed and
// its cloud lies within Distance_Limit of the own station.
bool Is_ReportInRange(const Reception &report);

// The report's line in the Reports pane, its CR LF as the last run:
//   "1830Z  50.3142 FT8  -12 EA7ABC     IM76   > DL1ABC     JO62QM 2126 km wsjtx       "
// followed, when its path was computed, by the Es fields of a spot's line,
// coloured by the same rules (grey below the own horizon, magenta from
// 144 MHz). A path that is no single Es hop is marked "Es? " like a
// doubtful spot.
QList<TextRun> Report_Runs(const Reception &report);

} // namespace zkr
