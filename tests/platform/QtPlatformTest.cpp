#include "QtPlatform.h"
#include "QtPrinters.h"

#include <QAbstractButton>
#include <QApplication>
#include <QInputDialog>
#include <QLabel>
#include <QMainWindow>
#include <QMessageBox>
#include <QScreen>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>

namespace zkr {
namespace {

// Runs `inspect` on the next modal box once it is on the screen, then lets
// `answer` close it.
void whenShown(
    std::function<void(QDialog &)> inspect,
    std::function<void(QDialog &)> answer = [](QDialog &box) { box.reject(); }) {
    QTimer::singleShot(0, qApp, [inspect, answer] {
        auto *box = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        ASSERT_NE(box, nullptr);
        inspect(*box);
        answer(*box);
    });
}

QPoint shownAt(QtPlatform &platform) {
    QPoint where;
    whenShown([&where](QDialog &box) { where = box.pos(); });
    platform.messageBox(QStringLiteral("A message long enough to widen the box a little."), 0,
                        QStringLiteral("t"));
    return where;
}

int centreDistance(const QRect &a, const QRect &b) {
    return (a.center() - b.center()).manhattanLength();
}

TEST(QtPlatformTest, GivenPositionLandsExactlyAndEachArmingPlacesOneBox) {
    QtPlatform platform;
    platform.armBoxPlacement(QPoint(37, 59));
    EXPECT_EQ(shownAt(platform), QPoint(37, 59));
    EXPECT_NE(shownAt(platform), QPoint(37, 59));

    platform.armBoxPlacement(QPoint(41, 63));
    QPoint inputAt;
    whenShown([&inputAt](QDialog &box) { inputAt = box.pos(); });
    platform.inputBox(QStringLiteral("prompt"), QStringLiteral("t"), QString());
    EXPECT_EQ(inputAt, QPoint(41, 63));
}

TEST(QtPlatformTest, CentredBoxGoesOverTheActiveWindowElseTheMainWindowElseTheScreen) {
    QtPlatform platform;
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    QRect box;
    auto showCentred = [&] {
        platform.armBoxPlacement(std::nullopt);
        whenShown([&box](QDialog &dialog) { box = dialog.frameGeometry(); });
        platform.messageBox(QStringLiteral("A box that takes its width from its text when shown, "
                                           "centred\r\nover something"),
                            48, QString());
    };

    showCentred();
    EXPECT_LE(centreDistance(box, screen), 2);

    QMainWindow main;
    main.setGeometry(60, 40, 700, 500);
    main.show();
    QWidget other;
    other.setGeometry(500, 300, 300, 200);
    other.show();
    other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    showCentred();
    EXPECT_LE(centreDistance(box, other.frameGeometry()), 2);

    other.hide();
    QApplication::setActiveWindow(nullptr);
    ASSERT_EQ(QApplication::activeWindow(), nullptr);
    showCentred();
    EXPECT_LE(centreDistance(box, main.frameGeometry()), 2);
}

TEST(QtPlatformTest, BoxesShowTheirTextsAsPlainText) {
    QtPlatform platform;
    QString shown;
    Qt::TextFormat format = Qt::RichText;
    QString title;
    whenShown([&](QDialog &box) {
        auto *label = box.findChild<QLabel *>(QStringLiteral("qt_msgbox_label"));
        ASSERT_NE(label, nullptr);
        shown = label->text();
        format = label->textFormat();
        title = box.windowTitle();
    });
    platform.messageBox(QStringLiteral("<b>DX</b> de\r\nnext"), 0, QString());
    EXPECT_EQ(shown, QStringLiteral("<b>DX</b> de\nnext"));
    EXPECT_EQ(format, Qt::PlainText);
    EXPECT_EQ(title, QStringLiteral("ZKR_MUF"));

    whenShown([&](QDialog &box) {
        for (const QLabel *label : box.findChildren<QLabel *>()) {
            EXPECT_EQ(label->textFormat(), Qt::PlainText);
        }
    });
    platform.inputBox(QStringLiteral("<i>call</i>"), QStringLiteral("t"), QString());
}

} // namespace
} // namespace zkr
