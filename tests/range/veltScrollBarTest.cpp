// veltScrollBar on a headless form: the layout and its rounding, the value
// model, track clicks, dragging and the timer with their event orders, the
// arrow buttons driven with real input, the thickness limits, painting in both
// orientations and persistence.

#include "velt/controls/range/veltScrollBar.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <climits>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "range/RangeLook.hpp"
#include "support/ButtonLook.hpp"
#include "support/HeadlessForm.hpp"
#include "velt/controls/buttons/veltXButton.hpp"
#include "velt/foundation/ColorScheme.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/PropertyBag.hpp"

namespace velt {
namespace {

using test::GradientAt;
using test::PixelAt;
using Names = std::vector<std::string>;

constexpr OLE_COLOR kWhite = 0xFFFFFF;
constexpr OLE_COLOR kDarkBlue = 0xC00000;

const ColorScheme kNormal = SchemeNormal(kWhite, kDarkBlue, kWhite);
const ColorScheme kHover = SchemeHover(kWhite, kDarkBlue, kWhite);
const ColorScheme kDisabled = SchemeDisabled(kWhite, kDarkBlue, kWhite);

int errorOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const Error& error) {
    return error.Number();
  }
  return 0;
}

class veltScrollBarTest : public ::testing::Test {
 protected:
  // Sited at (10, 10); vertical, as a new bar is.
  void add(int32_t width, int32_t height) {
    bar = hf.form.Add<veltScrollBar>("veltScrollBar1", 10, 10, width, height);
    site = hf.form.FindSite("veltScrollBar1");
  }
  const Canvas& surface() { return site->Surface(); }
  Site& arrowSite(int index) {
    return *site->FindChild("veltButton1(" + std::to_string(index) + ")");
  }
  // Script steps in the bar's own pixels.
  void move(int32_t x, int32_t y) { hf.system->PostMouseMove(10 + x, 10 + y); }
  void press(int32_t x, int32_t y) { hf.system->PostMouseDown(1, 10 + x, 10 + y); }
  void release(int32_t x, int32_t y) { hf.system->PostMouseUp(1, 10 + x, 10 + y); }
  void clickAt(int32_t x, int32_t y, int16_t button = 1) {
    hf.system->PostMouseDown(button, 10 + x, 10 + y);
    hf.system->PostMouseUp(button, 10 + x, 10 + y);
    hf.Run();
  }

  // The thumb pixel for pixel: the button's edges on its rectangle, the face
  // shaded across the bar, and the grip (dark grooves with a light line after
  // each) across the middle.
  ::testing::AssertionResult thumbIn(const ColorScheme& p) {
    const ScrollBarGeometry g = bar->Geometry();
    const RectL r = g.ThumbRect(bar->ThumbPos());
    const bool horizontal = g.Horizontal();
    const int32_t middle = (horizontal ? r.Left : r.Top) + g.ThumbSize() / 2;
    const int32_t gripFrom = (g.Thickness() - 6) / 2;
    for (int32_t y = r.Top; y < r.Bottom; ++y) {
      for (int32_t x = r.Left; x < r.Right; ++x) {
        const int32_t along = horizontal ? x : y;
        const int32_t across = horizontal ? y : x;
        const bool innerX = x > r.Left && x < r.Right - 1;
        const bool innerY = y > r.Top && y < r.Bottom - 1;
        OLE_COLOR expected =
            horizontal ? test::BoxAt(p.FillTop, p.FillMiddle, p.FillBottom, 2, g.Height() - 2, y)
                       : test::BoxAt(p.FillTop, p.FillMiddle, p.FillBottom, 2, g.Width() - 2, x);
        if (y == r.Top && innerX)
          expected = GradientAt(p.EdgeLight, p.EdgeMid, r.Width() - 2, x - r.Left - 1);
        else if (y == r.Bottom - 1 && innerX)
          expected = p.EdgeDark;
        else if (x == r.Left && innerY)
          expected = GradientAt(p.EdgeLight, p.EdgeDark, r.Height() - 2, y - r.Top - 1);
        else if (x == r.Right - 1 && innerY)
          expected = GradientAt(p.EdgeMid, p.EdgeDark, r.Height() - 2, y - r.Top - 1);
        if (across >= gripFrom && across < gripFrom + 6 && along >= middle - 2 &&
            along <= middle + 3)
          expected = (along - middle) % 2 == 0 ? p.EdgeDark : p.FillTop;
        if (PixelAt(surface(), x, y) != expected)
          return ::testing::AssertionFailure()
                 << "(" << x << "," << y << ") is 0x" << std::hex << PixelAt(surface(), x, y)
                 << ", expected 0x" << expected;
      }
    }
    return ::testing::AssertionSuccess();
  }
  // One line across the bar at `along` on the plain track: the dark border at
  // both ends, the inner gradient from FillBottom to FillMiddle between.
  ::testing::AssertionResult trackAcrossIn(const ColorScheme& p, int32_t along) {
    const ScrollBarGeometry g = bar->Geometry();
    const int32_t n = g.Thickness();
    for (int32_t across = 0; across < n; ++across) {
      const OLE_COLOR expected = across == 0 || across == n - 1
                                     ? p.EdgeDark
                                     : GradientAt(p.FillBottom, p.FillMiddle, n - 2, across - 1);
      const OLE_COLOR actual =
          g.Horizontal() ? PixelAt(surface(), along, across) : PixelAt(surface(), across, along);
      if (actual != expected)
        return ::testing::AssertionFailure() << "at " << across << " across: 0x" << std::hex
                                             << actual << ", expected 0x" << expected;
    }
    return ::testing::AssertionSuccess();
  }
  test::HeadlessForm hf;
  std::shared_ptr<veltScrollBar> bar;
  Site* site = nullptr;
};

