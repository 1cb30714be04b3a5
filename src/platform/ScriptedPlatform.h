#pragma once

#include "Platform.h"

#include <QHash>
#include <QStringList>

#include <deque>

namespace zkr {

// A platform for tests and for the headless tool: answers boxes from a
// script and records every box, beep, placement, dialog and URL in order.
// processEvents is counted, not recorded, to keep the record readable.
class ScriptedPlatform : public Platform {
public:
    // Answers, consumed in order. A box without a scripted answer gets the
    // first button of its set (OK, Abort, Yes, Cancel ...); an input box
    // without one gets Cancel; a file dialog without one gets "".
    void answerMessageBox(int result) { messageAnswers_.push_back(result); }
    void answerInputBox(std::optional<QString> answer) {
        inputAnswers_.push_back(std::move(answer));
    }
    void answerFileDialog(const QString &fileName) { fileAnswers_.push_back(fileName); }
    void setOpenUrlResult(bool ok) { openUrlResult_ = ok; }
    void setEnvironmentValue(const QString &name, const QString &value) {
        environment_[name] = value;
    }
    void setApplicationFolder(const QString &folder) { applicationFolder_ = folder; }
    void setUserFolder(UserFolder kind, const QString &folder) {
        userFolders_[static_cast<int>(kind)] = folder;
    }
    void setNotificationsAvailable(bool available) { notificationsAvailable_ = available; }
    void setCommandLine(const QString &text) { commandLine_ = text; }
    void setScreenSize(QSize size) { screenSize_ = size; }

    // One line per event, for example
    //   beep 800 200 | arm centre | msgbox 0 "title" "text" -> 1
    //   inputbox "title" "prompt" "default" -> "answer" / -> cancel
    //   notify "title" "text" -> shown / -> unavailable
    const QStringList &log() const { return log_; }
    void clearLog() { log_.clear(); }
    // Texts of the message boxes shown so far, in order.
    const QStringList &messages() const { return messages_; }
    int processEventsCount() const { return processEventsCount_; }
    int unansweredInputBoxes() const { return unansweredInputBoxes_; }
    const QString &clipboardText() const { return clipboard_; }
    const FileDialogRequest &lastFileDialog() const { return lastFileDialog_; }

    int messageBox(const QString &text, int buttons, const QString &title) override;
    std::optional<QString> inputBox(const QString &prompt, const QString &title,
                                    const QString &defaultText) override;
    void armBoxPlacement(std::optional<QPoint> topLeft) override;
    void beep(int frequencyHz, int durationMs) override;
    bool notify(const QString &title, const QString &text) override;
    QString openFileDialog(const FileDialogRequest &request) override;
    bool openUrl(const QString &url) override;
    void processEvents() override { ++processEventsCount_; }
    void clearClipboard() override;
    void setClipboardText(const QString &text) override;
    QString environmentValue(const QString &name) override { return environment_.value(name); }
    QString applicationFolder() override { return applicationFolder_; }
    QString userFolder(UserFolder kind) override { return userFolders_[static_cast<int>(kind)]; }
    QString commandLine() override { return commandLine_; }
    QSize screenSize() override { return screenSize_; }
    [[noreturn]] void endProgram(int exitCode) override;

    static int defaultAnswer(int buttons);

private:
    std::deque<int> messageAnswers_;
    std::deque<std::optional<QString>> inputAnswers_;
    std::deque<QString> fileAnswers_;
    bool openUrlResult_ = true;
    QHash<QString, QString> environment_;
    QString applicationFolder_ = QStringLiteral(".");
    QString userFolders_[3] = {QStringLiteral("./config"), QStringLiteral("./data"),
                               QStringLiteral("./documents")};
    bool notificationsAvailable_ = true;
    QString commandLine_;
    QSize screenSize_{1920, 1080};
    QStringList log_;
    QStringList messages_;
    QString clipboard_;
    FileDialogRequest lastFileDialog_;
    int processEventsCount_ = 0;
    int unansweredInputBoxes_ = 0;
};

} // namespace zkr
