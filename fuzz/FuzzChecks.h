#pragma once

#include "Locators.h"
#include "MemoryPane.h"

#include <cstdint>
#include <cstdlib>

// A broken invariant stops the run, so that the fuzzer keeps the input.
inline void check(bool condition) {
    if (!condition) {
        std::abort();
    }
}

// A locator as reports carry it: four or six characters the path model takes.
inline bool wholeLocator(const QString &locator) {
    return !locator.isEmpty() && zkr::Report_Locator(locator) == locator;
}

// A pane's bookkeeping must agree with its text.
inline void checkPane(const zkr::MemoryPane &pane) {
    check(pane.length() == pane.text().size() && pane.lineCount() <= pane.maxLines());
    for (std::int64_t i = 0; i < pane.lineCount(); ++i) {
        std::int64_t covered = 0;
        for (const zkr::ColourRun &run : pane.line(i).runs) {
            check(run.length > 0);
            covered += run.length;
        }
        check(covered == pane.line(i).text.size());
    }
}
