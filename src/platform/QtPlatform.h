#pragma once

#include "Platform.h"

class QDialog;

namespace zkr {

// The desktop platform on Qt Widgets.
class QtPlatform : public Platform {
public:
    int messageBox(const QString &text, int buttons, const QString &title) override;
    std::optional<QString> inputBox(const QString &prompt, const QString &title,
                                    const QString &defaultText) override;
    void armBoxPlacement(std::optional<QPoint> topLeft) override;
    // Qt offers only the desktop's own bell: frequency and length are the
    // desktop's, and the call does not block.
    void beep(int frequencyHz, int durationMs) override;
    QString openFileDialog(const FileDialogRequest &request) override;
    bool openUrl(const QString &url) override;
    void processEvents() override;
    void clearClipboard() override;
    void setClipboardText(const QString &text) override;
    QString environmentValue(const QString &name) override;
    QString applicationFolder() override;
    QString commandLine() override;
    QSize screenSize() override;
    [[noreturn]] void endProgram(int exitCode) override;

    // "Text|*.txt;*.log|All|*.*" to Qt's "Text (*.txt *.log);;All (*)".
    static QString toQtFilter(const QString &filter, int filterIndex, QString *selected);

private:
    // Moves the box where the last arming asked, once it is shown.
    void placeWhenShown(QDialog &box);

    bool armed_ = false;
    std::optional<QPoint> armedTopLeft_;
};

} // namespace zkr
