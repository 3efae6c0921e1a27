// veltSlider on a headless form: the pixel-drawn thumb, groove, ticks and
// labels, thumb placement and pointer values with their rounding, the event
// orders of mouse, keyboard and timer, the fixed thickness and persistence.

#include "velt/controls/range/veltSlider.hpp"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "range/RangeLook.hpp"
#include "velt/foundation/Colors.hpp"

namespace velt {
namespace {

using namespace test;

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
    return vertical ? GradientAt(s.FillMiddle, s.FillBottom, 9, col - 1)
                    : GradientAt(s.FillMiddle, s.FillBottom, 3, c - '0');
  const std::string letters = "TMBLmD";
  const OLE_COLOR colors[] = {s.FillTop,   s.FillMiddle, s.FillBottom,
                              s.EdgeLight, s.EdgeMid,    s.EdgeDark};
  return colors[letters.find(c)];
}

class veltSliderTest : public RangeControlTest {
 protected:
  void SetUp() override { slider = add<veltSlider>("veltSlider1", 100, 25); }
  void makeVertical(int32_t width = 25) {
    slider->Orientation(pbVertical);
    site->MovePixels(10, 10, width, 100);
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
    const Region strip = vertical ? Region{26, 0} : Region{0, 26};
    const InkBox wrong = DifferenceBox(surface(), expected, strip);
    if (wrong.Empty()) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "labels differ in (" << wrong.left << "," << wrong.top
                                         << ")-(" << wrong.right << "," << wrong.bottom << ")";
  }

