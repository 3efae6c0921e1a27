// The SDL window system on SDL's offscreen video driver: real SDL windows and
// SDL's event queue, no display. Input is pushed into the queue as SDL
// events, the way the desktop's input would arrive.

#include "velt/platform/sdl/SdlWindowSystem.hpp"

#include <SDL.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "host/Probe.hpp"
#include "support/ExpectError.hpp"
#include "support/HeadlessForm.hpp"
#include "velt/host/Form.hpp"
#include "velt/host/Site.hpp"
#include "velt/platform/PopupWindow.hpp"

// SDL's events are made naming only the fields the window system reads.
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"

namespace velt {
namespace {

using test::errorOf;
using testing::Probe;
using Calls = std::vector<std::string>;
using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;
constexpr auto npos = std::string::npos;

bool samePixels(const Canvas& a, const Canvas& b) {
  return a.ScaleWidth() == b.ScaleWidth() && a.ScaleHeight() == b.ScaleHeight() &&
         std::memcmp(a.Pixels(), b.Pixels(),
                     sizeof(uint32_t) * static_cast<size_t>(a.ScaleWidth()) * a.ScaleHeight()) == 0;
}

RectL sdlRect(uint32_t id) {
  int x = 0, y = 0, width = 0, height = 0;
  SDL_GetWindowPosition(SDL_GetWindowFromID(id), &x, &y);
  SDL_GetWindowSize(SDL_GetWindowFromID(id), &width, &height);
  return RectL{x, y, x + width, y + height};
}

bool sdlShown(uint32_t id) {
  return (SDL_GetWindowFlags(SDL_GetWindowFromID(id)) & SDL_WINDOW_SHOWN) != 0;
}

class SdlWindowSystemTest : public ::testing::Test {
 protected:
  void SetUp() override {
    system = std::make_shared<SdlWindowSystem>("offscreen");
    form = std::make_unique<Form>(system, "Offscreen form", 200, 120);
    form->Font(test::PinnedFont());
    form->MoveWindow(30, 40);
    client = system->ActiveForm();
    windowId = system->WindowId(*client);
  }
  void TearDown() override {
    form.reset();
    system.reset();
  }

  // A 60 x 30 probe at (left, 10), its calls so far cleared.
  std::shared_ptr<Probe> addProbe(const std::string& name, int32_t left, bool focus = false) {
    auto probe = std::make_shared<Probe>();
    form->AddControl(probe, name, left, 10, 60, 30);
    if (focus) form->FindSite(name)->SetFocus();
    probe->clear();
    return probe;
  }

  // SDL events as the desktop's input arrives, to the form's window unless
  // another is given.
  void push(SDL_Event event) { ASSERT_EQ(SDL_PushEvent(&event), 1) << SDL_GetError(); }
  uint32_t to(uint32_t window) const { return window ? window : windowId; }
  void motion(int32_t x, int32_t y, uint32_t window = 0) {
    push({.motion = {.type = SDL_MOUSEMOTION, .windowID = to(window), .x = x, .y = y}});
  }
  void button(bool down, uint8_t which, int32_t x, int32_t y, uint32_t window = 0) {
    const uint32_t type = down ? SDL_MOUSEBUTTONDOWN : SDL_MOUSEBUTTONUP;
    push({.button = {.type = type, .windowID = to(window), .button = which, .x = x, .y = y}});
  }
  void click(uint8_t which, int32_t x, int32_t y, uint32_t window = 0) {
    button(true, which, x, y, window);
    button(false, which, x, y, window);
  }
  void key(bool down, SDL_Keycode sym, SDL_Scancode scancode, uint16_t mod = KMOD_NONE) {
    const uint32_t type = down ? SDL_KEYDOWN : SDL_KEYUP;
    push({.key = {.type = type, .windowID = windowId, .keysym = {scancode, sym, mod, 0}}});
  }
  void text(const char* utf8) {
    SDL_Event event{.text = {.type = SDL_TEXTINPUT, .windowID = windowId}};
    std::strncpy(event.text.text, utf8, sizeof event.text.text - 1);
    push(event);
  }
  void windowEvent(uint8_t what, int32_t data1 = 0, int32_t data2 = 0) {
    push({.window = {.type = SDL_WINDOWEVENT,
                     .windowID = windowId,
                     .event = what,
                     .data1 = data1,
                     .data2 = data2}});
  }

