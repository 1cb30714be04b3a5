#include "HistoryCsv.h"
#include "HistoryDatabase.h"
#include "HistorySpots.h"
#include "QtPrinters.h"
#include "SpotHistory.h"
#include "SpotStore.h"
#include "WaitFor.h"

#include <QBuffer>
#include <QSignalSpy>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace zkr;
using zkr::test::historyReport;
using zkr::test::historySpot;

namespace zkr {
void PrintTo(const Reception &r, std::ostream *out) {
    *out << qPrintable(historyCsvRow(r)) << " received " << r.received.toMSecsSinceEpoch();
}
} // namespace zkr

namespace {

const QDateTime Noon(QDate(2024, 6, 1), QTime(12, 0), Qt::UTC);

std::vector<Reception> reportsOf(HistoryDatabase &db) {
    std::vector<Reception> all;
    EXPECT_TRUE(db.read(0, std::numeric_limits<qint64>::max(), {}, [&](const Reception &report) {
        all.push_back(report);
        return true;
    }));
    return all;
}

class HistoryReportsTest : public ::testing::Test {
protected:
    QString path() const { return folder.filePath("history.sqlite"); }
    QTemporaryDir folder;
};

} // namespace

TEST_F(HistoryReportsTest, ReportReadsBackAsItCameAndARepeatIsStoredOnce) {
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
}

TEST_F(HistoryReportsTest, StartRestoresTheBookAndTheReportsOfTheLastHours) {
    const QDateTime now =
        QDateTime::fromSecsSinceEpoch(QDateTime::currentSecsSinceEpoch(), Qt::UTC);
    std::vector<Reception> recent;
    const QList<CallBookEntry> book{{"DL1ABC", "JO62QM", Noon, LearnedFrom::Wsjtx},
                                    {"EA7XY", "IM76", Noon.addSecs(5), LearnedFrom::Spotter}};
    {
        SpotHistory history;
        history.start({30, 0, path()}, false);
        // Ages in minutes: outside two hours, just inside, two in one second.
        for (const auto &[minutes, i] : {std::pair{180, 0}, {121, 1}, {119, 6}, {10, 4}, {10, 5}}) {
            Reception report = historyReport(i, now.addSecs(-60 * minutes));
            ASSERT_TRUE(history.recordReport(report));
            if (minutes < 120) {
                recent.push_back(report);
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
    history.start({30, 2, path()}, false, "JO62QM");
    EXPECT_TRUE(test::waitFor([&] { return restored.size() >= 3; }));
    EXPECT_EQ(std::vector(restored.begin(), restored.end()), recent);
    std::sort(stored.begin(), stored.end(), [](auto &a, auto &b) { return a.call < b.call; });
    EXPECT_EQ(stored, book);

    // The newest when more than the limit came.
    restored.clear();
    QSignalSpy finished(history.store(), &SpotStore::reportsRestoreFinished);
    history.store()->restoreReports(now.addDays(-1), 1);
    ASSERT_TRUE(test::waitFor([&] { return !finished.isEmpty(); }));
    EXPECT_EQ(std::vector(restored.begin(), restored.end()), std::vector{recent.back()});
}

// Spots and reports of the range in one file, by time, each with its source.
TEST_F(HistoryReportsTest, CsvHasSpotsAndReportsInTimeOrder) {
    EvaluatedSpot located = historySpot(3, Noon.addSecs(2)); // a comment without locators
    located.approximate = ApproximatePath{{"JO90AB", 21.5, 5.2, 27.4, 70, 8, "KO22", 1600, 900},
                                          "JO62QM",
                                          "KP20",
                                          Located::CallBook,
                                          Located::Country,
                                          80};
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
TEST_F(HistoryReportsTest, FileOfTheFirstVersionKeepsItsSpots) {
    std::vector<EvaluatedSpot> spots{historySpot(0, Noon), historySpot(1, Noon.addSecs(1))};
    {
        HistoryDatabase db;
        ASSERT_TRUE(db.open(path(), HistoryDatabase::Access::Writer));
        for (const EvaluatedSpot &spot : spots) {
            db.insert(spot, "web");
        }
    }
    {
        QSqlDatabase old = QSqlDatabase::addDatabase("QSQLITE", "old");
        old.setDatabaseName(path());
        ASSERT_TRUE(old.open());
        for (const char *sql : {"DROP TABLE report", "ALTER TABLE spot DROP COLUMN approximate",
                                "PRAGMA user_version=1"}) {
            ASSERT_TRUE(QSqlQuery(old).exec(sql)) << sql;
        }
        old.close();
    }
    QSqlDatabase::removeDatabase("old");
    spots.push_back(historySpot(2, Noon.addSecs(2)));
    spots.back().approximate =
        ApproximatePath{{}, "JO62", "KP20", Located::Comment, Located::CallBook, 100};
    for (const auto access : {HistoryDatabase::Access::Reader, HistoryDatabase::Access::Writer}) {
        HistoryDatabase db;
        ASSERT_TRUE(db.open(path(), access)) << db.errorString().toStdString();
        const bool writer = access == HistoryDatabase::Access::Writer;
        EXPECT_TRUE(!writer || (db.insert(spots.back(), "web") &&
                                db.insertReport(historyReport(0, Noon.addSecs(3)))));
        std::vector<EvaluatedSpot> read;
        qint64 reports = 0;
        EXPECT_TRUE(db.read(
            0, std::numeric_limits<qint64>::max(),
            [&](const EvaluatedSpot &spot, const QString &) {
                read.push_back(spot);
                return true;
            },
            [&](const Reception &) { return ++reports > 0; }));
        EXPECT_EQ(read, std::vector(spots.begin(), spots.end() - (writer ? 0 : 1)));
        EXPECT_EQ(reports, writer ? 1 : 0);
    }
}
