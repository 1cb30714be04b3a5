// The call book: lookup of a call in a book of 200,000 calls, loading the
// country file, memory and history-file bytes per entry, and on a generated
// cluster day the share of 6 m, 4 m and 2 m spots that get a path from
// comment locators alone, and with the call book and the country file.
// Prints its figures, then runs the timed benchmarks.
//
// The day is synthetic but shaped like a summer Es day on a large node:
// stations in 45 countries weighted by their VHF activity (Europe first,
// also North America, Japan and the southern hemisphere), each at a random
// place of its country; 20,000 spots (6 m 70 %, 2 m 15 %, 4 m 10 %, 10 m
// 5 %), four in five between stations one Es hop apart; comments with two
// locators "mine<ES>his" (12 %), written the other way (3 %), one locator
// (20 %: the DX station's or the spotter's), the rest without; a third of
// the lines carry the spotter's square after the time, as DX Spider nodes
// send it; a few /P and /MM calls. A share of the stations (55 % in Europe,
// 40 % elsewhere) is heard on FT8 and learned from one report at a random
// time of the day, so spots before it do not profit.
#include "CallBookLocator.h"
#include "EsPathModel.h"
#include "HistoryDatabase.h"
#include "ProcessMemory.h"
#include "Reception.h"
#include "SpotEvaluator.h"
#include "SpotPipeline.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QSet>
#include <QTemporaryDir>

#include <cmath>
#include <cstdio>
#include <ctime>
#include <random>
#include <vector>

