#include "SettingsFile.h"

#include "IniFile.h"
#include "Locators.h"
#include "MainWindowLink.h"
#include "MsgBox_Pos.h"
#include "OwnCall.h"
#include "Platform.h"
#include "ProgramState.h"
#include "SetupDialogLink.h"
#include "TextFunctions.h"

#include <QFile>
#include <QFileInfo>

#include <cstdlib>

namespace zkr {

namespace {

// The profile functions hand back at most 254 characters (a 255-byte buffer
// with its terminating NUL).
constexpr qsizetype MaxValueLength = 254;

QString upperUnlessEmpty(const QString &text) {
    return text.isEmpty() ? text : text.toUpper();
}

} // namespace

QString Ini_Read(ProgramState &state, const QString &section, const QString &key,
                 const QString &defaultValue, const QString &path) {
    QString result = IniFile::load(path).value(section, key).value_or(defaultValue);
    result.truncate(MaxValueLength);
    state.Ini_Result_Length = static_cast<long>(result.size());
    return trimBlanks(result);
}

SettingsFile::SettingsFile(ProgramState &state, Platform &platform, MainWindowLink &mainWindow,
                           SetupDialogLink &setupDialog)
    : state_(state), platform_(platform), mainWindow_(mainWindow), setupDialog_(setupDialog) {}

QString SettingsFile::read(const QString &section, const QString &key,
                           const QString &defaultValue) {
    return Ini_Read(state_, section, key, defaultValue, state_.IniFilePath);
}

void SettingsFile::write(const QString &section, const QString &key, const QString &value) {
    // A failed write leaves the old file whole; like the program always did,
    // nobody is told.
    Ini_Write(section, key, value, state_.IniFilePath);
}

void SettingsFile::Check_SettingsFile() {
    const QFileInfo file(state_.IniFilePath);
    const bool present = file.isFile() && file.fileName().toUpper() == state_.IniFileName.toUpper();
    if (present) {
        state_.Loading_Settings = true;
        Read_Settings();
        state_.Loading_Settings = false;
        if (!(state_.IniVersion < state_.ProgramVersion_Num)) {
            return;
        }
        // A new version starts over with a fresh file.
        QFile::remove(state_.IniFilePath);
    }
    state_.Settings_Created = true;
    Create_Settings();
    state_.Loading_Settings = true;
    Read_Settings();
    state_.Loading_Settings = false;
}

void SettingsFile::Read_Settings() {
    state_.IniVersion = leadingNumber(
        read(QStringLiteral("Version"), QStringLiteral("Version"), QStringLiteral("0.0")));

    state_.OwnCall = upperUnlessEmpty(read(QStringLiteral("Call"), QStringLiteral("OwnCall"), {}));
    setupDialog_.setCallText(state_.OwnCall);
    state_.OwnLocator =
        upperUnlessEmpty(read(QStringLiteral("Locator"), QStringLiteral("OwnLocator"), {}));
    setupDialog_.setLocatorText(state_.OwnLocator);

    state_.Telnet_Call = read(QStringLiteral("Telnet"), QStringLiteral("Telnet_Call"), {});
    state_.Telnet_Host = read(QStringLiteral("Telnet"), QStringLiteral("Telnet_Host"), {});
    state_.Telnet_Port = read(QStringLiteral("Telnet"), QStringLiteral("Telnet_Port"), {});

    // Off unless the user switched it on: there may be no page to ask.
    state_.AutoUpdateCheck_Value =
        read(QStringLiteral("AutoUpdateCheck"), QStringLiteral("UpdateCheck"), {});
    setupDialog_.setAutoUpdateChecked(state_.AutoUpdateCheck_Value.toLower() ==
                                      QLatin1String("on"));
    const QString downloadPage =
        read(QStringLiteral("AutoUpdateCheck"), QStringLiteral("DownloadPage"), {}).trimmed();
    if (!downloadPage.isEmpty()) {
        state_.UpdatePage_Url = downloadPage;
    }

    Read_Position();
}

void SettingsFile::Read_Position() {
    state_.Pos_Left = read(QStringLiteral("Position"), QStringLiteral("Left"), {});
    state_.Pos_Top = read(QStringLiteral("Position"), QStringLiteral("Top"), {});
    state_.Pos_SSTab =
        read(QStringLiteral("Position"), QStringLiteral("SSTAB"), QStringLiteral("0"));
}

void SettingsFile::Create_Settings() {
    state_.Telnet_Call = state_.Telnet_DefaultCall;
    state_.Telnet_Host = state_.Telnet_DefaultHost;
    state_.Telnet_Port = state_.Telnet_DefaultPort;

    state_.OwnCall =
        Check_OwnCall(state_, platform_, *this, state_.OwnCall, state_.Check_OwnCall_Arg);
    if (state_.OwnCall.isEmpty()) {
        platform_.beep(800, 200);
        MsgBox_Pos(platform_);
        platform_.messageBox(
            QStringLiteral("Sorry, without a valid call sign ZKR_MUF will now be terminated !"),
            MsgButtons::OkOnly, QStringLiteral("ZKR_MUF"));
        state_.Busy = true;
        shutDown();
    }
    // The appended line ends leave the empty lines that lay the file out.
    write(QStringLiteral("Version"), QStringLiteral("Version"),
          state_.ProgramVersion + state_.CrLf);
    write(QStringLiteral("Call"), QStringLiteral("OwnCall"), state_.OwnCall + state_.CrLf);

    // The prompt starts empty: a square filled in would pass for the
    // user's own at a quick Enter. A wrong entry comes back with what is
    // wrong with it; Cancel leaves the locator unset, which the window
    // shows until Setup sets one.
    QString entry;
    QString problem;
    state_.OwnLocator.clear();
    for (;;) {
        platform_.beep(800, 200);
        MsgBox_Pos(platform_);
        const QString question = QStringLiteral("What is your Locator ? ");
        const std::optional<QString> answer = platform_.inputBox(
            problem.isEmpty() ? question : problem + state_.CrLf + state_.CrLf + question,
            QString(), entry);
        if (!answer) {
            break;
        }
        entry = answer->trimmed().toUpper();
        problem = locatorProblem(entry);
        if (problem.isEmpty()) {
            state_.OwnLocator = entry;
            break;
        }
        platform_.beep(800, 200);
    }

    write(QStringLiteral("Locator"), QStringLiteral("OwnLocator"), state_.OwnLocator + state_.CrLf);
    write(QStringLiteral("Telnet"), QStringLiteral("Telnet_Call"), state_.Telnet_Call);
    write(QStringLiteral("Telnet"), QStringLiteral("Telnet_Host"), state_.Telnet_Host);
    write(QStringLiteral("Telnet"), QStringLiteral("Telnet_Port"),
          state_.Telnet_Port + state_.CrLf);

    // Lets the user choose a cluster.
    setupDialog_.Setup_Click();

    write(QStringLiteral("AutoUpdateCheck"), QStringLiteral("UpdateCheck"),
          QStringLiteral("off") + state_.CrLf);
}

void SettingsFile::Save_Settings() {
    write(QStringLiteral("Version"), QStringLiteral("Version"), state_.ProgramVersion);
    state_.OwnCall = upperUnlessEmpty(setupDialog_.callText());
    write(QStringLiteral("Call"), QStringLiteral("OwnCall"), state_.OwnCall);
    state_.OwnLocator = upperUnlessEmpty(setupDialog_.locatorText().trimmed());
    write(QStringLiteral("Locator"), QStringLiteral("OwnLocator"), state_.OwnLocator);
    write(QStringLiteral("Telnet"), QStringLiteral("Telnet_Call"), state_.Telnet_Call);
    write(QStringLiteral("Telnet"), QStringLiteral("Telnet_Host"), state_.Telnet_Host);
    write(QStringLiteral("Telnet"), QStringLiteral("Telnet_Port"), state_.Telnet_Port);
    write(QStringLiteral("AutoUpdateCheck"), QStringLiteral("UpdateCheck"),
          setupDialog_.isAutoUpdateChecked() ? QStringLiteral("on") : QStringLiteral("off"));
    writePosition();
    write(QStringLiteral("Position"), QStringLiteral("SSTAB"),
          QString::number(mainWindow_.selectedTab()));
}

void SettingsFile::writePosition() {
    write(QStringLiteral("Position"), QStringLiteral("Left"),
          QString::number(mainWindow_.windowLeft()));
    write(QStringLiteral("Position"), QStringLiteral("Top"),
          QString::number(mainWindow_.windowTop()));
}

void SettingsFile::Save_Position_And_End() {
    // A minimised window's coordinates mean nothing: keep the stored ones.
    if (!mainWindow_.isWindowMinimized()) {
        writePosition();
    }
    write(QStringLiteral("Position"), QStringLiteral("SSTAB"),
          QString::number(mainWindow_.selectedTab()));
    mainWindow_.unloadAllWindows();
    platform_.endProgram(0);
    std::abort(); // endProgram never returns
}

void SettingsFile::shutDown() {
    mainWindow_.Winsock_Close();
    Save_Position_And_End();
}

} // namespace zkr
