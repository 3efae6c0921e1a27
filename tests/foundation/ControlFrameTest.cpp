// The control frame driven through a headless form: the state table row by
// row, hover tracking on the virtual clock, mouse and keyboard forwarding,
// focus, the frame properties and their persistence.

#include "velt/foundation/ControlFrame.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <memory>
#include <string>
#include <vector>

#include "support/HeadlessForm.hpp"
#include "support/Pixels.hpp"
#include "support/SchemeMatchers.hpp"
#include "velt/foundation/ColorScheme.hpp"
#include "velt/platform/Canvas.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/PropertyBag.hpp"

namespace velt {
namespace {

using test::EventLog;
using test::HeadlessForm;
using test::SameScheme;

// The smallest frame control: paints its face in the palette's FillTop and
// remembers what each repaint used.
class ProbeControl : public ControlFrame {
 public:
  std::string ClassName() const override { return "ProbeControl"; }
  int16_t ID() const override { return 99; }

  int paints = 0;
  ColorScheme lastPalette;

 protected:
  void paint(Canvas& surface, const ColorScheme& palette) override {
    ++paints;
    lastPalette = palette;
    surface.FillRect(0, 0, surface.ScaleWidth(), surface.ScaleHeight(), palette.FillTop);
  }
};

constexpr OLE_COLOR kWhite = 0xFFFFFF;
constexpr OLE_COLOR kDarkBlue = 0xC00000;
constexpr int16_t kLeft = 1;
constexpr int16_t kRight = 2;

class ControlFrameTest : public ::testing::Test {
 protected:
  // The probe at (10, 10), 80 x 30 pixels; the form sits at screen (0, 0).
  static constexpr int32_t kX = 10;
  static constexpr int32_t kY = 10;
  static constexpr int32_t kWidth = 80;
  static constexpr int32_t kHeight = 30;
  static constexpr int32_t kInsideX = kX + 40;
  static constexpr int32_t kInsideY = kY + 15;

  void SetUp() override {
    probe = hf.form.Add<ProbeControl>("Probe1", kX, kY, kWidth, kHeight);
    site = hf.form.FindSite("Probe1");
    ASSERT_NE(site, nullptr);
    log = std::make_unique<EventLog>(*site);
  }

  void moveTo(int32_t x, int32_t y) {
    hf.system->PostMouseMove(x, y);
    hf.Run();
  }
  // Pointer onto the control and one tick: the hovered state.
  void hover() {
    moveTo(kInsideX, kInsideY);
    hf.Tick();
    ASSERT_EQ(probe->State(), bsHover);
  }
  void press(int16_t button = kLeft, int32_t x = kInsideX, int32_t y = kInsideY) {
    hf.system->PostMouseDown(button, x, y);
    hf.Run();
  }
  void release(int16_t button = kLeft, int32_t x = kInsideX, int32_t y = kInsideY) {
    hf.system->PostMouseUp(button, x, y);
    hf.Run();
  }
  void keyDown(int16_t keyCode) {
    hf.system->PostKeyDown(keyCode, 0);
    hf.Run();
  }
  void keyUp(int16_t keyCode) {
    hf.system->PostKeyUp(keyCode, 0);
    hf.Run();
  }
  void focus() {
    site->SetFocus();
    hf.Run();
  }

  static ColorScheme normal() { return SchemeNormal(kWhite, kDarkBlue, kWhite); }
  static ColorScheme hovered() { return SchemeHover(kWhite, kDarkBlue, kWhite); }
  static ColorScheme pressed() { return SchemePressed(kWhite, kDarkBlue, kWhite); }
  static ColorScheme disabled() { return SchemeDisabled(kWhite, kDarkBlue, kWhite); }

