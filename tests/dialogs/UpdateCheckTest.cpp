#include "UpdateCheck.h"
#include "LocalHttpServer.h"
#include "ProgramState.h"
#include "QtPrinters.h"
#include "ScriptedPlatform.h"
#include "WebClient.h"

#include <gtest/gtest.h>

namespace zkr {
namespace {

QString question(const char *version) {
    return QStringLiteral(R"(msgbox 36 "" "Version  V%1  is available !  )"
                          "\r\nDo you want to open the download page in your web browser ?\r\n\"")
        .arg(QLatin1String(version));
}

const QString NoUpdate = QStringLiteral(R"(msgbox 0 "UpdateCheck" "No updates available. )"
                                        R"(You have the latest version !" -> 1)");

// The interactive check against a download page on this machine, program
// version 1.30.
TEST(UpdateCheck, OffersOnlyANewerVersionAndOpensOnlyTheConfiguredPage) {
    struct Case {
        const char *name;
        QByteArray page; // empty: no server answers
        int answer;      // to the question, when one comes
        bool announced;
        QString box; // after a beep and the centred placement
    };
    const Case cases[] = {
        {"newer, yes", R"(<a href="http://elsewhere.example/">x</a><td>ZKR_MUF V1.31</td>)", 6,
         true, question("1.31") + " -> 6"},
        {"newer, no", "<td>ZKR_MUF V1.31</td>", 7, true, question("1.31") + " -> 7"},
        {"a beta counts by its number", "<b>ZKR_MUF V2.0 beta</b>", 7, true,
         question("2.0 beta") + " -> 7"},
        {"equal as numbers", "<b>ZKR_MUF V1.3</b>", 0, false, NoUpdate},
        {"older", "<b>ZKR_MUF V1.29</b>", 0, false, NoUpdate},
        {"no marker", "<b>ZKR_MUF 1.31</b>", 0, false, NoUpdate},
        {"marker without <", "<b>ZKR_MUF V1.31", 0, false, NoUpdate},
        {"unreachable", "", 0, false, NoUpdate},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        LocalHttpServer server;
        LocalHttpServer::Response response;
        response.body = c.page;
        server.setResponse("/download.html", response);
        ProgramState state;
        state.ProgramVersion = "1.30";
        state.CrLf = "\r\n";
        state.UpdatePage_Url = c.page.isEmpty() ? QString("http://127.0.0.1:1/download.html")
                                                : server.url("/download.html");
        ScriptedPlatform platform;
        if (c.answer != 0) {
            platform.answerMessageBox(c.answer);
        }
        WebClient web({11, 300, 600}, nullptr);
        UpdateCheck check(state, platform,
                          [&web](const QString &url) { return web.Open_Url(url); });

        check.Check_Update_Interactive();
        EXPECT_EQ(platform.log().mid(0, 3), QStringList({"beep 800 200", "arm centre", c.box}));
        const bool opened = c.announced && c.answer == 6;
        EXPECT_EQ(platform.log().filter("openurl"),
                  opened ? QStringList{QString("openurl \"%1\" -> ok").arg(state.UpdatePage_Url)}
                         : QStringList());
        EXPECT_EQ(server.requestCount("/download.html"), c.page.isEmpty() ? 0 : 1);
        EXPECT_DOUBLE_EQ(state.ProgramVersion_Num, 1.3);

        // Unattended, the same page is announced the same way, and nothing
        // new is not reported.
        platform.clearLog();
        platform.answerMessageBox(7);
        state.Msg_Title.clear();
        EXPECT_EQ(check.Check_Update(), c.announced);
        EXPECT_EQ(platform.log().filter("msgbox").size(), c.announced ? 1 : 0);
    }
}

} // namespace
} // namespace zkr
