#include "velt/platform/SystemColors.hpp"

#include <string>

#include "velt/platform/Error.hpp"

namespace velt {

namespace {

std::array<OLE_COLOR, SystemColors::kCount>& table() {
  static std::array<OLE_COLOR, SystemColors::kCount> colors = SystemColors::ClassicDefaults();
  return colors;
}

}  // namespace

std::array<OLE_COLOR, SystemColors::kCount> SystemColors::ClassicDefaults() {
  return {
      RGB(192, 192, 192),  // 0 scroll bar
      RGB(0, 128, 128),    // 1 desktop background
      RGB(0, 0, 128),      // 2 active caption
      RGB(128, 128, 128),  // 3 inactive caption
      RGB(192, 192, 192),  // 4 menu
      RGB(255, 255, 255),  // 5 window
      RGB(0, 0, 0),        // 6 window frame
      RGB(0, 0, 0),        // 7 menu text
      RGB(0, 0, 0),        // 8 window text
      RGB(255, 255, 255),  // 9 caption text
      RGB(192, 192, 192),  // 10 active border
      RGB(192, 192, 192),  // 11 inactive border
      RGB(128, 128, 128),  // 12 application workspace
      RGB(0, 0, 128),      // 13 highlight
      RGB(255, 255, 255),  // 14 highlight text
      RGB(192, 192, 192),  // 15 button face
      RGB(128, 128, 128),  // 16 button shadow
      RGB(128, 128, 128),  // 17 grey text
      RGB(0, 0, 0),        // 18 button text
      RGB(192, 192, 192),  // 19 inactive caption text
      RGB(255, 255, 255),  // 20 button highlight
      RGB(0, 0, 0),        // 21 3D dark shadow
      RGB(192, 192, 192),  // 22 3D light
      RGB(0, 0, 0),        // 23 tooltip text
      RGB(255, 255, 225),  // 24 tooltip background
      RGB(181, 181, 181),  // 25 alternate button face
      RGB(0, 0, 128),      // 26 hot-tracked item
      RGB(16, 132, 208),   // 27 active caption gradient
      RGB(181, 181, 181),  // 28 inactive caption gradient
      RGB(0, 0, 128),      // 29 menu highlight
      RGB(192, 192, 192),  // 30 menu bar
  };
}

OLE_COLOR SystemColors::Get(int32_t index) {
  if (index < 0 || index >= kCount) return 0;
  return table()[static_cast<size_t>(index)];
}

void SystemColors::Set(int32_t index, OLE_COLOR color) {
  if (index < 0 || index >= kCount)
    throw Error(errInvalidProcedureCall, "SystemColors.Set: index " + std::to_string(index) +
                                             " is outside 0 to " + std::to_string(kCount - 1));
  if (color & kSystemColorFlag)
    throw Error(errInvalidProcedureCall, "SystemColors.Set: entry " + std::to_string(index) +
                                             " must be a plain colour, not a system colour");
  table()[static_cast<size_t>(index)] = color;
}

void SystemColors::Reset() {
  table() = ClassicDefaults();
}

}  // namespace velt
