#include "ProgramEnded.h"
#include "ProgramState.h"
#include "QtPrinters.h"
#include "ScriptedPlatform.h"
#include "ShellFakes.h"
#include "SiteDefaults.h"
#include "Startup.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace zkr {
namespace {

const QString CallPrompt =
    QStringLiteral(R"(inputbox "                                   ZKR_MUF" )"
                   R"("What is YOUR call sign ?" "" -> )");
const QString LocatorPrompt =
    QStringLiteral(R"(inputbox "" "What is your Locator ? " "JO62QM" -> )");
const QString Beep = QStringLiteral("beep 800 200");
const QString Arm = QStringLiteral("arm centre");

const QByteArray CurrentFile = QByteArrayLiteral("[Version]\r\nVersion=1.30\r\n\r\n"
                                                 "[Call]\r\nOwnCall=dl1abc\r\n\r\n"
                                                 "[Locator]\r\nOwnLocator=jo62qm\r\n\r\n"
                                                 "[AutoUpdateCheck]\r\nUpdateCheck=off\r\n");

QByteArray firstRunFile(const char *call, const char *locator) {
    return QByteArray("[Version]\r\nVersion=1.30\r\n\r\n[Call]\r\nOwnCall=") + call +
           "\r\n\r\n[Locator]\r\nOwnLocator=" + locator +
           "\r\n\r\n[Telnet]\r\nTelnet_Call=" + site::DefaultClusterCall.toLatin1() +
           "\r\nTelnet_Host=" + site::DefaultClusterHost.toLatin1() +
           "\r\nTelnet_Port=" + site::DefaultClusterPort.toLatin1() +
           "\r\n\r\n[AutoUpdateCheck]\r\nUpdateCheck=on\r\n\r\n";
}

class StartupSettingsTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir_.isValid());
        platform_.setApplicationFolder(dir_.path());
        iniPath_ = dir_.filePath(QStringLiteral("zkr_muf.ini"));
    }
    void start() { Form_Load(state_, platform_, window_); }

    QTemporaryDir dir_;
    QString iniPath_;
    ProgramState state_;
    ScriptedPlatform platform_;
    test::FakeMainWindow window_{state_, platform_};
};

TEST_F(StartupSettingsTest, FirstRunAsksForCallAndLocatorAndWritesTheFile) {
    platform_.answerInputBox(QStringLiteral("dl1abc"));
    platform_.answerInputBox(QStringLiteral("JO6"));
    platform_.answerInputBox(QStringLiteral("jo62qm"));
    start();

    // A rejected locator is followed by two beeps before the next prompt.
    EXPECT_EQ(platform_.log(),
              (QStringList{Beep, Arm, CallPrompt + QStringLiteral(R"("dl1abc")"), Beep, Arm,
                           LocatorPrompt + QStringLiteral(R"("JO6")"), Beep, Beep, Arm,
                           LocatorPrompt + QStringLiteral(R"("jo62qm")")}));
    EXPECT_EQ(test::readBytes(iniPath_), firstRunFile("DL1ABC", "JO62QM"));
    EXPECT_EQ(state_.OwnCall, QStringLiteral("DL1ABC"));
    EXPECT_EQ(state_.OwnLocator, QStringLiteral("JO62QM"));
    EXPECT_TRUE(state_.Settings_Created);
    EXPECT_EQ(window_.callCaption, QStringLiteral("CALL DL1ABC"));
    EXPECT_EQ(window_.setup.events,
              (QStringList{QStringLiteral("Setup_Click"), QStringLiteral("autoupdate on")}));
    EXPECT_EQ(window_.calls, QStringList{QStringLiteral("telnetConnect")});
}

