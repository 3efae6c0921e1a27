#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "velt/platform/GlyphCache.hpp"

namespace velt {

// The library's own symbol font. Its digits 3, 4, 5 and 6 are solid triangles
// pointing left, right, up and down, drawn crisp and symmetric so the small
// arrow buttons look the same at every size; every other character comes from
// the default sans-serif face, whose metrics the font shares.
class SymbolFont {
 public:
  static constexpr const char* kName = "Webdings";

  static bool IsSymbolFont(std::string_view familyName);  // any letter case
  static bool HasGlyph(char32_t codePoint);
  // A triangle glyph for an em of pixelSize pixels: its coverage is appended to
  // coverage, and the returned glyph points at it.
  static Glyph Render(char32_t codePoint, int32_t pixelSize, std::vector<uint8_t>& coverage);
};

}  // namespace velt
