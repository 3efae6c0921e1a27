#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "host/Probe.hpp"
#include "velt/host/Form.hpp"
#include "velt/host/Site.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/HeadlessWindowSystem.hpp"
#include "velt/platform/PopupWindow.hpp"

namespace velt {
namespace {

using testing::Probe;
using Calls = std::vector<std::string>;

class RoutingTest : public ::testing::Test {
 protected:
  std::shared_ptr<Probe> add(const std::string& name, int32_t left, int32_t top, int32_t width,
                             int32_t height) {
    auto probe = std::make_shared<Probe>(0, &journal);
    form.AddControl(probe, name, left, top, width, height);
    journal.clear();  // creation is another test's business
    return probe;
  }
  void click(int32_t x, int32_t y) {
    system->PostMouseDown(1, x, y);
    system->PostMouseUp(1, x, y);
    system->RunUntilIdle();
  }

  std::vector<std::string> journal;
  std::shared_ptr<HeadlessWindowSystem> system = std::make_shared<HeadlessWindowSystem>();
  Form form{system};
};

TEST_F(RoutingTest, MouseGoesToTheTopmostSiteInItsOwnPixels) {
  form.MoveWindow(100, 100);  // script points are screen pixels
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

TEST_F(RoutingTest, ChildrenComeBeforeTheirParentAndAreCutToIt) {
  auto parent = add("Parent", 0, 0, 40, 40);
  auto child = std::make_shared<Probe>(0, &journal);
  form.FindSite("Parent")->AddChild(child, "Child", 30, 30, 20, 20);
  journal.clear();
  system->PostMouseMove(35, 35);  // on the child
  system->PostMouseMove(10, 10);  // on the parent only
  system->PostMouseMove(45, 45);  // on the child's part outside the parent: nobody
  system->RunUntilIdle();
  EXPECT_EQ(journal, (Calls{"Child:MouseMove 0 0 5 5", "Parent:MouseMove 0 0 10 10"}));
}

TEST_F(RoutingTest, DisabledOrHiddenSitesAndTheirPartsAreSkipped) {
  add("Below", 0, 0, 100, 100);
  add("Over", 0, 0, 50, 50);
  form.FindSite("Over")->AddChild(std::make_shared<Probe>(0, &journal), "Part", 0, 0, 10, 10);
  journal.clear();
  Site& over = *form.FindSite("Over");
  over.Enabled(false);
  system->PostMouseMove(5, 5);
  system->PostAction([&] {
    over.Enabled(true);
    over.Visible(false);
  });
  system->PostMouseMove(6, 6);
  system->PostAction([&] { over.Visible(true); });
  system->PostMouseMove(7, 7);
  system->RunUntilIdle();
  EXPECT_EQ(journal, (Calls{"Below:MouseMove 0 0 5 5", "Below:MouseMove 0 0 6 6",
                            "Part:MouseMove 0 0 7 7"}));
}

TEST_F(RoutingTest, CaptureKeepsMovesAndTheReleaseWithThePressedSite) {
  add("A", 0, 0, 20, 20);
  add("B", 50, 0, 20, 20);
  journal.clear();
  system->PostMouseDown(1, 5, 5);
  system->PostMouseMove(55, 5);  // over B, captured by A
  system->PostMouseDown(2, 56, 5);
  system->PostMouseUp(1, 57, 5);  // right still held: still captured
  system->PostMouseUp(2, 58, 5);  // released outside A: still A's
  system->PostMouseMove(59, 5);   // free again
  system->RunUntilIdle();
  EXPECT_EQ(journal, (Calls{"A:EnterFocus", "A:MouseDown 1 0 5 5", "A:MouseMove 1 0 55 5",
                            "A:MouseDown 2 0 56 5", "A:MouseUp 1 0 57 5", "A:MouseUp 2 0 58 5",
                            "B:MouseMove 0 0 9 5"}));
  EXPECT_EQ(form.CaptureSite(), nullptr);
}

TEST_F(RoutingTest, PressOnTheBareFormCapturesForTheForm) {
  add("A", 0, 0, 20, 20);
  system->PostMouseDown(1, 100, 100);
  system->PostMouseMove(5, 5);
  system->PostMouseUp(1, 5, 5);
  system->PostMouseMove(6, 6);
  system->RunUntilIdle();
  EXPECT_EQ(journal, (Calls{"A:MouseMove 0 0 6 6"}));
}

TEST_F(RoutingTest, FocusMovesWithExitAndEnterAndKeysFollowIt) {
  auto a = add("A", 0, 0, 20, 20);
  auto b = add("B", 50, 0, 20, 20);
  system->PostKeyDown(65);  // nobody has the focus yet
  system->RunUntilIdle();
  EXPECT_TRUE(journal.empty());

  form.FindSite("A")->SetFocus();
  EXPECT_TRUE(form.FindSite("A")->HasFocus());
  click(55, 5);
  system->PostKeyDown(13, 1);
  system->PostKeyPress(97);
  system->PostKeyUp(13, 1);
  system->RunUntilIdle();
  EXPECT_EQ(journal,
            (Calls{"A:EnterFocus", "A:ExitFocus", "B:EnterFocus", "B:MouseDown 1 0 5 5",
                   "B:MouseUp 1 0 5 5", "B:KeyDown 13 1", "B:KeyPress 97", "B:KeyUp 13 1"}));
  EXPECT_EQ(form.FocusedSite(), form.FindSite("B"));
  EXPECT_FALSE(form.FindSite("A")->HasFocus());
}

TEST_F(RoutingTest, FocusInsideACompositeControlTellsTheParentOnce) {
  auto parent = add("Parent", 0, 0, 50, 50);
  Site& parentSite = *form.FindSite("Parent");
  auto one = std::make_shared<Probe>(0, &journal);
  auto two = std::make_shared<Probe>(0, &journal);
  ControlHost& oneHost = parentSite.AddChild(one, "One", 0, 0, 10, 10);
  ControlHost& twoHost = parentSite.AddChild(two, "Two", 20, 0, 10, 10);
  add("Other", 100, 0, 10, 10);
  journal.clear();

  oneHost.SetFocus();
  EXPECT_TRUE(parentSite.HasFocus());
  twoHost.SetFocus();
  parentSite.SetFocus();
  form.FindSite("Other")->SetFocus();
  EXPECT_EQ(journal,
            (Calls{"Parent:EnterFocus", "One:EnterFocus", "One:ExitFocus", "Two:EnterFocus",
                   "Two:ExitFocus", "Parent:ExitFocus", "Other:EnterFocus"}));
}

TEST_F(RoutingTest, SetFocusOnAnUnreachableControlIsAnError) {
  add("A", 0, 0, 20, 20);
  Site& a = *form.FindSite("A");
  ControlHost& part = a.AddChild(std::make_shared<Probe>(), "Part", 0, 0, 5, 5);
  a.Visible(false);
  try {
    part.SetFocus();
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), errInvalidProcedureCall);
    EXPECT_NE(std::string(error.what()).find("Part"), std::string::npos);
  }
  a.Visible(true);
  a.Enabled(false);
  EXPECT_THROW(a.SetFocus(), Error);
  EXPECT_EQ(form.FocusedSite(), nullptr);
}

TEST_F(RoutingTest, KeysAreDroppedWhileAPopupHasTheFocusAndHeldKeysAreKnown) {
  add("A", 0, 0, 20, 20);
  Site& a = *form.FindSite("A");
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
  add("A", 0, 0, 20, 20);
  Site& a = *form.FindSite("A");
  system->SetButtons(1 | 4);
  EXPECT_NE(a.AsyncKeyState(1), 0);
  EXPECT_EQ(a.AsyncKeyState(2), 0);
  EXPECT_NE(a.AsyncKeyState(4), 0);
  system->PostMouseUp(1, 0, 0);
  system->RunUntilIdle();
  EXPECT_EQ(a.AsyncKeyState(1), 0);
  EXPECT_NE(a.AsyncKeyState(4), 0);
  EXPECT_THROW(system->SetButtons(8), Error);
}

}  // namespace
}  // namespace velt
