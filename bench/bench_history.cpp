// The spot history: insert rate with the window running (spots through the
// window's feed, the store writing on its own thread), restore time for
// 20,000 spots of the last two hours into the window's panes, and the file
// size per 100,000 spots. Prints its figures.
#include "HistoryDatabase.h"
#include "HistorySpots.h"
#include "ProgramState.h"
#include "ScriptedPlatform.h"
#include "SpotSources.h"
#include "SpotStore.h"
#include "frmZKR_MUF.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <cstdio>
#include <memory>

using namespace zkr;

namespace {

struct Rig {
    QTemporaryDir folder;
    ProgramState state;
    ScriptedPlatform platform;
    frmZKR_MUF window{state, platform};

    explicit Rig(const QString &data) {
        QFile ini(folder.filePath(QStringLiteral("zkr_muf.ini")));
        ini.open(QIODevice::WriteOnly);
        ini.write("[Version]\r\nVersion=1.30\r\n[Call]\r\nOwnCall=DL1ABC\r\n[Locator]\r\n"
                  "OwnLocator=JO62QM\r\n[AutoUpdateCheck]\r\nUpdateCheck=off\r\n");
        ini.close();
        platform.setApplicationFolder(folder.path());
        platform.setUserFolder(UserFolder::Data, data);
        platform.setCommandLine(QStringLiteral("/FILE"));
        window.sources().enableHistory();
        window.Form_Load();
        window.show();
    }
};

void waitUntil(const std::function<bool()> &done) {
    while (!done()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    }
}

} // namespace

int main(int argc, char **argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QTemporaryDir data;

    // Insert rate: 50,000 spots through the window, 500 per turn of its loop.
    constexpr int Spots = 50000;
    {
        Rig rig(data.path());
        qint64 committed = 0;
        QObject::connect(rig.window.sources().history().store(), &SpotStore::committed,
                         [&](qint64 total) { committed = total; });
        QElapsedTimer clock;
        clock.start();
        for (int i = 0; i < Spots; i += 500) {
            QByteArray lines;
            for (int k = i; k < i + 500; ++k) {
                lines += "DX de " + test::historySpot(k, {}).line.toLatin1() + "\r\n";
            }
            rig.window.sources().session().feed().receive(lines);
            QCoreApplication::processEvents();
        }
        const double shownMs = static_cast<double>(clock.nsecsElapsed()) / 1e6;
        waitUntil([&] { return committed >= Spots; });
        const double storedMs = static_cast<double>(clock.nsecsElapsed()) / 1e6;
        std::printf("%d spots through the window: shown after %.0f ms, all committed after "
                    "%.0f ms: %.0f spots/s stored, %lld dropped\n",
                    Spots, shownMs, storedMs, Spots / storedMs * 1000.0,
                    static_cast<long long>(rig.window.sources().history().store()->droppedCount()));
        rig.window.sources().closeHistory();
    }

    // Restore: 20,000 spots of the last two hours into a starting window.
    QFile::remove(data.filePath(QStringLiteral("history.sqlite")));
    {
        HistoryDatabase db;
        db.open(data.filePath(QStringLiteral("history.sqlite")), HistoryDatabase::Access::Writer);
        const QDateTime start = QDateTime::currentDateTimeUtc().addSecs(-7000);
        db.begin();
        for (int i = 0; i < 20000; ++i) {
            db.insert(test::historySpot(i, start.addMSecs(i * 300)), QStringLiteral("GB7DJK"));
        }
        db.commit();
    }
    {
        QElapsedTimer clock;
        clock.start();
        Rig rig(data.path());
        bool done = false;
        QObject::connect(rig.window.sources().history().store(), &SpotStore::restoreFinished,
                         [&] { done = true; });
        waitUntil([&] { return done; });
        QCoreApplication::processEvents(); // the last chunk into the panes
        std::printf("restore of 20,000 spots into the panes (start to last pane line): %.0f ms, "
                    "%lld lines in pane All\n",
                    static_cast<double>(clock.nsecsElapsed()) / 1e6,
                    static_cast<long long>(rig.window.workingPane(0).lineCount()));
        rig.window.sources().closeHistory();
    }

    // Size per 100,000 spots, after the write-ahead log is folded in.
    const QString sized = data.filePath(QStringLiteral("size.sqlite"));
    {
        HistoryDatabase db;
        db.open(sized, HistoryDatabase::Access::Writer);
        const QDateTime start = QDateTime::currentDateTimeUtc();
        db.begin();
        for (int i = 0; i < 100000; ++i) {
            db.insert(test::historySpot(i, start.addMSecs(i)), QStringLiteral("GB7DJK"));
        }
        db.commit();
    }
    std::printf("file size per 100,000 spots: %.1f MB\n",
                static_cast<double>(QFileInfo(sized).size()) / 1e6);
    return 0;
}
