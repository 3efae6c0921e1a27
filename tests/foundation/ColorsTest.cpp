#include "velt/foundation/Colors.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

#include "velt/platform/Error.hpp"
#include "velt/platform/SystemColors.hpp"

namespace velt {
namespace {

int channel(OLE_COLOR color, int shift) {
  return static_cast<int>((color >> shift) & 0xFF);
}

// Nearest integer of (a*w + b*(255-w)) / 255 in exact integer arithmetic. Over
// the odd 255 the value is never an exact half, so no tie rule comes into it.
int exactBlend(int a, int b, int w) {
  return (2 * (a * w + b * (255 - w)) + 255) / 510;
}

template <typename Body>
std::string expectError(int32_t number, Body body) {
  try {
    body();
    ADD_FAILURE() << "expected error " << number;
  } catch (const Error& e) {
    EXPECT_EQ(e.Number(), number) << e.what();
    return e.what();
  }
  return "";
}

TEST(BlendColor, FullWeightGivesFirstAndZeroWeightGivesSecond) {
  const OLE_COLOR colors[] = {0x000000, 0xFFFFFF, 0x123456, 0xC00000, 0x0096E7, 0x7F807F};
  for (OLE_COLOR c : colors) {
    for (OLE_COLOR d : colors) {
      EXPECT_EQ(BlendColor(c, d, 255), c);
      EXPECT_EQ(BlendColor(c, d, 0), d);
    }
  }
}

TEST(BlendColor, EveryChannelIsTheNearestIntegerOfTheExactMix) {
  // Each channel gets different values, so mixed-up channels are caught too.
  for (int a = 0; a < 256; a += 3) {
    for (int b = 0; b < 256; b += 5) {
      const OLE_COLOR colorA = RGB(a, 255 - a, (a * 7) & 0xFF);
      const OLE_COLOR colorB = RGB(b, (b * 3) & 0xFF, 255 - b);
      for (int w = 0; w < 256; ++w) {
        const OLE_COLOR mixed = BlendColor(colorA, colorB, w);
        ASSERT_EQ(channel(mixed, 0), exactBlend(a, b, w)) << a << " " << b << " " << w;
        ASSERT_EQ(channel(mixed, 8), exactBlend(255 - a, (b * 3) & 0xFF, w));
        ASSERT_EQ(channel(mixed, 16), exactBlend((a * 7) & 0xFF, 255 - b, w));
      }
    }
  }
}

TEST(BlendColor, WeightsOutsideTheByteRangeMixByTheFormulaOrOverflow) {
  EXPECT_EQ(BlendColor(0x202020, 0x202020, 1000), 0x202020u);
  EXPECT_EQ(BlendColor(0, 0, std::numeric_limits<int32_t>::min()), 0u);
  EXPECT_EQ(BlendColor(0x000064, 0x000032, 510), 0x000096u);  // 200 - 50
  const std::string message = expectError(errOverflow, [] { BlendColor(0xFFFFFF, 0, 300); });
  EXPECT_NE(message.find("BlendColor"), std::string::npos);
  EXPECT_NE(message.find("300"), std::string::npos);
  expectError(errOverflow, [] { BlendColor(0, 0xFFFFFF, 300); });
  expectError(errOverflow, [] { BlendColor(0, 0xFFFFFF, -1); });
}

TEST(BlendColor, SystemColoursAreResolvedBeforeMixing) {
  SystemColors::Set(COLOR_BTNFACE, 0x204060);
  const OLE_COLOR face = kSystemColorFlag | COLOR_BTNFACE;
  EXPECT_EQ(TranslateSysColor(face), 0x204060u);
  EXPECT_EQ(TranslateSysColor(0x204060), 0x204060u);
  EXPECT_EQ(BlendColor(face, 0xFFFFFF, 255), 0x204060u);
  EXPECT_EQ(BlendColor(0, face, 0), 0x204060u);
  EXPECT_EQ(BlendColor(face, 0, 128),
            RGB(exactBlend(0x60, 0, 128), exactBlend(0x40, 0, 128), exactBlend(0x20, 0, 128)));
  SystemColors::Reset();
}

TEST(ColorToVertexColor, ChannelsMoveToTheHighByteOfSixteenBits) {
  const VertexColor red = ColorToVertexColor(0x0000FF);
  EXPECT_EQ(red.Red, -256);
  EXPECT_EQ(red.Green, 0);
  EXPECT_EQ(red.Blue, 0);
  const VertexColor black = ColorToVertexColor(0);
  EXPECT_EQ(black.Red | black.Green | black.Blue, 0);
  for (int v = 0; v < 256; ++v) {
    const VertexColor vertex = ColorToVertexColor(RGB(v, 255 - v, v ^ 0x55));
    ASSERT_EQ(static_cast<uint16_t>(vertex.Red), v * 256);
    ASSERT_EQ(static_cast<uint16_t>(vertex.Green), (255 - v) * 256);
    ASSERT_EQ(static_cast<uint16_t>(vertex.Blue), (v ^ 0x55) * 256);
  }
}

TEST(ColorToVertexColor, MoreThanSixHexDigitsIsOverflow) {
  for (OLE_COLOR wide : {0x1000000u, kSystemColorFlag | COLOR_BTNFACE, 0xFFFFFFFFu}) {
    expectError(errOverflow, [wide] { ColorToVertexColor(wide); });
  }
}

TEST(ColorToRGB, SplitsIntoChannelsAndWiderValuesFollowTheArithmetic) {
  for (int v = 0; v < 256; ++v) {
    const RGBTriple t = ColorToRGB(RGB(v, 255 - v, v ^ 0xA5));
    ASSERT_EQ(t.Red, v);
    ASSERT_EQ(t.Green, 255 - v);
    ASSERT_EQ(t.Blue, v ^ 0xA5);
  }
  const RGBTriple wide = ColorToRGB(0x01020304);
  EXPECT_EQ(wide.Blue, 0x0102);
  EXPECT_EQ(wide.Green, 0x03);
  EXPECT_EQ(wide.Red, 0x04);
  expectError(errOverflow, [] { ColorToRGB(0x80000000); });
}

}  // namespace
}  // namespace velt
