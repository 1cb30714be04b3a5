#pragma once

#include <QString>

namespace zkr {

// The main window's connection status label, for the dialogs that report a
// failed connection on it.
class MainStatusLabel {
public:
    virtual ~MainStatusLabel() = default;
    // Sets the caption and makes the label visible; its colours stay.
    virtual void showStatusCaption(const QString &caption) = 0;
};

} // namespace zkr
