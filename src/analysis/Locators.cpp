#include "Locators.h"

#include "ProgramState.h"

namespace zkr {

namespace {
bool within(QChar c, char from, char to) {
    return c.unicode() >= static_cast<char16_t>(from) && c.unicode() <= static_cast<char16_t>(to);
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

} // namespace zkr
