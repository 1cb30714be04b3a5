#include "Startup.h"
#include "MainWindowLink.h"
#include "ProgramEnded.h"
#include "SettingsFile.h"
#include "SetupDialogLink.h"
#include "ShellFakes.h"
#include "StartupWindow.h"

#include <QFileInfo>

namespace zkr {
namespace {

using test::readBytes;

const QString Beep = "beep 800 200", Arm = "arm centre";
const QString CallPrompt =
    R"(inputbox "                                   ZKR_MUF" "What is YOUR call sign ?" "" -> )";
const QString LocatorPrompt = R"(inputbox "" "What is your Locator ? " "" -> )";

QByteArray firstRunFile(const char *call) {
    return QByteArray("[Version]\r\nVersion=1.30\r\n\r\n[Call]\r\nOwnCall=") + call +
           "\r\n\r\n[Locator]\r\nOwnLocator=\r\n\r\n[Telnet]\r\nTelnet_Call=" +
           site::DefaultClusterCall.toLatin1() +
           "\r\nTelnet_Host=" + site::DefaultClusterHost.toLatin1() +
           "\r\nTelnet_Port=" + site::DefaultClusterPort.toLatin1() +
           "\r\n\r\n[AutoUpdateCheck]\r\nUpdateCheck=off\r\n\r\n";
}

// A settings file of this call using the cluster stored.example.net:23.
QByteArray storedFile(const QString &call, const QString &more = {}) {
    return QString("[Version]\r\nVersion=1.30\r\n[Call]\r\nOwnCall=%1\r\n[Locator]\r\n"
                   "OwnLocator=JO62QM\r\n[Telnet]\r\nTelnet_Host=stored.example.net\r\n"
                   "Telnet_Port=23\r\n%2")
        .arg(call, more)
        .toLatin1();
}

// Main window and setup dialog without widgets: the settings steps run for real
// on a file in a folder of its own, the other calls are written down.
struct StartupRig : StartupWindow, MainWindowLink, SetupDialogLink {
    QTemporaryDir dir;
    QString ini = dir.filePath("zkr_muf.ini");
    ProgramState state;
    ScriptedPlatform platform;
    SettingsFile settings{state, platform, *this, *this};
    QStringList calls, setupEvents;
    QPoint position{-1, -1};
    int left = 100, top = 50, tab = 0;
    bool minimized = false;

    explicit StartupRig(const QByteArray &file = {}) {
        platform.setApplicationFolder(dir.path());
        state.IniFilePath = ini;
        if (!file.isNull()) {
            EXPECT_TRUE(test::writeBytes(ini, file));
        }
    }
    void start(const QString &commandLine = {}) {
        platform.setCommandLine(commandLine);
        Form_Load(state, platform, *this);
    }

    void setMainCaption(const QString &) override {}
    void setTimerInterval(int) override {}
    void setTimerEnabled(bool on) override { calls << QString("timer %1").arg(on); }
    void layoutInitial() override { settings.Read_Position(); }
    void checkSettingsFile() override { settings.Check_SettingsFile(); }
    void showOwnCallLabels(const QString &c, const QString &l) override { calls << c + " / " + l; }
    void selectTab(int index) override { tab = index; }
    void setSetupSaveEnabled(bool) override {}
    QSize mainWindowSize() override { return {1000, 600}; }
    void moveMainWindow(QPoint topLeft) override { position = topLeft; }
    void centreDialogsOverMain() override { calls << "centreDialogs"; }
    void prepareDeveloperConsole() override { calls << "console"; }
    void layoutByMode() override { calls << "layoutByMode"; }
    void telnetConnect() override { calls << "telnetConnect"; }
    void replaySpotFile() override { calls << "replay"; }

    int windowLeft() const override { return left; }
    int windowTop() const override { return top; }
    bool isWindowMinimized() const override { return minimized; }
    int selectedTab() const override { return tab; }
    void Winsock_Close() override { calls << "Winsock_Close"; }
    void unloadAllWindows() override { calls << "unloadAllWindows"; }

