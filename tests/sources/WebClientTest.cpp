#include "WebClient.h"
#include "LocalHttpServer.h"
#include "QtPrinters.h"
#include "SpotPage.h"
#include "WaitFor.h"

#include <QNetworkReply>
#include <QTcpServer>

#include <gtest/gtest.h>

using namespace zkr;
using test::waitFor;

namespace {

LocalHttpServer::Response page(int status, const QByteArray &body,
                               const QByteArray &charset = "iso-8859-1", int trickleMs = 0) {
    return {status, body, "text/html; charset=" + charset, false, trickleMs};
}

// A client with everything it reports.
struct Watched {
    WebClient web;
    QStringList captions, bodies;
    QList<int> failures;

    explicit Watched(WebClient::Options options) : web(options, nullptr) {
        QObject::connect(&web, &WebClient::progress, [this](const QString &c) { captions << c; });
        QObject::connect(&web, &WebClient::fetched, [this](const QString &b) { bodies << b; });
        QObject::connect(&web, &WebClient::failed, [this](int e) { failures << e; });
    }
};

TEST(WebClient, FetchesAnyAnswerDecodedOneFetchAtATime) {
    LocalHttpServer server;
    const struct {
        const char *path;
        LocalHttpServer::Response response;
        QString body;
    } cases[] = {
        {"/latin1", page(200, "55\xB0N"), "55\u00B0N"},
        {"/utf8", page(200, "55\xC2\xB0N", "UTF-8"), "55\u00B0N"},
        {"/error", page(500, "<h1>Server Error</h1>"), "<h1>Server Error</h1>"},
        // 1.3 s in all, beyond both timeouts, never a long pause.
        {"/slow", page(200, "<html>1234567890 trickled</html>", "iso-8859-1", 40),
         "<html>1234567890 trickled</html>"},
    };
    Watched w({2, 5000, 500, 300, 10});
    for (const auto &c : cases) {
        server.setResponse(c.path, c.response);
        w.captions.clear();
        w.bodies.clear();
        ASSERT_TRUE(w.web.fetch(server.url(c.path)));
        EXPECT_FALSE(w.web.fetch(server.url(c.path))) << "a second fetch while busy";
        ASSERT_TRUE(waitFor([&] { return !w.web.isBusy(); }));
        EXPECT_EQ(w.bodies, QStringList{c.body}) << c.path;
        EXPECT_EQ(w.captions, QStringList({"trying to connect", "connected", "requesting"}));
        EXPECT_TRUE(w.web.lastUrlOpened());
        EXPECT_EQ(server.requestCount(c.path), 1) << c.path;
    }
    EXPECT_EQ(server.lastUserAgent(), "VB");
}

TEST(WebClient, FailsAfterItsAttemptsWhenNoServerAnswers) {
    LocalHttpServer server;
    server.setResponse("/silent", {200, {}, {}, true}); // never answers
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost, 0);
    const QString refused = QString("http://127.0.0.1:%1/x").arg(probe.serverPort());
    probe.close();
    for (const auto &[url, error] : {std::pair{server.url("/silent"), QNetworkReply::TimeoutError},
                                     {refused, QNetworkReply::ConnectionRefusedError}}) {
        Watched w({3, 10000, 200, 200, 10});
        ASSERT_TRUE(w.web.fetch(url));
        ASSERT_TRUE(waitFor([&] { return !w.web.isBusy(); }));
        EXPECT_EQ(w.failures, QList<int>{error}) << url.toStdString();
        EXPECT_EQ(w.captions.count("trying to connect"), 3) << url.toStdString();
        EXPECT_TRUE(w.bodies.isEmpty());
        EXPECT_FALSE(w.web.lastUrlOpened());
    }
    EXPECT_EQ(server.requestCount("/silent"), 3);
}

TEST(SpotPage, StripsTagsSplitsAfterTheRedirectScriptAndKnowsErrorPages) {
    // A stray ">" is text; an unmatched "<" stops the stripping.
    QStringList stripped;
    for (const char *in : {"<tr><td>DL1ABC</td></tr>", "x>y", "a<b", "a>b<c", "a>b<c>d", "a<b>c<d",
                           "<<a>b>", "1<>2>3<x"}) {
        stripped << Strip_Tags(in);
    }
    EXPECT_EQ(stripped.join('|'), "DL1ABC|x>y|a<b|a>b<c|a>bd|ac<d|b>|12>3<x");
    const QString script = QString(79, 'S');
    EXPECT_EQ(Split_SpotPage(script + "line 1\nline 2\r\n"),
              QStringList({"line 1", "line 2\r", ""}));
    EXPECT_TRUE(Split_SpotPage(script).isEmpty());
    for (const char *page :
         {"<h1>Server Error</h1>", "<b>Network Error</b>", "<p>Runtime Error</p>"}) {
        EXPECT_TRUE(Is_ErrorPage(page)) << page;
    }
    EXPECT_FALSE(Is_ErrorPage("Server Error") || Is_ErrorPage("<h1>server error</h1>"));
}

} // namespace
