#include "velt/foundation/Gradients.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <limits>

#include "support/ExpectError.hpp"

namespace velt {
namespace {

// No gradient below produces this colour: each runs between two of red, green
// and blue, so one channel is always 0.
constexpr OLE_COLOR kUntouched = 0x808080;
constexpr OLE_COLOR kRed = 0x0000FF;
constexpr OLE_COLOR kGreen = 0x00FF00;
constexpr OLE_COLOR kBlue = 0xFF0000;

// A canvas `along` pixels on the shading axis and `across` on the other.
Canvas blankCanvas(bool vertical, int32_t along, int32_t across) {
  Canvas canvas(vertical ? across : along, vertical ? along : across);
  canvas.BackColor(kUntouched);
  return canvas;
}

OLE_COLOR at(const Canvas& canvas, bool vertical, int32_t along, int32_t across) {
  return static_cast<OLE_COLOR>(vertical ? canvas.Point(across, along)
                                         : canvas.Point(along, across));
}

// Step `step` of `steps` from one colour to the other, within one unit for the
// rounding of 16-bit channels.
::testing::AssertionResult isStep(OLE_COLOR actual, OLE_COLOR from, OLE_COLOR to, int step,
                                  int steps) {
  for (int shift = 0; shift < 24; shift += 8) {
    const int a = static_cast<int>((from >> shift) & 0xFF);
    const int b = static_cast<int>((to >> shift) & 0xFF);
    if (std::abs(static_cast<int>((actual >> shift) & 0xFF) - (a + (b - a) * step / steps)) > 1)
      return ::testing::AssertionFailure()
             << std::hex << "0x" << actual << " is not step " << std::dec << step << "/" << steps;
  }
  return ::testing::AssertionSuccess();
}

// A run from `along` on the shading axis, over the `width` pixels from `first`
// on the other: the start colour, then step k of `steps` for `count` pixels.
void expectRun(const Canvas& canvas, bool vertical, int32_t along, int32_t first, int32_t width,
               OLE_COLOR from, OLE_COLOR to, int32_t steps, int32_t count) {
  for (int32_t across = first; across < first + width; ++across) {
    EXPECT_EQ(at(canvas, vertical, along, across), from);
    for (int32_t k = 0; k < count; ++k)
      EXPECT_TRUE(isStep(at(canvas, vertical, along + k, across), from, to, k, steps)) << k;
  }
}

int32_t touchedPixels(const Canvas& canvas) {
  int32_t count = 0;
  for (int32_t y = 0; y < canvas.ScaleHeight(); ++y)
    for (int32_t x = 0; x < canvas.ScaleWidth(); ++x)
      count += canvas.Point(x, y) != kUntouched;
  return count;
}

// The last pixel stops one step short of the end colour.
TEST(GradientRect, StartColourAtTheStartEdgeAndOtherModesPaintNothing) {
  const VertexColor red = ColorToVertexColor(kRed);
  for (bool vertical : {false, true}) {
    SCOPED_TRACE(vertical ? "vertical" : "horizontal");
    Canvas canvas = blankCanvas(vertical, 12, 12);
    // 4 pixels along the shading axis from 2, 5 across it from 3.
    if (vertical)
      GradientRect(canvas, 3, 2, 5, 4, red, ColorToVertexColor(kBlue), kGradientVertical);
    else
      GradientRect(canvas, 2, 3, 4, 5, red, ColorToVertexColor(kBlue), kGradientHorizontal);
    EXPECT_EQ(touchedPixels(canvas), 20);
    expectRun(canvas, vertical, 2, 3, 5, kRed, kBlue, 4, 4);
  }
  Canvas canvas = blankCanvas(false, 6, 6);
  GradientRect(canvas, 0, 0, 6, 6, red, red, 2);
  GradientRect(canvas, 0, 0, 6, 6, red, red, -1);
  EXPECT_EQ(touchedPixels(canvas), 0);
  const int32_t max = std::numeric_limits<int32_t>::max();  // far edges beyond 32 bits
  for (auto [x, y, w, h] : {std::array{max, 0, 1, 1}, std::array{0, max - 1, 1, 2}})
    test::errorOf(errOverflow, [&] { GradientRect(canvas, x, y, w, h, red, red, 0); });
}

TEST(GradientBox3, SecondHalfIsPlacedFromTheSurfaceEdgeAndOtherDirectionsPaintNothing) {
  // Along the shading axis: the box's start and length, then the first pixel and
  // size of each half (C1 -> C2, C2 -> C3) on a surface 24 pixels long; the
  // second half is drawn over the first.
  const struct {
    int32_t start, extent, firstStart, firstSize, secondStart, secondSize;
  } cases[] = {{0, 10, 0, 6, 5, 5}, {0, 11, 0, 6, 6, 5}, {3, 17, 3, 9, 9, 8}};
  for (bool vertical : {true, false}) {
    for (const auto& c : cases) {
      SCOPED_TRACE(::testing::Message() << vertical << " " << c.start << " " << c.extent);
      // 8 pixels across the shading axis; the box covers 2..5 of them.
      Canvas canvas = blankCanvas(vertical, 24, 8);
      if (vertical)
        GradientBox3(canvas, 2, c.start, 4, c.extent, kRed, kGreen, kBlue, kBoxStacked);
      else
        GradientBox3(canvas, c.start, 2, c.extent, 4, kRed, kGreen, kBlue, kBoxSideBySide);
      EXPECT_EQ(touchedPixels(canvas), 4 * (c.secondStart + c.secondSize - c.firstStart));
      expectRun(canvas, vertical, c.firstStart, 2, 4, kRed, kGreen, c.firstSize,
                c.secondStart - c.firstStart);
      expectRun(canvas, vertical, c.secondStart, 2, 4, kGreen, kBlue, c.secondSize, c.secondSize);
    }
  }
  Canvas canvas = blankCanvas(false, 10, 10);
  for (int32_t direction : {0, 3, -1, 100})
    GradientBox3(canvas, 0, 0, 10, 10, kRed, kGreen, kBlue, direction);
  EXPECT_EQ(touchedPixels(canvas), 0);
  test::errorOf(errOverflow, [&] {  // system colours are outside its domain
    GradientBox3(canvas, 0, 0, 4, 4, kRed, kSystemColorFlag | 15, kBlue, kBoxStacked);
  });
}

TEST(GradientLine, OrientationTwoIsVerticalAnyOtherHorizontal) {
  for (int32_t orientation : {1, 0, 3, -2, kLineVertical}) {
    SCOPED_TRACE(orientation);
    const bool vertical = orientation == kLineVertical;
    Canvas canvas = blankCanvas(vertical, 10, 10);
    // Starts 2 along the line, 1 across it.
    GradientLine(canvas, vertical ? 1 : 2, vertical ? 2 : 1, 6, orientation, kRed, kGreen);
    EXPECT_EQ(touchedPixels(canvas), 6);
    expectRun(canvas, vertical, 2, 1, 1, kRed, kGreen, 6, 6);
  }
}

}  // namespace
}  // namespace velt
