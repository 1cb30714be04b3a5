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

// Whatever a spot holds, a run shows as one row read left to right: only
// characters that would move, reorder or hide text are replaced.
TEST(PaneViewText, ShowsEveryRunAsOneLeftToRightRow) {
    const QChar dot(0xB7);
    const QString latin1 = QString::fromLatin1("\x80\x9f\xa0\xe9\xff");
    const QString brokenUtf8 = QString::fromUtf8("a\xc3(\xff");
    const struct {
        QString text, shown;
    } cases[] = {
        {"<b>HTML</b> &amp; <a href=x>", "<b>HTML</b> &amp; <a href=x>"},
        {QString::fromUtf16(u"A\tB\rC\nD\x07\x1b[31mE\x7f", 15),
         "A\u00b7B\u00b7C\u00b7D\u00b7\u00b7[31mE\u00b7"},
        {QString(QChar(0)) + "N", QString(dot) + "N"},
        // Direction overrides and isolates, zero-width characters, separators.
        {QString::fromUtf16(u"A\u202eBC\u2066D\u200bE\ufeffF\u2028G\u2029H"),
         QString("A%1BC%1D%1E%1F%1G%1H").arg(dot)},
        // Half a surrogate pair is replaced, a whole one kept.
        {QString::fromUtf16(u"\xd800x\U0001F600\xdc00", 5),
         QString(dot) + "x" + QString::fromUtf16(u"\U0001F600") + dot},
        // Bytes read as Latin-1: the C1 codes are controls, the rest letters.
        {latin1, QString(dot) + dot + QString::fromLatin1("\xa0\xe9\xff")},
        {brokenUtf8, brokenUtf8},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.text.toStdString());
        EXPECT_EQ(PaneView::shownText(c.text), c.shown);
    }
    EXPECT_TRUE(brokenUtf8.contains(QChar::ReplacementCharacter));
    EXPECT_EQ(PaneView::shownText(QString(300000, 'W')).size(), PaneView::MaxShownColumns);
}

// On screen: markup stays its own characters, a line with breaks and
// overrides in it stays in its row, and a megabyte word scrolls only as far
// as can be laid out.
TEST_F(ViewFixture, SpotTextIsPaintedAsPlainTextInItsOwnRow) {
    const QString markup = "<b>WWWW</b>";
    for (const QString &line : {QString(), markup, QString(),
                                QString::fromUtf16(u"W\rW\nW\u2028W\u2029W\u202eWW"), QString()}) {
        working.insertColored(line, 0);
        working.insertColored(u"\r\n", 0);
    }
    working.setCaret(0);
    working.commit();
    view.resize(600, 200);
    view.refresh();
    settle();
    const QImage image = view.viewport()->grab().toImage();
    const QFontMetrics metrics(view.font());
    const int row = metrics.lineSpacing();
    const int cell = metrics.horizontalAdvance(QLatin1Char('W'));
    const QColor background = image.pixelColor(image.width() - 1, image.height() - 1);
    // Rightmost inked column of each row band, -1 for an empty band.
    std::vector<int> inkEnd(5, -1);
    for (int y = 0; y < 5 * row && y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y) != background) {
                inkEnd[static_cast<std::size_t>(y / row)] =
                    std::max(inkEnd[static_cast<std::size_t>(y / row)], x);
            }
        }
    }
    EXPECT_EQ(inkEnd[0], -1);
    EXPECT_EQ(inkEnd[2], -1);
    EXPECT_EQ(inkEnd[4], -1);
    // Eleven characters wide, not the four of a bold "WWWW".
    EXPECT_GT(inkEnd[1], 10 * cell) << "cell " << cell;
    EXPECT_GT(inkEnd[3], 11 * cell) << "cell " << cell;

    working.insertColored(QString(1024 * 1024, 'W'), 0);
    working.insertColored(u"\r\n", 0);
    working.setCaret(0);
    working.commit();
    view.refresh();
    settle();
    EXPECT_EQ(view.horizontalScrollBar()->maximum(),
              (PaneView::MaxShownColumns + 2) * metrics.horizontalAdvance(QLatin1Char('M')) -
                  view.viewport()->width());
    view.horizontalScrollBar()->setValue(view.horizontalScrollBar()->maximum());
    settle();
    EXPECT_FALSE(view.viewport()->grab().toImage().isNull());
}

} // namespace
