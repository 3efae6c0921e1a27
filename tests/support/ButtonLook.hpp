#pragma once

// The push-button chrome computed from the palette with the platform's
// gradient formula: the edges pixel by pixel, the face down its first column,
// and the four corners, which keep the face's colours.

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "support/Pixels.hpp"
#include "velt/foundation/ColorScheme.hpp"
#include "velt/platform/Canvas.hpp"

namespace velt::test {

// The face colour of row y: two stacked halves, FillTop -> FillMiddle over rows
// 0..h and FillMiddle -> FillBottom over rows H-h..H-1, h = H / 2 truncated.
inline OLE_COLOR FaceRow(const ColorScheme& p, int32_t height, int32_t y) {
  const int32_t h = height / 2;
  if (y >= height - h) return GradientAt(p.FillMiddle, p.FillBottom, h, y - (height - h));
  return GradientAt(p.FillTop, p.FillMiddle, h + 1, y);
}

inline ::testing::AssertionResult HasButtonChrome(const Canvas& canvas, const ColorScheme& p) {
  const int32_t w = canvas.ScaleWidth();
  const int32_t h = canvas.ScaleHeight();
  std::ostringstream errors;
  int count = 0;
  auto check = [&](const char* what, int32_t x, int32_t y, OLE_COLOR expected) {
    const OLE_COLOR actual = PixelAt(canvas, x, y);
    if (actual == expected) return;
    if (++count <= 5)
      errors << what << " (" << x << "," << y << ") is 0x" << std::hex << actual << ", expected 0x"
             << expected << std::dec << "; ";
  };
  for (int32_t x = 1; x <= w - 2; ++x) {
    check("top edge", x, 0, GradientAt(p.EdgeLight, p.EdgeMid, w - 2, x - 1));
    check("bottom edge", x, h - 1, p.EdgeDark);
  }
  for (int32_t y = 1; y <= h - 2; ++y) {
    check("left edge", 0, y, GradientAt(p.EdgeLight, p.EdgeDark, h - 2, y - 1));
    check("right edge", w - 1, y, GradientAt(p.EdgeMid, p.EdgeDark, h - 2, y - 1));
    check("face", 1, y, FaceRow(p, h, y));
  }
  check("top-left corner", 0, 0, FaceRow(p, h, 0));
  check("top-right corner", w - 1, 0, FaceRow(p, h, 0));
  check("bottom-left corner", 0, h - 1, FaceRow(p, h, h - 1));
  check("bottom-right corner", w - 1, h - 1, FaceRow(p, h, h - 1));
  if (count == 0) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << count << " wrong pixels: " << errors.str();
}

// Whether `actual` is `bare` with the caption printed once at (x, y) in the
// colour: the caption's place and colour checked pixel for pixel.
inline ::testing::AssertionResult IsFaceWithCaption(const Canvas& actual, const Canvas& bare,
                                                    const std::string& caption, float x, float y,
                                                    OLE_COLOR color) {
  Canvas expected = bare;
  expected.Font(actual.Font());
  expected.ForeColor(color);
  expected.CurrentX(x);
  expected.CurrentY(y);
  expected.Print(caption);
  const InkBox wrong = DifferenceBox(actual, expected);
  if (wrong.Empty()) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << "pixels differ in (" << wrong.left << "," << wrong.top
                                       << ")-(" << wrong.right << "," << wrong.bottom << ")";
}

}  // namespace velt::test