// ---- Layout -----------------------------------------------------------------

TEST_F(veltScrollBarTest, NewBarHasTheExampleLayoutAndReportsNothing) {
  add(17, 200);
  EXPECT_EQ(bar->ID(), 10);
  EXPECT_EQ(bar->Orientation(), pbVertical);
  EXPECT_EQ(bar->State(), veltScrollBar::sbNormal);
  EXPECT_EQ(bar->OldValue(), 50);
  const ScrollBarGeometry g = bar->Geometry();
  EXPECT_EQ(g.ButtonSide(), 13);
  EXPECT_EQ(g.ButtonSize(), 18);
  EXPECT_EQ(g.ThumbSize(), 82);
  EXPECT_EQ(g.TrackLength(), 82);
  EXPECT_EQ(bar->ThumbPos(), 40);  // 49.49 % rounds to 49
  EXPECT_EQ(arrowSite(0).Bounds(), (RectL{2, 2, 15, 15}));
  EXPECT_EQ(arrowSite(1).Bounds(), (RectL{2, 185, 15, 198}));
  EXPECT_EQ(bar->veltButton1(1)->Caption(), "6") << "down";
  EXPECT_EQ(bar->veltButton1(0)->Font()->Name(), "Webdings");
  EXPECT_EQ(bar->veltButton1(0)->Font()->Charset(), 2);
  EXPECT_EQ(errorOf([&] { bar->veltButton1(2); }), 9);
  EXPECT_FALSE(bar->HoverTimerRunning());
}

