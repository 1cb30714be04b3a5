#include "ScriptedPlatform.h"

#include "ProgramEnded.h"

namespace zkr {

namespace {
QString quoted(const QString &text) {
    return QLatin1Char('"') + text + QLatin1Char('"');
}
} // namespace

int ScriptedPlatform::defaultAnswer(int buttons) {
    switch (buttons & 7) {
    case MsgButtons::OkOnly:
    case MsgButtons::OkCancel:
        return MsgResult::Ok;
    case MsgButtons::AbortRetryIgnore:
        return MsgResult::Abort;
    case MsgButtons::YesNoCancel:
    case MsgButtons::YesNo:
        return MsgResult::Yes;
    case MsgButtons::RetryCancel:
        return MsgResult::Retry;
    default:
        return MsgResult::Cancel;
    }
}

int ScriptedPlatform::messageBox(const QString &text, int buttons, const QString &title) {
    int result = defaultAnswer(buttons);
    if (!messageAnswers_.empty()) {
        result = messageAnswers_.front();
        messageAnswers_.pop_front();
    }
    messages_.append(text);
    log_.append(QStringLiteral("msgbox %1 %2 %3 -> %4")
                    .arg(buttons)
                    .arg(quoted(title), quoted(text))
                    .arg(result));
    return result;
}

std::optional<QString> ScriptedPlatform::inputBox(const QString &prompt, const QString &title,
                                                  const QString &defaultText) {
    std::optional<QString> answer;
    if (inputAnswers_.empty()) {
        ++unansweredInputBoxes_;
    } else {
        answer = inputAnswers_.front();
        inputAnswers_.pop_front();
    }
    log_.append(QStringLiteral("inputbox %1 %2 %3 -> %4")
                    .arg(quoted(title), quoted(prompt), quoted(defaultText),
                         answer ? quoted(*answer) : QStringLiteral("cancel")));
    return answer;
}

void ScriptedPlatform::armBoxPlacement(std::optional<QPoint> topLeft) {
    log_.append(topLeft ? QStringLiteral("arm %1,%2").arg(topLeft->x()).arg(topLeft->y())
                        : QStringLiteral("arm centre"));
}

void ScriptedPlatform::beep(int frequencyHz, int durationMs) {
    log_.append(QStringLiteral("beep %1 %2").arg(frequencyHz).arg(durationMs));
}

bool ScriptedPlatform::notify(const QString &title, const QString &text) {
    log_.append(QStringLiteral("notify %1 %2 -> %3")
                    .arg(quoted(title), quoted(text),
                         notificationsAvailable_ ? QStringLiteral("shown")
                                                 : QStringLiteral("unavailable")));
    return notificationsAvailable_;
}

QString ScriptedPlatform::openFileDialog(const FileDialogRequest &request) {
    lastFileDialog_ = request;
    QString answer;
    if (!fileAnswers_.empty()) {
        answer = fileAnswers_.front();
        fileAnswers_.pop_front();
    }
    log_.append(QStringLiteral("filedialog %1 -> %2").arg(quoted(request.title), quoted(answer)));
    return answer;
}

bool ScriptedPlatform::openUrl(const QString &url) {
    log_.append(
        QStringLiteral("openurl %1 -> %2")
            .arg(quoted(url), openUrlResult_ ? QStringLiteral("ok") : QStringLiteral("fail")));
    return openUrlResult_;
}

void ScriptedPlatform::clearClipboard() {
    clipboard_.clear();
}

void ScriptedPlatform::setClipboardText(const QString &text) {
    clipboard_ = text;
}

void ScriptedPlatform::endProgram(int exitCode) {
    log_.append(QStringLiteral("end %1").arg(exitCode));
    throw ProgramEnded(exitCode);
}

} // namespace zkr
