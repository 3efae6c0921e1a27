#include "velt/platform/HeadlessWindowSystem.hpp"

#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "host/Probe.hpp"
#include "support/ExpectError.hpp"
#include "velt/host/Form.hpp"
#include "velt/host/Site.hpp"
#include "velt/platform/Png.hpp"
#include "velt/platform/PopupWindow.hpp"

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
    auto mouse = [this, name](const char* what) {
      return [this, name, what](int16_t button, int16_t, float x, float y) {
        journal.push_back(name + ":" + what + " " + std::to_string(button) + " " +
                          std::to_string(static_cast<int>(x)) + " " +
                          std::to_string(static_cast<int>(y)));
      };
    };
    connections.push_back(p->MouseDown.connect(mouse("MouseDown")));
    connections.push_back(p->MouseMove.connect(mouse("MouseMove")));
    connections.push_back(p->MouseUp.connect(mouse("MouseUp")));
    connections.push_back(p->Click.connect([this, name] { journal.push_back(name + ":Click"); }));
    connections.push_back(
        p->LostFocus.connect([this, name] { journal.push_back(name + ":LostFocus"); }));
    return p;
  }

  std::vector<std::string> journal;
  std::vector<Connection> connections;
  std::shared_ptr<HeadlessWindowSystem> system = std::make_shared<HeadlessWindowSystem>(300, 200);
  Form form{system, "Form1", 200, 150};
  std::shared_ptr<Probe> probe;
  Site* site = nullptr;
};