TEST_F(veltScrollBarTest, ThumbSizeAndPlaceRoundHalfToEvenThenTruncate) {
  add(17, 201);
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

// ---- Value model ------------------------------------------------------------

TEST_F(veltScrollBarTest, RangeCorrectionsKeepMinBelowMaxAndPullTheValueIn) {
  add(17, 200);
  test::EventLog log(*site);
  site->ClearChangedProperties();
  bar->Max(1);
  EXPECT_EQ(bar->Max(), 2);
  EXPECT_EQ(bar->Value(), 2);
  bar->Max(5);
  bar->Min(5);
  EXPECT_EQ(bar->Min(), 4);
  EXPECT_EQ(bar->Value(), 4);
  EXPECT_EQ(site->ChangedProperties(), (Names{"Max", "Value", "Max", "Min", "Value"}));
  EXPECT_EQ(log.Names(), (Names{"ValueChanged", "ValueChanged"}));

  EXPECT_EQ(errorOf([&] { bar->Min(INT_MIN); }), 6) << "Max - Min beyond 32 bits";
  EXPECT_EQ(bar->Min(), 4);
  bar->Max(INT_MAX);
  bar->Min(0);
  EXPECT_EQ(bar->Max(), INT_MAX);
}

TEST_F(veltScrollBarTest, ValueIsClampedAndAnUnchangedValueDoesNothing) {
  add(17, 200);
  test::EventLog log(*site);
  bar->Value(500);
  EXPECT_EQ(bar->Value(), 100);
  EXPECT_EQ(log.Names(), (Names{"ValueChanged"}));
  site->ClearChangedProperties();
  site->Surface().PSet(8, 30, 0x123456);  // a repaint would wipe it
  bar->Value(100);
  EXPECT_TRUE(site->ChangedProperties().empty());
  EXPECT_EQ(PixelAt(surface(), 8, 30), 0x123456u);
  EXPECT_EQ(log.Names().size(), 1u);
}

TEST_F(veltScrollBarTest, ValueChangedComesFromTheRepaintBeforeTheThumb) {
  add(17, 200);
  std::vector<OLE_COLOR> seen;
  auto look = bar->ValueChanged.connect([&] {
    seen.push_back(PixelAt(surface(), 8, 110));  // inside the thumb at 70
    if (bar->Value() == 70) bar->Value(90);
  });
  test::EventLog log(*site);
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

// ---- Mouse on the track -----------------------------------------------------

TEST_F(veltScrollBarTest, TrackPressesJumpToTheEndsAndOtherButtonsDoNothing) {
  add(17, 200);  // the thumb covers rows 58 to 139
  test::EventLog log(*site);
  clickAt(8, 57);
  EXPECT_EQ(bar->Value(), 1);
  EXPECT_EQ(log.Lines(), (Names{"ValueChanged()", "MouseDown(i1, i0, f8, f57)",
                                "MouseUp(i1, i0, f8, f57)", "Click()"}));
  clickAt(1, 190);  // beside arrow 1: the bar's own margin
  EXPECT_EQ(bar->Value(), 100);
  log.Clear();
  clickAt(8, 30, 2);
  clickAt(8, 170, 2);
  EXPECT_TRUE(log.Lines().empty());
  EXPECT_EQ(bar->Value(), 100);
  clickAt(1, 100);  // level with the thumb, on its border
  EXPECT_EQ(log.Names(), (Names{"MouseDown", "MouseUp", "Click"}));
}

TEST_F(veltScrollBarTest, DragScrollsOnEveryMoveAndClicksBeforeAndAfterMouseUp) {
  add(17, 200);
  test::EventLog log(*site);
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
  add(17, 200);
  move(8, 40);
  hf.Run();
  EXPECT_FALSE(bar->HoverTimerRunning()) << "the track is not tracked";
  move(8, 100);
  hf.Run();
  hf.Tick();
  EXPECT_EQ(bar->State(), veltScrollBar::sbHover);
  EXPECT_TRUE(thumbIn(kHover));
  EXPECT_TRUE(trackAcrossIn(kHover, 40));

  test::EventLog log(*site);
  press(8, 100);
  hf.Run();
  hf.Tick(3);
  EXPECT_EQ(bar->State(), veltScrollBar::sbDragging);
  EXPECT_EQ(log.Names(), (Names{"MouseDown", "Click", "Click", "Click"}));
  hf.system->SetCursor(300, 300);
  hf.Tick();
  EXPECT_EQ(bar->State(), veltScrollBar::sbRest);
  EXPECT_FALSE(bar->HoverTimerRunning());
  EXPECT_TRUE(thumbIn(kNormal));
}

// ---- Arrow buttons ----------------------------------------------------------

TEST_F(veltScrollBarTest, ArrowClicksStepTheValueAndTheirMouseEventsBecomeTheBars) {
  add(17, 200);
  test::EventLog log(*site);
  clickAt(8, 191);  // arrow 1, at (6, 6) of its own
  EXPECT_EQ(bar->Value(), 51);
  EXPECT_EQ(log.Lines(),
            (Names{"MouseDown(i1, i0, f6, f6)", "ValueChanged()", "MouseUp(i1, i0, f6, f6)"}));
  ASSERT_EQ(hf.form.FocusedSite(), &arrowSite(1));
  hf.system->PostKeyDown(32);  // the focused arrow clicks on Space too
  hf.system->PostKeyUp(32);
  hf.Run();
  EXPECT_EQ(bar->Value(), 52);

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
  add(17, 200);
  EXPECT_TRUE(test::HasButtonChrome(arrowSite(0).Surface(), kNormal));
  EXPECT_EQ(bar->veltButton1(0)->Caption(), "5") << "up";

  bar->BackColor(0xE0FFFF);
  bar->ForeColor(0x004000);
  EXPECT_EQ(bar->veltButton1(1)->BackColor(), 0xE0FFFFu);
  EXPECT_TRUE(
      test::HasButtonChrome(arrowSite(1).Surface(), SchemeNormal(0xE0FFFF, 0x004000, kWhite)));
  bar->BackColor(kWhite);
  bar->ForeColor(kDarkBlue);

  bar->Orientation(pbHorizontal);
  site->MovePixels(10, 10, 200, 17);
  EXPECT_EQ(bar->veltButton1(0)->Caption(), "3") << "left";
  EXPECT_EQ(bar->veltButton1(1)->Caption(), "4") << "right";
  EXPECT_EQ(arrowSite(1).Bounds(), (RectL{185, 2, 198, 15}));
  clickAt(191, 8);
  EXPECT_EQ(bar->Value(), 51);
}

// ---- Size -------------------------------------------------------------------

TEST_F(veltScrollBarTest, ResizeKeepsTheThicknessBetween15And25Pixels) {
  add(40, 200);
  EXPECT_EQ(site->Width(), 25 * 15);
  EXPECT_EQ(arrowSite(1).Bounds(), (RectL{2, 177, 23, 198}));
  EXPECT_EQ(bar->Geometry().ThumbSize(), 74);
  site->MovePixels(10, 10, 10, 300);
  EXPECT_EQ(surface().ScaleWidth(), 15);
  EXPECT_EQ(surface().ScaleHeight(), 300);

  bar->Orientation(pbHorizontal);
  site->MovePixels(10, 10, 200, 60);
  EXPECT_EQ(surface().ScaleHeight(), 25);
  EXPECT_EQ(surface().ScaleWidth(), 200);
  site->MovePixels(10, 10, 200, 3);
  EXPECT_EQ(site->Height(), 15 * 15);

  site->MovePixels(10, 10, 20, 17);  // shorter than its arrows: no room for a thumb
  EXPECT_EQ(bar->Geometry().ThumbSize(), -8);
  clickAt(1, 8);
  EXPECT_EQ(bar->Value(), 1);
  clickAt(18, 8);
  EXPECT_EQ(bar->Value(), 100);
}

// ---- Painting -----------------------------------------------------------------

TEST_F(veltScrollBarTest, VerticalBarPaintsOutlinesTrackAndThumb) {
  add(17, 200);
  const ColorScheme& p = kNormal;
  for (int32_t y : {1, 15, 184, 198})
    EXPECT_EQ(test::RunsOf(surface(), p.FillTop, y, false), (test::Spans{{1, 15}})) << y;
  for (int32_t y : {16, 183})
    EXPECT_EQ(test::RunsOf(surface(), p.EdgeDark, y, false), (test::Spans{{0, 16}})) << y;
  EXPECT_EQ(test::RunsOf(surface(), p.FillTop, 15, true), (test::Spans{{1, 15}, {184, 198}}));
  EXPECT_EQ(test::RunsOf(surface(), p.EdgeDark, 0, true), (test::Spans{{0, 199}}));
  EXPECT_TRUE(trackAcrossIn(p, 30));
  EXPECT_TRUE(trackAcrossIn(p, 150));
  EXPECT_TRUE(thumbIn(p));
  EXPECT_EQ(PixelAt(hf.form.Image(), 10 + 8, 10 + 1), p.FillTop);
  EXPECT_EQ(PixelAt(hf.form.Image(), 10 + 2, 10 + 2), PixelAt(arrowSite(0).Surface(), 0, 0))
      << "the arrows lie over the bar";
}

TEST_F(veltScrollBarTest, HorizontalBarPaintsItsOwnOutlineTable) {
  add(17, 200);
  bar->Orientation(pbHorizontal);
  site->MovePixels(10, 10, 200, 17);
  const ColorScheme& p = kNormal;
  for (int32_t x : {1, 15, 184, 198})
    EXPECT_EQ(test::RunsOf(surface(), p.FillTop, x, true), (test::Spans{{1, 15}})) << x;
  for (int32_t x : {16, 183})
    EXPECT_EQ(test::RunsOf(surface(), p.EdgeDark, x, true), (test::Spans{{0, 16}})) << x;
  EXPECT_EQ(test::RunsOf(surface(), p.FillTop, 1, false), (test::Spans{{1, 15}, {184, 198}}));
  EXPECT_EQ(test::RunsOf(surface(), p.FillTop, 15, false), (test::Spans{{1, 15}, {184, 198}}));
  EXPECT_TRUE(trackAcrossIn(p, 30));
  EXPECT_TRUE(thumbIn(p));
  clickAt(30, 8);
  EXPECT_EQ(bar->Value(), 1) << "Min lies at the left";
}

TEST_F(veltScrollBarTest, DisabledBarPaintsTheDisabledPaletteAndIgnoresTheMouse) {
  add(17, 200);
  test::EventLog log(*site);
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
  EXPECT_TRUE(thumbIn(kNormal));
}

TEST_F(veltScrollBarTest, UnknownOrientationKeepsTheArrowsAndDrawsNoThumb) {
  add(17, 200);
  bar->Orientation(static_cast<MyOrientation>(7));
  EXPECT_EQ(arrowSite(1).Bounds(), (RectL{2, 185, 15, 198}));
  EXPECT_EQ(bar->veltButton1(1)->Caption(), "6");
  EXPECT_TRUE(trackAcrossIn(kNormal, 100));
  EXPECT_EQ(test::CountColor(surface(), kNormal.FillTop), 0);
}

// ---- Persistence ------------------------------------------------------------

TEST_F(veltScrollBarTest, PropertiesRoundTripInTableOrderAndStoredRangesAreCorrected) {
  add(17, 200);
  PropertyBag defaults;
  bar->WriteProperties(defaults);
  EXPECT_EQ(defaults.Count(), 0u);

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
  const PropertyBag loaded = PropertyBag::FromJson(bag.ToJson());
  auto copy = std::make_shared<veltScrollBar>();
  Site& copySite = hf.form.AddControl(copy, "Copy", 0, 300, 200, 40, &loaded);
  EXPECT_FALSE(copy->Enabled());
  EXPECT_EQ(copy->Min(), -5);
  EXPECT_EQ(copy->Max(), 300);
  EXPECT_EQ(copy->Value(), 200);
  EXPECT_EQ(copy->OldValue(), 200) << "loading reports nothing";
  EXPECT_EQ(copy->Orientation(), pbHorizontal);
  EXPECT_EQ(copySite.Height(), 25 * 15);
  EXPECT_EQ(copy->BackColor(), 0x010203u);
  EXPECT_EQ(copy->veltButton1(0)->ForeColor(), 0x040506u);

  PropertyBag inverted;
  inverted.WriteProperty("Min", Variant(int32_t{60}));
  inverted.WriteProperty("Max", Variant(int32_t{50}));
  auto fixed = std::make_shared<veltScrollBar>();
  hf.form.AddControl(fixed, "Fixed", 300, 0, 17, 200, &inverted);
  EXPECT_EQ(fixed->Max(), 61);
  EXPECT_EQ(fixed->Value(), 60);

  PropertyBag bad;
  bad.WriteProperty("Value", Variant("half"));
  EXPECT_EQ(errorOf([&] {
              hf.form.AddControl(std::make_shared<veltScrollBar>(), "Bad", 0, 0, 17, 200, &bad);
            }),
            13);
}

}  // namespace
}  // namespace velt
