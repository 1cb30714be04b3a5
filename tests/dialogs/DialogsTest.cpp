#include "ClusterList.h"
#include "MsgBox_Pos.h"
#include "OwnCall.h"
#include "ProgramEnded.h"
#include "ProgramShutdown.h"
#include "ProgramState.h"
#include "QtPrinters.h"
#include "RunTimeError.h"
#include "ScriptedPlatform.h"
#include "UpdateCheck.h"
#include "frmInfo.h"

#include <QEnterEvent>
#include <QLabel>
#include <QTest>

#include <gtest/gtest.h>

#include <vector>

namespace zkr {

namespace {

using Row = ClusterList::Row;

TEST(ClusterList, HeaderAndTextAfterTheLastLineEndAreNoClusters) {
    const Row a{1, "GB7AAA", "a.example", "7300"};
    const Row b{2, "DB0BBB", "b.example", "8000"};
    const QByteArray three = "DX-Cluster|Host|Port\r\nGB7AAA|a.example|7300\r\n"
                             "DB0BBB|b.example|8000\r\nVE7CCC|c.example|23";
    const std::tuple<const char *, QByteArray, std::vector<Row>> cases[] = {
        {"three with the final CR LF", three + "\r\n", {a, b, {3, "VE7CCC", "c.example", "23"}}},
        {"three without it: the last is lost", three, {a, b}},
        {"header only", "DX-Cluster|Host|Port\r\n", {}},
        {"empty file", "", {}},
        {"LF line ends, as edited on Linux",
         "H\nX|y|1\nA|b\r\nc\rd|2\n",
         {{1, "X", "y", "1"}, {2, "A", "b", ""}, {3, "c\rd", "2", ""}}},
        {"malformed lines do not break it",
         "H\r\nNOSEP\r\nA|host only\r\nB|h|p|more\r\n|\r\n\r\n C | h |\r\n",
         // clang-format off
         {{1, "NOSEP", "", ""}, {2, "A", "host only", ""}, {3, "B", "h", "p|more"}, {4, "", "", ""},
          {5, "", "", ""}, {6, " C ", " h ", ""}}},
        // clang-format on
        {"single-byte text", "H\r\nOH\xC4|h\xFC|1\r\n", {{1, "OH\u00C4", "h\u00FC", "1"}}},
    };
    for (const auto &[name, bytes, expected] : cases) {
        const QList<Row> rows = ClusterList::parse(bytes);
        EXPECT_EQ(std::vector<Row>(rows.begin(), rows.end()), expected) << name;
    }
    // The last row named like the cluster in use is marked.
    const QList<Row> rows = ClusterList::parse("H\r\nGB7AAA|a|1\r\nDB0BBB|b|2\r\nGB7AAA|c|3\r\n");
    EXPECT_EQ(ClusterList::selectedRow(rows, "GB7AAA"), 3);
    EXPECT_EQ(ClusterList::selectedRow(rows, "DB0BBB"), 2);
    EXPECT_EQ(ClusterList::selectedRow(rows, "gb7aaa"), 0);
}

// The cancel that ends the program is tested with the first run.
struct NoShutdown : ProgramShutdown {
    [[noreturn]] void shutDown() override { throw ProgramEnded(0); }
};

TEST(OwnCall, AcceptsRejectsAndRefusesByTheRules) {
    const auto invalid = [](const char *typed) {
        return QString(R"(msgbox 22 "ZKR_MUF" "%1  is not a valid call sign !)"
                       "\r\n\r\nAccess to the ham radio dx cluster with ZKR_MUF\r\n"
                       R"(only works with a valid callsign !" -> 2)")
            .arg(typed);
    };
    const auto reserved = [](const char *upper) {
        return QString(R"(msgbox 22 "" "%1  is NOT YOUR call sign !" -> 2)").arg(upper);
    };
    const std::tuple<const char *, std::vector<const char *>, const char *, QStringList> cases[] = {
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
    for (const auto &[passed, typed, result, boxes] : cases) {
        SCOPED_TRACE(passed);
        ProgramState state;
        ScriptedPlatform platform;
        NoShutdown shutdown;
        for (const char *answer : typed) {
            platform.answerInputBox(QString(answer));
        }
        EXPECT_EQ(Check_OwnCall(state, platform, shutdown, passed, {}), result);
        EXPECT_EQ(platform.log().filter("msgbox"), boxes);
        EXPECT_EQ(platform.log().filter("inputbox").size(), qsizetype(typed.size()));
        // Every box comes after a beep and a centred placement.
        const qsizetype shown = qsizetype(typed.size()) + boxes.size();
        EXPECT_EQ(platform.log().count("beep 800 200"), shown);
        EXPECT_EQ(platform.log().count("arm centre"), shown);
    }
}

TEST(MsgBoxPos, ArmsOnePlacementRoundedHalfToEven) {
    ScriptedPlatform platform;
    MsgBox_Pos(platform);
    MsgBox_Pos(platform, 2.5, 3.5);
    MsgBox_Pos(platform, -2.5, 100.49);
    EXPECT_EQ(platform.log(), QStringList({"arm centre", "arm 2,4", "arm -2,100"}));
    EXPECT_THROW(MsgBox_Pos(platform, 3.0e9, 0), RunTimeError);
}

// Program version 1.30; only the configured page is ever fetched or opened.
TEST(UpdateCheck, OffersOnlyANewerVersionAndOpensOnlyTheConfiguredPage) {
    const auto question = [](const char *version, int answer) {
        return QString(
                   R"(msgbox 36 "" "Version  V%1  is available !  )"
                   "\r\nDo you want to open the download page in your web browser ?\r\n\" -> %2")
            .arg(version)
            .arg(answer);
    };
    const QString none = R"(msgbox 0 "UpdateCheck" "No updates available. )"
                         R"(You have the latest version !" -> 1)";
    const QString failed = R"(msgbox 16 "W a r n i n g !" "Can't connect. Make sure url is )"
                           R"(correct or even if host exists." -> 1)";
    const std::tuple<const char *, std::optional<QString>, int, QString> cases[] = {
        // the page (none: no server answered), the answer to the question, the box shown
        {"newer, yes", R"(<a href="http://elsewhere.example/">x</a><td>ZKR_MUF V1.31</td>)", 6,
         question("1.31", 6)},
        {"newer, no", "<td>ZKR_MUF V1.31</td>", 7, question("1.31", 7)},
        {"a beta counts by its number", "<b>ZKR_MUF V2.0 beta</b>", 7, question("2.0 beta", 7)},
        {"equal as numbers", "<b>ZKR_MUF V1.3</b>", 0, none},
        {"older", "<b>ZKR_MUF V1.29</b>", 0, none},
        {"no marker", "<b>ZKR_MUF 1.31</b>", 0, none},
        {"marker without <", "<b>ZKR_MUF V1.31", 0, none},
        {"no answer is no news", std::nullopt, 0, failed},
    };
    for (const auto &[name, page, answer, box] : cases) {
        SCOPED_TRACE(name);
        ProgramState state;
        state.ProgramVersion = "1.30";
        state.CrLf = "\r\n";
        ScriptedPlatform platform;
        QStringList fetched;
        UpdateCheck::Done pending;
        UpdateCheck check(state, platform, [&](const QString &url, UpdateCheck::Done done) {
            fetched << url;
            pending = std::move(done);
        });
        check.Check_Update_Interactive(); // no page configured: nothing to ask
        EXPECT_TRUE(fetched.isEmpty());
        state.UpdatePage_Url = "http://127.0.0.1:1/download.html";

        if (answer != 0) {
            platform.answerMessageBox(answer);
        }
        check.Check_Update_Interactive();
        check.Check_Update_Interactive(); // one check at a time
        ASSERT_EQ(fetched.size(), 1);
        EXPECT_TRUE(platform.log().isEmpty()) << "nothing before the page is there";
        std::exchange(pending, nullptr)(page);
        EXPECT_FALSE(check.isRunning());
        EXPECT_EQ(platform.log().mid(0, 3), QStringList({"beep 800 200", "arm centre", box}));
        EXPECT_EQ(platform.log().filter("openurl"),
                  answer == 6
                      ? QStringList{QString("openurl \"%1\" -> ok").arg(state.UpdatePage_Url)}
                      : QStringList());

        // In the background only news comes in a box; a failure is only said.
        platform.clearLog();
        platform.answerMessageBox(7);
        state.Msg_Title.clear();
        QStringList reported;
        check.checkInBackground([&](const QString &text) { reported << text; });
        std::exchange(pending, nullptr)(page);
        EXPECT_EQ(platform.log().filter("msgbox").size(), answer != 0 ? 1 : 0);
        EXPECT_EQ(reported,
                  page ? QStringList() : QStringList{"Update check: no answer from 127.0.0.1"});
        EXPECT_EQ(fetched, QStringList(2, state.UpdatePage_Url));
    }
}

