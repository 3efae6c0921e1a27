#include "velt/platform/TextEngine.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <vector>

namespace velt {
namespace {

constexpr uint32_t kWhite = 0xFFFFFF;

// The pinned family (fonts-dejavu-core) at the ambient 8.25 points = 11 px.
Font dejaVu(float size = 8.25f) {
  return Font("DejaVu Sans", size);
}

Font styled(Font font, bool bold, bool italic, bool underline = false, bool strike = false) {
  font.Bold(bold);
  font.Italic(italic);
  font.Underline(underline);
  font.Strikethrough(strike);
  return font;
}

struct Image {
  Image(int32_t w, int32_t h, uint32_t fill = kWhite) : width(w), height(h), pixels(w * h, fill) {}

  void Draw(const Font& font, std::string_view text, int32_t x = 0, int32_t y = 0,
            uint32_t rgb = 0) {
    TextEngine::Instance().DrawLine(pixels.data(), width, height, x, y, rgb, font, text);
  }
  uint32_t At(int32_t x, int32_t y) const { return pixels[y * width + x]; }
  bool Lit(int32_t x, int32_t y) const { return At(x, y) != kWhite; }
  int32_t LitInRow(int32_t y) const {
    int32_t n = 0;
    for (int32_t x = 0; x < width; ++x)
      n += Lit(x, y);
    return n;
  }
  int32_t LitInColumn(int32_t x) const {
    int32_t n = 0;
    for (int32_t y = 0; y < height; ++y)
      n += Lit(x, y);
    return n;
  }

