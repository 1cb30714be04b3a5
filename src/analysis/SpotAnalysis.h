#pragma once

#include <QString>

namespace zkr {

struct AnalysisSettings;
struct EvaluatedSpot;
struct SpotWork;

// The analysis of the spot's line: fields, locators, mode, and the Es path
// when the comment named two locators. The spot's `es` is set when the path
// was computed and the spot is an Es spot, or an unmarked one while the
// settings evaluate all spots.
void Analyse_Spot(SpotWork &work, const AnalysisSettings &settings);

// Rewrites the free-standing mode words of an Es spot's line (" ES ",
// " ms ", " Eme " ...) to their bracketed forms ("<ES>", "<MS>" ...), which
// make the mode stand out. Every replacement has the length of its word.
void Bracket_ModeWords(QString &line);

// Appends the spot's line to its runs in black. When one of its locators
// lies in the own square, the first occurrence of that square in the line
// (compared upper-cased) is in magenta.
void Print_RawLine(EvaluatedSpot &spot, const AnalysisSettings &settings);

} // namespace zkr