    QString callText() const override { return {}; }
    void setCallText(const QString &) override {}
    QString locatorText() const override { return {}; }
    void setLocatorText(const QString &) override {}
    bool isAutoUpdateChecked() const override { return false; }
    void setAutoUpdateChecked(bool on) override { setupEvents << QString("autoupdate %1").arg(on); }
    void Setup_Click() override { setupEvents << "Setup_Click"; }
    void showInFront() override {}
    void setSaveEnabled(bool) override {}
    void centreOver(const QRect &) override {}
    void unload() override {}
};

// On the developer workstations, where the console opens in telnet mode only.
TEST(Startup, OwnCallAndCommandLineChooseModeClusterAndSource) {
    const char *const Telnet = "TELNETCLUSTER", *const Web = "WEBCLUSTER", *const File = "FILE";
    const char *const Stored = "stored.example.net:23", *const Djk = "gb7djk.dxcluster.net:7300",
                      *const Sue = "db0sue.de:8000";
    const QMap<QString, QString> source{
        {Telnet, "telnetConnect"}, {Web, "timer 1"}, {File, "replay"}};
    const struct {
        const char *ownCall, *commandLine, *mode, *cluster;
        bool refused; // the argument is reported and the stored setting used
    } cases[] = {
        {"DL1ABC", "", Telnet, Stored, false},
        {"DL1ABC", "/webcluster", Web, Stored, false},
        {"DL1ABC", "/TELNETCLUSTER", Telnet, Djk, false},
        {"DL1ABC", "/DxSpider", Telnet, Djk, false},
        {"DL1ABC", "/DB0SUE", Telnet, Sue, false},
        {"DL1ABC", "/FILE", File, Stored, false},
        {"!nocall!", "", Web, Stored, false},
        {"!FILE!", "", File, Stored, false},
        {"!FILE!", "/DB0SUE", Telnet, Sue, false},
        {"!NOCALL", "", Telnet, Stored, false},
        {"DL1ABC", " /webcluster", Telnet, Stored, true},
        {"DL1ABC", "/WEB", Telnet, Stored, true},
    };
    const QString refusal =
        R"(msgbox 0 "ZKR_MUF" "%1 unknown command, default setting is used !" -> 1)";
    int row = 0;
    for (const auto &c : cases) {
        SCOPED_TRACE(std::string(c.ownCall) + " '" + c.commandLine + "'");
        StartupRig rig(storedFile(c.ownCall));
        rig.platform.setEnvironmentValue("COMPUTERNAME", ++row % 2 ? site::DeveloperWorkstation1
                                                                   : site::DeveloperWorkstation2);
        rig.start(c.commandLine);
        EXPECT_EQ(rig.state.RunMode, c.mode);
        EXPECT_EQ(rig.state.Telnet_Host + ":" + rig.state.Telnet_Port, c.cluster);
        EXPECT_EQ(rig.calls.constLast(), source[c.mode]);
        EXPECT_EQ(rig.calls.contains("console"), QString(c.mode) == Telnet);
        EXPECT_EQ(rig.platform.log(),
                  c.refused ? QStringList({Beep, refusal.arg(c.commandLine)}) : QStringList());
    }
}

TEST(Startup, PlacesTheWindowAndSelectsTheTabSaved) {
    const struct {
        QString left, top, tab;
        QPoint at;
        int tabShown;
    } cases[] = {
        {"", "", "2", {460, 240}, 2},               // centred on the 1920 x 1080 screen
        {"", "0", "2.5", {460, 0}, 2},              // an empty left centres, "0" is the top edge
        {"12", "34", "3.5", {12, 34}, 4},           // tabs round half to even
        {"-1500", "20.5", "", {-1500, 20}, 0},      // a window on a monitor to the left
        {QString(40, '9'), "", "0", {460, 240}, 0}, // damaged: reported, centred
    };
    for (const auto &c : cases) {
        SCOPED_TRACE((c.left + "," + c.top + "," + c.tab).toStdString());
        StartupRig rig(storedFile(
            "DL1ABC",
            QString("[Position]\r\nLeft=%1\r\nTop=%2\r\nSSTAB=%3\r\n").arg(c.left, c.top, c.tab)));
        rig.start();
        EXPECT_EQ(rig.position, c.at);
        EXPECT_EQ(rig.tab, c.tabShown);
        const bool damaged = c.left.size() == 40;
        ASSERT_EQ(rig.platform.messages().size(), damaged ? 1 : 0);
        EXPECT_TRUE(!damaged || rig.platform.messages()[0].contains("Overflow"));
        EXPECT_EQ(rig.calls.constLast(), "telnetConnect"); // start-up went on
    }
}

// Where nobody may write (not even root: /proc) the first run asks once, goes
// on and leaves nothing behind. Its file is checked where an older one is replaced.
TEST(StartupSettings, FirstRunInAFolderNobodyMayWriteAsksOnceAndGoesOn) {
    StartupRig rig;
    rig.platform.setApplicationFolder("/proc");
    rig.platform.setUserFolder(UserFolder::Config, "/proc/zkr_muf");
    for (const char *answer : {"dl1abc", "JO6", "jo62qm"}) {
        rig.platform.answerInputBox(QString(answer));
    }
    rig.start();
    // A rejected locator: two beeps, the prompt again with what is wrong.
    EXPECT_EQ(rig.platform.log(),
              QStringList({Beep, Arm, CallPrompt + R"("dl1abc")", Beep, Arm,
                           LocatorPrompt + R"("JO6")", Beep, Beep, Arm,
                           "inputbox \"\" \"\"JO6\" has 3 characters; a locator has 4 (JO62) or 6 "
                           "(JO62QM).\r\n\r\nWhat is your Locator ? \" \"JO6\" -> \"jo62qm\""}));
    EXPECT_TRUE(rig.state.Settings_Created);
    EXPECT_EQ(rig.setupEvents, QStringList({"Setup_Click", "autoupdate 0"}));
    EXPECT_EQ(rig.state.IniFilePath, "/proc/zkr_muf/zkr_muf.ini");
    EXPECT_THROW(rig.settings.Save_Position_And_End(), ProgramEnded);
    EXPECT_FALSE(QFileInfo::exists(rig.state.IniFilePath));
}

// Shutting down stores tab and position, but not a minimised window's.
TEST(StartupSettings, CancelAtTheCallPromptEndsTheProgramThroughShutDown) {
    for (const bool minimized : {false, true}) {
        StartupRig rig;
        rig.minimized = minimized;
        EXPECT_THROW(rig.start(), ProgramEnded); // no scripted answer: Cancel
        EXPECT_EQ(rig.platform.log(),
                  QStringList({Beep, Arm, CallPrompt + "cancel", Beep, Arm,
                               R"(msgbox 0 "ZKR_MUF" "Sorry, without a valid call sign ZKR_MUF )"
                               R"(will now be terminated !" -> 1)",
                               "end 0"}));
        EXPECT_TRUE(rig.state.Busy);
        EXPECT_EQ(rig.calls, QStringList({"Winsock_Close", "unloadAllWindows"}));
        EXPECT_EQ(readBytes(rig.ini), minimized
                                          ? "[Position]\r\nSSTAB=0\r\n"
                                          : "[Position]\r\nLeft=100\r\nTop=50\r\nSSTAB=0\r\n");
    }
}

