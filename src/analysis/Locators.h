#pragma once

#include <QString>

namespace zkr {

struct ProgramState;

// Checks a Maidenhead locator of 4 or 6 characters by character code
// (so lower case fails): field A-R, square 0-9, subsquare A-X. Sets
// Locator_Wrong and returns it.
bool Check_Locator(ProgramState &state, const QString &locator);

} // namespace zkr