  HeadlessForm hf;
  std::shared_ptr<ProbeControl> probe;
  Site* site = nullptr;
  std::unique_ptr<EventLog> log;
};

// ---- Creation ---------------------------------------------------------------

TEST_F(ControlFrameTest, NeverHoveredRestsInStateFourWithNoTimer) {
  EXPECT_EQ(probe->State(), bsNormal);
  EXPECT_EQ(probe->HasFocus(), 0);
  EXPECT_FALSE(probe->MouseIsDown());
  EXPECT_FALSE(probe->HoverTimerRunning());
  EXPECT_TRUE(SameScheme(probe->lastPalette, normal()));
  EXPECT_EQ(test::PixelAt(site->Surface(), 0, 0), normal().FillTop);

  const int paints = probe->paints;
  hf.Tick(50);
  EXPECT_EQ(probe->paints, paints);
  EXPECT_EQ(probe->State(), bsNormal);
  EXPECT_TRUE(log->Lines().empty());
}

TEST_F(ControlFrameTest, FirstPlacementTakesFrameDefaultsAndAmbientValues) {
  EXPECT_EQ(probe->BackColor(), kWhite);
  EXPECT_EQ(probe->ForeColor(), kDarkBlue);
  EXPECT_EQ(probe->Caption(), "Probe1");
  EXPECT_TRUE(probe->Enabled());
  EXPECT_TRUE(probe->Font()->SameLook(*hf.form.Font()));
  EXPECT_EQ(probe->Font()->Name(), test::kPinnedFamily);
}

// ---- The state table, one test per row --------------------------------------

TEST_F(ControlFrameTest, RowAnyToDisabledWhenRepaintFindsEnabledFalse) {
  hover();
  probe->Enabled(false);
  EXPECT_EQ(probe->State(), bsDisabled);
  EXPECT_TRUE(SameScheme(probe->lastPalette, disabled()));
  EXPECT_EQ(test::PixelAt(site->Surface(), 5, 5), disabled().FillTop);
}

TEST_F(ControlFrameTest, RowDisabledToIdleWhenRepaintFindsEnabledTrue) {
  probe->Enabled(false);
  ASSERT_EQ(probe->State(), bsDisabled);
  probe->Enabled(true);
  EXPECT_EQ(probe->State(), bsIdle);
  EXPECT_TRUE(SameScheme(probe->lastPalette, normal()));
}

TEST_F(ControlFrameTest, RowRestingOrIdleToHoverOnFirstTickAfterMouseMove) {
  moveTo(kInsideX, kInsideY);
  EXPECT_EQ(probe->State(), bsNormal) << "the move alone changes nothing";
  EXPECT_TRUE(probe->HoverTimerRunning());
  EXPECT_EQ(probe->LastCursor(), (PointL{kInsideX, kInsideY}));
  hf.Tick();
  EXPECT_EQ(probe->State(), bsHover);
  EXPECT_EQ(probe->NowCursor(), (PointL{kInsideX, kInsideY}));
  EXPECT_TRUE(SameScheme(probe->lastPalette, hovered()));

  hf.system->SetCursor(0, 0);
  hf.Tick();
  probe->Enabled(false);
  probe->Enabled(true);
  ASSERT_EQ(probe->State(), bsIdle);
  moveTo(kInsideX, kInsideY);
  hf.Tick();
  EXPECT_EQ(probe->State(), bsHover);
}

TEST_F(ControlFrameTest, RowHoverToPressedOnTickAfterLeftButtonDown) {
  hover();
  press();
  EXPECT_TRUE(probe->MouseIsDown());
  EXPECT_EQ(probe->State(), bsHover) << "the press shows on the next tick";
  hf.Tick();
  EXPECT_EQ(probe->State(), bsPressed);
  EXPECT_TRUE(SameScheme(probe->lastPalette, pressed()));
}

TEST_F(ControlFrameTest, RowPressedToHoverOnTickAfterLeftButtonUp) {
  hover();
  press();
  hf.Tick();
  release();
  EXPECT_FALSE(probe->MouseIsDown());
  EXPECT_EQ(probe->State(), bsPressed);
  hf.Tick();
  EXPECT_EQ(probe->State(), bsHover);
}

TEST_F(ControlFrameTest, RowHoverToRestingWhenTickFindsPointerGone) {
  hover();
  hf.system->SetCursor(kInsideX + 2, kInsideY);  // moved on, no MouseMove arrived
  hf.Tick();
  EXPECT_EQ(probe->State(), bsNormal);
  EXPECT_FALSE(probe->HoverTimerRunning());
  EXPECT_TRUE(SameScheme(probe->lastPalette, normal()));

  const int paints = probe->paints;
  hf.Tick(20);
  EXPECT_EQ(probe->paints, paints) << "no ticks once the pointer has left";
}

TEST_F(ControlFrameTest, RowPressedToRestingWhenTickFindsPointerGone) {
  hover();
  press();
  hf.Tick();
  ASSERT_EQ(probe->State(), bsPressed);
  hf.system->SetCursor(kInsideX, kInsideY - 3);
  hf.Tick();
  EXPECT_EQ(probe->State(), bsNormal);
  EXPECT_FALSE(probe->HoverTimerRunning());
}

TEST_F(ControlFrameTest, RowAnyToPressedOnEnterOrSpaceDown) {
  focus();
  keyDown(13);
  EXPECT_EQ(probe->State(), bsPressed);
  EXPECT_TRUE(SameScheme(probe->lastPalette, pressed()));
  keyUp(13);
  hover();
  keyDown(32);
  EXPECT_EQ(probe->State(), bsPressed);
}

TEST_F(ControlFrameTest, RowAnyToRestingOnEnterOrSpaceUp) {
  focus();
  hover();
  keyUp(32);
  EXPECT_EQ(probe->State(), bsNormal);
  keyDown(13);
  keyUp(13);
  EXPECT_EQ(probe->State(), bsNormal);
}

// ---- Hover tracking edge cases ----------------------------------------------

TEST_F(ControlFrameTest, OnePixelStepsAcrossTheControlKeepTheHover) {
  for (int32_t x = kX + 5; x < kX + 25; ++x) {
    moveTo(x, kInsideY);
    hf.Tick();
    ASSERT_EQ(probe->State(), bsHover) << "at x " << x;
  }
  EXPECT_TRUE(probe->HoverTimerRunning());
}

// Leaving is seen only as the pointer being two pixels or more from the last
// MouseMove; one pixel off the control is still "over" it.
TEST_F(ControlFrameTest, OnePixelOffStillHoversTwoPixelsOffLeaves) {
  const int32_t lastInside = kX + kWidth - 1;
  moveTo(lastInside, kInsideY);
  hf.Tick();
  moveTo(lastInside + 1, kInsideY);  // outside: no MouseMove for the probe
  hf.Tick();
  EXPECT_EQ(probe->State(), bsHover);
  EXPECT_TRUE(probe->HoverTimerRunning());
  moveTo(lastInside + 2, kInsideY);
  hf.Tick();
  EXPECT_EQ(probe->State(), bsNormal);
  EXPECT_FALSE(probe->HoverTimerRunning());
}

TEST_F(ControlFrameTest, LeaveTestIsTwoPixelsAlongEitherAxis) {
  struct Offset {
    int32_t dx, dy;
    bool leaves;
  };
  const std::vector<Offset> offsets = {{2, 0, true},   {-2, 0, true},  {0, 2, true},
                                       {0, -2, true},  {1, 1, false},  {-1, -1, false},
                                       {1, -1, false}, {-1, 1, false}, {0, 0, false}};
  for (const Offset& offset : offsets) {
    moveTo(kInsideX, kInsideY);
    hf.Tick();
    hf.system->SetCursor(kInsideX + offset.dx, kInsideY + offset.dy);
    hf.Tick();
    EXPECT_EQ(probe->State(), offset.leaves ? bsNormal : bsHover)
        << "offset " << offset.dx << "," << offset.dy;
    EXPECT_EQ(probe->HoverTimerRunning(), !offset.leaves);
  }
}

TEST_F(ControlFrameTest, TickRepaintsWhileThePointerRests) {
  hover();
  const int paints = probe->paints;
  hf.Tick(5);
  EXPECT_EQ(probe->paints, paints + 5) << "one repaint per 1 ms tick";
}

// A tick lets pending events run; a handler that changes the control from
// there repaints while the tick is still on the stack.
TEST_F(ControlFrameTest, PendingEventsRunInsideATickAndMayRepaint) {
  hover();
  auto connection =
      probe->MouseMove.connect([&](int16_t, int16_t, float, float) { probe->BackColor(0x00FF00); });
  hf.system->PostMouseMove(kInsideX + 1, kInsideY);
  hf.Tick();  // the tick's do-events call delivers the queued move
  EXPECT_EQ(probe->BackColor(), 0x00FF00u);
  EXPECT_TRUE(SameScheme(probe->lastPalette, SchemeHover(0x00FF00, kDarkBlue, kWhite)));
}

// ---- Mouse ------------------------------------------------------------------

TEST_F(ControlFrameTest, LeftClickRaisesDownClickUpWithHostArguments) {
  hf.system->PostMouseMove(kInsideX, kInsideY);
  hf.system->PostMouseDown(kLeft, kInsideX, kInsideY, 1);
  hf.system->PostMouseUp(kLeft, kInsideX + 1, kInsideY + 2, 2);
  hf.Run();
  const std::vector<std::string> expected = {"MouseMove(i0, i0, f40, f15)",
                                             "MouseDown(i1, i1, f40, f15)", "Click()",
                                             "MouseUp(i1, i2, f41, f17)"};
  EXPECT_EQ(log->Lines(), expected);
  EXPECT_FALSE(probe->MouseIsDown());
}

TEST_F(ControlFrameTest, RightButtonRaisesOnlyMouseMoveWithButtonTwo) {
  moveTo(kInsideX, kInsideY);
  log->Clear();
  press(kRight);
  moveTo(kInsideX + 1, kInsideY);
  release(kRight);
  EXPECT_EQ(log->Lines(), std::vector<std::string>{"MouseMove(i2, i0, f41, f15)"});
  EXPECT_FALSE(probe->MouseIsDown());
  hf.Tick();
  EXPECT_EQ(probe->State(), bsHover) << "a right press never shows pressed";
}

TEST_F(ControlFrameTest, DragOutsideAndReleaseStillClicksBeforeMouseUp) {
  moveTo(kInsideX, kInsideY);
  press();
  moveTo(kX + kWidth + 30, kInsideY);  // the host holds the capture
  release(kLeft, kX + kWidth + 30, kInsideY);
  EXPECT_EQ(log->Names(),
            (std::vector<std::string>{"MouseMove", "MouseDown", "MouseMove", "Click", "MouseUp"}));
  EXPECT_EQ(log->Lines().back(), "MouseUp(i1, i0, f110, f15)");
}

TEST_F(ControlFrameTest, ControlRemovedByItsClickHandlerRaisesNothingMore) {
  std::weak_ptr<ProbeControl> watch = probe;
  auto connection = probe->Click.connect([&] { hf.form.RemoveControl("Probe1"); });
  probe.reset();
  site = nullptr;
  hf.system->PostMouseMove(kInsideX, kInsideY);
  hf.system->PostMouseDown(kLeft, kInsideX, kInsideY);
  hf.system->PostMouseUp(kLeft, kInsideX, kInsideY);
  hf.Run();
  EXPECT_EQ(log->Names(), (std::vector<std::string>{"MouseMove", "MouseDown", "Click"}));
  hf.Tick(5);  // the hover timer must not tick into the removed control
  EXPECT_TRUE(watch.expired());
}

// The tick lets a queued MouseMove run, and its handler drops the control
// while the tick is still on the stack.
TEST_F(ControlFrameTest, ControlRemovedDuringItsOwnTickIsNotTouchedAfterwards) {
  std::weak_ptr<ProbeControl> watch = probe;
  hover();
  auto connection = probe->MouseMove.connect(
      [&](int16_t, int16_t, float, float) { hf.form.RemoveControl("Probe1"); });
  probe.reset();
  site = nullptr;
  hf.system->PostMouseMove(kInsideX + 1, kInsideY);
  hf.Tick(3);
  EXPECT_TRUE(watch.expired());
}

TEST_F(ControlFrameTest, FormDestroyedByAClickHandlerIsSurvived) {
  auto form = std::make_unique<Form>(hf.system, "Form2");
  auto control = form->Add<ProbeControl>("Probe1", 0, 0, 50, 20);
  EventLog formLog(*form->FindSite("Probe1"));
  auto connection = control->Click.connect([&] { form.reset(); });
  control.reset();
  hf.form.MoveWindow(600, 600);  // out of the way of the second form
  hf.system->PostMouseMove(5, 5);
  hf.system->PostMouseDown(kLeft, 5, 5);
  hf.system->PostMouseUp(kLeft, 5, 5);
  hf.Run();
  hf.Tick(3);
  EXPECT_EQ(form, nullptr);
  EXPECT_EQ(formLog.Names(), (std::vector<std::string>{"MouseMove", "MouseDown", "Click"}));
}

// ---- Keyboard ---------------------------------------------------------------

TEST_F(ControlFrameTest, HeldSpaceClicksOnEveryRepeatAndStaysPressedUntilRelease) {
  focus();
  keyDown(32);
  keyDown(32);
  keyDown(32);
  EXPECT_EQ(probe->State(), bsPressed);
  keyUp(32);
  EXPECT_EQ(probe->State(), bsNormal);
  const std::vector<std::string> expected = {
      "KeyDown(i32, i0)", "Click()", "KeyDown(i32, i0)", "Click()",
      "KeyDown(i32, i0)", "Click()", "KeyUp(i32, i0)"};
  EXPECT_EQ(log->Lines(), expected);
}

// The key test reads KeyCode as the container's handler left it.
TEST_F(ControlFrameTest, KeyCodeZeroedByTheContainerSuppressesTheClick) {
  focus();
  auto down = probe->KeyDown.connect([](int16_t& keyCode, int16_t&) { keyCode = 0; });
  keyDown(13);
  EXPECT_EQ(log->Names(), std::vector<std::string>{"KeyDown"});
  EXPECT_EQ(probe->State(), bsNormal);
  down.disconnect();

  auto toEnter = probe->KeyDown.connect([](int16_t& keyCode, int16_t&) { keyCode = 13; });
  auto up = probe->KeyUp.connect([](int16_t& keyCode, int16_t&) { keyCode = 0; });
  log->Clear();
  keyDown(65 /* A, made Enter by the container */);
  EXPECT_EQ(log->Names(), (std::vector<std::string>{"KeyDown", "Click"}));
  keyUp(13);
  EXPECT_EQ(probe->State(), bsPressed) << "a KeyUp zeroed by the container leaves the look";
}

// ---- Focus ------------------------------------------------------------------

TEST_F(ControlFrameTest, FocusSetsHasFocusAndRepaints) {
  auto other = hf.form.Add<ProbeControl>("Probe2", 200, 10, 40, 20);
  int paints = probe->paints;
  focus();
  EXPECT_EQ(probe->HasFocus(), 1);
  EXPECT_EQ(probe->paints, paints + 1);
  paints = probe->paints;
  hf.form.FindSite("Probe2")->SetFocus();
  hf.Run();
  EXPECT_EQ(probe->HasFocus(), 0);
  EXPECT_EQ(other->HasFocus(), 1);
  EXPECT_EQ(probe->paints, paints + 1);
}

// ---- Properties -------------------------------------------------------------

TEST_F(ControlFrameTest, EverySetterMarksChangedAndRepaintsEvenWithTheSameValue) {
  site->ClearChangedProperties();
  const int paints = probe->paints;
  probe->BackColor(0x102030);
  probe->ForeColor(0x405060);
  probe->Caption("Go");
  probe->Font(test::PinnedFont());
  probe->Enabled(true);
  probe->Caption("Go");
  EXPECT_EQ(site->ChangedProperties(),
            (std::vector<std::string>{"BackColor", "ForeColor", "Caption", "Font", "Enabled",
                                      "Caption"}));
  EXPECT_EQ(probe->paints, paints + 6);
  EXPECT_TRUE(SameScheme(probe->lastPalette, SchemeNormal(0x102030, 0x405060, kWhite)));
}

TEST_F(ControlFrameTest, FontIsSharedByReferenceAndNothingIsError91) {
  auto font = test::PinnedFont();
  probe->Font(font);
  EXPECT_EQ(probe->Font(), font);
  EXPECT_EQ(site->Surface().Font(), font) << "text is measured in the control's font";
  try {
    probe->Font(nullptr);
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), errObjectNotSet);
  }
}

