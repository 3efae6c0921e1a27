#pragma once

#include <cstdint>
#include <vector>

namespace velt {

class GlyphCache;

// A glyph placed on a shaped line: its pen position from the line's left edge
// and its offset above the baseline, in pixels.
struct PlacedGlyph {
  GlyphCache* cache = nullptr;
  uint32_t index = 0;  // glyph index in cache's face
  int32_t x = 0;
  int32_t y = 0;
};

// The smallest piece of a line that is laid out as a whole (a base with its
// marks, an emoji sequence, a ligature): code points [start, end) drawn
// between left and right.
struct ClusterBox {
  int32_t start = 0;
  int32_t end = 0;
  int32_t left = 0;
  int32_t right = 0;
  bool rightToLeft = false;
};

// A place the text cursor can stand: before the code point at `position`
// (or at the end of the line), at pixel x from the line's left edge.
struct CaretStop {
  int32_t position = 0;
  int32_t x = 0;
};

// One line shaped and reordered for display: glyphs and clusters left to right.
struct ShapedLine {
  std::vector<PlacedGlyph> glyphs;
  std::vector<ClusterBox> clusters;
  int32_t width = 0;
  int32_t length = 0;  // code points

  // The code point positions where the line may be cut (0 and length included),
  // ascending.
  std::vector<int32_t> Boundaries() const;
  // The last boundary at or before `characters` (0 when there is none).
  int32_t CutAtOrBefore(int32_t characters) const;
  // Every cursor position with its x, in visual order (left to right). A
  // position at the start of a cluster stands at that cluster's leading edge
  // (its left in left-to-right text, its right in right-to-left text); the end
  // of the line at the trailing edge of the logically last cluster.
  std::vector<CaretStop> CaretStops() const;
  // The cursor position whose x is nearest to x.
  int32_t CaretAt(int32_t x) const;
};

}  // namespace velt