  std::shared_ptr<SdlWindowSystem> system;
  std::unique_ptr<Form> form;
  WindowSystem::FormClient* client = nullptr;
  uint32_t windowId = 0;
};

TEST(SdlWindowSystemOpenTest, NoDisplayOrAnUnknownDriverIsAClearError) {
  EXPECT_NE(errorOf(errInvalidProcedureCall, [] { SdlWindowSystem system("no-such-driver"); })
                .find("'no-such-driver'"),
            npos);
  std::vector<std::pair<const char*, std::string>> saved;
  for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "SDL_VIDEODRIVER"}) {
    if (const char* value = std::getenv(name)) saved.emplace_back(name, value);
    unsetenv(name);
  }
  EXPECT_NE(errorOf(errInvalidProcedureCall, [] { SdlWindowSystem system; }).find("no display"),
            npos);
  for (const auto& [name, value] : saved)
    setenv(name, value.c_str(), 1);
}

TEST_F(SdlWindowSystemTest, TheFormsWindowFollowsTheFormAndTheDesktopAndOnlyOneSystemOpens) {
  EXPECT_NE(errorOf(errInvalidProcedureCall, [] { SdlWindowSystem second("offscreen"); })
                .find("open already"),
            npos);
  EXPECT_EQ(system->Driver(), "offscreen");
  EXPECT_STREQ(SDL_GetWindowTitle(SDL_GetWindowFromID(windowId)), "Offscreen form");
  EXPECT_EQ(sdlRect(windowId), (RectL{30, 40, 230, 160}));
  form->MoveWindow(5, 6, 300, 90);
  EXPECT_EQ(sdlRect(windowId), (RectL{5, 6, 305, 96}));
  windowEvent(SDL_WINDOWEVENT_MOVED, 100, 50);
  system->DoEvents();
  EXPECT_EQ(form->WindowRect(), (RectL{100, 50, 400, 140}));
  addProbe("Probe1", 10);
  EXPECT_EQ(form->FindSite("Probe1")->WindowRect(), (RectL{110, 60, 170, 90}));
}

TEST_F(SdlWindowSystemTest, TheWindowShowsWithTheFirstPresentThenChangesAtMostOnceAFrame) {
  addProbe("Probe1", 10);
  EXPECT_FALSE(sdlShown(windowId)) << "nothing drawn yet";
  system->DoEvents();
  EXPECT_TRUE(sdlShown(windowId));
  EXPECT_TRUE(samePixels(system->WindowImage(*client), form->Image()));
  EXPECT_EQ(system->WindowImage(*client).PixelRGB(15, 15), 0xFF0000u) << "the probe's red";
  const uint64_t before = system->DrawCount();
  std::this_thread::sleep_for(20ms);
  system->DoEvents();
  EXPECT_EQ(system->DrawCount(), before) << "nothing changed";

  const auto start = Clock::now();
  for (int i = 0; Clock::now() - start < 200ms; ++i) {
    form->BackColor(i % 2 ? 0x00FF00 : 0xFF0000);
    system->DoEvents();
  }
  const auto elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start);
  EXPECT_GE(system->DrawCount() - before, 2u);
  EXPECT_LE(system->DrawCount() - before, static_cast<uint64_t>(elapsed.count() / 16 + 1));
  form->BackColor(0x123456);
  system->Present();  // at once, within the frame
  EXPECT_TRUE(samePixels(system->WindowImage(*client), form->Image()));
}

TEST_F(SdlWindowSystemTest, RunWaitsForTimersInRealTimeAndEndsWhenTheLastWindowCloses) {
  int ticks = 0;
  TimerQueue::Id timer = 0;
  timer = system->Timers().Add([&] {
    if (++ticks < 5) return;
    system->Timers().Stop(timer);
    windowEvent(SDL_WINDOWEVENT_CLOSE);
  });
  const auto start = Clock::now();
  system->Timers().Start(timer, 20);
  // A safety net: the test must not hang when closing fails.
  const auto net = system->Timers().Add([this] { system->Quit(); });
  system->Timers().Start(net, 5000);
  EXPECT_EQ(system->Run(), 0);
  EXPECT_GE(Clock::now() - start, 100ms);
  EXPECT_EQ(ticks, 5);
  EXPECT_FALSE(system->WindowOpen(*client));
  EXPECT_FALSE(sdlShown(windowId));
  EXPECT_FALSE(system->QuitRequested()) << "closed by the window, not by the safety net";
}

