#include "PaneView.h"
#include "MemoryPane.h"
#include "QtPrinters.h"

#include <QFontDatabase>
#include <QImage>
#include <QScrollBar>
#include <QTest>

#include <gtest/gtest.h>

using namespace zkr;

namespace {

// The view catches up within one frame.
void settle() {
    QTest::qWait(PaneView::FrameMs + 20);
}

void printSpot(MemoryPane &pane, const QString &text, std::uint32_t colour = 0) {
    pane.insertColored(text, colour);
    pane.insertColored(u"\r\n", 0);
    pane.setCaret(0);
    pane.commit();
}

struct ViewFixture : ::testing::Test {
    MemoryPane working;
    PaneView view;
    ViewFixture() {
        view.setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
        view.resize(400, 200);
        view.setSource(&working);
    }
};

TEST_F(ViewFixture, NeverShowsAHalfPrintedSpot) {
    printSpot(working, "first");
    view.refresh();
    EXPECT_EQ(view.text(), "first\r\n");
    working.insertColored(u"half", 0); // not committed: not shown
    view.refresh();
    EXPECT_EQ(view.text(), "first\r\n");
    working.commit();
    EXPECT_EQ(view.text(), "halffirst\r\n");
}

TEST_F(ViewFixture, DirectPrintsShowOnTopUntilTheNextRefresh) {
    printSpot(working, "spot");
    view.refresh();
    view.setCaret(0);
    view.insertColored(u"\r\n\r\nDXSpider >\r\n", 0xFF0000);
    EXPECT_EQ(view.text(), "\r\n\r\nDXSpider >\r\nspot\r\n");
    view.refresh();
    EXPECT_EQ(view.text(), "spot\r\n");
}

TEST_F(ViewFixture, ClearHidesTheWorkingPaneUntilTheNextRefresh) {
    printSpot(working, "spot");
    view.refresh();
    view.clear();
    view.insertColored(u"The Webserver may be down !", 0);
    EXPECT_EQ(view.text(), "The Webserver may be down !\r\n");
    view.refresh();
    EXPECT_EQ(view.text(), "spot\r\n");
}

TEST_F(ViewFixture, KeepsAScrolledReaderOnTheSameSpots) {
    for (int i = 0; i < 100; ++i) {
        printSpot(working, QStringLiteral("spot %1").arg(i));
    }
    view.refresh();
    settle();
    QScrollBar *bar = view.verticalScrollBar();
    ASSERT_GT(bar->maximum(), 50);
    EXPECT_EQ(view.firstShownLine(), 0);

    bar->setValue(10); // reading "spot 89"
    printSpot(working, "spot 100");
    printSpot(working, "spot 101");
    view.refresh();
    EXPECT_EQ(view.firstShownLine(), 12);

    bar->setValue(0); // at the top the newest spot stays in sight
    printSpot(working, "spot 102");
    view.refresh();
    settle();
    EXPECT_EQ(view.firstShownLine(), 0);
}

// Colours are kept as &H00BBGGRR values: magenta and blue must come out as
// such on screen, and control characters must not break the painting.
TEST_F(ViewFixture, PaintsRunsInTheirColours) {
    QFont font = view.font();
    font.setPointSize(20);
    view.setFont(font);
    working.insertColored(u"\x07\x07MMMM", 0xFF00FF);
    working.insertColored(u"WWWW\0", 0xFF0000);
    working.insertColored(u"\r\n", 0);
    working.commit();
    view.refresh();
    settle();
    const QImage image = view.viewport()->grab().toImage();
    bool magenta = false;
    bool blue = false;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor c = image.pixelColor(x, y);
            magenta = magenta || (c.red() > 200 && c.blue() > 200 && c.green() < 60);
            blue = blue || (c.blue() > 200 && c.red() < 60 && c.green() < 60);
        }
    }
    EXPECT_TRUE(magenta);
    EXPECT_TRUE(blue);
}

} // namespace
