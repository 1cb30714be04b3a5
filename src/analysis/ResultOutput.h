#pragma once

#include "ResultPanes.h"

#include <QString>
#include <QStringView>

#include <cstdint>

namespace zkr {

class Pane;
struct ProgramState;

// Inserts `text` at the pane's caret in `colour` (&H00BBGGRR); the caret
// ends behind the new text.
void Print_Colored(Pane &pane, QStringView text, std::uint32_t colour);

// Which panes take the output of the current spot, bit i for pane i: pane 0
// always, pane 1 for 30 <= Spot_Frequency <= 300, pane 2 for 144 <= f <= 148,
// pane 3 when Spot_Mode is "ES".
unsigned Selected_Panes(const ProgramState &state);

// Prints `text` in `colour` into every pane that the current spot selects.
void Print_ToSelected(const ProgramState &state, const ResultPanes &panes, QStringView text,
                      std::uint32_t colour);

// whole(x + 0.5): x rounded half up to an integer, as every printed number
// is. Throws RunTimeError(Overflow) for a value that is not finite or too
// large to print as a whole number.
long long Round_Half_Up(double x);

// A colour text of the program state ("0", "16711935") as a colour value.
// Throws RunTimeError(TypeMismatch) for a text that is not a number and
// RunTimeError(Overflow) for one beyond 32 bits.
std::uint32_t Colour_Value(const QString &text);

// The field printers of a computed spot, in the order of the line: MUF
// field, midpoint square, FOT field, azimuth/elevation field (which ends the
// line). Each prints into the panes that Selected_Panes chooses.

// Sets Es_Flag ("Es? " for a doubtful result, else four blanks), then
// prints it with "MUF=" and the Es MUF.
void Print_MufField(ProgramState &state, const ResultPanes &panes);
// "@" and the square of the midpoint, then a blank.
void Print_MidSquare(const ProgramState &state, const ResultPanes &panes);
// " FOT=" and the own MUF, or eleven blanks when it rounds to 0 or less.
void Print_FotField(const ProgramState &state, const ResultPanes &panes);
// The far square, course and elevation towards the cloud when it is nearer
// than Distance_Limit, then in every case the line end.
void Print_AzField(const ProgramState &state, const ResultPanes &panes);
// CR LF in black.
void Print_LineEnd(const ProgramState &state, const ResultPanes &panes);

} // namespace zkr
