#include "LocalHttpServer.h"
#include "PaneView.h"
#include "ProgramState.h"
#include "QtPrinters.h"
#include "ScriptedPlatform.h"
#include "SpotSources.h"
#include "frmZKR_MUF.h"

#include <QFile>
#include <QLabel>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace zkr;

namespace {

// The service's page: its redirect script (79 characters once the tags are
// gone), then one spot per line in the web columns.
QByteArray spotPage(const QStringList &spots) {
    const QByteArray script =
        "setTimeout(function(){window.location.href = 'http://127.0.0.1/x';},180000);";
    QByteArray page =
        "<html><head><script>" + script.leftJustified(79, ' ') + "</script></head><body><pre>";
    for (const QString &spot : spots) {
        page += spot.toLatin1() + "\n";
    }
    return page + "</pre></body></html>";
}

QString webLine(const char *kilohertz, const char *dxCall, const char *comment) {
    return QString("%1 %2 %3 %4 %5")
        .arg("DL1ABC", -11)
        .arg(kilohertz, 10)
        .arg(dxCall, -12)
        .arg(comment, -34)
        .arg("1712");
}

struct WebRig {
    LocalHttpServer server;
    QTemporaryDir folder;
    ProgramState state;
    ScriptedPlatform platform;
    std::unique_ptr<frmZKR_MUF> window;

    WebRig() {
        QFile ini(folder.filePath("zkr_muf.ini"));
        EXPECT_TRUE(ini.open(QIODevice::WriteOnly));
        ini.write("[Version]\r\nVersion=1.30\r\n[Call]\r\nOwnCall=!NOCALL!\r\n[Locator]\r\n"
                  "OwnLocator=JO62QM\r\n[AutoUpdateCheck]\r\nUpdateCheck=off\r\n");
        ini.close();
        platform.setApplicationFolder(folder.path());
        window = std::make_unique<frmZKR_MUF>(state, platform);
        window->sources().web().setOptions({11, 300, 600});
    }
    // Start-up in web mode runs the first evaluation, against this address.
    void start(const QString &url) {
        platform.setEnvironmentValue("ZKR_MUF_WEBCLUSTER_URL", url);
        window->Form_Load();
    }
    QString pane(int i) const { return window->displayPane(i)->text(); }
    QLabel *label(const char *name) const { return window->findChild<QLabel *>(name); }
};

LocalHttpServer::Response answer(int status, const QByteArray &body) {
    LocalHttpServer::Response response;
    response.status = status;
    response.body = body;
    return response;
}

TEST(WebSource, NewPageIsEvaluatedAndAnUnchangedOneIsNot) {
    WebRig rig;
    rig.server.setResponse(
        "/DxSpots.aspx",
        answer(200, spotPage({webLine("50110.0", "OH1XYZ", "JO90JR &lt;ES&gt; KP20"),
                              webLine("14074.0", "K1ABC", "FT8")})));
    rig.start(rig.server.url("/DxSpots.aspx"));
    EXPECT_EQ(rig.state.RunMode, "WEBCLUSTER");
    EXPECT_TRUE(rig.pane(0).contains("OH1XYZ"));
    EXPECT_TRUE(rig.pane(0).contains("<ES>"));
    EXPECT_TRUE(rig.pane(0).contains("MUF="));
    EXPECT_TRUE(rig.pane(0).contains("K1ABC"));
    EXPECT_TRUE(rig.pane(2).contains("Sorry - no Es-spots found !"));
    EXPECT_FALSE(rig.state.Web_Offline);
    EXPECT_FALSE(rig.state.FirstFetch);

    rig.window->workingPane(0).clear(); // an evaluation would fill it again
    rig.window->refreshPanes();
    rig.window->sources().Evaluate_SpotPage();
    EXPECT_EQ(rig.pane(0), "");
    EXPECT_TRUE(rig.state.FirstFetch);
    EXPECT_EQ(rig.server.requestCount("/DxSpots.aspx"), 2);
    EXPECT_EQ(rig.platform.messages(), QStringList()); // no fetch went anywhere else
}

TEST(WebSource, ServiceErrorPageShowsTheServerMayBeDown) {
    WebRig rig;
    rig.server.setResponse("/err", answer(500, "<html><h1>Server Error</h1></html>"));
    rig.start(rig.server.url("/err"));
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(rig.pane(i), "The Webserver may be down !\r\n") << i;
    }
    EXPECT_EQ(rig.label("Label2")->text(), "OFFLINE !");
    EXPECT_TRUE(rig.state.SpotPage_Previous.isEmpty()); // the next good page is evaluated
}

TEST(WebSource, UnreachableOrSilentServerWarnsAndGoesOffline) {
    for (const bool silent : {false, true}) {
        WebRig rig;
        LocalHttpServer::Response never;
        never.neverAnswer = true;
        rig.server.setResponse("/silent", never);
        // Nothing listens on port 1 of this machine.
        rig.start(silent ? rig.server.url("/silent") : QString("http://127.0.0.1:1/DxSpots.aspx"));
        SCOPED_TRACE(silent ? "silent" : "refused");
        EXPECT_TRUE(
            rig.platform.log().contains("msgbox 22 \"W a r n i n g !\" \"Can't connect. Make sure "
                                        "url is correct or even if host exists.\" -> 2"))
            << rig.platform.log().join('\n').toStdString();
        EXPECT_EQ(rig.label("Label2")->text(), "OFFLINE !");
        EXPECT_TRUE(rig.state.Web_Offline);
        EXPECT_TRUE(rig.state.FirstFetch);
        EXPECT_FALSE(rig.state.Busy);
    }
}

} // namespace
