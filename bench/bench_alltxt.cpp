// A decode log of 1,000,000 lines, half in WSJT-X 2.x's layout and half in
// JTDX's (band headers now and then), read as the headless tool reads it:
// lines split, decodes parsed, grids remembered and every Es path computed.
// The decodes are an Es opening on 6 m and 2 m: CQs with grids, replies with
// reports, RR73 and grids again.

#include "AllTxtLog.h"
#include "AllTxtReader.h"
#include "FileReplay.h"

#include <benchmark/benchmark.h>

#include <QBuffer>

namespace {

using namespace zkr;
using bench::LineCount;
using bench::makeLog;

void BM_AllTxtMillionLines(benchmark::State &state) {
    static const QByteArray log = makeLog();
    AllTxtReader reader;
    reader.setOwnStation(QStringLiteral("DL9OWN"), QStringLiteral("JO40AA"));
    qint64 reports = 0;
    qint64 paths = 0;
    QObject::connect(&reader, &AllTxtReader::reception, [&](const Reception &report) {
        ++reports;
        paths += report.es ? 1 : 0;
    });
    for (auto _ : state) {
        QBuffer buffer;
        buffer.setData(log);
        buffer.open(QIODevice::ReadOnly);
        FileReplay::replayAll(buffer, reader);
    }
    state.counters["reports"] = benchmark::Counter(double(reports) / state.iterations());
    state.counters["paths"] = benchmark::Counter(double(paths) / state.iterations());
    state.counters["lines/s"] =
        benchmark::Counter(double(LineCount) * state.iterations(), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_AllTxtMillionLines)->Unit(benchmark::kMillisecond)->Iterations(3);

} // namespace

BENCHMARK_MAIN();
