#pragma once

#include "CliOptions.h"
#include "CliReplay.h"
#include "FuzzChecks.h"
#include "PaneOutput.h"

#include <QBuffer>
#include <QCoreApplication>

// A QCoreApplication for the whole fuzzing run, made on first use.
inline void ensureApplication() {
    static int argc = 1;
    static char name[] = "fuzz";
    static char *argv[] = {name, nullptr};
    static QCoreApplication app(argc, argv);
}

// The options of a run, taken from the first byte of the input.
inline zkr::CliOptions fuzzOptions(std::uint8_t flags, bool webPage) {
    zkr::CliOptions options;
    options.ownLocator = (flags & 8) != 0 ? QStringLiteral("KP20LL") : QStringLiteral("JO62QM");
    options.ownCall = QStringLiteral("DL1ABC");
    options.esSpotsOnly = (flags & 1) != 0;
    options.over144Only = (flags & 2) != 0;
    options.evalAll = (flags & 4) != 0;
    options.webPage = webPage;
    return options;
}

// Whatever went in, each pane's bookkeeping must agree with its text, and
// both output forms must be writable.
inline void checkPanes(const zkr::CliReplay &replay) {
    for (const zkr::MemoryPane &pane : replay.panes()) {
        checkPane(pane);
    }
    QBuffer out;
    out.open(QIODevice::WriteOnly);
    zkr::Write_PanesText(out, replay.panes());
    zkr::Write_PanesJson(out, replay.panes(), replay.messages());
}