TEST(StartupSettings, OnlyAnOlderFileIsReplaced) {
    for (const char *version : {"Version=1.2\r\n", "", "Version=1.30\r\n", "version = 1.31\r\n"}) {
        SCOPED_TRACE(version);
        const QByteArray old = QByteArray("[Version]\r\n") + version +
                               "[Call]\r\nOwnCall=dl1abc\r\n[Mine]\r\nx=1\r\n[Locator]\r\n"
                               "OwnLocator=jo62\r\n[AutoUpdateCheck]\r\nUpdateCheck=off\r\n";
        StartupRig rig(old);
        rig.platform.answerInputBox(QString("dk5xx"));
        rig.platform.answerInputBox(std::nullopt);
        rig.start();
        if (QByteArray(version).contains("1.3")) {
            EXPECT_TRUE(rig.platform.log().isEmpty());
            EXPECT_EQ(readBytes(rig.ini), old);
            EXPECT_TRUE(rig.calls.contains("CALL DL1ABC / LOC JO62")); // used upper-cased
            continue;
        }
        // Empty prompts; Cancel leaves the locator unset, and the window says so.
        EXPECT_EQ(rig.platform.log(), QStringList({Beep, Arm, CallPrompt + R"("dk5xx")", Beep, Arm,
                                                   LocatorPrompt + "cancel"}));
        EXPECT_EQ(readBytes(rig.ini), firstRunFile("DK5XX"));
        EXPECT_TRUE(rig.calls.contains("CALL DK5XX / Set your locator in Setup"));
        EXPECT_EQ(rig.setupEvents, QStringList({"autoupdate 0", "Setup_Click", "autoupdate 0"}));
    }
}

