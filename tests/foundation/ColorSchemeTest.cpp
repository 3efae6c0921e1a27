#include "velt/foundation/ColorScheme.hpp"

#include <gtest/gtest.h>

#include <array>
#include <functional>

#include "velt/platform/Error.hpp"
#include "velt/platform/SystemColors.hpp"

namespace velt {
namespace {

// Exact nearest mix of two plain colours: weight/255 of a, the rest of b. The
// exact value is never a half (255 is odd), so rounding is to the nearest.
OLE_COLOR mix(OLE_COLOR a, OLE_COLOR b, int weight) {
  OLE_COLOR result = 0;
  for (int shift = 0; shift < 24; shift += 8) {
    const int ca = static_cast<int>((a >> shift) & 0xFF);
    const int cb = static_cast<int>((b >> shift) & 0xFF);
    const int numerator = ca * weight + cb * (255 - weight);
    result |= static_cast<OLE_COLOR>((2 * numerator + 255) / 510) << shift;
  }
  return result;
}

using Builder = std::function<ColorScheme(OLE_COLOR, OLE_COLOR, OLE_COLOR)>;

// Weights of Back against the mix colour, in field order FillTop, FillMiddle,
// FillBottom, EdgeLight, EdgeMid, EdgeDark, Text.
struct SchemeTable {
  const char* name;
  Builder build;
  std::array<int, 7> weights;
  bool textFromBack;  // the text mixes Back (not black) with the mix colour
  bool focusedMix;    // the mix colour is Fore mixed half-way with Third
};

const SchemeTable kTables[] = {
    {"Normal", SchemeNormal, {230, 190, 170, 220, 200, 120, 140}, false, false},
    {"Hover", SchemeHover, {245, 205, 185, 220, 200, 120, 140}, false, false},
    {"Pressed", SchemePressed, {170, 190, 230, 120, 120, 220, 140}, false, false},
    {"Disabled", SchemeDisabled, {200, 190, 180, 220, 200, 120, 140}, true, false},
    {"Focused", SchemeFocused, {230, 190, 170, 220, 200, 120, 140}, false, true},
};

struct Triple {
  OLE_COLOR back, fore, third;
};

const Triple kTriples[] = {
    {0xFFFFFF, 0xC00000, 0xFFFFFF},  // the push button's defaults
    {0xFFFFFF, 0x0096E7, 0xC00000},  // the focused button: TabSelectColor, ForeColor
    {0x102030, 0xF0E0D0, 0x00FF80},  // dark back, light fore: argument order matters
    {0x000000, 0x000000, 0xFFFFFF},
};

void expectScheme(const SchemeTable& table, const Triple& t) {
  SCOPED_TRACE(table.name);
  const ColorScheme s = table.build(t.back, t.fore, t.third);
  const OLE_COLOR m = table.focusedMix ? mix(t.fore, t.third, 128) : t.fore;
  const auto& w = table.weights;
  EXPECT_EQ(s.Fore, t.fore);
  EXPECT_EQ(s.Back, t.back);
  EXPECT_EQ(s.FillTop, mix(t.back, m, w[0]));
  EXPECT_EQ(s.FillMiddle, mix(t.back, m, w[1]));
  EXPECT_EQ(s.FillBottom, mix(t.back, m, w[2]));
  EXPECT_EQ(s.EdgeLight, mix(t.back, m, w[3]));
  EXPECT_EQ(s.EdgeMid, mix(t.back, m, w[4]));
  EXPECT_EQ(s.EdgeDark, mix(t.back, m, w[5]));
  EXPECT_EQ(s.Text, mix(table.textFromBack ? t.back : 0, m, w[6]));
  EXPECT_EQ(s.Accent1, mix(t.back, t.third, 230));
  EXPECT_EQ(s.Accent2, mix(t.back, t.third, 180));
  EXPECT_EQ(s.Accent3, mix(t.back, t.third, 130));
}

TEST(ColorScheme, EveryBuilderEveryFieldFromItsWeight) {
  for (const SchemeTable& table : kTables) {
    for (const Triple& t : kTriples)
      expectScheme(table, t);
  }
}

TEST(ColorScheme, SystemColoursStayInForeAndBackButAreResolvedForMixing) {
  SystemColors::Set(COLOR_BTNFACE, 0x336699);
  const OLE_COLOR face = kSystemColorFlag | COLOR_BTNFACE;
  const ColorScheme s = SchemeHover(face, 0x000000, face);
  EXPECT_EQ(s.Back, face);
  EXPECT_EQ(s.FillTop, mix(0x336699, 0, 245));
  EXPECT_EQ(s.Accent1, 0x336699u);
  SystemColors::Reset();
}

TEST(ColorScheme, NumberedEntriesFollowTheFieldOrder) {
  ColorScheme s;
  OLE_COLOR ColorScheme::*const fields[] = {
      &ColorScheme::Fore,       &ColorScheme::Back,       &ColorScheme::FillTop,
      &ColorScheme::FillMiddle, &ColorScheme::FillBottom, &ColorScheme::EdgeLight,
      &ColorScheme::EdgeMid,    &ColorScheme::EdgeDark,   &ColorScheme::Text,
      &ColorScheme::Accent1,    &ColorScheme::Accent2,    &ColorScheme::Accent3};
  for (int i = 0; i < ColorScheme::kCount; ++i)
    s.*fields[i] = 0x100 + i;
  for (int i = 0; i < ColorScheme::kCount; ++i)
    EXPECT_EQ(s[i], 0x100u + i);
  for (int bad : {-1, 12, 1000}) {
    try {
      (void)s[bad];
      ADD_FAILURE() << "entry " << bad;
    } catch (const Error& e) {
      EXPECT_EQ(e.Number(), errSubscriptOutOfRange);
    }
  }
}

}  // namespace
}  // namespace velt
