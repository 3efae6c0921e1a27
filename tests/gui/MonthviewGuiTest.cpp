// veltMonthview in a real window: an arrow held with the real pointer steps
// the month on the real clock, and the month name's menu opens as a window of
// its own whose row a real click picks.

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "support/HeadlessForm.hpp"
#include "velt/controls/lists/veltMonthview.hpp"
#include "velt/controls/menus/MenuItemListings.hpp"
#include "velt/controls/menus/veltPUMenu.hpp"
#include "velt/host/Form.hpp"
#include "velt/host/Site.hpp"
#include "velt/platform/PopupWindow.hpp"
#include "velt/platform/sdl/SdlWindowSystem.hpp"

namespace velt {
namespace {

using Clock = std::chrono::steady_clock;
using Layout = MonthviewLayout;

bool run(const std::string& command) {
  return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
}

class MonthviewGuiTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const char* display = std::getenv("DISPLAY");
    ASSERT_TRUE(display && *display) << "no X display: run under xvfb-run or with DISPLAY set";
    ASSERT_TRUE(run("xdotool version")) << "xdotool is missing (Debian package xdotool)";
    system = std::make_shared<SdlWindowSystem>();
    form = std::make_unique<Form>(system, "velt calendar test", 260, 200);
    form->Font(test::PinnedFont());
    form->MoveWindow(40, 60);
    view = form->Add<veltMonthview>("veltMonthview1", 10, 10, 240, 180);
    site = form->FindSite("veltMonthview1");
    pumpFor(50);
  }
  void TearDown() override {
    form.reset();
    system.reset();
  }

  bool pumpUntil(const std::function<bool()>& condition) {
    const auto deadline = Clock::now() + std::chrono::seconds(10);
    while (Clock::now() < deadline) {
      system->DoEvents();
      if (condition()) return true;
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return false;
  }
  void pumpFor(int milliseconds) {
    const auto end = Clock::now() + std::chrono::milliseconds(milliseconds);
    pumpUntil([&] { return Clock::now() >= end; });
  }
  // The middle of a header element, on the screen.
  std::string screenMiddle(Layout::HeaderElement element) const {
    const Layout::Box& box = view->Layout().Header(element);
    const RectL window = site->WindowRect();
    return std::to_string(window.Left + box.Left + box.Width / 2) + " " +
           std::to_string(window.Top + box.Top + box.Height / 2);
  }

  std::shared_ptr<SdlWindowSystem> system;
  std::unique_ptr<Form> form;
  std::shared_ptr<veltMonthview> view;
  Site* site = nullptr;
};

TEST_F(MonthviewGuiTest, AHeldArrowRepeatsUntilReleasedAndTheMonthMenuPicksAMonth) {
  view->iMonth(2);
  ASSERT_TRUE(run("xdotool mousemove " + screenMiddle(Layout::heNextMonth)));
  ASSERT_TRUE(pumpUntil([&] { return view->HoverHeader() == Layout::heNextMonth; }))
      << "the pointer did not reach the arrow";
  ASSERT_TRUE(run("xdotool mousedown 1"));
  ASSERT_TRUE(pumpUntil([&] { return view->Pressed(); })) << "the press did not arrive";
  pumpFor(700);
  ASSERT_TRUE(run("xdotool mouseup 1"));
  ASSERT_TRUE(pumpUntil([&] { return !view->Pressed(); })) << "the release did not arrive";
  const int16_t held = view->iMonth();
  // One step on the press and one per 200 ms tick: three in 700 ms, give or take a tick.
  EXPECT_GE(held, 2 + 3);
  EXPECT_LE(held, 2 + 5);
  pumpFor(450);
  EXPECT_EQ(view->iMonth(), held) << "the arrow kept stepping after the release";

  ASSERT_TRUE(run("xdotool mousemove " + screenMiddle(Layout::heMonthName) + " click 1"));
  const std::shared_ptr<veltPUMenu> menu = view->veltPUMenu1();
  ASSERT_TRUE(pumpUntil([&] { return menu->MenuVisible && menu->Window()->Visible(); }))
      << "the month menu did not open";
  EXPECT_TRUE(view->bMenuOpen);
  const RectL shown = menu->Window()->WindowRect();
  const auto row = menu->Listings()->Item(int16_t{11});  // November
  ASSERT_TRUE(run("xdotool mousemove " + std::to_string(shown.Left + 20) + " " +
                  std::to_string(shown.Top + row->Top() + row->Height() / 2) + " click 1"));
  EXPECT_TRUE(pumpUntil([&] { return view->iMonth() == 11 && !view->bMenuOpen; }))
      << "the menu's row did not set the month (now " << view->iMonth() << ")";
}

}  // namespace
}  // namespace velt
