#include "OwnCall.h"
#include "MainStatusLabel.h"
#include "MsgBox_Pos.h"
#include "ProgramEnded.h"
#include "ProgramShutdown.h"
#include "ProgramState.h"
#include "QtPrinters.h"
#include "RunTimeError.h"
#include "ScriptedPlatform.h"

#include <gtest/gtest.h>

#include <vector>

namespace zkr {
namespace {

class RecordingShutdown : public ProgramShutdown {
public:
    int calls = 0;
    [[noreturn]] void shutDown() override {
        ++calls;
        throw ProgramEnded(0);
    }
};

const QString Invalid =
    QStringLiteral("  is not a valid call sign !\r\n\r\nAccess to the ham radio "
                   "dx cluster with ZKR_MUF\r\nonly works with a valid callsign !");
const QString Reserved = QStringLiteral("  is NOT YOUR call sign !");

struct Case {
    const char *passed;
    std::vector<const char *> typed;
    const char *result;
    QStringList messages;
};

TEST(OwnCallTest, AcceptsRejectsAndRefusesByTheRules) {
    const Case cases[] = {
        // Markers pass without a prompt.
        {"!nocall!", {}, "!NOCALL!", {}},
        {"7zkr", {}, "QQ7ZKR", {}},
        // Every other value is asked for, preset with the empty default.
        {"DL1ABC", {"dl1abc"}, "DL1ABC", {}},
        {"", {"7zkr"}, "QQ7ZKR", {}},
        {"", {"ABC"}, "ABC", {}},
        {"", {"!!!"}, "!!!", {}},
        {"",
         {"AB", "nocall", "zKr", "", "A1", "ZKR1"},
         "ZKR1",
         {QStringLiteral("AB") + Invalid, QStringLiteral("nocall") + Invalid,
          QStringLiteral("zKr") + Invalid, Invalid, QStringLiteral("A1") + Invalid}},
        {"",
         {"qq7zkr", "QQ7ZKR/P", "xqq7zkr", "nocall1"},
         "NOCALL1",
         {QStringLiteral("QQ7ZKR") + Reserved, QStringLiteral("QQ7ZKR/P") + Reserved,
          QStringLiteral("XQQ7ZKR") + Reserved}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.passed);
        ProgramState state;
        ScriptedPlatform platform;
        RecordingShutdown shutdown;
        for (const char *answer : c.typed) {
            platform.answerInputBox(QLatin1String(answer));
        }
        EXPECT_EQ(Check_OwnCall(state, platform, shutdown, QLatin1String(c.passed), QString()),
                  QLatin1String(c.result));
        EXPECT_EQ(platform.messages(), c.messages);
        EXPECT_EQ(platform.log().filter(QStringLiteral("inputbox")).size(),
                  static_cast<qsizetype>(c.typed.size()));
        EXPECT_EQ(platform.unansweredInputBoxes(), 0);
        EXPECT_EQ(shutdown.calls, 0);
    }
}

TEST(OwnCallTest, EveryBoxComesAfterABeepAndACentredPlacement) {
    ProgramState state;
    ScriptedPlatform platform;
    RecordingShutdown shutdown;
    platform.answerInputBox(QStringLiteral("ab"));
    platform.answerInputBox(QStringLiteral("qq7zkr"));
    platform.answerInputBox(std::nullopt);
    EXPECT_THROW(Check_OwnCall(state, platform, shutdown, QString(), QString()), ProgramEnded);

    const QString beep = QStringLiteral("beep 800 200");
    const QString arm = QStringLiteral("arm centre");
    const QString prompt =
        QStringLiteral(R"(inputbox "                                   ZKR_MUF" )"
                       R"("What is YOUR call sign ?" "" -> )");
    EXPECT_EQ(platform.log(),
              (QStringList{beep, arm, prompt + QStringLiteral(R"("ab")"), beep, arm,
                           QStringLiteral(R"(msgbox 22 "ZKR_MUF" "ab%1" -> 2)").arg(Invalid), beep,
                           arm, prompt + QStringLiteral(R"("qq7zkr")"), beep, arm,
                           QStringLiteral(R"(msgbox 22 "" "QQ7ZKR%1" -> 2)").arg(Reserved), beep,
                           arm, prompt + QStringLiteral("cancel"), beep, arm,
                           QStringLiteral(R"(msgbox 0 "ZKR_MUF" "Sorry, without a valid call sign )"
                                          R"(ZKR_MUF will now be terminated !" -> 1)")}));
    EXPECT_TRUE(state.Busy);
    EXPECT_EQ(shutdown.calls, 1);
}

class RecordingStatus : public MainStatusLabel {
public:
    QStringList captions;
    void showStatusCaption(const QString &caption) override { captions << caption; }
};

TEST(MsgBoxPosTest, ArmsOnePlacementRoundedHalfToEven) {
    ScriptedPlatform platform;
    MsgBox_Pos(platform);
    MsgBox_Pos(platform, 2.5, 3.5);
    MsgBox_Pos(platform, -2.5, 0.5);
    MsgBox_Pos(platform, 100.49, 7.51);
    EXPECT_EQ(platform.log(),
              (QStringList{QStringLiteral("arm centre"), QStringLiteral("arm 2,4"),
                           QStringLiteral("arm -2,0"), QStringLiteral("arm 100,8")}));
    EXPECT_THROW(MsgBox_Pos(platform, 3.0e9, 0), RunTimeError);
}

TEST(MsgBoxPosTest, ConnectionWarningWaitsForTheUserAndMarksTheStatus) {
    ProgramState state;
    ScriptedPlatform platform;
    RecordingStatus status;
    MsgBox_Timed(state, platform, status);
    EXPECT_EQ(
        platform.log(),
        (QStringList{QStringLiteral("beep 800 200"), QStringLiteral("arm centre"),
                     QStringLiteral(R"(msgbox 22 "W a r n i n g !" "Can't connect. Make sure )"
                                    R"(url is correct or even if host exists." -> 2)")}));
    EXPECT_EQ(status.captions, QStringList{QStringLiteral("Can't connect")});
}

} // namespace
} // namespace zkr