// The settings file may name a download page; the environment's stays otherwise.
TEST(StartupSettings, UpdateCheckValueSetsTheSetupBox) {
    const std::tuple<const char *, const char *, const char *> cases[] = {
        {"UpdateCheck = ON ", "autoupdate 1", "http://env.test/"},
        {"", "autoupdate 0", "http://env.test/"},
        {"UpdateCheck=yes", "autoupdate 0", "http://env.test/"},
        {"DownloadPage = http://mirror.test/dl ", "autoupdate 0", "http://mirror.test/dl"}};
    for (const auto &[line, event, page] : cases) {
        StartupRig rig(QByteArray("[AutoUpdateCheck]\r\n") + line + "\r\n");
        rig.state.UpdatePage_Url = "http://env.test/";
        rig.settings.Read_Settings();
        EXPECT_EQ(rig.setupEvents, QStringList{event}) << line;
        EXPECT_EQ(rig.state.UpdatePage_Url, page) << line;
    }
}

// A writable program folder is a portable installation; otherwise the user's
// folders hold the settings and records, and the user's cluster list comes
// before the shipped one.
TEST(ProgramFolders, PortableBesideTheProgramInstalledInTheUsersFolders) {
    QTemporaryDir home;
    ScriptedPlatform platform;
    platform.setUserFolder(UserFolder::Config, home.filePath("config/zkr_muf"));
    platform.setUserFolder(UserFolder::Data, home.filePath("data/zkr_muf"));

    platform.setApplicationFolder(home.path());
    ProgramFolders portable = ProgramFolders::find(platform);
    EXPECT_TRUE(portable.portable);
    EXPECT_EQ(portable.settings + "|" + portable.data, home.path() + "|" + home.path());
    EXPECT_EQ(portable.clusterLists, QStringList{home.filePath("TelnetDXCluster.txt")});

    platform.setApplicationFolder("/proc/self");
    const ProgramFolders installed = ProgramFolders::find(platform);
    EXPECT_FALSE(installed.portable);
    EXPECT_EQ(installed.settings, home.filePath("config/zkr_muf"));
    EXPECT_TRUE(QFileInfo(installed.data).isDir()) << "made for the first save";
    EXPECT_EQ(
        installed.clusterLists,
        QStringList({home.filePath("data/zkr_muf/TelnetDXCluster.txt"),
                     "/proc/share/zkr_muf/TelnetDXCluster.txt", "/proc/self/TelnetDXCluster.txt"}));
    EXPECT_EQ(installed.clusterList(), "");
    ASSERT_TRUE(test::writeBytes(installed.clusterLists[0], ""));
    EXPECT_EQ(installed.clusterList(), installed.clusterLists[0]);

    // Installed where this user may write (root, /usr/bin): still installed.
    ASSERT_TRUE(QDir(home.path()).mkpath("usr/bin") &&
                QDir(home.path()).mkpath("usr/share/zkr_muf"));
    platform.setApplicationFolder(home.filePath("usr/bin"));
    EXPECT_FALSE(ProgramFolders::find(platform).portable);
}

} // namespace
} // namespace zkr
