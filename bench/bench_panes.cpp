// Cost of one more cluster spot, end to end (receive, analysis, all panes,
// visible pane repainted), with 1,000 and with 100,000 spots already in the
// panes, and the memory the panes take for 100,000 spots. Prints its figures.
#include "PaneView.h"
#include "ProcessMemory.h"
#include "ProgramState.h"
#include "ScriptedPlatform.h"
#include "SpotSources.h"
#include "frmZKR_MUF.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <random>
#include <vector>

using namespace zkr;
using zkr::test::heapMiB;
using zkr::test::residentKiB;

namespace {

std::vector<QString> makeSpots(int count) {
    const char *comments[] = {"JO90JR<ES>KP20", "JO62QM JO65 MS",   "JO62QM IM98 es",
                              "CQ CQ",          "IO91 JN45 tnx es", "KP20 JO62 TR",
                              "599 in FT8",     "JN25 KO05 ES"};
    const char *frequencies[] = {"50110.0", "144300.0", "70150.0",
                                 "14074.0", "50313.0",  "144174.0"};
    std::mt19937 random(7);
    std::vector<QString> spots;
    spots.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        const QString frequency =
            QString::fromLatin1(frequencies[random() % std::size(frequencies)]);
        spots.push_back(
            QStringLiteral("DX de SP9HWY:").leftJustified(24 - frequency.size(), QLatin1Char(' ')) +
            frequency + QStringLiteral("  ") +
            QStringLiteral("OH%1XYZ").arg(i % 10).leftJustified(13, QLatin1Char(' ')) +
            QString::fromLatin1(comments[random() % std::size(comments)])
                .leftJustified(31, QLatin1Char(' ')) +
            QStringLiteral("1712Z\r\n"));
    }
    return spots;
}

// Boxes are scripted, but pending events run as in the program, which
// yields to the event loop at every spot.
class YieldingPlatform : public ScriptedPlatform {
public:
    void processEvents() override { QCoreApplication::processEvents(); }
};

struct Rig {
    QTemporaryDir folder;
    ProgramState state;
    YieldingPlatform platform;
    frmZKR_MUF window{state, platform};

    Rig() {
        QFile ini(folder.filePath(QStringLiteral("zkr_muf.ini")));
        ini.open(QIODevice::WriteOnly);
        ini.write("[Version]\r\nVersion=1.30\r\n[Call]\r\nOwnCall=DL1ABC\r\n[Locator]\r\n"
                  "OwnLocator=JO62QM\r\n[AutoUpdateCheck]\r\nUpdateCheck=off\r\n");
        ini.close();
        platform.setApplicationFolder(folder.path());
        platform.setCommandLine(QStringLiteral("/FILE")); // no connection, no file dialog answer
        window.Form_Load();
        window.show();
    }
    // A spot arrives on the cluster session's feed, as from the network.
    void receive(const QString &spot) {
        window.sources().session().feed().receive(spot.toLatin1());
    }
    // One spot as the user sees it: evaluated, then the visible pane painted.
    double timeOneSpot(const QString &spot) {
        QElapsedTimer clock;
        clock.start();
        receive(spot);
        QCoreApplication::processEvents(); // anything still to paint
        return static_cast<double>(clock.nsecsElapsed()) / 1e6;
    }
};

double medianCost(Rig &rig, const std::vector<QString> &spots, int samples) {
    std::vector<double> costs;
    for (int i = 0; i < samples; ++i) {
        costs.push_back(rig.timeOneSpot(spots[static_cast<std::size_t>(i) % spots.size()]));
    }
    std::sort(costs.begin(), costs.end());
    return costs[costs.size() / 2];
}

} // namespace

int main(int argc, char **argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const std::vector<QString> spots = makeSpots(100000);

    Rig rig;
    if (argc > 1 && qstrcmp(argv[1], "--profile") == 0) {
        // A short run for a profiler.
        for (int i = 0; i < 300; ++i) {
            rig.timeOneSpot(spots[static_cast<std::size_t>(i)]);
        }
        return 0;
    }
    const long before = residentKiB();
    const double heapBefore = heapMiB();
    for (int i = 0; i < 1000; ++i) {
        rig.receive(spots[static_cast<std::size_t>(i)]);
    }
    const double at1k = medianCost(rig, spots, 500);

    QElapsedTimer fill;
    fill.start();
    for (int i = 1500; i < 100000; ++i) {
        rig.receive(spots[static_cast<std::size_t>(i)]);
    }
    const double fillSeconds = static_cast<double>(fill.elapsed()) / 1000.0;
    const long after = residentKiB();
    const double heapAfter = heapMiB();
    const double at100k = medianCost(rig, spots, 500);

    long long lines = 0;
    for (int i = 0; i < 4; ++i) {
        lines += rig.window.workingPane(i).lineCount();
    }
    std::printf("lines in the panes All, VHF, 2m, Es together: %lld\n", lines);
    std::printf("cost per spot, end to end, with 1,000 spots:   %.3f ms (median of 500)\n", at1k);
    std::printf("cost per spot, end to end, with 100,000 spots: %.3f ms (median of 500)\n", at100k);
    std::printf("ratio 100k / 1k: %.2f\n", at100k / at1k);
    std::printf(
        "memory growth for 100,000 spots in all panes: %.1f MB (%.0f bytes per pane line)\n",
        static_cast<double>(after - before) / 1024.0,
        static_cast<double>(after - before) * 1024.0 / static_cast<double>(lines));
    std::printf("state: Console_Lines %lld, platform log %lld\n",
                static_cast<long long>(rig.state.Console_Lines.size()),
                static_cast<long long>(rig.platform.log().size()));
    std::printf("heap in use grew by %.1f MB\n", heapAfter - heapBefore);
    for (int i = 0; i < 4; ++i) {
        rig.window.workingPane(i).clear();
    }
    std::printf("heap in use after clearing the panes: %.1f MB above the start\n",
                heapMiB() - heapBefore);
    std::printf("98,500 spots evaluated in %.1f s (%.0f spots/s)\n", fillSeconds,
                98500.0 / fillSeconds);
    return 0;
}
