// veltSlider on a headless form: the pixel-drawn thumb, groove, ticks and
// labels, thumb placement and pointer values with their rounding, the event
// orders of mouse, keyboard and timer, the fixed thickness and persistence.

#include "velt/controls/range/veltSlider.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "range/RangeLook.hpp"
#include "support/HeadlessForm.hpp"
#include "velt/foundation/ColorScheme.hpp"
#include "velt/foundation/Colors.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/PropertyBag.hpp"

namespace velt {
namespace {

using test::PixelAt;
using test::Spans;
using Names = std::vector<std::string>;

constexpr OLE_COLOR kWhite = 0xFFFFFF;
constexpr OLE_COLOR kDarkBlue = 0xC00000;
constexpr OLE_COLOR kOrange = 38631;

const ColorScheme kNormal = SchemeNormal(kWhite, kDarkBlue, kWhite);
const ColorScheme kHover = SchemeHover(kWhite, kDarkBlue, kWhite);
const ColorScheme kDisabled = SchemeDisabled(kWhite, kDarkBlue, kWhite);
const OLE_COLOR kBackground = BlendColor(kWhite, kDarkBlue, 240);

// The pointer as it ends up, rows 3 to 20, columns p to p + 10 (horizontal):
// T FillTop, M FillMiddle, B FillBottom, L EdgeLight, m EdgeMid, D EdgeDark,
// 0-2 the rows of the FillMiddle -> FillBottom gradient, '.' not drawn.
const char* const kThumbMap[] = {
    ".BBBBBBBBB.", "B000000000D", "B111111111D", "B22222222BD", "BTTTTTTTMBD", "BTTTTTTTMBD",
    "BTTTTTTTMBD", "BTTTTTTTMBD", "BTTTTTTTMBD", "BTTTTTTTMBD", "BTTTTTTTMBD", "BLTTTTTmMBD",
    "MLLTTTTmBDD", ".MLLTTmMDD.", "..MLmmMBB..", "...BMMBD...", "....BMB....", ".....B.....",
};

// The gradient rectangle keeps its top-to-bottom mode when the slider is
// vertical, so there it runs along the groove, over its 9 pixels.
OLE_COLOR mapColor(char c, int32_t col, bool vertical, const ColorScheme& s) {
  if (c >= '0' && c <= '2')
    return vertical ? test::GradientAt(s.FillMiddle, s.FillBottom, 9, col - 1)
                    : test::GradientAt(s.FillMiddle, s.FillBottom, 3, c - '0');
  const std::string letters = "TMBLmD";
  const OLE_COLOR colors[] = {s.FillTop,   s.FillMiddle, s.FillBottom,
                              s.EdgeLight, s.EdgeMid,    s.EdgeDark};
  return colors[letters.find(c)];
}

class veltSliderTest : public ::testing::Test {
 protected:
  void add(int32_t width, int32_t height) {
    slider = hf.form.Add<veltSlider>("veltSlider1", 10, 10, width, height);
    site = hf.form.FindSite("veltSlider1");
  }
  const Canvas& surface() { return site->Surface(); }
  // Script steps in the slider's own pixels (it sits at 10, 10).
  void move(int32_t x, int32_t y) { hf.system->PostMouseMove(10 + x, 10 + y); }
  void press(int32_t x, int32_t y) { hf.system->PostMouseDown(1, 10 + x, 10 + y); }
  void release(int32_t x, int32_t y) { hf.system->PostMouseUp(1, 10 + x, 10 + y); }
  void clickAt(int32_t x, int32_t y) {
    press(x, y);
    release(x, y);
    hf.Run();
  }
  // The pointer drawn from `p` along the groove, every drawn pixel checked;
  // the pixels it leaves out show the background.
  ::testing::AssertionResult thumbAt(int32_t p, const ColorScheme& s) {
    const bool vertical = slider->Orientation() == pbVertical;
    for (int32_t row = 0; row < 18; ++row) {
      for (int32_t col = 0; col < 11; ++col) {
        const char c = kThumbMap[row][col];
        const int32_t along = p + col;
        const int32_t across = row + 3;
        const OLE_COLOR actual =
            vertical ? PixelAt(surface(), across, along) : PixelAt(surface(), along, across);
        const OLE_COLOR expected = c == '.' ? kBackground : mapColor(c, col, vertical, s);
        if (actual != expected)
          return ::testing::AssertionFailure()
                 << "'" << c << "' at +" << col << ", row " << row + 3 << ": 0x" << std::hex
                 << actual << ", expected 0x" << expected;
      }
    }
    return ::testing::AssertionSuccess();
  }
  // The labels printed in the palette's Text colour on the background, each
  // centred on its position along the groove, 26 pixels across.
  ::testing::AssertionResult labelsAre(const std::vector<std::pair<std::string, int32_t>>& labels) {
    const bool vertical = slider->Orientation() == pbVertical;
    Canvas expected(surface().ScaleWidth(), surface().ScaleHeight());
    expected.Font(surface().Font());
    expected.BackColor(kBackground);
    expected.ForeColor(slider->Palette().Text);
    for (const auto& [text, at] : labels) {
      const auto along = static_cast<float>(std::trunc(at - expected.TextWidth(text) / 2.0));
      expected.CurrentX(vertical ? 26.0f : along);
      expected.CurrentY(vertical ? along : 26.0f);
      expected.Print(text);
    }
    const test::Region strip = vertical ? test::Region{26, 0} : test::Region{0, 26};
    const test::InkBox wrong = test::DifferenceBox(surface(), expected, strip);
    if (wrong.Empty()) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "labels differ in (" << wrong.left << "," << wrong.top
                                         << ")-(" << wrong.right << "," << wrong.bottom << ")";
  }

