#pragma once

// Pixel expectations shared by the range-control tests: the colour of a
// two-half gradient box at a position, and runs of one colour along a line.

#include <cstdint>
#include <utility>
#include <vector>

#include "support/Pixels.hpp"
#include "velt/platform/Canvas.hpp"

namespace velt::test {

// The colour at `pos` (a row for stacked halves, a column for halves side by
// side) of a GradientBox3 that starts at `start` and is `extent` long across
// its halves: c1 -> c2 from the start over h + 1 pixels, then c2 -> c3 over
// the last h pixels counted back from `extent` (h = extent / 2), the second
// half painted over the first.
inline OLE_COLOR BoxAt(OLE_COLOR c1, OLE_COLOR c2, OLE_COLOR c3, int32_t start, int32_t extent,
                       int32_t pos) {
  const int32_t h = extent / 2;
  if (pos >= extent - h) return GradientAt(c2, c3, h, pos - (extent - h));
  return GradientAt(c1, c2, h + 1, pos - start);
}

using Spans = std::vector<std::pair<int32_t, int32_t>>;  // inclusive [first, last]

// Runs of the exact colour along row `fixed` (horizontal) or column `fixed`.
inline Spans RunsOf(const Canvas& image, OLE_COLOR color, int32_t fixed, bool alongColumn) {
  Spans runs;
  const int32_t n = alongColumn ? image.ScaleHeight() : image.ScaleWidth();
  for (int32_t i = 0; i < n; ++i) {
    const OLE_COLOR c = alongColumn ? PixelAt(image, fixed, i) : PixelAt(image, i, fixed);
    if (c != color) continue;
    if (!runs.empty() && runs.back().second == i - 1)
      runs.back().second = i;
    else
      runs.emplace_back(i, i);
  }
  return runs;
}

}  // namespace velt::test
