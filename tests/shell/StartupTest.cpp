#include "Startup.h"
#include "ProgramState.h"
#include "QtPrinters.h"
#include "ScriptedPlatform.h"
#include "SiteDefaults.h"
#include "SpotLineParsing.h"
#include "StartupWindow.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

using namespace zkr;
using ::testing::ElementsAre;

namespace {

// Records the calls start-up makes into the window, in order; the settings
// step runs a scripted stand-in for the settings file.
class RecordingWindow : public StartupWindow {
public:
    QStringList calls;
    std::function<void()> onCheckSettings;
    QPoint position{-1, -1};
    QString caption;
    int tab = -1;

    void setMainCaption(const QString &text) override { caption = text; }
    void setTimerInterval(int ms) override { calls << QStringLiteral("interval %1").arg(ms); }
    void setTimerEnabled(bool on) override { calls << QStringLiteral("timer %1").arg(on); }
    void layoutInitial() override { calls << QStringLiteral("layoutInitial"); }
    void checkSettingsFile() override {
        calls << QStringLiteral("checkSettingsFile");
        if (onCheckSettings) {
            onCheckSettings();
        }
    }
    void showOwnCallLabels(const QString &call, const QString &locator) override {
        calls << QStringLiteral("labels %1 / %2").arg(call, locator);
    }
    void selectTab(int index) override { tab = index; }
    void setSetupSaveEnabled(bool on) override { calls << QStringLiteral("setupSave %1").arg(on); }
    QSize mainWindowSize() override { return {1000, 600}; }
    void moveMainWindow(QPoint topLeft) override { position = topLeft; }
    void centreDialogsOverMain() override { calls << QStringLiteral("centreDialogs"); }
    void prepareDeveloperConsole() override { calls << QStringLiteral("console"); }
    void layoutByMode() override { calls << QStringLiteral("layoutByMode"); }
    void telnetConnect() override { calls << QStringLiteral("telnetConnect"); }
    void replaySpotFile() override { calls << QStringLiteral("replay"); }
};

struct StartupRun {
    ProgramState state;
    ScriptedPlatform platform;
    RecordingWindow window;

    // Settings as the file would give them.
    QString ownCall = QStringLiteral("DL1ABC");
    QString posLeft, posTop, posTab = QStringLiteral("0");

