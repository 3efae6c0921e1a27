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
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "host/Probe.hpp"
#include "support/HeadlessForm.hpp"
#include "velt/host/Form.hpp"
#include "velt/host/Site.hpp"
#include "velt/platform/Clipboard.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/PopupWindow.hpp"

namespace velt {
namespace {

using testing::Probe;

// Sets an environment variable (or removes it: nullopt) until destroyed.
class ScopedEnvironment {
 public:
  ScopedEnvironment(const char* name, std::optional<std::string> value) : name_(name) {
    if (const char* old = std::getenv(name)) old_ = old;
    if (value)
      setenv(name, value->c_str(), 1);
    else
      unsetenv(name);
  }
  ~ScopedEnvironment() {
    if (old_)
      setenv(name_, old_->c_str(), 1);
    else
      unsetenv(name_);
  }

 private:
  const char* name_;
  std::optional<std::string> old_;
};

int errorNumber(const std::function<void()>& action, std::string* message = nullptr) {
  try {
    action();
  } catch (const Error& error) {
    if (message) *message = error.Description();
    return error.Number();
  }
  return 0;
}

bool samePixels(const Canvas& a, const Canvas& b) {
  return a.ScaleWidth() == b.ScaleWidth() && a.ScaleHeight() == b.ScaleHeight() &&
         std::memcmp(a.Pixels(), b.Pixels(),
                     sizeof(uint32_t) * static_cast<size_t>(a.ScaleWidth()) * a.ScaleHeight()) == 0;
}

void sleepMs(int ms) {
  std::this_thread::sleep_for(std::chrono::milliseconds(ms));
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

  std::shared_ptr<Probe> addProbe(const std::string& name, int32_t left, int32_t top,
                                  OLE_COLOR color = 0x0000FF) {
    auto probe = std::make_shared<Probe>(color);
    form->AddControl(probe, name, left, top, 60, 30);
    return probe;
  }

  static void push(SDL_Event event) { ASSERT_EQ(SDL_PushEvent(&event), 1) << SDL_GetError(); }
  void motion(int32_t x, int32_t y, uint32_t window = 0) {
    SDL_Event event{};
    event.type = SDL_MOUSEMOTION;
    event.motion.windowID = window ? window : windowId;
    event.motion.x = x;
    event.motion.y = y;
    push(event);
  }
  void button(bool down, uint8_t which, int32_t x, int32_t y, uint32_t window = 0) {
    SDL_Event event{};
    event.type = down ? SDL_MOUSEBUTTONDOWN : SDL_MOUSEBUTTONUP;
    event.button.windowID = window ? window : windowId;
    event.button.button = which;
    event.button.state = down ? SDL_PRESSED : SDL_RELEASED;
    event.button.x = x;
    event.button.y = y;
    push(event);
  }
  void key(bool down, SDL_Keycode sym, SDL_Scancode scancode, uint16_t mod = KMOD_NONE) {
    SDL_Event event{};
    event.type = down ? SDL_KEYDOWN : SDL_KEYUP;
    event.key.windowID = windowId;
    event.key.state = down ? SDL_PRESSED : SDL_RELEASED;
    event.key.keysym.sym = sym;
    event.key.keysym.scancode = scancode;
    event.key.keysym.mod = mod;
    push(event);
  }
  void text(const char* utf8) {
    SDL_Event event{};
    event.type = SDL_TEXTINPUT;
    event.text.windowID = windowId;
    std::strncpy(event.text.text, utf8, sizeof event.text.text - 1);
    push(event);
  }
  void windowEvent(SDL_WindowEventID what, uint32_t window = 0, int32_t data1 = 0,
                   int32_t data2 = 0) {
    SDL_Event event{};
    event.type = SDL_WINDOWEVENT;
    event.window.windowID = window ? window : windowId;
    event.window.event = what;
    event.window.data1 = data1;
    event.window.data2 = data2;
    push(event);
  }
  SDL_Window* sdlWindow() const { return SDL_GetWindowFromID(windowId); }

  std::shared_ptr<SdlWindowSystem> system;
  std::unique_ptr<Form> form;
  WindowSystem::FormClient* client = nullptr;
  uint32_t windowId = 0;
};

// ---- Opening ------------------------------------------------------------------

TEST(SdlWindowSystemOpenTest, NoDisplayIsAClearError) {
  ScopedEnvironment display("DISPLAY", std::nullopt);
  ScopedEnvironment wayland("WAYLAND_DISPLAY", std::nullopt);
  ScopedEnvironment driver("SDL_VIDEODRIVER", std::nullopt);
  std::string message;
  EXPECT_EQ(errorNumber([] { SdlWindowSystem system; }, &message), errInvalidProcedureCall);
  EXPECT_NE(message.find("no display"), std::string::npos) << message;
}

TEST(SdlWindowSystemOpenTest, AnUnknownDriverIsAnErrorNamingIt) {
  std::string message;
  EXPECT_EQ(errorNumber([] { SdlWindowSystem system("no-such-driver"); }, &message),
            errInvalidProcedureCall);
  EXPECT_NE(message.find("'no-such-driver'"), std::string::npos) << message;
}

TEST_F(SdlWindowSystemTest, OnlyOneOpensAtATime) {
  std::string message;
  EXPECT_EQ(errorNumber([] { SdlWindowSystem second("offscreen"); }, &message),
            errInvalidProcedureCall);
  EXPECT_NE(message.find("open already"), std::string::npos) << message;
  EXPECT_EQ(system->Driver(), "offscreen");
}

// ---- Form windows ---------------------------------------------------------------

TEST_F(SdlWindowSystemTest, AFormGetsAWindowOfItsSizeAndName) {
  ASSERT_NE(sdlWindow(), nullptr);
  EXPECT_STREQ(SDL_GetWindowTitle(sdlWindow()), "Offscreen form");
  int x = 0, y = 0, width = 0, height = 0;
  SDL_GetWindowPosition(sdlWindow(), &x, &y);
  SDL_GetWindowSize(sdlWindow(), &width, &height);
  EXPECT_EQ((RectL{x, y, x + width, y + height}), (RectL{30, 40, 230, 160}));
  form->MoveWindow(5, 6, 300, 90);
  SDL_GetWindowPosition(sdlWindow(), &x, &y);
  SDL_GetWindowSize(sdlWindow(), &width, &height);
  EXPECT_EQ((RectL{x, y, x + width, y + height}), (RectL{5, 6, 305, 96}));
}

TEST_F(SdlWindowSystemTest, TheWindowShowsWithTheFirstPresentShowingTheFormImage) {
  addProbe("Probe1", 10, 10);
  EXPECT_EQ(SDL_GetWindowFlags(sdlWindow()) & SDL_WINDOW_SHOWN, 0u) << "nothing drawn yet";
  system->DoEvents();
  EXPECT_NE(SDL_GetWindowFlags(sdlWindow()) & SDL_WINDOW_SHOWN, 0u);
  const Canvas shown = system->WindowImage(*client);
  EXPECT_TRUE(samePixels(shown, form->Image()));
  EXPECT_EQ(shown.PixelRGB(15, 15), 0xFF0000u) << "the probe's red";
}

TEST_F(SdlWindowSystemTest, AnUnchangedImageIsNotDrawnAgain) {
  addProbe("Probe1", 10, 10);
  system->DoEvents();
  const uint64_t drawn = system->DrawCount();
  sleepMs(20);
  system->DoEvents();
  EXPECT_EQ(system->DrawCount(), drawn);
  form->BackColor(0x00FF00);
  sleepMs(20);
  system->DoEvents();
  EXPECT_EQ(system->DrawCount(), drawn + 1);
  EXPECT_TRUE(samePixels(system->WindowImage(*client), form->Image()));
  form->BackColor(0x123456);
  system->Present();  // at once, within the frame
  EXPECT_TRUE(samePixels(system->WindowImage(*client), form->Image()));
}

TEST_F(SdlWindowSystemTest, RepaintsFasterThanTheDisplayArePacedToFrames) {
  system->DoEvents();
  const uint64_t before = system->DrawCount();
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; std::chrono::steady_clock::now() - start < std::chrono::milliseconds(200); ++i) {
    form->BackColor(i % 2 ? 0x00FF00 : 0xFF0000);
    system->DoEvents();
  }
  const auto elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(
                           std::chrono::steady_clock::now() - start)
                           .count();
  const uint64_t draws = system->DrawCount() - before;
  EXPECT_GE(draws, 2u);
  EXPECT_LE(draws, static_cast<uint64_t>(elapsed / 16 + 1));
}

TEST_F(SdlWindowSystemTest, TheDesktopMovingTheWindowMovesTheForm) {
  windowEvent(SDL_WINDOWEVENT_MOVED, 0, 100, 50);
  system->DoEvents();
  EXPECT_EQ(form->WindowRect(), (RectL{100, 50, 300, 170}));
  auto probe = addProbe("Probe1", 10, 10);
  EXPECT_EQ(form->FindSite("Probe1")->WindowRect(), (RectL{110, 60, 170, 90}));
}

TEST_F(SdlWindowSystemTest, ClosingTheLastWindowEndsRun) {
  bool ran = false;
  system->Post([&] {
    ran = true;
    windowEvent(SDL_WINDOWEVENT_CLOSE);
  });
  // A safety net: the test must not hang when closing fails.
  const auto net = system->Timers().Add([this] { system->Quit(); });
  system->Timers().Start(net, 3000);
  EXPECT_EQ(system->Run(), 0);
  EXPECT_TRUE(ran);
  EXPECT_FALSE(system->WindowOpen(*client));
  EXPECT_EQ(SDL_GetWindowFlags(sdlWindow()) & SDL_WINDOW_SHOWN, 0u);
  EXPECT_FALSE(system->QuitRequested()) << "closed by the window, not by the safety net";
}

TEST_F(SdlWindowSystemTest, RunWaitsForTimersInRealTime) {
  int ticks = 0;
  const auto start = std::chrono::steady_clock::now();
  const auto timer = system->Timers().Add([&] {
    if (++ticks == 5) system->Quit();
  });
  system->Timers().Start(timer, 20);
  const auto net = system->Timers().Add([this] { system->Quit(); });
  system->Timers().Start(net, 5000);
  system->Run();
  const auto elapsed = std::chrono::steady_clock::now() - start;
  EXPECT_EQ(ticks, 5);
  EXPECT_GE(elapsed, std::chrono::milliseconds(100));
}

// ---- Mouse --------------------------------------------------------------------

TEST_F(SdlWindowSystemTest, MouseInputReachesTheControlUnderThePointer) {
  auto probe = addProbe("Probe1", 10, 10);
  auto other = addProbe("Probe2", 100, 10);
  probe->clear();
  other->clear();
  motion(20, 25);
  button(true, SDL_BUTTON_LEFT, 20, 25);
  button(false, SDL_BUTTON_LEFT, 20, 25);
  button(true, SDL_BUTTON_RIGHT, 21, 25);
  button(false, SDL_BUTTON_RIGHT, 21, 25);
  system->DoEvents();
  EXPECT_EQ(probe->calls, (std::vector<std::string>{"MouseMove 0 0 10 15", "EnterFocus",
                                                    "MouseDown 1 0 10 15", "MouseUp 1 0 10 15",
                                                    "MouseDown 2 0 11 15", "MouseUp 2 0 11 15"}));
  EXPECT_EQ(system->CursorPos(), (PointL{51, 65})) << "the window sits at (30, 40)";
  EXPECT_TRUE(other->calls.empty());
}

TEST_F(SdlWindowSystemTest, TheWindowPressedOnKeepsTheMouseUntilRelease) {
  auto probe = addProbe("Probe1", 10, 10);
  motion(20, 25);
  button(true, SDL_BUTTON_LEFT, 20, 25);
  system->DoEvents();
  EXPECT_EQ(system->MouseButtons(), 1);
  EXPECT_EQ(system->AsyncKeyState(1), WindowSystem::kKeyHeld);
  probe->clear();
  // SDL reports positions outside a captured window relative to it.
  motion(-40, 300);
  button(false, SDL_BUTTON_LEFT, -40, 300);
  system->DoEvents();
  EXPECT_EQ(probe->calls,
            (std::vector<std::string>{"MouseMove 1 0 -50 290", "MouseUp 1 0 -50 290"}));
  EXPECT_EQ(system->AsyncKeyState(1), 0);
}

// ---- Keyboard -----------------------------------------------------------------

TEST_F(SdlWindowSystemTest, KeysAndTextReachTheFocusedControl) {
  auto probe = addProbe("Probe1", 10, 10);
  form->FindSite("Probe1")->SetFocus();
  probe->clear();
  key(true, SDLK_a, SDL_SCANCODE_A, KMOD_LSHIFT);
  text("A");
  key(false, SDLK_a, SDL_SCANCODE_A, KMOD_LSHIFT);
  text("\xC3\xA4");  // ä
  key(true, SDLK_RETURN, SDL_SCANCODE_RETURN);
  key(true, SDLK_F5, SDL_SCANCODE_F5, KMOD_LCTRL | KMOD_RALT);
  system->DoEvents();
  EXPECT_EQ(probe->calls,
            (std::vector<std::string>{"KeyDown 65 1", "KeyPress 65", "KeyUp 65 1", "KeyPress 228",
                                      "KeyDown 13 0", "KeyPress 13", "KeyDown 116 6"}));
}

TEST_F(SdlWindowSystemTest, CtrlWithALetterTypesItsControlCharacterOnly) {
  auto probe = addProbe("Probe1", 10, 10);
  form->FindSite("Probe1")->SetFocus();
  probe->clear();
  key(true, SDLK_c, SDL_SCANCODE_C, KMOD_LCTRL);
  system->DoEvents();
  EXPECT_EQ(probe->calls, (std::vector<std::string>{"KeyDown 67 2", "KeyPress 3"}));
}

TEST_F(SdlWindowSystemTest, TabMovesTheFocusInstead) {
  auto first = addProbe("Probe1", 10, 10);
  auto second = addProbe("Probe2", 100, 10);
  form->FindSite("Probe1")->SetFocus();
  first->clear();
  second->clear();
  key(true, SDLK_TAB, SDL_SCANCODE_TAB);
  system->DoEvents();
  EXPECT_EQ(form->FocusedSite(), form->FindSite("Probe2"));
  EXPECT_EQ(first->calls, (std::vector<std::string>{"ExitFocus"}));
  EXPECT_EQ(second->calls, (std::vector<std::string>{"EnterFocus"}));
  key(true, SDLK_TAB, SDL_SCANCODE_TAB, KMOD_RSHIFT);
  system->DoEvents();
  EXPECT_EQ(form->FocusedSite(), form->FindSite("Probe1"));
}

TEST_F(SdlWindowSystemTest, TabIsAnOrdinaryKeyWhereFocusCannotMove) {
  auto probe = addProbe("Probe1", 10, 10);
  form->FindSite("Probe1")->SetFocus();
  probe->clear();
  key(true, SDLK_TAB, SDL_SCANCODE_TAB);
  key(true, SDLK_TAB, SDL_SCANCODE_TAB, KMOD_LCTRL);
  system->DoEvents();
  EXPECT_EQ(probe->calls, (std::vector<std::string>{"KeyDown 9 0", "KeyPress 9", "KeyDown 9 2"}));
}

// ---- Pop-ups ------------------------------------------------------------------

class SdlPopupTest : public SdlWindowSystemTest {
 protected:
  void SetUp() override {
    SdlWindowSystemTest::SetUp();
    popup = system->CreatePopup("Menu");
    popupId = system->WindowId(*popup);
    popup->Move(300, 200, 50, 40);
    popup->Surface().BackColor(0x00FFFF);  // yellow
    log = std::make_shared<std::vector<std::string>>();
    auto record = [this](const char* what) {
      return [this, what](int16_t b, int16_t s, float x, float y) {
        log->push_back(std::string(what) + " " + std::to_string(b) + " " + std::to_string(s) + " " +
                       std::to_string(static_cast<int>(x)) + " " +
                       std::to_string(static_cast<int>(y)));
      };
    };
    connections.push_back(popup->MouseDown.connect(record("MouseDown")));
    connections.push_back(popup->MouseMove.connect(record("MouseMove")));
    connections.push_back(popup->MouseUp.connect(record("MouseUp")));
    connections.push_back(popup->Click.connect([this] { log->push_back("Click"); }));
    connections.push_back(popup->LostFocus.connect([this] { log->push_back("LostFocus"); }));
  }
  void TearDown() override {
    connections.clear();
    popup.reset();
    SdlWindowSystemTest::TearDown();
  }
  SDL_Window* popupWindow() const { return SDL_GetWindowFromID(popupId); }

