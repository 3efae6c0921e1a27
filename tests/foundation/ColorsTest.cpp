// Colour arithmetic and the palettes built from it.

#include "velt/foundation/Colors.hpp"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <string>

#include "support/ExpectError.hpp"
#include "velt/foundation/ColorScheme.hpp"
#include "velt/platform/SystemColors.hpp"

namespace velt {
namespace {

using test::errorOf;

int channel(OLE_COLOR color, int shift) {
  return static_cast<int>((color >> shift) & 0xFF);
}

// Nearest integer of (a*w + b*(255-w)) / 255; over the odd 255 never a half.
int exactBlend(int a, int b, int w) {
  return (2 * (a * w + b * (255 - w)) + 255) / 510;
}

OLE_COLOR mix(OLE_COLOR a, OLE_COLOR b, int w) {
  return RGB(exactBlend(channel(a, 0), channel(b, 0), w),
             exactBlend(channel(a, 8), channel(b, 8), w),
             exactBlend(channel(a, 16), channel(b, 16), w));
}

// Every weight from 0 (all B) to 255 (all A); each channel gets other values,
// so mixed-up channels are caught too.
TEST(BlendColor, EveryChannelIsTheNearestIntegerOfTheExactMix) {
  for (int a = 0; a < 256; a += 3) {
    for (int b = 0; b < 256; b += 5) {
      const OLE_COLOR colorA = RGB(a, 255 - a, (a * 7) & 0xFF);
      const OLE_COLOR colorB = RGB(b, (b * 3) & 0xFF, 255 - b);
      for (int w = 0; w < 256; ++w)
        ASSERT_EQ(BlendColor(colorA, colorB, w), mix(colorA, colorB, w))
            << a << " " << b << " " << w;
    }
  }
}

TEST(BlendColor, WeightsOutsideTheByteRangeMixByTheFormulaOrOverflow) {
  EXPECT_EQ(BlendColor(0x202020, 0x202020, 1000), 0x202020u);
  EXPECT_EQ(BlendColor(0, 0, std::numeric_limits<int32_t>::min()), 0u);
  EXPECT_EQ(BlendColor(0x000064, 0x000032, 510), 0x000096u);  // 200 - 50
  const std::string message = errorOf(errOverflow, [] { BlendColor(0xFFFFFF, 0, 300); });
  EXPECT_NE(message.find("BlendColor"), std::string::npos) << message;
  EXPECT_NE(message.find("300"), std::string::npos) << message;
  errorOf(errOverflow, [] { BlendColor(0, 0xFFFFFF, 300); });
  errorOf(errOverflow, [] { BlendColor(0, 0xFFFFFF, -1); });
}

// Fore and Back stay as given, system colours included, but are resolved for
// mixing.
TEST(BlendColor, SystemColoursAreResolvedBeforeMixing) {
  SystemColors::Set(COLOR_BTNFACE, 0x204060);
  const OLE_COLOR face = kSystemColorFlag | COLOR_BTNFACE;
  EXPECT_EQ(TranslateSysColor(face), 0x204060u);
  EXPECT_EQ(TranslateSysColor(0x204060), 0x204060u);
  EXPECT_EQ(BlendColor(0, face, 0), 0x204060u);
  EXPECT_EQ(BlendColor(face, 0, 128), mix(0x204060, 0, 128));
  const ColorScheme s = SchemeHover(face, 0x000000, face);
  EXPECT_EQ(s.Back, face);
  EXPECT_EQ(s.FillTop, mix(0x204060, 0, 245));
  EXPECT_EQ(s.Accent1, 0x204060u);
  SystemColors::Reset();
}

// The vertex form moves each channel to the high byte of 16 bits; the plain
// split keeps wider values' arithmetic; values wider than they take overflow.
TEST(ColorToVertexColor, ChannelsMoveToTheHighByteAndWiderValuesOverflow) {
  for (int v = 0; v < 256; ++v) {
    const OLE_COLOR color = RGB(v, 255 - v, v ^ 0x55);
    const VertexColor vertex = ColorToVertexColor(color);
    ASSERT_EQ(static_cast<uint16_t>(vertex.Red), v * 256);
    ASSERT_EQ(static_cast<uint16_t>(vertex.Green), (255 - v) * 256);
    ASSERT_EQ(static_cast<uint16_t>(vertex.Blue), (v ^ 0x55) * 256);
    const RGBTriple rgb = ColorToRGB(color);
    ASSERT_EQ((std::array{rgb.Red, rgb.Green, rgb.Blue}),
              (std::array<int16_t, 3>{int16_t(v), int16_t(255 - v), int16_t(v ^ 0x55)}));
  }
  const RGBTriple wide = ColorToRGB(0x01020304);
  EXPECT_EQ((std::array{wide.Red, wide.Green, wide.Blue}), (std::array<int16_t, 3>{4, 3, 0x102}));
  errorOf(errOverflow, [] { ColorToRGB(0x80000000); });
  for (OLE_COLOR wider : {0x1000000u, kSystemColorFlag | COLOR_BTNFACE, 0xFFFFFFFFu})
    errorOf(errOverflow, [wider] { ColorToVertexColor(wider); });
}

// Weights of Back against the mix colour for FillTop .. EdgeDark and Text.
struct SchemeTable {
  ColorScheme (*build)(OLE_COLOR, OLE_COLOR, OLE_COLOR);
  int weights[7];
  bool textFromBack;  // the text mixes Back (not black) with the mix colour
  bool focusedMix;    // the mix colour is Fore mixed half-way with Third
};

TEST(ColorScheme, EveryBuilderEveryEntryFromItsWeight) {
  const SchemeTable tables[] = {{SchemeNormal, {230, 190, 170, 220, 200, 120, 140}, false, false},
                                {SchemeHover, {245, 205, 185, 220, 200, 120, 140}, false, false},
                                {SchemePressed, {170, 190, 230, 120, 120, 220, 140}, false, false},
                                {SchemeDisabled, {200, 190, 180, 220, 200, 120, 140}, true, false},
                                {SchemeFocused, {230, 190, 170, 220, 200, 120, 140}, false, true}};
  // Back, Fore, Third: the button's defaults, its focused look, and a dark back
  // with a light fore so that swapped arguments show.
  const OLE_COLOR triples[][3] = {{0xFFFFFF, 0xC00000, 0xFFFFFF},
                                  {0xFFFFFF, 0x0096E7, 0xC00000},
                                  {0x102030, 0xF0E0D0, 0x00FF80}};
  for (const SchemeTable& table : tables) {
    for (const auto& [back, fore, third] : triples) {
      SCOPED_TRACE(::testing::Message()
                   << &table - tables << " " << std::hex << back << " " << fore);
      const ColorScheme s = table.build(back, fore, third);
      const OLE_COLOR m = table.focusedMix ? mix(fore, third, 128) : fore;
      EXPECT_EQ(s.Fore, fore);
      EXPECT_EQ(s.Back, back);
      for (int entry = 2; entry < 8; ++entry)
        EXPECT_EQ(s[entry], mix(back, m, table.weights[entry - 2])) << "entry " << entry;
      EXPECT_EQ(s.Text, mix(table.textFromBack ? back : 0, m, table.weights[6]));
      EXPECT_EQ(s.Accent1, mix(back, third, 230));
      EXPECT_EQ(s.Accent2, mix(back, third, 180));
      EXPECT_EQ(s.Accent3, mix(back, third, 130));
    }
  }
}

TEST(ColorScheme, NumberedEntriesFollowTheFieldOrderAndOthersAreError9) {
  const ColorScheme s{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
  for (int i = 0; i < ColorScheme::kCount; ++i)
    EXPECT_EQ(s[i], i + 1u);
  for (int bad : {-1, 12, 1000})
    errorOf(errSubscriptOutOfRange, [&] { (void)s[bad]; });
}

}  // namespace
}  // namespace velt
