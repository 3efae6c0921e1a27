// The canvas's fast paths against plain references: ramps of every length the
// float arithmetic must get exactly right, and the recorded erase against a
// canvas that writes every erase out at once.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "velt/platform/Canvas.hpp"
#include "velt/platform/Picture.hpp"

namespace velt {
namespace {

uint32_t channelAt(uint16_t c0, uint16_t c1, int64_t len, int64_t p) {
  return static_cast<uint32_t>((int64_t{c0} * (len - p) + int64_t{c1} * p) / (len * 256));
}

struct RampCase {
  uint16_t from[3];
  uint16_t to[3];
};

// Colours at the ends of the range, equal ends, steps of one, and 16-bit
// channels that are not whole 8-bit values.
const RampCase kRamps[] = {
    {{0, 0, 0}, {0xFF00, 0xFF00, 0xFF00}},
    {{0xFF00, 0xFF00, 0xFF00}, {0, 0, 0}},
    {{0x0100, 0xFE00, 0x8000}, {0xFE00, 0x0100, 0x8000}},
    {{0x8000, 0x8100, 0x7F00}, {0x8100, 0x8000, 0x8000}},
    {{0x1234, 0xFFFF, 0x0001}, {0xFEDC, 0x0000, 0x8080}},
};

// Every pixel of a one-pixel-thick ramp of each length, both directions.
TEST(CanvasRampTest, EveryPositionMatchesTheChannelFormula) {
  const int32_t lengths[] = {1,  2,   3,   5,   6,    7,     15,    16,   17,
                             98, 255, 256, 257, 4095, 32767, 32768, 40000};
  for (const RampCase& ramp : kRamps) {
    for (const int32_t len : lengths) {
      for (const uint32_t mode : {GRADIENT_FILL_RECT_H, GRADIENT_FILL_RECT_V}) {
        const bool horizontal = mode == GRADIENT_FILL_RECT_H;
        Canvas canvas(horizontal ? len : 1, horizontal ? 1 : len);
        const TriVertex vertices[] = {
            {0, 0, ramp.from[0], ramp.from[1], ramp.from[2], 0},
            {horizontal ? len : 1, horizontal ? 1 : len, ramp.to[0], ramp.to[1], ramp.to[2], 0}};
        const GradientRectMesh mesh{0, 1};
        ASSERT_TRUE(canvas.GradientFill(vertices, {&mesh, 1}, mode));
        const uint32_t* pixels = canvas.Pixels();
        for (int32_t p = 0; p < len; ++p) {
          const uint32_t want = channelAt(ramp.from[0], ramp.to[0], len, p) << 16 |
                                channelAt(ramp.from[1], ramp.to[1], len, p) << 8 |
                                channelAt(ramp.from[2], ramp.to[2], len, p);
          if (pixels[p] != want) {
            FAIL() << "length " << len << (horizontal ? " horizontal" : " vertical") << " from "
                   << std::hex << ramp.from[0] << " at " << std::dec << p << ": " << std::hex
                   << pixels[p] << ", want " << want;
          }
        }
      }
    }
  }
}

// A canvas that is asked for its pixels after every step never keeps an erase
// pending; the same steps on a canvas left alone must give the same image.
class Painter {
 public:
  explicit Painter(uint32_t seed) : random_(seed) {}

  void Step(Canvas& canvas) {
    const int32_t w = canvas.ScaleWidth();
    const int32_t h = canvas.ScaleHeight();
    switch (pick(9)) {
      case 0:
        canvas.Clear();
        break;
      case 1:
        canvas.BackColor(color());
        break;
      case 2:
        canvas.FillRect(pick(3) == 0 ? 0 : pick(w), pick(h), pick(3) == 0 ? w : pick(w), pick(h),
                        color());
        break;
      case 3: {  // full width from the top, the bottom, or in the middle
        const int32_t top = pick(3) == 0 ? 0 : pick(h);
        const int32_t bottom = pick(3) == 0 ? h : top + pick(h);
        gradient(canvas, 0, top, w, bottom);
        break;
      }
      case 4:
        gradient(canvas, pick(w), pick(h), pick(w), pick(h));
        break;
      case 5:
        canvas.Line(pick(w), pick(h), pick(w), pick(h), color());
        break;
      case 6:
        canvas.PSet(pick(w), pick(h), color());
        break;
      case 7: {
        canvas.ForeColor(color());
        canvas.CurrentX(static_cast<float>(pick(w)));
        canvas.CurrentY(static_cast<float>(pick(h)));
        canvas.Print("Ag");
        break;
      }
      default: {
        std::vector<uint32_t> argb(9, 0x80FF0000u);
        canvas.DrawPicture(Picture(3, 3, argb), pick(w), pick(h));
        break;
      }
    }
  }

