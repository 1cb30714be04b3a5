// One spot line, anything at all, through the evaluation and into the
// panes. The first byte chooses the settings: bit 0 Es spots only, 1 over
// 144 MHz only, 2 evaluate all, 3 own locator KP20LL, 4 a web page line
// with the web columns, 5 a wrong own locator.
#include "FuzzChecks.h"
#include "PaneWriter.h"
#include "SpotEvaluator.h"

#include <array>

namespace {

using namespace zkr;

// What every evaluated spot must be, whatever its line.
void checkSpot(const EvaluatedSpot &spot) {
    check(spot.runs.isEmpty() == (spot.panes == 0));
    if (!spot.runs.isEmpty()) {
        check(spot.runs.back().text == QStringLiteral("\r\n") && (spot.panes & 1U) != 0);
    }
    for (const TextRun &run : spot.runs) {
        check(!run.text.isEmpty());
    }
    check(!spot.es || (!spot.locator2.isEmpty() && spot.locator1 != spot.locator2));
    check(!spot.esResultPrinted || (spot.es && spot.mode == QStringLiteral("ES")));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const std::uint8_t flags = data[0];
    AnalysisSettings settings;
    settings.ownLocator = (flags & 32) != 0  ? QStringLiteral("JO62QZ")
                          : (flags & 8) != 0 ? QStringLiteral("KP20LL")
                                             : QStringLiteral("JO62QM");
    settings.esSpotsOnly = (flags & 1) != 0;
    settings.over144Only = (flags & 2) != 0;
    settings.evalAll = (flags & 4) != 0;
    const bool web = (flags & 16) != 0;
    settings.columns = web ? WebColumns : ClusterColumns;
    const SpotEvaluator evaluator(settings);
    const QString line = QString::fromLatin1(reinterpret_cast<const char *>(data + 1),
                                             static_cast<qsizetype>(size - 1));
    const auto evaluate = [&] {
        // A cluster line as the cluster sends it: the prefix, the line, its end.
        return web ? evaluator.evaluateWebLine(line)
                   : evaluator.evaluateClusterLine(QStringLiteral("DX de ") + line +
                                                   QStringLiteral("\r\n"));
    };
    const EvaluatedSpot spot = evaluate();
    checkSpot(spot);
    check(evaluate() == spot); // nothing is kept from one evaluation to the next

    std::array<MemoryPane, 4> panes{MemoryPane(3), MemoryPane(3), MemoryPane(3), MemoryPane(3)};
    PaneWriter writer(ResultPanes{&panes[0], &panes[1], &panes[2], &panes[3]});
    writer.writeSpot(spot);
    writer.writePrompt(line);
    writer.writeSpot(spot);
    for (MemoryPane &pane : panes) {
        pane.commit();
        checkPane(pane);
    }
    return 0;
}
