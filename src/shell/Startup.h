#pragma once

#include <QPoint>
#include <QSize>
#include <QString>

namespace zkr {

struct ProgramState;
class Platform;
class StartupWindow;

// The main window's load: fills the program-wide state with its defaults,
// reads or creates the settings, chooses the run mode and starts the source.
// It may run again later (the telnet console's Connect), so every default
// that must survive a second run is only set when still empty.
void Form_Load(ProgramState &state, Platform &platform, StartupWindow &window);

// Applies the one command-line option. The whole argument text is
// upper-cased and compared whole; anything unknown is reported with a beep
// and a message and leaves the run mode as it is.
void Apply_CommandLine(ProgramState &state, Platform &platform, const QString &arguments);

// Where the main window goes: the saved left/top, or centred on the screen
// for an empty value. Throws RunTimeError(Overflow) for a saved value that
// is no usable coordinate.
QPoint Main_WindowPosition(const QString &posLeft, const QString &posTop, QSize screen,
                           QSize window);

bool Is_DeveloperWorkstation(const QString &computerName);

} // namespace zkr
