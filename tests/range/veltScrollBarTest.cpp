// veltScrollBar on a headless form: the layout and its rounding, the value
// model, track clicks, dragging and the timer with their event orders, the
// arrow buttons driven with real input, the thickness limits, painting in both
// orientations and persistence.

#include "velt/controls/range/veltScrollBar.hpp"

#include <gtest/gtest.h>

#include <climits>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "range/RangeLook.hpp"
#include "support/ButtonLook.hpp"
#include "velt/controls/buttons/veltXButton.hpp"

namespace velt {
namespace {

using namespace test;

class veltScrollBarTest : public RangeControlTest {
 protected:
  void SetUp() override { bar = add<veltScrollBar>("veltScrollBar1", 17, 200); }
  void makeHorizontal() {
    bar->Orientation(pbHorizontal);
    site->MovePixels(10, 10, 200, 17);
  }
  Site& arrowSite(int index) {
    return *site->FindChild("veltButton1(" + std::to_string(index) + ")");
  }

  // The thumb pixel for pixel: the button's edges on its rectangle, the face
  // shaded across the bar, and the grip (dark grooves with a light line after
  // each) across the middle.
  ::testing::AssertionResult thumbIn(const ColorScheme& p) {
    const ScrollBarGeometry g = bar->Geometry();
    const RectL r = g.ThumbRect(bar->ThumbPos());
    const bool across = g.Horizontal();
    const int32_t middle = (across ? r.Left : r.Top) + g.ThumbSize() / 2;
    const int32_t gripFrom = (g.Thickness() - 6) / 2;
    for (int32_t y = r.Top; y < r.Bottom; ++y) {
      for (int32_t x = r.Left; x < r.Right; ++x) {
        const int32_t a = across ? x : y;  // along the bar
        const int32_t c = across ? y : x;  // across it
        const bool innerX = x > r.Left && x < r.Right - 1;
        const bool innerY = y > r.Top && y < r.Bottom - 1;
        OLE_COLOR expected = BoxAt(p.FillTop, p.FillMiddle, p.FillBottom, 2, g.Thickness() - 2, c);
        if (y == r.Top && innerX)
          expected = GradientAt(p.EdgeLight, p.EdgeMid, r.Width() - 2, x - r.Left - 1);
        else if (y == r.Bottom - 1 && innerX)
          expected = p.EdgeDark;
        else if (x == r.Left && innerY)
          expected = GradientAt(p.EdgeLight, p.EdgeDark, r.Height() - 2, y - r.Top - 1);
        else if (x == r.Right - 1 && innerY)
          expected = GradientAt(p.EdgeMid, p.EdgeDark, r.Height() - 2, y - r.Top - 1);
        if (c >= gripFrom && c < gripFrom + 6 && a >= middle - 2 && a <= middle + 3)
          expected = (a - middle) % 2 == 0 ? p.EdgeDark : p.FillTop;
        if (PixelAt(surface(), x, y) != expected)
          return ::testing::AssertionFailure()
                 << "(" << x << "," << y << ") is 0x" << std::hex << PixelAt(surface(), x, y)
                 << ", expected 0x" << expected;
      }
    }
    return ::testing::AssertionSuccess();
  }
  // One line across the plain track at `along`: the dark border at both ends,
  // the inner gradient from FillBottom to FillMiddle between.
  ::testing::AssertionResult trackAcrossIn(const ColorScheme& p, int32_t along) {
    const ScrollBarGeometry g = bar->Geometry();
    const int32_t n = g.Thickness();
    for (int32_t c = 0; c < n; ++c) {
      const OLE_COLOR expected =
          c == 0 || c == n - 1 ? p.EdgeDark : GradientAt(p.FillBottom, p.FillMiddle, n - 2, c - 1);
      const OLE_COLOR actual =
          g.Horizontal() ? PixelAt(surface(), along, c) : PixelAt(surface(), c, along);
      if (actual != expected)
        return ::testing::AssertionFailure()
               << "at " << c << " across: 0x" << std::hex << actual << ", expected 0x" << expected;
    }
    return ::testing::AssertionSuccess();
  }

