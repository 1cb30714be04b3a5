#include "SetupDialogStandIn.h"

#include "IniFile.h"
#include "ProgramState.h"

namespace zkr {

SetupDialogStandIn::SetupDialogStandIn(ProgramState &state) : state_(state) {}

void SetupDialogStandIn::setAutoUpdateChecked(bool checked) {
    if (checked == autoUpdate_) {
        return;
    }
    autoUpdate_ = checked;
    CheckBox_AutoUpdate_Click();
}

void SetupDialogStandIn::CheckBox_AutoUpdate_Click() {
    Ini_Write(QStringLiteral("AutoUpdateCheck"), QStringLiteral("UpdateCheck"),
              autoUpdate_ ? QStringLiteral("on") : QStringLiteral("off"), state_.IniFilePath);
    if (autoUpdate_ && updateCheck_) {
        updateCheck_();
    }
}

} // namespace zkr
