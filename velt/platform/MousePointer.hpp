#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace velt {

class Picture;

// The shapes of the mouse pointer, in the classic numbering: what a control's
// MousePointer holds. mpCustom shows the control's MouseIcon. mpHand is no
// MousePointer value: a control shows it of its own accord (a hyperlink).
enum MousePointerShape : int16_t {
  mpDefault = 0,  // whatever the control under the pointer shows of its own accord
  mpArrow = 1,
  mpCross = 2,
  mpIBeam = 3,
  mpIcon = 4,
  mpSize = 5,
  mpSizeNESW = 6,
  mpSizeNS = 7,
  mpSizeNWSE = 8,
  mpSizeWE = 9,
  mpUpArrow = 10,
  mpHourglass = 11,
  mpNoDrop = 12,
  mpArrowHourglass = 13,
  mpArrowQuestion = 14,
  mpSizeAll = 15,
  mpHand = 16,
  mpCustom = 99,
};

// Error 380 naming `where` unless the value is a MousePointer value (0..15, 99).
int16_t CheckedMousePointer(int16_t value, const std::string& where);

// What the pointer looks like: a shape, and for mpCustom the picture shown
// (its hot spot at its centre). No picture with mpCustom shows the arrow.
struct PointerLook {
  int16_t Shape = mpDefault;
  std::shared_ptr<const Picture> Icon;

  bool operator==(const PointerLook& other) const = default;
};

}  // namespace velt
