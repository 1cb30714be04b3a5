#include "QtPlatform.h"

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusReply>
#include <QDesktopServices>
#include <QEvent>
#include <QFileDialog>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QSystemTrayIcon>
#include <QUrl>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace zkr {

namespace {

// The area a centred box is centred over: the program's active window, else
// its main window when shown (a box may come while another program has
// the focus), else the screen (first-run prompts come before the main
// window is shown).
QRect centringArea(const QWidget *box) {
    QWidget *active = QApplication::activeWindow();
    if (active != nullptr && active != box) {
        return active->frameGeometry();
    }
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (const QWidget *window : windows) {
        if (window != box && window->isVisible() && qobject_cast<const QMainWindow *>(window)) {
            return window->frameGeometry();
        }
    }
    const QScreen *screen = QGuiApplication::primaryScreen();
    return screen != nullptr ? screen->availableGeometry() : QRect(0, 0, 1024, 768);
}

// One-shot: moves the watched box when it is shown, before it appears on
// the screen, then removes itself.
class PlaceOnShow : public QObject {
public:
    PlaceOnShow(QDialog &box, std::optional<QPoint> topLeft)
        : QObject(&box), box_(&box), topLeft_(topLeft) {}

    bool eventFilter(QObject *watched, QEvent *event) override {
        if (watched != box_ || event->type() != QEvent::Show) {
            return false;
        }
        // A message box takes its final size in its own show handling, so
        // that runs first; the box is moved before it is mapped.
        box_->removeEventFilter(this);
        QCoreApplication::sendEvent(box_, event);
        QPoint target;
        if (topLeft_) {
            target = *topLeft_;
        } else {
            const QRect area = centringArea(box_);
            const QSize size = box_->frameGeometry().size();
            target = QPoint(area.left() + area.width() / 2 - size.width() / 2,
                            area.top() + area.height() / 2 - size.height() / 2);
        }
        box_->move(target);
        deleteLater();
        return true;
    }

private:
    QPointer<QDialog> box_;
    std::optional<QPoint> topLeft_;
};

const QString NotificationService = QStringLiteral("org.freedesktop.Notifications");
const QString NotificationPath = QStringLiteral("/org/freedesktop/Notifications");

// Boxes show their texts as they are, line ends of any kind.
QString plainLines(QString text) {
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    return text;
}

QString programTitle(const QString &title) {
    // An empty title shows the application's name, as the desktop would.
    return title.isEmpty() ? QApplication::applicationName() : title;
}

} // namespace

void QtPlatform::armBoxPlacement(std::optional<QPoint> topLeft) {
    armed_ = true;
    armedTopLeft_ = topLeft;
}

void QtPlatform::placeWhenShown(QDialog &box) {
    if (!armed_) {
        return;
    }
    armed_ = false;
    box.installEventFilter(new PlaceOnShow(box, armedTopLeft_));
}

int QtPlatform::messageBox(const QString &text, int buttons, const QString &title) {
    QMessageBox box(QApplication::activeWindow());
    box.setWindowTitle(programTitle(title));
    box.setTextFormat(Qt::PlainText);
    box.setText(plainLines(text));
    switch (buttons & 0x70) {
    case MsgButtons::Critical:
        box.setIcon(QMessageBox::Critical);
        break;
    case MsgButtons::Question:
        box.setIcon(QMessageBox::Question);
        break;
    case MsgButtons::Exclamation:
        box.setIcon(QMessageBox::Warning);
        break;
    case MsgButtons::Information:
        box.setIcon(QMessageBox::Information);
        break;
    default:
        box.setIcon(QMessageBox::NoIcon);
        break;
    }

    struct Choice {
        QAbstractButton *button;
        int result;
    };
    std::vector<Choice> choices;
    auto standard = [&](QMessageBox::StandardButton which, int result) {
        choices.push_back(Choice{box.addButton(which), result});
    };
    auto custom = [&](const char *caption, QMessageBox::ButtonRole role, int result) {
        choices.push_back(
            Choice{box.addButton(QApplication::translate("QtPlatform", caption), role), result});
    };
    switch (buttons & 7) {
    case MsgButtons::OkCancel:
        standard(QMessageBox::Ok, MsgResult::Ok);
        standard(QMessageBox::Cancel, MsgResult::Cancel);
        break;
    case MsgButtons::AbortRetryIgnore:
        standard(QMessageBox::Abort, MsgResult::Abort);
        standard(QMessageBox::Retry, MsgResult::Retry);
        standard(QMessageBox::Ignore, MsgResult::Ignore);
        break;
    case MsgButtons::YesNoCancel:
        standard(QMessageBox::Yes, MsgResult::Yes);
        standard(QMessageBox::No, MsgResult::No);
        standard(QMessageBox::Cancel, MsgResult::Cancel);
        break;
    case MsgButtons::YesNo:
        standard(QMessageBox::Yes, MsgResult::Yes);
        standard(QMessageBox::No, MsgResult::No);
        break;
    case MsgButtons::RetryCancel:
        standard(QMessageBox::Retry, MsgResult::Retry);
        standard(QMessageBox::Cancel, MsgResult::Cancel);
        break;
    case MsgButtons::CancelTryAgainContinue:
        standard(QMessageBox::Cancel, MsgResult::Cancel);
        custom("&Try Again", QMessageBox::ActionRole, MsgResult::TryAgain);
        custom("&Continue", QMessageBox::AcceptRole, MsgResult::Continue);
        break;
    default:
        standard(QMessageBox::Ok, MsgResult::Ok);
        break;
    }
    box.setDefaultButton(qobject_cast<QPushButton *>(choices.front().button));
    placeWhenShown(box);
    box.exec();
    for (const Choice &choice : choices) {
        if (box.clickedButton() == choice.button) {
            return choice.result;
        }
    }
    // Closed by Escape or the frame: the box's cancel answer if it has one.
    for (const Choice &choice : choices) {
        if (choice.result == MsgResult::Cancel || choice.result == MsgResult::No) {
            return choice.result;
        }
    }
    return choices.front().result;
}

