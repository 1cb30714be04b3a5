#include "EvaluationCycle.h"

#include "EvaluationView.h"
#include "Pane.h"
#include "ProgramState.h"
#include "ResultOutput.h"
#include "RunTimeError.h"
#include "SpotAnalysis.h"
#include "SpotLineParsing.h"
#include "TextFunctions.h"

#include <algorithm>
#include <optional>

namespace zkr {

namespace {

const QString Es = QStringLiteral("ES");

// Busy stays set exactly as long as a cycle runs, also when it fails.
class BusyGuard {
public:
    explicit BusyGuard(ProgramState &state) : state_(state) { state_.Busy = true; }
    ~BusyGuard() { state_.Busy = false; }
    BusyGuard(const BusyGuard &) = delete;
    BusyGuard &operator=(const BusyGuard &) = delete;

private:
    ProgramState &state_;
};

// Prints the analysed spot as the filter boxes and its mode say. Returns
// true when it is an Es spot whose results went into the panes.
bool printSpot(ProgramState &state, const ResultPanes &panes, EvaluationView &view) {
    if (view.over144Only() && state.Spot_Frequency < state.MinFrequency_MHz) {
        return false;
    }
    const std::uint32_t black = Colour_Value(state.Color_Black);
    const std::uint32_t magenta = Colour_Value(state.Color_Magenta);
    const bool esOnly = view.esSpotsOnly();
    if (!esOnly) {
        Print_RawLine(state, panes, black, magenta);
    }
    const bool path = !state.Locator_2.isEmpty() && state.Locator_1 != state.Locator_2;
    const bool computed = path && (state.Spot_Mode == Es ||
                                   (state.Spot_Mode == QLatin1String("??") && state.Eval_Flag));
    if (!computed) {
        if (!esOnly) {
            Print_LineEnd(state, panes);
        }
        return false;
    }
    if (esOnly && state.Spot_Mode == Es) {
        Print_RawLine(state, panes, black, magenta);
    }
    if (esOnly && state.Spot_Mode.toUpper() != Es) {
        return false;
    }
    Print_MufField(state, panes);
    Print_MidSquare(state, panes);
    Print_FotField(state, panes);
    Print_AzField(state, panes);
    return state.Spot_Mode == Es;
}

// A spot abandoned half-printed still gets its line end, so the next spot
// starts a line of its own.
void endHalfPrintedLine(ProgramState &state, const ResultPanes &panes, const int carets[4]) {
    for (int i = 0; i < 4; ++i) {
        if (panes[static_cast<std::size_t>(i)]->caret() != carets[i]) {
            Print_Colored(*panes[static_cast<std::size_t>(i)], state.CrLf, 0);
        }
    }
}

} // namespace

void Evaluate_ClusterLine(ProgramState &state, Platform &platform, const ResultPanes &panes,
                          EvaluationView &view) {
    std::optional<RunTimeError> failure;
    {
        BusyGuard busy(state);
        view.showWorkLabel(QStringLiteral("CALCULATING"));
        view.processEvents();

        state.Spot_Line = Prepare_ClusterLine(state.CurrentSpotLine);
        int carets[4];
        for (int i = 0; i < 4; ++i) {
            carets[i] = panes[static_cast<std::size_t>(i)]->caret();
        }
        try {
            Analyse_Spot(state, platform);
            printSpot(state, panes, view);
        } catch (const RunTimeError &error) {
            endHalfPrintedLine(state, panes, carets);
            failure = error;
        }
        view.processEvents();

        const unsigned selected = Selected_Panes(state);
        for (int i = 0; i < 4; ++i) {
            if ((selected & (1u << i)) != 0) {
                panes[static_cast<std::size_t>(i)]->setCaret(0);
            }
        }
        if (state.SpotLine_Count > 0) {
            Trim_SpotLines(state);
            state.Busy = true; // the trimming clears it; the cycle is not over
        }
        view.refreshDisplay();
        view.setConsoleData(state.Spot_Line);
        view.processEvents();
    }
    if (failure) {
        throw *failure;
    }
}

QString Clean_SpotLine(QString line) {
    const std::pair<const char *, const char *> entities[] = {
        {"&lt;", "<"}, {"&gt;", ">"}, {"&amp;", "&"}, {"&quot;", "\""}};
    for (const auto &[entity, plain] : entities) {
        const QString from = QString::fromLatin1(entity);
        const QString to = QString::fromLatin1(plain);
        for (qsizetype at = line.indexOf(from); at >= 0; at = line.indexOf(from)) {
            line.replace(at, from.size(), to);
        }
    }
    line.remove(QChar(176));
    const int p = inStr(line, u"<>");
    if (p > 0) {
        // The six characters before the "<>" and the "<>" itself become
        // blanks, so the time and tail columns stay where they were.
        const int kept = std::max(p - 7, 0);
        line = left(line, kept) + QString(p + 1 - kept, QLatin1Char(' ')) + mid(line, p + 2);
    }
    return line;
}

void Evaluate_SpotLines(ProgramState &state, Platform &platform, const ResultPanes &panes,
                        EvaluationView &view, const QStringList &pageLines) {
    BusyGuard busy(state);
    view.showWorkLabel(QStringLiteral("CALCULATING"));
    view.processEvents();
    // Each page replaces the last: the panes show the service's list as it is.
    for (Pane *pane : panes) {
        pane->clear();
    }
    unsigned gotEs = 0;
    for (const QString &pageLine : pageLines) {
        state.Spot_Line = Clean_SpotLine(trimBlanks(pageLine));
        int carets[4];
        for (int i = 0; i < 4; ++i) {
            carets[i] = panes[static_cast<std::size_t>(i)]->caret();
        }
        try {
            Analyse_Spot(state, platform);
            // The printed line takes the shape of a cluster line.
            state.Spot_Line = mid(state.Spot_Line, 1, state.column(9) - 1) + QStringLiteral("  ") +
                              state.Spot_Time + QLatin1Char(' ') + state.Spot_Tail1 +
                              QLatin1Char(' ') + state.Spot_Tail2;
            if (printSpot(state, panes, view)) {
                gotEs |= Selected_Panes(state);
            }
        } catch (const RunTimeError &) {
            endHalfPrintedLine(state, panes, carets);
        }
        view.processEvents();
    }
    const std::uint32_t black = Colour_Value(state.Color_Black);
    for (int i = 0; i < 4; ++i) {
        if ((gotEs & (1u << i)) == 0) {
            Print_Colored(*panes[static_cast<std::size_t>(i)],
                          QStringLiteral("Sorry - no Es-spots found !"), black);
            Print_Colored(*panes[static_cast<std::size_t>(i)], state.CrLf, black);
        }
    }
    view.refreshDisplay();
    view.hideWorkLabel();
}

} // namespace zkr
