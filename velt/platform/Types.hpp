#pragma once

#include <cstdint>

namespace velt {

// A colour as the controls exchange it: 0x00BBGGRR, red in the low byte. With the
// high bit set the low 31 bits name a system colour (see SystemColors).
using OLE_COLOR = uint32_t;

constexpr OLE_COLOR kSystemColorFlag = 0x80000000u;

constexpr OLE_COLOR RGB(uint8_t red, uint8_t green, uint8_t blue) {
  return static_cast<OLE_COLOR>(red) | (static_cast<OLE_COLOR>(green) << 8) |
         (static_cast<OLE_COLOR>(blue) << 16);
}

// Pixels in images are 0x00RRGGBB (0xAARRGGBB in pictures): the order SDL, PNG
// writers and cairo agree on. These two convert between that and OLE colours.
constexpr uint32_t OleToPixel(OLE_COLOR c) {
  return ((c & 0xFFu) << 16) | (c & 0xFF00u) | ((c >> 16) & 0xFFu);
}
constexpr OLE_COLOR PixelToOle(uint32_t p) {
  return ((p >> 16) & 0xFFu) | (p & 0xFF00u) | ((p & 0xFFu) << 16);
}

// The screen's resolution the library assumes unless a host reports another.
constexpr int32_t kDefaultTwipsPerPixel = 15;

}  // namespace velt
