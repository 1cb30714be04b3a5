#pragma once

namespace zkr {

// What the settings code needs of the main window. Positions are logical
// pixels (device-independent), the unit stored in the settings file.
class MainWindowLink {
public:
    virtual ~MainWindowLink() = default;

    virtual int windowLeft() const = 0;
    virtual int windowTop() const = 0;
    virtual bool isWindowMinimized() const = 0;
    virtual int selectedTab() const = 0;
    // The telnet session's "not connected" handling: flag, status label.
    virtual void Winsock_Close() = 0;
    // Closes every window of the program, the main window last.
    virtual void unloadAllWindows() = 0;
};

} // namespace zkr
