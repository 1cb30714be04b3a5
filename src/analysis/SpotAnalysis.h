#pragma once

#include "ResultPanes.h"

#include <cstdint>

namespace zkr {

struct ProgramState;
class Platform;

// The per-spot pipeline on the current Spot_Line: fields, locators, mode,
// and the Es path when the comment named two locators. `platform` shows the
// message about a malformed own locator.
void Analyse_Spot(ProgramState &state, Platform &platform);

// Prints the spot line into the panes the spot selects. When one of its
// locators lies in the own square, the first occurrence of that square in
// the line is printed in `highlightColour` and the rest in `surroundColour`;
// otherwise the whole line is in `surroundColour`. On an "ES" spot the
// free-standing mode words of Spot_Line (" ES ", " ms ", " Eme " ...) are
// first rewritten to their bracketed forms ("<ES>", "<MS>" ...).
void Print_RawLine(ProgramState &state, const ResultPanes &panes, std::uint32_t surroundColour,
                   std::uint32_t highlightColour);

} // namespace zkr
