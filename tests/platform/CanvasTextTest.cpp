#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "support/ExpectError.hpp"
#include "velt/platform/Canvas.hpp"
#include "velt/platform/TextEngine.hpp"

namespace velt {
namespace {

// A background no text drawing produces by accident: every pixel differs.
uint32_t patternAt(int32_t x, int32_t y) {
  return (static_cast<uint32_t>(x * 7 % 256) << 16) | (static_cast<uint32_t>(y * 13 % 256) << 8) |
         0x5A;
}

Canvas patternedCanvas(int32_t w, int32_t h) {
  Canvas canvas(w, h);
  canvas.Font(std::make_shared<Font>("DejaVu Sans", 8.25f));
  for (int32_t y = 0; y < h; ++y)
    for (int32_t x = 0; x < w; ++x)
      canvas.PSet(x, y, PixelToOle(patternAt(x, y)));
  return canvas;
}

std::vector<uint32_t> patternImage(int32_t w, int32_t h) {
  std::vector<uint32_t> pixels(w * h);
  for (int32_t y = 0; y < h; ++y)
    for (int32_t x = 0; x < w; ++x)
      pixels[y * w + x] = patternAt(x, y);
  return pixels;
}

TEST(CanvasText, PrintBlendsForeColorOverTheOldPixelsOnly) {
  constexpr int32_t kW = 90, kH = 40;
  Canvas canvas = patternedCanvas(kW, kH);
  canvas.ForeColor(RGB(0xE0, 0x10, 0x30));
  canvas.CurrentX(6);
  canvas.CurrentY(9);
  canvas.Print("Transparent");

  // The same line drawn straight onto the same background, colour in pixel order.
  std::vector<uint32_t> expected = patternImage(kW, kH);
  TextEngine::Instance().DrawLine(expected.data(), kW, kH, 6, 9, 0xE01030, *canvas.Font(),
                                  "Transparent");
  int32_t inked = 0;
  for (int32_t y = 0; y < kH; ++y)
    for (int32_t x = 0; x < kW; ++x) {
      ASSERT_EQ(canvas.PixelRGB(x, y), expected[y * kW + x]) << x << "," << y;
      inked += canvas.PixelRGB(x, y) != patternAt(x, y);
    }
  EXPECT_GT(inked, 60);  // the blending itself is the text engine's, tested there
}

TEST(CanvasText, PrintedInkStaysInsideTheMeasuredBox) {
  Canvas canvas(200, 80);
  canvas.Font(std::make_shared<Font>("DejaVu Sans", 11));
  const std::string text = "First line\r\n\nThird, longer line";
  const int32_t line = TextEngine::Instance().Metrics(*canvas.Font()).lineHeight;
  EXPECT_EQ(canvas.TextHeight("a\n"), 2 * line);  // a final line break starts another line
  EXPECT_EQ(canvas.TextHeight(text), 3 * line);
  EXPECT_EQ(canvas.TextWidth(text), canvas.TextWidth("Third, longer line"));

  canvas.CurrentX(12);
  canvas.CurrentY(7);
  canvas.Print(text);
  EXPECT_EQ(canvas.CurrentX(), 0.0f);
  EXPECT_EQ(canvas.CurrentY(), 7.0f + 3 * line);

  std::vector<int32_t> inkPerLine(3, 0);
  int32_t thirdLeft = 200, thirdRight = -1;
  for (int32_t y = 0; y < 80; ++y)
    for (int32_t x = 0; x < 200; ++x) {
      if (canvas.PixelRGB(x, y) == 0xFFFFFFu) continue;
      ASSERT_GE(y, 7);
      ASSERT_LT(y, 7 + 3 * line);
      const int32_t index = (y - 7) / line;
      ++inkPerLine[index];
      if (index == 0) {
        ASSERT_GE(x, 11);  // a glyph may overhang its origin by one pixel
        ASSERT_LE(x, 12 + canvas.TextWidth("First line"));
      } else if (index == 2) {
        thirdLeft = std::min(thirdLeft, x);
        thirdRight = std::max(thirdRight, x);
      }
    }
  EXPECT_GT(inkPerLine[0], 0);
  EXPECT_EQ(inkPerLine[1], 0);  // the empty line
  EXPECT_LE(thirdLeft, 1);      // later lines start at the left edge
  EXPECT_LE(thirdRight, canvas.TextWidth("Third, longer line"));
  EXPECT_GE(thirdRight, canvas.TextWidth("Third, longer line") - 3);
}

TEST(CanvasText, SymbolFontThroughASharedFontObject) {
  Canvas canvas(40, 30);
  auto font = std::make_shared<Font>("DejaVu Sans", 8.25f);
  canvas.Font(font);
  font->Name("webdings");  // shared: the canvas sees the change
  EXPECT_EQ(canvas.TextWidth("3\r\n66"), 22);
  EXPECT_EQ(canvas.TextHeight("5"),
            TextEngine::Instance().Metrics(Font("sans-serif", 8.25f)).lineHeight);

  // A down arrow printed at (10, 5): crisp ForeColor pixels, widest row on top.
  canvas.ForeColor(RGB(0, 0, 0x80));
  canvas.CurrentX(10);
  canvas.CurrentY(5);
  canvas.Print("6");
  std::vector<int32_t> rows;
  for (int32_t y = 0; y < 30; ++y) {
    int32_t lit = 0;
    for (int32_t x = 0; x < 40; ++x) {
      const int32_t colour = canvas.Point(x, y);
      if (colour == 0xFFFFFF) continue;
      EXPECT_EQ(colour, static_cast<int32_t>(RGB(0, 0, 0x80)));
      EXPECT_GE(x, 10);
      ++lit;
    }
    if (lit) rows.push_back(lit);
  }
  // The scroll bar's arrow at the ambient size: 7 pixels wide, 7 rows high.
  EXPECT_EQ(rows, (std::vector<int32_t>{7, 5, 5, 3, 3, 1, 1}));
  test::errorOf(errObjectNotSet, [&] { canvas.Font(nullptr); });
}

}  // namespace
}  // namespace velt
