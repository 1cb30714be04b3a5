// The web spot page in the window: the tool's text, one fetch at a time.
#include "ShellFakes.h"

#include <utility>

using namespace zkr;
using test::spotPage;

namespace {

// A box stays open, with events running as under a real one, while
// `whileOpen` runs (once: under the first box only).
struct HoldingPlatform : ScriptedPlatform {
    int messageBox(const QString &text, int buttons, const QString &title) override {
        if (const auto hold = std::exchange(whileOpen, nullptr)) {
            hold();
        }
        return ScriptedPlatform::messageBox(text, buttons, title);
    }
    std::function<void()> whileOpen;
};

struct WebRig : test::ProgramRigOn<HoldingPlatform> {
    // An empty body: the server never answers.
    WebRig(const QByteArray &body, const QByteArray &contentType, int trickleMs = 0) {
        web.setResponse("/DxSpots.aspx", {200, body, contentType, body.isEmpty(), trickleMs});
        window.sources().web().setOptions({1, 300, 600, 600});
        start("!NOCALL!"); // fetches the page at once
    }
    bool busy() { return window.sources().web().isBusy(); }
    // The user clicks the status and the refresh comes due; then events run
    // until any fetch that started has ended.
    void push() {
        window.Label_Telnet_Status_Click();
        state.Refresh_Seconds = 59;
        window.Timer1_Timer();
        while (busy()) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
    }
};

// The decoding is tabled with the page decoder; here the header reaches it,
// which only the window has.
TEST(WebPage, WindowAndToolShowTheSameTextUnlessTheHeaderNamesTheCharset) {
    const QByteArray utf8 = "\xE2\x82\xAC \xE2\x80\x9C"
                            "Es\xE2\x80\x9D";
    // clang-format off
    const struct { const char *contentType; QByteArray body; bool toolToo; } cases[] = {
        {"text/html", spotPage("\x80 \x93" "Es\x94"), true},
        {"text/html; charset=utf-8", spotPage(utf8), false},
    };
    // clang-format on
    for (const auto &c : cases) {
        WebRig rig(c.body, c.contentType);
        ASSERT_TRUE(test::waitFor([&] { return !rig.busy(); }));
        const QString shown = rig.window.workingPane(0).text();
        EXPECT_TRUE(shown.contains(QString::fromUtf8("KP20 € “Es”")) && shown.contains("MUF="))
            << shown.toStdString();
        EXPECT_EQ(test::toolPanes(c.body, true)[0] == test::paneLines(rig.window.workingPane(0)),
                  c.toolToo)
            << shown.toStdString();
    }
}

// While a page trickles in or its failure box is open: one fetch, one box;
// afterwards a click fetches. An own locator that cannot be used is no fault.
TEST(WebPage, OneFetchAtATime) {
    // clang-format off
    const struct { QByteArray page; int trickleMs; const char *locator; int boxes; } cases[] = {
        {spotPage("slow  "), 2, "JO62QM", 0},
        {"", 0, "JO62QM", 1},
        {spotPage("fault "), 0, "JO62QZ", 0},
    };
    // clang-format on
    for (const auto &c : cases) {
        WebRig rig(c.page, "", c.trickleMs);
        rig.state.OwnLocator = c.locator;
        rig.platform.whileOpen = [&rig] { rig.push(); };
        if (c.trickleMs > 0) {
            rig.push();
        }
        ASSERT_TRUE(test::waitFor([&] { return !rig.busy(); }));
        EXPECT_EQ(rig.web.requestCount("/DxSpots.aspx"), 1) << c.boxes;
        EXPECT_EQ(rig.platform.messages().size(), c.boxes);
        rig.window.Label_Telnet_Status_Click();
        ASSERT_TRUE(test::waitFor([&] { return !rig.busy(); }));
        EXPECT_EQ(rig.web.requestCount("/DxSpots.aspx"), 2) << c.boxes;
    }
}

} // namespace
