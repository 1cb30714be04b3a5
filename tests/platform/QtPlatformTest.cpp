#include "QtPlatform.h"
#include "QtPrinters.h"

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QMainWindow>
#include <QScreen>
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

// Where a message box (centred when `at` is none) or an input box shows.
QRect shownAt(QtPlatform &platform, std::optional<QPoint> at, bool input = false) {
    platform.armBoxPlacement(at);
    QRect frame;
    whenShown([&frame](QDialog &box) { frame = box.frameGeometry(); });
    if (input) {
        platform.inputBox("prompt", "t", QString());
    } else {
        platform.messageBox("A box that takes its width from its text\r\nwhen shown", 48, "t");
    }
    return frame;
}

int centreDistance(const QRect &a, const QRect &b) {
    return (a.center() - b.center()).manhattanLength();
}

TEST(QtPlatform, EachArmingPlacesOneBoxExactlyOrCentredOverTheActiveWindow) {
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
}

TEST(QtPlatform, BoxesShowTheirTextsAsPlainText) {
    QtPlatform platform;
    QString shown, title;
    Qt::TextFormat format = Qt::RichText;
    whenShown([&](QDialog &box) {
        auto *label = box.findChild<QLabel *>("qt_msgbox_label");
        ASSERT_NE(label, nullptr);
        shown = label->text();
        format = label->textFormat();
        title = box.windowTitle();
    });
    platform.messageBox("<b>DX</b> de\r\nnext", 0, QString());
    EXPECT_EQ(shown, "<b>DX</b> de\nnext");
    EXPECT_EQ(format, Qt::PlainText);
    EXPECT_EQ(title, "ZKR_MUF");

    int labels = 0;
    whenShown([&labels](QDialog &box) {
        for (const QLabel *label : box.findChildren<QLabel *>()) {
            EXPECT_EQ(label->textFormat(), Qt::PlainText);
            ++labels;
        }
    });
    platform.inputBox("<i>call</i>", "t", QString());
    EXPECT_GT(labels, 0);
}

} // namespace
} // namespace zkr