TEST_F(HeadlessTest, EachDoEventsTakesOneScriptItem) {
  system->PostMouseMove(1, 1);
  system->PostMouseMove(2, 2);
  system->PostKeyPress(65);
  system->DoEvents();
  EXPECT_EQ(journal, (Calls{"P:MouseMove 0 0 1 1"}));
  EXPECT_EQ(system->PendingInput(), 2u);
  EXPECT_EQ(system->CursorPos(), (PointL{1, 1}));
  system->RunUntilIdle();
  EXPECT_EQ(system->PendingInput(), 0u);
  EXPECT_EQ(journal.size(), 2u);  // the key press has no focused control to go to
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

TEST_F(HeadlessTest, PostedWorkRunsAtTheNextDoEventsAndActionsInScriptOrder) {
  system->Post([this] {
    journal.push_back("work");
    system->Post([this] { journal.push_back("later work"); });
  });
  system->PostAction([this] { journal.push_back("action"); });
  system->PostMouseMove(3, 3);
  system->DoEvents();
  EXPECT_EQ(journal, (Calls{"action", "work"}));
  system->DoEvents();
  EXPECT_EQ(journal, (Calls{"action", "work", "P:MouseMove 0 0 3 3", "later work"}));
}

TEST_F(HeadlessTest, BadScriptInputIsRefused) {
  using test::errorOf;
  errorOf(errInvalidProcedureCall, [&] { system->PostMouseDown(3, 0, 0); });
  errorOf(errInvalidProcedureCall, [&] { system->PostMouseUp(0, 0, 0); });
  errorOf(errInvalidProcedureCall, [&] { system->PostWait(-1); });
  errorOf(errInvalidProcedureCall, [&] { system->AdvanceClock(-5); });
  errorOf(errObjectNotSet, [&] { system->PostAction(nullptr); });
  errorOf(errInvalidProcedureCall, [] { HeadlessWindowSystem none(0, 10); });
  errorOf(errInvalidProcedureCall, [&] { popup("X", RectL{})->Move(0, 0, -1, 5); });
  EXPECT_EQ(system->PendingInput(), 0u);
}

TEST_F(HeadlessTest, VisiblePopupTakesTheMouseBeforeTheFormAndClicks) {
  std::shared_ptr<PopupWindow> p = popup("Menu", RectL{50, 50, 150, 100});
  system->PostMouseMove(60, 60);  // hidden: the form's control gets it
  system->PostAction([&] { p->Show(true); });
  system->PostMouseMove(60, 60);
  system->PostMouseDown(1, 61, 61);
  system->PostMouseUp(1, 62, 62);
  system->PostMouseDown(2, 62, 62);
  system->PostMouseUp(2, 62, 62);  // no click for the right button
  system->PostMouseDown(1, 62, 62);
  system->PostMouseUp(1, 160, 62);  // released outside: captured, but no click
  system->RunUntilIdle();
  EXPECT_EQ(journal,
            (Calls{"P:MouseMove 0 0 60 60", "Menu:MouseMove 0 10 10", "Menu:MouseDown 1 11 11",
                   "Menu:MouseUp 1 12 12", "Menu:Click", "Menu:MouseDown 2 12 12",
                   "Menu:MouseUp 2 12 12", "Menu:MouseDown 1 12 12", "Menu:MouseUp 1 110 12"}));
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

TEST_F(HeadlessTest, TopmostPopupsStayAbove) {
  std::shared_ptr<PopupWindow> top = popup("Top", RectL{10, 10, 50, 50});
  std::shared_ptr<PopupWindow> plain = popup("Plain", RectL{30, 30, 70, 70});
  top->Topmost(true);
  top->Show(true);
  plain->Show(true);  // shown later, still below the topmost one
  system->PostMouseMove(40, 40);
  system->PostMouseMove(60, 60);
  system->RunUntilIdle();
  EXPECT_EQ(journal, (Calls{"Top:LostFocus", "Top:MouseMove 0 30 30", "Plain:MouseMove 0 30 30"}));
}

TEST_F(HeadlessTest, ScreenCompositesFormThenPopupsWithAlphaAndShadow) {
  form.MoveWindow(20, 10);
  form.BackColor(0x000000);
  probe->paint();  // green control (OLE 0x00FF00) at the form's corner
  std::shared_ptr<PopupWindow> p = popup("Menu", RectL{40, 30, 60, 40});
  EXPECT_EQ(p->Surface().ScaleWidth() + p->Surface().ScaleHeight(), 20 + 10) << "sized by Move";
  p->Surface().BackColor(0x0000FF);  // red
  p->Show(true);
  EXPECT_EQ(system->Stack().size(), 2u);  // the form and the pop-up
  Canvas screen = system->CompositeScreen();
  EXPECT_EQ(screen.ScaleWidth(), 300);
  EXPECT_EQ(screen.PixelRGB(5, 5), 0x008080u);  // desktop teal
  EXPECT_EQ(screen.PixelRGB(20, 10), 0x00FF00u);
  EXPECT_EQ(screen.PixelRGB(45, 35), 0xFF0000u);

  p->Alpha(230);
  EXPECT_EQ(system->CompositeScreen().PixelRGB(45, 35), 0xFF0000u) << "opaque until layered";
  p->Layered(true);
  p->DropShadow(true);
  screen = system->CompositeScreen();
  // 230/255 of red over green, rounded per channel.
  EXPECT_EQ(screen.PixelRGB(45, 35), 0xE61900u);
  EXPECT_EQ(screen.PixelRGB(61, 36), 0x009F00u);  // shadow right of the window: 5/8 of green
  EXPECT_EQ(screen.PixelRGB(41, 41), 0x00FF00u);  // the shadow starts 4 pixels in
  EXPECT_EQ(screen.PixelRGB(45, 41), 0x009F00u);  // below the window

  const std::string path = ::testing::TempDir() + "/velt_headless_screen.png";
  system->SavePng(path);
  EXPECT_EQ(Png::Read(path)->Pixel(45, 35), 0xFFE61900u);
  std::remove(path.c_str());

  p->Show(false);
  EXPECT_EQ(system->CompositeScreen().PixelRGB(45, 35), 0x00FF00u);
}

TEST_F(HeadlessTest, PopupsOfARemovedControlAreHiddenAndReleased) {
  // As a control keeps its pop-up.
  std::shared_ptr<PopupWindow> held = popup("Menu", RectL{0, 0, 10, 10});
  held->Show(true);
  std::weak_ptr<PopupWindow> weak = held;
  form.RemoveControl("P");
  EXPECT_FALSE(held->Visible());
  EXPECT_EQ(journal.back(), "Menu:LostFocus");
  held.reset();
  EXPECT_TRUE(weak.expired());  // the form let go of it
  EXPECT_EQ(system->Stack().size(), 1u);
}

}  // namespace
}  // namespace velt
