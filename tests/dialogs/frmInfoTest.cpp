#include "frmInfo.h"
#include "ProgramState.h"
#include "QtPrinters.h"
#include "ScriptedPlatform.h"
#include "SiteDefaults.h"

#include <QEnterEvent>
#include <QLabel>
#include <QTest>

#include <gtest/gtest.h>

namespace zkr {
namespace {

TEST(frmInfoTest, ShowsTheVersionAndOpensItsLinksOrReportsFailure) {
    ProgramState state;
    state.ProgramVersion = QStringLiteral("1.30");
    state.ProgramDate = QStringLiteral("10.01.2025");
    EXPECT_TRUE(frmInfo::aboutText(state).startsWith(
        QStringLiteral("ZKR_MUF  MUF Calculator\r\nVersion V1.30  10.01.2025\r\n\r\n")));

    const std::tuple<const char *, bool, QString, const char *> cases[] = {
        {"lblHyperlink", true, site::HomePageUrl, nullptr},
        {"lblHyperlink", false, site::HomePageUrl, "the default browser"},
        {"lblEmaillink", false, site::ContactMailUrl, "the default email client"}};
    ScriptedPlatform platform;
    frmInfo info(state, platform);
    for (const auto &[link, opens, target, failure] : cases) {
        SCOPED_TRACE(link);
        auto *label = info.findChild<QLabel *>(QLatin1String(link));
        platform.clearLog();
        platform.setOpenUrlResult(opens);
        QEnterEvent enter(QPointF(2, 2), QPointF(2, 2), QPointF(2, 2));
        QApplication::sendEvent(label, &enter);
        EXPECT_TRUE(info.isLinkHovered(label));
        QTest::mouseClick(label, Qt::LeftButton);
        QStringList expected{
            QStringLiteral(R"(openurl "%1" -> %2)")
                .arg(target, opens ? QStringLiteral("ok") : QStringLiteral("fail"))};
        if (failure != nullptr) {
            expected << QStringLiteral("beep 800 200") << QStringLiteral("arm centre")
                     << QStringLiteral(
                            R"(msgbox 16 "Error" "There was an error when trying to open )"
                            R"(%1" -> 1)")
                            .arg(QLatin1String(failure));
        }
        EXPECT_EQ(platform.log(), expected);
    }
}

} // namespace
} // namespace zkr
