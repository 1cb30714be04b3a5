#pragma once

#include <array>

namespace zkr {

class Pane;

// The four working panes of the result output: 0 all spots, 1 the VHF range
// (30-300 MHz), 2 the 2 m band (144-148 MHz), 3 Es spots. All four must be
// set.
using ResultPanes = std::array<Pane *, 4>;

} // namespace zkr
