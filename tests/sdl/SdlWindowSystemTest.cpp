// The SDL window system on SDL's offscreen video driver: real SDL windows and
// SDL's event queue, no display. Input is pushed into the queue as SDL
// events, the way the desktop's input would arrive. Its present pacer, key
// map, and the clipboards of both window systems too.

#include "velt/platform/sdl/SdlWindowSystem.hpp"

#include <SDL.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "host/Probe.hpp"
#include "support/ExpectError.hpp"
#include "support/HeadlessForm.hpp"
#include "velt/host/Form.hpp"
#include "velt/host/Site.hpp"
#include "velt/platform/Clipboard.hpp"
#include "velt/platform/HeadlessWindowSystem.hpp"
#include "velt/platform/PopupWindow.hpp"
#include "velt/platform/Timer.hpp"
#include "velt/platform/sdl/PresentPacer.hpp"
#include "velt/platform/sdl/SdlKeyMap.hpp"

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
  void windowEvent(uint8_t what, int32_t x = 0, int32_t y = 0) {
    SDL_Event event{.window = {.type = SDL_WINDOWEVENT, .windowID = windowId, .event = what}};
    event.window.data1 = x;
    event.window.data2 = y;
    push(event);
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

// Windows go to the screen only after a change, at most once a frame.
TEST(PresentPacerTest, AChangeIsDueAtOnceThenAtTheEndOfTheFrame) {
  PresentPacer pacer(16);
  EXPECT_FALSE(pacer.Due(0));
  EXPECT_EQ(pacer.WaitMs(1000), std::nullopt) << "nothing waits without a change";
  pacer.Invalidate();
  EXPECT_TRUE(pacer.Due(5)) << "nothing was presented yet";
  pacer.Presented(100);
  EXPECT_FALSE(pacer.Due(200));
  pacer.Invalidate();
  EXPECT_EQ(pacer.WaitMs(101), 15);
  EXPECT_FALSE(pacer.Due(115));
  EXPECT_TRUE(pacer.Due(116));
  EXPECT_EQ(pacer.WaitMs(500), 0) << "a late change is due at once";
  test::errorOf(errInvalidProcedureCall, [] { PresentPacer pacer(0); });
}

TEST_F(SdlWindowSystemTest, TheWindowShowsWithTheFirstPresentThenChangesAtMostOnceAFrame) {
  addProbe("Probe1", 10);
  EXPECT_FALSE(sdlShown(windowId)) << "nothing drawn yet";
  system->DoEvents();
  EXPECT_TRUE(sdlShown(windowId));
  EXPECT_TRUE(samePixels(system->WindowImage(*client), form->Image()));
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

// A sited timer of 1 ms fires every 16 ms at most, as desktop timers do; the
// interval reads as set.
TEST_F(SdlWindowSystemTest, SitedTimersFireAtMostEverySixteenMilliseconds) {
  addProbe("A", 10);
  std::shared_ptr<Timer> timer = form->FindSite("A")->CreateTimer("MousePos");
  int ticks = 0;
  Connection counting = timer->Tick.connect([&] { ++ticks; });
  system->DoEvents();  // the window's first present, which may take a while
  timer->Interval(1);
  timer->Enabled(true);
  const auto start = Clock::now();
  while (Clock::now() - start < 100ms)
    system->DoEvents();
  EXPECT_GE(ticks, 1);
  EXPECT_LE(ticks, 7);
  EXPECT_EQ(timer->Interval(), 1);
}

TEST_F(SdlWindowSystemTest, TheControlUnderThePointerGetsTheMouseAndKeepsItUntilRelease) {
  auto probe = addProbe("Probe1", 10);
  motion(20, 25);
  click(SDL_BUTTON_LEFT, 20, 25);
  button(true, SDL_BUTTON_RIGHT, 21, 25);
  system->DoEvents();
  EXPECT_EQ(probe->calls, (Calls{"MouseMove 0 0 10 15", "EnterFocus", "MouseDown 1 0 10 15",
                                 "MouseUp 1 0 10 15", "MouseDown 2 0 11 15"}));
  EXPECT_EQ(system->CursorPos(), (PointL{51, 65})) << "the window sits at (30, 40)";
  EXPECT_EQ(system->AsyncKeyState(2), WindowSystem::kKeyHeld);
  probe->clear();
  // SDL reports positions outside a captured window relative to it.
  motion(-40, 300);
  button(false, SDL_BUTTON_RIGHT, -40, 300);
  system->DoEvents();
  EXPECT_EQ(probe->calls, (Calls{"MouseMove 2 0 -50 290", "MouseUp 2 0 -50 290"}));
  EXPECT_EQ(system->AsyncKeyState(2), 0);
}

// Notches away from the user count positive, also from a flipped wheel; the
// pointer is where the last motion put it.
TEST_F(SdlWindowSystemTest, TheWheelReachesTheControlUnderThePointer) {
  auto probe = addProbe("Probe1", 10);
  motion(20, 25);
  push({.wheel = {.type = SDL_MOUSEWHEEL, .windowID = windowId, .y = 2}});
  push({.wheel = {.type = SDL_MOUSEWHEEL,
                  .windowID = windowId,
                  .y = 1,
                  .direction = SDL_MOUSEWHEEL_FLIPPED}});
  system->DoEvents();
  // The shown form focuses its first control whenever the X server reports
  // the window shown: that may fall anywhere in this sequence.
  std::erase(probe->calls, "EnterFocus");
  EXPECT_EQ(probe->calls,
            (Calls{"MouseMove 0 0 10 15", "MouseWheel 2 0 10 15", "MouseWheel -1 0 10 15"}));
}

TEST_F(SdlWindowSystemTest, KeysAndTextReachTheFocusedControlAndTabMovesTheFocusWhereItCan) {
  auto first = addProbe("Probe1", 10, true);
  key(true, SDLK_a, SDL_SCANCODE_A, KMOD_LSHIFT);
  text("A");
  key(false, SDLK_a, SDL_SCANCODE_A, KMOD_LSHIFT);
  text("\xC3\xA4");                               // ä
  key(true, SDLK_c, SDL_SCANCODE_C, KMOD_LCTRL);  // types its control character
  key(true, SDLK_TAB, SDL_SCANCODE_TAB);          // the focus cannot move: an ordinary key
  system->DoEvents();
  EXPECT_EQ(first->calls, (Calls{"KeyDown 65 1", "KeyPress 65", "KeyUp 65 1", "KeyPress 228",
                                 "KeyDown 67 2", "KeyPress 3", "KeyDown 9 0", "KeyPress 9"}));

  addProbe("Probe2", 100);
  key(true, SDLK_TAB, SDL_SCANCODE_TAB);
  system->DoEvents();
  EXPECT_EQ(form->FocusedSite(), form->FindSite("Probe2"));
  key(true, SDLK_TAB, SDL_SCANCODE_TAB, KMOD_RSHIFT);
  system->DoEvents();
  EXPECT_EQ(form->FocusedSite(), form->FindSite("Probe1"));
}

// The SDL clipboard is the desktop's: what others copy is there, what we copy
// goes there. The headless one keeps its text in memory.
TEST_F(SdlWindowSystemTest, TheClipboardIsTheDesktopsAndRefusesMalformedTextNamingTheByte) {
  const std::string text =
      "Gr\xC3\xBC\xC3\x9F"
      "e \xF0\x9F\x98\x80";
  Clipboard& clipboard = system->Clipboard();
  SDL_SetClipboardText("from elsewhere");
  EXPECT_EQ(clipboard.GetText(), "from elsewhere");
  clipboard.SetText(text);
  char* copied = SDL_GetClipboardText();
  EXPECT_EQ(copied, text);
  SDL_free(copied);
  // A stray byte, a sequence cut short, an overlong "/", a surrogate, past U+10FFFF, a NUL.
  const std::pair<std::string, std::string> cases[] = {
      {"ab\xFF", "3"},           {"\xC3", "1"},
      {"x\xC0\xAF", "2"},        {"\xED\xA0\x80", "1"},
      {"\xF4\x90\x80\x80", "1"}, {std::string("a\0b", 3), "2"},
  };
  for (const auto& [bad, byte] : cases) {
    const std::string message =
        test::errorOf(errInvalidProcedureCall, [&] { clipboard.SetText(bad); });
    EXPECT_NE(message.find("Clipboard.SetText"), std::string::npos) << message;
    EXPECT_NE(message.find("byte " + byte), std::string::npos) << message;
  }
  EXPECT_EQ(clipboard.GetText(), text);
  clipboard.Clear();
  EXPECT_FALSE(clipboard.HasText());
  HeadlessWindowSystem headless;
  headless.Clipboard().SetText(text);
  EXPECT_EQ(headless.Clipboard().GetText(), text);
}

// The key map: SDL keys to classic virtual-key codes, modifier masks, and the
// KeyPress codes of keys and typed text.
int16_t code(SDL_Keycode key, SDL_Scancode scancode = SDL_SCANCODE_UNKNOWN) {
  return SdlKeyMap::KeyCode(key, scancode);
}

TEST(SdlKeyMapTest, KeysGetTheirClassicCodes) {
  const std::pair<SDL_Keycode, int16_t> cases[] = {
      {SDLK_RETURN, 13},     {SDLK_KP_ENTER, 13},  {SDLK_TAB, 9},         {SDLK_BACKSPACE, 8},
      {SDLK_ESCAPE, 27},     {SDLK_PAGEUP, 33},    {SDLK_LEFT, 37},       {SDLK_DELETE, 46},
      {SDLK_RSHIFT, 16},     {SDLK_LCTRL, 17},     {SDLK_RALT, 18},       {SDLK_KP_0, 96},
      {SDLK_KP_9, 105},      {SDLK_KP_MINUS, 109}, {SDLK_F1, 112},        {SDLK_F12, 123},
      {SDLK_SEMICOLON, 186}, {SDLK_SLASH, 191},    {SDLK_BACKQUOTE, 192}, {SDLK_LEFTBRACKET, 219},
      {SDLK_QUOTE, 222},     {SDLK_UNKNOWN, 0}};
  for (const auto& [key, expected] : cases)
    EXPECT_EQ(code(key), expected) << SDL_GetKeyName(key);
  EXPECT_EQ(code(SDLK_AUDIONEXT, SDL_SCANCODE_AUDIONEXT), 0) << "a key without a code";
  // Letters and digits follow the typed character, other keys their place.
  for (char c = 'a'; c <= 'z'; ++c)
    EXPECT_EQ(code(c, SDL_SCANCODE_A), 'A' + (c - 'a')) << c;
  for (char c = '0'; c <= '9'; ++c)
    EXPECT_EQ(code(c, SDL_SCANCODE_A), c) << c;
  // On a French layout the key in the place of Q types "a": it is the A key.
  EXPECT_EQ(code(SDLK_a, SDL_SCANCODE_Q), 65);
  // German "ä" sits where the US apostrophe is; Cyrillic letters on the letter keys.
  EXPECT_EQ(code(0xE4, SDL_SCANCODE_APOSTROPHE), 222);
  EXPECT_EQ(code(0x444, SDL_SCANCODE_A), 65);
  EXPECT_EQ(code(0x431, SDL_SCANCODE_1), 49);
}

TEST(SdlKeyMapTest, OnlyKeysThatTypeAControlCharacterGiveOneAndModifiersMakeTheShiftMask) {
  struct Case {
    int16_t keyCode, shift, expected;
  };
  // Ordinary keys type their text on their own; with Alt no key types a control character.
  const Case cases[] = {
      {13, 0, 13}, {13, 2, 10},  {8, 0, 8},   {8, 2, 127}, {27, 0, 27}, {9, 1, 9},  {9, 2, 0},
      {'A', 2, 1}, {'Z', 3, 26}, {'A', 0, 0}, {'1', 2, 0}, {37, 0, 0},  {13, 4, 0}, {'A', 6, 0},
  };
  for (const Case& c : cases)
    EXPECT_EQ(SdlKeyMap::ControlCharacter(c.keyCode, c.shift), c.expected)
        << c.keyCode << " shift " << c.shift;
  // The shift mask: lock keys and the GUI key are no part of it.
  EXPECT_EQ(SdlKeyMap::ShiftState(KMOD_RSHIFT), 1);
  EXPECT_EQ(SdlKeyMap::ShiftState(KMOD_LALT), 4);
  EXPECT_EQ(SdlKeyMap::ShiftState(KMOD_LSHIFT | KMOD_RCTRL | KMOD_RALT), 7);
  EXPECT_EQ(SdlKeyMap::ShiftState(KMOD_CAPS | KMOD_NUM | KMOD_LGUI), 0);
}

TEST(SdlKeyMapTest, TextGivesItsUtf16UnitsAndOneReplacementPerMalformedByte) {
  const auto r = static_cast<int16_t>(0xFFFD);
  const std::pair<const char*, std::vector<int16_t>> cases[] = {
      {"", {}},
      {"A\xC3\x9F\xE2\x82\xAC", {65, 223, 0x20AC}},
      {"\xEF\xBC\xA1", {-223}},  // U+FF21: units past U+7FFF come out signed
      {"\xF0\x9F\x98\x80", {static_cast<int16_t>(0xD83D), static_cast<int16_t>(0xDE00)}},
      {"\x80z", {r, 'z'}},
      {"\xE2\x82", {r, r}},         // cut short
      {"\xC0\xAF", {r, r}},         // an overlong slash
      {"\xED\xA0\x80", {r, r, r}},  // an encoded surrogate
  };
  for (const auto& [text, expected] : cases)
    EXPECT_EQ(SdlKeyMap::TextCharacters(text), expected) << text;
}

class SdlPopupTest : public SdlWindowSystemTest {
 protected:
  void SetUp() override {
    SdlWindowSystemTest::SetUp();
    popup = system->CreatePopup("Menu");
    popupId = system->WindowId(*popup);
    popup->Move(300, 200, 50, 40);
    popup->MouseDown
        .connect([this](int16_t button, int16_t, float x, float y) {
          log.push_back("Down " + std::to_string(button) + " " + std::to_string(int(x)) + " " +
                        std::to_string(int(y)));
        })
        .release();
    popup->Click.connect([this] { log.push_back("Click"); }).release();
    popup->LostFocus.connect([this] { log.push_back("LostFocus"); }).release();
  }
  std::shared_ptr<PopupWindow> popup;  // outliving its window system is harmless
  uint32_t popupId = 0;
  Calls log;
};

TEST_F(SdlPopupTest, APopupIsABorderlessWindowAtItsScreenPlaceShownWhenItHasPixels) {
  const uint32_t flags = SDL_GetWindowFlags(SDL_GetWindowFromID(popupId));
  EXPECT_NE(flags & SDL_WINDOW_BORDERLESS, 0u);
  EXPECT_NE(flags & SDL_WINDOW_SKIP_TASKBAR, 0u);
  EXPECT_EQ(sdlRect(popupId), (RectL{300, 200, 350, 240}));
  popup->Surface().BackColor(0x00FFFF);
  popup->Show(true);
  EXPECT_TRUE(sdlShown(popupId));
  EXPECT_TRUE(samePixels(system->WindowImage(*popup), popup->Surface())) << "drawn at once";
  popup->Move(300, 200, 0, 40);
  EXPECT_FALSE(sdlShown(popupId)) << "an empty pop-up stays off the screen";
  EXPECT_TRUE(popup->Visible());
  popup->Move(300, 200, 20, 40);
  EXPECT_TRUE(sdlShown(popupId));
  popup->Surface().BackColor(0xFF00FF);
  popup->Redraw();
  EXPECT_EQ(system->WindowImage(*popup).PixelRGB(0, 0), 0xFF00FFu);
  popup->Show(false);
  EXPECT_FALSE(sdlShown(popupId));
  popup->DropShadow(true);
  EXPECT_FALSE(popup->DropShadow()) << "shadows are the desktop's";
  form.reset();
  system.reset();
  popup->Show(true);  // outliving its window system is harmless
  popup->Redraw();
}

TEST_F(SdlPopupTest, ThePointerActsOnThePopupWhichLosesTheFocusToTheFormOrAnotherApplication) {
  popup->Show(true);
  EXPECT_EQ(system->FocusedPopup(), popup);
  click(SDL_BUTTON_LEFT, 5, 6, popupId);
  system->DoEvents();
  EXPECT_EQ(log, (Calls{"Down 1 5 6", "Click"}));
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

}  // namespace
}  // namespace velt
