// Floods a spot store with 10,000 spots a second until killed, and says on
// standard output how many are committed. The history tests kill it with
// SIGKILL and look at what the file kept.
#include "HistorySpots.h"
#include "SpotStore.h"

#include <QCoreApplication>
#include <QTimer>

#include <cstdio>

int main(int argc, char *argv[]) {
    QCoreApplication app(argc, argv);
    if (argc != 2) {
        std::fputs("usage: history_flood DATABASE\n", stderr);
        return 2;
    }
    zkr::SpotStore store;
    QObject::connect(&store, &zkr::SpotStore::committed, [](qint64 total) {
        std::printf("committed %lld\n", static_cast<long long>(total));
        std::fflush(stdout);
    });
    QObject::connect(&store, &zkr::SpotStore::unavailable, [](const QString &reason) {
        std::fprintf(stderr, "%s\n", qPrintable(reason));
        QCoreApplication::exit(1);
    });
    store.open(QString::fromLocal8Bit(argv[1]), 30);
    int next = 0;
    QTimer tick;
    QObject::connect(&tick, &QTimer::timeout, [&] {
        const QDateTime now = QDateTime::currentDateTimeUtc();
        for (int i = 0; i < 100; ++i, ++next) {
            store.add(zkr::test::historySpot(next, now), QStringLiteral("flood"));
        }
    });
    tick.start(10);
    return QCoreApplication::exec();
}
