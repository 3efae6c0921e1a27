// The control frame driven through a headless form: the state table row by
// row, hover tracking on the virtual clock, mouse and keyboard forwarding,
// focus, the frame properties, persistence, and handlers that remove it.

#include "velt/foundation/ControlFrame.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <functional>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "support/ExpectError.hpp"
#include "support/HeadlessForm.hpp"
#include "support/SchemeMatchers.hpp"
#include "velt/platform/PropertyBag.hpp"

namespace velt {
namespace {

using test::SameScheme;
using Names = std::vector<std::string>;

// The smallest frame control: fills its face with the palette's FillTop and
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

// The probe at (10, 10), 80 x 30 pixels, on a form at screen (0, 0).
class ControlFrameTest : public ::testing::Test {
 protected:
  static constexpr int32_t kX = 10, kWidth = 80, kInsideX = 50, kInsideY = 25;

  void SetUp() override {
    probe = hf.form.Add<ProbeControl>("Probe1", kX, 10, kWidth, 30);
    site = hf.form.FindSite("Probe1");
    log = std::make_unique<test::EventLog>(*site);
  }
  // Runs input words: move (a MouseMove inside), tick (1 ms), down and up (the
  // left button), gone (the pointer two pixels on without a MouseMove), on and
  // off (Enabled), focus, enter+ enter- space+ space- (key down and up).
  void act(const std::string& script) {
    HeadlessWindowSystem& s = *hf.system;
    const std::map<std::string, std::function<void()>> words = {
        {"move", [&] { s.PostMouseMove(kInsideX, kInsideY); }},
        {"tick", [&] { hf.Tick(); }},
        {"down", [&] { s.PostMouseDown(1, kInsideX, kInsideY); }},
        {"up", [&] { s.PostMouseUp(1, kInsideX, kInsideY); }},
        {"gone", [&] { s.SetCursor(kInsideX + 2, kInsideY); }},
        {"on", [&] { probe->Enabled(true); }},
        {"off", [&] { probe->Enabled(false); }},
        {"focus", [&] { site->SetFocus(); }},
        {"enter+", [&] { s.PostKeyDown(13, 0); }},
        {"enter-", [&] { s.PostKeyUp(13, 0); }},
        {"space+", [&] { s.PostKeyDown(32, 0); }},
        {"space-", [&] { s.PostKeyUp(32, 0); }}};
    std::istringstream in(script);
    for (std::string word; in >> word; hf.Run())
      words.at(word)();
  }
  // The probe removed by the handler connected to one of its events.
  template <typename... Args>
  std::weak_ptr<ProbeControl> removedBy(Event<Args...>& event) {
    connection = event.connect([this](Args...) { hf.form.RemoveControl("Probe1"); });
    std::weak_ptr<ProbeControl> watch = probe;
    probe.reset();
    return watch;
  }

