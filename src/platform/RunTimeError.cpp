#include "RunTimeError.h"

#include "Platform.h"

namespace zkr {

RunTimeError::RunTimeError(Code code) : RunTimeError(code, QString()) {}

RunTimeError::RunTimeError(Code code, const QString &detail)
    : std::runtime_error(description(code).toStdString()), code_(code), detail_(detail) {}

QString RunTimeError::description(Code code) {
    switch (code) {
    case InvalidArgument:
        return QStringLiteral("Invalid procedure call or argument");
    case Overflow:
        return QStringLiteral("Overflow");
    case SubscriptOutOfRange:
        return QStringLiteral("Subscript out of range");
    case DivisionByZero:
        return QStringLiteral("Division by zero");
    case TypeMismatch:
        return QStringLiteral("Type mismatch");
    case FileNotFound:
        return QStringLiteral("File not found");
    }
    return QStringLiteral("Application-defined error");
}

QString RunTimeError::userText() const {
    QString text = QStringLiteral("Run-time error '%1':\r\n\r\n%2")
                       .arg(static_cast<int>(code_))
                       .arg(description(code_));
    if (!detail_.isEmpty()) {
        text += QStringLiteral(" (") + detail_ + QLatin1Char(')');
    }
    return text;
}

void reportRunTimeError(Platform &platform, const RunTimeError &error) {
    platform.beep(800, 200);
    platform.armBoxPlacement(std::nullopt);
    platform.messageBox(error.userText(), MsgButtons::Critical, QStringLiteral("ZKR_MUF"));
}

} // namespace zkr
