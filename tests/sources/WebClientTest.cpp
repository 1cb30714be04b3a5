#include "WebClient.h"
#include "LocalHttpServer.h"
#include "QtPrinters.h"

#include <QElapsedTimer>
#include <QTcpServer>

#include <gtest/gtest.h>

using namespace zkr;

namespace {

LocalHttpServer::Response page(int status, const QByteArray &body,
                               const QByteArray &type = "text/html; charset=iso-8859-1") {
    LocalHttpServer::Response response;
    response.status = status;
    response.body = body;
    response.contentType = type;
    return response;
}

struct WebFixture : ::testing::Test {
    LocalHttpServer server;
    QStringList captions;
    QList<int> failures;

    void watch(WebClient &web) {
        web.setCaptionHandler([this](const QString &caption) { captions << caption; });
        web.setFailureHandler([this](int code) { failures << code; });
    }
};

TEST_F(WebFixture, ReadsThePageWithCaptionsAndTheAgentName) {
    server.setResponse("/DxSpots.aspx", page(200, "<html>spots &lt;ES&gt;</html>"));
    WebClient web;
    watch(web);
    EXPECT_EQ(web.Open_Url(server.url("/DxSpots.aspx")), "<html>spots &lt;ES&gt;</html>");
    EXPECT_TRUE(web.lastUrlOpened());
    EXPECT_EQ(captions, QStringList({"trying to connect", "connected", "requesting"}));
    EXPECT_EQ(server.lastUserAgent(), "VB");
    EXPECT_TRUE(failures.isEmpty());
}

TEST_F(WebFixture, AnErrorStatusStillReturnsItsPage) {
    server.setResponse("/err", page(500, "<h1>Server Error</h1>"));
    WebClient web;
    EXPECT_EQ(web.Open_Url(server.url("/err")), "<h1>Server Error</h1>");
    EXPECT_TRUE(web.lastUrlOpened());
}

TEST_F(WebFixture, DecodesSingleByteAndUtf8Pages) {
    server.setResponse("/latin1", page(200, "55\xB0N"));
    server.setResponse("/utf8", page(200, "55\xC2\xB0N", "text/html; charset=UTF-8"));
    WebClient web;
    EXPECT_EQ(web.Open_Url(server.url("/latin1")), QString("55") + QChar(176) + "N");
    EXPECT_EQ(web.Open_Url(server.url("/utf8")), QString("55") + QChar(176) + "N");
}

TEST_F(WebFixture, RefusedConnectionIsTriedElevenTimesThenReported) {
    QTcpServer closed;
    ASSERT_TRUE(closed.listen(QHostAddress::LocalHost, 0));
    const quint16 port = closed.serverPort();
    closed.close(); // nothing listens there now
    WebClient web;
    watch(web);
    EXPECT_EQ(web.Open_Url(QString("http://127.0.0.1:%1/x").arg(port)), "");
    EXPECT_FALSE(web.lastUrlOpened());
    EXPECT_EQ(captions.count("trying to connect"), 11);
    EXPECT_EQ(failures.size(), 1);
}

TEST_F(WebFixture, SilentServerIsGivenUpAfterTheTimeout) {
    LocalHttpServer::Response silent;
    silent.neverAnswer = true;
    server.setResponse("/silent", silent);
    WebClient web({11, 300, 700}, nullptr);
    watch(web);
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(web.Open_Url(server.url("/silent")), "");
    // The whole fetch stops at its deadline instead of 11 full attempts.
    EXPECT_LT(clock.elapsed(), 2000);
    EXPECT_FALSE(web.lastUrlOpened());
    EXPECT_LT(server.requestCount("/silent"), 11);
    EXPECT_EQ(failures.size(), 1);
}

TEST_F(WebFixture, SlowAndTruncatedAnswersAreTakenAsTheyCome) {
    LocalHttpServer::Response slow = page(200, "<html>late but whole</html>");
    slow.delayMs = 300;
    LocalHttpServer::Response cut = page(200, QByteArray(4000, 'x'));
    cut.truncate = true; // announces 4000 bytes, sends 2000, hangs up
    server.setResponse("/slow", slow);
    server.setResponse("/cut", cut);
    WebClient web({11, 2000, 3000}, nullptr);
    watch(web);
    EXPECT_EQ(web.Open_Url(server.url("/slow")), "<html>late but whole</html>");
    const QString partial = web.Open_Url(server.url("/cut"));
    EXPECT_TRUE(web.lastUrlOpened());
    EXPECT_LE(partial.size(), 2000);
    EXPECT_TRUE(failures.isEmpty());
}

TEST_F(WebFixture, RedirectLoopIsAFailure) {
    LocalHttpServer::Response loop;
    loop.status = 302;
    loop.location = server.url("/loop").toLatin1();
    server.setResponse("/loop", loop);
    WebClient web({1, 5000, 5000}, nullptr);
    EXPECT_EQ(web.Open_Url(server.url("/loop")), "");
    EXPECT_FALSE(web.lastUrlOpened());
}

} // namespace
