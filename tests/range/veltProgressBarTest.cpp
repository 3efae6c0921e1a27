// veltProgressBar on a headless form: block and comet geometry, the caption
// with its halo, the disabled look, value clamping and persistence.

#include "velt/controls/range/veltProgressBar.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "range/RangeLook.hpp"
#include "support/ButtonLook.hpp"
#include "velt/foundation/Colors.hpp"

namespace velt {
namespace {

using namespace test;

struct Shades {
  OLE_COLOR light, middle, dark;
};
Shades shades(int32_t light, int32_t middle, int32_t dark) {
  return {BlendColor(kWhite, kDarkBlue, light), BlendColor(kWhite, kDarkBlue, middle),
          BlendColor(kWhite, kDarkBlue, dark)};
}
const Shades kBlock = shades(180, 140, 80);
const Shades kSecond = shades(198, 165, 120);
const Shades kThird = shades(210, 180, 130);

// Six-pixel blocks starting at these coordinates.
Spans blocksFrom(std::vector<int32_t> starts) {
  Spans spans;
  for (int32_t s : starts)
    spans.emplace_back(s, s + 5);
  return spans;
}

class veltProgressBarTest : public RangeControlTest {
 protected:
  void add(int32_t width, int32_t height, MyOrientation orientation = pbHorizontal) {
    bar = RangeControlTest::add<veltProgressBar>("veltProgressBar1", width, height);
    bar->Orientation(orientation);
  }
  bool vertical() { return bar->Orientation() == pbVertical; }
  // Where blocks of these shades lie: their first row (horizontal) or first
  // column (vertical), 3 pixels in, holds the light colour.
  Spans blocks(const Shades& s) { return RunsOf(surface(), s.light, 3, vertical()); }
  // The block across the whole thickness at `along`, 3-pixel insets both sides.
  ::testing::AssertionResult wholeBlockAt(int32_t along, const Shades& s) {
    const int32_t thickness = vertical() ? surface().ScaleWidth() : surface().ScaleHeight();
    auto at = [&](int32_t across) {
      return vertical() ? PixelAt(surface(), across, along) : PixelAt(surface(), along, across);
    };
    for (int32_t across = 3; across <= thickness - 4; ++across) {
      if (at(across) != BoxAt(s.light, s.middle, s.dark, 3, thickness - 3, across))
        return ::testing::AssertionFailure() << "block pixel at " << along << "/" << across;
    }
    for (int32_t inset : {2, thickness - 3}) {
      const OLE_COLOR c = at(inset);
      if (c == s.light || c == s.middle || c == s.dark || c == at(inset == 2 ? 3 : inset - 1))
        return ::testing::AssertionFailure() << "no inset at " << along << "/" << inset;
    }
    return ::testing::AssertionSuccess();
  }
  // The text centred on its width and on the height of "I", printed in the
  // back colour at the sixteen halo offsets and then once in the fore colour.
  Canvas outlined(const Canvas& bare, const std::string& text) {
    Canvas expected = bare;
    expected.Font(surface().Font());
    const auto x = static_cast<float>(
        std::trunc(expected.ScaleWidth() / 2.0 - expected.TextWidth(text) / 2.0));
    const auto y = static_cast<float>(
        std::trunc(expected.ScaleHeight() / 2.0 - expected.TextHeight("I") / 2.0));
    const int halo[16][2] = {{-1, 0}, {0, -1}, {1, 0}, {0, 1}, {-1, -1}, {1, -1}, {1, 1}, {-1, 1},
                             {-2, 0}, {0, -2}, {2, 0}, {0, 2}, {-2, -2}, {2, -2}, {2, 2}, {-2, 2}};
    for (const auto& d : halo) {
      expected.ForeColor(bar->BackColor());
      expected.CurrentX(x + d[0]);
      expected.CurrentY(y + d[1]);
      expected.Print(text);
    }
    expected.ForeColor(bar->ForeColor());
    expected.CurrentX(x);
    expected.CurrentY(y);
    expected.Print(text);
    return expected;
  }
  ::testing::AssertionResult captionIs(const std::string& text) {
    const std::string caption = bar->Caption();
    bar->Caption("");
    const Canvas bare = surface();
    bar->Caption(caption);
    const InkBox wrong = DifferenceBox(surface(), outlined(bare, text));
    if (wrong.Empty()) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "differs in (" << wrong.left << "," << wrong.top
                                         << ")-(" << wrong.right << "," << wrong.bottom << ")";
  }

