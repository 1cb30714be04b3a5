#pragma once

#include "ProgramShutdown.h"

#include <QString>

namespace zkr {

struct ProgramState;
class Platform;
class MainWindowLink;
class SetupDialogLink;

// Reads one key as the program always did: the value, or `defaultValue` when
// the key is missing, cut to 254 characters and trimmed of blanks. The
// length before trimming goes to Ini_Result_Length.
QString Ini_Read(ProgramState &state, const QString &section, const QString &key,
                 const QString &defaultValue, const QString &path);

// The settings file zkr_muf.ini beside the executable: the start-up check,
// reading, the first-run dialogue, saving, and the one shut-down path.
class SettingsFile : public ProgramShutdown {
public:
    SettingsFile(ProgramState &state, Platform &platform, MainWindowLink &mainWindow,
                 SetupDialogLink &setupDialog);

    // Reads the file; a missing file, or one from an older version (which is
    // deleted), runs the first-run dialogue and is read afterwards.
    void Check_SettingsFile();
    void Read_Settings();
    // Asks for call sign and locator and writes a new file. Refusing a call
    // sign ends the program.
    void Create_Settings();
    // Stores the setup dialog's entries and the main window's position.
    void Save_Settings();
    // Stores position (unless minimised) and tab, unloads every window and
    // ends the process.
    [[noreturn]] void Save_Position_And_End();
    // The first layout pass's own read of the saved position and tab.
    void Read_Position();

    // ProgramShutdown
    [[noreturn]] void shutDown() override;

private:
    QString read(const QString &section, const QString &key, const QString &defaultValue);
    void write(const QString &section, const QString &key, const QString &value);
    void writePosition();

    ProgramState &state_;
    Platform &platform_;
    MainWindowLink &mainWindow_;
    SetupDialogLink &setupDialog_;
};

} // namespace zkr
