#include "Locators.h"

#include "Int16Arithmetic.h"
#include "ProgramState.h"
#include "RunTimeError.h"
#include "UpperCase.h"

#include <cmath>

namespace zkr {

namespace {

bool within(QChar c, char from, char to) {
    return c.unicode() >= static_cast<char16_t>(from) && c.unicode() <= static_cast<char16_t>(to);
}

bool squareAt(QStringView text, qsizetype i) {
    return within(text[i], 'A', 'R') && within(text[i + 1], 'A', 'R') &&
           within(text[i + 2], '0', '9') && within(text[i + 3], '0', '9');
}

bool locatorAt(QStringView text, qsizetype i, qsizetype length) {
    if (i + length > text.size() || !squareAt(text, i)) {
        return false;
    }
    // The search takes any letter as subsquare; only the own-locator check
    // is strict about A-X.
    return length == 4 || (within(text[i + 4], 'A', 'Z') && within(text[i + 5], 'A', 'Z'));
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

// Cuts the first locator of `length` characters out of `text` and trims
// what is left; "" when there is none.
QString cutLocator(QString &text, qsizetype length) {
    const QStringView view(text);
    for (qsizetype i = 0; i + length <= view.size(); ++i) {
        if (locatorAt(view, i, length)) {
            QString found = view.mid(i, length).toString();
            text.remove(i, length);
            trimBlanksInPlace(text);
            return found;
        }
    }
    return QString();
}

QString takeLocator(QString &text) {
    QString locator = cutLocator(text, 6);
    if (locator.isEmpty()) {
        locator = cutLocator(text, 4);
        if (!locator.isEmpty()) {
            locator += QLatin1String("??");
        }
    }
    return locator;
}

long long code(QChar c) {
    return c.unicode();
}

// The numeric value of one character: its digit, 0 for anything else.
double digitValue(QChar c) {
    return within(c, '0', '9') ? c.unicode() - u'0' : 0;
}

std::int16_t wholeToInt16(double value) {
    if (!std::isfinite(value)) {
        throw RunTimeError(RunTimeError::Overflow);
    }
    const double whole = std::floor(value);
    if (whole < -32768.0 || whole > 32767.0) {
        throw RunTimeError(RunTimeError::Overflow);
    }
    return static_cast<std::int16_t>(whole);
}

QChar characterOf(std::int16_t base, std::int16_t offset) {
    const std::int16_t value = add16(base, offset);
    if (value < 0 || value > 255) {
        throw RunTimeError(RunTimeError::InvalidArgument);
    }
    return QChar(static_cast<char16_t>(value));
}

} // namespace

bool Check_Locator(ProgramState &state, const QString &locator) {
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
    state.Locator_Wrong = wrong;
    return wrong;
}

void Find_Locators(ProgramState &state) {
    state.Comment_Upper = upperCase(state.Spot_Comment);
    state.Locator_1 = takeLocator(state.Comment_Upper);
    state.Locator_2 = state.Locator_1.isEmpty() ? QString() : takeLocator(state.Comment_Upper);
}

void Locator_To_LatLon(QString &locator, double &latitude, double &longitude) {
    if (locator.endsWith(QLatin1String("??"))) {
        locator = locator.left(4) + QLatin1String("LL");
    }
    if (locator.size() < 6) {
        // The six characters are read one by one; the code of a missing one
        // is an invalid argument.
        throw RunTimeError(RunTimeError::InvalidArgument);
    }
    const std::int16_t lonField = toInt16(toInt16(toInt16(code(locator[0]) - 65) * 20LL) - 180LL);
    longitude = lonField + 2.0 * digitValue(locator[2]);
    longitude += toInt16(code(locator[4]) - 65) / 12.0;
    longitude += 1.0 / 24.0;
    const std::int16_t latField = toInt16(toInt16(toInt16(code(locator[1]) - 65) * 10LL) - 90LL);
    latitude = latField + digitValue(locator[3]);
    latitude += toInt16(code(locator[5]) - 65) / 24.0;
    latitude += 1.0 / 48.0;
}

QString LatLon_To_Locator(double latitude, double longitude) {
    double x = longitude + 180.0;
    double y = latitude + 90.0;
    QChar result[6];
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
    return QString(result, 6);
}

} // namespace zkr
