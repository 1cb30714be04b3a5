#include "UpdateCheck.h"

#include "MsgBox_Pos.h"
#include "Platform.h"
#include "ProgramState.h"
#include "TextFunctions.h"

namespace zkr {

namespace {
const QString Marker = QStringLiteral(">ZKR_MUF V");
} // namespace

UpdateCheck::UpdateCheck(ProgramState &state, Platform &platform, Fetch fetch)
    : state_(state), platform_(platform), fetch_(std::move(fetch)) {}

std::optional<QString> UpdateCheck::announcedVersion(const QString &page) {
    const qsizetype marker = page.indexOf(Marker);
    if (marker < 0) {
        return std::nullopt;
    }
    const qsizetype start = marker + Marker.size();
    const qsizetype end = page.indexOf(QLatin1Char('<'), start);
    if (end < 0) {
        return std::nullopt;
    }
    return page.mid(start, end - start);
}

bool UpdateCheck::Check_Update() {
    state_.ProgramVersion_Num = leadingNumber(state_.ProgramVersion);
    const std::optional<QString> version = announcedVersion(fetch_(state_.UpdatePage_Url));
    // Compared as numbers: "1.3" on the page is the same as our "1.30".
    if (!version || !(leadingNumber(*version) > state_.ProgramVersion_Num)) {
        return false;
    }
    Announce_Update(*version);
    return true;
}

void UpdateCheck::Announce_Update(const QString &version) {
    state_.Msg_Text = QStringLiteral("Version  V") + version +
                      QStringLiteral("  is available !  ") + state_.CrLf +
                      QStringLiteral("Do you want to open the download page in your web browser ?");
    platform_.beep(800, 200);
    MsgBox_Pos(platform_);
    const int answer = platform_.messageBox(
        state_.Msg_Text + state_.CrLf, MsgButtons::YesNo + MsgButtons::Question, state_.Msg_Title);
    if (answer == MsgResult::Yes) {
        platform_.openUrl(state_.UpdatePage_Url);
    }
}

void UpdateCheck::Check_Update_Interactive() {
    if (Check_Update()) {
        return;
    }
    state_.Msg_Title = QStringLiteral("UpdateCheck");
    platform_.beep(800, 200);
    MsgBox_Pos(platform_);
    platform_.messageBox(QStringLiteral("No updates available. You have the latest version !"),
                         MsgButtons::OkOnly, state_.Msg_Title);
}

} // namespace zkr
