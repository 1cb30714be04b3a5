// A long run: 1,000,000 spot lines from a cluster on this machine through
// the program's window (offscreen), in batches of 100 spots a write. Prints
// memory and cost per spot after 100k, 500k and 1M spots.
#include "LocalClusterServer.h"
#include "ProcessMemory.h"
#include "ProgramState.h"
#include "ScriptedPlatform.h"
#include "frmZKR_MUF.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <cstdio>

using namespace zkr;
using zkr::test::heapMiB;
using zkr::test::residentKiB;

namespace {

class YieldingPlatform : public ScriptedPlatform {
public:
    void processEvents() override { QCoreApplication::processEvents(); }
};

QByteArray batch(int first) {
    const char *comments[] = {"JO90JR<ES>KP20", "JO62QM JO65 MS",   "JO62QM IM98 es",
                              "CQ CQ",          "IO91 JN45 tnx es", "KP20 JO62 TR",
                              "599 in FT8",     "JN25 KO05 ES"};
    const char *frequencies[] = {"50110.0", "144300.0", "70150.0",
                                 "14074.0", "50313.0",  "144174.0"};
    QByteArray out;
    for (int i = first; i < first + 100; ++i) {
        const QByteArray frequency = frequencies[i % 6];
        out += QByteArray("DX de SP9HWY:").leftJustified(24 - frequency.size(), ' ') + frequency +
               "  " + QByteArray("OH") + QByteArray::number(i % 10) +
               QByteArray("XYZ").leftJustified(10, ' ') +
               QByteArray(comments[(i / 7) % 8]).leftJustified(31, ' ') + "1712Z\r\n";
    }
    return out;
}

} // namespace

int main(int argc, char **argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    LocalClusterServer node;
    QTemporaryDir folder;
    if (!LocalClusterServer::writeSettings(folder.path(), node.port())) {
        std::fprintf(stderr, "cannot write the settings file\n");
        return 1;
    }
    ProgramState state;
    YieldingPlatform platform;
    platform.setApplicationFolder(folder.path());
    frmZKR_MUF window(state, platform);
    window.Form_Load();
    window.show();
    while (!node.hasClient() || !state.Telnet_Connected) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }

    const double heapStart = heapMiB();
    const long rssStart = residentKiB();
    QElapsedTimer clock;
    clock.start();
    qint64 lastMs = 0;
    int lastSpots = 0;
    std::printf("%10s %12s %12s %14s %10s\n", "spots", "heap MB", "RSS MB", "us per spot",
                "chunks");
    for (int sent = 0; sent < 1000000; sent += 100) {
        const qsizetype chunks = state.Console_Lines.size();
        node.send(batch(sent));
        // The next batch goes once this one was taken in.
        while (state.Console_Lines.size() == chunks || !node.socketIdle()) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        }
        const int spots = sent + 100;
        if (spots == 100000 || spots == 500000 || spots == 1000000) {
            const qint64 ms = clock.elapsed();
            std::printf("%10d %12.1f %12.1f %14.1f %10d\n", spots, heapMiB() - heapStart,
                        static_cast<double>(residentKiB() - rssStart) / 1024.0,
                        1000.0 * static_cast<double>(ms - lastMs) / (spots - lastSpots),
                        static_cast<int>(state.Console_Lines.size() - 1));
            std::fflush(stdout);
            lastMs = ms;
            lastSpots = spots;
        }
    }
    std::printf("lines in pane All: %lld (cap %lld); console record %lld chunks\n",
                static_cast<long long>(window.workingPane(0).lineCount()),
                static_cast<long long>(window.workingPane(0).maxLines()),
                static_cast<long long>(state.Console_Lines.size()));
    return 0;
}