TEST_F(ControlFrameTest, UnsitedControlStoresValuesButHasNoHostProperties) {
  auto loose = std::make_shared<ProbeControl>();
  loose->BackColor(0x123456);
  loose->Caption("x");
  EXPECT_EQ(loose->BackColor(), 0x123456u);
  EXPECT_EQ(loose->paints, 0);
  try {
    (void)loose->Enabled();
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), errObjectNotSet);
    EXPECT_NE(std::string(error.what()).find("ProbeControl"), std::string::npos);
  }
}

// ---- Persistence ------------------------------------------------------------

TEST_F(ControlFrameTest, StoredPropertiesSurviveAJsonRoundTripInTableOrder) {
  PropertyBag defaults;
  probe->WriteProperties(defaults);
  EXPECT_EQ(defaults.Count(), 0u) << "defaults are not stored";

  auto font = std::make_shared<Font>(test::kPinnedFamily, 12.0f);
  probe->BackColor(0x336699);
  probe->ForeColor(0x112233);
  probe->Enabled(false);
  probe->Font(font);
  probe->Caption("Saved");
  PropertyBag bag;
  probe->WriteProperties(bag);
  EXPECT_EQ(bag.Keys(),
            (std::vector<std::string>{"BackColor", "ForeColor", "Enabled", "Font", "Caption"}));

  const PropertyBag loaded = PropertyBag::FromJson(bag.ToJson());
  hf.form.AddControl(std::make_shared<ProbeControl>(), "Copy", 0, 100, 50, 20, &loaded);
  auto copy = std::dynamic_pointer_cast<ProbeControl>(hf.form.FindSite("Copy")->Control());
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(copy->BackColor(), 0x336699u);
  EXPECT_EQ(copy->ForeColor(), 0x112233u);
  EXPECT_FALSE(copy->Enabled());
  EXPECT_EQ(copy->State(), bsDisabled) << "reading ends in a repaint";
  EXPECT_EQ(copy->Font()->Size(), 12.0f);
  EXPECT_EQ(copy->Caption(), "Saved");
}

