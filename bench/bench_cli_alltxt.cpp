// The generated decode log of 1,000,000 lines through zkr_muf_cli as a user
// runs it: process start, the log read and parsed, every Es path computed,
// the reports learned into the call book, and out as a JSON line each
// (--jsonl, --all-reports: every report written), through the Es watch
// (--watch, all bands) or into the Reports pane (printed at the end).

#include "AllTxtLog.h"

#include <benchmark/benchmark.h>

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <string_view>

namespace {

using namespace zkr;

bool writeLog(const QString &path) {
    const QByteArray log = bench::makeLog();
    QFile out(path);
    return out.open(QIODevice::WriteOnly) && out.write(log) == log.size();
}

void BM_CliDecodeLog(benchmark::State &bench) {
    QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("ALL.TXT"));
    if (!writeLog(file)) {
        bench.SkipWithError("cannot write the log");
        return;
    }
    // No history file: the call book starts empty, as on a first run.
    QStringList arguments{QStringLiteral("--locator"), QStringLiteral("JO40AA"),
                          QStringLiteral("--call"),    QStringLiteral("DL9OWN"),
                          QStringLiteral("--db"),      folder.filePath(QStringLiteral("none")),
                          QStringLiteral("--alltxt"),  file};
    switch (bench.range(0)) {
    case 0:
        arguments << QStringLiteral("--jsonl") << QStringLiteral("--all-reports");
        break;
    case 1:
        arguments << QStringLiteral("--watch") << QStringLiteral("--watch-bands")
                  << QStringLiteral("50,70,144");
        break;
    default:
        break; // the Reports pane
    }
    qint64 outputBytes = 0;
    for (auto _ : bench) {
        QProcess tool;
        const QString output = folder.filePath(QStringLiteral("out"));
        tool.setStandardOutputFile(output);
        tool.start(QStringLiteral(ZKR_MUF_CLI), arguments);
        if (!tool.waitForFinished(300000) || tool.exitCode() != 0) {
            bench.SkipWithError("zkr_muf_cli failed");
            return;
        }
        outputBytes = QFile(output).size();
    }
    bench.counters["lines/s"] = benchmark::Counter(
        static_cast<double>(bench.iterations()) * bench::LineCount, benchmark::Counter::kIsRate);
    bench.counters["output_MB"] = static_cast<double>(outputBytes) / 1e6;
}
BENCHMARK(BM_CliDecodeLog)
    ->ArgName("jsonl0_watch1_pane2")
    ->Arg(0)
    ->Arg(1)
    ->Arg(2)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3)
    ->UseRealTime();

} // namespace

// "--write FILE" writes the log for timing the tool by hand.
int main(int argc, char **argv) {
    if (argc == 3 && std::string_view(argv[1]) == "--write") {
        return writeLog(QString::fromLocal8Bit(argv[2])) ? 0 : 1;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
