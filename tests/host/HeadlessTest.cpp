// The headless window system: the script, nested DoEvents, pop-ups, the
// composited screen, and timers on its virtual clock.

#include "velt/platform/HeadlessWindowSystem.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/Probe.hpp"
#include "support/ExpectError.hpp"
#include "velt/host/Form.hpp"
#include "velt/host/HostTimer.hpp"
#include "velt/host/Site.hpp"
#include "velt/platform/PopupWindow.hpp"
#include "velt/platform/Timer.hpp"
#include "velt/platform/VirtualClock.hpp"

namespace velt {
namespace {

using testing::Probe;
using Calls = std::vector<std::string>;

class HeadlessTest : public ::testing::Test {
 protected:
  HeadlessTest() {
    probe = std::make_shared<Probe>(0x00FF00, &journal);
    site = &form.AddControl(probe, "P", 0, 0, 100, 100);
    journal.clear();
  }

  // A popup of P that writes its events into the journal.
  std::shared_ptr<PopupWindow> popup(const std::string& name, RectL rect) {
    std::shared_ptr<PopupWindow> p = site->CreatePopup(name);
    p->Move(rect.Left, rect.Top, rect.Width(), rect.Height());
    auto mouse = [this, name](std::string what) {
      return [this, name, what](int16_t button, int16_t, float x, float y) {
        journal.push_back(name + ":" + what + " " + std::to_string(button) + " " +
                          std::to_string(int(x)) + " " + std::to_string(int(y)));
      };
    };
    auto note = [this, name](std::string what) {
      return [=, this] { journal.push_back(name + what); };
    };
    p->MouseDown.connect(mouse("MouseDown")).release();
    p->MouseMove.connect(mouse("MouseMove")).release();
    p->MouseUp.connect(mouse("MouseUp")).release();
    p->Click.connect(note(":Click")).release();
    p->LostFocus.connect(note(":LostFocus")).release();
    return p;
  }
  // An enabled timer of P whose ticks are noted as "<time><name>".
  std::shared_ptr<Timer> timer(const std::string& name, int32_t interval,
                               std::function<void()> extra = {}) {
    std::shared_ptr<Timer> t = site->CreateTimer(name);
    t->Interval(interval);
    t->Enabled(true);
    t->Tick
        .connect([this, name, extra] {
          ticks.push_back(std::to_string(system->NowMs()) + name);
          if (extra) extra();
        })
        .release();
    return t;
  }

