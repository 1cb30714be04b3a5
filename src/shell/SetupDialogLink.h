#pragma once

#include <QRect>
#include <QString>

namespace zkr {

// What the settings code and the main window need of the setup dialog.
class SetupDialogLink {
public:
    virtual ~SetupDialogLink() = default;

    virtual QString callText() const = 0;
    virtual void setCallText(const QString &text) = 0;
    virtual QString locatorText() const = 0;
    virtual void setLocatorText(const QString &text) = 0;

    virtual bool isAutoUpdateChecked() const = 0;
    // A new value runs the box's click behaviour, as a click by the user
    // would; setting the value it already has does nothing.
    virtual void setAutoUpdateChecked(bool checked) = 0;

    // The main window's Setup button: the dialog, modal.
    virtual void Setup_Click() = 0;
    // After a first run in telnet mode: shown without blocking, in front.
    virtual void showInFront() = 0;
    virtual void setSaveEnabled(bool enabled) = 0;
    // Centres the dialog over the main window's frame (screen pixels).
    virtual void centreOver(const QRect &mainFrame) = 0;
    virtual void unload() = 0;
};

} // namespace zkr