TEST(frmInfo, OpensItsLinksOrReportsFailure) {
    ProgramState state;
    state.HomePage_Url = "https://home.test/";
    state.ContactMail_Url = "mailto:op@home.test";
    const std::tuple<const char *, bool, QString, const char *> cases[] = {
        {"lblHyperlink", true, state.HomePage_Url, nullptr},
        {"lblHyperlink", false, state.HomePage_Url, "the default browser"},
        {"lblEmaillink", false, state.ContactMail_Url, "the default email client"}};
    ScriptedPlatform platform;
    frmInfo info(state, platform);
    for (const auto &[link, opens, target, failure] : cases) {
        SCOPED_TRACE(link);
        auto *label = info.findChild<QLabel *>(link);
        platform.clearLog();
        platform.setOpenUrlResult(opens);
        QEnterEvent enter(QPointF(2, 2), QPointF(2, 2), QPointF(2, 2));
        QApplication::sendEvent(label, &enter);
        QTest::mouseClick(label, Qt::LeftButton);
        QStringList expected{
            QString(R"(openurl "%1" -> %2)").arg(target, QString(opens ? "ok" : "fail"))};
        if (failure != nullptr) {
            expected << "beep 800 200"
                     << "arm centre"
                     << QString(R"(msgbox 16 "Error" "There was an error when trying to open )"
                                R"(%1" -> 1)")
                            .arg(failure);
        }
        EXPECT_EQ(platform.log(), expected);
    }
}

} // namespace
} // namespace zkr