TEST_F(StartupSettingsTest, CancelAtTheCallPromptEndsTheProgramThroughShutDown) {
    platform_.answerInputBox(std::nullopt);
    EXPECT_THROW(start(), ProgramEnded);

    EXPECT_EQ(platform_.log(),
              (QStringList{Beep, Arm, CallPrompt + QStringLiteral("cancel"), Beep, Arm,
                           QStringLiteral(R"(msgbox 0 "ZKR_MUF" "Sorry, without a valid call sign )"
                                          R"(ZKR_MUF will now be terminated !" -> 1)"),
                           QStringLiteral("end 0")}));
    EXPECT_TRUE(state_.Busy);
    EXPECT_EQ(window_.calls,
              (QStringList{QStringLiteral("Winsock_Close"), QStringLiteral("unloadAllWindows")}));
    // Only the position is stored; the next start is a first run again.
    EXPECT_EQ(test::readBytes(iniPath_),
              QByteArrayLiteral("[Position]\r\nLeft=100\r\nTop=50\r\nSSTAB=0\r\n"));
}

TEST_F(StartupSettingsTest, OnlyAFileOfAnOlderVersionIsReplaced) {
    struct Case {
        const char *versionLine;
        bool replaced;
    };
    for (const Case c : {Case{"Version=1.2\r\n", true}, Case{"", true},
                         Case{"Version=1.30\r\n", false}, Case{"version = 1.31\r\n", false}}) {
        SCOPED_TRACE(c.versionLine);
        platform_ = ScriptedPlatform();
        platform_.setApplicationFolder(dir_.path());
        window_.setup.events.clear();
        const QByteArray old =
            QByteArray("[Version]\r\n") + c.versionLine +
            "[Call]\r\nOwnCall=dl1abc\r\n[Mine]\r\nx=1\r\n"
            "[Locator]\r\nOwnLocator=JO62\r\n[AutoUpdateCheck]\r\nUpdateCheck=off\r\n";
        ASSERT_TRUE(test::writeBytes(iniPath_, old));
        platform_.answerInputBox(QStringLiteral("dk5xx"));
        platform_.answerInputBox(std::nullopt);
        start();

        if (c.replaced) {
            // The call prompt offers the empty default, not the old call.
            EXPECT_EQ(platform_.log(),
                      (QStringList{Beep, Arm, CallPrompt + QStringLiteral(R"("dk5xx")"), Beep, Arm,
                                   LocatorPrompt + QStringLiteral("cancel")}));
            EXPECT_EQ(test::readBytes(iniPath_), firstRunFile("DK5XX", "JO62QM"));
            EXPECT_EQ(window_.setup.events,
                      (QStringList{QStringLiteral("autoupdate off"), QStringLiteral("Setup_Click"),
                                   QStringLiteral("autoupdate on")}));
        } else {
            EXPECT_TRUE(platform_.log().isEmpty());
            EXPECT_EQ(test::readBytes(iniPath_), old);
            EXPECT_EQ(state_.OwnCall, QStringLiteral("DL1ABC"));
        }
    }
}

TEST_F(StartupSettingsTest, LowerCaseOwnCallIsUsedUpperCasedAndNotRewritten) {
    ASSERT_TRUE(test::writeBytes(iniPath_, CurrentFile));
    start();
    EXPECT_TRUE(platform_.log().isEmpty());
    EXPECT_EQ(state_.OwnCall, QStringLiteral("DL1ABC"));
    EXPECT_EQ(state_.OwnLocator, QStringLiteral("JO62QM"));
    EXPECT_EQ(window_.setup.call, QStringLiteral("DL1ABC"));
    EXPECT_EQ(window_.callCaption, QStringLiteral("CALL DL1ABC"));
    EXPECT_FALSE(state_.Settings_Created);
    EXPECT_EQ(test::readBytes(iniPath_), CurrentFile);
}

TEST_F(StartupSettingsTest, UpdateCheckValueSetsTheSetupBox) {
    struct Case {
        const char *line;
        QStringList events;
    };
    const QStringList on{QStringLiteral("autoupdate on")};
    const Case cases[] = {{"UpdateCheck=on\r\n", on},
                          {"UpdateCheck = ON \r\n", on},
                          {"UpdateCheck=\r\n", on},
                          {"", on},
                          {"updatecheck=Off\r\n", {QStringLiteral("autoupdate off")}},
                          {"UpdateCheck=yes\r\n", {}}};
    state_.IniFilePath = iniPath_;
    for (const Case &c : cases) {
        SCOPED_TRACE(c.line);
        ASSERT_TRUE(test::writeBytes(iniPath_, QByteArray("[AutoUpdateCheck]\r\n") + c.line));
        window_.setup.events.clear();
        window_.settings.Read_Settings();
        EXPECT_EQ(window_.setup.events, c.events);
    }
}

