// Input routing: the mouse to the topmost site under it or to the capture
// holder, presses on the bare form to Form::MouseDown, keys to the focus, and
// the focus moved as the Tab key does.

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "host/Probe.hpp"
#include "support/ExpectError.hpp"
#include "velt/host/Form.hpp"
#include "velt/host/Site.hpp"
#include "velt/platform/HeadlessWindowSystem.hpp"
#include "velt/platform/MousePointer.hpp"
#include "velt/platform/PopupWindow.hpp"

namespace velt {
namespace {

using testing::Probe;
using Calls = std::vector<std::string>;

class RoutingTest : public ::testing::Test {
 protected:
  Site& add(const std::string& name, int32_t left, int32_t top, int32_t width, int32_t height) {
    Site& site =
        form->AddControl(std::make_shared<Probe>(0, &journal), name, left, top, width, height);
    journal.clear();  // creation is another test's business
    return site;
  }
  ControlHost& addPart(Site& parent, const std::string& name, int32_t left, int32_t width) {
    ControlHost& part =
        parent.AddChild(std::make_shared<Probe>(0, &journal), name, left, left, width, width);
    journal.clear();
    return part;
  }
  // Tab (or Shift+Tab) count times: the names focused.
  Calls tabs(int count, bool backward = false) {
    Calls order;
    while (count--) {
      form->FocusNext(backward);
      order.push_back(form->FocusedSite() ? form->FocusedSite()->Name() : "(none)");
    }
    return order;
  }