  int32_t width;
  int32_t height;
  std::vector<uint32_t> pixels;
};

struct Box {
  int32_t left = INT32_MAX, top = INT32_MAX, right = INT32_MIN, bottom = INT32_MIN;  // inclusive
  int32_t Width() const { return right - left + 1; }
  int32_t Height() const { return bottom - top + 1; }
};

Box inkBox(const Image& image) {
  Box box;
  for (int32_t y = 0; y < image.height; ++y)
    for (int32_t x = 0; x < image.width; ++x)
      if (image.Lit(x, y)) {
        box.left = std::min(box.left, x);
        box.right = std::max(box.right, x);
        box.top = std::min(box.top, y);
        box.bottom = std::max(box.bottom, y);
      }
  return box;
}

Image drawn(const Font& font, std::string_view text, int32_t width = 80, int32_t height = 24) {
  Image image(width, height);
  image.Draw(font, text, 2, 2);
  return image;
}

TEST(TextEngineMetrics, DejaVuAtTheAmbientSizeIsElevenPixelsPerEm) {
  TextEngine& engine = TextEngine::Instance();
  const LineMetrics m = engine.Metrics(dejaVu());
  // DejaVu Sans at 11 px: ascender 10.2, descender 2.6, height 12.8, rounded outward.
  EXPECT_EQ(m.ascent, 11);
  EXPECT_EQ(m.descent, 3);
  EXPECT_EQ(m.lineHeight, 14);
  EXPECT_EQ(engine.ResolvedFamily(dejaVu()), "DejaVu Sans");

  // A capital sits on the baseline, 0.73 em high: 8 px at 96 DPI (6 if points were pixels).
  const Box small = inkBox(drawn(dejaVu(), "H"));
  EXPECT_EQ(small.bottom, 2 + m.ascent - 1);
  EXPECT_EQ(small.Height(), 8);
  EXPECT_EQ(inkBox(drawn(dejaVu(16.5f), "H", 80, 40)).Height(), 16);
}

TEST(TextEngineMetrics, LineWidthIsTheSumOfAdvances) {
  TextEngine& engine = TextEngine::Instance();
  const Font font = dejaVu();
  EXPECT_EQ(engine.LineWidth(font, ""), 0);
  const std::string text = "Hello, world! \xC3\xA9\xE2\x82\xAC";  // é and the euro sign
  int32_t sum = 0;
  for (std::string_view c : {"H", "e", "l", "l", "o", ",", " ", "w", "o", "r", "l", "d", "!", " ",
                             "\xC3\xA9", "\xE2\x82\xAC"})
    sum += engine.LineWidth(font, c);
  EXPECT_EQ(engine.LineWidth(font, text), sum);
  EXPECT_GT(engine.LineWidth(font, "WWW"), engine.LineWidth(font, "iii"));
  // The advances DrawLine uses: an underline runs exactly across the width.
  Image image(120, 20);
  image.Draw(styled(font, false, false, true), text);
  const int32_t underlineRow = inkBox(image).bottom;
  EXPECT_EQ(image.LitInRow(underlineRow), engine.LineWidth(font, text));
}

TEST(TextEngineFonts, UnknownFamiliesFallBackToTheDefaultSansSerif) {
  TextEngine& engine = TextEngine::Instance();
  const Font sans("sans-serif", 8.25f);
  for (const char* name : {"No Such Family 4711", ""}) {
    const Font font(name, 8.25f);
    EXPECT_EQ(engine.ResolvedFamily(font), engine.ResolvedFamily(sans)) << name;
    EXPECT_EQ(engine.LineWidth(font, "Fallback text"), engine.LineWidth(sans, "Fallback text"));
    EXPECT_EQ(drawn(font, "Fallback").pixels, drawn(sans, "Fallback").pixels) << name;
  }
  EXPECT_EQ(engine.ResolvedFamily(Font("dejavu SANS mono", 9)), "DejaVu Sans Mono");
  const std::vector<std::string> fonts = engine.ScreenFonts();
  EXPECT_TRUE(std::is_sorted(fonts.begin(), fonts.end()));
  EXPECT_EQ(std::adjacent_find(fonts.begin(), fonts.end()), fonts.end());
  EXPECT_NE(std::find(fonts.begin(), fonts.end(), "DejaVu Sans"), fonts.end());
}

TEST(TextEngineFonts, BoldAndItalicUseOrSynthesizeTheStyle) {
  // DejaVu Sans has bold and oblique files; the other two faces get synthesized styles.
  for (const char* family : {"DejaVu Sans", "DejaVu Sans Light", "DejaVu Math TeX Gyre"}) {
    SCOPED_TRACE(family);
    const Font plain(family, 12);
    auto inkOf = [](const Image& image) {
      int64_t ink = 0;
      for (uint32_t p : image.pixels)
        ink += 255 - (p & 0xFF);
      return ink;
    };
    EXPECT_GT(inkOf(drawn(styled(plain, true, false), "lllll")) * 10,
              inkOf(drawn(plain, "lllll")) * 13);

    // An italic "l" leans right: its top row lies right of its bottom row.
    const Image italic = drawn(styled(plain, false, true), "l");
    const Box box = inkBox(italic);
    auto centreOfRow = [&](int32_t y) {
      int64_t sum = 0, weight = 0;
      for (int32_t x = 0; x < italic.width; ++x) {
        sum += x * (255 - (italic.At(x, y) & 0xFF));
        weight += 255 - (italic.At(x, y) & 0xFF);
      }
      return static_cast<double>(sum) / static_cast<double>(weight);
    };
    EXPECT_GT(centreOfRow(box.top) - centreOfRow(box.bottom), 1.5);
  }
}

TEST(TextEngineDrawing, BlendsTheColourByCoverageExactly) {
  const Font font = dejaVu();
  // Black on white leaves 255 - coverage in every channel.
  const Image mask = drawn(font, "Blend me, 42!");
  const uint32_t colour = 0x3A7FE0, background = 0xC81E64;
  Image image(80, 24, background);
  image.Draw(font, "Blend me, 42!", 2, 2, colour | 0xFF000000u);  // the high byte is ignored
  int32_t partial = 0;
  for (size_t i = 0; i < image.pixels.size(); ++i) {
    const uint32_t coverage = 255 - (mask.pixels[i] & 0xFF);
    partial += coverage > 0 && coverage < 255;
    uint32_t expected = 0;
    for (int shift : {0, 8, 16}) {
      const uint32_t c = (colour >> shift) & 0xFF, b = (background >> shift) & 0xFF;
      expected |= ((c * coverage + b * (255 - coverage) + 127) / 255) << shift;
    }
    ASSERT_EQ(image.pixels[i], expected) << "pixel " << i << " coverage " << coverage;
  }
  EXPECT_GT(partial, 20);  // anti-aliased, not a bilevel mask
}

TEST(TextEngineDrawing, ClipsAtEveryEdgeLikeAWindowOntoTheWholeLine) {
  const Font font = styled(dejaVu(12), true, false, true, true);
  const std::string text = "\xE2\x96\x88Wg\xE2\x82\xAC\xE2\x96\x88";  // full blocks at both ends
  const Image whole = drawn(font, text, 80, 30);                      // the line at (2, 2)
  // Small windows slid across the line; guard rows around each stay untouched.
  constexpr int32_t kW = 13, kH = 7, kGuard = 40;
  for (int32_t wy = -kH; wy <= whole.height; wy += 3)
    for (int32_t wx = -kW; wx <= whole.width; ++wx) {
      Image guarded(kW, kH + 2 * kGuard);
      uint32_t* part = guarded.pixels.data() + kGuard * kW;
      TextEngine::Instance().DrawLine(part, kW, kH, 2 - wx, 2 - wy, 0, font, text);
      for (int32_t y = -kGuard; y < kH + kGuard; ++y)
        for (int32_t x = 0; x < kW; ++x) {
          const int32_t ox = x + wx, oy = y + wy;
          const bool inside =
              y >= 0 && y < kH && ox >= 0 && oy >= 0 && ox < whole.width && oy < whole.height;
          ASSERT_EQ(part[y * kW + x], inside ? whole.At(ox, oy) : kWhite)
              << "window at " << wx << "," << wy << ", pixel " << x << "," << y;
        }
    }
  // Extreme origins and empty images: nothing drawn, nothing broken.
  Image tiny(1, 1);
  for (int32_t x : {INT32_MIN, 0, INT32_MAX})
    for (int32_t y : {INT32_MIN, 0, INT32_MAX})
      tiny.Draw(font, text, x, y);
  TextEngine::Instance().DrawLine(nullptr, 10, 10, 0, 0, 0, font, text);
  TextEngine::Instance().DrawLine(tiny.pixels.data(), 0, -5, 0, 0, 0, font, text);
}

TEST(TextEngineDrawing, BrokenUtf8DrawsReplacementCharacters) {
  TextEngine& engine = TextEngine::Instance();
  const Font font = dejaVu();
  const std::string fffd = "\xEF\xBF\xBD";
  const int32_t one = engine.LineWidth(font, fffd);
  ASSERT_GT(one, 0);
  EXPECT_EQ(engine.LineWidth(font, "\xFF"), one);
  EXPECT_EQ(engine.LineWidth(font, "\xF0\x9F\x98"), one);          // truncated sequence
  EXPECT_EQ(engine.LineWidth(font, "\xC0\xAF"), 2 * one);          // overlong slash
  EXPECT_EQ(engine.LineWidth(font, "\xED\xA0\x80"), 3 * one);      // a surrogate
  EXPECT_EQ(engine.LineWidth(font, "\xF4\x90\x80\x80"), 4 * one);  // above U+10FFFF
  EXPECT_EQ(drawn(font, "x\xE2\x82y").pixels, drawn(font, "x" + fffd + "y").pixels);
  // A character the face lacks still advances (its missing-glyph box).
  EXPECT_GT(engine.LineWidth(font, "\xF0\x9D\x84\x9E"), 0);
}

TEST(TextEngineDrawing, UnderlineAndStrikethroughLightFullRows) {
  TextEngine& engine = TextEngine::Instance();
  const Font plain = dejaVu();
  const LineMetrics m = engine.Metrics(plain);
  const int32_t width = engine.LineWidth(plain, "Under line");
  auto fullRows = [&](const Image& image) {
    std::vector<int32_t> rows;
    for (int32_t y = 0; y < image.height; ++y)
      if (image.LitInRow(y) == width) rows.push_back(y);
    return rows;
  };
  EXPECT_TRUE(fullRows(drawn(plain, "Under line")).empty());

  const int32_t baselineRow = 2 + m.ascent;  // the first row under the glyphs
  const std::vector<int32_t> under =
      fullRows(drawn(styled(plain, false, false, true), "Under line"));
  ASSERT_FALSE(under.empty());
  EXPECT_GE(under.front(), baselineRow);
  EXPECT_LT(under.back(), 2 + m.ascent + m.descent);

  const std::vector<int32_t> strike =
      fullRows(drawn(styled(plain, false, false, false, true), "Under line"));
  ASSERT_FALSE(strike.empty());
  // Through the lower case letters: above the baseline, below the top of "n".
  const Box n = inkBox(drawn(plain, "n"));
  EXPECT_GT(strike.front(), n.top);
  EXPECT_LT(strike.back(), baselineRow);
  EXPECT_EQ(drawn(styled(plain, false, false, false, true), "Under line").At(2, strike.front()),
            0u);  // solid colour, not blended
}

TEST(TextEngineCache, RedrawingAfterClearingGivesTheSamePixels) {
  TextEngine& engine = TextEngine::Instance();
  const std::string text = "Cache \xC3\xA9t\xC3\xA9 \xE2\x82\xAC 3456";
  for (const Font& font : {styled(dejaVu(10), true, true), Font("WEBDINGS", 9)}) {
    const Image first = drawn(font, text, 140, 24);
    EXPECT_EQ(drawn(font, text, 140, 24).pixels, first.pixels);
    engine.ClearCache();
    EXPECT_EQ(drawn(font, text, 140, 24).pixels, first.pixels);
  }
}

// Lit pixels of one symbol glyph drawn at (0, 0) in its own advance box.
Image symbol(std::string_view digit, float size = 8.25f) {
  const Font font("webdings", size);
  const int32_t advance = TextEngine::Instance().LineWidth(font, digit);
  Image image(advance, TextEngine::Instance().Metrics(font).lineHeight);
  image.Draw(font, digit);
  return image;
}

TEST(TextEngineSymbolFont, DigitsAreTrianglesSizedLikeTheGlyphs) {
  TextEngine& engine = TextEngine::Instance();
  const Font webdings("Webdings", 8.25f);
  EXPECT_EQ(engine.ResolvedFamily(Font("wEbDiNgS", 8)), "Webdings");
  EXPECT_EQ(engine.Metrics(webdings).ascent, engine.Metrics(Font("sans-serif", 8.25f)).ascent);
  // Other characters come from the default sans-serif.
  EXPECT_EQ(drawn(webdings, "Ab").pixels, drawn(Font("sans-serif", 8.25f), "Ab").pixels);

  for (float size : {8.25f, 24.0f}) {
    SCOPED_TRACE(size);
    const auto em = static_cast<int32_t>(std::lround(size * 96.0 / 72.0));
    const Image left = symbol("3", size), right = symbol("4", size);
    const Image up = symbol("5", size), down = symbol("6", size);
    EXPECT_EQ(left.width, em);
    const Box box = inkBox(left);
    EXPECT_NEAR(box.Width(), 0.6 * em, 1.0);
    EXPECT_EQ(box.Width(), box.Height());
    EXPECT_EQ(box.bottom, engine.Metrics(Font("webdings", size)).ascent - 1);
    EXPECT_NEAR(box.left, em - 1 - box.right, 1);  // centred in the advance

    for (int32_t y = box.top; y <= box.bottom; ++y)
      for (int32_t x = box.left; x <= box.right; ++x) {
        const bool lit = left.Lit(x, y);
        ASSERT_EQ(lit, left.Lit(x, box.top + box.bottom - y)) << "3 not symmetric";
        ASSERT_EQ(lit, right.Lit(box.left + box.right - x, y)) << "4 is not 3 mirrored";
        ASSERT_EQ(lit ? 0u : kWhite, left.At(x, y)) << "crisp pixels";
      }
    // Pointing left: one pixel at the apex column, the full base at the right.
    EXPECT_EQ(left.LitInColumn(box.left), 1);
    EXPECT_EQ(left.LitInColumn(box.right), box.Height());

    const Box upBox = inkBox(up);
    EXPECT_EQ(upBox.bottom, box.bottom);
    for (int32_t y = upBox.top; y <= upBox.bottom; ++y) {
      EXPECT_EQ(up.LitInRow(y), left.LitInColumn(box.left + y - upBox.top));
      EXPECT_EQ(down.LitInRow(y), up.LitInRow(upBox.top + upBox.bottom - y));
    }
  }
}

}  // namespace
}  // namespace velt
