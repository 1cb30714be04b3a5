#pragma once

#include <QString>

#include <cstdint>

namespace zkr {

// The labels and console fields that show the telnet session's state.
class SessionView {
public:
    virtual ~SessionView() = default;

    // The main window's status label: caption and background, made visible.
    virtual void setStatusLabel(const QString &caption, std::uint32_t bgrColour) = 0;
    // The console's connection label.
    virtual void setConsoleState(const QString &caption, std::uint32_t bgrColour) = 0;
    // Fills the console's host, port and call fields; the console is loaded
    // minimised, not shown.
    virtual void prepareConsole(const QString &host, const QString &port, const QString &call) = 0;
    // Appends a received chunk to the console's record pane.
    virtual void appendConsole(const QString &chunk) = 0;
};

} // namespace zkr
