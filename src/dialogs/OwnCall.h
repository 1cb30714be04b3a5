#pragma once

#include <QString>

namespace zkr {

struct ProgramState;
class Platform;
class ProgramShutdown;

// Makes sure the own call sign is usable: asks for it (unless it is the
// web-only marker "!NOCALL!" or the short form "7ZKR"), rejects placeholders
// and too short entries, refuses the maker's call sign, and ends the program
// through `shutdown` when the user cancels the prompt. Returns the accepted
// call sign upper-cased; "7ZKR" becomes "QQ7ZKR".
QString Check_OwnCall(ProgramState &state, Platform &platform, ProgramShutdown &shutdown,
                      const QString &call, const QString &promptDefault);

// An own locator the path model can use: a square or a subsquare, in any case.
bool isOwnLocatorSet(const QString &ownLocator);
// The own locator as the evaluation takes it: upper case, or "" while there
// is none to use.
QString usableOwnLocator(const QString &ownLocator);
// The own-locator label: "LOC " and the locator, or what to do while there is
// none to use.
QString ownLocatorCaption(const QString &ownLocator);

} // namespace zkr