 private:
  int32_t pick(int32_t n) { return static_cast<int32_t>(random_() % static_cast<uint32_t>(n + 1)); }
  OLE_COLOR color() { return random_() & 0xFFFFFFu; }
  void gradient(Canvas& canvas, int32_t x0, int32_t y0, int32_t x1, int32_t y1) {
    const OLE_COLOR a = color();
    const OLE_COLOR b = color();
    const TriVertex vertices[] = {
        {x0, y0, static_cast<uint16_t>((a & 0xFF) << 8), static_cast<uint16_t>(a & 0xFF00),
         static_cast<uint16_t>((a >> 8) & 0xFF00), 0},
        {x1, y1, static_cast<uint16_t>((b & 0xFF) << 8), static_cast<uint16_t>(b & 0xFF00),
         static_cast<uint16_t>((b >> 8) & 0xFF00), 0}};
    const GradientRectMesh mesh{1, 0};
    canvas.GradientFill(vertices, {&mesh, 1}, pick(1));
  }

  std::mt19937 random_;
};

TEST(CanvasEraseTest, ARecordedEraseDrawsLikeAnImmediateOne) {
  for (uint32_t seed = 1; seed <= 200; ++seed) {
    Canvas lazy(23, 17);
    Canvas eager(23, 17);
    Painter lazyPainter(seed);
    Painter eagerPainter(seed);
    for (int step = 0; step < 12; ++step) {
      lazyPainter.Step(lazy);
      eagerPainter.Step(eager);
      eager.Pixels();  // writes any pending erase out
      for (int32_t y = 0; y < 17; ++y)
        for (int32_t x = 0; x < 23; ++x)
          ASSERT_EQ(lazy.PixelRGB(x, y), eager.PixelRGB(x, y))
              << "seed " << seed << " step " << step << " at " << x << "," << y;
    }
    const Canvas& view = lazy;  // compositing reads through a const canvas
    const std::vector<uint32_t> lazyImage(view.Pixels(), view.Pixels() + 23 * 17);
    const std::vector<uint32_t> eagerImage(eager.Pixels(), eager.Pixels() + 23 * 17);
    ASSERT_EQ(lazyImage, eagerImage) << "seed " << seed;
  }
}

// Runs of opaque and clear pixels go four at a time, the rest by the formula:
// every pixel must come out as if blended on its own, at every offset.
TEST(CanvasPictureTest, BlendedPicturesMatchThePerPixelFormula) {
  std::mt19937 random(7);
  std::vector<uint32_t> argb(23 * 3);
  for (size_t i = 0; i < argb.size(); ++i) {
    const uint32_t kinds[] = {0xFF, 0xFF, 0, 0, static_cast<uint32_t>(random() & 0xFF)};
    const bool hardRow = i / 23 == 1;  // only opaque and clear: the masked-copy row
    argb[i] =
        kinds[random() % (hardRow ? 4 : 5)] << 24 | static_cast<uint32_t>(random() & 0xFFFFFF);
  }
  const Picture picture(23, 3, argb);
  for (int32_t x : {-5, 0, 3}) {
    Canvas canvas(24, 3);
    canvas.BackColor(RGB(0x40, 0x80, 0xC0));
    canvas.DrawPicture(picture, x, 0);
    for (int32_t y = 0; y < 3; ++y) {
      for (int32_t px = std::max(0, x); px < 24 && px - x < 23; ++px) {
        const uint32_t src = argb[y * 23 + (px - x)];
        const uint32_t alpha = src >> 24;
        uint32_t want = 0;
        for (int shift = 0; shift <= 16; shift += 8) {
          const uint32_t d = (0x4080C0u >> shift) & 0xFF;  // the back colour as a pixel
          want |= (((src >> shift) & 0xFF) * alpha + d * (255 - alpha) + 127) / 255 << shift;
        }
        ASSERT_EQ(canvas.PixelRGB(px, y), want) << "x " << x << " at " << px << "," << y;
      }
    }
  }
}

}  // namespace
}  // namespace velt
