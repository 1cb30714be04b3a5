#include "WebClient.h"
#include "LocalHttpServer.h"
#include "QtPrinters.h"
#include "WaitFor.h"

#include <QNetworkReply>
#include <QTcpServer>

#include <gtest/gtest.h>

using namespace zkr;
using test::waitFor;

namespace {

LocalHttpServer::Response page(int status, const QByteArray &body,
                               const QByteArray &type = "text/html; charset=iso-8859-1") {
    LocalHttpServer::Response response;
    response.status = status;
    response.body = body;
    response.contentType = type;
    return response;
}

// A client with everything it reports.
struct Watched {
    WebClient web;
    QStringList captions;
    QStringList bodies;
    QList<int> failures;

    explicit Watched(WebClient::Options options) : web(options, nullptr) {
        QObject::connect(&web, &WebClient::progress, [this](const QString &c) { captions << c; });
        QObject::connect(&web, &WebClient::fetched, [this](const QString &b) { bodies << b; });
        QObject::connect(&web, &WebClient::failed, [this](int e) { failures << e; });
    }
    bool done() {
        return waitFor([this] { return !web.isBusy(); });
    }
};

TEST(WebClient, FetchesAnyAnswerDecodedOneFetchAtATime) {
    LocalHttpServer server;
    LocalHttpServer::Response slow = page(200, "<html>1234567890 trickled</html>");
    slow.trickleMs = 40; // 1.3 s in all, beyond both timeouts, never a long pause
    const struct {
        const char *path;
        LocalHttpServer::Response response;
        QString body;
    } cases[] = {
        {"/latin1", page(200, "55\xB0N"), QString("55") + QChar(176) + "N"},
        {"/utf8", page(200, "55\xC2\xB0N", "text/html; charset=UTF-8"),
         QString("55") + QChar(176) + "N"},
        {"/error", page(500, "<h1>Server Error</h1>"), "<h1>Server Error</h1>"},
        {"/slow", slow, "<html>1234567890 trickled</html>"},
    };
    Watched w({2, 5000, 500, 300, 10});
    for (const auto &c : cases) {
        server.setResponse(c.path, c.response);
        w.captions.clear();
        w.bodies.clear();
        ASSERT_TRUE(w.web.fetch(server.url(c.path)));
        EXPECT_FALSE(w.web.fetch(server.url(c.path))) << "a second fetch while busy";
        ASSERT_TRUE(w.done());
        EXPECT_EQ(w.bodies, QStringList{c.body}) << c.path;
        EXPECT_EQ(w.captions, QStringList({"trying to connect", "connected", "requesting"}));
        EXPECT_TRUE(w.web.lastUrlOpened());
        EXPECT_EQ(server.requestCount(c.path), 1) << c.path;
    }
    EXPECT_EQ(server.lastUserAgent(), "VB");
    EXPECT_TRUE(w.failures.isEmpty());
    // The blocking form for the interactive update check.
    EXPECT_EQ(w.web.Open_Url(server.url("/error")), "<h1>Server Error</h1>");
}

TEST(WebClient, FailsAfterItsAttemptsWhenNoServerAnswers) {
    LocalHttpServer server;
    LocalHttpServer::Response silent;
    silent.neverAnswer = true;
    server.setResponse("/silent", silent);
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost, 0);
    const QString refused = QString("http://127.0.0.1:%1/x").arg(probe.serverPort());
    probe.close();
    const struct {
        QString url;
        int error;
    } cases[] = {
        {server.url("/silent"), QNetworkReply::TimeoutError},
        {refused, QNetworkReply::ConnectionRefusedError},
    };
    for (const auto &c : cases) {
        Watched w({3, 10000, 200, 200, 10});
        ASSERT_TRUE(w.web.fetch(c.url));
        ASSERT_TRUE(w.done());
        EXPECT_EQ(w.failures, QList<int>{c.error}) << c.url.toStdString();
        EXPECT_EQ(w.captions.count("trying to connect"), 3) << c.url.toStdString();
        EXPECT_TRUE(w.bodies.isEmpty());
        EXPECT_FALSE(w.web.lastUrlOpened());
    }
    EXPECT_EQ(server.requestCount("/silent"), 3);
    EXPECT_EQ(WebClient({1, 1000, 200, 200, 0}, nullptr).Open_Url(refused), "");
}

} // namespace
