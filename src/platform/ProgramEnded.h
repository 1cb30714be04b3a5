#pragma once

#include <exception>

namespace zkr {

// Thrown by the scripted platform where the real one ends the process, so
// that a test can watch the program end without ending itself.
class ProgramEnded : public std::exception {
public:
    explicit ProgramEnded(int exitCode) : exitCode_(exitCode) {}
    int exitCode() const { return exitCode_; }
    const char *what() const noexcept override { return "program ended"; }

private:
    int exitCode_;
};

} // namespace zkr