TEST_F(SdlWindowSystemTest, TheControlUnderThePointerGetsTheMouseAndKeepsItUntilRelease) {
  auto probe = addProbe("Probe1", 10);
  auto other = addProbe("Probe2", 100);
  motion(20, 25);
  click(SDL_BUTTON_LEFT, 20, 25);
  button(true, SDL_BUTTON_RIGHT, 21, 25);
  system->DoEvents();
  EXPECT_EQ(probe->calls, (Calls{"MouseMove 0 0 10 15", "EnterFocus", "MouseDown 1 0 10 15",
                                 "MouseUp 1 0 10 15", "MouseDown 2 0 11 15"}));
  EXPECT_EQ(system->CursorPos(), (PointL{51, 65})) << "the window sits at (30, 40)";
  EXPECT_EQ(system->MouseButtons(), 2);
  EXPECT_EQ(system->AsyncKeyState(2), WindowSystem::kKeyHeld);
  probe->clear();
  // SDL reports positions outside a captured window relative to it.
  motion(-40, 300);
  button(false, SDL_BUTTON_RIGHT, -40, 300);
  system->DoEvents();
  EXPECT_EQ(probe->calls, (Calls{"MouseMove 2 0 -50 290", "MouseUp 2 0 -50 290"}));
  EXPECT_EQ(system->AsyncKeyState(2), 0);
  EXPECT_TRUE(other->calls.empty());
}

TEST_F(SdlWindowSystemTest, KeysAndTextReachTheFocusedControlAndTabMovesTheFocusWhereItCan) {
  auto first = addProbe("Probe1", 10, true);
  key(true, SDLK_a, SDL_SCANCODE_A, KMOD_LSHIFT);
  text("A");
  key(false, SDLK_a, SDL_SCANCODE_A, KMOD_LSHIFT);
  text("\xC3\xA4");  // ä
  key(true, SDLK_RETURN, SDL_SCANCODE_RETURN);
  key(true, SDLK_F5, SDL_SCANCODE_F5, KMOD_LCTRL | KMOD_RALT);
  key(true, SDLK_c, SDL_SCANCODE_C, KMOD_LCTRL);  // types its control character
  key(true, SDLK_TAB, SDL_SCANCODE_TAB);          // the focus cannot move: an ordinary key
  key(true, SDLK_TAB, SDL_SCANCODE_TAB, KMOD_LCTRL);
  system->DoEvents();
  EXPECT_EQ(first->calls, (Calls{"KeyDown 65 1", "KeyPress 65", "KeyUp 65 1", "KeyPress 228",
                                 "KeyDown 13 0", "KeyPress 13", "KeyDown 116 6", "KeyDown 67 2",
                                 "KeyPress 3", "KeyDown 9 0", "KeyPress 9", "KeyDown 9 2"}));

  auto second = addProbe("Probe2", 100);
  first->clear();
  key(true, SDLK_TAB, SDL_SCANCODE_TAB);
  system->DoEvents();
  EXPECT_EQ(form->FocusedSite(), form->FindSite("Probe2"));
  EXPECT_EQ(first->calls, Calls{"ExitFocus"});
  EXPECT_EQ(second->calls, Calls{"EnterFocus"});
  key(true, SDLK_TAB, SDL_SCANCODE_TAB, KMOD_RSHIFT);
  system->DoEvents();
  EXPECT_EQ(form->FocusedSite(), form->FindSite("Probe1"));
}

// ---- Pop-ups ------------------------------------------------------------------

class SdlPopupTest : public SdlWindowSystemTest {
 protected:
  void SetUp() override {
    SdlWindowSystemTest::SetUp();
    popup = system->CreatePopup("Menu");
    popupId = system->WindowId(*popup);
    popup->Move(300, 200, 50, 40);
    auto record = [this](const char* name) {
      return [this, name](int16_t button, int16_t shift, float x, float y) {
        std::ostringstream line;
        line << name << " " << button << " " << shift << " " << x << " " << y;
        log.push_back(line.str());
      };
    };
    connections.push_back(popup->MouseDown.connect(record("Down")));
    connections.push_back(popup->MouseMove.connect(record("Move")));
    connections.push_back(popup->MouseUp.connect(record("Up")));
    connections.push_back(popup->Click.connect([this] { log.push_back("Click"); }));
    connections.push_back(popup->LostFocus.connect([this] { log.push_back("LostFocus"); }));
  }
  void TearDown() override {
    connections.clear();
    popup.reset();
    SdlWindowSystemTest::TearDown();
  }

