#include "ResultOutput.h"
#include "Reception.h"
#include "ReportOutput.h"
#include "TestSpots.h"

using namespace zkr;

namespace {

// Runs written as their colour's letter (k black, m magenta, g grey) and
// text, "|" between them; the line end after them.
Runs runsOf(const char *text) {
    Runs runs;
    for (const QString &run : QString(text).split('|', Qt::SkipEmptyParts)) {
        runs.append({run.mid(1), run[0] == 'm' ? M : run[0] == 'g' ? G : K});
    }
    return runs << TextRun{"\r\n", K};
}

TEST(SelectedPanes, BandsAreInclusiveAndEsHasItsOwnPane) {
    // clang-format off
    const struct { float frequency; const char *mode; unsigned panes; } cases[] = { // bit i: pane i
        {144.300f, "??", 0b0111}, {148.000f, "MS", 0b0111}, {148.001f, "??", 0b0011},
        {144.000f, "ES", 0b1111}, {143.999f, "ES", 0b1011}, {30.000f, "TR", 0b0011},
        {29.999f, "ES", 0b1001},  {300.000f, "??", 0b0011}, {300.001f, "??", 0b0001},
        {7.040f, "es", 0b0001}};
    // clang-format on
    for (const auto &c : cases) {
        EvaluatedSpot spot;
        spot.frequency = c.frequency;
        spot.mode = c.mode;
        EXPECT_EQ(Selected_Panes(spot), c.panes) << c.frequency << " " << c.mode;
    }
}

// The result fields of a spot with its cloud over JO96 and the own hop down
// in KP20, as runs.
TEST(ResultFields, TextAndColourAtEveryBoundary) {
    // clang-format off
    const struct { float frequency; char mode; double muf, ownMuf, elevation, ownKm;
                   const char *runs; } cases[] = { // mode E: Es, ?: none
        // Magenta from a MUF that rounds to 144, for the MUF and the square.
        {50.1, 'E', 143.4, 50, 8, 565, "k    MUF=143MHz@JO96  FOT= 50MHz -> KP20 AZ=360 EL=  8"},
        {50.1, 'E', 143.5, 50, 8, 565, "m    MUF=144MHz@JO96 |k FOT= 50MHz -> KP20 AZ=360 EL=  8"},
        // The own MUF: magenta from 144, the course only while the cloud is
        // not below the horizon (elevation rounded).
        {50.1, 'E', 150, 143.4, 8, 565, "m    MUF=150MHz@JO96 |k FOT=143MHz -> KP20 AZ=360 EL=  8"},
        {50.1, 'E', 150, 143.5, -.5, 565, "m    MUF=150MHz@JO96  FOT=144MHz -> KP20 AZ=360 EL=  0"},
        {50.1, 'E', 150, 144, -.6, 565, "m    MUF=150MHz@JO96  FOT=144MHz|g -> KP20 AZ=360 EL= -1"},
        // Below the horizon every field that is not magenta is grey.
        {50.1, 'E', 63.6, 0, -0.6, 565, "g    MUF= 64MHz@JO96             -> KP20 AZ=360 EL= -1"},
        {50.1, 'E', 63.6, 0.5, -12, 565, "g    MUF= 64MHz@JO96  FOT=  1MHz -> KP20 AZ=360 EL=-12"},
        {50.1, 'E', 63.6, 0.4, -0.5, 565, "k    MUF= 64MHz@JO96             -> KP20 AZ=360 EL=  0"},
        // The course field only for a cloud nearer than 1500 km.
        {50.1, 'E', 63.6, 50, 8, 1499.9, "k    MUF= 64MHz@JO96  FOT= 50MHz -> KP20 AZ=360 EL=  8"},
        {50.1, 'E', 63.6, 50.15, 8, 1500, "k    MUF= 64MHz@JO96  FOT= 50MHz"},
        // Doubtful results: an unmarked spot, over 250 MHz, or the limit of
        // the band (the whole MHz of the frequency).
        {50.1, '?', 63.6, 50.15, 8, 1500, "kEs? MUF= 64MHz@JO96  FOT= 50MHz"},
        {28.5, 'E', 250.4, 50, 8, 1500, "m    MUF=250MHz@JO96 |k FOT= 50MHz"},
        {28.5, 'E', 250.5, 50, 8, 1500, "mEs? MUF=251MHz@JO96 |k FOT= 50MHz"},
        {144.6, 'E', 239.49, 50, 8, 1500, "m    MUF=239MHz@JO96 |k FOT= 50MHz"},
        {144.6, 'E', 239.5, 50, 8, 1500, "mEs? MUF=240MHz@JO96 |k FOT= 50MHz"},
        {145.2, 'E', 245, 50, 8, 1500, "m    MUF=245MHz@JO96 |k FOT= 50MHz"},
        {70.6, 'E', 219.4, 50, 8, 1500, "m    MUF=219MHz@JO96 |k FOT= 50MHz"},
        {70.6, 'E', 220, 50, 8, 1500, "mEs? MUF=220MHz@JO96 |k FOT= 50MHz"},
        {50.6, 'E', 199.4, 50, 8, 1500, "m    MUF=199MHz@JO96 |k FOT= 50MHz"},
        {50.6, 'E', 200, 50, 8, 1500, "mEs? MUF=200MHz@JO96 |k FOT= 50MHz"},
        {1296.2, 'E', 5200.2, 1000, 8, 1500, "mEs? MUF=5200MHz@JO96  FOT=1000MHz"},
    };
    // clang-format on
    for (const auto &c : cases) {
        EvaluatedSpot spot;
        spot.frequency = c.frequency;
        spot.mode = c.mode == 'E' ? "ES" : "??";
        spot.es = EsPath{"JO96GP", c.muf, 0, c.ownMuf, 359.5, c.elevation, "KP20LL", 0, c.ownKm};
        for (const auto print : {Print_MufField, Print_MidSquare, Print_FotField, Print_AzField}) {
            print(spot);
        }
        EXPECT_EQ(spot.runs, runsOf(c.runs)) << c.runs;
    }
}

// A report's line takes the spot's fields and colours; a path that is no
// single Es hop is doubtful, a report without a path is its line alone.
TEST(ReportRuns, LineThenTheSpotFields) {
    const EsPath hop{"JN18AA", 150, 0, 145, 40, 3, "IN83AA", 1850, 700};
    // clang-format off
    const struct { std::optional<EsPath> es; const char *runs; } cases[] = {
        {hop, "m    MUF=150MHz@JN18  FOT=145MHz -> IN83 AZ= 40 EL=  3"},
        {EsPath{"JN18AA", 60, 0, 0, 40, -2, "IN83AA", 300, 700},
         "gEs? MUF= 60MHz@JN18             -> IN83 AZ= 40 EL= -2"},
        {std::nullopt, ""},
    };
    // clang-format on
    for (const auto &c : cases) {
        Reception report;
        report.source = ReportSource::PskReporter;
        report.time = QDateTime(QDate(2024, 6, 1), QTime(18, 30, 15), Qt::UTC);
        report.frequencyMhz = 50.31418;
        report.mode = "FT8";
        report.snr = -12;
        report.tx = {"EA7ABC", "IM76"};
        report.rx = {"DL1ABC", "JO62QM"};
        report.es = c.es;
        const QList<TextRun> runs = Report_Runs(report);
        ASSERT_GE(runs.size(), 2) << c.runs;
        const QString km = c.es ? QString("%1 km").arg(qRound(c.es->pathKm), 6) : "";
        const QString line = "1830Z   50.3142 FT8  -12 EA7ABC     IM76   > DL1ABC     JO62QM";
        EXPECT_EQ(runs.front(), (TextRun{line + km + " pskreporter ", K}));
        EXPECT_EQ(runs.mid(1), runsOf(c.runs)) << c.runs;
        EXPECT_EQ(Is_ReportInRange(report), c.es.has_value()) << c.runs;
    }
}

} // namespace
