#include "ProgramEnded.h"
#include "ProgramState.h"
#include "QtPrinters.h"
#include "ScriptedPlatform.h"
#include "ShellFakes.h"
#include "SiteDefaults.h"
#include "Startup.h"

#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace zkr {
namespace {

const QString Beep = QStringLiteral("beep 800 200");
const QString Arm = QStringLiteral("arm centre");
const QString CallPrompt =
    QStringLiteral(R"(inputbox "                                   ZKR_MUF" )"
                   R"("What is YOUR call sign ?" "" -> )");
const QString LocatorPrompt =
    QStringLiteral(R"(inputbox "" "What is your Locator ? " "JO62QM" -> )");

QByteArray firstRunFile(const char *call) {
    const QByteArray telnet = "Telnet_Call=" + site::DefaultClusterCall.toLatin1() +
                              "\r\nTelnet_Host=" + site::DefaultClusterHost.toLatin1() +
                              "\r\nTelnet_Port=" + site::DefaultClusterPort.toLatin1();
    return QByteArray("[Version]\r\nVersion=1.30\r\n\r\n[Call]\r\nOwnCall=") + call +
           "\r\n\r\n[Locator]\r\nOwnLocator=JO62QM\r\n\r\n[Telnet]\r\n" + telnet +
           "\r\n\r\n[AutoUpdateCheck]\r\nUpdateCheck=on\r\n\r\n";
}

class StartupSettingsTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir_.isValid());
        platform_.setApplicationFolder(dir_.path());
        state_.IniFilePath = ini_;
    }
    void start() { Form_Load(state_, platform_, window_); }
    void restart(const QByteArray &file) {
        ASSERT_TRUE(test::writeBytes(ini_, file));
        platform_ = ScriptedPlatform();
        platform_.setApplicationFolder(dir_.path());
        window_.setup.events.clear();
    }

    QTemporaryDir dir_;
    QString ini_ = dir_.filePath(QStringLiteral("zkr_muf.ini"));
    ProgramState state_;
    ScriptedPlatform platform_;
    test::FakeMainWindow window_{state_, platform_};
};

TEST_F(StartupSettingsTest, FirstRunAsksForCallAndLocatorAndWritesTheFile) {
    for (const char *answer : {"dl1abc", "JO6", "jo62qm"}) {
        platform_.answerInputBox(QLatin1String(answer));
    }
    start();
    // A rejected locator is followed by two beeps before the next prompt.
    EXPECT_EQ(platform_.log(),
              (QStringList{Beep, Arm, CallPrompt + QStringLiteral(R"("dl1abc")"), Beep, Arm,
                           LocatorPrompt + QStringLiteral(R"("JO6")"), Beep, Beep, Arm,
                           LocatorPrompt + QStringLiteral(R"("jo62qm")")}));
    EXPECT_EQ(test::readBytes(ini_), firstRunFile("DL1ABC"));
    EXPECT_EQ(window_.callCaption, QStringLiteral("CALL DL1ABC"));
    EXPECT_TRUE(state_.Settings_Created);
    EXPECT_EQ(window_.setup.events,
              (QStringList{QStringLiteral("Setup_Click"), QStringLiteral("autoupdate 1")}));
}

TEST_F(StartupSettingsTest, CancelAtTheCallPromptEndsTheProgramThroughShutDown) {
    EXPECT_THROW(start(), ProgramEnded); // no scripted answer: Cancel
    EXPECT_EQ(platform_.log(),
              (QStringList{Beep, Arm, CallPrompt + QStringLiteral("cancel"), Beep, Arm,
                           QStringLiteral(R"(msgbox 0 "ZKR_MUF" "Sorry, without a valid call sign )"
                                          R"(ZKR_MUF will now be terminated !" -> 1)"),
                           QStringLiteral("end 0")}));
    EXPECT_TRUE(state_.Busy);
    EXPECT_EQ(window_.calls,
              (QStringList{QStringLiteral("Winsock_Close"), QStringLiteral("unloadAllWindows")}));
    EXPECT_EQ(test::readBytes(ini_),
              QByteArrayLiteral("[Position]\r\nLeft=100\r\nTop=50\r\nSSTAB=0\r\n"));
}