  test::HeadlessForm hf;
  std::shared_ptr<veltSlider> slider;
  Site* site = nullptr;
};

// ---- Looks ------------------------------------------------------------------

TEST_F(veltSliderTest, NewSliderKeepsItsThicknessAndCentresTheThumb) {
  add(100, 40);
  EXPECT_EQ(slider->ID(), 11);
  EXPECT_EQ(slider->ClassName(), "veltSlider");
  EXPECT_EQ(slider->TabSelectColor(), kOrange);
  EXPECT_EQ(slider->TickStyle(), Tick_None);
  EXPECT_EQ(slider->Min(), 0);
  EXPECT_EQ(slider->Max(), 10);
  EXPECT_EQ(slider->Value(), 5);
  EXPECT_EQ(slider->State(), veltSlider::ssRest);
  EXPECT_EQ(surface().ScaleHeight(), 25);
  EXPECT_EQ(site->Height(), 25 * 15);
  EXPECT_EQ(slider->ThumbPos(), 40);
  EXPECT_TRUE(thumbAt(45, kNormal));
  EXPECT_EQ(PixelAt(surface(), 50, 20), kNormal.FillBottom) << "the tip";
  EXPECT_FALSE(slider->HoverTimerRunning());
}

TEST_F(veltSliderTest, VerticalSliderDrawsTheSameThumbTransposed) {
  add(100, 40);
  slider->Orientation(pbVertical);  // keeps the height a horizontal slider had
  EXPECT_EQ(surface().ScaleHeight(), 25);
  site->MovePixels(10, 10, 40, 100);
  EXPECT_EQ(surface().ScaleWidth(), 25);
  EXPECT_EQ(surface().ScaleHeight(), 100);
  EXPECT_TRUE(thumbAt(45, kNormal));
  // The groove's first line runs down column 8, the thumb's body across it.
  EXPECT_EQ(test::RunsOf(surface(), kNormal.FillTop, 8, true),
            (Spans{{8, 44}, {46, 52}, {56, 91}}));
}

TEST_F(veltSliderTest, DisabledSliderShowsGrooveAndTicksButNoThumb) {
  add(100, 25);
  slider->TickStyle(Tick_Four);
  slider->Enabled(false);
  EXPECT_EQ(slider->State(), veltSlider::ssDisabled);
  const ColorScheme& d = kDisabled;
  EXPECT_EQ(PixelAt(surface(), 50, 3), kBackground);
  EXPECT_EQ(test::RunsOf(surface(), d.FillTop, 8, false), (Spans{{8, 91}}));
  EXPECT_EQ(test::RunsOf(surface(), d.FillMiddle, 9, false), (Spans{{8, 91}}));
  EXPECT_EQ(test::RunsOf(surface(), d.FillMiddle, 10, false), (Spans{{8, 91}}));
  EXPECT_EQ(test::RunsOf(surface(), d.FillBottom, 11, false), (Spans{{8, 91}}));
  EXPECT_EQ(test::RunsOf(surface(), d.FillTop, 7, true), (Spans{{9, 10}}));
  EXPECT_EQ(test::RunsOf(surface(), d.FillBottom, 92, true), (Spans{{9, 10}}));
  // Main ticks at the middle and both ends, quarter ticks at 2 and 7.
  for (int32_t x : {10, 50, 90})
    EXPECT_EQ(test::RunsOf(surface(), d.Text, x, true), (Spans{{15, 24}})) << x;
  for (int32_t x : {26, 66})
    EXPECT_EQ(test::RunsOf(surface(), d.FillBottom, x, true), (Spans{{11, 11}, {15, 19}})) << x;
  EXPECT_EQ(test::CountColor(surface(), d.Text), 30);

  slider->TickStyle(Tick_None);
  EXPECT_EQ(test::CountColor(surface(), d.Text), 0);
}

TEST_F(veltSliderTest, ValueStylesLabelTicksWithALeadingBlankAtTheEnds) {
  add(100, 25);
  slider->TickStyle(Tick_Half_Value);
  EXPECT_EQ(surface().ScaleHeight(), 41);
  ASSERT_GT(surface().TextWidth(" 10"), surface().TextWidth("10"));
  EXPECT_TRUE(labelsAre({{"5", 50}, {" 10", 90}, {" 0", 10}}));

  slider->TickStyle(Tick_Four_Value);
  slider->Min(-10);
  EXPECT_TRUE(labelsAre({{"0", 50}, {"-5", 30}, {"5", 70}, {" 10", 90}, {"-10", 10}}));

  slider->Orientation(pbVertical);
  site->MovePixels(10, 10, 25, 100);
  const int32_t width = surface().TextWidth("10") + 33 + surface().TextWidth("-10");
  EXPECT_EQ(surface().ScaleWidth(), width);
  EXPECT_TRUE(labelsAre({{"0", 50}, {"-5", 30}, {"5", 70}, {" 10", 90}, {"-10", 10}}));

  slider->TickStyle(Tick_Four);
  EXPECT_EQ(surface().ScaleWidth(), 25);
  site->MovePixels(10, 10, 60, 60);
  EXPECT_EQ(surface().ScaleWidth(), 25) << "a resize keeps the thickness";
  EXPECT_EQ(surface().ScaleHeight(), 60);
}

// ---- Thumb placement and pointer values -------------------------------------

TEST_F(veltSliderTest, ThumbMovesInWholePercentsRoundedHalfToEven) {
  add(100, 25);
  slider->Min(3);
  slider->Value(4);  // 14.29 % of 80
  EXPECT_EQ(slider->ThumbPos(), 11);
  EXPECT_TRUE(thumbAt(16, kNormal));
  slider->Min(0);
  slider->Max(200);
  slider->Value(5);  // 2.5 % rounds to 2, not 3
  EXPECT_EQ(slider->ThumbPos(), 1);
  slider->Max(10);
  slider->Value(20);  // outside the range: drawn where it falls
  EXPECT_EQ(slider->Value(), 20);
  EXPECT_EQ(slider->ThumbPos(), 160);
  slider->Value(-2000000000);
  EXPECT_LT(slider->ThumbPos(), -1000);
}

TEST_F(veltSliderTest, PressMovesTheThumbCentreToThePointer) {
  add(100, 25);
  clickAt(30, 10);
  EXPECT_EQ(slider->Value(), 2);
  slider->Max(100);
  const std::vector<std::pair<int32_t, int32_t>> cases = {
      {12, 2},    // 2.5 % rounds to 2
      {20, 12},   // 12.5 % rounds to 12
      {10, 0},    // the thumb margin itself
      {0, 0},     // before it: clamped to Min
      {99, 100},  // 111 %: clamped to Max
  };
  for (const auto& [x, value] : cases) {
    clickAt(x, 10);
    EXPECT_EQ(slider->Value(), value) << "x " << x;
  }
  slider->Orientation(pbVertical);
  site->MovePixels(10, 10, 25, 100);
  clickAt(12, 30);
  EXPECT_EQ(slider->Value(), 25) << "vertical sliders take Y";
}

// ---- Events -----------------------------------------------------------------

TEST_F(veltSliderTest, DragReportsValueThenSlideAndClicksTwiceOnRelease) {
  add(100, 25);
  test::EventLog log(*site);
  move(50, 10);
  press(30, 10);
  move(70, 10);
  move(71, 10);
  release(71, 10);
  hf.Run();
  EXPECT_EQ(log.Names(), (Names{"ValueChange", "ValueChange", "Slide", "Slide", "Click", "Click"}));
  EXPECT_EQ(slider->Value(), 7);
  EXPECT_FALSE(slider->MouseIsDown());

  log.Clear();
  press(50, 10);
  release(50, 200);  // outside: only the release's own click
  hf.Run();
  EXPECT_EQ(log.Names(), (Names{"ValueChange", "Click"}));
  hf.system->PostMouseDown(2, 20, 20);
  hf.system->PostMouseUp(2, 20, 20);
  hf.Run();
  EXPECT_EQ(log.Names().size(), 2u) << "other buttons do nothing";
}

TEST_F(veltSliderTest, TimerTracksTheThumbAndClicksWhileThePressRests) {
  add(100, 25);
  // The thumb is hit strictly inside 45 < x < 55, 3 < y < 20.
  for (const auto& [x, y] : std::vector<std::pair<int32_t, int32_t>>{{20, 10}, {50, 3}, {55, 10}}) {
    move(x, y);
    hf.Run();
    EXPECT_FALSE(slider->HoverTimerRunning()) << x << "," << y;
  }
  move(50, 10);
  hf.Run();
  EXPECT_TRUE(slider->HoverTimerRunning());
  hf.Tick();
  EXPECT_EQ(slider->State(), veltSlider::ssHover);
  EXPECT_TRUE(thumbAt(45, kHover));

  test::EventLog log(*site);
  press(50, 10);
  hf.Run();
  hf.Tick(3);
  EXPECT_EQ(slider->State(), veltSlider::ssPressed);
  EXPECT_TRUE(thumbAt(45, kNormal));
  EXPECT_EQ(log.Names(), (Names{"Click", "Click", "Click"}));

  hf.system->SetCursor(300, 300);
  hf.Tick();
  EXPECT_EQ(slider->State(), veltSlider::ssRest);
  EXPECT_FALSE(slider->HoverTimerRunning());
  EXPECT_EQ(log.Names().size(), 3u);
}

TEST_F(veltSliderTest, ArrowKeysStepAlongTheSliderAxisWithinTheRange) {
  add(100, 25);
  site->SetFocus();
  test::EventLog log(*site);
  for (int16_t key : {39, 38, 40, 37, 37})
    hf.system->PostKeyDown(key);
  hf.Run();
  EXPECT_EQ(log.Lines(),
            (Names{"KeyDown(i39, i0)", "ValueChange()", "KeyDown(i38, i0)", "KeyDown(i40, i0)",
                   "KeyDown(i37, i0)", "ValueChange()", "KeyDown(i37, i0)", "ValueChange()"}));
  EXPECT_EQ(slider->Value(), 4);

  slider->Value(0);
  log.Clear();
  hf.system->PostKeyDown(37);
  hf.system->PostKeyPress('a');
  hf.system->PostKeyUp(37);
  hf.Run();
  EXPECT_EQ(log.Names(), (Names{"KeyDown", "KeyPress", "KeyUp"})) << "no step below Min";

  slider->Orientation(pbVertical);
  auto zero = slider->KeyDown.connect([](int16_t& code, int16_t&) {
    if (code == 38) code = 0;
  });
  for (int16_t key : {39, 40, 38})
    hf.system->PostKeyDown(key);
  hf.Run();
  EXPECT_EQ(slider->Value(), 1) << "Right ignored, Down +1, Up suppressed by the handler";
}

TEST_F(veltSliderTest, DisabledSliderReportsNoValueUntilEnabledAgain) {
  add(100, 25);
  test::EventLog log(*site);
  slider->Enabled(false);
  slider->Value(7);
  EXPECT_TRUE(log.Lines().empty());
  EXPECT_EQ(test::CountColor(surface(), kDisabled.EdgeDark), 0) << "no thumb";
  slider->Value(5);  // the value last reported: no change at all
  EXPECT_EQ(slider->Value(), 7);
  slider->Enabled(true);
  EXPECT_EQ(slider->State(), veltSlider::ssIdle);
  EXPECT_EQ(log.Names(), (Names{"ValueChange"}));
  EXPECT_EQ(slider->LastValue(), 7);
}

TEST_F(veltSliderTest, HandlersMayChangeTheValueOrRemoveTheSlider) {
  add(100, 25);
  auto again = slider->ValueChange.connect([&] {
    if (slider->Value() == 3) slider->Value(8);
  });
  test::EventLog log(*site);
  slider->Value(3);
  EXPECT_EQ(log.Names(), (Names{"ValueChange", "ValueChange"}));
  EXPECT_TRUE(thumbAt(69, kNormal));
  EXPECT_NE(PixelAt(surface(), 39, 10), kNormal.EdgeDark) << "no thumb left at 3";

  auto remove = slider->ValueChange.connect([&] { hf.form.RemoveControl("veltSlider1"); });
  slider->Value(1);
  EXPECT_EQ(hf.form.FindSite("veltSlider1"), nullptr);
}

// ---- Properties and persistence ---------------------------------------------

TEST_F(veltSliderTest, MinAndMaxKeepTheRangeAndPullTheValueIn) {
  add(100, 25);
  site->ClearChangedProperties();
  slider->Min(20);
  EXPECT_EQ(slider->Min(), 9);
  EXPECT_EQ(slider->Value(), 9);
  slider->Max(2);
  EXPECT_EQ(slider->Max(), 10);
  slider->Min(-5);
  slider->Max(0);
  EXPECT_EQ(slider->Value(), 0);
  EXPECT_EQ(site->ChangedProperties(), (Names{"Min", "Value", "Max", "Min", "Max", "Value"}));
}

TEST_F(veltSliderTest, FocusTintsOnlyTheRestingLook) {
  add(100, 25);
  slider->TabSelectColor(0x00FF00);
  site->SetFocus();
  hf.Run();
  const ColorScheme focused = SchemeFocused(kWhite, kDarkBlue, 0x00FF00);
  EXPECT_TRUE(thumbAt(45, focused));
  EXPECT_EQ(PixelAt(surface(), 20, 8), focused.FillTop);
  move(50, 10);
  hf.Run();
  hf.Tick();
  EXPECT_TRUE(thumbAt(45, kHover));
}

TEST_F(veltSliderTest, PropertiesRoundTripInTableOrderWithoutRangeChecks) {
  add(100, 25);
  PropertyBag defaults;
  slider->WriteProperties(defaults);
  EXPECT_EQ(defaults.Count(), 0u) << "defaults are not stored";

  slider->BackColor(0x010203);
  slider->ForeColor(0x040506);
  slider->Enabled(false);
  slider->Font(std::make_shared<Font>(test::kPinnedFamily, 10.0f));
  slider->TabSelectColor(0x070809);
  slider->Orientation(pbVertical);
  slider->TickStyle(Tick_Four);
  slider->Max(50);
  slider->Min(20);
  slider->Value(30);
  PropertyBag bag;
  slider->WriteProperties(bag);
  EXPECT_EQ(bag.Keys(), (Names{"BackColor", "ForeColor", "Enabled", "Font", "TabSelectColor",
                               "Orientation", "TickStyle", "Min", "Max", "Value"}));
  bag.WriteProperty("Min", Variant(int32_t{60}));  // above Max: taken as stored
  const PropertyBag loaded = PropertyBag::FromJson(bag.ToJson());
  auto copy = std::make_shared<veltSlider>();
  hf.form.AddControl(copy, "Copy", 0, 100, 25, 100, &loaded);
  EXPECT_EQ(copy->BackColor(), 0x010203u);
  EXPECT_EQ(copy->ForeColor(), 0x040506u);
  EXPECT_FALSE(copy->Enabled());
  EXPECT_EQ(copy->Font()->Size(), 10.0f);
  EXPECT_EQ(copy->TabSelectColor(), 0x070809u);
  EXPECT_EQ(copy->Orientation(), pbVertical);
  EXPECT_EQ(copy->TickStyle(), Tick_Four);
  EXPECT_EQ(copy->Min(), 60);
  EXPECT_EQ(copy->Max(), 50);
  EXPECT_EQ(copy->Value(), 30);

  PropertyBag bad;
  bad.WriteProperty("Max", Variant("ten"));
  EXPECT_THROW(hf.form.AddControl(std::make_shared<veltSlider>(), "Bad", 0, 200, 100, 25, &bad),
               Error);
}

}  // namespace
}  // namespace velt
