#include "velt/platform/Canvas.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "support/ExpectError.hpp"
#include "velt/platform/SystemColors.hpp"

namespace velt {
namespace {

constexpr uint32_t kPaper = 0x123456;  // background pixel no drawing produces by accident

TriVertex vertex(int32_t x, int32_t y, uint32_t rgb) {
  return {x,
          y,
          static_cast<uint16_t>(((rgb >> 16) & 0xFF) << 8),
          static_cast<uint16_t>(((rgb >> 8) & 0xFF) << 8),
          static_cast<uint16_t>((rgb & 0xFF) << 8),
          0};
}

// The colour p pixels from the start of a ramp len pixels long, by the channel formula.
uint32_t rampPixel(const TriVertex& from, const TriVertex& to, int64_t len, int64_t p) {
  auto channel = [&](uint16_t c0, uint16_t c1) {
    return static_cast<uint32_t>((int64_t{c0} * (len - p) + int64_t{c1} * p) / (len * 256));
  };
  return (channel(from.Red, to.Red) << 16) | (channel(from.Green, to.Green) << 8) |
         channel(from.Blue, to.Blue);
}

Canvas paperCanvas(int32_t w, int32_t h) {
  Canvas canvas(w, h);
  canvas.BackColor(PixelToOle(kPaper));
  return canvas;
}

// Fills one rectangle and checks every pixel of the canvas against the formula.
void expectGradient(TriVertex a, TriVertex b, uint32_t mode, int32_t w = 40, int32_t h = 30) {
  Canvas canvas = paperCanvas(w, h);
  const TriVertex vertices[] = {a, b};
  const GradientRectMesh mesh{1, 0};
  ASSERT_TRUE(canvas.GradientFill(vertices, {&mesh, 1}, mode));
  const bool horizontal = mode == GRADIENT_FILL_RECT_H;
  const TriVertex& from = (horizontal ? a.x < b.x : a.y < b.y) ? a : b;
  const TriVertex& to = &from == &a ? b : a;
  const int64_t len = horizontal ? std::abs(int64_t{b.x} - a.x) : std::abs(int64_t{b.y} - a.y);
  for (int32_t y = 0; y < h; ++y) {
    for (int32_t x = 0; x < w; ++x) {
      const bool inside = x >= std::min(a.x, b.x) && x < std::max(a.x, b.x) &&
                          y >= std::min(a.y, b.y) && y < std::max(a.y, b.y);
      const uint32_t want =
          inside ? rampPixel(from, to, len, horizontal ? x - int64_t{from.x} : y - int64_t{from.y})
                 : kPaper;
      ASSERT_EQ(canvas.PixelRGB(x, y), want) << "pixel " << x << "," << y << " mode " << mode;
    }
  }
}

TEST(CanvasGradient, RampsMatchTheMeasuredExamples) {
  Canvas canvas(6, 8);
  const TriVertex risingH[] = {vertex(0, 0, 0), vertex(6, 1, 0xFFFFFF)};
  const TriVertex fallingH[] = {vertex(6, 1, 0), vertex(0, 2, 0xFFFFFF)};
  const TriVertex risingV[] = {vertex(1, 8, 0xFFFFFF), vertex(0, 2, 0)};
  const TriVertex fallingV[] = {vertex(2, 2, 0xFFFFFF), vertex(3, 8, 0)};
  const GradientRectMesh mesh{0, 1};
  ASSERT_TRUE(canvas.GradientFill(risingH, {&mesh, 1}, GRADIENT_FILL_RECT_H));
  ASSERT_TRUE(canvas.GradientFill(fallingH, {&mesh, 1}, GRADIENT_FILL_RECT_H));
  ASSERT_TRUE(canvas.GradientFill(risingV, {&mesh, 1}, GRADIENT_FILL_RECT_V));
  ASSERT_TRUE(canvas.GradientFill(fallingV, {&mesh, 1}, GRADIENT_FILL_RECT_V));
  const uint32_t rising[] = {0x00, 0x2A, 0x55, 0x7F, 0xAA, 0xD4};
  const uint32_t falling[] = {0xFF, 0xD4, 0xAA, 0x7F, 0x55, 0x2A};
  for (int i = 0; i < 6; ++i) {
    EXPECT_EQ(canvas.PixelRGB(i, 0), rising[i] * 0x010101u) << i;
    EXPECT_EQ(canvas.PixelRGB(i, 1), falling[i] * 0x010101u) << i;
    EXPECT_EQ(canvas.PixelRGB(0, 2 + i), rising[i] * 0x010101u) << i;
    EXPECT_EQ(canvas.PixelRGB(2, 2 + i), falling[i] * 0x010101u) << i;
  }
}

TEST(CanvasGradient, EverySizeAndOffsetFollowsTheFormulaInBothModes) {
  std::mt19937 rng(7);
  std::uniform_int_distribution<int32_t> coord(-5, 45);
  std::uniform_int_distribution<uint32_t> color(0, 0xFFFFFF);
  for (uint32_t mode : {0u, 1u}) {
    for (int n = 0; n < 300; ++n) {
      // Vertex order, and so which index is the start colour, varies at random.
      expectGradient(vertex(coord(rng), coord(rng), color(rng)),
                     vertex(coord(rng), coord(rng), color(rng)), mode);
    }
    // Ramps long enough that one channel step is less than one pixel value.
    expectGradient(vertex(0, 0, 0x00FF80), vertex(700, 3, 0xFF0001), mode, 700, 4);
    expectGradient(vertex(0, 0, 0x00FF80), vertex(5, 600, 0xFF0001), mode, 6, 600);
  }
}

TEST(CanvasGradient, ClippingKeepsTheRampOfVisiblePixels) {
  for (uint32_t mode : {0u, 1u}) {
    expectGradient(vertex(-13, 4, 0x0000FF), vertex(20, 25, 0xFF8000), mode);  // left
    expectGradient(vertex(-3, -4, 0x00FF00), vertex(43, 33, 0xFF00FF), mode);  // all sides
    expectGradient(vertex(INT_MIN, INT_MIN, 0xFFFFFF), vertex(INT_MAX, INT_MAX, 0), mode);
    expectGradient(vertex(41, 0, 0xFFFFFF), vertex(90, 30, 0), mode);  // wholly outside
  }
}

TEST(CanvasGradient, ZeroExtentsDrawNothingAndBadInputIsRefused) {
  const TriVertex v[] = {vertex(5, 5, 0xFF0000), vertex(5, 20, 0x00FF00), vertex(20, 5, 0)};
  const GradientRectMesh flat[] = {{0, 1}, {0, 2}};
  Canvas canvas = paperCanvas(30, 30);
  EXPECT_TRUE(canvas.GradientFill(v, flat, GRADIENT_FILL_RECT_H));
  EXPECT_TRUE(canvas.GradientFill(v, flat, GRADIENT_FILL_RECT_V));
  const GradientRectMesh good{1, 2}, bad{0, 3};
  const GradientRectMesh goodThenBad[] = {good, bad};
  EXPECT_FALSE(canvas.GradientFill(v, {&good, 1}, 2));
  EXPECT_FALSE(canvas.GradientFill(v, goodThenBad, GRADIENT_FILL_RECT_H));
  for (int32_t i = 0; i < 30 * 30; ++i)
    ASSERT_EQ(canvas.Pixels()[i], kPaper) << i;
}

// The pixels a line lights: step i along the major axis, the minor coordinate
// rounded to nearest with halves to the smaller.
std::set<std::pair<int64_t, int64_t>> expectedLine(int64_t x0, int64_t y0, int64_t x1, int64_t y1) {
  std::set<std::pair<int64_t, int64_t>> lit;
  const int64_t dx = x1 - x0, dy = y1 - y0;
  const bool xMajor = std::abs(dx) >= std::abs(dy);
  const int64_t steps = std::max(std::abs(dx), std::abs(dy));
  auto ceilDiv = [](int64_t n, int64_t d) { return n >= 0 ? (n + d - 1) / d : -((-n) / d); };
  for (int64_t i = 0; i < steps; ++i) {
    if (xMajor)
      lit.insert({x0 + (dx > 0 ? i : -i), y0 + ceilDiv(2 * i * dy - steps, 2 * steps)});
    else
      lit.insert({x0 + ceilDiv(2 * i * dx - steps, 2 * steps), y0 + (dy > 0 ? i : -i)});
  }
  return lit;
}

void expectLine(int32_t x0, int32_t y0, int32_t x1, int32_t y1, int32_t w = 40, int32_t h = 30) {
  Canvas canvas = paperCanvas(w, h);
  canvas.Line(x0, y0, x1, y1, 0xFFFFFF);
  const auto lit = expectedLine(x0, y0, x1, y1);
  for (int32_t y = 0; y < h; ++y)
    for (int32_t x = 0; x < w; ++x)
      ASSERT_EQ(canvas.PixelRGB(x, y), lit.count({x, y}) ? 0xFFFFFFu : kPaper)
          << "pixel " << x << "," << y << " of " << x0 << "," << y0 << " - " << x1 << "," << y1;
}

TEST(CanvasLine, LightsTheMeasuredPixels) {
  using Points = std::set<std::pair<int64_t, int64_t>>;
  EXPECT_EQ(expectedLine(10, 10, 14, 12), (Points{{10, 10}, {11, 10}, {12, 11}, {13, 11}}));
  EXPECT_EQ(expectedLine(10, 10, 14, 8), (Points{{10, 10}, {11, 9}, {12, 9}, {13, 8}}));
  Points steep;
  const int64_t steepX[] = {2, 3, 4, 5, 6, 6, 7, 8, 9, 10, 11, 12, 13, 13, 14, 15, 16};
  for (int64_t i = 0; i < 17; ++i)
    steep.insert({steepX[i], 20 - i});
  EXPECT_EQ(expectedLine(2, 20, 17, 3), steep);
}

TEST(CanvasLine, AllOctantsAndTiesFollowTheRoundingRule) {
  // Every direction: exact halves, diagonals, axis-parallel lines and zero length.
  for (int32_t dx = -12; dx <= 12; ++dx)
    for (int32_t dy = -12; dy <= 12; ++dy)
      expectLine(20, 15, 20 + dx, 15 + dy);
  std::mt19937 rng(11);
  std::uniform_int_distribution<int32_t> x(-25, 65), y(-25, 55);
  for (int n = 0; n < 3000; ++n)
    expectLine(x(rng), y(rng), x(rng), y(rng));
}

TEST(CanvasLine, FarAwayEndPointsAreClippedExactly) {
  // Too long to evaluate step by step: check the columns (or rows) of the image.
  auto expectFar = [](int64_t x0, int64_t y0, int64_t x1, int64_t y1) {
    Canvas canvas = paperCanvas(40, 30);
    canvas.Line(static_cast<int32_t>(x0), static_cast<int32_t>(y0), static_cast<int32_t>(x1),
                static_cast<int32_t>(y1), 0xFFFFFF);
    const __int128 dx = x1 - x0, dy = y1 - y0;
    const bool xMajor = (dx < 0 ? -dx : dx) >= (dy < 0 ? -dy : dy);
    const __int128 len = xMajor ? (dx < 0 ? -dx : dx) : (dy < 0 ? -dy : dy);
    int lit = 0;
    for (int64_t major = 0; major < (xMajor ? 40 : 30); ++major) {
      const __int128 i =
          xMajor ? (dx > 0 ? major - x0 : x0 - major) : (dy > 0 ? major - y0 : y0 - major);
      if (i < 0 || i >= len) continue;
      const __int128 n = 2 * i * (xMajor ? dy : dx) - len, d = 2 * len;
      const __int128 minor = (xMajor ? y0 : x0) + (n >= 0 ? (n + d - 1) / d : -((-n) / d));
      const int64_t px = xMajor ? major : static_cast<int64_t>(minor);
      const int64_t py = xMajor ? static_cast<int64_t>(minor) : major;
      if (px < 0 || px >= 40 || py < 0 || py >= 30) continue;
      EXPECT_EQ(canvas.PixelRGB(static_cast<int32_t>(px), static_cast<int32_t>(py)), 0xFFFFFFu);
      ++lit;
    }
    EXPECT_EQ(std::count(canvas.Pixels(), canvas.Pixels() + 40 * 30, 0xFFFFFFu), lit);
    return lit;
  };
  EXPECT_GT(expectFar(-2000000000, -1000000007, 2000000000, 1000000010), 0);
  EXPECT_GT(expectFar(INT_MIN, 15, INT_MAX, 14), 0);
  EXPECT_GT(expectFar(17, INT_MAX, 23, INT_MIN), 0);
  EXPECT_EQ(expectFar(INT_MIN, INT_MIN, INT_MAX, INT_MIN + 3), 0);
  const std::pair<int32_t, int32_t> ends[] = {{-70, 12}, {105, 17}, {21, -90}, {19, 95}};
  for (auto [x1, y1] : ends)
    expectLine(20, 15, x1, y1);
}

TEST(CanvasPixels, PSetPointAndColours) {
  Canvas canvas(8, 6);
  canvas.PSet(2, 3, RGB(0x11, 0x22, 0x33));
  EXPECT_EQ(canvas.PixelRGB(2, 3), 0x112233u);
  EXPECT_EQ(canvas.Point(2, 3), static_cast<int32_t>(RGB(0x11, 0x22, 0x33)));
  const std::pair<int32_t, int32_t> outside[] = {{-1, 0}, {0, -1}, {8, 0}, {0, 6}, {INT_MIN, 0}};
  for (auto [x, y] : outside) {
    EXPECT_EQ(canvas.Point(x, y), -1);
    canvas.PSet(x, y, 0);  // ignored
  }
  canvas.ForeColor(RGB(0xAB, 0, 0));
  canvas.PSet(0, 0);
  canvas.Line(0, 5, 3, 5);
  canvas.ForeColor(RGB(0, 0, 0xCD));  // changes later drawing only
  EXPECT_EQ(canvas.PixelRGB(0, 0), 0xAB0000u);
  EXPECT_EQ(canvas.PixelRGB(2, 5), 0xAB0000u);
  EXPECT_EQ(canvas.PixelRGB(3, 5), 0xFFFFFFu);  // end point excluded
  canvas.Line(7, 0, 7, 2);
  EXPECT_EQ(canvas.PixelRGB(7, 1), 0x0000CDu);
  EXPECT_EQ(std::count(canvas.Pixels(), canvas.Pixels() + 48, 0xFFFFFFu), 48 - 7);
}

TEST(CanvasPixels, BackColorAndClearEraseAndSystemColoursTranslate) {
  Canvas canvas(5, 4);
  canvas.PSet(1, 1, 0);
  canvas.CurrentX(3.5f);
  canvas.BackColor(RGB(1, 2, 3));
  EXPECT_EQ(std::count(canvas.Pixels(), canvas.Pixels() + 20, 0x010203u), 20);
  EXPECT_EQ(canvas.CurrentX(), 3.5f);  // only Clear moves the print position
  canvas.FillRect(-2, 2, 4, 9, RGB(9, 9, 9));
  EXPECT_EQ(std::count(canvas.Pixels(), canvas.Pixels() + 20, 0x090909u), 4);
  SystemColors::Set(COLOR_BTNFACE, RGB(0x20, 0x40, 0x60));
  canvas.BackColor(kSystemColorFlag | COLOR_BTNFACE);
  EXPECT_EQ(canvas.BackColor(), kSystemColorFlag | COLOR_BTNFACE);
  EXPECT_EQ(canvas.Point(4, 3), static_cast<int32_t>(RGB(0x20, 0x40, 0x60)));
  SystemColors::Set(COLOR_BTNFACE, RGB(0x70, 0x80, 0x90));
  canvas.Clear();  // resolves the system colour again
  EXPECT_EQ(std::count(canvas.Pixels(), canvas.Pixels() + 20, 0x708090u), 20);
  EXPECT_EQ(canvas.CurrentX(), 0.0f);
  canvas.PSet(0, 0, kSystemColorFlag | COLOR_BTNFACE);
  EXPECT_EQ(canvas.PixelRGB(0, 0), 0x708090u);
  SystemColors::Reset();
}

TEST(CanvasPixels, ResizeAndEmptyCanvas) {
  Canvas canvas(3, 3);
  canvas.BackColor(RGB(5, 6, 7));
  EXPECT_NE(test::errorOf(errInvalidProcedureCall, [&] { canvas.Resize(4, -2); }).find("4x-2"),
            std::string::npos);
  test::errorOf(errInvalidProcedureCall, [] { Canvas bad(-1, 0); });
  EXPECT_EQ(canvas.ScaleWidth(), 3);  // a refused size changes nothing
  canvas.Resize(7, 2);
  EXPECT_EQ(canvas.ScaleWidth(), 7);
  EXPECT_EQ(canvas.PixelRGB(6, 1), 0x050607u);
  canvas.Resize(0, 0);
  const TriVertex v[] = {vertex(-5, -5, 0), vertex(5, 5, 0)};
  const GradientRectMesh mesh{0, 1};
  EXPECT_TRUE(canvas.GradientFill(v, {&mesh, 1}, 0));
  canvas.Line(-3, -3, 3, 3);
  canvas.FillRect(0, 0, 1, 1, 0);
  canvas.DrawPicture(Picture(2, 2, {~0u, ~0u, ~0u, ~0u}), 0, 0);
  EXPECT_EQ(canvas.Point(0, 0), -1);
}

// Draws a picture the simple way, pixel by pixel with bounds checks.
void drawReference(std::vector<uint32_t>& image, int32_t w, int32_t h, const Picture& picture,
                   int32_t x0, int32_t y0, uint32_t fixed, bool useFixed, bool hardMask) {
  for (int32_t y = 0; y < picture.Height(); ++y) {
    for (int32_t x = 0; x < picture.Width(); ++x) {
      const int64_t tx = int64_t{x0} + x, ty = int64_t{y0} + y;
      if (tx < 0 || ty < 0 || tx >= w || ty >= h) continue;
      const uint32_t src = picture.Pixel(x, y), a = src >> 24;
      const uint32_t rgb = useFixed ? fixed : src & 0xFFFFFF;
      uint32_t& dst = image[ty * w + tx];
      if (hardMask) {
        if (a >= 128) dst = rgb;
        continue;
      }
      uint32_t out = 0;
      for (int s = 0; s <= 16; s += 8)
        out |= ((((rgb >> s) & 0xFF) * a + ((dst >> s) & 0xFF) * (255 - a) + 127) / 255) << s;
      dst = out;
    }
  }
}

TEST(CanvasPicture, ThreeLooksClippedAtEveryEdge) {
  std::mt19937 rng(3);
  std::vector<uint32_t> argb(7 * 5);
  for (uint32_t& p : argb)
    p = rng();
  argb[0] = 0xFF102030, argb[1] = 0x00FFFFFF, argb[2] = 0x7F445566, argb[3] = 0x80445566;
  for (size_t i = 28; i < 35; ++i)  // a row of only opaque and clear pixels
    argb[i] = (i % 2 ? 0xFF000000u : 0u) | (argb[i] & 0xFFFFFFu);
  const Picture picture(7, 5, argb);
  SystemColors::Set(COLOR_BTNHIGHLIGHT, RGB(0xEE, 0xEE, 0xE0));
  SystemColors::Set(COLOR_BTNSHADOW, RGB(0x40, 0x41, 0x42));
  const std::pair<int32_t, int32_t> places[] = {{4, 3},  {-3, 2}, {2, -4},
                                                {12, 3}, {5, 8},  {-6, -4}};
  for (auto [x, y] : places) {
    for (PictureLook look : {PictureLook::Normal, PictureLook::Monochrome, PictureLook::Disabled}) {
      Canvas canvas = paperCanvas(14, 10);
      canvas.DrawPicture(picture, x, y, look, RGB(0x0A, 0x0B, 0x0C));
      std::vector<uint32_t> want(14 * 10, kPaper);
      if (look == PictureLook::Disabled) {
        drawReference(want, 14, 10, picture, x + 1, y + 1, 0xEEEEE0, true, true);
        drawReference(want, 14, 10, picture, x, y, 0x404142, true, true);
      } else {
        drawReference(want, 14, 10, picture, x, y, 0x0A0B0C, look == PictureLook::Monochrome,
                      false);
      }
      EXPECT_TRUE(std::equal(want.begin(), want.end(), canvas.Pixels()))
          << "look " << static_cast<int>(look) << " at " << x << "," << y;
    }
  }
  SystemColors::Reset();
}

}  // namespace
}  // namespace velt