  std::shared_ptr<veltScrollBar> bar;
};

TEST_F(veltScrollBarTest, LayoutRoundsHalfToEvenThenTruncates) {
  EXPECT_EQ(bar->State(), veltScrollBar::sbNormal);
  EXPECT_EQ(bar->OldValue(), 50) << "a new bar reports nothing";
  const ScrollBarGeometry g = bar->Geometry();
  EXPECT_EQ((std::vector{g.ButtonSide(), g.ButtonSize(), g.ThumbSize(), g.TrackLength()}),
            (std::vector{13, 18, 82, 82}));
  EXPECT_EQ(bar->ThumbPos(), 40);  // 49.49 % rounds to 49
  EXPECT_EQ(arrowSite(0).Bounds(), (RectL{2, 2, 15, 15}));
  EXPECT_EQ(arrowSite(1).Bounds(), (RectL{2, 185, 15, 198}));
  errorOf(9, [&] { bar->veltButton1(2); });

  site->MovePixels(10, 10, 17, 201);
  EXPECT_EQ(bar->Geometry().ThumbSize(), 82) << "82.5 rounds down to even";
  site->MovePixels(10, 10, 17, 203);
  EXPECT_EQ(bar->Geometry().ThumbSize(), 84) << "83.5 rounds up to even";
  site->MovePixels(10, 10, 17, 200);
  bar->Value(75);  // 74.75 % rounds to 75; 75 % of 82 is 61.5, truncated
  EXPECT_EQ(bar->ThumbPos(), 61);
  bar->Min(0);
  bar->Max(200);
  bar->Value(5);  // 2.5 % rounds to 2
  EXPECT_EQ(bar->ThumbPos(), 1);
  EXPECT_EQ(bar->Geometry().PosToValue(1, 0, 200), 2) << "1.22 % is 1 %";
  EXPECT_EQ(bar->Geometry().PosToValue(-5, 0, 200), 0);
  EXPECT_EQ(bar->Geometry().PosToValue(500, 0, 200), 200);
}

TEST_F(veltScrollBarTest, RangeCorrectionsClampingAndUnchangedValues) {
  EventLog log(*site);
  site->ClearChangedProperties();
  bar->Max(1);
  EXPECT_EQ((std::vector{bar->Max(), bar->Value()}), (std::vector{2, 2}));
  bar->Max(5);
  bar->Min(5);
  EXPECT_EQ((std::vector{bar->Min(), bar->Value()}), (std::vector{4, 4}));
  EXPECT_EQ(site->ChangedProperties(), (Names{"Max", "Value", "Max", "Min", "Value"}));
  EXPECT_EQ(log.Names(), (Names{"ValueChanged", "ValueChanged"}));

  EXPECT_EQ(errorOf(6, [&] { bar->Min(INT_MIN); }),
            "veltScrollBar.Min: the range -2147483648..5 is wider than 32 bits");
  EXPECT_EQ(bar->Min(), 4);
  bar->Max(INT_MAX);
  bar->Min(0);
  EXPECT_EQ(bar->Max(), INT_MAX);

  bar->Max(100);
  bar->Value(500);
  EXPECT_EQ(bar->Value(), 100);
  site->ClearChangedProperties();
  site->Surface().PSet(8, 30, 0x123456);  // a repaint would wipe it
  bar->Value(100);
  EXPECT_TRUE(site->ChangedProperties().empty());
  EXPECT_EQ(PixelAt(surface(), 8, 30), 0x123456u);
  EXPECT_EQ(log.Names().size(), 3u);
}

TEST_F(veltScrollBarTest, ValueChangedComesFromTheRepaintBeforeTheThumb) {
  std::vector<OLE_COLOR> seen;
  auto look = bar->ValueChanged.connect([&] {
    seen.push_back(PixelAt(surface(), 8, 110));  // inside the thumb at 70
    if (bar->Value() == 70) bar->Value(90);
  });
  EventLog log(*site);
  bar->Value(70);
  EXPECT_EQ(log.Names(), (Names{"ValueChanged", "ValueChanged"}));
  ASSERT_EQ(seen.size(), 2u);
  EXPECT_EQ(seen[0], GradientAt(kNormal.FillBottom, kNormal.FillMiddle, 15, 7)) << "track only";
  EXPECT_EQ(bar->ThumbPos(), 73);
  EXPECT_TRUE(thumbIn(kNormal));

  auto remove = bar->ValueChanged.connect([&] { hf.form.RemoveControl("veltScrollBar1"); });
  bar->Value(1);
  EXPECT_EQ(hf.form.FindSite("veltScrollBar1"), nullptr);
}

TEST_F(veltScrollBarTest, TrackPressesJumpToTheEndsAndOtherButtonsDoNothing) {
  EventLog log(*site);  // the thumb covers rows 58 to 139
  clickAt(8, 57);
  EXPECT_EQ(bar->Value(), 1);
  EXPECT_EQ(log.Lines(), (Names{"ValueChanged()", "MouseDown(i1, i0, f8, f57)",
                                "MouseUp(i1, i0, f8, f57)", "Click()"}));
  clickAt(1, 190);  // beside arrow 1: the bar's own margin
  EXPECT_EQ(bar->Value(), 100);
  log.Clear();
  clickAt(8, 30, 2);
  EXPECT_TRUE(log.Lines().empty());
  EXPECT_EQ(bar->Value(), 100);
  clickAt(1, 100);  // level with the thumb, on its border
  EXPECT_EQ(log.Names(), (Names{"MouseDown", "MouseUp", "Click"}));
}

TEST_F(veltScrollBarTest, DragScrollsOnEveryMoveAndClicksBeforeAndAfterMouseUp) {
  EventLog log(*site);
  move(8, 100);
  press(8, 100);
  move(8, 110);  // 50 px on the track: 61 %
  move(8, 110);
  release(8, 110);
  hf.Run();
  EXPECT_EQ(log.Lines(), (Names{"MouseMove(i0, i0, f8, f100)", "MouseDown(i1, i0, f8, f100)",
                                "ValueChanged()", "Scroll()", "MouseMove(i1, i0, f8, f110)",
                                "Scroll()", "MouseMove(i1, i0, f8, f110)", "Click()",
                                "MouseUp(i1, i0, f8, f110)", "Click()"}));
  EXPECT_EQ(bar->GrabOffset(), 42);
  EXPECT_EQ(bar->Value(), 61);
  EXPECT_FALSE(bar->Dragging());

  log.Clear();
  press(8, 120);
  move(8, 400);  // far past the end: Max
  release(40, 400);
  hf.Run();
  EXPECT_EQ(bar->Value(), 100);
  EXPECT_EQ(log.Names(),
            (Names{"MouseDown", "ValueChanged", "Scroll", "MouseMove", "Click", "MouseUp"}))
      << "released off the bar: no second click";
}

TEST_F(veltScrollBarTest, TimerHoversTheThumbAndClicksOnEveryTickOfAHeldDrag) {
  move(8, 40);
  hf.Run();
  EXPECT_FALSE(bar->HoverTimerRunning()) << "the track is not tracked";
  move(8, 100);
  hf.Run();
  hf.Tick();
  EXPECT_EQ(bar->State(), veltScrollBar::sbHover);
  EXPECT_TRUE(thumbIn(kHover));
  EXPECT_TRUE(trackAcrossIn(kHover, 40));

  EventLog log(*site);
  press(8, 100);
  hf.Run();
  hf.Tick(3);
  EXPECT_EQ(bar->State(), veltScrollBar::sbDragging);
  EXPECT_EQ(log.Names(), (Names{"MouseDown", "Click", "Click", "Click"}));
  hf.system->SetCursor(300, 300);
  hf.Tick();
  EXPECT_EQ(bar->State(), veltScrollBar::sbRest);
  EXPECT_FALSE(bar->HoverTimerRunning());
}

TEST_F(veltScrollBarTest, ArrowClicksStepTheValueAndTheirMouseEventsBecomeTheBars) {
  EventLog log(*site);
  clickAt(8, 191);  // arrow 1, at (6, 6) of its own
  EXPECT_EQ(bar->Value(), 51);
  EXPECT_EQ(log.Lines(),
            (Names{"MouseDown(i1, i0, f6, f6)", "ValueChanged()", "MouseUp(i1, i0, f6, f6)"}));

  bar->Value(1);
  log.Clear();
  move(5, 5);
  clickAt(5, 5);  // arrow 0 at Min: clamped, nothing to report
  EXPECT_EQ(bar->Value(), 1);
  EXPECT_EQ(log.Names(), (Names{"MouseMove", "MouseDown", "MouseUp"}));

  bar->Enabled(false);
  clickAt(8, 191);
  EXPECT_EQ(bar->Value(), 1) << "a disabled bar's arrows get no input";
}

TEST_F(veltScrollBarTest, ArrowsTakeTheBarsColoursAndGlyphsOfTheOrientation) {
  bar->Orientation(static_cast<MyOrientation>(7));  // unknown: the arrows stay, no thumb
  EXPECT_EQ(bar->veltButton1(0)->Caption() + bar->veltButton1(1)->Caption(), "56") << "up, down";
  EXPECT_TRUE(trackAcrossIn(kNormal, 100));
  EXPECT_EQ(CountColor(surface(), kNormal.FillTop), 0);
  bar->BackColor(0xE0FFFF);
  bar->ForeColor(0x004000);
  EXPECT_TRUE(HasButtonChrome(arrowSite(1).Surface(), SchemeNormal(0xE0FFFF, 0x004000, kWhite)));

  makeHorizontal();
  EXPECT_EQ(bar->veltButton1(0)->Caption() + bar->veltButton1(1)->Caption(), "34") << "left, right";
  EXPECT_EQ(arrowSite(1).Bounds(), (RectL{185, 2, 198, 15}));
  clickAt(30, 8);
  EXPECT_EQ(bar->Value(), 1) << "Min lies at the left";
}

TEST_F(veltScrollBarTest, ResizeKeepsTheThicknessBetween15And25Pixels) {
  site->MovePixels(10, 10, 40, 200);
  EXPECT_EQ(site->Width(), 25 * 15);
  EXPECT_EQ(arrowSite(1).Bounds(), (RectL{2, 177, 23, 198}));
  EXPECT_EQ(bar->Geometry().ThumbSize(), 74);

  makeHorizontal();
  site->MovePixels(10, 10, 200, 3);
  EXPECT_EQ(site->Height(), 15 * 15);

  site->MovePixels(10, 10, 20, 17);  // shorter than its arrows: no room for a thumb
  EXPECT_EQ(bar->Geometry().ThumbSize(), -8);
  clickAt(1, 8);
  EXPECT_EQ(bar->Value(), 1);
  clickAt(18, 8);
  EXPECT_EQ(bar->Value(), 100);
}

// Light outlines around both button places, a dark line at each end of the
// track, the track and the thumb, transposed for a horizontal bar.
TEST_F(veltScrollBarTest, PaintsOutlinesTrackAndThumbInBothOrientations) {
  const ColorScheme& p = kNormal;
  for (const bool across : {false, true}) {
    SCOPED_TRACE(across ? "horizontal" : "vertical");
    if (across) makeHorizontal();
    for (int32_t at : {1, 15, 184, 198})
      EXPECT_EQ(RunsOf(surface(), p.FillTop, at, across), (Spans{{1, 15}})) << at;
    for (int32_t at : {16, 183})
      EXPECT_EQ(RunsOf(surface(), p.EdgeDark, at, across), (Spans{{0, 16}})) << at;
    for (int32_t at : {1, 15})
      EXPECT_EQ(RunsOf(surface(), p.FillTop, at, !across), (Spans{{1, 15}, {184, 198}})) << at;
    EXPECT_EQ(RunsOf(surface(), p.EdgeDark, 0, !across), (Spans{{0, 199}}));
    EXPECT_TRUE(trackAcrossIn(p, 30));
    EXPECT_TRUE(trackAcrossIn(p, 150));
    EXPECT_TRUE(thumbIn(p));
  }
}

TEST_F(veltScrollBarTest, DisabledBarPaintsTheDisabledPaletteAndIgnoresTheMouse) {
  EventLog log(*site);
  bar->Enabled(false);
  EXPECT_EQ(bar->State(), veltScrollBar::sbDisabled);
  EXPECT_TRUE(thumbIn(kDisabled));
  EXPECT_TRUE(trackAcrossIn(kDisabled, 30));
  clickAt(8, 30);
  EXPECT_EQ(bar->Value(), 50);
  bar->Value(60);  // the value model still reports
  EXPECT_EQ(log.Names(), (Names{"ValueChanged"}));
  bar->Enabled(true);
  EXPECT_EQ(bar->State(), veltScrollBar::sbIdle);
}

TEST_F(veltScrollBarTest, PropertiesRoundTripInTableOrderAndStoredRangesAreCorrected) {
  bar->Enabled(false);
  bar->Max(300);
  bar->Min(-5);
  bar->Value(200);
  bar->Orientation(pbHorizontal);
  bar->BackColor(0x010203);
  bar->ForeColor(0x040506);
  PropertyBag bag;
  bar->WriteProperties(bag);
  EXPECT_EQ(bag.Keys(),
            (Names{"Enabled", "Min", "Max", "Value", "Orientation", "BackColor", "ForeColor"}));
  auto copy = reload<veltScrollBar>(bag, 200, 40);
  EXPECT_EQ(copy->OldValue(), 200) << "loading reports nothing";
  EXPECT_EQ(copy->veltButton1(0)->ForeColor(), 0x040506u);

  PropertyBag inverted;
  inverted.WriteProperty("Min", Variant(int32_t{60}));
  inverted.WriteProperty("Max", Variant(int32_t{50}));
  auto fixed = std::make_shared<veltScrollBar>();
  hf.form.AddControl(fixed, "Fixed", 300, 0, 17, 200, &inverted);
  EXPECT_EQ(fixed->Max(), 61);
  EXPECT_EQ(fixed->Value(), 60);

  PropertyBag extremes;
  extremes.WriteProperty("Min", Variant(std::numeric_limits<int32_t>::max()));
  extremes.WriteProperty("Max", Variant(std::numeric_limits<int32_t>::min()));
  const std::string message = errorOf(errOverflow, [&] {
    hf.form.AddControl(std::make_shared<veltScrollBar>(), "Extremes", 300, 0, 17, 200, &extremes);
  });
  EXPECT_NE(message.find("no range fits"), std::string::npos) << message;
}

}  // namespace
}  // namespace velt
