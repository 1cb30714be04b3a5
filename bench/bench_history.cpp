// The spot history: insert rate with the window running (spots through the
// window's feed, the store writing on its own thread), restore time for
// 20,000 spots of the last two hours into the window's panes, and the file
// size per 100,000 spots. For reception reports: 1,000,000 reports at 100 a
// second through the store (reports stored per second, bytes on disk per
// report, a day at 100 reports/s), the restore of the last two hours (the
// newest 100,000 and all 720,000) and one retention batch. Prints its figures.
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

double msSince(const QElapsedTimer &clock) {
    return static_cast<double>(clock.nsecsElapsed()) / 1e6;
}

void benchReports(const QString &path) {
    constexpr qint64 Reports = 1000000;
    constexpr qint64 PerSecond = 100;
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    const qint64 first = now - Reports / PerSecond;
    {
        SpotStore store;
        qint64 committed = 0;
        QObject::connect(&store, &SpotStore::committed, [&](qint64 total) { committed = total; });
        store.open(path, 30);
        QElapsedTimer clock;
        clock.start();
        for (qint64 i = 0; i < Reports; ++i) {
            if (i % 10000 == 0) { // within the queue: nothing dropped
                waitUntil([&] { return i - committed < SpotStore::QueueLimit / 2; });
            }
            store.addReport(
                test::historyReport(static_cast<int>(i),
                                    QDateTime::fromSecsSinceEpoch(first + i / PerSecond, Qt::UTC)));
        }
        waitUntil([&] { return committed >= Reports; });
        std::printf("%lld reports through the store: %.0f reports/s stored, %lld dropped\n",
                    static_cast<long long>(Reports),
                    static_cast<double>(Reports) / msSince(clock) * 1000.0,
                    static_cast<long long>(store.droppedCount()));
    } // closing the last connection folds the write-ahead log into the file
    const double perReport = static_cast<double>(QFileInfo(path).size()) / Reports;
    std::printf("file: %.1f bytes per report (page size 4096, the table is its key, no index); "
                "a day at 100 reports/s: %.0f MB\n",
                perReport, perReport * 86400 * PerSecond / 1e6);

    const QDateTime since = QDateTime::fromSecsSinceEpoch(now - 7200, Qt::UTC);
    for (const qint64 limit : {qint64{100000}, qint64{720000}}) {
        SpotStore store;
        qint64 restored = 0;
        bool done = false;
        QObject::connect(&store, &SpotStore::restoredReports,
                         [&](const QList<Reception> &chunk) { restored += chunk.size(); });
        QObject::connect(&store, &SpotStore::reportsRestoreFinished, [&] { done = true; });
        QElapsedTimer clock;
        clock.start();
        store.open(path, 0);
        store.setOwnLocator(QStringLiteral("JO62QM"));
        store.restoreReports(since, limit);
        waitUntil([&] { return done; });
        QCoreApplication::processEvents(); // the last chunk
        std::printf("restore of 2 hours at 100 reports/s, at most %lld, paths computed: "
                    "%lld reports in %.0f ms\n",
                    static_cast<long long>(limit), static_cast<long long>(restored),
                    msSince(clock));
    }

    HistoryDatabase db;
    db.open(path, HistoryDatabase::Access::Writer);
    QElapsedTimer clock;
    clock.start();
    const qint64 deleted =
        db.pruneReports((first + 3600) * 1000, static_cast<int>(SpotStore::PruneBatch));
    std::printf("one retention batch: %lld reports deleted in %.1f ms\n",
                static_cast<long long>(deleted), msSince(clock));
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

    benchReports(data.filePath(QStringLiteral("reports.sqlite")));
    return 0;
}