  std::shared_ptr<veltProgressBar> bar;
};

TEST_F(veltProgressBarTest, BlockCountFollowsValueAndSlots) {
  add(100, 30);  // tall enough that the caption's halo stays off the blocks' first row
  EXPECT_TRUE(HasButtonChrome(surface(), kNormal));
  EXPECT_EQ(bar->BlockSlots(), 11);
  EXPECT_EQ(blocks(kBlock), blocksFrom({4, 12, 20, 28, 36, 44}));
  EXPECT_TRUE(wholeBlockAt(4, kBlock));
  EXPECT_TRUE(captionIs("50 %"));

  bar->Caption("");
  bar->Value(100);
  EXPECT_EQ(blocks(kBlock).size(), 11u);
  bar->Value(1);
  EXPECT_EQ(blocks(kBlock), blocksFrom({4}));
  bar->Value(0);
  EXPECT_TRUE(blocks(kBlock).empty());

  site->MovePixels(10, 10, 14, 30);  // exactly one block fits
  bar->Value(1);
  EXPECT_EQ(bar->BlockSlots(), 1);
  EXPECT_EQ(blocks(kBlock), blocksFrom({4}));
  site->MovePixels(10, 10, 5, 30);  // less than nothing
  EXPECT_EQ(bar->BlockSlots(), -1);
  EXPECT_TRUE(blocks(kBlock).empty());
  site->MovePixels(10, 10, 100, 30);
  bar->Caption("Whatever it says");
  bar->Enabled(false);  // only the disabled frame
  EXPECT_TRUE(HasButtonChrome(surface(), kDisabled));
  EXPECT_TRUE(blocks(kBlock).empty());
  EXPECT_EQ(CountColor(surface(), bar->ForeColor()), 0);
}

TEST_F(veltProgressBarTest, VerticalBlocksGrowUpwardsAndShowNoCaption) {
  add(20, 100, pbVertical);
  bar->Caption("Shown only across");
  EXPECT_EQ(blocks(kBlock), blocksFrom({50, 58, 66, 74, 82, 90}));
  EXPECT_TRUE(wholeBlockAt(90, kBlock));
  // The trough is shaded across the thickness, halves side by side.
  for (int32_t x = 1; x < 19; ++x)
    EXPECT_EQ(PixelAt(surface(), x, 20),
              BoxAt(kNormal.FillTop, kNormal.FillMiddle, kNormal.FillBottom, 0, 20, x))
        << x;
  EXPECT_EQ(CountColor(surface(), bar->ForeColor()), 0) << "no caption";
}

// The lead on top for a vertical bar, which rises.
TEST_F(veltProgressBarTest, CometTrailsTwoFainterBlocksAndIsCutAtBothInsets) {
  add(100, 20);
  bar->Style(tSearch);
  bar->Caption("");
  struct Case {
    int16_t value;
    Spans lead, second, third;
  };
  const std::vector<Case> across = {
      {50, {{53, 58}}, {{45, 50}}, {{37, 42}}},  // head 59
      {85, {{95, 96}}, {{87, 92}}, {{79, 84}}},  // head 101: the lead is cut at the right
      {6, {{3, 6}}, {}, {}},                     // head 7: cut at the left
      {3, {}, {}, {}},                           // head 3: nothing left of it
      {100, {}, {}, {}},                         // head 119: the comet has left
  };
  const std::vector<Case> upright = {{85, {{3, 4}}, {{7, 12}}, {{15, 20}}}};
  for (const auto* cases : {&across, &upright}) {
    if (cases == &upright) {
      bar->Orientation(pbVertical);
      site->MovePixels(10, 10, 20, 100);
    }
    for (const Case& c : *cases) {
      bar->Value(c.value);
      EXPECT_EQ(blocks(kBlock), c.lead) << c.value;
      EXPECT_EQ(blocks(kSecond), c.second) << c.value;
      EXPECT_EQ(blocks(kThird), c.third) << c.value;
    }
  }
  bar->Value(50);
  EXPECT_TRUE(wholeBlockAt(57, kThird));
}

// The halo reaches exactly two pixels beyond the text's ink on every side.
TEST_F(veltProgressBarTest, CaptionRulesAndItsHaloOfBackColour) {
  add(120, 24);
  bar->BackColor(0x00FFFF);
  bar->ForeColor(0x800000);
  bar->Value(0);
  bar->Caption("");
  const Canvas bare = surface();
  bar->Caption("Hi");
  const InkBox ink = InkOfText(surface().Font(), "Hi");
  const auto x = static_cast<int32_t>(std::trunc(60 - surface().TextWidth("Hi") / 2.0));
  const auto y = static_cast<int32_t>(std::trunc(12 - surface().TextHeight("I") / 2.0));
  EXPECT_EQ(DifferenceBox(surface(), bare),
            (InkBox{x + ink.left - 2, y + ink.top - 2, x + ink.right + 2, y + ink.bottom + 2}));
  EXPECT_TRUE(captionIs("Hi"));

  bar->Caption("%");
  bar->Value(7);
  EXPECT_TRUE(captionIs("7 %"));
  bar->Style(tSearch);
  EXPECT_TRUE(captionIs("Searching..."));
  bar->Caption("Copying");
  EXPECT_TRUE(captionIs("Copying"));
  bar->Caption("");
  EXPECT_EQ(CountColor(surface(), bar->ForeColor()), 0);
}

// Neither is checked: an unknown one draws no fill (nor, for the orientation,
// any shading), only the caption.
TEST_F(veltProgressBarTest, UnknownStyleOrOrientationDrawsNoFill) {
  add(100, 20);
  bar->Style(static_cast<MyType>(7));
  EXPECT_TRUE(blocks(kBlock).empty());
  EXPECT_TRUE(captionIs("%"));
  bar->Style(tNormal);
  bar->Orientation(static_cast<MyOrientation>(3));
  EXPECT_TRUE(blocks(kBlock).empty());
  EXPECT_EQ(PixelAt(surface(), 50, 3), kWhite);
}

TEST_F(veltProgressBarTest, ValueClampsWhenSetButNotWhenLoadedAndPropertiesRoundTrip) {
  add(100, 20);
  bar->Value(150);
  EXPECT_EQ(bar->Value(), 100);
  bar->Value(-5);
  EXPECT_EQ(bar->Value(), 0);
  bar->BackColor(0x010203);
  bar->Enabled(false);
  bar->Orientation(pbVertical);
  bar->Style(tSearch);
  bar->Value(42);
  bar->Caption("Busy");
  bar->ForeColor(0x040506);
  PropertyBag bag;
  bar->WriteProperties(bag);
  EXPECT_EQ(bag.Keys(), (Names{"BackColor", "Enabled", "Orientation", "Style", "Value", "Caption",
                               "ForeColor"}));
  reload<veltProgressBar>(bag, 100, 20);

  PropertyBag over;
  over.WriteProperty("Value", Variant(int16_t{150}));
  over.WriteProperty("Caption", Variant(""));
  auto loaded = std::make_shared<veltProgressBar>();
  Site& other = hf.form.AddControl(loaded, "Loaded", 0, 100, 100, 20, &over);
  EXPECT_EQ(loaded->Value(), 150);
  EXPECT_EQ(RunsOf(other.Surface(), kBlock.light, 3, false).size(), 11u);
}

}  // namespace
}  // namespace velt
