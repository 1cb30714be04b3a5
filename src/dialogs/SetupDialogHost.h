#pragma once

#include <QRect>
#include <QString>

#include <functional>
#include <optional>

namespace zkr {

class SettingsFile;

// What the setup dialog needs of the main window and the spot sources
// behind it. The main window implements it.
class SetupDialogHost {
public:
    virtual ~SetupDialogHost() = default;

    // Saving, reading back, and the program's one way to end.
    virtual SettingsFile &settingsFile() = 0;
    // The main window's frame on the screen.
    virtual QRect mainFrame() const = 0;
    // The one-second web refresh timer.
    virtual void setRefreshTimer(bool enabled) = 0;
    virtual void showOwnCallLabels(const QString &callCaption, const QString &locatorCaption) = 0;
    // Lays the main window out for the current run mode as start-up does
    // (pane font, tabs, status label); `clearPanes` also empties the panes.
    virtual void layoutForRunMode(bool clearPanes) = 0;
    virtual void hideConsole() = 0;
    // Ends the telnet session, if one is open or opening.
    virtual void closeTelnetSession() = 0;
    virtual void Telnet_Connect() = 0;
    virtual void Replay_SpotFile() = 0;
    // Starts fetching a web page; `done` gets it, or none when no server
    // answered. Never waits.
    virtual void fetchPage(const QString &url,
                           std::function<void(std::optional<QString>)> done) = 0;
};

} // namespace zkr
