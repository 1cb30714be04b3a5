#include "QtPlatform.h"
#include "QtPrinters.h"
#include "WaitFor.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDialog>
#include <QLabel>
#include <QMainWindow>
#include <QProcess>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

namespace zkr {
namespace {

// Runs `inspect` on the next modal box once it is shown, then closes it.
void whenShown(std::function<void(QDialog &)> inspect) {
    QTimer::singleShot(0, qApp, [inspect] {
        auto *box = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        ASSERT_NE(box, nullptr);
        inspect(*box);
        box->reject();
    });
}

// Where a message box (centred when `at` is none) or an input box shows;
// every text of it shows as plain text, markup and all.
QRect shownAt(QtPlatform &platform, std::optional<QPoint> at, bool input = false) {
    platform.armBoxPlacement(at);
    QRect frame;
    whenShown([&frame](QDialog &box) {
        frame = box.frameGeometry();
        int texts = 0;
        for (const QLabel *label : box.findChildren<QLabel *>()) {
            if (!label->text().isEmpty()) { // not the icon
                EXPECT_EQ(label->textFormat(), Qt::PlainText) << label->text().toStdString();
                ++texts;
            }
        }
        EXPECT_GT(texts, 0);
    });
    if (input) {
        platform.inputBox("<i>prompt</i>", "t", QString());
    } else {
        platform.messageBox("A box that takes its <b>width</b> from its text\r\nwhen shown", 48,
                            "t");
    }
    return frame;
}

int centreDistance(const QRect &a, const QRect &b) {
    return (a.center() - b.center()).manhattanLength();
}

TEST(QtPlatform, EachArmingPlacesOneBoxExactlyOrCentredAndBoxesShowPlainText) {
    QtPlatform platform;
    EXPECT_EQ(shownAt(platform, QPoint(37, 59)).topLeft(), QPoint(37, 59));
    whenShown([](QDialog &box) { EXPECT_NE(box.frameGeometry().topLeft(), QPoint(37, 59)); });
    platform.messageBox("not armed", 0, "t");
    EXPECT_EQ(shownAt(platform, QPoint(41, 63), true).topLeft(), QPoint(41, 63));

    // Centred over the active window, else the main window, else the screen.
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    EXPECT_LE(centreDistance(shownAt(platform, std::nullopt), screen), 2);
    QMainWindow main;
    main.setGeometry(60, 40, 700, 500);
    main.show();
    QWidget other;
    other.setGeometry(500, 300, 300, 200);
    other.show();
    other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    EXPECT_LE(centreDistance(shownAt(platform, std::nullopt), other.frameGeometry()), 2);
    other.hide();
    QApplication::setActiveWindow(nullptr);
    ASSERT_EQ(QApplication::activeWindow(), nullptr);
    EXPECT_LE(centreDistance(shownAt(platform, std::nullopt), main.frameGeometry()), 2);

    // A box's line ends are the label's; a box without a title has the program's.
    QString shown;
    whenShown([&shown](QDialog &box) {
        shown = box.windowTitle() + "|" + box.findChild<QLabel *>("qt_msgbox_label")->text();
    });
    platform.messageBox("<b>DX</b> de\r\nnext", 0, QString());
    EXPECT_EQ(shown, "ZKR_MUF|<b>DX</b> de\nnext");
}

// The desktop's notification service as a test plays it, on a bus of its own.
class FakeNotifications : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")
public:
    QStringList capabilities;
    QString received; // "app|icon|summary|body|timeout"

public Q_SLOTS:
    QStringList GetCapabilities() { return capabilities; }
    uint Notify(const QString &app, uint, const QString &icon, const QString &summary,
                const QString &body, const QStringList &, const QVariantMap &, int timeout) {
        received = QStringList{app, icon, summary, body, QString::number(timeout)}.join('|');
        return 1;
    }
};

// A private bus (never the desktop's) with the fake service on it or not:
// the notification reaches the service, its text escaped only where the
// service reads markup; without a service (and no tray) notify says false.
TEST(QtPlatform, NotificationsGoToTheDesktopServiceOverDBus) {
    QTemporaryDir folder;
    QFile config(folder.filePath("bus.conf"));
    ASSERT_TRUE(config.open(QIODevice::WriteOnly));
    config.write("<busconfig><listen>unix:dir=" + folder.path().toUtf8() +
                 "</listen><policy context='default'><allow send_destination='*'/><allow "
                 "eavesdrop='true'/><allow own='*'/></policy></busconfig>");
    config.close();
    QProcess daemon;
    daemon.start("dbus-daemon", {"--config-file=" + config.fileName(), "--print-address"});
    ASSERT_TRUE(daemon.waitForReadyRead(5000)) << "dbus-daemon (package dbus-daemon) is needed";
    const QString address = QString::fromUtf8(daemon.readLine()).trimmed();
    const QString text = "heard <PJ4/K1ABC> & EA7ABC on 50.313 -> IN99";
    const std::tuple<bool, QStringList, QString> cases[] = {
        {true,
         {"body", "body-markup"},
         "ZKR_MUF||Es watch|heard &lt;PJ4/K1ABC&gt; &amp; EA7ABC on 50.313 -&gt; IN99|15000"},
        {true, {"body"}, "ZKR_MUF||Es watch|" + text + "|15000"},
        {false, {}, ""},
    };
    for (const auto &[service, capabilities, received] : cases) {
        const QString name = QString("case%1").arg(capabilities.size());
        {
            QDBusConnection serviceBus = QDBusConnection::connectToBus(address, name + "service");
            FakeNotifications fake;
            fake.capabilities = capabilities;
            ASSERT_TRUE(serviceBus.registerService("org.freedesktop.Notifications") &&
                        serviceBus.registerObject("/org/freedesktop/Notifications", &fake,
                                                  QDBusConnection::ExportAllSlots));
            if (!service) {
                serviceBus.unregisterService("org.freedesktop.Notifications");
            }
            QtPlatform platform;
            platform.setNotificationBus(QDBusConnection::connectToBus(address, name + "platform"));
            EXPECT_EQ(platform.notify("Es watch", text), service);
            test::waitFor([&fake] { return !fake.received.isEmpty(); }, service ? 5000 : 200);
            EXPECT_EQ(fake.received, received);
        }
        QDBusConnection::disconnectFromBus(name + "service");
        QDBusConnection::disconnectFromBus(name + "platform");
    }
    daemon.kill();
}

} // namespace
} // namespace zkr

#include "QtPlatformTest.moc"
