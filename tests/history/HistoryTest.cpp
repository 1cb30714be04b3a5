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
using zkr::test::historyReport;
using zkr::test::historySpot;
using zkr::test::waitFor;

namespace zkr {
void PrintTo(const Reception &r, std::ostream *out) {
    *out << qPrintable(historyCsvRow(r)) << " received " << r.received.toMSecsSinceEpoch();
}
} // namespace zkr

namespace {

const QDateTime Noon(QDate(2024, 6, 1), QTime(12, 0), Qt::UTC);

QByteArray readAll(const QString &path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

std::vector<EvaluatedSpot> readAll(HistoryDatabase &db) {
    std::vector<EvaluatedSpot> all;
    EXPECT_TRUE(db.read(0, std::numeric_limits<qint64>::max(),
                        [&](const EvaluatedSpot &spot, const QString &) {
                            all.push_back(spot);
                            return true;
                        }));
    return all;
}

std::vector<Reception> reportsOf(HistoryDatabase &db) {
    std::vector<Reception> all;
    EXPECT_TRUE(db.read(0, std::numeric_limits<qint64>::max(), {}, [&](const Reception &report) {
        all.push_back(report);
        return true;
    }));
    return all;
}

// Runs `statements` on an SQLite file as another program would.
bool execute(const QString &file, std::initializer_list<const char *> statements) {
    bool done = false;
    {
        QSqlDatabase other = QSqlDatabase::addDatabase("QSQLITE", "other");
        other.setDatabaseName(file);
        done = other.open();
        for (const char *sql : statements) {
            done = done && QSqlQuery(other).exec(sql);
        }
        other.close();
    }
    QSqlDatabase::removeDatabase("other");
    return done;
}

class HistoryTest : public ::testing::Test {
protected:
    QString path(const char *name = "history.sqlite") const { return folder.filePath(name); }
    QTemporaryDir folder;
};

} // namespace

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
    ASSERT_TRUE(execute(path("other.sqlite"), {"CREATE TABLE log (x)"})); // another program's
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

// Through the store's thread and back by arrival, not by the order stored:
// everything since `start`, then the newest 1,000. The two odd spots, stored
// first but the last to arrive, hold runs that do not start with the line
// and an error, and an Es path without runs in no pane.
TEST_F(HistoryTest, StoreCommitsAndRestoresByArrival) {
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
    }
    EvaluatedSpot odd = historySpot(2505, start.addMSecs(2500));
    odd.runs = {{"Es? ", 0xFF00FF}, {odd.line, 0xB0B0B0}, {"\r\n", 0}};
    odd.error = "Overflow";
    EvaluatedSpot silent = historySpot(2508, start.addMSecs(2501));
    silent.runs.clear();
    silent.panes = 0;
    ASSERT_TRUE(silent.es.has_value());
    written.push_back(odd);
    written.push_back(silent);
    for (std::size_t i = 0; i < written.size(); ++i) { // the odd two first
        ASSERT_TRUE(store.add(written[(i + 2500) % 2502], "file"));
    }
    store.flush();
    ASSERT_TRUE(waitFor([&] { return !committed.isEmpty(); }));
    EXPECT_EQ(committed.last().at(0).toLongLong(), 2502);

