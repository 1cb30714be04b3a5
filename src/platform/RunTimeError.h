#pragma once

#include <QString>

#include <stdexcept>

namespace zkr {

class Platform;

// A fault that abandons the current step (16-bit overflow, a bad argument,
// a floating-point fault). Event handlers catch it and report it with
// reportRunTimeError; the program itself goes on.
class RunTimeError : public std::runtime_error {
public:
    enum Code {
        InvalidArgument = 5,
        Overflow = 6,
        SubscriptOutOfRange = 9,
        DivisionByZero = 11,
        FileNotFound = 53,
        TypeMismatch = 13,
    };

    explicit RunTimeError(Code code);
    RunTimeError(Code code, const QString &detail);

    Code code() const { return code_; }
    // The text shown to the user, "Run-time error '6':" and the description.
    QString userText() const;
    static QString description(Code code);

private:
    Code code_;
    QString detail_;
};

// Shows the error the way the program reports every run-time error: a beep,
// then a centred box with the error text.
void reportRunTimeError(Platform &platform, const RunTimeError &error);

} // namespace zkr
