#pragma once

#include <QString>
#include <QStringList>

#include <array>
#include <cstdint>

namespace zkr {

// The program-wide state: one instance lives for the whole process and every
// part of the program reads and writes it by these names. Types follow the
// arithmetic they take part in: 16-bit integers where an overflow or a
// rounding is visible to the user, a 32-bit float for the spot frequency.
// Arrays indexed from 0 are QStringLists whose size is upper bound + 1.
struct ProgramState {
    // --- Start-up, versions and files ---
    QString ProgramVersion;
    double ProgramVersion_Num = 0;
    QString ProgramDate;
    QString IniFileName;
    QString IniFilePath;
    QString ComputerName;
    QString Check_OwnCall_Arg;
    QString OwnLocator_Default;

    // --- Run mode and sources ---
    QString RunMode;
    QString Telnet_DefaultCall;
    QString Telnet_DefaultHost;
    QString Telnet_DefaultPort;
    QString Telnet_Call;
    QString Telnet_Host;
    QString Telnet_Port;
    bool Telnet_Connected = false;
    QString SpotPrefix;
    std::int16_t Telnet_MinFrequency = 0;
    QString Telnet_DebugFile;
    QString WebCluster_Url;
    bool Web_Offline = false;
    bool FileMode_Active = false;
    bool FirstFetch = false;
    QString SpotPage_Previous;
    QStringList SpotPage_Lines;

    // --- Telnet receive ---
    QString Telnet_RxData;
    QString Telnet_Text;
    QStringList Telnet_Parts;
    std::int32_t Telnet_PartCount = 0;
    QStringList Telnet_Lines;
    QStringList Console_Lines;
    std::int16_t Console_LineCount = 0;
    QString Telnet_PromptBlock;
    QString CurrentSpotLine;

    // --- Spot line list ---
    QStringList SpotLines;
    std::int32_t SpotLines_Last = 0;
    std::int16_t MaxSpotLines = 0;
    std::int16_t SpotLine_Count = 0;

    // --- Flags and counters of the main window ---
    bool Busy = false;
    std::int16_t Refresh_Seconds = 0;
    bool EsSpotsOnly_Changed = false;
    bool Over144_Changed = false;
    bool Eval_Flag = false;

    // --- Constants ---
    double Pi = 0;
    double Rad2Deg = 0;
    double Deg2Rad = 0;
    QString CrLf;
    std::int16_t EsLayerHeight = 0;
    std::int16_t EarthRadius = 0;
    std::int16_t Distance_Limit = 0;
    std::int16_t MinFrequency_MHz = 0;

    // --- Colours, decimal texts of &H00BBGGRR values ---
    QString Color_Black;
    QString Color_Magenta;
    QString Color_Grey;

    // --- Column table of spot lines: entries 1 to 15, see column() ---
    std::array<std::int16_t, 15> SpotLine_Columns{};
    std::int16_t Column_Count = 0;

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

    // --- Current spot record, overwritten spot by spot ---
    QString Spot_Line;
    QString Spot_Spotter;
    float Spot_Frequency = 0; // MHz
    QString Spot_DXCall;
    QString Spot_Comment;
    QString Spot_Time;
    QString Spot_Tail1;
    QString Spot_Tail2;
    QString Comment_Upper;
    QString Locator_1;
    QString Locator_2;
    QString Spot_Mode;

    // --- Path results of the current spot ---
    bool Locator_Wrong = false;
    double Spot_Lat1 = 0, Spot_Lon1 = 0;
    double Spot_Lat2 = 0, Spot_Lon2 = 0;
    double Own_Lat = 0, Own_Lon = 0;
    double Path_Angle = 0, Path_Distance = 0;
    double Path_Azimuth12 = 0, Path_Azimuth21 = 0;
    double Mid_Lat = 0, Mid_Lon = 0;
    QString Mid_Locator;
    double Hop_Angle = 0, Hop_Distance = 0, Hop_Azimuth = 0;
    double Path_Elevation = 0;
    double OwnMid_Angle = 0, OwnMid_Distance = 0, OwnMid_Azimuth = 0;
    double OwnMid_Elevation = 0;
    double Es_CriticalFrequency = 0;
    double Es_MUF = 0;
    double Own_MUF = 0;
    double Far_Lat = 0, Far_Lon = 0;
    QString Far_Locator;
    double OwnFar_Angle = 0, OwnFar_Distance = 0, OwnFar_Azimuth = 0;
    double OwnFar_Elevation = 0;
    QString Es_Flag;

    // Entry `entry` (1 to 15) of SpotLine_Columns.
    std::int16_t column(int entry) const {
        return SpotLine_Columns.at(static_cast<std::size_t>(entry - 1));
    }
};

} // namespace zkr
