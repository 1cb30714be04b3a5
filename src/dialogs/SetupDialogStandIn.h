#pragma once

#include "SetupDialogLink.h"

#include <functional>

namespace zkr {

struct ProgramState;

// Holds the setup dialog's values until the dialog itself exists: its call
// and locator fields and the automatic-update box with the box's click
// behaviour. Opening, showing and placing the dialog are empty steps.
class SetupDialogStandIn : public SetupDialogLink {
public:
    explicit SetupDialogStandIn(ProgramState &state);

    // The update check that ticking the box runs; none until it exists.
    void setUpdateCheck(std::function<void()> check) { updateCheck_ = std::move(check); }

    QString callText() const override { return callText_; }
    void setCallText(const QString &text) override { callText_ = text; }
    QString locatorText() const override { return locatorText_; }
    void setLocatorText(const QString &text) override { locatorText_ = text; }
    bool isAutoUpdateChecked() const override { return autoUpdate_; }
    void setAutoUpdateChecked(bool checked) override;
    void Setup_Click() override {}
    void showInFront() override {}
    void setSaveEnabled(bool enabled) override { saveEnabled_ = enabled; }
    bool isSaveEnabled() const { return saveEnabled_; }
    void centreOver(const QRect &) override {}
    void unload() override {}

private:
    void CheckBox_AutoUpdate_Click();

    ProgramState &state_;
    std::function<void()> updateCheck_;
    QString callText_;
    QString locatorText_;
    bool autoUpdate_ = false;
    bool saveEnabled_ = false;
};

} // namespace zkr