    StartupRun() {
        platform.setApplicationFolder(QStringLiteral("/opt/zkr"));
        window.onCheckSettings = [this] {
            state.OwnCall = ownCall;
            state.OwnLocator = QStringLiteral("JO62QM");
            state.Pos_Left = posLeft;
            state.Pos_Top = posTop;
            state.Pos_SSTab = posTab;
        };
    }
    void start(const QString &commandLine = QString()) {
        platform.setCommandLine(commandLine);
        Form_Load(state, platform, window);
    }
};

TEST(Startup, SetsDefaultsAndConstants) {
    StartupRun run;
    run.start();
    const ProgramState &s = run.state;
    EXPECT_EQ(s.ProgramVersion, QStringLiteral("1.30"));
    EXPECT_DOUBLE_EQ(s.ProgramVersion_Num, 1.3);
    EXPECT_EQ(run.window.caption, QStringLiteral("ZKR_MUF V1.30      MUF Calculator by QQ7ZKR"));
    EXPECT_EQ(s.IniFilePath, QStringLiteral("/opt/zkr/zkr_muf.ini"));
    EXPECT_EQ(s.OwnLocator_Default, QStringLiteral("JO62QM"));
    EXPECT_EQ(s.SpotLines.size(), 11);
    EXPECT_EQ(s.Telnet_Lines.size(), 11);
    EXPECT_EQ(s.SpotPrefix, QStringLiteral("DX de "));
    EXPECT_EQ(s.MaxSpotLines, 250);
    EXPECT_EQ(s.Telnet_DebugFile, QStringLiteral("Telnet_Debug_Datei.txt"));
    EXPECT_EQ(s.EarthRadius, 6367);
    EXPECT_EQ(s.EsLayerHeight, 110);
    EXPECT_EQ(s.Distance_Limit, 1500);
    EXPECT_DOUBLE_EQ(s.Deg2Rad * s.Rad2Deg, 1.0);
    EXPECT_EQ(s.CrLf, QStringLiteral("\r\n"));
    EXPECT_EQ(s.Color_Black, QStringLiteral("0"));
    EXPECT_EQ(s.Color_Magenta, QStringLiteral("16711935"));
    EXPECT_EQ(s.Color_Grey, QStringLiteral("11579568"));
    EXPECT_EQ(s.MinFrequency_MHz, 144);
    EXPECT_TRUE(s.Web_Offline);
    EXPECT_FALSE(s.Busy);
    EXPECT_FALSE(s.Eval_Flag);
    EXPECT_EQ(s.WebCluster_Url, site::WebClusterUrl);
    EXPECT_TRUE(s.WebCluster_Url.endsWith(QStringLiteral("/DxSpots.aspx?count=200&range=3")));
    EXPECT_EQ(s.UpdatePage_Url, site::DownloadPageUrl);
    EXPECT_EQ(s.Telnet_Call, site::DefaultClusterCall);
    EXPECT_EQ(s.Telnet_Host, site::DefaultClusterHost);
    EXPECT_EQ(s.Telnet_Port, QStringLiteral("7300"));
    EXPECT_TRUE(run.platform.log().isEmpty())
        << run.platform.log().join(QLatin1Char('\n')).toStdString();
}

TEST(Startup, EnvironmentNamesAnotherSpotListAndDownloadPage) {
    StartupRun run;
    run.platform.setEnvironmentValue("ZKR_MUF_WEBCLUSTER_URL", "http://127.0.0.1:8080/spots");
    run.platform.setEnvironmentValue("ZKR_MUF_DOWNLOAD_URL", "http://127.0.0.1:8080/download");
    run.start();
    EXPECT_EQ(run.state.WebCluster_Url, "http://127.0.0.1:8080/spots");
    EXPECT_EQ(run.state.UpdatePage_Url, "http://127.0.0.1:8080/download");
}

TEST(Startup, RunsItsStepsInOrder) {
    StartupRun run;
    run.start();
    EXPECT_THAT(run.window.calls,
                ElementsAre(QStringLiteral("interval 1000"), QStringLiteral("layoutInitial"),
                            QStringLiteral("checkSettingsFile"),
                            QStringLiteral("labels CALL DL1ABC / LOC JO62QM"),
                            QStringLiteral("setupSave 0"), QStringLiteral("centreDialogs"),
                            QStringLiteral("layoutByMode"), QStringLiteral("telnetConnect")));
}

struct ModeCase {
    const char *name;
    const char *ownCall;
    const char *commandLine;
    const char *runMode;
    const char *host;
    const char *port;
    const char *sourceCall; // last window call: how the source starts
};

class StartupModes : public ::testing::TestWithParam<ModeCase> {};

TEST_P(StartupModes, ChooseModeClusterAndSource) {
    const ModeCase &c = GetParam();
    StartupRun run;
    run.ownCall = QString::fromLatin1(c.ownCall);
    run.window.onCheckSettings = [&run] {
        run.state.OwnCall = run.ownCall;
        run.state.Telnet_Host = QStringLiteral("stored.example.net");
        run.state.Telnet_Port = QStringLiteral("23");
    };
    run.start(QString::fromLatin1(c.commandLine));
    EXPECT_EQ(run.state.RunMode, QString::fromLatin1(c.runMode));
    EXPECT_EQ(run.state.Telnet_Host, QString::fromLatin1(c.host));
    EXPECT_EQ(run.state.Telnet_Port, QString::fromLatin1(c.port));
    EXPECT_EQ(run.window.calls.constLast(), QString::fromLatin1(c.sourceCall));
    const bool web = run.state.RunMode == QLatin1String("WEBCLUSTER");
    EXPECT_EQ(run.state.SpotLine_Columns, web ? WebColumns : ClusterColumns);
    EXPECT_EQ(run.state.Column_Count, 15);
}

const char *const DefaultHost = "gb7djk.dxcluster.net";

INSTANTIATE_TEST_SUITE_P(
    Table, StartupModes,
    ::testing::Values(
        ModeCase{"stored_cluster", "DL1ABC", "", "TELNETCLUSTER", "stored.example.net", "23",
                 "telnetConnect"},
        ModeCase{"web_option", "DL1ABC", "/WEBCLUSTER", "WEBCLUSTER", "stored.example.net", "23",
                 "timer 1"},
        ModeCase{"web_option_lower", "DL1ABC", "/webcluster", "WEBCLUSTER", "stored.example.net",
                 "23", "timer 1"},
        ModeCase{"telnet_option_ignores_stored_host", "DL1ABC", "/TELNETCLUSTER", "TELNETCLUSTER",
                 DefaultHost, "7300", "telnetConnect"},
        ModeCase{"dxspider_same_as_telnet", "DL1ABC", "/DxSpider", "TELNETCLUSTER", DefaultHost,
                 "7300", "telnetConnect"},
        ModeCase{"db0sue", "DL1ABC", "/DB0SUE", "TELNETCLUSTER", "db0sue.de", "8000",
                 "telnetConnect"},
        ModeCase{"file_option", "DL1ABC", "/FILE", "FILE", "stored.example.net", "23", "replay"},
        ModeCase{"nocall_marker", "!nocall!", "", "WEBCLUSTER", "stored.example.net", "23",
                 "timer 1"},
        ModeCase{"file_marker", "!FILE!", "", "FILE", "stored.example.net", "23", "replay"},
        ModeCase{"file_marker_overridden", "!FILE!", "/DB0SUE", "TELNETCLUSTER", "db0sue.de",
                 "8000", "telnetConnect"},
        ModeCase{"marker_needs_exact_text", "!NOCALL", "", "TELNETCLUSTER", "stored.example.net",
                 "23", "telnetConnect"}),
    [](const auto &caseInfo) { return std::string(caseInfo.param.name); });

TEST(CommandLine, UnknownArgumentBeepsAndNamesItAsTyped) {
    const char *unknown[] = {" /webcluster", "/webcluster now", "/WEB", "-webcluster", "/FILE "};
    for (const char *argument : unknown) {
        StartupRun run;
        run.start(QString::fromLatin1(argument));
        EXPECT_EQ(run.state.RunMode, QStringLiteral("TELNETCLUSTER")) << argument;
        EXPECT_THAT(
            run.platform.log(),
            ElementsAre(QStringLiteral("beep 800 200"),
                        QStringLiteral("msgbox 0 \"ZKR_MUF\" \"") + QString::fromLatin1(argument) +
                            QStringLiteral(" unknown command, default setting is used !\" -> 1")));
    }
}

TEST(Startup, PlacesTheWindowFromTheSavedPosition) {
    struct Case {
        const char *left;
        const char *top;
        QPoint expected;
    } cases[] = {
        {"", "", {460, 240}}, // centred on the 1920 x 1080 screen
        {"", "0", {460, 0}},  // an empty left centres, "0" is the top edge
        {"12", "34", {12, 34}},
        {"-1500", "20.5", {-1500, 20}}, // a window on a monitor to the left
    };
    for (const Case &c : cases) {
        StartupRun run;
        run.posLeft = QString::fromLatin1(c.left);
        run.posTop = QString::fromLatin1(c.top);
        run.start();
        EXPECT_EQ(run.window.position, c.expected) << c.left << "," << c.top;
    }
}

TEST(Startup, DamagedSavedPositionIsReportedAndTheWindowCentred) {
    StartupRun run;
    run.posLeft = QStringLiteral("1e400");
    run.posLeft = QString(40, QLatin1Char('9'));
    run.start();
    EXPECT_EQ(run.window.position, QPoint(460, 240));
    ASSERT_EQ(run.platform.messages().size(), 1);
    EXPECT_TRUE(run.platform.messages().first().contains(QStringLiteral("Overflow")));
    // Start-up went on to start the source.
    EXPECT_EQ(run.window.calls.constLast(), QStringLiteral("telnetConnect"));
}

TEST(Startup, SelectsTheSavedTabRounded) {
    for (auto [saved, expected] : {std::pair{"2", 2}, {"2.5", 2}, {"3.5", 4}, {"", 0}}) {
        StartupRun run;
        run.posTab = QString::fromLatin1(saved);
        run.start();
        EXPECT_EQ(run.window.tab, expected) << saved;
    }
}

TEST(Startup, OpensTheConsoleOnlyOnADeveloperWorkstationInTelnetMode) {
    struct Case {
        QString computer;
        const char *commandLine;
        bool console;
    } cases[] = {
        {site::DeveloperWorkstation1, "", true},
        {site::DeveloperWorkstation2, "", true},
        {site::DeveloperWorkstation1.toLower(), "", false},
        {site::DeveloperWorkstation1, "/WEBCLUSTER", false},
        {QStringLiteral("shack-pc"), "", false},
        {QString(), "", false},
    };
    for (const Case &c : cases) {
        StartupRun run;
        if (!c.computer.isNull()) {
            run.platform.setEnvironmentValue(QStringLiteral("COMPUTERNAME"), c.computer);
        }
        run.start(QString::fromLatin1(c.commandLine));
        EXPECT_EQ(run.window.calls.contains(QStringLiteral("console")), c.console)
            << c.computer.toStdString() << c.commandLine;
    }
}

TEST(Startup, SecondRunKeepsTheChosenClusterAndMode) {
    // The telnet console's Connect runs start-up again.
    StartupRun run;
    run.window.onCheckSettings = nullptr;
    run.state.RunMode = QStringLiteral("WEBCLUSTER");
    run.state.Telnet_Host = QStringLiteral("node.example.net");
    run.state.SpotLines = QStringList(40, QStringLiteral("x"));
    run.start();
    EXPECT_EQ(run.state.RunMode, QStringLiteral("WEBCLUSTER"));
    EXPECT_EQ(run.state.Telnet_Host, QStringLiteral("node.example.net"));
    EXPECT_EQ(run.state.SpotLines.size(), 11);
    EXPECT_EQ(run.state.SpotLines.at(10), QStringLiteral("x"));
}

} // namespace
