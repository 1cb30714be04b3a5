#pragma once

#include "Platform.h"

#include <QElapsedTimer>
#include <QStringList>

#include <memory>
#include <utility>
#include <vector>

class QDBusConnection;
class QDialog;
class QObject;
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
    // Through the desktop's notification service (org.freedesktop.Notifications
    // on the session bus), else as a tray icon's message; false when there
    // is neither. The call does not wait for the service.
    bool notify(const QString &title, const QString &text) override;
    // The bus of the notification service (the session bus unless a test
    // brings its own).
    void setNotificationBus(const QDBusConnection &bus);
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
    // Asked of the bus daemon at most once a minute (again at once after a
    // failed notification), each question waited for 20 ms at most: a hung
    // session bus must not hold the window.
    bool notificationServiceAvailable();
    // Sends the notification; the tray shows it if the service fails.
    void sendNotification(const QString &title, const QString &text);
    bool trayMessage(const QString &title, const QString &text);

    std::unique_ptr<QDBusConnection> bus_;
    QElapsedTimer serviceAsked_;
    bool serviceAvailable_ = false;
    // Whether the service reads markup in a body, asked once; until then
    // notifications wait.
    enum class Markup { Unknown, Asked, Yes, No } markup_ = Markup::Unknown;
    std::vector<std::pair<QString, QString>> waiting_;
    // Owns the pending calls, so that no answer comes after the platform is gone.
    std::unique_ptr<QObject> calls_;
    std::unique_ptr<QSystemTrayIcon> tray_;
    bool armed_ = false;
    std::optional<QPoint> armedTopLeft_;
};

} // namespace zkr
