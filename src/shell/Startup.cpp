#include "Startup.h"

#include "OwnCall.h"
#include "Platform.h"
#include "ProgramState.h"
#include "RunModes.h"
#include "RunTimeError.h"
#include "SiteDefaults.h"
#include "StartupWindow.h"
#include "TextFunctions.h"

#include <cmath>

namespace zkr {

namespace {

// Saved window coordinates are pixels; anything beyond this is a damaged file.
constexpr double MaxCoordinate = 1.0e6;

int coordinate(const QString &saved, int screenExtent, int windowExtent) {
    if (saved.isEmpty()) {
        return (screenExtent - windowExtent) / 2;
    }
    const double value = leadingNumber(saved);
    if (!std::isfinite(value) || std::fabs(value) > MaxCoordinate) {
        throw RunTimeError(RunTimeError::Overflow, QStringLiteral("window position"));
    }
    return static_cast<int>(roundHalfEven(value));
}

} // namespace

QPoint Main_WindowPosition(const QString &posLeft, const QString &posTop, QSize screen,
                           QSize window) {
    return QPoint(coordinate(posLeft, screen.width(), window.width()),
                  coordinate(posTop, screen.height(), window.height()));
}

bool Is_DeveloperWorkstation(const QString &computerName) {
    return computerName == site::DeveloperWorkstation1 ||
           computerName == site::DeveloperWorkstation2;
}

void Apply_CommandLine(ProgramState &state, Platform &platform, const QString &arguments) {
    const QString option = arguments.toUpper();
    if (option.isEmpty()) {
        return;
    }
    if (option == QLatin1String("/WEBCLUSTER")) {
        state.RunMode = WebMode;
    } else if (option == QLatin1String("/TELNETCLUSTER") || option == QLatin1String("/DXSPIDER")) {
        state.RunMode = TelnetMode;
        state.Telnet_Host = site::DefaultClusterHost;
        state.Telnet_Port = site::DefaultClusterPort;
    } else if (option == QLatin1String("/DB0SUE")) {
        state.RunMode = TelnetMode;
        state.Telnet_Host = site::Db0sueHost;
        state.Telnet_Port = site::Db0suePort;
    } else if (option == QLatin1String("/FILE")) {
        state.RunMode = FileMode;
    } else {
        platform.beep(800, 200);
        platform.messageBox(arguments +
                                QStringLiteral(" unknown command, default setting is used !"),
                            MsgButtons::OkOnly, QStringLiteral("ZKR_MUF"));
    }
}

void Form_Load(ProgramState &s, Platform &platform, StartupWindow &window) {
    // 1-2. Version and caption.
    s.ProgramVersion = QStringLiteral("1.30");
    s.ProgramVersion_Num = leadingNumber(s.ProgramVersion);
    s.ProgramDate = QStringLiteral("10.01.2025");
    window.setMainCaption(QStringLiteral("ZKR_MUF ") + QStringLiteral("V") + s.ProgramVersion +
                          QStringLiteral("      MUF Calculator by QQ7ZKR"));

    // 3. Settings file beside the executable, or in the user's folder when
    // the program is installed where the user cannot write.
    s.IniFileName = QLatin1String(ProgramFolders::SettingsName);
    s.Folders = ProgramFolders::find(platform);
    s.IniFilePath = s.Folders.settingsFile();

    // 4. Only the developer-workstation test uses the computer name.
    s.ComputerName = platform.environmentValue(QStringLiteral("Computername").toUpper());

    // 5-7. Defaults of the sources and the spot list.
    s.Check_OwnCall_Arg.clear();
    s.Telnet_Connected = false;
    s.Busy = false;
    s.Telnet_DebugFile = QStringLiteral("Telnet_Debug_Datei.txt");
    s.Telnet_DefaultCall = site::DefaultClusterCall;
    s.Telnet_DefaultHost = site::DefaultClusterHost;
    s.Telnet_DefaultPort = site::DefaultClusterPort;

    // 8-9.
    if (s.RunMode.isEmpty()) {
        s.RunMode = TelnetMode;
    }
    window.setTimerInterval(1000);

    // 10-12. Web refresh state and the constants of the path model.
    s.Refresh_Seconds = 0;
    s.EsSpotsOnly_Changed = false;
    s.Over144_Changed = false;
    s.SpotPage_Previous.clear();
    // The environment may name another spot list or download page (a
    // mirror, or a server of the tests on this machine).
    s.WebCluster_Url = platform.environmentValue(site::WebClusterUrlVariable);
    if (s.WebCluster_Url.isEmpty()) {
        s.WebCluster_Url = site::WebClusterUrl;
    }
    s.UpdatePage_Url = platform.environmentValue(site::DownloadPageUrlVariable);
    if (s.UpdatePage_Url.isEmpty()) {
        s.UpdatePage_Url = site::DownloadPageUrl;
    }
    s.HomePage_Url = site::HomePageUrl;
    s.ContactMail_Url = site::ContactMailUrl;
    s.CrLf = QStringLiteral("\r\n");
    s.Eval_Flag = false;

    // 13.
    if (s.Telnet_Host.isEmpty()) {
        s.Telnet_Call = s.Telnet_DefaultCall;
        s.Telnet_Host = s.Telnet_DefaultHost;
        s.Telnet_Port = s.Telnet_DefaultPort;
    }

    // 14-15. First layout pass, then the settings (or the first-run dialogue).
    window.layoutInitial();
    window.checkSettingsFile();

    // 16. An own call of "!NOCALL!" or "!FILE!" selects the mode for good.
    const QString ownCall = s.OwnCall.toUpper();
    if (ownCall == QLatin1String("!NOCALL!")) {
        s.RunMode = WebMode;
    }
    if (ownCall == QLatin1String("!FILE!")) {
        s.RunMode = FileMode;
    }

    // 17-20.
    window.showOwnCallLabels(QStringLiteral("CALL ") + s.OwnCall, ownLocatorCaption(s.OwnLocator));
    window.selectTab(static_cast<int>(roundHalfEven(leadingNumber(s.Pos_SSTab))));
    window.setSetupSaveEnabled(false);
    s.Web_Offline = true;

    // 21. Window placement; a damaged saved position is reported and the
    // window is centred instead.
    const QSize screen = platform.screenSize();
    const QSize size = window.mainWindowSize();
    try {
        window.moveMainWindow(Main_WindowPosition(s.Pos_Left, s.Pos_Top, screen, size));
    } catch (const RunTimeError &error) {
        reportRunTimeError(platform, error);
        window.moveMainWindow(Main_WindowPosition(QString(), QString(), screen, size));
    }
    window.centreDialogsOverMain();

    // 23. The command line; the source's column table follows from the run
    // mode when the source starts.
    Apply_CommandLine(s, platform, platform.commandLine());

    // 25.
    if (Is_DeveloperWorkstation(s.ComputerName) && s.RunMode == TelnetMode) {
        window.prepareDeveloperConsole();
    }

    // 26-27. Second layout pass, then the source of the mode.
    window.layoutByMode();
    const QString mode = s.RunMode.toUpper();
    if (mode == TelnetMode) {
        window.telnetConnect();
    } else if (mode == WebMode) {
        window.setTimerEnabled(true);
    } else if (mode == FileMode) {
        window.replaySpotFile();
    }
}

} // namespace zkr
