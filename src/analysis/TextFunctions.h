#pragma once

#include <QString>
#include <QStringView>

namespace zkr {

// Text operations with the program's conventions: positions are 1-based and
// no substring operation ever fails.

// Up to `length` characters from position `start` (1-based); a start before
// 1 or beyond the end, or a negative length, gives "".
QString mid(QStringView text, int start, int length);
// From position `start` to the end.
QString mid(QStringView text, int start);
QString left(QStringView text, int length);
QString right(QStringView text, int length);
// 1-based position of `what` in `text` from position `start`, 0 when absent.
int inStr(QStringView text, QStringView what, int start = 1);
// Removes blanks (spaces only, not tabs) at both ends.
QString trimBlanks(QStringView text);

// The leading number of a text: blanks and tabs anywhere are skipped, an
// optional sign is read before the first digit, then digits with at most one
// decimal point; reading stops at the first other character. No number
// gives 0. Throws RunTimeError(Overflow) when the number is beyond a double.
double leadingNumber(QStringView text);

// Rounds half to even, as the integer conversion of the settings does.
double roundHalfEven(double value);

} // namespace zkr
