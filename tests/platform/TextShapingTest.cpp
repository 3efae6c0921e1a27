// Shaping, bidirectional order, font fallback and colour emoji, checked on the
// fonts scripts/setup installs: DejaVu Sans (Latin, Greek, Cyrillic, Hebrew,
// Arabic), Droid Sans Fallback (CJK) and Noto Color Emoji.

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <string>
#include <vector>

#include "velt/platform/Canvas.hpp"
#include "velt/platform/TextEngine.hpp"

namespace velt {
namespace {

constexpr uint32_t kWhite = 0xFFFFFF;
constexpr const char* kCjkFamily = "Droid Sans Fallback";
constexpr const char* kEmojiFamily = "Noto Color Emoji";

const char* const kHebrew = "\xD7\xA9\xD7\x9C\xD7\x95\xD7\x9D";  // shalom, 4 letters
const char* const kBeh = "\xD8\xA8";                             // Arabic letter beh
const char* const kCjk = "\xE7\xA2\xBA\xE5\xAE\x9A";             // two ideographs
const char* const kGrin = "\xF0\x9F\x98\x80";                    // grinning face
// man, joiner, woman, joiner, girl: one emoji of five code points
const char* const kFamily =
    "\xF0\x9F\x91\xA8\xE2\x80\x8D\xF0\x9F\x91\xA9\xE2\x80\x8D\xF0\x9F\x91\xA7";
const char* const kAcute = "\xCC\x81";  // combining acute accent

Font dejaVu() {
  return Font("DejaVu Sans", 8.25f);
}

bool installed(const char* family) {
  return TextEngine::Instance().ResolvedFamily(Font(family, 8.25f)) == family;
}

std::vector<uint32_t> drawn(const Font& font, std::string_view text, int32_t width = 120,
                            int32_t height = 20, bool rightToLeft = false) {
  std::vector<uint32_t> pixels(static_cast<size_t>(width * height), kWhite);
  TextEngine::Instance().DrawLine(pixels.data(), width, height, 2, 2, 0, font, text, rightToLeft);
  return pixels;
}

// The drawn pixels inside the ink's bounding box, row by row: the shape drawn
// wherever the baseline lies.
std::vector<uint32_t> ink(const std::vector<uint32_t>& pixels, int32_t width) {
  int32_t left = width, right = -1, top = INT32_MAX, bottom = -1;
  for (size_t i = 0; i < pixels.size(); ++i)
    if (pixels[i] != kWhite) {
      const int32_t x = static_cast<int32_t>(i) % width, y = static_cast<int32_t>(i) / width;
      left = std::min(left, x), right = std::max(right, x);
      top = std::min(top, y), bottom = std::max(bottom, y);
    }
  std::vector<uint32_t> box;
  for (int32_t y = top; y <= bottom; ++y)
    for (int32_t x = left; x <= right; ++x)
      box.push_back(pixels[static_cast<size_t>(y * width + x)]);
  box.push_back(static_cast<uint32_t>(right - left));
  return box;
}

const ShapedLine& shaped(std::string_view text, bool rightToLeft = false) {
  return TextEngine::Instance().Shape(dejaVu(), text, rightToLeft);
}

int32_t leftOf(const ShapedLine& line, int32_t position) {
  for (const ClusterBox& box : line.clusters)
    if (box.start == position) return box.left;
  ADD_FAILURE() << "no cluster starts at " << position;
  return -1;
}

TEST(TextShaping, CharactersTheFaceLacksComeFromTheFallbackFace) {
  if (!installed(kCjkFamily)) GTEST_SKIP() << kCjkFamily << " is not installed";
  EXPECT_EQ(ink(drawn(dejaVu(), kCjk), 120), ink(drawn(Font(kCjkFamily, 8.25f), kCjk), 120));
  EXPECT_NE(drawn(dejaVu(), kCjk), drawn(dejaVu(), "\xEE\x80\x81\xEE\x80\x82"))
      << "not the missing-glyph boxes";
  // What the line measures is what it draws, across faces.
  const std::string mixed = std::string("Ab ") + kCjk + " " + kHebrew + " \xCE\xB1\xD0\x96";
  const ShapedLine& line = shaped(mixed);
  EXPECT_EQ(TextEngine::Instance().LineWidth(dejaVu(), mixed), line.width);
  EXPECT_EQ(line.clusters.back().right, line.width);
  Canvas canvas(200, 20);
  canvas.Font(std::make_shared<Font>(dejaVu()));
  canvas.Print(mixed);
  int32_t inkRight = -1;
  for (int32_t y = 0; y < 20; ++y)
    for (int32_t x = 0; x < 200; ++x)
      if (canvas.PixelRGB(x, y) != kWhite) inkRight = std::max(inkRight, x);
  EXPECT_LE(inkRight, line.width);
  EXPECT_GE(inkRight, line.width - 3);
}

TEST(TextShaping, RightToLeftTextPutsItsFirstCharacterRightmost) {
  const ShapedLine& hebrew = shaped(kHebrew);
  EXPECT_GT(leftOf(hebrew, 0), leftOf(hebrew, 1));
  EXPECT_GT(leftOf(hebrew, 1), leftOf(hebrew, 3));
  // The pixels agree: the word is its letters drawn from the right.
  const Font font = dejaVu();
  std::vector<uint32_t> byHand(120 * 20, kWhite);
  int32_t x = 2;
  for (const char* letter : {"\xD7\x9D", "\xD7\x95", "\xD7\x9C", "\xD7\xA9"}) {
    TextEngine::Instance().DrawLine(byHand.data(), 120, 20, x, 2, 0, font, letter);
    x += TextEngine::Instance().LineWidth(font, letter);
  }
  EXPECT_EQ(drawn(font, kHebrew), byHand);

  // Direction by the first strong character, or right-to-left when asked.
  const struct {
    std::string text;
    bool rightToLeft;
    int32_t leftmost;  // the character drawn at the left edge
  } cases[] = {{std::string("abc ") + kHebrew, false, 0},
               {std::string(kHebrew) + " abc", false, 5},
               {"123 abc", false, 0},
               {"abc!", true, 3}};
  for (const auto& c : cases) {
    const ShapedLine& line = shaped(c.text, c.rightToLeft);
    EXPECT_EQ(leftOf(line, c.leftmost), 0) << c.text;
  }
}

TEST(TextShaping, ArabicLettersJoinAndMarksDoNotAdvance) {
  const ShapedLine& alone = shaped(kBeh);
  const ShapedLine& three = shaped(std::string(kBeh) + kBeh + kBeh);
  ASSERT_EQ(alone.glyphs.size(), 1u);
  ASSERT_EQ(three.glyphs.size(), 3u);
  for (const PlacedGlyph& joined : three.glyphs)
    EXPECT_NE(joined.index, alone.glyphs[0].index) << "initial, medial and final forms";
  EXPECT_NE(three.glyphs[0].index, three.glyphs[1].index);

  for (const char* base : {"e", "a", "\xD0\xB8"}) {
    const std::string marked = std::string(base) + kAcute;
    const ShapedLine& line = shaped(marked);
    EXPECT_EQ(line.width, shaped(base).width) << base;
    ASSERT_EQ(line.clusters.size(), 1u) << "a base and its mark are one cluster";
    EXPECT_EQ(line.clusters[0].end, 2);
  }
}

TEST(TextShaping, CursorPositionsAreInVisualOrderAndFoundAgainByX) {
  const struct {
    std::string text;
    std::vector<int32_t> visualOrder;
  } cases[] = {{"ab", {0, 1, 2}},
               {kHebrew, {4, 3, 2, 1, 0}},
               {std::string("a ") + kHebrew, {0, 1, 6, 5, 4, 3, 2}},
               {std::string("e") + kAcute + "x", {0, 2, 3}},
               {kFamily, {0, 5}}};
  for (const auto& c : cases) {
    const std::vector<CaretStop> stops = shaped(c.text).CaretStops();
    std::vector<int32_t> order;
    for (const CaretStop& stop : stops)
      order.push_back(stop.position);
    EXPECT_EQ(order, c.visualOrder) << c.text;
    EXPECT_TRUE(
        std::is_sorted(stops.begin(), stops.end(), [](auto& a, auto& b) { return a.x < b.x; }));
    for (const CaretStop& stop : stops) {
      if (std::count_if(stops.begin(), stops.end(), [&](auto& s) { return s.x == stop.x; }) == 1) {
        EXPECT_EQ(shaped(c.text).CaretAt(stop.x), stop.position) << c.text;
      }
    }
  }
  EXPECT_EQ(shaped("ab").CaretAt(-50), 0);
  EXPECT_EQ(shaped("ab").CaretAt(500), 2);
}

TEST(TextShaping, EmojiAreDrawnInColourAtTheLineSize) {
  if (!installed(kEmojiFamily)) GTEST_SKIP() << kEmojiFamily << " is not installed";
  const int32_t lineHeight = TextEngine::Instance().Metrics(dejaVu()).lineHeight;
  // a face, a thumb with a skin tone, a heart asked for in emoji style
  for (const char* emoji :
       {kGrin, "\xF0\x9F\x91\x8D\xF0\x9F\x8F\xBD", "\xE2\x9D\xA4\xEF\xB8\x8F"}) {
    const std::vector<uint32_t> pixels = drawn(dejaVu(), emoji, 40, 40);
    int32_t coloured = 0, top = 40, bottom = -1;
    for (int32_t i = 0; i < 40 * 40; ++i) {
      const uint32_t p = pixels[i];
      if (p == kWhite) continue;
      top = std::min(top, i / 40);
      bottom = std::max(bottom, i / 40);
      coloured += ((p >> 16) & 0xFF) != (p & 0xFF);
    }
    EXPECT_GT(coloured, 10) << emoji << " drawn in black text colour still has colour";
    EXPECT_LE(bottom - top + 1, lineHeight + 2) << emoji;
    EXPECT_EQ(shaped(emoji).clusters.size(), 1u) << emoji;
  }
}

// Also: a line too long for the line cache is laid out all the same.
TEST(TextShaping, CharactersNoFontHasDrawTheMissingGlyphBox) {
  const std::string longLine(20000, 'a');
  EXPECT_EQ(shaped(longLine).width, 20000 * shaped("a").width);
  EXPECT_EQ(shaped(longLine).length, 20000);
  for (const char* text : {"\xF4\x8F\xBF\xBD", "\xCD\xB8",
                           "a\xF4\x8F\xBF\xBD"
                           "b",
                           "\xFF\xFE"}) {
    const std::vector<uint32_t> pixels = drawn(dejaVu(), text);
    EXPECT_NE(std::count(pixels.begin(), pixels.end(), kWhite), 120 * 20) << "something drawn";
    EXPECT_GT(shaped(text).width, 0);
  }
}

}  // namespace
}  // namespace velt
