#include "OwnCall.h"

#include "Locators.h"
#include "MsgBox_Pos.h"
#include "Platform.h"
#include "ProgramShutdown.h"
#include "ProgramState.h"

#include <optional>

namespace zkr {

namespace {

const QString NoCallMarker = QStringLiteral("!NOCALL!");
const QString MakerShortForm = QStringLiteral("7ZKR");
const QString MakerCall = QStringLiteral("QQ7ZKR");
const QString AppTitle = QStringLiteral("ZKR_MUF");
constexpr int StopWithThreeButtons = MsgButtons::Critical + MsgButtons::CancelTryAgainContinue;

void warn(Platform &platform) {
    platform.beep(800, 200);
    MsgBox_Pos(platform);
}

bool isInvalid(const QString &upper, const QString &promptDefault) {
    return upper == promptDefault.toUpper() || upper == QLatin1String("NOCALL") ||
           upper == QLatin1String("ZKR") || upper.size() < 3;
}

} // namespace

QString Check_OwnCall(ProgramState &state, Platform &platform, ProgramShutdown &shutdown,
                      const QString &call, const QString &promptDefault) {
    const QString crLf = QStringLiteral("\r\n");
    QString candidate = call;
    for (;;) {
        if (candidate.toUpper() != NoCallMarker && candidate.toUpper() != MakerShortForm) {
            warn(platform);
            // The blanks push the title towards the middle of the caption bar.
            const std::optional<QString> answer =
                platform.inputBox(QStringLiteral("What is YOUR call sign ?"),
                                  QString(35, QLatin1Char(' ')) + AppTitle, promptDefault);
            if (!answer) {
                warn(platform);
                platform.messageBox(
                    QStringLiteral(
                        "Sorry, without a valid call sign ZKR_MUF will now be terminated !"),
                    MsgButtons::OkOnly, AppTitle);
                state.Busy = true;
                shutdown.shutDown();
            }
            candidate = *answer;
        }
        const QString upper = candidate.toUpper();
        if (isInvalid(upper, promptDefault)) {
            warn(platform);
            platform.messageBox(
                candidate + QStringLiteral("  is not a valid call sign !") + crLf + crLf +
                    QStringLiteral("Access to the ham radio dx cluster with ZKR_MUF") + crLf +
                    QStringLiteral("only works with a valid callsign !"),
                StopWithThreeButtons, AppTitle);
            continue;
        }
        if (upper.contains(MakerCall)) {
            warn(platform);
            platform.messageBox(upper + QStringLiteral("  is NOT YOUR call sign !"),
                                StopWithThreeButtons, QString());
            continue;
        }
        break;
    }
    if (candidate.toUpper() == MakerShortForm) {
        candidate = MakerCall;
    }
    return candidate.toUpper();
}

bool isOwnLocatorSet(const QString &ownLocator) {
    return !Check_Locator(ownLocator.toUpper());
}

QString usableOwnLocator(const QString &ownLocator) {
    return isOwnLocatorSet(ownLocator) ? ownLocator.toUpper() : QString();
}

QString ownLocatorCaption(const QString &ownLocator) {
    return isOwnLocatorSet(ownLocator) ? QStringLiteral("LOC ") + ownLocator.toUpper()
                                       : QStringLiteral("Set your locator in Setup");
}

} // namespace zkr
