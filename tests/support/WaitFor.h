#pragma once

#include <QElapsedTimer>
#include <QTest>

#include <functional>

namespace zkr::test {

// Lets events run until the condition holds or `ms` milliseconds have
// passed; says whether it holds.
inline bool waitFor(const std::function<bool()> &condition, int ms = 10000) {
    QElapsedTimer clock;
    clock.start();
    while (!condition() && clock.elapsed() < ms) {
        QTest::qWait(5);
    }
    return condition();
}

} // namespace zkr::test