  std::shared_ptr<veltSlider> slider;
};

TEST_F(veltSliderTest, KeepsItsThicknessAndDrawsTheThumbInBothOrientations) {
  site->MovePixels(10, 10, 100, 40);
  EXPECT_EQ(site->Height(), 25 * 15);
  EXPECT_EQ(slider->ThumbPos(), 40);
  EXPECT_TRUE(thumbAt(45, kNormal));

  slider->Orientation(pbVertical);  // keeps the height a horizontal slider had
  EXPECT_EQ(surface().ScaleHeight(), 25);
  site->MovePixels(10, 10, 40, 100);
  EXPECT_EQ(surface().ScaleWidth(), 25);
  EXPECT_TRUE(thumbAt(45, kNormal));
  // The groove's first line runs down column 8, the thumb's body across it.
  EXPECT_EQ(RunsOf(surface(), kNormal.FillTop, 8, true), (Spans{{8, 44}, {46, 52}, {56, 91}}));
}

// A disabled slider reports no value either, until it is enabled again.
TEST_F(veltSliderTest, DisabledSliderShowsGrooveAndTicksButNoThumb) {
  EventLog log(*site);
  slider->TickStyle(Tick_Four);
  slider->Enabled(false);
  EXPECT_EQ(slider->State(), veltSlider::ssDisabled);
  const ColorScheme& d = kDisabled;
  EXPECT_EQ(PixelAt(surface(), 50, 3), kBackground);
  EXPECT_EQ(RunsOf(surface(), d.FillTop, 8, false), (Spans{{8, 91}}));
  EXPECT_EQ(RunsOf(surface(), d.FillBottom, 11, false), (Spans{{8, 91}}));
  EXPECT_EQ(RunsOf(surface(), d.FillTop, 7, true), (Spans{{9, 10}}));
  // Main ticks at the middle and both ends, quarter ticks at 2 and 7.
  for (int32_t x : {10, 50, 90})
    EXPECT_EQ(RunsOf(surface(), d.Text, x, true), (Spans{{15, 24}})) << x;
  for (int32_t x : {26, 66})
    EXPECT_EQ(RunsOf(surface(), d.FillBottom, x, true), (Spans{{11, 11}, {15, 19}})) << x;
  EXPECT_EQ(CountColor(surface(), d.Text), 30);

  slider->Value(7);
  slider->Value(5);  // the value last reported: no change at all
  EXPECT_EQ(slider->Value(), 7);
  EXPECT_TRUE(log.Lines().empty());
  slider->Enabled(true);
  EXPECT_EQ(slider->State(), veltSlider::ssIdle);
  EXPECT_EQ(log.Names(), (Names{"ValueChange"}));
  EXPECT_EQ(slider->LastValue(), 7);
}

TEST_F(veltSliderTest, ValueStylesLabelTicksWithALeadingBlankAtTheEnds) {
  slider->TickStyle(Tick_Half_Value);
  EXPECT_EQ(surface().ScaleHeight(), 41);
  ASSERT_GT(surface().TextWidth(" 10"), surface().TextWidth("10"));
  EXPECT_TRUE(labelsAre({{"5", 50}, {" 10", 90}, {" 0", 10}}));

  slider->TickStyle(Tick_Four_Value);
  slider->Min(-10);
  EXPECT_TRUE(labelsAre({{"0", 50}, {"-5", 30}, {"5", 70}, {" 10", 90}, {"-10", 10}}));

  makeVertical();
  const int32_t width = surface().TextWidth("10") + 33 + surface().TextWidth("-10");
  EXPECT_EQ(surface().ScaleWidth(), width);
  EXPECT_TRUE(labelsAre({{"0", 50}, {"-5", 30}, {"5", 70}, {" 10", 90}, {"-10", 10}}));

  slider->TickStyle(Tick_Four);
  EXPECT_EQ(surface().ScaleWidth(), 25);
}

TEST_F(veltSliderTest, FocusTintsOnlyTheRestingLook) {
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

TEST_F(veltSliderTest, ThumbMovesInWholePercentsRoundedHalfToEven) {
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

// A press moves the thumb's centre to the pointer.
TEST_F(veltSliderTest, PointerValuesRoundHalfToEvenAndAreClamped) {
  clickAt(30, 10);
  EXPECT_EQ(slider->Value(), 2);
  slider->Max(100);
  const std::vector<std::pair<int32_t, int32_t>> cases = {
      {12, 2},    // 2.5 % rounds to 2
      {20, 12},   // 12.5 % rounds to 12
      {0, 0},     // before the thumb margin: clamped to Min
      {99, 100},  // 111 %: clamped to Max
  };
  for (const auto& [x, value] : cases) {
    clickAt(x, 10);
    EXPECT_EQ(slider->Value(), value) << "x " << x;
  }
  makeVertical();
  clickAt(12, 30);
  EXPECT_EQ(slider->Value(), 25) << "vertical sliders take Y";
}

TEST_F(veltSliderTest, MinAndMaxKeepTheRangeAndPullTheValueIn) {
  site->ClearChangedProperties();
  slider->Min(20);
  EXPECT_EQ((std::vector{slider->Min(), slider->Value()}), (std::vector{9, 9}));
  slider->Max(2);
  EXPECT_EQ(slider->Max(), 10);
  slider->Min(-5);
  slider->Max(0);
  EXPECT_EQ(slider->Value(), 0);
  EXPECT_EQ(site->ChangedProperties(), (Names{"Min", "Value", "Max", "Min", "Max", "Value"}));
  slider->Min(INT_MIN);
  slider->Max(INT_MAX);  // no width limit, unlike the scroll bar
  EXPECT_EQ(slider->Max(), INT_MAX);
}

TEST_F(veltSliderTest, DragReportsValueThenSlideAndClicksTwiceOnRelease) {
  EventLog log(*site);
  move(50, 10);
  press(30, 10);
  move(70, 10);
  move(71, 10);
  release(71, 10);
  hf.Run();
  EXPECT_EQ(log.Names(), (Names{"ValueChange", "ValueChange", "Slide", "Slide", "Click", "Click"}));
  EXPECT_EQ(slider->Value(), 7);

  log.Clear();
  press(50, 10);
  release(50, 200);  // outside: only the release's own click
  hf.Run();
  EXPECT_EQ(log.Names(), (Names{"ValueChange", "Click"}));
  clickAt(10, 10, 2);
  EXPECT_EQ(log.Names().size(), 2u) << "other buttons do nothing";
}

TEST_F(veltSliderTest, TimerTracksTheThumbAndClicksWhileThePressRests) {
  // The thumb is hit strictly inside 45 < x < 55, 3 < y < 20.
  for (const auto& [x, y] : std::vector<std::pair<int32_t, int32_t>>{{50, 3}, {55, 10}}) {
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

  EventLog log(*site);
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
  site->SetFocus();
  EventLog log(*site);
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
  hf.Run();
  EXPECT_EQ(log.Names(), (Names{"KeyDown"})) << "no step below Min";

  slider->Orientation(pbVertical);
  auto zero = slider->KeyDown.connect([](int16_t& code, int16_t&) {
    if (code == 38) code = 0;
  });
  for (int16_t key : {39, 40, 38})
    hf.system->PostKeyDown(key);
  hf.Run();
  EXPECT_EQ(slider->Value(), 1) << "Right ignored, Down +1, Up suppressed by the handler";
}

TEST_F(veltSliderTest, HandlersMayChangeTheValueOrRemoveTheSlider) {
  auto again = slider->ValueChange.connect([&] {
    if (slider->Value() == 3) slider->Value(8);
  });
  EventLog log(*site);
  slider->Value(3);
  EXPECT_EQ(log.Names(), (Names{"ValueChange", "ValueChange"}));
  EXPECT_EQ(slider->LastValue(), 8);
  EXPECT_TRUE(thumbAt(69, kNormal));
  EXPECT_NE(PixelAt(surface(), 39, 10), kNormal.EdgeDark) << "no thumb left at 3";

  auto remove = slider->ValueChange.connect([&] { hf.form.RemoveControl("veltSlider1"); });
  slider->Value(1);
  EXPECT_EQ(hf.form.FindSite("veltSlider1"), nullptr);
}

TEST_F(veltSliderTest, PropertiesRoundTripInTableOrderWithoutRangeChecks) {
  slider->BackColor(0x010203);
  slider->Enabled(false);
  slider->TabSelectColor(0x070809);
  slider->Orientation(pbVertical);
  slider->TickStyle(Tick_Four);
  slider->Max(50);
  slider->Min(20);
  slider->Value(30);
  PropertyBag bag;
  slider->WriteProperties(bag);
  EXPECT_EQ(bag.Keys(), (Names{"BackColor", "Enabled", "TabSelectColor", "Orientation", "TickStyle",
                               "Min", "Max", "Value"}));
  bag.WriteProperty("Min", Variant(int32_t{60}));  // above Max: taken as stored
  auto copy = reload<veltSlider>(bag, 25, 100);
  EXPECT_EQ((std::vector{copy->Min(), copy->Max(), copy->Value()}), (std::vector{60, 50, 30}));
}

// A range loaded as stored can leave no neighbour for a setter's correction.
TEST_F(veltSliderTest, ACorrectionWithoutANeighbourIsAnOverflow) {
  PropertyBag inverted;
  inverted.WriteProperty("Min", Variant(int32_t{INT_MAX}));
  inverted.WriteProperty("Max", Variant(int32_t{INT_MIN}));
  auto loaded = std::make_shared<veltSlider>();
  hf.form.AddControl(loaded, "Inverted", 0, 200, 100, 25, &inverted);
  EXPECT_EQ(errorOf(6, [&] { loaded->Max(5); }),
            "veltSlider.Max: no value lies above Min 2147483647");
  EXPECT_EQ(errorOf(6, [&] { loaded->Min(0); }),
            "veltSlider.Min: no value lies below Max -2147483648");
  EXPECT_EQ((std::vector{loaded->Min(), loaded->Max()}), (std::vector{INT_MAX, INT_MIN}));
}

}  // namespace
}  // namespace velt
