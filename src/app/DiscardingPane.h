#pragma once

#include "Pane.h"

namespace zkr {

// A pane that keeps nothing. The headless run has no display panes of its
// own: what it shows are the working panes as of the last display refresh,
// so text printed straight into the display is dropped here and shows from
// the working panes, which always get the same text.
class DiscardingPane : public Pane {
public:
    void insertColored(QStringView, std::uint32_t) override {}
    int caret() const override { return 0; }
    void setCaret(int) override {}
    void clear() override {}
};

} // namespace zkr
