// Input routing: the mouse to the topmost site under it or to the capture
// holder, presses on the bare form to Form::MouseDown, keys to the focus.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "host/Probe.hpp"
#include "support/ExpectError.hpp"
#include "velt/host/Form.hpp"
#include "velt/host/Site.hpp"
#include "velt/platform/HeadlessWindowSystem.hpp"
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
  // The form's own presses, as "button shift x y".
  void recordFormPresses() {
    formPresses = form->MouseDown.connect([this](int16_t button, int16_t shift, float x, float y) {
      journal.push_back("Form:MouseDown " + std::to_string(button) + " " + std::to_string(shift) +
                        " " + std::to_string(static_cast<int>(x)) + " " +
                        std::to_string(static_cast<int>(y)));
    });
  }

  std::vector<std::string> journal;
  std::shared_ptr<HeadlessWindowSystem> system = std::make_shared<HeadlessWindowSystem>();
  std::unique_ptr<Form> form = std::make_unique<Form>(system);
  Connection formPresses;
};

TEST_F(RoutingTest, MouseGoesToTheTopmostSiteInItsOwnPixels) {
  form->MoveWindow(100, 100);  // script points are screen pixels
  add("A", 10, 10, 50, 50);
  add("B", 40, 40, 50, 50);
  system->PostMouseMove(145, 145);
  system->PostMouseMove(115, 120);
  system->PostMouseMove(100, 100);  // bare form
  system->PostMouseDown(2, 145, 145, 3);
  system->RunUntilIdle();
  EXPECT_EQ(journal, (Calls{"B:MouseMove 0 0 5 5", "A:MouseMove 0 0 5 10", "B:EnterFocus",
                            "B:MouseDown 2 3 5 5"}));
}

// Parts come before their parent and are cut to it; disabled or hidden sites
// and their parts are skipped.
TEST_F(RoutingTest, PartsComeFirstCutToTheirParentAndHiddenOrDisabledSitesAreSkipped) {
  add("Below", 0, 0, 100, 100);
  Site& over = add("Over", 0, 0, 40, 40);
  addPart(over, "Part", 30, 20);
  system->PostMouseMove(35, 35);  // on the part
  system->PostMouseMove(10, 10);  // on its parent only
  system->PostMouseMove(45, 45);  // on the part's piece outside its parent
  system->PostAction([&] { over.Enabled(false); });
  system->PostMouseMove(35, 36);
  system->PostAction([&] { over.Enabled(true); });
  system->PostAction([&] { over.Visible(false); });
  system->PostMouseMove(35, 37);
  system->RunUntilIdle();
  EXPECT_EQ(journal, (Calls{"Part:MouseMove 0 0 5 5", "Over:MouseMove 0 0 10 10",
                            "Below:MouseMove 0 0 45 45", "Below:MouseMove 0 0 35 36",
                            "Below:MouseMove 0 0 35 37"}));
}

TEST_F(RoutingTest, CaptureKeepsMovesAndTheReleaseWithThePressedSite) {
  add("A", 0, 0, 20, 20);
  add("B", 50, 0, 20, 20);
  recordFormPresses();
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

// A press on the form's own background raises Form::MouseDown in form pixels
// and captures for the form: no control sees that button until it is up.
TEST_F(RoutingTest, PressOnTheBareFormIsTheFormsAndCapturesForIt) {
  form->MoveWindow(100, 50);
  add("A", 0, 0, 20, 20);
  recordFormPresses();
  system->PostMouseDown(2, 170, 55, 1);
  system->PostMouseMove(105, 55);
  system->PostMouseUp(2, 105, 55);
  system->PostMouseMove(106, 56);
  system->RunUntilIdle();
  EXPECT_EQ(journal, (Calls{"Form:MouseDown 2 1 70 5", "A:MouseMove 0 0 6 6"}));
  Connection closing =
      form->MouseDown.connect([this](int16_t, int16_t, float, float) { form.reset(); });
  system->PostMouseDown(1, 190, 90);
  system->PostMouseUp(1, 190, 90);
  system->RunUntilIdle();
  EXPECT_EQ(form, nullptr) << "a handler may destroy the form";
}

TEST_F(RoutingTest, FocusMovesWithExitAndEnterAndKeysFollowIt) {
  add("A", 0, 0, 20, 20);
  add("B", 50, 0, 20, 20);
  system->PostKeyDown(65);  // nobody has the focus yet
  system->RunUntilIdle();
  EXPECT_TRUE(journal.empty());
  form->FindSite("A")->SetFocus();
  EXPECT_TRUE(form->FindSite("A")->HasFocus());
  system->PostMouseDown(1, 55, 5);
  system->PostMouseUp(1, 55, 5);
  system->PostKeyDown(13, 1);
  system->PostKeyPress(97);
  system->PostKeyUp(13, 1);
  system->RunUntilIdle();
  EXPECT_EQ(journal,
            (Calls{"A:EnterFocus", "A:ExitFocus", "B:EnterFocus", "B:MouseDown 1 0 5 5",
                   "B:MouseUp 1 0 5 5", "B:KeyDown 13 1", "B:KeyPress 97", "B:KeyUp 13 1"}));
  EXPECT_EQ(form->FocusedSite(), form->FindSite("B"));
  EXPECT_FALSE(form->FindSite("A")->HasFocus());
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
  parent.Visible(false);
  const std::string message = test::errorOf(errInvalidProcedureCall, [&] { one.SetFocus(); });
  EXPECT_NE(message.find("One"), std::string::npos) << message;
  parent.Visible(true);
  parent.Enabled(false);
  test::errorOf(errInvalidProcedureCall, [&] { parent.SetFocus(); });
  EXPECT_EQ(form->FocusedSite(), form->FindSite("Other"));
}

TEST_F(RoutingTest, KeysAreDroppedWhileAPopupHasTheFocusAndHeldKeysAreKnown) {
  Site& a = add("A", 0, 0, 20, 20);
  a.SetFocus();
  std::shared_ptr<PopupWindow> popup = a.CreatePopup("Menu");
  popup->Show(true);
  system->PostKeyDown(16);
  system->RunUntilIdle();
  EXPECT_EQ(a.AsyncKeyState(16), WindowSystem::kKeyHeld);
  EXPECT_EQ(a.AsyncKeyState(17), 0);
  EXPECT_EQ(system->ShiftState(), 1);
  popup->Show(false);
  system->PostKeyUp(16);
  system->RunUntilIdle();
  EXPECT_EQ(a.AsyncKeyState(16), 0);
  popup->Show(true);
  Connection lost = popup->LostFocus.connect([&] { journal.push_back("Menu:LostFocus"); });
  a.SetFocus();  // the form takes the focus back from the pop-up
  system->PostKeyPress(32);
  system->RunUntilIdle();
  EXPECT_EQ(journal, (Calls{"A:EnterFocus", "A:KeyUp 16 0", "Menu:LostFocus", "A:KeyPress 32"}));
}

TEST_F(RoutingTest, MouseButtonsReadAsAsyncKeyState) {
  Site& a = add("A", 0, 0, 20, 20);
  system->SetButtons(1 | 4);
  EXPECT_NE(a.AsyncKeyState(1), 0);
  EXPECT_EQ(a.AsyncKeyState(2), 0);
  system->PostMouseUp(1, 0, 0);
  system->RunUntilIdle();
  EXPECT_EQ(a.AsyncKeyState(1), 0);
  EXPECT_NE(a.AsyncKeyState(4), 0);
  test::errorOf(errInvalidProcedureCall, [&] { system->SetButtons(8); });
}

}  // namespace
}  // namespace velt
