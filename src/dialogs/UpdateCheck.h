#pragma once

#include <QString>

#include <functional>
#include <optional>

namespace zkr {

struct ProgramState;
class Platform;

// Looks on the download page for the release marker ">ZKR_MUF V" and offers
// to open the page when it announces a newer version. Only the configured
// page (UpdatePage_Url) is ever fetched or opened; nothing on the page
// decides where the browser goes.
class UpdateCheck {
public:
    // Fetches a page; "" when no server answered (the fetch reports that).
    using Fetch = std::function<QString(const QString &url)>;

    UpdateCheck(ProgramState &state, Platform &platform, Fetch fetch);

    // True when a newer version was announced to the user.
    bool Check_Update();
    // The check the user starts: also says when there is nothing new.
    void Check_Update_Interactive();

    // The version text between the marker and the next "<", as found on
    // the page; none without marker or without "<".
    static std::optional<QString> announcedVersion(const QString &page);

private:
    void Announce_Update(const QString &version);

    ProgramState &state_;
    Platform &platform_;
    Fetch fetch_;
};

} // namespace zkr