  std::shared_ptr<PopupWindow> popup;
  uint32_t popupId = 0;
  std::shared_ptr<std::vector<std::string>> log;
  std::vector<Connection> connections;
};

TEST_F(SdlPopupTest, APopupIsABorderlessTopmostWindowAtItsScreenPlace) {
  ASSERT_NE(popupWindow(), nullptr);
  const uint32_t flags = SDL_GetWindowFlags(popupWindow());
  EXPECT_NE(flags & SDL_WINDOW_BORDERLESS, 0u);
  EXPECT_NE(flags & SDL_WINDOW_SKIP_TASKBAR, 0u);
  EXPECT_EQ(flags & SDL_WINDOW_SHOWN, 0u);
  int x = 0, y = 0, width = 0, height = 0;
  SDL_GetWindowPosition(popupWindow(), &x, &y);
  SDL_GetWindowSize(popupWindow(), &width, &height);
  EXPECT_EQ((RectL{x, y, x + width, y + height}), (RectL{300, 200, 350, 240}));
}

TEST_F(SdlPopupTest, ShowingDrawsTheSurfaceAtOnce) {
  popup->Show(true);
  EXPECT_NE(SDL_GetWindowFlags(popupWindow()) & SDL_WINDOW_SHOWN, 0u);
  EXPECT_TRUE(samePixels(system->WindowImage(*popup), popup->Surface()));
  popup->Surface().BackColor(0xFF00FF);
  popup->Redraw();
  EXPECT_EQ(system->WindowImage(*popup).PixelRGB(0, 0), 0xFF00FFu);
  popup->Show(false);
  EXPECT_EQ(SDL_GetWindowFlags(popupWindow()) & SDL_WINDOW_SHOWN, 0u);
}

TEST_F(SdlPopupTest, AnEmptyPopupStaysOffTheScreen) {
  popup->Move(300, 200, 0, 40);
  popup->Show(true);
  EXPECT_TRUE(popup->Visible());
  EXPECT_EQ(SDL_GetWindowFlags(popupWindow()) & SDL_WINDOW_SHOWN, 0u);
  popup->Move(300, 200, 20, 40);
  EXPECT_NE(SDL_GetWindowFlags(popupWindow()) & SDL_WINDOW_SHOWN, 0u);
}

TEST_F(SdlPopupTest, ThePointerOnThePopupActsOnIt) {
  popup->Show(true);
  motion(5, 6, popupId);
  button(true, SDL_BUTTON_LEFT, 5, 6, popupId);
  button(false, SDL_BUTTON_LEFT, 5, 6, popupId);
  system->DoEvents();
  EXPECT_EQ(*log, (std::vector<std::string>{"MouseMove 0 0 5 6", "MouseDown 1 0 5 6",
                                            "MouseUp 1 0 5 6", "Click"}));
  EXPECT_EQ(system->CursorPos(), (PointL{305, 206}));
}

TEST_F(SdlPopupTest, APressOnTheFormTakesTheFocusFromThePopup) {
  popup->Show(true);
  EXPECT_EQ(system->FocusedPopup(), popup);
  button(true, SDL_BUTTON_LEFT, 5, 5);
  button(false, SDL_BUTTON_LEFT, 5, 5);
  system->DoEvents();
  EXPECT_EQ(*log, (std::vector<std::string>{"LostFocus"}));
}

TEST_F(SdlPopupTest, ThePopupLosesTheFocusWhenTheKeyboardLeavesTheApplication) {
  popup->Show(true);
  system->DoEvents();
  log->clear();
  // The offscreen driver gives no window the keyboard, as when another
  // application took it.
  windowEvent(SDL_WINDOWEVENT_FOCUS_LOST);
  system->DoEvents();
  EXPECT_EQ(*log, (std::vector<std::string>{"LostFocus"}));
  EXPECT_EQ(system->FocusedPopup(), nullptr);
}

TEST_F(SdlPopupTest, APopupHiddenWhilePressedDoesNotLeaveTheButtonHeld) {
  auto probe = addProbe("Probe1", 10, 10);
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
  EXPECT_EQ(probe->calls, (std::vector<std::string>{"MouseMove 0 0 10 15"}))
      << "the capture went with the release";
}

TEST_F(SdlPopupTest, OpacityIsKeptAndShadowsAreLeftToTheDesktop) {
  popup->Layered(true);
  popup->Alpha(230);
  popup->DropShadow(true);
  EXPECT_TRUE(popup->Layered());
  EXPECT_EQ(popup->Alpha(), 230);
  EXPECT_FALSE(popup->DropShadow());
}

TEST_F(SdlPopupTest, APopupOutlivingItsWindowSystemIsHarmless) {
  form.reset();
  system.reset();
  popup->Move(10, 10, 30, 30);
  popup->Show(true);
  popup->Redraw();
  EXPECT_TRUE(popup->Visible());
}

// ---- Clipboard ----------------------------------------------------------------

TEST_F(SdlWindowSystemTest, TheClipboardGoesThroughSdl) {
  system->Clipboard().SetText(
      "Gr\xC3\xBC\xC3\x9F"
      "e");
  EXPECT_TRUE(system->Clipboard().HasText());
  char* text = SDL_GetClipboardText();
  EXPECT_STREQ(text,
               "Gr\xC3\xBC\xC3\x9F"
               "e");
  SDL_free(text);
  SDL_SetClipboardText("from elsewhere");
  EXPECT_EQ(system->Clipboard().GetText(), "from elsewhere");
  system->Clipboard().Clear();
  EXPECT_FALSE(system->Clipboard().HasText());
  EXPECT_EQ(errorNumber([this] { system->Clipboard().SetText("\xFF"); }), errInvalidProcedureCall);
}

}  // namespace
}  // namespace velt