TEST_F(ControlFrameTest, MissingKeysReadAsTheirDefaults) {
  const PropertyBag empty;
  hf.form.AddControl(std::make_shared<ProbeControl>(), "Fresh", 0, 100, 50, 20, &empty);
  auto fresh = std::dynamic_pointer_cast<ProbeControl>(hf.form.FindSite("Fresh")->Control());
  EXPECT_EQ(fresh->BackColor(), kWhite);
  EXPECT_EQ(fresh->ForeColor(), kDarkBlue);
  EXPECT_TRUE(fresh->Enabled());
  EXPECT_EQ(fresh->Caption(), "Fresh");
  EXPECT_TRUE(fresh->Font()->SameLook(*hf.form.Font()));
}

TEST_F(ControlFrameTest, WrongTypedStoredValueIsError13NamingTheKeyToTheContainer) {
  int n = 0;
  for (const char* key : {"BackColor", "ForeColor", "Enabled", "Font"}) {
    PropertyBag bag;
    bag.WriteProperty(key, Variant("not a value of that kind"));
    try {
      hf.form.AddControl(std::make_shared<ProbeControl>(), "Bad" + std::to_string(n++), 0, 100, 50,
                         20, &bag);
      ADD_FAILURE() << key << ": no error";
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), errTypeMismatch) << key;
      EXPECT_NE(std::string(error.what()).find(key), std::string::npos) << error.what();
    }
  }
  // Keys are read in table order whatever order the bag holds them in.
  PropertyBag bag;
  bag.WriteProperty("Caption", Variant(std::make_shared<Font>()));
  bag.WriteProperty("ForeColor", Variant("blue"));
  try {
    hf.form.AddControl(std::make_shared<ProbeControl>(), "Order", 0, 100, 50, 20, &bag);
    ADD_FAILURE() << "no error";
  } catch (const Error& error) {
    EXPECT_NE(std::string(error.what()).find("ForeColor"), std::string::npos) << error.what();
  }
}

}  // namespace
}  // namespace velt
