#include "SpotPage.h"
#include "QtPrinters.h"

#include <gtest/gtest.h>

using namespace zkr;

namespace {

TEST(StripTags, RemovesTagsAndStopsOnAnUnmatchedOpening) {
    struct Case {
        const char *in;
        const char *out;
    } cases[] = {
        {"a<b>c", "ac"},    {"<tr><td>DL1ABC</td></tr>", "DL1ABC"},
        {"x>y", "x>y"},                          // no "<": returned at once
        {"a<b", "a<b"},                          // unmatched: returned as it stands
        {"a>b<c", "a>b<c"}, {"a>b<c>d", "a>bd"}, // a stray ">" is text
        {"", ""},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(Strip_Tags(c.in), c.out) << c.in;
    }
}

TEST(SplitSpotPage, DropsTheRedirectScriptAndSplitsAtLineFeeds) {
    const QString script = QString(79, 'S');
    EXPECT_EQ(Split_SpotPage(script + "line 1\nline 2\r\n"),
              QStringList({"line 1", "line 2\r", ""}));
    EXPECT_TRUE(Split_SpotPage(script).isEmpty());
    EXPECT_TRUE(Split_SpotPage("short page").isEmpty());
}

TEST(IsErrorPage, KnowsTheServiceErrorPages) {
    EXPECT_TRUE(Is_ErrorPage("<h1>Server Error</h1>"));
    EXPECT_TRUE(Is_ErrorPage("<b>Network Error</b>"));
    EXPECT_TRUE(Is_ErrorPage("<p>Runtime Error</p>"));
    EXPECT_FALSE(Is_ErrorPage("Server Error"));
    EXPECT_FALSE(Is_ErrorPage("<h1>server error</h1>"));
}

} // namespace