    for (const qint64 limit : {qint64{10000}, qint64{1000}}) {
        restored.clear();
        finished.clear();
        store.restore(start, limit);
        ASSERT_TRUE(waitFor([&] { return !finished.isEmpty(); }));
        EXPECT_EQ(finished.last().at(0).toLongLong(), std::min<qint64>(limit, 2502));
        ASSERT_EQ(restored.size(), std::min<qint64>(limit, 2502));
        const qsizetype skipped = 2502 - restored.size();
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

TEST(HistorySettingsTest, SectionOfTheSettingsFile) {
    QTemporaryDir folder;
    const QString ini = folder.filePath("zkr_muf.ini");
    const auto read = [&ini] {
        const HistorySettings s = HistorySettings::read(ini, "/data");
        return std::tuple(s.retentionDays, s.restoreHours, s.databasePath);
    };
    EXPECT_EQ(read(), std::tuple(30, 2, QString("/data/history.sqlite")));
    Ini_Write("History", "RetentionDays", "7", ini);
    Ini_Write("History", "RestoreHours", "-1", ini);
    Ini_Write("History", "Database", "spots.db", ini);
    EXPECT_EQ(read(), std::tuple(7, 2, folder.filePath("spots.db"))); // -1 hours: the default
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
    const std::vector<EvaluatedSpot> stored = readAll(db);
    ASSERT_GE(static_cast<qint64>(stored.size()), reported);
    for (std::size_t i = 0; i < stored.size(); ++i) {
        ASSERT_EQ(stored[i], historySpot(static_cast<int>(i), stored[i].received)) << i;
    }
}

TEST_F(HistoryTest, ReportsReadBackARepeatIsStoredOnceAndOldRowsGoInBatches) {
    HistoryDatabase db;
    ASSERT_TRUE(db.open(path(), HistoryDatabase::Access::Writer));
    std::vector<Reception> written;
    for (int i = 0; i < 12; ++i) {
        written.push_back(historyReport(i, Noon.addSecs(i)));
        ASSERT_TRUE(db.insertReport(written.back())) << db.errorString().toStdString();
    }
    EXPECT_EQ(reportsOf(db), written);

    // The same report from a log replayed again, and what makes another one.
    const Reception &first = written.front();
    const std::pair<std::function<void(Reception &)>, qint64> cases[] = {
        {[](Reception &) {}, 12},
        {[](Reception &r) { r.received = r.received.addDays(1); }, 12},
        {[](Reception &r) { r.source = ReportSource::PskReporter; }, 13},
        {[](Reception &r) { r.time = r.time.addSecs(60); }, 14},
        {[](Reception &r) { r.frequencyMhz += 1e-6; }, 15},
        {[](Reception &r) { r.rx.call = "DL2XY"; }, 16},
        {[](Reception &r) { r.tx.call = "EA9AB"; }, 17}};
    for (const auto &[change, count] : cases) {
        Reception again = first;
        change(again);
        EXPECT_TRUE(db.insertReport(again));
        EXPECT_EQ(db.countReports(), count);
    }

    // Retention: reports heard before the cutoff go in batches.
    const qint64 cutoff = Noon.addSecs(10).toMSecsSinceEpoch() - 1;
    for (const qint64 deleted : {6, 6, 2, 0}) { // 10 and 4 of the repeats
        EXPECT_EQ(db.pruneReports(cutoff, 6), deleted);
    }
    EXPECT_EQ(reportsOf(db).at(0), written.at(10));

    // Spots too, the newer stay.
    db.begin();
    for (int i = 0; i < 50; ++i) {
        db.insert(historySpot(i, Noon.addSecs(60 * i)), "web");
    }
    db.commit();
    const qint64 halfHour = Noon.addSecs(60 * 30).toMSecsSinceEpoch(); // spots 0..29 are older
    EXPECT_EQ(db.prune(halfHour, 20), 20);
    EXPECT_EQ(db.prune(halfHour, 20), 10);
    EXPECT_EQ(db.prune(halfHour, 20), 0);
    const std::vector<EvaluatedSpot> left = readAll(db);
    ASSERT_EQ(left.size(), 20U);
    EXPECT_EQ(left.front(), historySpot(30, Noon.addSecs(60 * 30)));
    EXPECT_EQ(db.startOfNewest(5), Noon.addSecs(60 * 45).toMSecsSinceEpoch());
}

TEST_F(HistoryTest, StartRestoresTheBookSpotsAndReportsOfTheLastHours) {
    const QDateTime now =
        QDateTime::fromSecsSinceEpoch(QDateTime::currentSecsSinceEpoch(), Qt::UTC);
    std::vector<Reception> recent;
    QList<EvaluatedSpot> recentSpots, spots;
    const QList<CallBookEntry> book{{"DL1ABC", "JO62QM", Noon, LearnedFrom::Wsjtx},
                                    {"EA7XY", "IM76", Noon.addSecs(5), LearnedFrom::Spotter}};
    {
        SpotHistory history;
        history.start({30, 0, path()}, false);
        // Ages in minutes: outside two hours, just inside, two in one second.
        for (const auto &[minutes, i] : {std::pair{180, 0}, {121, 1}, {119, 6}, {10, 4}, {10, 5}}) {
            Reception report = historyReport(i, now.addSecs(-60 * minutes));
            ASSERT_TRUE(history.recordReport(report));
            EXPECT_FALSE(history.record(historySpot(i, report.time), "web"));
            if (minutes < 120) {
                recent.push_back(report);
                recentSpots.append(historySpot(i, report.time));
            }
        }
        history.recordCallBook(book);
    }
    for (Reception &report : recent) {
        ASSERT_TRUE(Evaluate_Reception(report, "JO62QM"));
    }
    SpotHistory history;
    QList<Reception> restored;
    QList<CallBookEntry> stored;
    QObject::connect(&history, &SpotHistory::restoredReports,
                     [&](const auto &r) { restored += r; });
    QObject::connect(&history, &SpotHistory::callBookRestored, [&](const auto &e) { stored += e; });
    QObject::connect(&history, &SpotHistory::restored, [&](const auto &s) { spots += s; });
    history.start({30, 2, path()}, false, "JO62QM");
    EXPECT_TRUE(waitFor([&] { return restored.size() >= 3; }));
    EXPECT_EQ(std::vector(restored.begin(), restored.end()), recent);
    EXPECT_EQ(spots, recentSpots);
    std::sort(stored.begin(), stored.end(), [](auto &a, auto &b) { return a.call < b.call; });
    EXPECT_EQ(stored, book);

    // The newest when more than the limit came.
    restored.clear();
    QSignalSpy finished(history.store(), &SpotStore::reportsRestoreFinished);
    history.store()->restoreReports(now.addDays(-1), 1);
    ASSERT_TRUE(waitFor([&] { return !finished.isEmpty(); }));
    EXPECT_EQ(std::vector(restored.begin(), restored.end()), std::vector{recent.back()});
}

// Spots and reports of the range in one file, by time, each with its source.
TEST_F(HistoryTest, CsvHasSpotsAndReportsInTimeOrder) {
    EvaluatedSpot located = historySpot(3, Noon.addSecs(2)); // a comment without locators
    const EsPath cloud{"JO90AB", 21.5, 5.2, 27.4, 70, 8, "KO22", 1600, 900};
    located.approximate = {cloud, "JO62QM", "KP20", Located::CallBook, Located::Country, 80};
    std::vector<Reception> reports{historyReport(0, Noon.addSecs(1)),
                                   historyReport(2, Noon.addSecs(3)),
                                   historyReport(1, Noon.addSecs(4000))};
    HistoryDatabase db;
    ASSERT_TRUE(db.open(path(), HistoryDatabase::Access::Writer));
    for (const Reception &report : reports) {
        db.insertReport(report);
    }
    const EvaluatedSpot spot = historySpot(0, Noon);
    db.insert(spot, "GB7DJK");
    db.insert(located, "web");
    Evaluate_Reception(reports[0], "JO62QM");
    QBuffer out;
    out.open(QIODevice::WriteOnly);
    QString error;
    ASSERT_EQ(exportHistoryCsv(db, Noon, Noon.addSecs(3600), out, error, "JO62QM"), 4);
    bool wellFormed = false;
    const auto rows = test::parseCsv(QString::fromUtf8(out.data().mid(3)), &wellFormed);
    const char *const columns[] = {"source",        "spotter", "dx",    "locator1",    "locator2",
                                   "frequency_mhz", "snr_db",  "cloud", "approximate", "located"};
    const QString expected[] = {"GB7DJK|SP9HWY|OH0XY|JO90JR|KP20|50.1100||" + spot.es->cloud + "||",
                                "wsjtx|DL0XY|EA0AB|IN80|JO62QM|50.313000|-20|" +
                                    reports[0].es->cloud + "||",
                                "web|SP9HWY|OH3XY|||50.3130||JO90AB|yes|callbook/country",
                                "pskreporter|DL2XY|EA2AB||KP20LE|50.313002|-18|||"};
    EXPECT_TRUE(wellFormed);
    ASSERT_EQ(rows.size(), std::size(expected) + 1);
    for (std::size_t r = 0; r < std::size(expected); ++r) {
        QStringList got;
        for (const char *name : columns) {
            got.append(rows.at(r + 1).value(rows[0].indexOf(name)));
        }
        EXPECT_EQ(got.join('|'), expected[r]) << r;
    }
}

// A file of the first version (no report table, no approximate paths) is
// read as it is and upgraded in place by a writer, its spots kept.
TEST_F(HistoryTest, FileOfTheFirstVersionKeepsItsSpots) {
    std::vector<EvaluatedSpot> spots{historySpot(0, Noon), historySpot(1, Noon.addSecs(1))};
    {
        HistoryDatabase db;
        ASSERT_TRUE(db.open(path(), HistoryDatabase::Access::Writer));
        for (const EvaluatedSpot &spot : spots) {
            db.insert(spot, "web");
        }
    }
    ASSERT_TRUE(execute(path(), {"DROP TABLE report", "ALTER TABLE spot DROP COLUMN approximate",
                                 "PRAGMA user_version=1"}));
    spots.push_back(historySpot(2, Noon.addSecs(2)));
    spots.back().approximate =
        ApproximatePath{{}, "JO62", "KP20", Located::Comment, Located::CallBook, 100};
    for (const auto access : {HistoryDatabase::Access::Reader, HistoryDatabase::Access::Writer}) {
        HistoryDatabase db;
        ASSERT_TRUE(db.open(path(), access)) << db.errorString().toStdString();
        const bool writer = access == HistoryDatabase::Access::Writer;
        EXPECT_TRUE(!writer || (db.insert(spots.back(), "web") &&
                                db.insertReport(historyReport(0, Noon.addSecs(3)))));
        EXPECT_EQ(readAll(db), std::vector(spots.begin(), spots.end() - (writer ? 0 : 1)));
        EXPECT_EQ(reportsOf(db).size(), writer ? 1u : 0u);
    }
}
