#include "MsgBox_Pos.h"

#include "MainStatusLabel.h"
#include "Platform.h"
#include "ProgramState.h"
#include "RunTimeError.h"
#include "TextFunctions.h"

#include <cmath>
#include <cstdint>
#include <limits>

namespace zkr {

namespace {

int toPixel(double value) {
    const double rounded = roundHalfEven(value);
    if (!std::isfinite(rounded) || rounded < std::numeric_limits<std::int32_t>::min() ||
        rounded > std::numeric_limits<std::int32_t>::max()) {
        throw RunTimeError(RunTimeError::Overflow, QStringLiteral("box position"));
    }
    return static_cast<int>(rounded);
}

} // namespace

void MsgBox_Pos(Platform &platform) {
    platform.armBoxPlacement(std::nullopt);
}

void MsgBox_Pos(Platform &platform, double x, double y) {
    platform.armBoxPlacement(QPoint(toPixel(x), toPixel(y)));
}

void MsgBox_Timed(ProgramState &state, Platform &platform, MainStatusLabel &status) {
    state.Msg_Title = QStringLiteral("W a r n i n g !");
    state.Msg_Text =
        QStringLiteral("Can't connect. Make sure url is correct or even if host exists.");
    platform.beep(800, 200);
    MsgBox_Pos(platform);
    platform.messageBox(state.Msg_Text, MsgButtons::Critical + MsgButtons::CancelTryAgainContinue,
                        state.Msg_Title);
    status.showStatusCaption(QStringLiteral("Can't connect"));
}

} // namespace zkr
