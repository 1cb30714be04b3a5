#pragma once

#include "ProgramFolders.h"

#include <QString>
#include <QStringList>

#include <cstdint>

namespace zkr {

// The program-wide configuration and session state: one instance lives for
// the whole process. Spots are not kept here: each one travels as its own
// value (EvaluatedSpot) from the feed through the evaluation to whoever
// subscribes.
struct ProgramState {
    // --- Start-up, versions and files ---
    QString ProgramVersion;
    double ProgramVersion_Num = 0;
    QString ProgramDate;
    QString IniFileName;
    QString IniFilePath;
    ProgramFolders Folders;
    QString ComputerName;
    QString Check_OwnCall_Arg;

    // --- Run mode and sources ---
    QString RunMode;
    QString Telnet_DefaultCall;
    QString Telnet_DefaultHost;
    QString Telnet_DefaultPort;
    QString Telnet_Call;
    QString Telnet_Host;
    QString Telnet_Port;
    bool Telnet_Connected = false;
    QString Telnet_DebugFile;
    QString WebCluster_Url;
    QString HomePage_Url;    // "" while the project has no site
    QString ContactMail_Url; // mailto:, "" while there is none
    bool Web_Offline = false;
    bool FileMode_Active = false;
    bool FirstFetch = false;
    QString SpotPage_Previous;
    QStringList SpotPage_Lines;

    // Received text as it came, for the console's debug file: element 0
    // stays empty, the oldest chunks go first past a limit.
    QStringList Console_Lines;

    // --- Flags and counters of the main window ---
    bool Busy = false;
    std::int16_t Refresh_Seconds = 0;
    bool EsSpotsOnly_Changed = false;
    bool Over144_Changed = false;
    bool Eval_Flag = false;

    QString CrLf;

    // --- Settings file ---
    QString OwnCall;
    QString OwnLocator;
    double IniVersion = 0;
    QString Pos_Left;
    QString Pos_Top;
    QString Pos_SSTab;
    QString AutoUpdateCheck_Value;
    long Ini_Result_Length = 0;
    bool Settings_Created = false;
    bool Loading_Settings = false;
    bool Locator_Invalid = false;

    // --- Setup dialog and cluster list ---
    QString Call_BeforeSetup;
    QString RunMode_BeforeSetup;
    int Cluster_SelectedRow = 0;

    // --- Update check and message boxes ---
    QString UpdatePage_Url;
    QString Msg_Title;
    QString Msg_Text;
};

} // namespace zkr