  std::shared_ptr<PopupWindow> popup;
  uint32_t popupId = 0;
  Calls log;
  std::vector<Connection> connections;
};

TEST_F(SdlPopupTest, APopupIsABorderlessWindowAtItsScreenPlaceShownWhenItHasPixels) {
  const uint32_t flags = SDL_GetWindowFlags(SDL_GetWindowFromID(popupId));
  EXPECT_NE(flags & SDL_WINDOW_BORDERLESS, 0u);
  EXPECT_NE(flags & SDL_WINDOW_SKIP_TASKBAR, 0u);
  EXPECT_FALSE(sdlShown(popupId));
  EXPECT_EQ(sdlRect(popupId), (RectL{300, 200, 350, 240}));
  popup->Surface().BackColor(0x00FFFF);
  popup->Show(true);
  EXPECT_TRUE(sdlShown(popupId));
  EXPECT_TRUE(samePixels(system->WindowImage(*popup), popup->Surface())) << "drawn at once";
  popup->Surface().BackColor(0xFF00FF);
  popup->Redraw();
  EXPECT_EQ(system->WindowImage(*popup).PixelRGB(0, 0), 0xFF00FFu);
  popup->Show(false);
  EXPECT_FALSE(sdlShown(popupId));
  popup->Move(300, 200, 0, 40);
  popup->Show(true);
  EXPECT_TRUE(popup->Visible());
  EXPECT_FALSE(sdlShown(popupId)) << "an empty pop-up stays off the screen";
  popup->Move(300, 200, 20, 40);
  EXPECT_TRUE(sdlShown(popupId));
  popup->DropShadow(true);
  EXPECT_FALSE(popup->DropShadow()) << "shadows are the desktop's";
}

TEST_F(SdlPopupTest, ThePointerActsOnThePopupWhichLosesTheFocusToTheFormOrAnotherApplication) {
  popup->Show(true);
  EXPECT_EQ(system->FocusedPopup(), popup);
  motion(5, 6, popupId);
  click(SDL_BUTTON_LEFT, 5, 6, popupId);
  system->DoEvents();
  EXPECT_EQ(log, (Calls{"Move 0 0 5 6", "Down 1 0 5 6", "Up 1 0 5 6", "Click"}));
  EXPECT_EQ(system->CursorPos(), (PointL{305, 206}));
  log.clear();
  click(SDL_BUTTON_LEFT, 5, 5);  // on the form
  system->DoEvents();
  EXPECT_EQ(log, Calls{"LostFocus"});

  popup->Show(false);
  popup->Show(true);
  system->DoEvents();
  ASSERT_EQ(system->FocusedPopup(), popup);
  log.clear();
  // The offscreen driver gives no window the keyboard, as when another
  // application took it.
  windowEvent(SDL_WINDOWEVENT_FOCUS_LOST);
  system->DoEvents();
  EXPECT_EQ(log, Calls{"LostFocus"});
  EXPECT_EQ(system->FocusedPopup(), nullptr);
}

TEST_F(SdlPopupTest, APopupHiddenWhilePressedDoesNotLeaveTheButtonHeld) {
  auto probe = addProbe("Probe1", 10);
  popup->Show(true);
  button(true, SDL_BUTTON_LEFT, 5, 6, popupId);
  system->DoEvents();
  ASSERT_EQ(system->AsyncKeyState(1), WindowSystem::kKeyHeld);
  // Its release will never come: the window is gone, and the desktop has no
  // button down.
  popup->Show(false);
  system->DoEvents();
  EXPECT_EQ(system->AsyncKeyState(1), 0);
  probe->clear();
  motion(20, 25);
  system->DoEvents();
  EXPECT_EQ(probe->calls, Calls{"MouseMove 0 0 10 15"}) << "the capture went with the release";
}

TEST_F(SdlPopupTest, APopupOutlivingItsWindowSystemIsHarmless) {
  form.reset();
  system.reset();
  popup->Move(10, 10, 30, 30);
  popup->Show(true);
  popup->Redraw();
  EXPECT_TRUE(popup->Visible());
}

}  // namespace
}  // namespace velt