TEST_F(StartupSettingsTest, OnlyAnOlderFileIsReplacedAndAStoredCallIsUsedUpperCased) {
    for (const char *version : {"Version=1.2\r\n", "", "Version=1.30\r\n", "version = 1.31\r\n"}) {
        SCOPED_TRACE(version);
        const QByteArray old = QByteArray("[Version]\r\n") + version +
                               "[Call]\r\nOwnCall=dl1abc\r\n[Mine]\r\nx=1\r\n[Locator]\r\n"
                               "OwnLocator=jo62\r\n[AutoUpdateCheck]\r\nUpdateCheck=off\r\n";
        restart(old);
        platform_.answerInputBox(QStringLiteral("dk5xx"));
        platform_.answerInputBox(std::nullopt);
        start();
        if (QByteArray(version).contains("1.3")) {
            // Kept as it is: the lower-case call is used upper-cased only.
            EXPECT_TRUE(platform_.log().isEmpty());
            EXPECT_EQ(test::readBytes(ini_), old);
            EXPECT_EQ(window_.callCaption, QStringLiteral("CALL DL1ABC"));
            EXPECT_EQ(state_.OwnLocator, QStringLiteral("JO62"));
            continue;
        }
        // The call prompt offers the empty default, not the old call.
        EXPECT_EQ(platform_.log(),
                  (QStringList{Beep, Arm, CallPrompt + QStringLiteral(R"("dk5xx")"), Beep, Arm,
                               LocatorPrompt + QStringLiteral("cancel")}));
        EXPECT_EQ(test::readBytes(ini_), firstRunFile("DK5XX"));
        EXPECT_EQ(window_.setup.events,
                  (QStringList{QStringLiteral("autoupdate 0"), QStringLiteral("Setup_Click"),
                               QStringLiteral("autoupdate 1")}));
    }
}

TEST_F(StartupSettingsTest, UpdateCheckValueSetsTheSetupBox) {
    const std::pair<const char *, const char *> cases[] = {
        {"UpdateCheck=on", "autoupdate 1"},  {"UpdateCheck = ON ", "autoupdate 1"},
        {"UpdateCheck=", "autoupdate 1"},    {"", "autoupdate 1"},
        {"updatecheck=Off", "autoupdate 0"}, {"UpdateCheck=yes", nullptr}};
    for (const auto &[line, event] : cases) {
        SCOPED_TRACE(line);
        restart(QByteArray("[AutoUpdateCheck]\r\n") + line + "\r\n");
        window_.settings.Read_Settings();
        EXPECT_EQ(window_.setup.events, event ? QStringList{QLatin1String(event)} : QStringList());
    }
}

TEST_F(StartupSettingsTest, ShutDownKeepsTheStoredPositionOfAMinimisedWindow) {
    for (const bool minimized : {true, false}) {
        restart("[Position]\r\nLeft=10\r\nTop=20\r\nSSTAB=0\r\n");
        window_.minimized = minimized;
        window_.left = -300;
        window_.tab = 3;
        EXPECT_THROW(window_.settings.Save_Position_And_End(), ProgramEnded);
        EXPECT_EQ(test::readBytes(ini_),
                  minimized
                      ? QByteArrayLiteral("[Position]\r\nLeft=10\r\nTop=20\r\nSSTAB=3\r\n")
                      : QByteArrayLiteral("[Position]\r\nLeft=-300\r\nTop=50\r\nSSTAB=3\r\n"));
        EXPECT_EQ(platform_.log(), QStringList{QStringLiteral("end 0")});
    }
}

TEST_F(StartupSettingsTest, UnknownCommandLineArgumentIsReportedAndIgnored) {
    const std::pair<const char *, bool> cases[] = {
        {"/webcluster", true}, {" /WEBCLUSTER", false}, {"/FILE now", false}};
    for (const auto &[argument, known] : cases) {
        SCOPED_TRACE(argument);
        restart("[Version]\r\nVersion=1.30\r\n[Call]\r\nOwnCall=dl1abc\r\n");
        state_.RunMode.clear();
        platform_.setCommandLine(QLatin1String(argument));
        start();
        EXPECT_EQ(state_.RunMode,
                  known ? QStringLiteral("WEBCLUSTER") : QStringLiteral("TELNETCLUSTER"));
        const QString message = QStringLiteral(
            R"(msgbox 0 "ZKR_MUF" "%1 unknown command, default setting is used !" -> 1)");
        EXPECT_EQ(
            platform_.log(),
            (known ? QStringList() : QStringList{Beep, message.arg(QLatin1String(argument))}));
    }
}

// Installed where nobody may write (root included: /proc takes no new
// files), the first run asks once, goes on with what the file gives back and
// ends without leaving anything behind.
TEST_F(StartupSettingsTest, FirstRunInAFolderNobodyMayWriteAsksOnceAndGoesOn) {
    platform_.setApplicationFolder(QStringLiteral("/proc"));
    platform_.answerInputBox(QStringLiteral("dl1abc"));
    platform_.answerInputBox(QStringLiteral("jo62qm"));
    start();
    EXPECT_EQ(state_.IniFilePath, QStringLiteral("/proc/zkr_muf.ini"));
    EXPECT_EQ(platform_.log(),
              (QStringList{Beep, Arm, CallPrompt + QStringLiteral(R"("dl1abc")"), Beep, Arm,
                           LocatorPrompt + QStringLiteral(R"("jo62qm")")}));
    EXPECT_FALSE(QFileInfo::exists(state_.IniFilePath));
    EXPECT_TRUE(state_.Settings_Created);

    EXPECT_THROW(window_.settings.Save_Position_And_End(), ProgramEnded);
    EXPECT_FALSE(QFileInfo::exists(state_.IniFilePath));
}

} // namespace
} // namespace zkr
