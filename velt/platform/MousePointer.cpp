#include "velt/platform/MousePointer.hpp"

#include "velt/platform/Error.hpp"

namespace velt {

int16_t CheckedMousePointer(int16_t value, const std::string& where) {
  if ((value >= mpDefault && value <= mpSizeAll) || value == mpCustom) return value;
  throw Error(errInvalidPropertyValue,
              where + ": mouse pointer " + std::to_string(value) + " is not 0..15 or 99");
}

}  // namespace velt
