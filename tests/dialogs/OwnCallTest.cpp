#include "OwnCall.h"
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

QString invalid(const char *typed) {
    return QStringLiteral(R"(msgbox 22 "ZKR_MUF" "%1  is not a valid call sign !)"
                          "\r\n\r\nAccess to the ham radio dx cluster with ZKR_MUF\r\n"
                          R"(only works with a valid callsign !" -> 2)")
        .arg(QLatin1String(typed));
}

QString reserved(const char *upper) {
    return QStringLiteral(R"(msgbox 22 "" "%1  is NOT YOUR call sign !" -> 2)")
        .arg(QLatin1String(upper));
}

TEST(OwnCallTest, AcceptsRejectsAndRefusesByTheRules) {
    struct Case {
        const char *passed;
        std::vector<const char *> typed;
        const char *result;
        QStringList boxes;
    };
    const Case cases[] = {
        // Markers pass without a prompt.
        {"!nocall!", {}, "!NOCALL!", {}},
        {"7zkr", {}, "QQ7ZKR", {}},
        // Anything else is asked for, preset with the empty default.
        {"DL1ABC", {"dl1abc"}, "DL1ABC", {}},
        {"", {"7zkr"}, "QQ7ZKR", {}},
        {"", {"!!!"}, "!!!", {}},
        {"",
         {"AB", "nocall", "zKr", "", "A1", "ZKR1"},
         "ZKR1",
         {invalid("AB"), invalid("nocall"), invalid("zKr"), invalid(""), invalid("A1")}},
        {"",
         {"qq7zkr", "QQ7ZKR/P", "xqq7zkr", "nocall1"},
         "NOCALL1",
         {reserved("QQ7ZKR"), reserved("QQ7ZKR/P"), reserved("XQQ7ZKR")}},
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
        EXPECT_EQ(platform.log().filter(QStringLiteral("msgbox")), c.boxes);
        EXPECT_EQ(platform.log().filter(QStringLiteral("inputbox")).size(),
                  static_cast<qsizetype>(c.typed.size()));
        // Every box comes after a beep and a centred placement.
        const qsizetype boxes = static_cast<qsizetype>(c.typed.size()) + c.boxes.size();
        EXPECT_EQ(platform.log().count(QStringLiteral("beep 800 200")), boxes);
        EXPECT_EQ(platform.log().count(QStringLiteral("arm centre")), boxes);
        EXPECT_EQ(shutdown.calls, 0);
    }
}

TEST(OwnCallTest, CancelEndsTheProgram) {
    ProgramState state;
    ScriptedPlatform platform;
    RecordingShutdown shutdown;
    EXPECT_THROW(Check_OwnCall(state, platform, shutdown, QString(), QString()), ProgramEnded);
    EXPECT_EQ(platform.messages(),
              QStringList{QStringLiteral(
                  "Sorry, without a valid call sign ZKR_MUF will now be terminated !")});
    EXPECT_TRUE(state.Busy);
    EXPECT_EQ(shutdown.calls, 1);
}

TEST(MsgBoxPosTest, ArmsOnePlacementRoundedHalfToEven) {
    ScriptedPlatform platform;
    MsgBox_Pos(platform);
    MsgBox_Pos(platform, 2.5, 3.5);
    MsgBox_Pos(platform, -2.5, 100.49);
    EXPECT_EQ(platform.log(), (QStringList{QStringLiteral("arm centre"), QStringLiteral("arm 2,4"),
                                           QStringLiteral("arm -2,100")}));
    EXPECT_THROW(MsgBox_Pos(platform, 3.0e9, 0), RunTimeError);
}

} // namespace
} // namespace zkr
