#pragma once

#include <cstdint>

namespace velt {

// The visual states of a frame control. The numbers are part of the public
// contract (controls and tools exchange them as plain integers), so they stay
// fixed; the names only make the code readable.
enum ButtonState : int32_t {
  bsIdle = 0,      // normal; what a disabled control becomes when enabled again
  bsHover = 1,     // pointer over the control, no button held
  bsPressed = 2,   // left button held over the control, or Enter/Space held
  bsDisabled = 3,  // the control's Enabled is False
  bsNormal = 4,    // resting state: after creation, after the pointer left, after a key release
};

}  // namespace velt