  test::HeadlessForm hf;
  std::shared_ptr<ProbeControl> probe;
  Site* site = nullptr;
  std::unique_ptr<test::EventLog> log;
  Connection connection;
};

using Builder = ColorScheme (*)(OLE_COLOR, OLE_COLOR, OLE_COLOR);

::testing::AssertionResult painted(const ProbeControl& probe, Builder builder) {
  return SameScheme(probe.lastPalette, builder(kWhite, kDarkBlue, kWhite));
}

// Each row of the state table, walked in one sequence.
TEST_F(ControlFrameTest, StateTableRowByRow) {
  const struct {
    const char* input;
    ButtonState state;
    Builder palette;
  } steps[] = {
      {"move", bsNormal, SchemeNormal},  // a move alone changes nothing
      {"tick", bsHover, SchemeHover},    // resting -> hover on the first tick
      {"down", bsHover, SchemeHover},    // a press shows on the next tick
      {"tick", bsPressed, SchemePressed},
      {"up", bsPressed, SchemePressed},
      {"tick", bsHover, SchemeHover},
      {"off", bsDisabled, SchemeDisabled},  // any -> disabled
      {"on", bsIdle, SchemeNormal},
      {"move tick", bsHover, SchemeHover},  // idle -> hover
      {"gone tick", bsNormal, SchemeNormal},
      {"move tick down tick", bsPressed, SchemePressed},
      {"gone tick", bsNormal, SchemeNormal},
      {"up focus enter+", bsPressed, SchemePressed},  // any -> pressed on Enter or Space
      {"enter-", bsNormal, SchemeNormal},
  };
  for (const auto& step : steps) {
    SCOPED_TRACE(step.input);
    act(step.input);
    EXPECT_EQ(probe->State(), step.state);
    EXPECT_TRUE(painted(*probe, step.palette));
  }
}

// Leaving is seen only as the pointer two pixels or more (along either axis)
// from the last MouseMove; a pointer one pixel off the control still hovers,
// and one-pixel steps with a MouseMove each never leave.
TEST_F(ControlFrameTest, LeaveTestIsTwoPixelsFromTheLastMouseMove) {
  const int32_t offsets[][3] = {{-2, 0, 1}, {0, -2, 1}, {1, 1, 0}, {-1, -1, 0}};
  for (const auto [dx, dy, leaves] : offsets) {
    act("move tick");
    hf.system->SetCursor(kInsideX + dx, kInsideY + dy);
    hf.Tick();
    EXPECT_EQ(probe->State(), leaves ? bsNormal : bsHover) << dx << "," << dy;
    EXPECT_EQ(probe->HoverTimerRunning(), !leaves);
  }
  for (int32_t x = kX + kWidth - 3; x <= kX + kWidth; ++x) {  // the last one pixel off it
    hf.system->PostMouseMove(x, kInsideY);
    hf.Run();
    hf.Tick();
    ASSERT_EQ(probe->State(), bsHover) << "at x " << x;
  }
}

// Events carry the host's arguments; the right button raises only moves; a
// release outside the control (the host holds the capture) still clicks.
TEST_F(ControlFrameTest, MouseEventsInOrderWithTheirArguments) {
  hf.system->PostMouseMove(kInsideX, kInsideY);
  hf.system->PostMouseDown(1, kInsideX, kInsideY, 1);
  hf.system->PostMouseUp(1, kInsideX + 1, kInsideY + 2, 2);
  hf.system->PostMouseDown(2, kInsideX + 1, kInsideY + 2);
  hf.system->PostMouseMove(kInsideX + 1, kInsideY);
  hf.system->PostMouseUp(2, kInsideX + 1, kInsideY);
  hf.system->PostMouseDown(1, kInsideX + 1, kInsideY);
  hf.system->PostMouseMove(kX + kWidth + 30, kInsideY);
  hf.system->PostMouseUp(1, kX + kWidth + 30, kInsideY);
  hf.Run();
  EXPECT_EQ(log->Lines(),
            (Names{"MouseMove(i0, i0, f40, f15)", "MouseDown(i1, i1, f40, f15)", "Click()",
                   "MouseUp(i1, i2, f41, f17)", "MouseMove(i2, i0, f41, f15)",
                   "MouseDown(i1, i0, f41, f15)", "MouseMove(i1, i0, f110, f15)", "Click()",
                   "MouseUp(i1, i0, f110, f15)"}));
  EXPECT_FALSE(probe->MouseIsDown());
}

// Keys reach the focused control. Held Space clicks on every repeat; the key
// test reads KeyCode as the container's handler left it.
TEST_F(ControlFrameTest, KeysClickOnEveryRepeatAndAsTheContainerLeftTheKeyCode) {
  act("focus space+ space+ space-");
  EXPECT_EQ(probe->HasFocus(), 1);
  EXPECT_EQ(log->Lines(), (Names{"KeyDown(i32, i0)", "Click()", "KeyDown(i32, i0)", "Click()",
                                 "KeyUp(i32, i0)"}));
  connection = probe->KeyUp.connect([](int16_t& keyCode, int16_t&) { keyCode = 0; });
  act("enter+ enter-");
  EXPECT_EQ(probe->State(), bsPressed) << "a KeyUp zeroed by the container leaves the look";
  connection = probe->KeyDown.connect([](int16_t& keyCode, int16_t&) { keyCode = 0; });
  log->Clear();
  act("enter+");
  EXPECT_EQ(log->Names(), Names{"KeyDown"});
}

TEST_F(ControlFrameTest, ControlRemovedByItsClickHandlerRaisesNothingMore) {
  const auto watch = removedBy(probe->Click);
  act("move down up");
  hf.Tick(5);  // the hover timer must not tick into the removed control
  EXPECT_EQ(log->Names(), (Names{"MouseMove", "MouseDown", "Click"}));
  EXPECT_TRUE(watch.expired());
}

// The tick lets a queued MouseMove run, and its handler drops the control
// while the tick is still on the stack.
TEST_F(ControlFrameTest, ControlRemovedDuringItsOwnTickIsNotTouchedAfterwards) {
  act("move tick");
  const auto watch = removedBy(probe->MouseMove);
  hf.system->PostMouseMove(kInsideX + 1, kInsideY);
  hf.Tick(3);
  EXPECT_TRUE(watch.expired());
}

TEST_F(ControlFrameTest, FormDestroyedByAClickHandlerIsSurvived) {
  auto form = std::make_unique<Form>(hf.system, "Form2");
  hf.form.MoveWindow(600, 600);  // out of the way of the second form
  connection =
      form->Add<ProbeControl>("Probe1", 0, 0, 80, 30)->Click.connect([&] { form.reset(); });
  act("move down up tick tick");
  EXPECT_EQ(form, nullptr);
  EXPECT_TRUE(log->Lines().empty());
}

// Every setter marks the property and repaints; only values off their defaults
// are stored, in table order; an empty bag reads as the defaults, the caption
// being the control's name; reading ends in a repaint.
TEST_F(ControlFrameTest, SettersRepaintAndStoredPropertiesSurviveAJsonRoundTrip) {
  PropertyBag bag;
  probe->WriteProperties(bag);
  EXPECT_EQ(bag.Count(), 0u);
  auto copy = std::make_shared<ProbeControl>();
  hf.form.AddControl(copy, "Fresh", 0, 100, 50, 20, &bag);
  EXPECT_EQ(copy->BackColor(), kWhite);
  EXPECT_EQ(copy->Caption() + " " + probe->Caption(), "Fresh Probe1");
  site->ClearChangedProperties();
  const int paints = probe->paints;
  const auto font = std::make_shared<Font>(test::kPinnedFamily, 12.0f);
  probe->Caption("Saved");
  probe->Font(font);
  probe->BackColor(0x336699);
  probe->ForeColor(0x112233);
  EXPECT_TRUE(SameScheme(probe->lastPalette, SchemeNormal(0x336699, 0x112233, kWhite)));
  EXPECT_EQ(site->Surface().Font(), font) << "text is measured in the control's font";
  probe->Enabled(false);
  EXPECT_EQ(site->ChangedProperties(),
            (Names{"Caption", "Font", "BackColor", "ForeColor", "Enabled"}));
  EXPECT_EQ(probe->paints, paints + 5);
  probe->WriteProperties(bag);
  EXPECT_EQ(bag.Keys(), (Names{"BackColor", "ForeColor", "Enabled", "Font", "Caption"}));
  const PropertyBag loaded = PropertyBag::FromJson(bag.ToJson());
  hf.form.AddControl(copy = std::make_shared<ProbeControl>(), "Copy", 0, 100, 50, 20, &loaded);
  PropertyBag again;
  copy->WriteProperties(again);
  EXPECT_EQ(again.ToJson(), bag.ToJson());
  EXPECT_EQ(copy->State(), bsDisabled);
}

// A missing font is error 91, as is any property of an unsited control.
TEST_F(ControlFrameTest, NoFontAndNoSiteAreError91) {
  test::errorOf(errObjectNotSet, [&] { probe->Font(nullptr); });
  auto loose = std::make_shared<ProbeControl>();
  const std::string message = test::errorOf(errObjectNotSet, [&] { (void)loose->Enabled(); });
  EXPECT_NE(message.find("ProbeControl"), std::string::npos) << message;
}

// Keys are read in table order whatever order the bag holds them in.
TEST_F(ControlFrameTest, WrongTypedStoredValueIsError13NamingTheFirstKeyInTableOrder) {
  for (const char* key : {"BackColor", "ForeColor", "Enabled", "Font"}) {
    PropertyBag bag;
    bag.WriteProperty("Caption", Variant(std::make_shared<Font>()));
    bag.WriteProperty(key, Variant("not a value of that kind"));
    auto bad = std::make_shared<ProbeControl>();
    const std::string message = test::errorOf(errTypeMismatch, [&] {
      hf.form.AddControl(bad, std::string("Bad") + key, 0, 0, 5, 5, &bag);
    });
    EXPECT_NE(message.find(key), std::string::npos) << message;
  }
}

}  // namespace
}  // namespace velt
