#pragma once

namespace zkr {

// The program's one way to end: the telnet session's "not connected"
// handling, then the position and tab are saved, every window is unloaded
// and the process ends. Callers set Busy first.
class ProgramShutdown {
public:
    virtual ~ProgramShutdown() = default;
    [[noreturn]] virtual void shutDown() = 0;
};

} // namespace zkr
