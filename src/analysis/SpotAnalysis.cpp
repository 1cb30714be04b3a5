#include "SpotAnalysis.h"

#include "EsPathModel.h"
#include "Locators.h"
#include "ModeMarkers.h"
#include "ResultOutput.h"
#include "SpotEvaluator.h"
#include "SpotLineParsing.h"
#include "SpotWork.h"
#include "UpperCase.h"

#include <string_view>

namespace zkr {

namespace {

struct ModeWord {
    std::u16string_view word;
    std::u16string_view bracketed;
};

// Applied one after another, each to every occurrence.
constexpr ModeWord ModeWords[] = {
    {u" ES ", u"<ES>"},   {u" es ", u"<ES>"},   {u" Es ", u"<ES>"},   {u" MS ", u"<MS>"},
    {u" ms ", u"<MS>"},   {u" Ms ", u"<MS>"},   {u" TR ", u"<TR>"},   {u" tr ", u"<TR>"},
    {u" Tr ", u"<TR>"},   {u" EME ", u"<EME>"}, {u" eme ", u"<EME>"}, {u" SAT ", u"<SAT>"},
    {u" sat ", u"<SAT>"},
};

QStringView view(std::u16string_view text) {
    return QStringView(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace

void Analyse_Spot(SpotWork &work, const AnalysisSettings &settings) {
    EvaluatedSpot &spot = work.spot;
    Extract_SpotFields(spot, settings, work.utf8Line);
    Find_Locators(work);
    Find_Mode(work);
    if (spot.locator2.isEmpty() || !Compute_EsPath(work, settings)) {
        return;
    }
    // Two locators in one square make a "TR" spot, so two different
    // locators are two different squares.
    const bool esSpot =
        spot.mode == QLatin1String("ES") || (spot.mode == QLatin1String("??") && settings.evalAll);
    if (spot.locator1 != spot.locator2 && esSpot) {
        spot.es = work.path;
    }
}

void Bracket_ModeWords(QString &line) {
    // One pass finds the words that occur at all. A replacement only takes
    // blanks away, so it never makes a later word occur: the words found
    // are the only ones to replace, in the table's order.
    const QStringView text(line);
    unsigned present = 0;
    for (qsizetype at = text.indexOf(QLatin1Char(' ')); at >= 0;
         at = text.indexOf(QLatin1Char(' '), at + 1)) {
        const QStringView rest = text.mid(at);
        // Every word starts with a blank and one of these letters.
        const char16_t first = rest.size() > 1 ? rest[1].unicode() : u' ';
        if (first != u'E' && first != u'e' && first != u'M' && first != u'm' && first != u'T' &&
            first != u't' && first != u'S' && first != u's') {
            continue;
        }
        for (std::size_t i = 0; i < std::size(ModeWords); ++i) {
            if (rest.startsWith(view(ModeWords[i].word))) {
                present |= 1U << i;
            }
        }
    }
    for (std::size_t i = 0; present != 0; ++i, present >>= 1) {
        if ((present & 1U) == 0) {
            continue;
        }
        const QStringView word = view(ModeWords[i].word);
        const QStringView bracketed = view(ModeWords[i].bracketed);
        for (qsizetype at = line.indexOf(word); at >= 0;
             at = line.indexOf(word, at + word.size())) {
            line.replace(at, word.size(), bracketed.data(), bracketed.size());
        }
    }
}

void Print_RawLine(EvaluatedSpot &spot, const AnalysisSettings &settings) {
    const QStringView line(spot.line);
    const QString ownLocator = upperCase(settings.ownLocator);
    const QStringView ownSquare = QStringView(ownLocator).left(4);
    qsizetype at = -1;
    // Only a whole square can be highlighted; an own locator too short to
    // have one touches nothing.
    if (ownSquare.size() == 4 && (ownSquare == QStringView(spot.locator2).left(4) ||
                                  ownSquare == QStringView(spot.locator1).left(4))) {
        at = upperCase(spot.line).indexOf(ownSquare);
    }
    if (at < 0) {
        if (!line.isEmpty()) {
            spot.runs.append(TextRun{spot.line, Color_Black});
        }
        return;
    }
    if (at > 0) {
        spot.runs.append(TextRun{line.left(at).toString(), Color_Black});
    }
    spot.runs.append(TextRun{line.mid(at, 4).toString(), Color_Magenta});
    if (at + 4 < line.size()) {
        spot.runs.append(TextRun{line.mid(at + 4).toString(), Color_Black});
    }
}

} // namespace zkr
