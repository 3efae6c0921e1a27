#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "velt/platform/Canvas.hpp"
#include "velt/platform/Event.hpp"
#include "velt/platform/Geometry.hpp"
#include "velt/platform/Types.hpp"
#include "velt/platform/VirtualClock.hpp"
#include "velt/platform/WindowSystem.hpp"

namespace velt {

// The window system without a display: windows are images in memory, the
// screen is a rectangle of the given size, time is a virtual clock, and the
// pointer, the buttons and the keys are whatever the test sets or scripts.
//
// Scripted input is a queue read by DoEvents, one item per call, as a real
// event queue is read: a routine that waits inside DoEvents (for the mouse
// buttons to be released, say) sees the script's later items arrive. Script
// coordinates are screen pixels. A scripted press or release also moves the
// pointer to its position, but only PostMouseMove sends MouseMove.
//
// When the script has ended with mouse buttons still held, a routine waiting
// inside DoEvents for their release would wait forever. So a DoEvents that
// finds nothing to do (no script item, no posted work, no timer due) right
// after another such call, with no time moved and no buttons set in between,
// lets go of the held buttons at the pointer: one MouseUp each, left, right,
// then middle. A single idle DoEvents, as a timer tick makes it, releases
// nothing, so a test may hold a button over several ticks.
class HeadlessWindowSystem : public WindowSystem {
 public:
  // The screen's background where no window is.
  static constexpr OLE_COLOR kDesktopColor = 0x808000;  // teal

  explicit HeadlessWindowSystem(int32_t screenWidth = 1024, int32_t screenHeight = 768);

  SizeL ScreenSize() const override { return screen_; }
  PointL CursorPos() const override { return cursor_; }
  int32_t MouseButtons() const override { return buttons_; }

  // Direct state, no events.
  void SetCursor(int32_t x, int32_t y) { cursor_ = PointL{x, y}; }
  void SetButtons(int32_t mask);  // error 5 outside 0..7
  // The date controls take as today: kDefaultToday until set, so pictures of
  // calendars stay the same from day to day. A new date raises TodayChanged.
  // Error 5 for a day that does not exist.
  static constexpr CalendarDate kDefaultToday{2005, 2, 16};
  CalendarDate Today() const override { return today_; }
  void SetToday(const CalendarDate& date);
  // Moves the virtual clock, firing each timer at its due time on the way, so
  // a 1 ms timer ticks once per millisecond moved. Error 5 below 0.
  void AdvanceClock(int64_t milliseconds);

  // The script. Buttons are 1 left, 2 right, 4 middle (error 5 otherwise);
  // Shift 1, Ctrl 2, Alt 4.
  void PostMouseMove(int32_t x, int32_t y);
  void PostMouseDown(int16_t button, int32_t x, int32_t y, int16_t shift = 0);
  void PostMouseUp(int16_t button, int32_t x, int32_t y, int16_t shift = 0);
  // The wheel turned `notches` notches (positive away from the user) with the
  // pointer at (x, y).
  void PostMouseWheel(int32_t x, int32_t y, int16_t notches, int16_t shift = 0);
  void PostKeyDown(int16_t keyCode, int16_t shift = 0);
  void PostKeyUp(int16_t keyCode, int16_t shift = 0);
  void PostKeyPress(int16_t charCode);
  // An input method composing text at the focused control ("" ends it).
  void PostComposition(const std::string& text);
  // AdvanceClock(milliseconds) when its turn comes.
  void PostWait(int64_t milliseconds);
  // Any step of the script's own, e.g. giving a control the focus.
  void PostAction(std::function<void()> action);
  size_t PendingInput() const { return script_.size(); }

  // Takes one scripted item, then runs the posted work and the due timers.
  void DoEvents() override;
  // DoEvents until no script item and no posted work is left (at least once).
  void RunUntilIdle();

  // What the desktop's opener would have been asked to open: recorded in
  // order and told to ShellOpened, nothing started; every request answers
  // that it succeeded.
  struct ShellRequest {
    std::string Operation;
    std::string File;
    std::string Parameters;
    std::string Directory;
  };
  int32_t ShellExecute(const std::string& operation, const std::string& file,
                       const std::string& parameters, const std::string& directory,
                       int32_t showCmd) override;
  const std::vector<ShellRequest>& ShellRequests() const { return shellRequests_; }
  Event<const ShellRequest&> ShellOpened;

  // The whole screen: desktop, forms, then pop-ups in stacking order, each
  // pop-up blended with its effective alpha over a drop shadow when it has one.
  Canvas CompositeScreen();
  void SavePng(const std::string& path);

 private:
  enum class ScriptKind {
    MouseMove,
    MouseDown,
    MouseUp,
    MouseWheel,
    KeyDown,
    KeyUp,
    KeyPress,
    Composition,
    Wait,
    Action
  };
  struct ScriptItem {
    ScriptKind kind;
    int16_t button = 0;  // or the key or character code, or the wheel's notches
    int16_t shift = 0;
    PointL point;
    int64_t milliseconds = 0;
    std::function<void()> action;
    std::string text = {};
  };

  HeadlessWindowSystem(VirtualClock* clock, int32_t screenWidth, int32_t screenHeight);
  void post(ScriptItem item);
  void run(ScriptItem& item);
  void releaseHeldButtons();

  VirtualClock* virtualClock_;  // owned by the base class
  SizeL screen_;
  PointL cursor_;
  int32_t buttons_ = 0;
  std::deque<ScriptItem> script_;
  int32_t idleCalls_ = 0;  // DoEvents calls in a row that found nothing to do
  std::vector<ShellRequest> shellRequests_;
  CalendarDate today_ = kDefaultToday;
};

}  // namespace velt
