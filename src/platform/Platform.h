#pragma once

#include <QPoint>
#include <QSize>
#include <QString>

#include <optional>

namespace zkr {

// Button sets and icons of a message box, in the numeric codes the program's
// texts were written against (the sum of one button set and one icon).
namespace MsgButtons {
inline constexpr int OkOnly = 0;
inline constexpr int OkCancel = 1;
inline constexpr int AbortRetryIgnore = 2;
inline constexpr int YesNoCancel = 3;
inline constexpr int YesNo = 4;
inline constexpr int RetryCancel = 5;
inline constexpr int CancelTryAgainContinue = 6;
inline constexpr int Critical = 16;
inline constexpr int Question = 32;
inline constexpr int Exclamation = 48;
inline constexpr int Information = 64;
} // namespace MsgButtons

// The button a message box was closed with.
namespace MsgResult {
inline constexpr int Ok = 1;
inline constexpr int Cancel = 2;
inline constexpr int Abort = 3;
inline constexpr int Retry = 4;
inline constexpr int Ignore = 5;
inline constexpr int Yes = 6;
inline constexpr int No = 7;
inline constexpr int TryAgain = 10;
inline constexpr int Continue = 11;
} // namespace MsgResult

struct FileDialogRequest {
    QString title;
    // Pairs of description and patterns, "Text files|*.txt;*.log|All|*.*".
    QString filter;
    int filterIndex = 1; // 1-based
    QString initialFolder;
    bool mustExist = false;
    bool save = false; // asks where to write a new file, not for one to read
    // Added to a name typed without an extension, before the dialog asks
    // whether to replace an existing file ("csv").
    QString defaultSuffix;
};

// Per-user folders of the desktop's conventions.
enum class UserFolder {
    Config,    // settings (~/.config/zkr_muf)
    Data,      // records, history, the user's own cluster list (~/.local/share/zkr_muf)
    Documents, // the user's documents (~/Documents), where exports are offered first
};

// The desktop's folder of that kind for this program. It does not depend on
// the application's name, so the program and the headless tool agree.
QString standardUserFolder(UserFolder kind);

// Everything the program asks of the desktop. All windows and dialogs go
// through this interface, so that tests can script a whole start-up with a
// fake and read back every box and beep in order.
class Platform {
public:
    virtual ~Platform() = default;

    // Shows a modal message box; `buttons` is a MsgButtons sum, the result a
    // MsgResult value.
    virtual int messageBox(const QString &text, int buttons, const QString &title) = 0;
    // Shows a modal input box. std::nullopt means Cancel, which is distinct
    // from OK with an empty field.
    virtual std::optional<QString> inputBox(const QString &prompt, const QString &title,
                                            const QString &defaultText) = 0;
    // Places the next message or input box: centred over the active window
    // when no position is given, else with its top-left corner at (x, y).
    // One arming places exactly one box.
    virtual void armBoxPlacement(std::optional<QPoint> topLeft) = 0;
    virtual void beep(int frequencyHz, int durationMs) = 0;
    // Shows a desktop notification without waiting; false when the desktop
    // has no notification service (the caller then says it elsewhere).
    virtual bool notify(const QString &title, const QString &text) = 0;
    // Returns the chosen file, or "" when the user cancelled.
    virtual QString openFileDialog(const FileDialogRequest &request) = 0;
    // Opens a web page or mailto: target with the desktop's handler.
    virtual bool openUrl(const QString &url) = 0;
    // Lets pending window, timer and network events run once.
    virtual void processEvents() = 0;
    virtual void clearClipboard() = 0;
    virtual void setClipboardText(const QString &text) = 0;
    // The value of an environment variable, "" when missing.
    virtual QString environmentValue(const QString &name) = 0;
    virtual QString applicationFolder() = 0;
    // Where this user's files of that kind belong; the folder may not exist yet.
    virtual QString userFolder(UserFolder kind) = 0;
    // The whole argument text after the program's own name.
    virtual QString commandLine() = 0;
    virtual QSize screenSize() = 0;
    // Ends the process at once; never returns.
    [[noreturn]] virtual void endProgram(int exitCode) = 0;
};

} // namespace zkr