std::optional<QString> QtPlatform::inputBox(const QString &prompt, const QString &title,
                                            const QString &defaultText) {
    QInputDialog box(QApplication::activeWindow());
    box.setWindowTitle(programTitle(title));
    box.setInputMode(QInputDialog::TextInput);
    box.setLabelText(plainLines(prompt));
    box.setTextValue(defaultText);
    const QList<QLabel *> labels = box.findChildren<QLabel *>();
    for (QLabel *label : labels) {
        label->setTextFormat(Qt::PlainText);
    }
    // Wide enough for its title and a call sign or locator: the title bar
    // would otherwise cut "ZKR_MUF" to its end.
    // The dialog sizes itself to its contents, so the field is widened.
    const QFontMetrics metrics(QApplication::font("QWorkspaceTitleBar"));
    if (auto *field = box.findChild<QLineEdit *>()) {
        field->setMinimumWidth(std::max(300, metrics.horizontalAdvance(box.windowTitle()) + 160));
    }
    placeWhenShown(box);
    if (box.exec() != QDialog::Accepted) {
        return std::nullopt;
    }
    return box.textValue();
}

QtPlatform::QtPlatform() : calls_(std::make_unique<QObject>()) {}

QtPlatform::~QtPlatform() = default;

void QtPlatform::beep(int, int) {
    QApplication::beep();
}

void QtPlatform::setNotificationBus(const QDBusConnection &bus) {
    bus_ = std::make_unique<QDBusConnection>(bus);
    markup_ = Markup::Unknown;
}

bool QtPlatform::notificationServiceAvailable() {
    constexpr int AskAgainMs = 60 * 1000;
    constexpr int WaitMs = 20;
    if (!bus_) {
        bus_ = std::make_unique<QDBusConnection>(QDBusConnection::sessionBus());
    }
    if (serviceAsked_.isValid() && serviceAsked_.elapsed() < AskAgainMs) {
        return serviceAvailable_;
    }
    serviceAsked_.start();
    serviceAvailable_ = false;
    if (!bus_->isConnected()) {
        return false;
    }
    const auto askDaemon = [this](const QString &method) {
        QDBusMessage ask = QDBusMessage::createMethodCall(
            QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
            QStringLiteral("org.freedesktop.DBus"), method);
        if (method == QLatin1String("NameHasOwner")) {
            ask << NotificationService;
        }
        return bus_->call(ask, QDBus::Block, WaitMs);
    };
    // A service the bus starts on the first call counts too.
    const QDBusReply<bool> running = askDaemon(QStringLiteral("NameHasOwner"));
    if (running.isValid() && running.value()) {
        serviceAvailable_ = true;
    } else if (running.isValid()) {
        const QDBusReply<QStringList> startable = askDaemon(QStringLiteral("ListActivatableNames"));
        serviceAvailable_ = startable.isValid() && startable.value().contains(NotificationService);
    }
    return serviceAvailable_;
}

bool QtPlatform::notify(const QString &title, const QString &text) {
    if (!notificationServiceAvailable()) {
        return trayMessage(title, text);
    }
    if (markup_ == Markup::Yes || markup_ == Markup::No) {
        sendNotification(title, text);
        return true;
    }
    waiting_.emplace_back(title, text);
    if (markup_ == Markup::Unknown) {
        markup_ = Markup::Asked;
        const QDBusMessage ask =
            QDBusMessage::createMethodCall(NotificationService, NotificationPath,
                                           NotificationService, QStringLiteral("GetCapabilities"));
        auto *watcher = new QDBusPendingCallWatcher(bus_->asyncCall(ask), calls_.get());
        QObject::connect(
            watcher, &QDBusPendingCallWatcher::finished, calls_.get(), [this, watcher] {
                watcher->deleteLater();
                const QDBusPendingReply<QStringList> reply = *watcher;
                markup_ = reply.isValid() && reply.value().contains(QStringLiteral("body-markup"))
                              ? Markup::Yes
                              : Markup::No;
                for (const auto &[waitingTitle, waitingText] : std::exchange(waiting_, {})) {
                    sendNotification(waitingTitle, waitingText);
                }
            });
    }
    return true;
}

