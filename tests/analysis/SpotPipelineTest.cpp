#include "SpotPipeline.h"
#include "MemoryPane.h"
#include "PaneWriter.h"
#include "TestSpots.h"

#include <array>

using namespace zkr;

namespace {

TEST(SpotPipeline, SkipsLinesWithoutPositiveFrequencyAndReportsThePanesAPageGaveEsResults) {
    SpotPipeline pipeline;
    pipeline.setSettings({.ownLocator = "JO62QM"});
    const QDateTime now(QDate(2026, 6, 1), QTime(0, 20), Qt::UTC);
    pipeline.setClock([&] { return now; });
    QList<EvaluatedSpot> spots;
    QStringList events;
    QObject::connect(&pipeline, &SpotPipeline::spotEvaluated, [&](const EvaluatedSpot &spot) {
        spots.append(spot);
        events << "spot";
    });
    QObject::connect(&pipeline, &SpotPipeline::pageStarted, [&] { events << "start"; });
    QObject::connect(&pipeline, &SpotPipeline::pageFinished,
                     [&](unsigned panes) { events << "end " + QString::number(panes, 2); });
    for (const char *kiloHertz : {"0.0", "-50110.0", "", "0.001", "50110.0"}) {
        pipeline.evaluateClusterLine(clusterLine(kiloHertz, "JO90JR<ES>KP20"));
    }
    ASSERT_EQ(spots.size(), 2);
    EXPECT_FLOAT_EQ(spots[0].frequency, 0.000001f);
    EXPECT_EQ(spots[1].frequency, 50.11f);
    EXPECT_EQ(spots[1].received, now);
    // The spot's own time dated by the arrival.
    const std::pair<const char *, QDateTime> times[] = {
        {"0015Z", QDateTime(QDate(2026, 6, 1), QTime(0, 15), Qt::UTC)},
        {"2359Z", QDateTime(QDate(2026, 5, 31), QTime(23, 59), Qt::UTC)}, // made yesterday
        {"0120Z", QDateTime(QDate(2026, 6, 1), QTime(1, 20), Qt::UTC)},   // clock an hour off
        {"0121Z", QDateTime(QDate(2026, 5, 31), QTime(1, 21), Qt::UTC)},
        {"2460Z", now}, // no time of day: the arrival
        {"", now},
    };
    for (const auto &[time, made] : times) {
        spots[1].time = time;
        EXPECT_EQ(spots[1].spotTimeUtc(), made) << time;
    }

    spots.clear();
    events.clear();
    pipeline.setSettings({.ownLocator = "JO62QM", .evalAll = true}); // cluster-shaped page lines
    pipeline.evaluatePage({clusterLine("50110.0", "JO90JR<ES>KP20").mid(6),
                           clusterLine("144300.0", "JO90JR KP20").mid(6), // computed, no Es
                           ""});
    EXPECT_EQ(events, QStringList({"start", "spot", "spot", "spot", "end 1011"}));
    // A blank line still takes the cluster shape: "  " time " " tail1 " " tail2.
    EXPECT_EQ(spots[2].runs, Runs({{"    ", K}, {"\r\n", K}}));
    EXPECT_EQ(spots[1].panes, 0b0111u);
}

struct Panes {
    std::array<MemoryPane, 4> pane;
    PaneWriter writer{ResultPanes{&pane[0], &pane[1], &pane[2], &pane[3]}};
    QString texts() {
        QStringList texts;
        for (MemoryPane &p : pane) {
            p.commit();
            texts << p.text();
        }
        return texts.join('|');
    }
};

EvaluatedSpot printed(const char *text, unsigned panes) {
    EvaluatedSpot spot;
    spot.runs = {{text, M}, {"\r\n", K}};
    spot.panes = panes;
    return spot;
}

TEST(PaneWriter, PutsEachSpotOnTopOfTheSelectedPanesAndAPageReplacesThemInItsOwnOrder) {
    Panes p;
    p.writer.writePrompt("\r\nlogin ok>\r\n");
    p.writer.writeSpot(printed("a", 0b1001));
    p.writer.writeSpot(printed("b", 0b0011));
    p.writer.writeSpot(EvaluatedSpot{});
    EXPECT_EQ(p.texts(), "b\r\na\r\n\r\nlogin ok>\r\n|b\r\n||a\r\n"); // cluster text in All only
    EXPECT_EQ(p.pane[0].line(3).runs, QList<ColourRun>({{9, 0xFF0000}}));
    EXPECT_EQ(p.pane[1].line(0).runs, QList<ColourRun>({{1, M}}));
    p.writer.beginPage();
    p.writer.writeSpot(printed("new", 0b1011));
    p.writer.writeSpot(printed("older", 0b0001));
    p.writer.endPage(0b1001);
    const QString none = "Sorry - no Es-spots found !\r\n";
    EXPECT_EQ(p.texts(), "new\r\nolder\r\n|new\r\n" + none + "|" + none + "|new\r\n");
    p.writer.writeNotice("The Webserver may be down !");
    EXPECT_EQ(p.texts(), "The Webserver may be down !|The Webserver may be down !|"
                         "The Webserver may be down !|The Webserver may be down !");
}

} // namespace
