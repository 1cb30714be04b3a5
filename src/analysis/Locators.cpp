#include "Locators.h"

#include "Int16Arithmetic.h"
#include "RunTimeError.h"
#include "SpotWork.h"
#include "UpperCase.h"

#include <algorithm>
#include <cmath>

namespace zkr {

namespace {

bool within(QChar c, char from, char to) {
    return c.unicode() >= static_cast<char16_t>(from) && c.unicode() <= static_cast<char16_t>(to);
}

bool within(char16_t c, char16_t from, char16_t to) {
    return c >= from && c <= to;
}

bool squareAt(const char16_t *text) {
    return within(text[0], u'A', u'R') && within(text[1], u'A', u'R') &&
           within(text[2], u'0', u'9') && within(text[3], u'0', u'9');
}

void trimBlanksInPlace(QString &text) {
    qsizetype end = text.size();
    while (end > 0 && text[end - 1] == QLatin1Char(' ')) {
        --end;
    }
    text.truncate(end);
    qsizetype begin = 0;
    while (begin < end && text[begin] == QLatin1Char(' ')) {
        ++begin;
    }
    if (begin > 0) {
        text.remove(0, begin);
    }
}

// Sets `target` to the six characters, in its own storage when it has some.
void assignSix(QString &target, const char16_t *characters) {
    target.resize(6);
    QChar *data = target.data();
    for (int i = 0; i < 6; ++i) {
        data[i] = QChar(characters[i]);
    }
}

void makeEmpty(QString &target) {
    if (target.isDetached()) {
        target.truncate(0);
    } else {
        target.clear();
    }
}

// Moves the first locator of `text` into `locator`: a six-character one
// anywhere in the text comes first, else the first square, completed with
// "??". The locator is cut out and the rest trimmed. Both patterns are
// looked for in one pass. Returns false, with `locator` empty, when there
// is none.
bool takeLocator(QString &text, QString &locator) {
    const char16_t *chars = reinterpret_cast<const char16_t *>(text.utf16());
    const qsizetype size = text.size();
    qsizetype square = -1;
    for (qsizetype i = 0; i + 4 <= size; ++i) {
        if (!squareAt(chars + i)) {
            continue;
        }
        // The search takes any letter as subsquare; only the own-locator
        // check is strict about A-X.
        if (i + 6 <= size && within(chars[i + 4], u'A', u'Z') && within(chars[i + 5], u'A', u'Z')) {
            assignSix(locator, chars + i);
            text.remove(i, 6);
            trimBlanksInPlace(text);
            return true;
        }
        if (square < 0) {
            square = i;
        }
    }
    if (square < 0) {
        makeEmpty(locator);
        return false;
    }
    const char16_t completed[6] = {
        chars[square], chars[square + 1], chars[square + 2], chars[square + 3], u'?', u'?'};
    assignSix(locator, completed);
    text.remove(square, 4);
    trimBlanksInPlace(text);
    return true;
}

long long code(QChar c) {
    return c.unicode();
}

// The numeric value of one character: its digit, 0 for anything else.
double digitValue(QChar c) {
    return within(c, '0', '9') ? c.unicode() - u'0' : 0;
}

[[noreturn, gnu::cold, gnu::noinline]] void fault(RunTimeError::Code code) {
    throw RunTimeError(code);
}

// The value rounded down, as a 16-bit integer. Written as a comparison and
// a truncation: the conversion runs a dozen times per spot.
std::int16_t wholeToInt16(double value) {
    // Also false for NaN.
    if (!(value >= -32768.0 && value < 32768.0)) {
        fault(RunTimeError::Overflow);
    }
    const int truncated = static_cast<int>(value);
    return static_cast<std::int16_t>(value < truncated ? truncated - 1 : truncated);
}

char16_t characterOf(std::int16_t base, std::int16_t offset) {
    const std::int16_t value = add16(base, offset);
    if (value < 0 || value > 255) {
        fault(RunTimeError::InvalidArgument);
    }
    return static_cast<char16_t>(value);
}

} // namespace

bool Check_Locator(const QString &locator) {
    bool wrong = false;
    if (locator.size() < 4) {
        wrong = true;
    } else if (!within(locator[0], 'A', 'R') || !within(locator[1], 'A', 'R') ||
               !within(locator[2], '0', '9') || !within(locator[3], '0', '9')) {
        wrong = true;
    } else if (locator.size() == 4) {
        wrong = false;
    } else if (locator.size() == 6 && within(locator[4], 'A', 'X') &&
               within(locator[5], 'A', 'X')) {
        wrong = false;
    } else {
        wrong = true;
    }
    return wrong;
}

QString locatorProblem(const QString &locator) {
    if (locator.isEmpty()) {
        return QStringLiteral("No locator was given: 4 characters for a square (JO62) or 6 for "
                              "a subsquare (JO62QM).");
    }
    const QString quoted = QLatin1Char('"') + locator + QLatin1Char('"');
    if (locator.size() != 4 && locator.size() != 6) {
        return quoted + QStringLiteral(" has %1 characters; a locator has 4 (JO62) or 6 (JO62QM).")
                            .arg(locator.size());
    }
    const struct {
        qsizetype at;
        char from, to;
        const char *rule;
    } rules[] = {{0, 'A', 'R', "the first two characters are letters from A to R"},
                 {2, '0', '9', "the third and fourth characters are digits"},
                 {4, 'A', 'X', "the fifth and sixth characters are letters from A to X"}};
    for (const auto &rule : rules) {
        if (rule.at < locator.size() && (!within(locator[rule.at], rule.from, rule.to) ||
                                         !within(locator[rule.at + 1], rule.from, rule.to))) {
            return quoted + QStringLiteral(": ") + QLatin1String(rule.rule) + QLatin1Char('.');
        }
    }
    return QString();
}

void Find_Locators(SpotWork &work) {
    EvaluatedSpot &spot = work.spot;
    upperCaseInto(spot.comment, work.commentUpper);
    if (takeLocator(work.commentUpper, spot.locator1)) {
        takeLocator(work.commentUpper, spot.locator2);
    } else {
        makeEmpty(spot.locator2);
    }
}

void Locator_To_LatLon(QString &locator, double &latitude, double &longitude) {
    if (locator.endsWith(QLatin1String("??"))) {
        locator.truncate(4);
        locator += QLatin1String("LL");
    }
    const GeoPoint point = Locator_Position(locator);
    latitude = point.latitude;
    longitude = point.longitude;
}

GeoPoint Locator_Position(QStringView locator) {
    const bool square = locator.size() == 4 || (locator.size() >= 6 && locator.endsWith(u"??"));
    if (locator.size() < 6 && !square) {
        // The six characters are read one by one; the code of a missing one
        // is an invalid argument.
        throw RunTimeError(RunTimeError::InvalidArgument);
    }
    const QChar subLon = square ? QLatin1Char('L') : locator[4];
    const QChar subLat = square ? QLatin1Char('L') : locator[5];
    const std::int16_t lonField = toInt16(toInt16(toInt16(code(locator[0]) - 65) * 20LL) - 180LL);
    double longitude = lonField + 2.0 * digitValue(locator[2]);
    longitude += toInt16(code(subLon) - 65) / 12.0;
    longitude += 1.0 / 24.0;
    const std::int16_t latField = toInt16(toInt16(toInt16(code(locator[1]) - 65) * 10LL) - 90LL);
    double latitude = latField + digitValue(locator[3]);
    latitude += toInt16(code(subLat) - 65) / 24.0;
    latitude += 1.0 / 48.0;
    return GeoPoint{latitude, longitude};
}

QString Report_Locator(QStringView locator) {
    const qsizetype size = locator.size();
    if (size != 4 && size != 6 && size != 8 && size != 10) {
        return {};
    }
    QString upper = locator.toString().toUpper();
    const QChar *c = upper.constData();
    // Pairs: field A-R, square 0-9, subsquare A-X, extended square 0-9,
    // then A-X again.
    const char pairs[5][2] = {{'A', 'R'}, {'0', '9'}, {'A', 'X'}, {'0', '9'}, {'A', 'X'}};
    for (qsizetype i = 0; i < size; ++i) {
        const auto &range = pairs[i / 2];
        if (!within(c[i], range[0], range[1])) {
            return {};
        }
    }
    upper.truncate(std::min<qsizetype>(size, 6));
    return upper;
}

void LatLon_To_Locator(double latitude, double longitude, QString &locator) {
    double x = longitude + 180.0;
    double y = latitude + 90.0;
    char16_t result[6];
    std::int16_t n = wholeToInt16(x / 20.0);
    result[0] = characterOf(65, n);
    x -= 20.0 * n;
    n = wholeToInt16(x / 2.0);
    result[2] = characterOf(48, n);
    x -= 2.0 * n;
    n = wholeToInt16(x * 12.0);
    result[4] = characterOf(65, n);
    n = wholeToInt16(y / 10.0);
    result[1] = characterOf(65, n);
    y -= 10.0 * n;
    n = wholeToInt16(y);
    result[3] = characterOf(48, n);
    y -= n;
    n = wholeToInt16(y * 24.0);
    result[5] = characterOf(65, n);
    assignSix(locator, result);
}

QString LatLon_To_Locator(double latitude, double longitude) {
    QString locator;
    LatLon_To_Locator(latitude, longitude, locator);
    return locator;
}

} // namespace zkr
