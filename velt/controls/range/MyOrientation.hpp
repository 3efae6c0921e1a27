#pragma once

#include <cstdint>

namespace velt {

// Which way a range control runs: the progress bar, the scroll bar and the
// slider share it. The values are stored in property bags, so they stay fixed;
// a stored value outside them is kept as it is and each control says how it
// draws one.
enum MyOrientation : int32_t {
  pbHorizontal = 1,
  pbVertical = 2,
};

}  // namespace velt
