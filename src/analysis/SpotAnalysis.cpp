#include "SpotAnalysis.h"

#include "EsPathModel.h"
#include "Locators.h"
#include "ModeMarkers.h"
#include "ProgramState.h"
#include "ResultOutput.h"
#include "SpotLineParsing.h"
#include "UpperCase.h"

#include <string_view>

namespace zkr {

namespace {

struct ModeWord {
    std::u16string_view word;
    std::u16string_view bracketed;
};

// Applied one after another, each to every occurrence. Each replacement has
// the length of its word, so positions in the line do not move.
constexpr ModeWord ModeWords[] = {
    {u" ES ", u"<ES>"},   {u" es ", u"<ES>"},   {u" Es ", u"<ES>"},   {u" MS ", u"<MS>"},
    {u" ms ", u"<MS>"},   {u" Ms ", u"<MS>"},   {u" TR ", u"<TR>"},   {u" tr ", u"<TR>"},
    {u" Tr ", u"<TR>"},   {u" EME ", u"<EME>"}, {u" eme ", u"<EME>"}, {u" SAT ", u"<SAT>"},
    {u" sat ", u"<SAT>"},
};

QStringView view(std::u16string_view text) {
    return QStringView(text.data(), static_cast<qsizetype>(text.size()));
}

void bracketModeWords(QString &line) {
    for (const ModeWord &mode : ModeWords) {
        const QStringView word = view(mode.word);
        qsizetype at = line.indexOf(word);
        while (at >= 0) {
            const QStringView bracketed = view(mode.bracketed);
            line.replace(at, word.size(), bracketed.data(), bracketed.size());
            at = line.indexOf(word, at + word.size());
        }
    }
}

} // namespace

void Analyse_Spot(ProgramState &state, Platform &platform) {
    Extract_SpotFields(state);
    Find_Locators(state);
    Find_Mode(state);
    if (!state.Locator_2.isEmpty()) {
        Compute_EsPath(state, platform);
    }
}

void Print_RawLine(ProgramState &state, const ResultPanes &panes, std::uint32_t surroundColour,
                   std::uint32_t highlightColour) {
    // The words are bracketed before printing: the brackets are there to
    // make the mode stand out in the printed line, and the rewrite keeps
    // every position, so the own square is found at the same place.
    if (state.Spot_Mode == QLatin1String("ES")) {
        bracketModeWords(state.Spot_Line);
    }
    const QStringView line(state.Spot_Line);

    const QString ownLocator = upperCase(state.OwnLocator);
    const QStringView ownSquare = QStringView(ownLocator).left(4);
    qsizetype at = -1;
    // Only a whole square can be highlighted; an own locator too short to
    // have one touches nothing.
    if (ownSquare.size() == 4 && (ownSquare == QStringView(state.Locator_2).left(4) ||
                                  ownSquare == QStringView(state.Locator_1).left(4))) {
        at = upperCase(state.Spot_Line).indexOf(ownSquare);
    }
    if (at < 0) {
        Print_ToSelected(state, panes, line, surroundColour);
        return;
    }
    const QStringView before = line.left(at);
    const QStringView square = line.mid(at, 4);
    const QStringView after = line.mid(at + 4);
    if (!before.isEmpty()) {
        Print_ToSelected(state, panes, before, surroundColour);
    }
    Print_ToSelected(state, panes, square, highlightColour);
    if (!after.isEmpty()) {
        Print_ToSelected(state, panes, after, surroundColour);
    }
}

} // namespace zkr
