#pragma once

#include <QString>

#include <cstdint>

namespace zkr {

struct EvaluatedSpot;

// The colours of the result output, &H00BBGGRR values.
inline constexpr std::uint32_t Color_Black = 0, Color_Magenta = 0xFF00FF, Color_Grey = 0xB0B0B0,
                               Color_Blue = 0xFF0000;

// What a web page pane without an Es result says.
inline const QString NoEsSpotsText = QStringLiteral("Sorry - no Es-spots found !");

// Which panes take the output of the spot, bit i for pane i: pane 0
// always, pane 1 for 30 <= frequency <= 300, pane 2 for 144 <= f <= 148,
// pane 3 when the mode is "ES".
unsigned Selected_Panes(const EvaluatedSpot &spot);

// whole(x + 0.5): x rounded half up to an integer, as every printed number
// is. Throws RunTimeError(Overflow) for a value that is not finite or too
// large to print as a whole number.
long long Round_Half_Up(double x);

// Whether the Es result of the spot is doubtful (printed "Es? "): no mode
// marker, or a MUF `muf` (rounded) too high for the spot's band.
bool Is_DoubtfulEs(const EvaluatedSpot &spot, long long muf);

// The field printers of a computed spot (its `es` is set), in the order of
// the line: MUF field, midpoint square, FOT field, azimuth/elevation field
// (which ends the line). Each appends its text to the spot's runs.

// "Es? " for a doubtful result, else four blanks, then "MUF=" and the Es
// MUF.
void Print_MufField(EvaluatedSpot &spot);
// "@" and the square of the midpoint, then a blank.
void Print_MidSquare(EvaluatedSpot &spot);
// " FOT=" and the own MUF, or eleven blanks when it rounds to 0 or less.
void Print_FotField(EvaluatedSpot &spot);
// The far square, course and elevation towards the cloud when it is nearer
// than Distance_Limit, then in every case the line end.
void Print_AzField(EvaluatedSpot &spot);
// CR LF in black.
void Print_LineEnd(EvaluatedSpot &spot);

} // namespace zkr