  std::vector<std::string> journal, ticks;
  std::shared_ptr<HeadlessWindowSystem> system = std::make_shared<HeadlessWindowSystem>(300, 200);
  Form form{system, "Form1", 200, 150};
  std::shared_ptr<Probe> probe;
  Site* site = nullptr;
};

// Each DoEvents takes the actions then one input item of the script, then the
// work posted before it; work posted by work waits for the next.
TEST_F(HeadlessTest, EachDoEventsTakesOneScriptItemThenThePostedWork) {
  system->Post([this] {
    journal.push_back("work");
    system->Post([this] { journal.push_back("later work"); });
  });
  system->PostAction([this] { journal.push_back("action"); });
  system->PostMouseMove(3, 3);
  system->PostMouseMove(4, 4);
  system->DoEvents();
  EXPECT_EQ(journal, (Calls{"action", "work"}));
  system->DoEvents();
  EXPECT_EQ(journal, (Calls{"action", "work", "P:MouseMove 0 0 3 3", "later work"}));
  EXPECT_EQ(system->PendingInput(), 1u);
}

TEST_F(HeadlessTest, WaitingForTheButtonsInsideDoEventsEndsWithTheScriptsRelease) {
  probe->onMouseDown = [this] {
    while (site->AsyncKeyState(1) != 0 || site->AsyncKeyState(2) != 0)
      site->DoEvents();
    journal.push_back("buttons up");
  };
  system->PostMouseDown(1, 10, 10);
  system->PostMouseMove(150, 10);
  system->PostMouseUp(1, 150, 10);
  system->PostMouseMove(20, 20);
  system->RunUntilIdle();
  EXPECT_EQ(journal, (Calls{"P:EnterFocus", "P:MouseDown 1 0 10 10", "P:MouseMove 1 0 150 10",
                            "P:MouseUp 1 0 150 10", "buttons up", "P:MouseMove 0 0 20 20"}));
}

TEST_F(HeadlessTest, BadScriptInputIsRefused) {
  using test::errorOf;
  errorOf(errInvalidProcedureCall, [&] { system->PostMouseUp(0, 0, 0); });
  errorOf(errInvalidProcedureCall, [&] { system->PostWait(-1); });
  errorOf(errObjectNotSet, [&] { system->PostAction(nullptr); });
  errorOf(errInvalidProcedureCall, [] { HeadlessWindowSystem none(0, 10); });
  errorOf(errInvalidProcedureCall, [&] { popup("X", RectL{})->Move(0, 0, -1, 5); });
  EXPECT_EQ(system->PendingInput(), 0u);
}

// A topmost pop-up stays above one shown later.
TEST_F(HeadlessTest, VisiblePopupsTakeTheMouseBeforeTheFormAndClick) {
  std::shared_ptr<PopupWindow> top = popup("Top", RectL{140, 90, 170, 110});
  top->Topmost(true);
  top->Show(true);
  std::shared_ptr<PopupWindow> p = popup("Menu", RectL{50, 50, 150, 100});
  system->PostMouseMove(60, 60);  // hidden: the form's control gets it
  system->PostAction([&] { p->Show(true); });
  system->PostMouseMove(145, 95);
  system->PostMouseMove(60, 60);
  system->PostMouseDown(1, 61, 61);
  system->PostMouseUp(1, 62, 62);
  system->PostMouseDown(2, 62, 62);
  system->PostMouseUp(2, 62, 62);  // no click for the right button
  system->PostMouseDown(1, 62, 62);
  system->PostMouseUp(1, 160, 62);  // released outside: captured, but no click
  system->RunUntilIdle();
  EXPECT_EQ(journal,
            (Calls{"P:MouseMove 0 0 60 60", "Top:LostFocus", "Top:MouseMove 0 5 5",
                   "Menu:MouseMove 0 10 10", "Menu:MouseDown 1 11 11", "Menu:MouseUp 1 12 12",
                   "Menu:Click", "Menu:MouseDown 2 12 12", "Menu:MouseUp 2 12 12",
                   "Menu:MouseDown 1 12 12", "Menu:MouseUp 1 110 12"}));
}

TEST_F(HeadlessTest, PopupLosesTheFocusToAPressElsewhereToAnotherPopupOrWhenHidden) {
  std::shared_ptr<PopupWindow> a = popup("A", RectL{120, 0, 160, 40});
  std::shared_ptr<PopupWindow> b = popup("B", RectL{120, 60, 160, 100});
  a->Show(true);
  EXPECT_EQ(system->FocusedPopup(), a);
  system->PostMouseDown(1, 130, 10);  // on itself: keeps it
  system->PostMouseUp(1, 130, 10);
  system->PostMouseDown(2, 5, 5);  // on the form
  system->PostMouseUp(2, 5, 5);
  system->PostAction([&] { a->Show(true); });  // already visible: nothing changes
  system->PostAction([&] { b->Show(true); });  // takes the focus nobody had
  system->PostAction([&] {
    a->Show(false);  // not focused: no LostFocus
    a->Show(true);
  });
  system->PostMouseDown(1, 290, 190);  // on the bare desktop
  system->PostAction([&] {
    b->Show(false);
    b->Show(true);
    b->Show(false);
  });
  system->RunUntilIdle();
  EXPECT_EQ(journal, (Calls{"A:MouseDown 1 10 10", "A:MouseUp 1 10 10", "A:Click", "A:LostFocus",
                            "P:EnterFocus", "P:MouseDown 2 0 5 5", "P:MouseUp 2 0 5 5",
                            "B:LostFocus", "A:LostFocus", "B:LostFocus"}));
  EXPECT_EQ(system->FocusedPopup(), nullptr);
}

TEST_F(HeadlessTest, ScreenCompositesFormThenPopupsWithAlphaAndShadow) {
  form.MoveWindow(20, 10);
  form.BackColor(0x000000);
  probe->paint();  // green control (OLE 0x00FF00) at the form's corner
  std::shared_ptr<PopupWindow> p = popup("Menu", RectL{40, 30, 60, 40});
  p->Surface().BackColor(0x0000FF);  // red, sized by Move
  p->Show(true);
  Canvas screen = system->CompositeScreen();
  EXPECT_EQ(screen.PixelRGB(5, 5), 0x008080u);  // desktop teal
  EXPECT_EQ(screen.PixelRGB(59, 39), 0xFF0000u);
  EXPECT_EQ(screen.PixelRGB(60, 40), 0x00FF00u);

  p->Alpha(230);
  EXPECT_EQ(system->CompositeScreen().PixelRGB(45, 35), 0xFF0000u) << "opaque until layered";
  p->Layered(true);
  p->DropShadow(true);
  screen = system->CompositeScreen();
  // 230/255 of red over green, rounded per channel.
  EXPECT_EQ(screen.PixelRGB(45, 35), 0xE61900u);
  EXPECT_EQ(screen.PixelRGB(61, 36), 0x009F00u);  // shadow right of the window: 5/8 of green
  EXPECT_EQ(screen.PixelRGB(41, 41), 0x00FF00u);  // the shadow starts 4 pixels in

  p->Show(false);
  EXPECT_EQ(system->CompositeScreen().PixelRGB(45, 35), 0x00FF00u);
}

// ---- Timers on the virtual clock

// Due together, the timer rearmed first ticks first. Waiting in the script
// moves the clock as well.
TEST_F(HeadlessTest, TimersTickInDueOrderAndFromCreationDisabled) {
  EXPECT_FALSE(site->CreateTimer("off")->Enabled());
  auto a = timer("A", 3);
  auto b = timer("B", 2);
  system->AdvanceClock(4);
  system->PostWait(2);
  system->RunUntilIdle();
  EXPECT_EQ(ticks, (Calls{"2B", "3A", "4B", "6A", "6B"}));
}

TEST_F(HeadlessTest, IntervalAndEnabledChangesCountFromNow) {
  auto t = timer("", 10);
  system->AdvanceClock(4);
  t->Interval(3);  // next tick 3 ms from now
  system->AdvanceClock(3);
  t->Interval(3);  // the same value changes nothing
  t->Enabled(true);
  system->AdvanceClock(2);
  t->Enabled(false);
  t->Enabled(true);  // counts again from 9
  system->AdvanceClock(3);
  t->Interval(0);  // enabled but silent
  system->AdvanceClock(20);
  EXPECT_EQ(ticks, (Calls{"7", "12"}));
  test::errorOf(errInvalidPropertyValue, [&] { t->Interval(-1); });
}

TEST_F(HeadlessTest, HandlerMayDisableOrDestroyItsOwnTimer) {
  std::shared_ptr<Timer> once, doomed;
  once = timer("once", 1, [&] { once->Enabled(false); });
  doomed = timer("doomed", 2, [&] { doomed.reset(); });
  system->AdvanceClock(10);
  EXPECT_EQ(ticks, (Calls{"1once", "2doomed"}));
  EXPECT_EQ(system->Timers().Count(), 1u);
}

// Time passes while the busy handler waits in DoEvents; the others still tick,
// and busy, not re-entered, ticks once when back.
TEST_F(HeadlessTest, TimerIsNotReenteredWhileItsHandlerRunsDoEvents) {
  int depth = 0, deepest = 0;
  std::shared_ptr<Timer> busy = timer("busy", 1, [&] {
    deepest = std::max(deepest, ++depth);
    if (system->NowMs() == 1) {
      system->PostWait(4);
      site->DoEvents();
    }
    --depth;
  });
  std::shared_ptr<Timer> other = timer("other", 2);
  system->AdvanceClock(7);
  EXPECT_EQ(deepest, 1);
  EXPECT_EQ(ticks, (Calls{"1busy", "2other", "4other", "5busy", "6other", "6busy", "7busy"}));
}

TEST_F(HeadlessTest, TimersOfARemovedControlNeverTickAgain) {
  auto t = timer("", 1);
  system->AdvanceClock(2);
  form.RemoveControl("P");
  t->Enabled(false);
  t->Enabled(true);
  system->AdvanceClock(5);
  EXPECT_EQ(ticks, (Calls{"1", "2"}));
  EXPECT_FALSE(std::static_pointer_cast<HostTimer>(t)->Attached());
  EXPECT_EQ(system->Timers().Count(), 0u);
}

TEST(TimerQueueTest, BadIntervalsIdsAndClockStepsAreRefused) {
  VirtualClock clock;
  TimerQueue queue(clock);
  const TimerQueue::Id id = queue.Add([] {});
  test::errorOf(errInvalidProcedureCall, [&] { queue.Start(id, 0); });
  test::errorOf(errInvalidProcedureCall, [&] { queue.Start(id + 1, 5); });
  test::errorOf(errInvalidProcedureCall, [&] { clock.Advance(-1); });
}

}  // namespace
}  // namespace velt
