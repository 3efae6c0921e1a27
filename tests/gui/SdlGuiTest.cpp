// The SDL window system on a real X display: CTest runs this program under
// xvfb-run, and xdotool moves the real pointer and presses real keys. What the
// windows show is compared pixel for pixel with the headless window system's
// rendering of the same form in the same state.

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "support/HeadlessForm.hpp"
#include "velt/controls/buttons/veltButton.hpp"
#include "velt/host/Form.hpp"
#include "velt/host/Site.hpp"
#include "velt/platform/HeadlessWindowSystem.hpp"
#include "velt/platform/PopupWindow.hpp"
#include "velt/platform/sdl/SdlWindowSystem.hpp"

namespace velt {
namespace {

constexpr auto kPatience = std::chrono::seconds(10);
constexpr int32_t kFormLeft = 40;
constexpr int32_t kFormTop = 60;

bool hasEnvironment(const char* name) {
  const char* value = std::getenv(name);
  return value && *value;
}

// Runs xdotool with the arguments; true when it succeeded.
bool xdotool(const std::string& arguments) {
  return std::system(("xdotool " + arguments + " >/dev/null 2>&1").c_str()) == 0;
}

// Switches the X keyboard layout for a while (setxkbmap comes with Xvfb).
class KeyboardLayout {
 public:
  explicit KeyboardLayout(const std::string& layout) {
    EXPECT_EQ(std::system(("setxkbmap " + layout).c_str()), 0) << "setxkbmap " << layout;
  }
  ~KeyboardLayout() { [[maybe_unused]] const int status = std::system("setxkbmap us"); }
  KeyboardLayout(const KeyboardLayout&) = delete;
  KeyboardLayout& operator=(const KeyboardLayout&) = delete;
};

// The title of the window holding the X keyboard focus.
std::string focusedWindowName() {
  std::string name;
  if (FILE* pipe = popen("xdotool getwindowfocus getwindowname 2>/dev/null", "r")) {
    char buffer[256];
    while (std::fgets(buffer, sizeof buffer, pipe))
      name += buffer;
    pclose(pipe);
  }
  while (!name.empty() && name.back() == '\n')
    name.pop_back();
  return name;
}

::testing::AssertionResult samePixels(const Canvas& shown, const Canvas& expected) {
  if (shown.ScaleWidth() != expected.ScaleWidth() || shown.ScaleHeight() != expected.ScaleHeight())
    return ::testing::AssertionFailure()
           << "window " << shown.ScaleWidth() << "x" << shown.ScaleHeight() << ", expected "
           << expected.ScaleWidth() << "x" << expected.ScaleHeight();
  int32_t differing = 0;
  std::string first;
  for (int32_t y = 0; y < shown.ScaleHeight(); ++y)
    for (int32_t x = 0; x < shown.ScaleWidth(); ++x)
      if (shown.PixelRGB(x, y) != expected.PixelRGB(x, y) && differing++ == 0)
        first = "(" + std::to_string(x) + "," + std::to_string(y) + ")";
  if (differing == 0) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << differing << " pixels differ, the first at " << first;
}

// Consecutive repeats of a name count once: the pointer may report a move twice.
std::vector<std::string> collapsed(const std::vector<std::string>& names) {
  std::vector<std::string> result;
  for (const std::string& name : names)
    if (result.empty() || result.back() != name) result.push_back(name);
  return result;
}

class SdlGuiTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(hasEnvironment("DISPLAY"))
        << "no X display: run this program under xvfb-run (CTest does so when xvfb-run is "
           "installed) or with DISPLAY set";
    ASSERT_TRUE(xdotool("version")) << "xdotool is missing (Debian package xdotool)";
    system = std::make_shared<SdlWindowSystem>();
    form = std::make_unique<Form>(system, "velt gui test", 240, 120);
    form->Font(test::PinnedFont());
    form->MoveWindow(kFormLeft, kFormTop);
    client = system->ActiveForm();
  }
  void TearDown() override {
    form.reset();
    system.reset();
  }

