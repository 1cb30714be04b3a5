// Throughput of the per-spot work on a mix of cluster lines as a cluster
// sends them in an Es season: HF spots without locators, 6 m, 4 m and 2 m
// spots with one or two locators and every kind of mode marker.

#include "EsPathModel.h"
#include "MemoryPane.h"
#include "ProgramState.h"
#include "ResultOutput.h"
#include "ScriptedPlatform.h"
#include "SpotAnalysis.h"
#include "SpotLineParsing.h"

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
        lines.append(Prepare_ClusterLine(clusterLine(pick(Calls), kiloHertz, pick(Calls), comment,
                                                     static_cast<int>(unit(random) * 24) * 100 +
                                                         static_cast<int>(unit(random) * 60)) +
                                         QStringLiteral(" JO62\r\n")));
    }
    return lines;
}

ProgramState benchState() {
    ProgramState s;
    s.EarthRadius = 6367;
    s.EsLayerHeight = 110;
    s.Distance_Limit = 1500;
    s.MinFrequency_MHz = 144;
    s.Color_Black = QStringLiteral("0");
    s.Color_Magenta = QString::number(0xFF00FF);
    s.Color_Grey = QString::number(0xB0B0B0);
    s.IniFileName = QStringLiteral("zkr_muf.ini");
    s.OwnLocator = QStringLiteral("JO62QM");
    s.SpotLine_Columns = ClusterColumns;
    s.Column_Count = 15;
    return s;
}

void BM_AnalyseSpot(benchmark::State &bench) {
    const QStringList lines = makeLines();
    ProgramState s = benchState();
    ScriptedPlatform platform;
    int i = 0;
    std::int64_t paths = 0;
    for (auto _ : bench) {
        s.Spot_Line = lines[i];
        Analyse_Spot(s, platform);
        benchmark::DoNotOptimize(s.Es_MUF);
        paths += s.Locator_2.isEmpty() ? 0 : 1;
        i = (i + 1) % LineCount;
    }
    bench.SetItemsProcessed(bench.iterations());
    bench.counters["lines/s"] =
        benchmark::Counter(static_cast<double>(bench.iterations()), benchmark::Counter::kIsRate);
    bench.counters["path_share"] =
        static_cast<double>(paths) /
        static_cast<double>(std::max<std::int64_t>(1, bench.iterations()));
}
BENCHMARK(BM_AnalyseSpot);

// The analysis and what the evaluation prints for a spot: the raw line, the
// result fields of an Es spot with two locators, the line end; then each
// pane that took output gets its caret back to the top and is committed.
void BM_AnalyseAndPrint(benchmark::State &bench) {
    const QStringList lines = makeLines();
    ProgramState s = benchState();
    ScriptedPlatform platform;
    std::array<MemoryPane, 4> memory{MemoryPane(250), MemoryPane(250), MemoryPane(250),
                                     MemoryPane(250)};
    const ResultPanes panes{&memory[0], &memory[1], &memory[2], &memory[3]};
    int i = 0;
    std::int64_t computed = 0;
    for (auto _ : bench) {
        s.Spot_Line = lines[i];
        Analyse_Spot(s, platform);
        Print_RawLine(s, panes, 0, 0xFF00FF);
        if (!s.Locator_2.isEmpty() && s.Locator_1 != s.Locator_2 &&
            s.Spot_Mode == QLatin1String("ES")) {
            Print_MufField(s, panes);
            Print_MidSquare(s, panes);
            Print_FotField(s, panes);
            Print_AzField(s, panes);
            ++computed;
        } else {
            Print_LineEnd(s, panes);
        }
        const unsigned selected = Selected_Panes(s);
        for (std::size_t p = 0; p < memory.size(); ++p) {
            if ((selected & (1U << p)) != 0) {
                memory[p].setCaret(0);
                memory[p].commit();
            }
        }
        i = (i + 1) % LineCount;
    }
    bench.SetItemsProcessed(bench.iterations());
    bench.counters["lines/s"] =
        benchmark::Counter(static_cast<double>(bench.iterations()), benchmark::Counter::kIsRate);
    bench.counters["es_share"] = static_cast<double>(computed) /
                                 static_cast<double>(std::max<std::int64_t>(1, bench.iterations()));
}
BENCHMARK(BM_AnalyseAndPrint);

// The parts on their own: the field extraction every line goes through,
// and one Es path (JO62QM to KP20, seen from JO62QM).
void BM_ExtractSpotFields(benchmark::State &bench) {
    const QStringList lines = makeLines();
    ProgramState s = benchState();
    int i = 0;
    for (auto _ : bench) {
        s.Spot_Line = lines[i];
        Extract_SpotFields(s);
        benchmark::DoNotOptimize(s.Spot_Frequency);
        i = (i + 1) % LineCount;
    }
    bench.SetItemsProcessed(bench.iterations());
}
BENCHMARK(BM_ExtractSpotFields);

void BM_ComputeEsPath(benchmark::State &bench) {
    ProgramState s = benchState();
    ScriptedPlatform platform;
    s.Spot_Frequency = 50.11f;
    for (auto _ : bench) {
        s.Locator_1 = QStringLiteral("JO62QM");
        s.Locator_2 = QStringLiteral("KP20??");
        Compute_EsPath(s, platform);
        benchmark::DoNotOptimize(s.Es_MUF);
    }
    bench.SetItemsProcessed(bench.iterations());
}
BENCHMARK(BM_ComputeEsPath);

} // namespace

BENCHMARK_MAIN();
