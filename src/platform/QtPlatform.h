#pragma once

#include "Platform.h"

#include <memory>

class QDialog;
class QSystemTrayIcon;

namespace zkr {

// The desktop platform on Qt Widgets.
class QtPlatform : public Platform {
public:
    QtPlatform();
    ~QtPlatform() override;

    int messageBox(const QString &text, int buttons, const QString &title) override;
    std::optional<QString> inputBox(const QString &prompt, const QString &title,
                                    const QString &defaultText) override;
    void armBoxPlacement(std::optional<QPoint> topLeft) override;
    // Qt offers only the desktop's own bell: frequency and length are the
    // desktop's, and the call does not block.
    void beep(int frequencyHz, int durationMs) override;
    // Through a tray icon's message, which Linux desktops show with their
    // notification service.
    bool notify(const QString &title, const QString &text) override;
    QString openFileDialog(const FileDialogRequest &request) override;
    bool openUrl(const QString &url) override;
    void processEvents() override;
    void clearClipboard() override;
    void setClipboardText(const QString &text) override;
    QString environmentValue(const QString &name) override;
    QString applicationFolder() override;
    QString userFolder(UserFolder kind) override;
    QString commandLine() override;
    QSize screenSize() override;
    [[noreturn]] void endProgram(int exitCode) override;

    // "Text|*.txt;*.log|All|*.*" to Qt's "Text (*.txt *.log);;All (*)".
    static QString toQtFilter(const QString &filter, int filterIndex, QString *selected);

private:
    // Moves the box where the last arming asked, once it is shown.
    void placeWhenShown(QDialog &box);

    std::unique_ptr<QSystemTrayIcon> tray_;
    bool armed_ = false;
    std::optional<QPoint> armedTopLeft_;
};

} // namespace zkr
