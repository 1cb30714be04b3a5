#pragma once

#include <QString>

#include <cstdint>

namespace zkr {

class Pane;

// What the receive processor needs around it: the session to send on, the
// evaluation of one spot line, the main window's panes and labels.
class ReceiveHost {
public:
    virtual ~ReceiveHost() = default;

    // Sends text on the telnet session (Latin-1), whether or not it is open.
    virtual void sendData(const QString &text) = 0;
    // Evaluates the line the processor put into CurrentSpotLine.
    virtual void evaluateClusterLine() = 0;
    // Pane i (0 to 3) of the display set and of the working set.
    virtual Pane &displayPane(int index) = 0;
    virtual Pane &workingPane(int index) = 0;
    virtual void setStatus(const QString &caption, std::uint32_t bgrColour) = 0;
    virtual void hideWorkLabel() = 0;
    virtual void processEvents() = 0;
};

} // namespace zkr
