#pragma once

// Pixel reads for control tests: colours as OLE colours, the platform's
// gradient formula, and bounding boxes of ink.

#include <algorithm>
#include <climits>
#include <cstdint>
#include <memory>
#include <string>

#include "velt/platform/Canvas.hpp"
#include "velt/platform/Font.hpp"
#include "velt/platform/Types.hpp"

namespace velt::test {

inline OLE_COLOR PixelAt(const Canvas& canvas, int32_t x, int32_t y) {
  return PixelToOle(canvas.PixelRGB(x, y));
}

// The rectangle-gradient colour `p` pixels from the start of a gradient
// `length` pixels long: each channel (from * (length - p) + to * p) / length,
// rounded down.
inline OLE_COLOR GradientAt(OLE_COLOR from, OLE_COLOR to, int32_t length, int32_t p) {
  OLE_COLOR result = 0;
  for (int shift = 0; shift < 24; shift += 8) {
    const int64_t a = (from >> shift) & 0xFF;
    const int64_t b = (to >> shift) & 0xFF;
    result |= static_cast<OLE_COLOR>((a * (length - p) + b * p) / length) << shift;
  }
  return result;
}

// Pixels [left, right) x [top, bottom); the default is the whole image.
struct Region {
  int32_t left = 0;
  int32_t top = 0;
  int32_t right = INT32_MAX;
  int32_t bottom = INT32_MAX;
};

// A bounding box with inclusive edges; right < left means nothing was found.
struct InkBox {
  int32_t left = INT32_MAX;
  int32_t top = INT32_MAX;
  int32_t right = -1;
  int32_t bottom = -1;
  bool Empty() const { return right < left; }
  bool operator==(const InkBox&) const = default;
};

// The box around the pixels of the region for which found(x, y) holds, and
// how many there are.
template <typename Found>
InkBox BoxWhere(const Canvas& image, Region region, Found found, int* count = nullptr) {
  InkBox box;
  int n = 0;
  const int32_t right = std::min(region.right, image.ScaleWidth());
  const int32_t bottom = std::min(region.bottom, image.ScaleHeight());
  for (int32_t y = std::max(0, region.top); y < bottom; ++y) {
    for (int32_t x = std::max(0, region.left); x < right; ++x) {
      if (!found(x, y)) continue;
      ++n;
      box = InkBox{std::min(box.left, x), std::min(box.top, y), std::max(box.right, x),
                   std::max(box.bottom, y)};
    }
  }
  if (count) *count = n;
  return box;
}

// Where two same-sized images differ.
inline InkBox DifferenceBox(const Canvas& image, const Canvas& background, Region region = {}) {
  return BoxWhere(image, region, [&](int32_t x, int32_t y) {
    return image.PixelRGB(x, y) != background.PixelRGB(x, y);
  });
}

// Where the image holds exactly the colour.
inline InkBox ColorBox(const Canvas& image, OLE_COLOR color, Region region = {}) {
  return BoxWhere(image, region,
                  [&](int32_t x, int32_t y) { return PixelAt(image, x, y) == color; });
}

inline int CountColor(const Canvas& image, OLE_COLOR color, Region region = {}) {
  int count = 0;
  BoxWhere(
      image, region, [&](int32_t x, int32_t y) { return PixelAt(image, x, y) == color; }, &count);
  return count;
}

// Where text printed at (0, 0) in the font leaves ink.
inline InkBox InkOfText(const std::shared_ptr<Font>& font, const std::string& text) {
  Canvas blank(200, 100);
  blank.Font(font);
  Canvas inked = blank;
  inked.ForeColor(0);
  inked.Print(text);
  return DifferenceBox(inked, blank);
}

}  // namespace velt::test
