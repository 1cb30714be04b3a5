#include "CallBook.h"
#include "CountryExcerpt.h"
#include "CountryFile.h"
#include "HistoryDatabase.h"
#include "QtPrinters.h"

#include <QBuffer>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace zkr;

namespace {

QDateTime at(int minute) {
    return QDateTime(QDate(2026, 6, 1), QTime(10, 0), Qt::UTC).addSecs(60 * minute);
}

TEST(CountryFile, FindsTheCountryByExactCallPortableRulesAndLongestPrefix) {
    CountryFile file;
    ASSERT_TRUE(file.parse(CountryExcerpt));
    const struct {
        const char *prefix; // nullptr: no country
        double latitude, longitude;
        QStringList calls;
    } cases[] = {
        {"EA", 40.32, -3.43, {"EA7ABC"}}, // the file's longitudes are positive to the West
        // Longer than EA, portable both ways, an exact entry.
        {"EA8", 28.32, -15.85, {"EA8ABC", "EA8/DL1ABC", "DL1ABC/EA8", "EA1AK/8"}},
        {"DL", 51.0, 10.0, {"DL1ABC/P", "DL1ABC/P/QRP"}},
        {"KH6", 21.12, -157.48, {"W1ABC/KH6", "KH6/W1ABC", "K1ABC"}}, // K1ABC: exact, not K
        {"K", 37.6, -91.87, {"K1ABD"}},
        {"K", 36.0, -120.0, {"W6XYZ"}}, // the entry's own <lat/lon>
        {"UA9", 55.88, 84.08, {"UA9ABC"}},
        {"UA", 53.65, 41.37, {"UA9ABC/1"}}, // call area 1 is European Russia
        {"IT9", 37.5, 14.0, {"IT9ABC"}},
        {"FT/j", -17.05, 42.72, {"FT4JA", "FR5IZ/E"}},
        {nullptr, 0, 0, {"DL1ABC/MM", "EA8ABC/AM", "QQ1ABC"}},
    };
    for (const auto &c : cases) {
        for (const QString &call : c.calls) {
            SCOPED_TRACE(call.toStdString());
            const auto found = file.find(call);
            ASSERT_EQ(found.has_value(), c.prefix != nullptr);
            if (found) {
                EXPECT_EQ(found->prefix, c.prefix);
                EXPECT_NEAR(found->position.latitude, c.latitude, 1e-9);
                EXPECT_NEAR(found->position.longitude, c.longitude, 1e-9);
            }
        }
    }
}

TEST(CountryFile, LoadsTheInstalledFileAndReportsAMissingOne) {
    CountryFile file;
    EXPECT_FALSE(file.load("/nonexistent/cty.dat"));
    EXPECT_FALSE(file.errorString().isEmpty());
    EXPECT_FALSE(file.find(QString("EA8ABC")));
    const QString installed = "/usr/share/hamradio-files/cty.dat";
    if (!QFile::exists(installed)) {
        GTEST_SKIP() << "no installed country file";
    }
    ASSERT_TRUE(file.load(installed)) << file.errorString().toStdString();
    EXPECT_GT(file.countryCount(), 300);
    EXPECT_EQ(file.find(QString("EA8/DL1ABC"))->country, "Canary Islands");
    EXPECT_EQ(file.find(QString("DL1ABC"))->prefix, "DL");
}

TEST(CallBook, KeepsTheLatestLocatorOfEachCallAsWritten) {
    CallBook book;
    // Call, locator, minute learned, from where, whether the book changes.
    const std::tuple<const char *, const char *, int, LearnedFrom, bool> steps[] = {
        {"DL1ABC", "JO62QM", 10, LearnedFrom::Wsjtx, true},
        {"DL1ABC/P", "JO50AA", 20, LearnedFrom::Comment, true}, // not the home call
        {"EA8/DL1ABC", "IL18", 20, LearnedFrom::PskReporter, true},
        {"DL1ABC/MM", "JO62", 30, LearnedFrom::Wsjtx, false}, // a ship is nowhere
        {"DL1ABC", "jo62", 30, LearnedFrom::Spotter, true},   // the subsquare known stays
        {"DL1ABC", "JO61AA", 5, LearnedFrom::Wsjtx, false},   // older than what is known
        {"SP9XYZ:", "ko00aa11", 10, LearnedFrom::Spotter, true},
        {"G4ABC", "IO91", 1, LearnedFrom::Own, true},
        {"G4ABC", "IO92", 50, LearnedFrom::PskReporter, false}, // the own entry stays
        {"CQ", "JO62", 50, LearnedFrom::Comment, false},
        {"F5ABC", "JN99ZZ", 50, LearnedFrom::Comment, false}, // no locator (ZZ)
    };
    for (const auto &[call, locator, minute, from, changes] : steps) {
        EXPECT_EQ(book.learn(QString(call), QString(locator), at(minute), from), changes)
            << call << " " << locator;
    }
    // Call, locator ("": not in the book), minute learned.
    const std::tuple<const char *, const char *, int> expected[] = {
        {"DL1ABC", "JO62QM", 30}, {"DL1ABC/P", "JO50AA", 20}, {"EA8/DL1ABC", "IL18", 20},
        {"SP9XYZ", "KO00AA", 10}, {"G4ABC", "IO91", 1},       {"DL1ABC/MM", "", 0},
        {"DL1ABC/QRP", "", 0},    {"EA8/SP9XYZ", "", 0},
    };
    for (const auto &[call, locator, minute] : expected) {
        const auto entry = book.find(QString(call));
        EXPECT_EQ(entry ? entry->locator : QString(), locator) << call;
        EXPECT_EQ(entry ? entry->learned : at(0), at(minute)) << call;
    }
    EXPECT_EQ(book.takeChanges().size(), 5);
    EXPECT_TRUE(book.takeChanges().isEmpty());
}

TEST(CallBook, ForgetsTheOldestBeyondItsBoundButNeverTheOwnStation) {
    CallBook book(100);
    book.learn(QString("G4ABC"), QString("IO91"), at(0), LearnedFrom::Own);
    for (int i = 1; i <= 300; ++i) {
        book.learn(QString("DL%1AB").arg(i), QString("JO62"), at(i), LearnedFrom::Wsjtx);
    }
    EXPECT_LE(book.size(), 100);
    EXPECT_GE(book.size(), 80);
    EXPECT_TRUE(book.find(QString("G4ABC")));
    EXPECT_TRUE(book.find(QString("DL300AB")));
    EXPECT_TRUE(book.find(QString("DL230AB")));
    EXPECT_FALSE(book.find(QString("DL200AB")));
    // What was forgotten is not handed to the history as a change.
    EXPECT_EQ(book.takeChanges().size(), book.size());
}

TEST(CallBook, SurvivesTheHistoryFileAndExportsAsCsv) {
    QTemporaryDir dir;
    const QString path = dir.filePath("history.sqlite");
    const QList<CallBookEntry> stored{
        {"DL1ABC", "JO62QM", at(3), LearnedFrom::Wsjtx},
        {"EA8/DL1ABC", "IL18", at(2), LearnedFrom::Comment},
        {"G4ABC", "IO91", at(1), LearnedFrom::Own},
    };
    HistoryDatabase db; // reopening the file: HistoryTest's restore at start
    ASSERT_TRUE(db.open(path, HistoryDatabase::Access::Writer)) << db.errorString().toStdString();
    ASSERT_TRUE(db.writeCallBook(stored));
    CallBook book;
    ASSERT_TRUE(db.readCallBook([&book](const CallBookEntry &entry) {
        book.restore(entry);
        return true;
    }));
    EXPECT_TRUE(book.takeChanges().isEmpty()); // read back, nothing new to store
    QBuffer csv;
    csv.open(QIODevice::WriteOnly);
    Write_CallBookCsv(csv, book);
    EXPECT_EQ(csv.data(), "call,locator,learned_utc,source\n"
                          "DL1ABC,JO62QM,2026-06-01T10:03:00Z,wsjtx\n"
                          "EA8/DL1ABC,IL18,2026-06-01T10:02:00Z,comment\n"
                          "G4ABC,IO91,2026-06-01T10:01:00Z,own\n");

    EXPECT_EQ(db.pruneCallBook(1), 2);
    QStringList kept;
    db.readCallBook([&kept](const CallBookEntry &entry) {
        kept << entry.call;
        return true;
    });
    EXPECT_EQ(kept, QStringList{"DL1ABC"});
}

} // namespace
