// Throughput of the per-spot work on a mix of cluster lines as a cluster
// sends them in an Es season: HF spots without locators, 6 m, 4 m and 2 m
// spots with one or two locators and every kind of mode marker.

#include "MemoryPane.h"
#include "PaneWriter.h"
#include "SpotEvaluator.h"

#include <benchmark/benchmark.h>

#include <QStringList>

#include <array>
#include <cmath>
#include <random>

namespace {

using namespace zkr;

constexpr int LineCount = 4096;

const char *const Calls[] = {"DL1ABC", "OH1XYZ", "G4ABC",  "EA7KW",  "IK0FTA", "SP5XMU",
                             "F6ABC",  "OK1DIX", "LA7QIA", "9A1CAL", "CT1HZE", "YU1EV",
                             "S57TW",  "HA5KDR", "OZ1FDH", "DF2ZC",  "PA3FWM", "I0KHP"};
const char *const Locators[] = {"JO62QM", "IO91WM", "KP20LE", "IM76TP", "JN61FW", "KO02MD",
                                "JN18DT", "JO70FD", "JP99LR", "JN95KE", "IM58KR", "KN04FR",
                                "JN76EA", "JN97LM", "JO55WB", "JO31HH", "JO22DC", "JN52SI"};
const char *const Squares[] = {"JO62", "IO91", "KP20", "IM76", "JN61", "KO02",
                               "JN18", "JO70", "JP99", "JN95", "IM58", "KN04"};
const char *const HfComments[] = {"CQ CQ", "TNX QSO 73", "FT8 -12dB", "CW 599",
                                  "",      "up 2",       "RTTY",      "tnx fer qso"};
// %1 and %2 are the two locators, %3 a square.
const char *const VhfComments[] = {
    "%1<ES>%2",    "%1 ES %2",  "%3 es %2 tnx",   "%1(ES)%3 FT8", "ES %1 %2 -10dB",
    "%1<MS>%2",    "%1 MS %3",  "TR %1 %2 59",    "%1 <TR> %3",   "EME %1",
    "%1 %2 <EME>", "%1 SAT %2", "MUF 144 %1 %2",  "%1 %2",        "FT8 %3",
    "tnx qso %1",  "CQ %3",     "%1 (es) %2 big", "%1<ES>%3 fb",  "TNX ES 73"};

// A cluster line as clusters lay it out, with the prefix.
QString clusterLine(const QString &spotter, double kiloHertz, const QString &dxCall,
                    const QString &comment, int time) {
    return QStringLiteral("DX de %1%2  %3 %4 %5Z")
        .arg(spotter + QLatin1Char(':'), -9)
        .arg(kiloHertz, 9, 'f', 1)
        .arg(dxCall, -12)
        .arg(comment.left(30), -30)
        .arg(time, 4, 10, QLatin1Char('0'));
}

QStringList makeLines() {
    std::mt19937 random(1296);
    const auto pick = [&random](const auto &list) {
        return QString::fromLatin1(
            list[std::uniform_int_distribution<std::size_t>(0, std::size(list) - 1)(random)]);
    };
    std::uniform_real_distribution<double> unit(0, 1);
    QStringList lines;
    for (int i = 0; i < LineCount; ++i) {
        const double band = unit(random);
        double kiloHertz = 0;
        QString comment;
        if (band < 0.45) {
            const double hf[] = {7010, 14074, 18100, 21074, 24915, 28074};
            kiloHertz = hf[i % 6] + std::floor(unit(random) * 30);
            comment = pick(HfComments);
        } else {
            kiloHertz = band < 0.75   ? 50080 + std::floor(unit(random) * 400)
                        : band < 0.8  ? 70150 + std::floor(unit(random) * 100)
                        : band < 0.95 ? 144050 + std::floor(unit(random) * 400)
                                      : 432200 + std::floor(unit(random) * 100);
            comment = pick(VhfComments)
                          .replace(QLatin1String("%1"), pick(Locators))
                          .replace(QLatin1String("%2"), pick(Locators))
                          .replace(QLatin1String("%3"), pick(Squares));
        }
        // As received: the prefix, the line, characters beyond the 75 the
        // analysis takes, the line end.
        lines.append(clusterLine(pick(Calls), kiloHertz, pick(Calls), comment,
                                 static_cast<int>(unit(random) * 24) * 100 +
                                     static_cast<int>(unit(random) * 60)) +
                     QStringLiteral(" JO62\r\n"));
    }
    return lines;
}

AnalysisSettings benchSettings() {
    AnalysisSettings settings;
    settings.ownLocator = QStringLiteral("JO62QM");
    settings.columns = ClusterColumns;
    return settings;
}

// The evaluation of a line as the cluster sends it: analysis, path and the
// printed runs, into a value.
void BM_EvaluateClusterLine(benchmark::State &bench) {
    const QStringList lines = makeLines();
    const SpotEvaluator evaluator(benchSettings());
    int i = 0;
    std::int64_t computed = 0;
    for (auto _ : bench) {
        const EvaluatedSpot spot = evaluator.evaluateClusterLine(lines[i]);
        benchmark::DoNotOptimize(spot.runs.constData());
        computed += spot.es ? 1 : 0;
        i = (i + 1) % LineCount;
    }
    bench.SetItemsProcessed(bench.iterations());
    bench.counters["lines/s"] =
        benchmark::Counter(static_cast<double>(bench.iterations()), benchmark::Counter::kIsRate);
    bench.counters["es_share"] = static_cast<double>(computed) /
                                 static_cast<double>(std::max<std::int64_t>(1, bench.iterations()));
}
BENCHMARK(BM_EvaluateClusterLine);

// The same, and each spot written on top of the panes it selects, which are
// then committed, as the window shows every spot.
void BM_EvaluateAndWrite(benchmark::State &bench) {
    const QStringList lines = makeLines();
    const SpotEvaluator evaluator(benchSettings());
    std::array<MemoryPane, 4> memory{MemoryPane(250), MemoryPane(250), MemoryPane(250),
                                     MemoryPane(250)};
    PaneWriter writer(ResultPanes{&memory[0], &memory[1], &memory[2], &memory[3]});
    int i = 0;
    for (auto _ : bench) {
        const EvaluatedSpot spot = evaluator.evaluateClusterLine(lines[i]);
        writer.writeSpot(spot);
        for (std::size_t p = 0; p < memory.size(); ++p) {
            if ((spot.panes & (1U << p)) != 0) {
                memory[p].commit();
            }
        }
        i = (i + 1) % LineCount;
    }
    bench.SetItemsProcessed(bench.iterations());
    bench.counters["lines/s"] =
        benchmark::Counter(static_cast<double>(bench.iterations()), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_EvaluateAndWrite);

} // namespace

BENCHMARK_MAIN();