TEST_F(StartupSettingsTest, ShutDownKeepsTheStoredPositionOfAMinimisedWindow) {
    state_.IniFilePath = iniPath_;
    for (const bool minimized : {true, false}) {
        SCOPED_TRACE(minimized);
        ASSERT_TRUE(test::writeBytes(iniPath_, "[Position]\r\nLeft=10\r\nTop=20\r\nSSTAB=0\r\n"));
        window_.minimized = minimized;
        window_.left = -300;
        window_.top = 200;
        window_.tab = 3;
        window_.calls.clear();
        EXPECT_THROW(window_.settings.Save_Position_And_End(), ProgramEnded);
        EXPECT_EQ(test::readBytes(iniPath_),
                  minimized
                      ? QByteArrayLiteral("[Position]\r\nLeft=10\r\nTop=20\r\nSSTAB=3\r\n")
                      : QByteArrayLiteral("[Position]\r\nLeft=-300\r\nTop=200\r\nSSTAB=3\r\n"));
        EXPECT_EQ(window_.calls, QStringList{QStringLiteral("unloadAllWindows")});
        EXPECT_EQ(platform_.log().constLast(), QStringLiteral("end 0"));
    }
}

TEST_F(StartupSettingsTest, SaveSettingsRewritesKeysInPlaceAndKeepsTheLayout) {
    ASSERT_TRUE(test::writeBytes(iniPath_, firstRunFile("DL1ABC", "JO62QM")));
    state_.IniFilePath = iniPath_;
    state_.ProgramVersion = QStringLiteral("1.30");
    state_.Telnet_Call = QStringLiteral("DB0XX");
    state_.Telnet_Host = site::DefaultClusterHost;
    state_.Telnet_Port = site::DefaultClusterPort;
    window_.setup.call = QStringLiteral("dl9zz");
    window_.setup.locator = QStringLiteral("jn58");
    window_.setup.autoUpdate = false;
    window_.left = 7;
    window_.top = 8;
    window_.tab = 1;
    window_.settings.Save_Settings();

    QByteArray expected = firstRunFile("DL9ZZ", "JN58");
    expected.replace("Telnet_Call=" + site::DefaultClusterCall.toLatin1(), "Telnet_Call=DB0XX");
    expected.replace("UpdateCheck=on", "UpdateCheck=off");
    expected += "[Position]\r\nLeft=7\r\nTop=8\r\nSSTAB=1\r\n";
    EXPECT_EQ(test::readBytes(iniPath_), expected);
    EXPECT_EQ(state_.OwnCall, QStringLiteral("DL9ZZ"));
}

TEST_F(StartupSettingsTest, UnknownCommandLineArgumentIsReportedAndIgnored) {
    struct Case {
        const char *argument;
        const char *mode;
        bool reported;
    };
    for (const Case c :
         {Case{"/webcluster", "WEBCLUSTER", false}, Case{" /WEBCLUSTER", "TELNETCLUSTER", true},
          Case{"/FILE now", "TELNETCLUSTER", true}}) {
        SCOPED_TRACE(c.argument);
        ASSERT_TRUE(test::writeBytes(iniPath_, CurrentFile));
        platform_.clearLog();
        state_.RunMode.clear();
        platform_.setCommandLine(QLatin1String(c.argument));
        start();
        EXPECT_EQ(state_.RunMode, QLatin1String(c.mode));
        const QStringList reported{
            Beep, QStringLiteral(
                      R"(msgbox 0 "ZKR_MUF" "%1 unknown command, default setting is used !" -> 1)")
                      .arg(QLatin1String(c.argument))};
        EXPECT_EQ(platform_.log(), c.reported ? reported : QStringList());
    }
}

} // namespace
} // namespace zkr
