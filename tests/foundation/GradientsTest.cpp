#include "velt/foundation/Gradients.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <limits>

#include "velt/platform/Error.hpp"

namespace velt {
namespace {

// No gradient below produces this colour: each runs between two of red, green
// and blue, so one channel is always 0.
constexpr OLE_COLOR kUntouched = 0x808080;
constexpr OLE_COLOR kRed = 0x0000FF;
constexpr OLE_COLOR kGreen = 0x00FF00;
constexpr OLE_COLOR kBlue = 0xFF0000;

Canvas blankCanvas(int32_t width, int32_t height) {
  Canvas canvas(width, height);
  canvas.BackColor(kUntouched);
  return canvas;
}

// Pixel (along, across) where "along" is the shading axis: rows when vertical.
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
    if (std::abs(static_cast<int>((actual >> shift) & 0xFF) - (a + (b - a) * step / steps)) > 1) {
      return ::testing::AssertionFailure()
             << std::hex << "0x" << actual << " is not step " << std::dec << step << "/" << steps;
    }
  }
  return ::testing::AssertionSuccess();
}

int32_t touchedPixels(const Canvas& canvas) {
  int32_t count = 0;
  for (int32_t y = 0; y < canvas.ScaleHeight(); ++y) {
    for (int32_t x = 0; x < canvas.ScaleWidth(); ++x)
      count += canvas.Point(x, y) != kUntouched;
  }
  return count;
}

TEST(GradientRect, StartColourAtTheStartEdgeAndTheLastPixelShortOfTheEnd) {
  for (bool vertical : {false, true}) {
    SCOPED_TRACE(vertical ? "vertical" : "horizontal");
    Canvas canvas = blankCanvas(12, 12);
    // 4 pixels along the shading axis from 2, 5 across it from 3.
    if (vertical) {
      GradientRect(canvas, 3, 2, 5, 4, ColorToVertexColor(kRed), ColorToVertexColor(kBlue),
                   kGradientVertical);
    } else {
      GradientRect(canvas, 2, 3, 4, 5, ColorToVertexColor(kRed), ColorToVertexColor(kBlue),
                   kGradientHorizontal);
    }
    EXPECT_EQ(touchedPixels(canvas), 20);
    for (int32_t across = 3; across < 8; ++across) {
      EXPECT_EQ(at(canvas, vertical, 2, across), kRed);
      for (int32_t step = 0; step < 4; ++step) {
        EXPECT_TRUE(isStep(at(canvas, vertical, 2 + step, across), kRed, kBlue, step, 4));
      }
      EXPECT_NE(at(canvas, vertical, 5, across), kBlue);
    }
  }
}

TEST(GradientRect, OtherModesPaintNothingAndFarEdgesBeyond32BitsOverflow) {
  Canvas canvas = blankCanvas(6, 6);
  const VertexColor red = ColorToVertexColor(kRed);
  GradientRect(canvas, 0, 0, 6, 6, red, red, 2);
  GradientRect(canvas, 0, 0, 6, 6, red, red, -1);
  EXPECT_EQ(touchedPixels(canvas), 0);
  const int32_t max = std::numeric_limits<int32_t>::max();
  for (auto [x, y, w, h] : {std::array{max, 0, 1, 1}, std::array{0, max - 1, 1, 2}}) {
    try {
      GradientRect(canvas, x, y, w, h, red, red, 0);
      ADD_FAILURE() << "no overflow";
    } catch (const Error& e) {
      EXPECT_EQ(e.Number(), errOverflow);
    }
  }
}

// Along the shading axis: where the box starts and its length, then the first
// pixel and the size of each half.
struct HalvesCase {
  int32_t start, extent;
  int32_t firstStart, firstSize;    // C1 -> C2
  int32_t secondStart, secondSize;  // C2 -> C3
};

TEST(GradientBox3, SecondHalfIsPlacedFromTheSurfaceEdge) {
  const HalvesCase cases[] = {{0, 10, 0, 6, 5, 5}, {0, 11, 0, 6, 6, 5}, {3, 17, 3, 9, 9, 8}};
  for (bool vertical : {true, false}) {
    for (const HalvesCase& c : cases) {
      SCOPED_TRACE(::testing::Message()
                   << (vertical ? "stacked " : "side by side ") << c.start << " " << c.extent);
      // 24 pixels along the shading axis, 8 across it; the box covers 2..5 across.
      Canvas canvas = vertical ? blankCanvas(8, 24) : blankCanvas(24, 8);
      if (vertical) {
        GradientBox3(canvas, 2, c.start, 4, c.extent, kRed, kGreen, kBlue, kBoxStacked);
      } else {
        GradientBox3(canvas, c.start, 2, c.extent, 4, kRed, kGreen, kBlue, kBoxSideBySide);
      }
      const int32_t end = c.secondStart + c.secondSize;
      EXPECT_EQ(touchedPixels(canvas), 4 * (end - c.firstStart));
      for (int32_t along = c.firstStart; along < end; ++along) {
        for (int32_t across = 2; across < 6; ++across) {
          const OLE_COLOR pixel = at(canvas, vertical, along, across);
          if (along < c.secondStart) {
            EXPECT_TRUE(isStep(pixel, kRed, kGreen, along - c.firstStart, c.firstSize)) << along;
          } else {
            EXPECT_TRUE(isStep(pixel, kGreen, kBlue, along - c.secondStart, c.secondSize)) << along;
          }
        }
      }
      EXPECT_EQ(at(canvas, vertical, c.firstStart, 2), kRed);
      EXPECT_EQ(at(canvas, vertical, c.secondStart, 2), kGreen);
    }
  }
}

TEST(GradientBox3, OtherDirectionsPaintNothingAndSystemColoursAreOutsideItsDomain) {
  for (int32_t direction : {0, 3, -1, 100}) {
    Canvas canvas = blankCanvas(10, 10);
    GradientBox3(canvas, 0, 0, 10, 10, kRed, kGreen, kBlue, direction);
    EXPECT_EQ(touchedPixels(canvas), 0) << "direction " << direction;
  }
  Canvas canvas = blankCanvas(4, 4);
  EXPECT_THROW(GradientBox3(canvas, 0, 0, 4, 4, kRed, kSystemColorFlag | 15, kBlue, kBoxStacked),
               Error);
}

TEST(GradientLine, OrientationTwoIsVerticalAnyOtherHorizontal) {
  for (int32_t orientation : {1, 0, 3, -2, kLineVertical}) {
    SCOPED_TRACE(orientation);
    const bool vertical = orientation == kLineVertical;
    Canvas canvas = blankCanvas(10, 10);
    // Starts 2 along the line, 1 across it.
    if (vertical) {
      GradientLine(canvas, 1, 2, 6, orientation, kRed, kGreen);
    } else {
      GradientLine(canvas, 2, 1, 6, orientation, kRed, kGreen);
    }
    EXPECT_EQ(touchedPixels(canvas), 6);
    EXPECT_EQ(at(canvas, vertical, 2, 1), kRed);
    for (int32_t step = 0; step < 6; ++step) {
      EXPECT_TRUE(isStep(at(canvas, vertical, 2 + step, 1), kRed, kGreen, step, 6));
    }
  }
}

}  // namespace
}  // namespace velt
