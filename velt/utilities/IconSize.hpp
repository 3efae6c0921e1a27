#pragma once

#include <cstdint>

namespace velt {

// The size of an extracted icon: 16 x 16 for SmallIcon; any other value,
// LargeIcon among them, is 32 x 32.
enum IconSize : int32_t {
  LargeIcon = 0,
  SmallIcon = 1,
};

}  // namespace velt
