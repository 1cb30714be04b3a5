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
// decides where the browser goes. With no page configured there is nothing
// to check. The fetch never blocks: the outcome comes when the page does.
class UpdateCheck {
public:
    // Starts fetching a page and later calls `done` with it, or with none
    // when no server answered.
    using Done = std::function<void(std::optional<QString> page)>;
    using Fetch = std::function<void(const QString &url, Done done)>;

    UpdateCheck(ProgramState &state, Platform &platform, Fetch fetch);

    bool isConfigured() const;
    bool isRunning() const { return running_; }
    // Called whenever a check has ended, whatever its outcome.
    void setFinishedHandler(std::function<void()> handler) { finished_ = std::move(handler); }

    // The check at start-up: news is offered in a box; a failure goes to
    // `reportFailure` alone (the status line), never into a box.
    void checkInBackground(std::function<void(const QString &text)> reportFailure);
    // The check the user starts: a box for news, for nothing new, and for a
    // page that could not be fetched.
    void Check_Update_Interactive();

    // The version text between the marker and the next "<", as found on
    // the page; none without marker or without "<".
    static std::optional<QString> announcedVersion(const QString &page);
    // Whether the page announces a version newer than ours.
    bool isNewer(const QString &page, QString *version) const;

private:
    void run(std::function<void(std::optional<QString>)> outcome);
    void Announce_Update(const QString &version);

    ProgramState &state_;
    Platform &platform_;
    Fetch fetch_;
    std::function<void()> finished_;
    bool running_ = false;
};

} // namespace zkr
