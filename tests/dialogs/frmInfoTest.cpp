#include "frmInfo.h"
#include "ProgramState.h"
#include "QtPrinters.h"
#include "ScriptedPlatform.h"
#include "SiteDefaults.h"

#include <QEnterEvent>
#include <QLabel>
#include <QPlainTextEdit>
#include <QTest>

#include <gtest/gtest.h>

namespace zkr {
namespace {

class frmInfoTest : public ::testing::Test {
protected:
    frmInfoTest() {
        state_.ProgramVersion = QStringLiteral("1.30");
        state_.ProgramDate = QStringLiteral("10.01.2025");
    }
    QLabel *label(const char *name) { return info_.findChild<QLabel *>(QLatin1String(name)); }
    void hover(QLabel *target) {
        QEnterEvent enter(QPointF(2, 2), QPointF(2, 2), QPointF(2, 2));
        QApplication::sendEvent(target, &enter);
    }

    ProgramState state_;
    ScriptedPlatform platform_;
    frmInfo info_{state_, platform_};
};

TEST_F(frmInfoTest, ShowsNameVersionAndDate) {
    EXPECT_TRUE(frmInfo::aboutText(state_).startsWith(
        QStringLiteral("ZKR_MUF  MUF Calculator\r\nVersion V1.30  10.01.2025\r\n\r\n")));
    EXPECT_EQ(frmInfo::aboutText(state_).count(QStringLiteral("\r\n")), 3);
    auto *text = info_.findChild<QPlainTextEdit *>(QStringLiteral("Text1"));
    ASSERT_NE(text, nullptr);
    EXPECT_TRUE(text->isReadOnly());
    EXPECT_TRUE(text->toPlainText().startsWith(QStringLiteral("ZKR_MUF  MUF Calculator\nVersion")));
}

TEST_F(frmInfoTest, LinksOpenTheirTargetAndReportFailure) {
    struct Case {
        const char *link;
        bool opens;
        QString target;
        const char *error;
    };
    const Case cases[] = {
        {"lblHyperlink", true, site::HomePageUrl, nullptr},
        {"lblHyperlink", false, site::HomePageUrl,
         "There was an error when trying to open the default browser"},
        {"lblEmaillink", false, site::ContactMailUrl,
         "There was an error when trying to open the default email client"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.link);
        platform_.clearLog();
        platform_.setOpenUrlResult(c.opens);
        hover(label(c.link));
        QTest::mouseClick(label(c.link), Qt::LeftButton);
        QStringList expected{
            QStringLiteral(R"(openurl "%1" -> %2)")
                .arg(c.target, c.opens ? QStringLiteral("ok") : QStringLiteral("fail"))};
        if (c.error != nullptr) {
            expected
                << QStringLiteral("beep 800 200") << QStringLiteral("arm centre")
                << QStringLiteral(R"(msgbox 16 "Error" "%1" -> 1)").arg(QLatin1String(c.error));
        }
        EXPECT_EQ(platform_.log(), expected);
    }
}

TEST_F(frmInfoTest, LinksUnderlineWhileThePointerIsOverThem) {
    QLabel *home = label("lblHyperlink");
    QLabel *mail = label("lblEmaillink");
    const QColor normal = home->palette().color(QPalette::WindowText);
    EXPECT_FALSE(info_.isLinkHovered(home));
    hover(home);
    hover(mail);
    EXPECT_TRUE(info_.isLinkHovered(home));
    EXPECT_NE(home->palette().color(QPalette::WindowText), normal);
    // Moving over the window itself takes the hover off both links.
    QMouseEvent move(QEvent::MouseMove, QPointF(1, 1), QPointF(1, 1), Qt::NoButton, Qt::NoButton,
                     Qt::NoModifier);
    QApplication::sendEvent(&info_, &move);
    EXPECT_FALSE(info_.isLinkHovered(home));
    EXPECT_FALSE(info_.isLinkHovered(mail));
    EXPECT_EQ(home->palette().color(QPalette::WindowText), normal);
}

} // namespace
} // namespace zkr