void QtPlatform::sendNotification(const QString &title, const QString &text) {
    QDBusMessage call = QDBusMessage::createMethodCall(
        NotificationService, NotificationPath, NotificationService, QStringLiteral("Notify"));
    const QString entry = QGuiApplication::desktopFileName();
    QVariantMap hints;
    if (!entry.isEmpty()) {
        hints.insert(QStringLiteral("desktop-entry"), entry);
    }
    // Spot texts are plain text, also where the service would read markup.
    call << QGuiApplication::applicationDisplayName() << 0u << entry << title
         << (markup_ == Markup::Yes ? text.toHtmlEscaped() : text) << QStringList() << hints
         << 15000;
    auto *watcher = new QDBusPendingCallWatcher(bus_->asyncCall(call), calls_.get());
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, calls_.get(),
                     [this, watcher, title, text] {
                         watcher->deleteLater();
                         if (watcher->isError()) {
                             serviceAsked_.invalidate();
                             trayMessage(title, text);
                         }
                     });
}

bool QtPlatform::trayMessage(const QString &title, const QString &text) {
    if (!QSystemTrayIcon::isSystemTrayAvailable() || !QSystemTrayIcon::supportsMessages()) {
        return false;
    }
    if (!tray_) {
        tray_ = std::make_unique<QSystemTrayIcon>(QApplication::windowIcon());
        tray_->setToolTip(QApplication::applicationDisplayName());
        tray_->show();
    }
    tray_->showMessage(title, text, QSystemTrayIcon::Information, 15000);
    return true;
}

QString QtPlatform::toQtFilter(const QString &filter, int filterIndex, QString *selected) {
    const QStringList parts = filter.split(QLatin1Char('|'));
    QStringList qtFilters;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QStringList patterns = parts.at(i + 1).split(QLatin1Char(';'), Qt::SkipEmptyParts);
        for (QString &pattern : patterns) {
            if (pattern == QLatin1String("*.*")) {
                pattern = QStringLiteral("*");
            }
        }
        qtFilters.append(parts.at(i) + QStringLiteral(" (") + patterns.join(QLatin1Char(' ')) +
                         QLatin1Char(')'));
    }
    if (selected != nullptr && filterIndex >= 1 && filterIndex <= qtFilters.size()) {
        *selected = qtFilters.at(filterIndex - 1);
    }
    return qtFilters.join(QStringLiteral(";;"));
}

QString QtPlatform::openFileDialog(const FileDialogRequest &request) {
    QFileDialog dialog(QApplication::activeWindow(), request.title, request.initialFolder);
    QString selected;
    dialog.setNameFilter(toQtFilter(request.filter, request.filterIndex, &selected));
    if (!selected.isEmpty()) {
        dialog.selectNameFilter(selected);
    }
    dialog.setFileMode(request.mustExist ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    dialog.setAcceptMode(request.save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setDefaultSuffix(request.defaultSuffix);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
        return QString();
    }
    return dialog.selectedFiles().constFirst();
}

bool QtPlatform::openUrl(const QString &url) {
    return QDesktopServices::openUrl(QUrl(url));
}

void QtPlatform::processEvents() {
    QCoreApplication::processEvents();
}

void QtPlatform::clearClipboard() {
    QGuiApplication::clipboard()->clear();
}

void QtPlatform::setClipboardText(const QString &text) {
    QGuiApplication::clipboard()->setText(text);
}

QString QtPlatform::environmentValue(const QString &name) {
    return qEnvironmentVariable(name.toLocal8Bit().constData());
}

QString QtPlatform::applicationFolder() {
    return QCoreApplication::applicationDirPath();
}

QString QtPlatform::userFolder(UserFolder kind) {
    return standardUserFolder(kind);
}

QString QtPlatform::commandLine() {
    QStringList arguments = QCoreApplication::arguments();
    if (!arguments.isEmpty()) {
        arguments.removeFirst();
    }
    return arguments.join(QLatin1Char(' '));
}

QSize QtPlatform::screenSize() {
    const QScreen *screen = QGuiApplication::primaryScreen();
    return screen != nullptr ? screen->geometry().size() : QSize(1024, 768);
}

void QtPlatform::endProgram(int exitCode) {
    // Every setting was already written (each write is complete on disk), so
    // the process can end here, as the program always did.
    std::fflush(nullptr);
    std::_Exit(exitCode);
}

} // namespace zkr
