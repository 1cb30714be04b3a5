// The web spot page in the window: the same text as the headless tool for
// the same bytes, and one fetch at a time however the user and the refresh
// timer push.
#include "CliOptions.h"
#include "CliReplay.h"
#include "ShellFakes.h"

#include <QBuffer>
#include <QEventLoop>
#include <QLabel>
#include <QTest>

#include <algorithm>
#include <functional>

using namespace zkr;
using test::waitFor;

namespace {

// A box stays open, as a real one does, while `whileOpen` runs.
class HoldingPlatform : public ScriptedPlatform {
public:
    int messageBox(const QString &text, int buttons, const QString &title) override {
        ++open;
        deepest = std::max(deepest, open);
        if (open == 1 && whileOpen) {
            whileOpen();
        }
        const int answer = ScriptedPlatform::messageBox(text, buttons, title);
        --open;
        return answer;
    }

    std::function<void()> whileOpen;
    int open = 0;
    int deepest = 0; // most boxes open at once
};

struct WebRig {
    QTemporaryDir folder;
    LocalHttpServer web;
    ProgramState state;
    HoldingPlatform platform;
    frmZKR_MUF window{state, platform};

    explicit WebRig(const LocalHttpServer::Response &page) {
        web.setResponse("/DxSpots.aspx", page);
        platform.setApplicationFolder(folder.path());
        platform.setEnvironmentValue(site::WebClusterUrlVariable, web.url("/DxSpots.aspx"));
        window.sources().web().setOptions({1, 300, 600, 600});
        LocalClusterServer::writeSettings(folder.path(), 1);
        Ini_Write("Call", "OwnCall", "!NOCALL!", folder.filePath("zkr_muf.ini"));
        window.Form_Load(); // fetches the page at once
    }
    int requests() const { return web.requestCount("/DxSpots.aspx"); }
    bool webIdle() {
        return waitFor([this] { return !window.sources().web().isBusy(); });
    }
    void clickStatus() {
        QTest::mouseClick(window.findChild<QLabel *>("Label_Telnet_Status"), Qt::LeftButton);
    }
    // Lets the refresh timer run until it has come due once and the fetch it
    // may have started has ended. The events run in a loop of their own, as
    // in a box: objects deleted later stay until the box is closed.
    void letRefreshComeDue() {
        QTimer *timer = window.Timer1();
        const auto due = QObject::connect(timer, &QTimer::timeout, [this, timer] {
            if (state.Refresh_Seconds == 0) {
                timer->stop();
            }
        });
        timer->start(1);
        QEventLoop box;
        QTimer poll;
        QObject::connect(&poll, &QTimer::timeout, [&] {
            if (!timer->isActive() && !window.sources().web().isBusy()) {
                box.quit();
            }
        });
        poll.start(5);
        QTimer::singleShot(10000, &box, &QEventLoop::quit);
        box.exec();
        EXPECT_FALSE(timer->isActive() || window.sources().web().isBusy());
        QObject::disconnect(due);
        timer->start(1000);
    }
};

// The service's page: redirect script, then one Es spot in the web columns
// whose comment ends in `tail`, six characters in any encoding.
QByteArray spotPage(const QByteArray &head, const QByteArray &tail) {
    return head + "<html><script>" + QByteArray(79, 'S') + "</script><pre>\n" +
           "DL1ABC         50110.0 OH1XYZ       JO90JR &lt;ES&gt; KP20 " + tail +
           "      1712\n</pre></html>";
}

QStringList paneLines(const MemoryPane &pane) {
    QStringList lines;
    for (std::int64_t i = 0; i < pane.lineCount(); ++i) {
        lines << pane.line(i).text;
    }
    return lines;
}

TEST(WebPage, WindowAndToolShowTheSameTextForEveryEncoding) {
    const QByteArray cp1252 = "\x80 \x93"
                              "Es\x94";
    const QByteArray utf8 = "\xE2\x82\xAC \xE2\x80\x9C"
                            "Es\xE2\x80\x9D";
    const QByteArray meta =
        "<meta http-equiv=\"Content-Type\" content=\"text/html; charset=UTF-8\">";
    // clang-format off
    const struct { const char *name; QByteArray contentType, body; bool toolSeesCharset; } cases[] = {
        {"Windows-1252", "text/html", spotPage("", cp1252), true},
        {"labelled ISO-8859-1", "text/html; charset=ISO-8859-1", spotPage("", cp1252), true},
        {"UTF-8 by header", "text/html; charset=utf-8", spotPage("", utf8), false},
        {"UTF-8 by meta tag", "text/html", spotPage(meta, utf8), true},
        {"UTF-8 by mark", "text/html", spotPage("\xEF\xBB\xBF", utf8), true},
    };
    // clang-format on
    QStringList first;
    for (const auto &c : cases) {
        LocalHttpServer::Response page;
        page.contentType = c.contentType;
        page.body = c.body;
        WebRig rig(page);
        ASSERT_TRUE(rig.webIdle()) << c.name;
        const QStringList shown = paneLines(rig.window.workingPane(0));
        if (first.isEmpty()) {
            first = shown;
            ASSERT_FALSE(first.isEmpty());
            const QString all = first.join('\n');
            EXPECT_TRUE(all.contains(u"KP20 € “Es”") && all.contains(u"MUF=")) << all.toStdString();
        }
        EXPECT_EQ(shown, first) << c.name;
        if (c.toolSeesCharset) {
            CliOptions options;
            options.ownLocator = "JO62QM";
            options.webPage = true;
            CliReplay tool(options);
            QBuffer saved;
            saved.setData(c.body);
            saved.open(QIODevice::ReadOnly);
            tool.evaluateSpotPage(saved);
            EXPECT_EQ(paneLines(tool.panes()[0]), shown) << c.name;
        }
    }
}

// Whatever pushes while a page is on its way, being evaluated or being
// reported: the status clicked, the refresh timer due. One fetch, one box.
TEST(WebPage, OneFetchAtATime) {
    LocalHttpServer::Response slow;
    slow.body = spotPage("", "slow");
    slow.trickleMs = 2; // still moving, so never cut off
    LocalHttpServer::Response silent;
    silent.neverAnswer = true;
    LocalHttpServer::Response good;
    good.body = spotPage("", "good");
    // clang-format off
    const struct { const char *name; LocalHttpServer::Response page; bool wrongLocator;
                   int boxes; } cases[] = {
        {"slow page", slow, false, 0},
        {"failure box open", silent, false, 1},
        {"fault box open while the page is evaluated", good, true, 1},
    };
    // clang-format on
    for (const auto &c : cases) {
        WebRig rig(c.page);
        rig.state.OwnLocator = c.wrongLocator ? "JO62QZ" : rig.state.OwnLocator;
        const auto push = [&rig] {
            for (int i = 0; i < 3; ++i) {
                rig.clickStatus();
            }
            rig.letRefreshComeDue();
        };
        if (c.page.trickleMs > 0) {
            ASSERT_TRUE(rig.window.sources().web().isBusy()) << c.name;
            push();
        }
        rig.platform.whileOpen = push;
        ASSERT_TRUE(rig.webIdle()) << c.name;
        EXPECT_EQ(rig.requests(), 1) << c.name;
        EXPECT_EQ(rig.platform.messages().size(), c.boxes) << c.name;
        EXPECT_LE(rig.platform.deepest, 1) << c.name;
        // Once it is over, a click fetches again.
        rig.web.setResponse("/DxSpots.aspx", good);
        rig.platform.whileOpen = nullptr;
        rig.clickStatus();
        ASSERT_TRUE(rig.webIdle()) << c.name;
        EXPECT_EQ(rig.requests(), 2) << c.name;
    }
}

} // namespace
