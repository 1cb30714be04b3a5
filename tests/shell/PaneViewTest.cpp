#include "ShellFakes.h"

#include <QFontDatabase>
#include <QScrollBar>

using namespace zkr;

namespace {

struct PaneViewTest : ::testing::Test {
    MemoryPane working;
    PaneView view;
    PaneViewTest() {
        view.setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
        view.resize(600, 200);
        view.setSource(&working);
    }
    // A line on top of the working pane, committed as one spot.
    void print(const QString &line) {
        working.insertColored(line + "\r\n", 0);
        working.setCaret(0);
        working.commit();
    }
    // The view after it caught up (within one frame).
    QImage shot() {
        view.refresh();
        QTest::qWait(PaneView::FrameMs + 20);
        return view.viewport()->grab().toImage();
    }
};

TEST_F(PaneViewTest, ShowsCommittedLinesAndDirectPrintsUntilTheNextRefresh) {
    print("first");
    view.refresh();
    working.insertColored(u"half", 0); // not committed: never shown
    view.refresh();
    EXPECT_EQ(view.text(), "first\r\n");
    working.commit();
    EXPECT_EQ(view.text(), "halffirst\r\n");

    view.setCaret(0); // the cluster prompt, printed straight into the view
    view.insertColored(u"\r\n\r\nDXSpider >\r\n", 0xFF0000);
    EXPECT_EQ(view.text(), "\r\n\r\nDXSpider >\r\nhalffirst\r\n");
    view.refresh();
    EXPECT_EQ(view.text(), "halffirst\r\n");

    view.clear(); // a web server failure hides the working pane
    view.insertColored(u"The Webserver may be down !", 0);
    EXPECT_EQ(view.text(), "The Webserver may be down !\r\n");
    view.refresh();
    EXPECT_EQ(view.text(), "halffirst\r\n");
}

TEST_F(PaneViewTest, KeepsAScrolledReaderOnTheSameSpots) {
    for (int i = 0; i < 100; ++i) {
        print(QStringLiteral("spot %1").arg(i));
    }
    shot();
    QScrollBar *bar = view.verticalScrollBar();
    ASSERT_GT(bar->maximum(), 50);
    EXPECT_EQ(view.firstShownLine(), 0);

    bar->setValue(10); // reading "spot 89"
    print("spot 100");
    print("spot 101");
    view.refresh();
    EXPECT_EQ(view.firstShownLine(), 12);

    bar->setValue(0); // at the top the newest spot stays in sight
    print("spot 102");
    shot();
    EXPECT_EQ(view.firstShownLine(), 0);
}

// A run shows as one row read left to right: only what moves, reorders or hides
// text is replaced.
TEST(PaneViewText, ShowsEveryRunAsOneLeftToRightRow) {
    const QChar dot(0xB7);
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
        {QString::fromLatin1("\x80\x9f\xa0\xe9\xff"),
         QString(dot) + dot + QString::fromLatin1("\xa0\xe9\xff")},
        {brokenUtf8, brokenUtf8},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(PaneView::shownText(c.text), c.shown) << c.text.toStdString();
    }
    EXPECT_EQ(PaneView::shownText(QString(300000, 'W')).size(), PaneView::MaxShownColumns);
}

// On screen: markup stays text and breaks stay in their row (eleven cells,
// not the four of a bold "WWWW"), in the run's &H00BBGGRR colour.
TEST_F(PaneViewTest, SpotTextIsPaintedAsPlainTextInItsOwnRowAndColour) {
    working.insertColored(QString::fromUtf16(u"<b>W\rW\u2028W\u202eW</b>"), 0xFF0000);
    working.insertColored(u"\r\n", 0);
    working.commit();
    const QImage image = shot();
    const int row = QFontMetrics(view.font()).lineSpacing();
    const int cell = QFontMetrics(view.font()).horizontalAdvance(QLatin1Char('W'));
    int inkEnd = -1, inkBelow = 0;
    for (int y = 0; y < 2 * row && y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor c = image.pixelColor(x, y);
            const bool blue = c.blue() > 200 && c.red() < 60 && c.green() < 60;
            inkEnd = blue && y < row ? std::max(inkEnd, x) : inkEnd;
            inkBelow += blue && y >= row ? 1 : 0;
        }
    }
    EXPECT_GT(inkEnd, 12 * cell) << "cell " << cell;
    EXPECT_EQ(inkBelow, 0);
}

} // namespace
