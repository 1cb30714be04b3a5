#pragma once

#include <QString>

namespace zkr {

struct ProgramState;
class Platform;
class MainStatusLabel;

// Arms the placement of the next message or input box: centred over the
// program's active window. Call it right before showing the box.
void MsgBox_Pos(Platform &platform);
// Arms the placement at the given top-left corner in pixels, each rounded
// half to even. Throws RunTimeError(Overflow) beyond 32 bits.
void MsgBox_Pos(Platform &platform, double x, double y);

// The warning of a web download that could not connect. Despite the title it
// once had, it waits for the user; the download closes its own connection.
void MsgBox_Timed(ProgramState &state, Platform &platform, MainStatusLabel &status);

} // namespace zkr