  std::vector<std::string> journal;
  std::shared_ptr<HeadlessWindowSystem> system = std::make_shared<HeadlessWindowSystem>();
  std::unique_ptr<Form> form = std::make_unique<Form>(system);
};

// Script points are screen pixels; each site gets its own. Parts come before
// their parent and are cut to it; disabled or hidden sites are skipped.
TEST_F(RoutingTest, MouseGoesToTheTopmostSiteInItsOwnPixelsPartsFirstCutToTheirParent) {
  form->MoveWindow(100, 100);
  add("Below", 0, 0, 100, 100);
  Site& over = add("Over", 10, 10, 40, 40);
  addPart(over, "Part", 30, 20);
  system->PostMouseMove(145, 145);  // on the part
  system->PostMouseMove(120, 121);  // on its parent only
  system->PostMouseMove(155, 155);  // on the part's piece outside its parent
  system->PostAction([&] { over.Enabled(false); });
  system->PostMouseMove(145, 146);
  system->PostAction([&] {
    over.Enabled(true);
    over.Visible(false);
  });
  system->PostMouseDown(2, 145, 147, 3);
  system->RunUntilIdle();
  EXPECT_EQ(journal, (Calls{"Part:MouseMove 0 0 5 5", "Over:MouseMove 0 0 10 11",
                            "Below:MouseMove 0 0 55 55", "Below:MouseMove 0 0 45 46",
                            "Below:EnterFocus", "Below:MouseDown 2 3 45 47"}));
}

TEST_F(RoutingTest, CaptureKeepsMovesAndTheReleaseWithThePressedSite) {
  add("A", 0, 0, 20, 20);
  add("B", 50, 0, 20, 20);
  system->PostMouseDown(1, 5, 5);
  system->PostMouseMove(55, 5);     // over B, captured by A
  system->PostMouseDown(2, 90, 5);  // on the bare form, still A's
  system->PostMouseUp(1, 57, 5);    // right still held: still captured
  system->PostMouseUp(2, 58, 5);    // released outside A: still A's
  system->PostMouseMove(59, 5);     // free again
  system->RunUntilIdle();
  EXPECT_EQ(journal, (Calls{"A:EnterFocus", "A:MouseDown 1 0 5 5", "A:MouseMove 1 0 55 5",
                            "A:MouseDown 2 0 90 5", "A:MouseUp 1 0 57 5", "A:MouseUp 2 0 58 5",
                            "B:MouseMove 0 0 9 5"}));
  EXPECT_EQ(form->CaptureSite(), nullptr);
}

// The wheel goes where the pointer is, whoever holds the capture; a part that
// does not scroll passes the turn to its parent.
// The second press of a pair within the time and distance is a double click,
// told after its MouseDown to the site that took both presses; a third press
// starts a new pair.
TEST_F(RoutingTest, DoubleClicksPairPressesCloseInTimeAndPlaceOnOneSite) {
  add("A", 0, 0, 20, 40);
  add("B", 20, 0, 30, 40);
  struct Second {
    int64_t afterMs;
    int32_t x, y;
    int16_t button;
    bool doubled;
  };
  for (const Second& second :
       {Second{0, 21, 10, 1, false}, Second{0, 17, 10, 1, true}, Second{500, 13, 6, 1, true},
        Second{501, 17, 10, 1, false}, Second{0, 17, 15, 1, false}, Second{0, 17, 10, 2, false}}) {
    journal.clear();
    system->PostWait(1000);
    system->PostMouseDown(1, 17, 10);
    system->PostMouseUp(1, 17, 10);
    system->PostWait(second.afterMs);
    system->PostMouseDown(second.button, second.x, second.y);
    system->PostMouseUp(second.button, second.x, second.y);
    system->RunUntilIdle();
    const bool doubled = std::count_if(journal.begin(), journal.end(), [](const std::string& c) {
                           return c.find("DblClick") != std::string::npos;
                         }) == 1;
    EXPECT_EQ(doubled, second.doubled) << second.afterMs << "ms at " << second.x << "," << second.y;
  }
  journal.clear();
  for (int press = 0; press < 4; ++press) {
    system->PostMouseDown(1, 5, 5);
    system->PostMouseUp(1, 5, 5);
  }
  system->RunUntilIdle();
  const Calls pair{"A:MouseDown 1 0 5 5", "A:MouseUp 1 0 5 5", "A:MouseDown 1 0 5 5",
                   "A:DblClick 1 0 5 5", "A:MouseUp 1 0 5 5"};
  Calls twoPairs = pair;
  twoPairs.insert(twoPairs.end(), pair.begin(), pair.end());
  EXPECT_EQ(journal, twoPairs);
}

TEST_F(RoutingTest, TheWheelGoesUnderThePointerAndUpToAControlThatScrolls) {
  form->MoveWindow(100, 100);
  Site& over = add("Over", 10, 10, 40, 40);
  std::dynamic_pointer_cast<Probe>(over.Control())->scrolls = true;
  ControlHost& part = addPart(over, "Part", 30, 20);
  add("Other", 60, 0, 20, 20);
  system->PostMouseWheel(145, 145, -2);
  system->PostAction([&] { dynamic_cast<Site&>(part).Visible(false); });
  system->PostMouseDown(1, 165, 105);
  system->PostMouseWheel(145, 146, 1, 1);  // captured by Other, under Over
  system->PostMouseWheel(300, 300, 1);     // on the bare form
  system->RunUntilIdle();
  EXPECT_EQ(journal,
            (Calls{"Part:MouseWheel -2 0 5 5", "Over:MouseWheel -2 0 35 35", "Other:EnterFocus",
                   "Other:MouseDown 1 0 5 5", "Over:MouseWheel 1 1 35 36"}));
}

// A press on the form's own background raises Form::MouseDown in form pixels
// and captures for the form: no control sees that button until it is up.
TEST_F(RoutingTest, PressOnTheBareFormIsTheFormsAndCapturesForIt) {
  form->MoveWindow(100, 50);
  add("A", 0, 0, 20, 20);
  Connection presses = form->MouseDown.connect([this](int16_t b, int16_t s, float x, float y) {
    journal.push_back("Form " + std::to_string(b) + std::to_string(s) + " " +
                      std::to_string(int(x)) + " " + std::to_string(int(y)));
    if (b == 1) form.reset();  // a handler may destroy the form
  });
  system->PostMouseDown(2, 170, 55, 1);
  system->PostMouseMove(105, 55);
  system->PostMouseUp(2, 105, 55);
  system->PostMouseMove(106, 56);
  system->PostMouseDown(1, 190, 90);
  system->PostMouseUp(1, 190, 90);
  system->RunUntilIdle();
  EXPECT_EQ(journal,
            (Calls{"Form 21 70 5", "A:MouseMove 0 0 6 6", "Form 10 90 40", "A:Terminate"}));
  EXPECT_EQ(form, nullptr);
}

// Focus moving inside a composite control tells the parent once; a control
// that cannot be reached cannot take the focus.
TEST_F(RoutingTest, FocusInsideACompositeControlTellsTheParentOnce) {
  Site& parent = add("Parent", 0, 0, 50, 50);
  ControlHost& one = addPart(parent, "One", 0, 10);
  ControlHost& two = addPart(parent, "Two", 20, 10);
  add("Other", 100, 0, 10, 10);
  one.SetFocus();
  EXPECT_TRUE(parent.HasFocus());
  two.SetFocus();
  parent.SetFocus();
  form->FindSite("Other")->SetFocus();
  EXPECT_EQ(journal,
            (Calls{"Parent:EnterFocus", "One:EnterFocus", "One:ExitFocus", "Two:EnterFocus",
                   "Two:ExitFocus", "Parent:ExitFocus", "Other:EnterFocus"}));
  parent.Enabled(false);
  const std::string message = test::errorOf(errInvalidProcedureCall, [&] { one.SetFocus(); });
  EXPECT_NE(message.find("One"), std::string::npos) << message;
  EXPECT_EQ(form->FocusedSite(), form->FindSite("Other"));
}

// Tab follows the order added, not the place, skipping what cannot take the
// focus; a control's part moves on with its control.
TEST_F(RoutingTest, TabWalksTheOrderAddedSkippingWhatCannotTakeTheFocus) {
  EXPECT_FALSE(form->FocusNext());
  add("Solo", 0, 0, 20, 20);
  EXPECT_TRUE(form->FocusNext());
  EXPECT_FALSE(form->FocusNext()) << "the focus is already on the only control";
  form->RemoveControl("Solo");
  Site& a = add("A", 100, 0, 20, 20);
  add("Hidden", 0, 0, 20, 20).Visible(false);
  add("B", 0, 0, 20, 20);
  add("Disabled", 0, 0, 20, 20).Enabled(false);
  add("Off", -500, -500, 20, 20);  // parked out of sight, as composite controls park parts
  add("C", 50, 0, 20, 20);
  EXPECT_EQ(tabs(1, true), Calls{"C"}) << "from no focus, backward starts at the last";
  EXPECT_EQ(tabs(4), (Calls{"A", "B", "C", "A"}));
  EXPECT_EQ(tabs(3, true), (Calls{"C", "B", "A"}));
  addPart(a, "Part", 2, 5).SetFocus();
  EXPECT_EQ(tabs(1), Calls{"B"});
}

TEST_F(RoutingTest, KeysGoToAPopupWithTheFocusAndHeldKeysAreKnown) {
  Site& a = add("A", 0, 0, 20, 20);
  a.SetFocus();
  std::shared_ptr<PopupWindow> popup = a.CreatePopup("Menu");
  Connection keys = popup->KeyDown.connect(
      [&](int16_t code, int16_t) { journal.push_back("Menu:KeyDown " + std::to_string(code)); });
  popup->Show(true);
  system->PostKeyDown(16);
  system->RunUntilIdle();
  EXPECT_EQ(a.AsyncKeyState(16), WindowSystem::kKeyHeld);
  popup->Show(false);
  system->PostKeyUp(16);
  system->RunUntilIdle();
  EXPECT_EQ(a.AsyncKeyState(16), 0);
  popup->Show(true);
  Connection lost = popup->LostFocus.connect([&] { journal.push_back("Menu:LostFocus"); });
  a.SetFocus();  // the form takes the focus back from the pop-up
  system->PostKeyPress(32);
  system->RunUntilIdle();
  EXPECT_EQ(journal, (Calls{"A:EnterFocus", "Menu:KeyDown 16", "A:KeyUp 16 0", "Menu:LostFocus",
                            "A:KeyPress 32"}));
  test::errorOf(errInvalidProcedureCall, [&] { system->SetButtons(8); });
}

// The pointer shows MousePointer of the control under it, else the control's
// own shape, else its parent's; the capture holder's while it holds the
// capture; the default on the bare form and once the control is gone.
TEST_F(RoutingTest, ThePointerShowsTheShapeOfTheControlUnderIt) {
  Site& parent = add("Parent", 0, 0, 100, 100);
  ControlHost& part = addPart(parent, "Part", 10, 20);
  Site& other = add("Other", 200, 0, 50, 50);
  const auto at = [&](int32_t x, int32_t y) {
    system->PostMouseMove(x, y);
    system->RunUntilIdle();
    return system->Pointer().Shape;
  };
  parent.PointerShape(mpHand);
  EXPECT_EQ(at(15, 15), mpHand) << "a part shows its parent's";
  part.PointerShape(mpIBeam);
  EXPECT_EQ(system->Pointer().Shape, mpIBeam) << "changed under the resting pointer";
  part.MousePointer(mpCross);
  EXPECT_EQ(system->Pointer().Shape, mpCross);
  EXPECT_EQ(at(50, 50), mpHand);
  EXPECT_EQ(at(150, 50), mpDefault);
  other.MousePointer(mpSizeAll);
  system->PostMouseDown(1, 210, 10);
  EXPECT_EQ(at(50, 50), mpSizeAll) << "the capture holder's";
  system->PostMouseUp(1, 50, 50);
  system->RunUntilIdle();
  EXPECT_EQ(system->Pointer().Shape, mpHand);
  form->RemoveControl("Parent");
  EXPECT_EQ(system->Pointer().Shape, mpDefault);
  test::errorOf(errInvalidPropertyValue, [&] { other.MousePointer(42); });
}

}  // namespace
}  // namespace velt
