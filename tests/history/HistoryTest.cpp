#include "HistoryCsv.h"
#include "HistoryDatabase.h"
#include "HistorySettings.h"
#include "HistorySpots.h"
#include "IniFile.h"
#include "QtPrinters.h"
#include "SpotHistory.h"
#include "SpotStore.h"
#include "WaitFor.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSignalSpy>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace zkr;
using zkr::test::historySpot;
using zkr::test::waitFor;

namespace {

const QDateTime Noon(QDate(2024, 6, 1), QTime(12, 0), Qt::UTC);

QByteArray readAll(const QString &path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

struct Stored {
    EvaluatedSpot spot;
    QString source;
};

std::vector<Stored> readAll(HistoryDatabase &db, qint64 from = 0) {
    std::vector<Stored> all;
    EXPECT_TRUE(db.read(from, std::numeric_limits<qint64>::max(),
                        [&](const EvaluatedSpot &spot, const QString &source) {
                            all.push_back({spot, source});
                            return true;
                        }));
    return all;
}

class HistoryTest : public ::testing::Test {
protected:
    QString path(const char *name = "history.sqlite") const { return folder.filePath(name); }
    QTemporaryDir folder;
};

} // namespace

TEST_F(HistoryTest, SpotsReadBackAsTheyWerePrintedOldestFirst) {
    HistoryDatabase db;
    ASSERT_TRUE(db.open(path(), HistoryDatabase::Access::Writer)) << db.errorString().toStdString();
    std::vector<EvaluatedSpot> written;
    for (int i = 13; i >= 0; --i) { // stored newest first, read back by arrival
        written.insert(written.begin(), historySpot(i, Noon.addSecs(i)));
    }
    // Runs that do not start with the line, an error, an Es path without runs.
    EvaluatedSpot odd = historySpot(20, Noon.addSecs(20));
    odd.runs = {{"Es? ", 0xFF00FF}, {odd.line, 0xB0B0B0}, {"\r\n", 0}};
    odd.error = "Overflow";
    EvaluatedSpot silent = historySpot(23, Noon.addSecs(21));
    silent.runs.clear();
    silent.panes = 0;
    written.push_back(odd);
    written.push_back(silent);
    ASSERT_TRUE(db.begin());
    for (auto it = written.rbegin(); it != written.rend(); ++it) {
        ASSERT_TRUE(db.insert(*it, "GB7DJK")) << db.errorString().toStdString();
    }
    ASSERT_TRUE(db.commit());
    const std::vector<Stored> read = readAll(db);
    ASSERT_EQ(read.size(), written.size());
    int withEs = 0;
    for (std::size_t i = 0; i < read.size(); ++i) {
        EXPECT_EQ(read[i].spot, written[i]) << "spot " << i << " " << written[i].line.toStdString();
        EXPECT_EQ(read[i].source, "GB7DJK");
        withEs += written[i].es.has_value() ? 1 : 0;
    }
    EXPECT_GE(withEs, 4); // the mix really holds Es results
    EXPECT_EQ(db.integrityCheck(), "ok");
}

TEST_F(HistoryTest, RepeatOfLineSourceAndSpotMinuteIsStoredOnce) {
    const EvaluatedSpot first = historySpot(0, Noon);
    auto again = [&first](qint64 secondsLater, const char *time = "1000") {
        EvaluatedSpot spot = first;
        spot.received = Noon.addSecs(secondsLater);
        spot.line.replace("1000Z", QString(time) + "Z");
        spot.time = time;
        return spot;
    };
    // A web page shown again a minute later, a file replayed the same day;
    // another source, another spot minute, replayed the next day.
    const std::tuple<EvaluatedSpot, const char *, qint64> cases[] = {{again(60), "web", 1},
                                                                     {again(3000), "web", 1},
                                                                     {again(60), "file", 2},
                                                                     {again(0, "1001"), "web", 2},
                                                                     {again(24 * 3600), "web", 2}};
    int row = 0;
    for (const auto &[spot, source, rows] : cases) {
        QFile::remove(path());
        HistoryDatabase db;
        ASSERT_TRUE(db.open(path(), HistoryDatabase::Access::Writer));
        EXPECT_TRUE(db.insert(first, "web"));
        EXPECT_TRUE(db.insert(spot, source));
        EXPECT_EQ(db.count(), rows) << row++;
    }
}

TEST_F(HistoryTest, FileThatCannotServeIsRefusedAndLeftAsItWas) {
    QDir(folder.path()).mkdir("folder.sqlite");
    QFile(path("plain.txt")).open(QIODevice::WriteOnly);
    QFile garbage(path("garbage.sqlite"));
    garbage.open(QIODevice::WriteOnly);
    garbage.write(QByteArray("SQLite format 3").append(4081, '\x5A'));
    garbage.close();
    {
        QSqlDatabase other = QSqlDatabase::addDatabase("QSQLITE", "other"); // another program's
        other.setDatabaseName(path("other.sqlite"));
        ASSERT_TRUE(other.open());
        QSqlQuery(other).exec("CREATE TABLE log (x)");
        other.close();
    }
    QSqlDatabase::removeDatabase("other");
    HistoryDatabase holder;
    ASSERT_TRUE(holder.open(path("held.sqlite"), HistoryDatabase::Access::Writer));
    using enum HistoryDatabase::Access;
    using enum HistoryDatabase::Failure;
    // clang-format off
    const struct { const char *file; HistoryDatabase::Access access; HistoryDatabase::Failure failure;
    } cases[] = {
        {"folder.sqlite", Writer, CannotOpen}, {"plain.txt/history.sqlite", Writer, CannotOpen},
        {"missing.sqlite", Reader, CannotOpen}, {"held.sqlite", Writer, Locked},
        {"garbage.sqlite", Writer, Damaged}, {"garbage.sqlite", Reader, Damaged},
        {"other.sqlite", Writer, Damaged}};
    // clang-format on
    for (const auto &c : cases) {
        const QByteArray before = readAll(path(c.file));
        HistoryDatabase db;
        EXPECT_FALSE(db.open(path(c.file), c.access)) << c.file;
        EXPECT_EQ(db.failure(), c.failure) << c.file << ": " << db.errorString().toStdString();
        EXPECT_FALSE(db.errorString().isEmpty()) << c.file;
        EXPECT_EQ(readAll(path(c.file)), before) << c.file;
        EXPECT_FALSE(QFile::exists(path("missing.sqlite")));
    }
    // The reader beside a running program sees what it committed.
    EXPECT_TRUE(holder.insert(historySpot(1, Noon), "web"));
    HistoryDatabase reader;
    ASSERT_TRUE(reader.open(path("held.sqlite"), HistoryDatabase::Access::Reader));
    EXPECT_EQ(reader.count(), 1);
}

TEST_F(HistoryTest, OldSpotsGoInBatchesAndNewerStay) {
    HistoryDatabase db;
    ASSERT_TRUE(db.open(path(), HistoryDatabase::Access::Writer));
    db.begin();
    for (int i = 0; i < 50; ++i) {
        db.insert(historySpot(i, Noon.addSecs(60 * i)), "web");
    }
    db.commit();
    const qint64 cutoff = Noon.addSecs(60 * 30).toMSecsSinceEpoch(); // spots 0..29 are older
    EXPECT_EQ(db.prune(cutoff, 20), 20);
    EXPECT_EQ(db.prune(cutoff, 20), 10);
    EXPECT_EQ(db.prune(cutoff, 20), 0);
    const std::vector<Stored> left = readAll(db);
    ASSERT_EQ(left.size(), 20U);
    EXPECT_EQ(left.front().spot, historySpot(30, Noon.addSecs(60 * 30)));
    EXPECT_EQ(db.startOfNewest(5), Noon.addSecs(60 * 45).toMSecsSinceEpoch());
}

TEST_F(HistoryTest, StoreCommitsAndRestoresOldestFirst) {
    SpotStore store;
    QSignalSpy committed(&store, &SpotStore::committed);
    QSignalSpy finished(&store, &SpotStore::restoreFinished);
    QList<EvaluatedSpot> restored;
    QObject::connect(&store, &SpotStore::restored,
                     [&](const QList<EvaluatedSpot> &chunk) { restored += chunk; });
    store.open(path(), 0);
    const QDateTime start = QDateTime::currentDateTimeUtc().addSecs(-3000);
    std::vector<EvaluatedSpot> written;
    for (int i = 0; i < 2500; ++i) {
        written.push_back(historySpot(i, start.addMSecs(i)));
        ASSERT_TRUE(store.add(written.back(), "file"));
    }
    store.flush();
    ASSERT_TRUE(waitFor([&] { return !committed.isEmpty(); }));
    EXPECT_EQ(committed.last().at(0).toLongLong(), 2500);

    // Everything since start, and the newest 1,000 of it.
    for (const qint64 limit : {qint64{10000}, qint64{1000}}) {
        restored.clear();
        finished.clear();
        store.restore(start, limit);
        ASSERT_TRUE(waitFor([&] { return !finished.isEmpty(); }));
        EXPECT_EQ(finished.last().at(0).toLongLong(), limit == 1000 ? 1000 : 2500);
        ASSERT_EQ(restored.size(), std::min<qint64>(limit, 2500));
        const qsizetype skipped = 2500 - restored.size();
        for (qsizetype i = 0; i < restored.size(); ++i) {
            ASSERT_EQ(restored[i], written[static_cast<std::size_t>(skipped + i)]) << i;
        }
    }
}

// Comment without the time digits, locator as found, no FOT below the horizon.
TEST(HistoryCsvTest, CellsAreWhatASpreadsheetShouldShow) {
    const std::tuple<const char *, bool, const char *> cases[] = {
        {"DX de SP9HWY:    50150.0  OH1XYZ       JO62QM<ES>KP20                 1712Z", false,
         "SP9HWY|JO62QM<ES>KP20|KP20|50.15|ES"},
        {"DX de G4ABC:     14074.0  EA7KW        tnx J\u00fcrgen, 73                 1710Z", false,
         "G4ABC|tnx J\u00fcrgen, 73|||"},
        {"DX de W1ABC:     50110.0  K2XYZ        FN31 ES FN42                   1712Z", false,
         "W1ABC|FN31 ES FN42|FN42||ES"},
        {"SP9HWY         50150.0 OH1XYZ       pse QSY 50.171                     1712Z", true,
         "SP9HWY|pse QSY 50.171|||"}};
    for (const auto &[text, web, cells] : cases) {
        const SpotEvaluator evaluator(
            {.ownLocator = "JO62QM", .columns = web ? WebColumns : ClusterColumns});
        const QString line = QString::fromUtf8(text);
        const EvaluatedSpot spot =
            web ? evaluator.evaluateWebLine(line) : evaluator.evaluateClusterLine(line);
        bool wellFormed = false;
        const auto rows = test::parseCsv(historyCsvHeader() + historyCsvRow(spot, ""), &wellFormed);
        QStringList got;
        for (const char *name : {"spotter", "comment", "locator2", "fot_mhz", "mode"}) {
            got.append(rows.at(1).value(rows[0].indexOf(name)));
        }
        EXPECT_EQ(got.join('|'), QString::fromUtf8(cells));
    }
}

TEST_F(HistoryTest, RestoresTheLastHoursOnly) {
    QList<EvaluatedSpot> spots; // 3 hours, 125 and 90 minutes old
    HistoryDatabase db;
    ASSERT_TRUE(db.open(path(), HistoryDatabase::Access::Writer));
    for (const int minutes : {180, 125, 90}) {
        spots.append(historySpot(minutes, QDateTime::currentDateTimeUtc().addSecs(-60 * minutes)));
        db.insert(spots.last(), "web");
    }
    db.close();
    SpotHistory history;
    QList<EvaluatedSpot> restored;
    QObject::connect(&history, &SpotHistory::restored, [&](const auto &s) { restored += s; });
    history.start({30, 2, path()}, false);
    EXPECT_TRUE(waitFor([&] { return restored == spots.mid(2); }));
}

TEST(HistorySettingsTest, SectionOfTheSettingsFile) {
    QTemporaryDir folder;
    const QString ini = folder.filePath("zkr_muf.ini");
    const HistorySettings defaults = HistorySettings::read(ini, "/data");
    EXPECT_EQ(std::tuple(defaults.retentionDays, defaults.restoreHours, defaults.databasePath),
              std::tuple(30, 2, QString("/data/history.sqlite")));
    for (const auto &[key, value] :
         {std::pair{"RetentionDays", "7"}, {"RestoreHours", "-1"}, {"Database", "spots.db"}}) {
        Ini_Write("History", key, value, ini);
    }
    const HistorySettings set = HistorySettings::read(ini, "/data");
    EXPECT_EQ(std::tuple(set.retentionDays, set.restoreHours, set.databasePath),
              std::tuple(7, 2, folder.filePath("spots.db")));
}

// SIGKILL in the middle of a 10,000 spots/s flood: the file is whole, and
// every spot the store reported committed is there, in order, without gaps.
TEST_F(HistoryTest, KilledDuringFloodKeepsEveryCommittedSpot) {
    QProcess flood;
    flood.start(HISTORY_FLOOD, {path()});
    ASSERT_TRUE(flood.waitForStarted());
    qint64 reported = 0;
    QByteArray out;
    while (reported < 4000 && flood.state() == QProcess::Running) {
        flood.waitForReadyRead(1000);
        out += flood.readAllStandardOutput();
        const QList<QByteArray> lines = out.trimmed().split('\n');
        reported = lines.last().startsWith("committed ") ? lines.last().mid(10).toLongLong() : 0;
    }
    flood.kill();
    ASSERT_TRUE(flood.waitForFinished());
    ASSERT_GE(reported, 4000) << flood.readAllStandardError().constData();

    HistoryDatabase db; // takes over the lock the killed program left
    ASSERT_TRUE(db.open(path(), HistoryDatabase::Access::Writer)) << db.errorString().toStdString();
    EXPECT_EQ(db.integrityCheck(), "ok");
    const std::vector<Stored> stored = readAll(db);
    ASSERT_GE(static_cast<qint64>(stored.size()), reported);
    for (std::size_t i = 0; i < stored.size(); ++i) {
        ASSERT_EQ(stored[i].spot, historySpot(static_cast<int>(i), stored[i].spot.received)) << i;
    }
}
