#pragma once

#include <array>
#include <cstdint>

#include "velt/platform/Types.hpp"

namespace velt {

// The system colour table: index -> plain colour, with the classic desktop
// defaults (COLOR_BTNFACE 15 = 0xC0C0C0 ...). A host may replace entries, e.g.
// to follow a desktop theme. Indexes outside the table read as black, as the
// classic lookup does.
class SystemColors {
 public:
  static constexpr int32_t kCount = 31;

  static OLE_COLOR Get(int32_t index);
  static void Set(int32_t index, OLE_COLOR color);  // error 5 for an index outside 0..30
  static void Reset();                              // back to the classic defaults

  // A colour with the system flag translated; a plain colour is returned as it is.
  static OLE_COLOR Resolve(OLE_COLOR color) {
    return (color & kSystemColorFlag) ? Get(static_cast<int32_t>(color & ~kSystemColorFlag))
                                      : color;
  }

  static std::array<OLE_COLOR, kCount> ClassicDefaults();
};

// Indexes the library itself uses.
enum SystemColorIndex : int32_t {
  COLOR_WINDOW = 5,
  COLOR_WINDOWTEXT = 8,
  COLOR_HIGHLIGHT = 13,
  COLOR_HIGHLIGHTTEXT = 14,
  COLOR_BTNFACE = 15,
  COLOR_BTNSHADOW = 16,
  COLOR_GRAYTEXT = 17,
  COLOR_BTNTEXT = 18,
  COLOR_BTNHIGHLIGHT = 20,
  COLOR_3DDKSHADOW = 21,
  COLOR_3DLIGHT = 22,
};

}  // namespace velt
