// Colour arithmetic, the palettes built from it, and the gradient painters.

#include "velt/foundation/Colors.hpp"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <string>

#include "support/ExpectError.hpp"
#include "support/Pixels.hpp"
#include "velt/foundation/ColorScheme.hpp"
#include "velt/foundation/Gradients.hpp"
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
  errorOf(errOverflow, [] { BlendColor(0, 0xFFFFFF, -1); });
}

// Fore and Back stay as given, system colours included, but are resolved for
// mixing.
TEST(BlendColor, SystemColoursAreResolvedBeforeMixing) {
  SystemColors::Set(COLOR_BTNFACE, 0x204060);
  const OLE_COLOR face = kSystemColorFlag | COLOR_BTNFACE;
  EXPECT_EQ(TranslateSysColor(face), 0x204060u);
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
  const VertexColor v = ColorToVertexColor(0xFF8001);
  EXPECT_EQ((std::array{uint16_t(v.Red), uint16_t(v.Green), uint16_t(v.Blue)}),
            (std::array<uint16_t, 3>{0x0100, 0x8000, 0xFF00}));
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
  // Back, Fore, Third: the button's focused look, and a dark back with a light
  // fore so that swapped arguments show.
  const OLE_COLOR triples[][3] = {{0xFFFFFF, 0x0096E7, 0xC00000}, {0x102030, 0xF0E0D0, 0x00FF80}};
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
  for (int bad : {-1, 12})
    errorOf(errSubscriptOutOfRange, [&] { (void)s[bad]; });
}

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

// A run from `along` on the shading axis, over the `width` pixels from `first`
// on the other: step k of `steps` from one colour to the other for `count` pixels.
void expectRun(const Canvas& canvas, bool vertical, int32_t along, int32_t first, int32_t width,
               OLE_COLOR from, OLE_COLOR to, int32_t steps, int32_t count) {
  for (int32_t across = first; across < first + width; ++across) {
    for (int32_t k = 0; k < count; ++k)
      EXPECT_EQ(at(canvas, vertical, along + k, across), test::GradientAt(from, to, steps, k)) << k;
  }
}

int32_t touchedPixels(const Canvas& canvas) {
  return canvas.ScaleWidth() * canvas.ScaleHeight() - test::CountColor(canvas, kUntouched);
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
  } cases[] = {{0, 10, 0, 6, 5, 5}, {3, 17, 3, 9, 9, 8}};
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
  for (int32_t orientation : {1, -2, kLineVertical}) {
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
