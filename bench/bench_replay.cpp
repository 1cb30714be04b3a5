// Replay throughput of zkr_muf_cli on a recorded cluster session of 200,000
// lines: the replay in process (start-up, receive processor, evaluation,
// panes), and the executable as a user runs it, output included.

#include "CliOptions.h"
#include "CliReplay.h"

#include <benchmark/benchmark.h>

#include <QBuffer>
#include <QByteArray>
#include <QProcess>
#include <QTemporaryDir>

#include <array>
#include <random>

namespace {

using namespace zkr;

constexpr int LineCount = 200000;

const std::array<const char *, 12> Calls{"DL1ABC", "OH1XYZ", "G4ABC", "EA7KW",
                                         "IK0FTA", "SP5XMU", "F6ABC", "OK1DIX",
                                         "9A1CAL", "CT1HZE", "S57TW", "PA3FWM"};
const std::array<const char *, 10> Locators{"JO62QM", "IO91WM", "KP20LE", "IM76TP", "JN61FW",
                                            "KO02MD", "JN18DT", "JP99LR", "IM58KR", "KN04FR"};
// %1 and %2 are locators.
const std::array<const char *, 14> VhfComments{
    "%1<ES>%2",   "%1 ES %2", "%1 es %2 tnx", "ES %1 %2 -10dB", "%1<MS>%2",
    "TR %1 %2",   "EME %1",   "%1 SAT %2",    "%1 %2",          "FT8 %2",
    "tnx qso %1", "CQ CQ",    "%1 (es) %2",   "TNX ES 73"};
const std::array<const char *, 6> HfComments{"CQ CQ",  "TNX QSO 73", "FT8 -12dB",
                                             "CW 599", "",           "up 2"};

// A session as the console records it: mostly spots (about half of them
// HF), with the cluster's prompts, announcements, WWV lines, blank lines
// and bell pairs in between.
QByteArray recordedSession() {
    std::mt19937 random(1296);
    std::uniform_real_distribution<double> unit(0, 1);
    const auto pick = [&random](const auto &list) {
        return QString::fromLatin1(
            list[std::uniform_int_distribution<std::size_t>(0, list.size() - 1)(random)]);
    };
    QByteArray text;
    text.reserve(LineCount * 80);
    for (int i = 0; i < LineCount; ++i) {
        const double kind = unit(random);
        QString line;
        if (kind < 0.03) {
            line = QStringLiteral("DL1ABC de GB7TST  1-Jun-2024 1712Z dxspider >");
        } else if (kind < 0.05) {
            line = QStringLiteral("To ALL de G4ABC: 6m open to the south");
        } else if (kind < 0.06) {
            line = QStringLiteral("WWV de VE7CC <18>:   SFI=152, A=8, K=2, No Storms -> No Storms");
        } else if (kind < 0.08) {
            line.clear();
        } else {
            const bool vhf = unit(random) < 0.55;
            const double kiloHertz =
                vhf ? (unit(random) < 0.75 ? 50080 + std::floor(unit(random) * 400)
                                           : 144050 + std::floor(unit(random) * 400))
                    : 14000 + std::floor(unit(random) * 350);
            const QString comment = vhf ? pick(VhfComments)
                                              .replace(QLatin1String("%1"), pick(Locators))
                                              .replace(QLatin1String("%2"), pick(Locators))
                                        : pick(HfComments);
            line = QStringLiteral("DX de %1%2  %3 %4 %5Z")
                       .arg(pick(Calls) + QLatin1Char(':'), -9)
                       .arg(kiloHertz, 9, 'f', 1)
                       .arg(pick(Calls), -12)
                       .arg(comment.left(30), -30)
                       .arg(i % 2400, 4, 10, QLatin1Char('0'));
            if (unit(random) < 0.1) {
                line += QString(2, QChar(7));
            }
        }
        text += line.toLatin1() + "\r\n";
    }
    return text;
}

const QByteArray &session() {
    static const QByteArray text = recordedSession();
    return text;
}

void reportLines(benchmark::State &bench) {
    bench.counters["lines/s"] = benchmark::Counter(
        static_cast<double>(bench.iterations()) * LineCount, benchmark::Counter::kIsRate);
}

void BM_ReplayInProcess(benchmark::State &bench) {
    CliOptions options;
    options.ownLocator = QStringLiteral("JO62QM");
    for (auto _ : bench) {
        QBuffer input;
        input.setData(session());
        input.open(QIODevice::ReadOnly);
        CliReplay run(options);
        benchmark::DoNotOptimize(run.replayClusterText(input));
        run.refreshDisplay();
    }
    reportLines(bench);
}
BENCHMARK(BM_ReplayInProcess)->Unit(benchmark::kMillisecond)->Iterations(3);

// The whole tool: process start, reading the file, the replay and the text
// (or JSON) output of up to 100,000 lines per pane.
void BM_ReplayExecutable(benchmark::State &bench) {
    QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("session.txt"));
    {
        QFile out(file);
        if (!out.open(QIODevice::WriteOnly) || out.write(session()) != session().size()) {
            bench.SkipWithError("cannot write the session file");
            return;
        }
    }
    QStringList arguments{QStringLiteral("--locator"), QStringLiteral("JO62QM"), file};
    if (bench.range(0) != 0) {
        arguments.prepend(QStringLiteral("--json"));
    }
    for (auto _ : bench) {
        QProcess tool;
        tool.setStandardOutputFile(QProcess::nullDevice());
        tool.start(QStringLiteral(ZKR_MUF_CLI), arguments);
        if (!tool.waitForFinished(120000) || tool.exitCode() != 0) {
            bench.SkipWithError("zkr_muf_cli failed");
            return;
        }
    }
    reportLines(bench);
}
BENCHMARK(BM_ReplayExecutable)
    ->ArgName("json")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3)
    ->UseRealTime();

} // namespace

BENCHMARK_MAIN();
