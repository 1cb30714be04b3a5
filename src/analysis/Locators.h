#pragma once

#include <QString>
#include <QStringView>

namespace zkr {

struct SpotWork;

// A position on the earth in degrees, north and east positive.
struct GeoPoint {
    double latitude = 0;
    double longitude = 0;
};

// True when `locator` is WRONG: a Maidenhead locator of 4 or 6 characters
// is checked by character code (so lower case fails): field A-R, square
// 0-9, subsquare A-X.
bool Check_Locator(const QString &locator);

// What is wrong with `locator` (upper case) as a locator, in a sentence for
// the user; "" exactly when Check_Locator accepts it.
QString locatorProblem(const QString &locator);

// Finds the locators of the spot: the scratch's upper-cased comment is made
// from the spot's comment, and the first two locators in it are cut out
// (each cut is followed by a trim) into locator1 and locator2. A
// six-character locator (A-R A-R 0-9 0-9 A-Z A-Z) anywhere in the text is
// taken before a four-character one; a four-character locator is completed
// with "??".
void Find_Locators(SpotWork &work);

// Centre of the locator's subsquare in degrees (north and east positive).
// A locator ending in "??" is first rewritten, in the caller's text, to its
// square followed by "LL": a square alone is taken at the centre of its
// subsquare LL, slightly south-west of the square's centre. Throws
// RunTimeError(InvalidArgument) for a locator shorter than six characters
// (after that rewrite), and RunTimeError(Overflow) for character codes that
// overflow the 16-bit field arithmetic.
void Locator_To_LatLon(QString &locator, double &latitude, double &longitude);
// The same without the rewrite: a square followed by "??", or a square
// alone (an own locator of four characters), is read as the square followed
// by "LL", the way a spot's square is.
GeoPoint Locator_Position(QStringView locator);

// A locator of 4, 6, 8 or 10 characters in any case, as reception reports
// carry them, cut to what the path model uses: the upper-cased square, or
// square and subsquare. Empty when it is no locator.
QString Report_Locator(QStringView locator);

// The six-character locator of a position. Throws RunTimeError(Overflow)
// for a position that is not a finite number and RunTimeError
// (InvalidArgument) when a character code falls outside 0-255.
QString LatLon_To_Locator(double latitude, double longitude);
// The same into `locator`, reusing its storage.
void LatLon_To_Locator(double latitude, double longitude, QString &locator);

} // namespace zkr