namespace {

using namespace zkr;

const QString InstalledCountryFile = QStringLiteral("/usr/share/hamradio-files/cty.dat");

struct Country {
    const char *prefixes; // call prefixes, blank-separated; digits as calls use them
    double latFrom, latTo, lonFrom, lonTo;
    double weight; // share of active VHF stations
    bool europe;
};

const Country Countries[] = {
    {"DL DK DJ DG DF DH DO DB DC DD", 47.5, 54.5, 6.5, 14.5, 16, true},
    {"G M 2E", 50.5, 54.5, -4.5, 1.5, 8, true},
    {"F", 43.5, 50.5, -1.0, 7.0, 7, true},
    {"I IK IZ IW", 38.5, 46.0, 8.0, 16.0, 8, true},
    {"EA EB EC", 37.0, 43.0, -8.0, 2.0, 7, true},
    {"EA8", 27.8, 29.3, -18.0, -13.5, 1, true},
    {"EA6", 38.7, 40.0, 1.2, 4.3, 0.5, true},
    {"CT", 37.0, 42.0, -8.8, -7.0, 2, true},
    {"CT3", 32.6, 33.1, -17.3, -16.3, 0.2, true},
    {"CU", 37.0, 39.7, -31.2, -25.0, 0.3, true},
    {"PA PD PE", 51.5, 53.3, 4.0, 6.8, 4, true},
    {"ON", 50.0, 51.3, 3.0, 5.8, 2, true},
    {"OK OL", 48.8, 50.8, 12.5, 18.5, 4, true},
    {"OM", 48.0, 49.5, 17.5, 22.0, 2, true},
    {"SP SQ SO", 50.0, 54.5, 15.0, 23.5, 6, true},
    {"HA HG", 46.0, 48.3, 16.5, 22.5, 3, true},
    {"OE", 46.6, 48.8, 10.0, 16.8, 3, true},
    {"HB9", 46.0, 47.7, 6.2, 10.0, 2, true},
    {"OZ", 54.8, 57.5, 8.2, 12.5, 3, true},
    {"SM SA", 55.5, 63.0, 12.0, 19.0, 4, true},
    {"LA LB", 58.0, 63.5, 5.5, 11.0, 3, true},
    {"OH", 60.0, 65.0, 21.5, 28.0, 4, true},
    {"ES", 57.6, 59.6, 22.0, 28.0, 1, true},
    {"YL", 55.8, 57.8, 21.0, 28.0, 1, true},
    {"LY", 54.0, 56.3, 21.0, 26.5, 1, true},
    {"UR UT US UX", 46.0, 51.5, 23.0, 38.0, 4, true},
    {"R RA RW RV UA RX RZ", 51.0, 58.0, 30.0, 45.0, 5, true},
    {"YO", 44.0, 48.0, 21.0, 29.0, 2, true},
    {"LZ", 41.5, 44.0, 22.5, 28.0, 2, true},
    {"SV SZ", 37.0, 41.0, 20.5, 26.0, 2, true},
    {"9A", 43.0, 46.0, 14.0, 19.0, 2, true},
    {"S5", 45.5, 46.8, 13.5, 16.3, 2, true},
    {"YU", 42.5, 46.0, 19.0, 22.5, 1, true},
    {"EI", 51.5, 55.0, -10.0, -6.0, 2, true},
    {"GM MM", 55.0, 58.5, -6.0, -2.0, 1, true},
    {"TF", 63.5, 66.0, -22.0, -14.0, 0.5, true},
    {"9H", 35.8, 36.1, 14.2, 14.6, 0.5, true},
    {"5B", 34.6, 35.5, 32.3, 34.5, 0.5, false},
    {"4X 4Z", 29.5, 33.2, 34.3, 35.8, 1, false},
    {"CN", 30.0, 35.5, -9.5, -2.0, 0.5, false},
    {"K W N", 30.0, 47.0, -120.0, -70.0, 6, false},
    {"JA JH JR", 31.0, 44.0, 130.0, 142.0, 4, false},
    {"VE VA", 43.0, 52.0, -123.0, -64.0, 1, false},
    {"VK", -38.0, -27.0, 138.0, 153.0, 1, false},
    {"PY PU", -30.0, -5.0, -55.0, -35.0, 1, false},
};

// A generator whose numbers are the same on every library: the engine is
// fixed by the standard, the reductions are ours.
struct Random {
    std::mt19937 engine{20260601};
    double uniform() { return engine() / 4294967296.0; }
    int below(int n) { return static_cast<int>(uniform() * n); }
    double between(double a, double b) { return a + (b - a) * uniform(); }
};

struct Station {
    QString call;
    QString locator;
    GeoPoint position;
    bool ft8 = false;
    int heardAtMinute = 0; // when its FT8 report teaches the book
};

std::vector<Station> makeStations(Random &random, int count) {
    double total = 0;
    for (const Country &country : Countries) {
        total += country.weight;
    }
    std::vector<Station> stations;
    while (static_cast<int>(stations.size()) < count) {
        double pick = random.uniform() * total;
        const Country *country = &Countries[0];
        for (const Country &c : Countries) {
            if ((pick -= c.weight) < 0) {
                country = &c;
                break;
            }
        }
        const QStringList prefixes = QString::fromLatin1(country->prefixes).split(u' ');
        QString call = prefixes.at(random.below(static_cast<int>(prefixes.size())));
        if (!call.back().isDigit()) {
            call += QChar(u'0' + random.below(10));
        }
        for (int n = 2 + random.below(2); n > 0; --n) {
            call += QChar(u'A' + random.below(26));
        }
        Station station;
        station.call = call;
        station.position = {random.between(country->latFrom, country->latTo),
                            random.between(country->lonFrom, country->lonTo)};
        station.locator = LatLon_To_Locator(station.position.latitude, station.position.longitude);
        station.ft8 = random.uniform() < (country->europe ? 0.55 : 0.40);
        station.heardAtMinute = random.below(24 * 60);
        stations.push_back(station);
    }
    return stations;
}

double distanceKm(GeoPoint a, GeoPoint b) {
    return Great_Circle_Angle(a.latitude, b.latitude, a.longitude, b.longitude) * EarthRadius;
}

struct DaySpot {
    int minute;
    QString line;
};

std::vector<DaySpot> makeDay(Random &random, const std::vector<Station> &stations, int count) {
    const char *const plain[] = {"tnx qso", "FT8 -12dB", "CW 559",  "",          "ES", "tnx",
                                 "599",     "FT8 +02dB", "pse QSL", "ES tnx 73", "cq"};
    std::vector<DaySpot> day;
    const int n = static_cast<int>(stations.size());
    for (int i = 0; i < count; ++i) {
        const Station &spotter = stations[static_cast<std::size_t>(random.below(n))];
        const Station *dx = &stations[static_cast<std::size_t>(random.below(n))];
        if (random.uniform() < 0.8) {
            for (int tries = 0; tries < 200; ++tries) {
                const double km = distanceKm(spotter.position, dx->position);
                if (km >= 800 && km <= 2200) {
                    break;
                }
                dx = &stations[static_cast<std::size_t>(random.below(n))];
            }
        }
        const double band = random.uniform();
        const double kiloHertz = band < 0.70   ? 50100 + random.below(300)
                                 : band < 0.85 ? 144170 + random.below(300)
                                 : band < 0.95 ? 70150 + random.below(100)
                                               : 28300 + random.below(500);
        QString dxCall = dx->call;
        const double suffix = random.uniform();
        if (suffix < 0.03) {
            dxCall += QStringLiteral("/P");
        } else if (suffix < 0.04) {
            dxCall += QStringLiteral("/MM");
        }
        const double kind = random.uniform();
        QString comment;
        if (kind < 0.12) {
            comment = spotter.locator + QStringLiteral("<ES>") + dx->locator.left(4);
        } else if (kind < 0.15) {
            comment = dx->locator.left(4) + QStringLiteral(" ES ") + spotter.locator;
        } else if (kind < 0.35) {
            const Station &who = random.uniform() < 0.6 ? *dx : spotter;
            comment = who.locator.left(4) + QStringLiteral(" tnx");
        } else {
            comment = QString::fromLatin1(plain[random.below(std::size(plain))]);
        }
        const int minute = 360 + random.below(16 * 60);
        QString line = QStringLiteral("DX de %1%2  %3 %4 %5Z")
                           .arg(spotter.call + QLatin1Char(':'), -7)
                           .arg(kiloHertz, 11, 'f', 1)
                           .arg(dxCall, -12)
                           .arg(comment.left(30), -30)
                           .arg(QStringLiteral("%1%2")
                                    .arg(minute / 60, 2, 10, QLatin1Char('0'))
                                    .arg(minute % 60, 2, 10, QLatin1Char('0')));
        if (random.uniform() < 0.33) {
            line += QLatin1Char(' ') + spotter.locator.left(4);
        }
        day.push_back({minute, line});
    }
    std::sort(day.begin(), day.end(),
              [](const DaySpot &a, const DaySpot &b) { return a.minute < b.minute; });
    return day;
}

struct Share {
    int vhf = 0;
    int exact = 0;
    int approximate = 0;
    int ends[3] = {}; // approximate paths' ends by how they were located
};

// Runs the day through a pipeline with `locator` (none: comments alone);
// with `ft8`, each FT8 station's report is learned when it is heard.
Share runDay(const std::vector<DaySpot> &day, const std::vector<Station> &stations,
             CallBookLocator *locator, bool ft8) {
    const QDate date(2026, 6, 1);
    SpotPipeline pipeline;
    pipeline.setSettings({.ownLocator = QStringLiteral("JO62QM")});
    QDateTime now;
    pipeline.setClock([&now] { return now; });
    pipeline.setLocator(locator);
    Share share;
    QObject::connect(&pipeline, &SpotPipeline::spotEvaluated, [&share](const EvaluatedSpot &spot) {
        const double f = spot.frequency;
        if ((f >= 50 && f <= 54) || (f >= 70 && f <= 71) || (f >= 144 && f <= 148)) {
            ++share.vhf;
            share.exact += spot.es ? 1 : 0;
            if (spot.approximate) {
                ++share.approximate;
                ++share.ends[static_cast<int>(spot.approximate->spotter)];
                ++share.ends[static_cast<int>(spot.approximate->dx)];
            }
        }
    });
    std::vector<const Station *> heard;
    for (const Station &station : stations) {
        if (ft8 && station.ft8) {
            heard.push_back(&station);
        }
    }
    std::sort(heard.begin(), heard.end(), [](const Station *a, const Station *b) {
        return a->heardAtMinute < b->heardAtMinute;
    });
    std::size_t nextHeard = 0;
    for (const DaySpot &spot : day) {
        now = QDateTime(date, QTime(0, 0), Qt::UTC).addSecs(60 * spot.minute + 30);
        for (; nextHeard < heard.size() && heard[nextHeard]->heardAtMinute <= spot.minute;
             ++nextHeard) {
            Reception report;
            report.source = ReportSource::PskReporter;
            report.time = now;
            report.tx = {heard[nextHeard]->call, heard[nextHeard]->locator};
            locator->learn(report);
        }
        pipeline.evaluateClusterLine(spot.line);
    }
    return share;
}

// `count` different calls.
std::vector<QString> bookCalls(int count) {
    Random random;
    std::vector<QString> calls;
    QSet<QString> seen;
    while (static_cast<int>(calls.size()) < count) {
        for (const Station &station : makeStations(random, count)) {
            if (static_cast<int>(calls.size()) < count && !seen.contains(station.call)) {
                seen.insert(station.call);
                calls.push_back(station.call);
            }
        }
    }
    return calls;
}

// CPU time of this thread, ms: unlike the clock on the wall, it leaves out
// the time other programs of a busy machine took.
double threadMs() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

// Learns every call; returns the longest single learn, ms of CPU.
double fillBook(CallBook &book, const std::vector<QString> &calls) {
    const QDateTime start(QDate(2026, 1, 1), QTime(0, 0), Qt::UTC);
    double longest = 0;
    for (std::size_t i = 0; i < calls.size(); ++i) {
        const double before = threadMs();
        book.learn(calls[i], QStringLiteral("JO62QM"),
                   start.addSecs(static_cast<qint64>(i + book.size())), LearnedFrom::PskReporter);
        longest = std::max(longest, threadMs() - before);
    }
    return longest;
}

void printFigures() {
    // The country file.
    CountryFile countries;
    QElapsedTimer timer;
    timer.start();
    const double cpu = threadMs();
    const bool loaded = countries.load(InstalledCountryFile);
    std::printf("country file: %s, %lld entities, first load %.1f ms (%.1f ms of CPU)\n",
                loaded ? "installed" : "missing", static_cast<long long>(countries.countryCount()),
                static_cast<double>(timer.nsecsElapsed()) / 1e6, threadMs() - cpu);

    // Memory per entry.
    const std::vector<QString> calls = bookCalls(500'000);
    for (const std::size_t n : {std::size_t{200'000}, std::size_t{500'000}}) {
        const std::vector<QString> some(calls.begin(), calls.begin() + static_cast<qsizetype>(n));
        const double before = test::heapMiB();
        auto book = std::make_unique<CallBook>(500'000);
        const double longest = fillBook(*book, some);
        // Calls heard again: the table finishes moving to its last size.
        fillBook(*book, std::vector<QString>(some.begin(), some.begin() + 20'000));
        const double learning = (test::heapMiB() - before) * 1024 * 1024;
        // Stored in the history file, as the program does now and then.
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("history.sqlite"));
        double diskBytes = 0;
        {
            HistoryDatabase db;
            db.open(path, HistoryDatabase::Access::Writer);
            const qint64 emptySize = QFileInfo(path).size();
            db.begin();
            db.writeCallBook(book->takeChanges());
            db.commit();
            db.close();
            diskBytes = static_cast<double>(QFileInfo(path).size() - emptySize);
        }
        const double stored = (test::heapMiB() - before) * 1024 * 1024;
        const auto size = static_cast<double>(book->size());
        std::printf("book of %lld calls: %.0f bytes per entry in memory (%.0f while the changes "
                    "wait to be stored), %.1f bytes per entry in the history file (%.1f MB)\n",
                    static_cast<long long>(book->size()), stored / size, learning / size,
                    diskBytes / size, diskBytes / 1e6);
        std::printf("  the longest single learn while it filled: %.1f ms of CPU\n", longest);
        if (book->size() == book->maxEntries()) {
            // One more call: the oldest tenth is forgotten now.
            QElapsedTimer forget;
            forget.start();
            const double forgetCpu = threadMs();
            book->learn(QStringLiteral("ZZ9ZZZ"), QStringLiteral("JO62"),
                        QDateTime(QDate(2027, 1, 1), QTime(0, 0), Qt::UTC),
                        LearnedFrom::PskReporter);
            std::printf("  full: one more call forgets %lld in %.1f ms (%.1f ms of CPU)\n",
                        static_cast<long long>(size) - book->size() + 1,
                        static_cast<double>(forget.nsecsElapsed()) / 1e6, threadMs() - forgetCpu);
        }
    }

    // The cluster day.
    Random random;
    const std::vector<Station> stations = makeStations(random, 6000);
    const std::vector<DaySpot> day = makeDay(random, stations, 20'000);
    const Share comments = runDay(day, stations, nullptr, false);
    CallBookLocator clusterOnly;
    clusterOnly.countries().load(InstalledCountryFile);
    const Share withCountries = runDay(day, stations, &clusterOnly, false);
    CallBookLocator withFt8;
    withFt8.countries().load(InstalledCountryFile);
    const Share all = runDay(day, stations, &withFt8, true);
    const auto percent = [](int part, int whole) { return 100.0 * part / std::max(whole, 1); };
    std::printf("cluster day: %d spots on 6 m, 4 m and 2 m\n", comments.vhf);
    std::printf("  with a path from comment locators alone: %.1f %%\n",
                percent(comments.exact, comments.vhf));
    std::printf("  + country file and what the cluster teaches: %.1f %% (%.1f %% approximate)\n",
                percent(withCountries.exact + withCountries.approximate, withCountries.vhf),
                percent(withCountries.approximate, withCountries.vhf));
    std::printf("  + FT8 reports: %.1f %% (%.1f %% approximate), book of %lld calls\n",
                percent(all.exact + all.approximate, all.vhf), percent(all.approximate, all.vhf),
                static_cast<long long>(withFt8.book().size()));
    std::printf("  ends of the approximate paths: %d from a comment, %d from the call book, %d "
                "from the country\n",
                all.ends[0], all.ends[1], all.ends[2]);
}

void BM_BookLookup(benchmark::State &state) {
    const std::vector<QString> calls = bookCalls(220'000);
    CallBook book;
    fillBook(book, std::vector<QString>(calls.begin(), calls.begin() + 200'000));
    // Nine in ten looked up are in the book.
    std::vector<QString> asked(calls.begin() + 180'000, calls.end());
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(book.find(asked[i]));
        i = (i + 1) % asked.size();
    }
    state.counters["book"] = static_cast<double>(book.size());
}
BENCHMARK(BM_BookLookup);

void BM_Where(benchmark::State &state) {
    const std::vector<QString> calls = bookCalls(400'000);
    CallBookLocator locator;
    locator.countries().load(InstalledCountryFile);
    fillBook(locator.book(), std::vector<QString>(calls.begin(), calls.begin() + 200'000));
    // Half in the book, half found through the country file.
    std::vector<QString> asked(calls.begin() + 100'000, calls.begin() + 300'000);
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(locator.where(asked[i]));
        i = (i + 1) % asked.size();
    }
}
BENCHMARK(BM_Where);

// The work a cluster spot adds: learning from it and locating its ends.
void BM_LocateSpot(benchmark::State &state) {
    Random random;
    const std::vector<Station> stations = makeStations(random, 6000);
    const std::vector<DaySpot> day = makeDay(random, stations, 4096);
    CallBookLocator locator;
    locator.countries().load(InstalledCountryFile);
    const AnalysisSettings settings{.ownLocator = QStringLiteral("JO62QM")};
    const SpotEvaluator evaluator(settings);
    std::vector<EvaluatedSpot> spots;
    for (const DaySpot &spot : day) {
        spots.push_back(evaluator.evaluateClusterLine(spot.line));
        spots.back().received = QDateTime(QDate(2026, 6, 1), QTime(12, 0), Qt::UTC);
    }
    std::size_t i = 0;
    for (auto _ : state) {
        EvaluatedSpot spot = spots[i];
        locator.locate(spot, day[i].line, settings);
        benchmark::DoNotOptimize(spot.approximate);
        i = (i + 1) % spots.size();
    }
}
BENCHMARK(BM_LocateSpot);

void BM_CountryFileLoad(benchmark::State &state) {
    for (auto _ : state) {
        CountryFile countries;
        benchmark::DoNotOptimize(countries.load(InstalledCountryFile));
    }
}
BENCHMARK(BM_CountryFileLoad)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv) {
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    printFigures();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
