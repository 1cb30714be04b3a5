#include "UpdateCheck.h"

#include "MsgBox_Pos.h"
#include "Platform.h"
#include "ProgramState.h"
#include "TextFunctions.h"

#include <QUrl>

namespace zkr {

namespace {
const QString Marker = QStringLiteral(">ZKR_MUF V");
} // namespace

UpdateCheck::UpdateCheck(ProgramState &state, Platform &platform, Fetch fetch)
    : state_(state), platform_(platform), fetch_(std::move(fetch)) {}

bool UpdateCheck::isConfigured() const {
    return !state_.UpdatePage_Url.trimmed().isEmpty();
}

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

bool UpdateCheck::isNewer(const QString &page, QString *version) const {
    const std::optional<QString> announced = announcedVersion(page);
    // Compared as numbers: "1.3" on the page is the same as our "1.30".
    if (!announced || !(leadingNumber(*announced) > leadingNumber(state_.ProgramVersion))) {
        return false;
    }
    *version = *announced;
    return true;
}

void UpdateCheck::run(std::function<void(std::optional<QString>)> outcome) {
    if (running_ || !isConfigured()) {
        return;
    }
    running_ = true;
    fetch_(state_.UpdatePage_Url,
           [this, outcome = std::move(outcome)](std::optional<QString> page) {
               running_ = false;
               outcome(std::move(page));
               if (finished_) {
                   finished_();
               }
           });
}

void UpdateCheck::checkInBackground(std::function<void(const QString &)> reportFailure) {
    run([this, reportFailure = std::move(reportFailure)](std::optional<QString> page) {
        QString version;
        if (!page) {
            reportFailure(QStringLiteral("Update check: no answer from ") +
                          QUrl(state_.UpdatePage_Url).host());
        } else if (isNewer(*page, &version)) {
            Announce_Update(version);
        }
    });
}

void UpdateCheck::Check_Update_Interactive() {
    run([this](std::optional<QString> page) {
        QString version;
        if (page && isNewer(*page, &version)) {
            Announce_Update(version);
            return;
        }
        platform_.beep(800, 200);
        MsgBox_Pos(platform_);
        if (!page) {
            platform_.messageBox(
                QStringLiteral("Can't connect. Make sure url is correct or even if host exists."),
                MsgButtons::Critical + MsgButtons::OkOnly, QStringLiteral("W a r n i n g !"));
            return;
        }
        state_.Msg_Title = QStringLiteral("UpdateCheck");
        platform_.messageBox(QStringLiteral("No updates available. You have the latest version !"),
                             MsgButtons::OkOnly, state_.Msg_Title);
    });
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

} // namespace zkr