  // Lets events run until the condition holds or the patience runs out.
  bool pumpUntil(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    while (std::chrono::steady_clock::now() < deadline) {
      system->DoEvents();
      if (condition()) return true;
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return false;
  }
  void pumpFor(int milliseconds) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    while (std::chrono::steady_clock::now() < end) {
      system->DoEvents();
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
  }
  // Shows the form and waits until the desktop has it where it was put.
  void showForm() {
    system->DoEvents();
    pumpFor(50);
    ASSERT_EQ(form->WindowRect().Left, kFormLeft) << "the desktop moved the window";
  }
  bool pointerAt(int32_t x, int32_t y) {
    return xdotool("mousemove " + std::to_string(x) + " " + std::to_string(y));
  }
  Canvas shownForm() {
    system->Present();
    return system->WindowImage(*client);
  }

  std::shared_ptr<SdlWindowSystem> system;
  std::unique_ptr<Form> form;
  WindowSystem::FormClient* client = nullptr;
};

// The same form on the headless window system, at screen (0, 0).
struct HeadlessTwin {
  HeadlessTwin()
      : system(std::make_shared<HeadlessWindowSystem>()), form(system, "twin", 240, 120) {
    form.Font(test::PinnedFont());
  }
  std::shared_ptr<HeadlessWindowSystem> system;
  Form form;
};

TEST_F(SdlGuiTest, AClickWithTheRealPointerRaisesTheButtonsEventsInOrder) {
  form->Add<veltButton>("veltButton1", 20, 30, 100, 30);
  test::EventLog log(*form->FindSite("veltButton1"));
  showForm();

  ASSERT_TRUE(pointerAt(kFormLeft + 30, kFormTop + 45));
  ASSERT_TRUE(pumpUntil([&] { return !log.Lines().empty(); })) << "no MouseMove arrived";
  ASSERT_TRUE(xdotool("click 1"));
  ASSERT_TRUE(pumpUntil([&] { return log.Names().back() == "MouseUp"; }))
      << "the click did not arrive; events: " << log.Lines().size();

  EXPECT_EQ(collapsed(log.Names()),
            (std::vector<std::string>{"MouseMove", "MouseDown", "Click", "MouseUp"}));
  const std::vector<std::string>& lines = log.Lines();
  EXPECT_EQ(lines.front(), "MouseMove(i0, i0, f10, f15)");
  EXPECT_NE(std::find(lines.begin(), lines.end(), "MouseDown(i1, i0, f10, f15)"), lines.end());
  EXPECT_EQ(lines.back(), "MouseUp(i1, i0, f10, f15)");
}

TEST_F(SdlGuiTest, TheWindowShowsWhatTheHeadlessFormRendersBeforeAndAfterAClick) {
  form->Add<veltButton>("veltButton1", 20, 30, 100, 30);
  HeadlessTwin twin;
  twin.form.Add<veltButton>("veltButton1", 20, 30, 100, 30);
  showForm();
  EXPECT_TRUE(samePixels(shownForm(), twin.form.Image())) << "at rest";

  test::EventLog log(*form->FindSite("veltButton1"));
  ASSERT_TRUE(pointerAt(kFormLeft + 30, kFormTop + 45));
  ASSERT_TRUE(xdotool("click 1"));
  ASSERT_TRUE(pumpUntil([&] { return !log.Lines().empty() && log.Names().back() == "MouseUp"; }));
  pumpFor(50);  // the hover timer ticks with the pointer still on the button

  twin.system->PostMouseMove(30, 45);
  twin.system->PostMouseDown(1, 30, 45);
  twin.system->PostMouseUp(1, 30, 45);
  twin.system->RunUntilIdle();
  twin.system->AdvanceClock(50);
  EXPECT_TRUE(samePixels(shownForm(), twin.form.Image())) << "hovered and focused";
}

TEST_F(SdlGuiTest, RealKeysReachTheFocusedButtonAndTabMovesOn) {
  form->Add<veltButton>("veltButton1", 20, 30, 100, 30);
  form->Add<veltButton>("veltButton2", 130, 30, 100, 30);
  test::EventLog log(*form->FindSite("veltButton1"));
  showForm();
  form->FindSite("veltButton1")->SetFocus();

  ASSERT_TRUE(xdotool("key a"));
  ASSERT_TRUE(pumpUntil([&] { return !log.Lines().empty() && log.Names().back() == "KeyUp"; }))
      << "the key did not arrive";
  EXPECT_EQ(log.Lines(),
            (std::vector<std::string>{"KeyDown(i65, i0)", "KeyPress(i97)", "KeyUp(i65, i0)"}));

  {
    // On a German keyboard "ä" has a key of its own, where the US apostrophe is.
    KeyboardLayout german("de");
    pumpFor(50);  // SDL takes in the new layout
    log.Clear();
    ASSERT_TRUE(xdotool("key adiaeresis"));
    ASSERT_TRUE(pumpUntil([&] { return !log.Lines().empty() && log.Names().back() == "KeyUp"; }));
    EXPECT_EQ(log.Lines(),
              (std::vector<std::string>{"KeyDown(i222, i0)", "KeyPress(i228)", "KeyUp(i222, i0)"}));
  }
  pumpFor(50);

  ASSERT_TRUE(xdotool("key Tab"));
  ASSERT_TRUE(pumpUntil([&] { return form->FocusedSite() == form->FindSite("veltButton2"); }))
      << "Tab did not move the focus";
}

TEST_F(SdlGuiTest, APopupShowsAtItsScreenPlaceTakesClicksAndLosesTheFocusToTheForm) {
  form->Add<veltButton>("veltButton1", 20, 30, 100, 30);
  showForm();
  form->FindSite("veltButton1")->SetFocus();
  std::shared_ptr<PopupWindow> popup = system->CreatePopup("Menu");
  std::vector<std::string> log;
  auto down = popup->MouseDown.connect([&](int16_t button, int16_t, float x, float y) {
    log.push_back("MouseDown " + std::to_string(button) + " " + std::to_string(int(x)) + " " +
                  std::to_string(int(y)));
  });
  auto click = popup->Click.connect([&] { log.push_back("Click"); });
  auto lost = popup->LostFocus.connect([&] { log.push_back("LostFocus"); });
  popup->Move(400, 300, 80, 60);
  popup->Surface().BackColor(0x00C0FF);
  popup->Topmost(true);
  popup->Layered(true);
  popup->Alpha(230);
  popup->Show(true);
  pumpFor(50);
  EXPECT_TRUE(samePixels(system->WindowImage(*popup), popup->Surface()));
  EXPECT_EQ(focusedWindowName(), "velt gui test") << "the pop-up took the keyboard";

  ASSERT_TRUE(pointerAt(420, 317));
  ASSERT_TRUE(xdotool("click 1"));
  ASSERT_TRUE(pumpUntil([&] { return !log.empty() && log.back() == "Click"; }))
      << "the click on the pop-up did not arrive";
  EXPECT_EQ(log, (std::vector<std::string>{"MouseDown 1 20 17", "Click"}));

  ASSERT_TRUE(pointerAt(kFormLeft + 5, kFormTop + 5));
  ASSERT_TRUE(xdotool("click 1"));
  ASSERT_TRUE(pumpUntil([&] { return log.back() == "LostFocus"; }));
  popup->Show(false);
  pumpFor(50);

  // The keyboard is still the form's.
  test::EventLog keys(*form->FindSite("veltButton1"));
  ASSERT_TRUE(xdotool("key b"));
  EXPECT_TRUE(pumpUntil([&] { return !keys.Lines().empty(); }))
      << "the form lost the keyboard to the pop-up";
}

}  // namespace
}  // namespace velt
