#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "velt/platform/CalendarDate.hpp"
#include "velt/platform/Clock.hpp"
#include "velt/platform/Event.hpp"
#include "velt/platform/Geometry.hpp"
#include "velt/platform/MousePointer.hpp"
#include "velt/platform/TimerQueue.hpp"

namespace velt {

class Canvas;
class Clipboard;
class PopupWindow;

// A window system backend: the screen, the pointer and the buttons held, a
// clock with its timer queue, the top-level windows (form windows and pop-ups)
// and the event loop. The backends differ in where events come from and where
// windows show; routing input to windows, mouse capture, the focus between
// top-level windows, posted work and timers are the same for all and live
// here.
//
// Windows are stacked: forms at the bottom (the last one activated on top),
// then the pop-ups, the topmost ones above the others, each band in the order
// the windows were shown or raised. A mouse event goes to the window holding
// the capture, else to the topmost visible window under the pointer. A press
// captures the mouse for the window under the pointer until every button is
// up, and gives that window the focus; a pop-up that loses the focus hears
// LostFocus. Keys go to the focused window: a pop-up with the focus hears
// KeyDown and KeyPress (not KeyUp); otherwise they go to the active form. The
// wheel goes to the window under the pointer.
class WindowSystem : public std::enable_shared_from_this<WindowSystem> {
 public:
  // What the system needs from a form window: its client area on the screen,
  // its image, and someone to take its input. Coordinates are pixels of the
  // client area; they can lie outside it while the form holds the capture.
  class FormClient {
   public:
    virtual ~FormClient() = default;
    virtual RectL ScreenRect() const = 0;
    virtual const Canvas& Image() = 0;
    virtual void OnMouseDown(int16_t button, int16_t shift, int32_t x, int32_t y) = 0;
    // Button is the mask of the buttons held (1 left, 2 right, 4 middle).
    virtual void OnMouseMove(int16_t button, int16_t shift, int32_t x, int32_t y) = 0;
    virtual void OnMouseUp(int16_t button, int16_t shift, int32_t x, int32_t y) = 0;
    // The press just delivered to OnMouseDown was the second of a double click.
    virtual void OnDblClick(int16_t /*button*/, int16_t /*shift*/, int32_t /*x*/, int32_t /*y*/) {}
    virtual void OnKeyDown(int16_t keyCode, int16_t shift) = 0;
    virtual void OnKeyUp(int16_t keyCode, int16_t shift) = 0;
    virtual void OnKeyPress(int16_t charCode) = 0;
    // Input-method composition for the focused control (see UserControl).
    virtual void OnComposition(const std::string& /*text*/) {}
    // The wheel turned `notches` notches (positive away from the user) with
    // the pointer at (x, y).
    virtual void OnMouseWheel(int16_t /*notches*/, int16_t /*shift*/, int32_t /*x*/,
                              int32_t /*y*/) {}
    // The text of the window's title bar, for backends with real windows.
    virtual std::string Caption() const { return {}; }
    // The desktop placed or moved the window (a window manager, the user
    // dragging it): its client area's top-left corner is now at (x, y).
    virtual void WindowMoved(int32_t /*x*/, int32_t /*y*/) {}
    // Moves the focus to the next (backward: previous) control that can take
    // it, as the Tab key does; false when there is none to move to.
    virtual bool FocusNext(bool /*backward*/) { return false; }
    // A backend with real windows tells the form once its window first shows
    // on the screen.
    virtual void WindowShown() {}
    // A number that changes whenever Image may have changed, so a backend can
    // skip composing and comparing an image that cannot have changed; none
    // when the form cannot tell.
    virtual std::optional<uint64_t> ImageStamp() const { return std::nullopt; }
    // What the pointer shows at a pixel of the client area (the control
    // holding the capture decides while it holds it).
    virtual PointerLook PointerAt(int32_t /*x*/, int32_t /*y*/) const { return {}; }
  };

  // One entry of the stack of windows: a form or a pop-up.
  struct StackedWindow {
    FormClient* form = nullptr;
    std::shared_ptr<PopupWindow> popup;
  };

  // Two presses of one button on one window make a double click when the
  // second comes within this time and this many pixels (each way) of the
  // first; a third press starts counting anew.
  static constexpr int32_t kDoubleClickMs = 500;
  static constexpr int32_t kDoubleClickDistance = 4;

  // GetAsyncKeyState's "held" bit.
  static constexpr int16_t kKeyHeld = static_cast<int16_t>(0x8000);

  explicit WindowSystem(std::unique_ptr<velt::Clock> clock);
  virtual ~WindowSystem();
  WindowSystem(const WindowSystem&) = delete;
  WindowSystem& operator=(const WindowSystem&) = delete;

  // The screen and the pointer, in screen pixels.
  virtual SizeL ScreenSize() const = 0;
  virtual PointL CursorPos() const = 0;
  // The mouse buttons held: 1 left, 2 right, 4 middle.
  virtual int32_t MouseButtons() const = 0;
  // Whether a key is held, from the key events delivered so far.
  virtual bool KeyHeld(int32_t keyCode) const;
  // kKeyHeld while the key or mouse button (virtual keys 1 left, 2 right,
  // 4 middle) is held, else 0.
  int16_t AsyncKeyState(int32_t virtualKey) const;
  // The Shift (1), Ctrl (2) and Alt (4) keys held.
  int16_t ShiftState() const;

  int64_t NowMs() const { return clock_->NowMs(); }
  // The calendar day it is for the user: the machine's local date here; a
  // backend without a real clock says its own.
  virtual CalendarDate Today() const { return CalendarDate::LocalToday(); }
  // Raised when a backend that sets its date (the headless one) changes it,
  // so calendars can mark the new day.
  Event<> TodayChanged;
  TimerQueue& Timers() { return timers_; }
  // The shortest interval a sited timer fires at: a shorter one fires this
  // often. Real-time systems keep desktop timers from waking the loop more
  // often than a display needs; a virtual clock keeps exact intervals.
  int32_t TimerFloorMs() const { return timerFloorMs_; }

  // A new hidden pop-up window of this system.
  std::shared_ptr<PopupWindow> CreatePopup(const std::string& name);

  // Forms register their window while they exist.
  void AttachForm(FormClient& form);
  void DetachForm(FormClient& form);
  // Gives a form the focus among the top-level windows, as setting the focus
  // on one of its controls does; a pop-up that had it hears LostFocus.
  void ActivateForm(FormClient& form);
  // Told when a form's rectangle or image changed.
  virtual void FormChanged(FormClient& form);

  // Bottom to top; hidden pop-ups included.
  std::vector<StackedWindow> Stack() const;
  std::shared_ptr<PopupWindow> FocusedPopup() const { return focusPopup_.lock(); }
  FormClient* ActiveForm() const { return activeForm_; }

  // What the pointer shows: the look of the control under it (or holding the
  // capture) as its form tells it; the default over pop-ups, a form's bare
  // background and the desktop. Worked out after every mouse event and by
  // RefreshPointer; a backend with a real pointer shows it.
  const PointerLook& Pointer() const { return pointer_; }
  // Works the look out again where the pointer is now, as after the control
  // under it changed its shape.
  void RefreshPointer();

  // Opens a document or address with the desktop's opener, as Shell::Execute
  // does; a backend without a desktop records it instead.
  virtual int32_t ShellExecute(const std::string& operation, const std::string& file,
                               const std::string& parameters, const std::string& directory,
                               int32_t showCmd);

  // The desktop's clipboard; this base keeps one in memory.
  virtual velt::Clipboard& Clipboard();

  // Lets pending input, posted work and due timers run once.
  virtual void DoEvents() = 0;
  // Work run by a later DoEvents, in the order posted.
  void Post(std::function<void()> work);
  size_t PendingWork() const { return posted_.size(); }

 protected:
  // Input in screen pixels, routed as described above. The backend updates
  // the pointer and the buttons before calling these. A backend that counts
  // quick presses itself (as a desktop does, with its own double-click time)
  // passes its count in `clicks`; with 0 the presses are timed on the clock.
  void deliverMouseDown(int16_t button, int16_t shift, PointL screen, int32_t clicks = 0);
  void deliverMouseMove(int16_t shift, PointL screen);
  void deliverMouseUp(int16_t button, int16_t shift, PointL screen);
  // The wheel goes to the window under the pointer, not to the one holding
  // the capture.
  void deliverMouseWheel(int16_t notches, int16_t shift, PointL screen);
  void deliverKeyDown(int16_t keyCode, int16_t shift);
  void deliverKeyUp(int16_t keyCode, int16_t shift);
  void deliverKeyPress(int16_t charCode);
  void deliverComposition(const std::string& text);

  // A backend with a real pointer shows the look here when it changes.
  virtual void showPointer(const PointerLook& /*look*/) {}

  // Makes the window object for CreatePopup, which registers it. A backend
  // with real windows returns its own kind of PopupWindow.
  virtual std::shared_ptr<PopupWindow> makePopup(const std::string& name);

  // A backend with real windows opens and closes the form's window here. An
  // error thrown by formAttached leaves the form unattached.
  virtual void formAttached(FormClient& /*form*/) {}
  virtual void formDetached(FormClient& /*form*/) {}

  void TimerFloorMs(int32_t milliseconds) { timerFloorMs_ = milliseconds; }

  // The work posted before the call; work posted meanwhile waits.
  void runPostedWork();
  void runDueTimers() { timers_.RunDue(); }

 private:
  friend class PopupWindow;

  struct PopupEntry {
    PopupWindow* window;
    std::weak_ptr<PopupWindow> weak;
  };
  struct Target {
    FormClient* form = nullptr;
    std::shared_ptr<PopupWindow> popup;
  };

  void popupShown(PopupWindow& popup);
  void popupHidden(PopupWindow& popup);
  void popupRaised(PopupWindow& popup);
  void popupGone(PopupWindow* popup);

  std::shared_ptr<PopupWindow> lockPopup(PopupWindow& popup) const;
  void raiseToTop(PopupWindow& popup);
  Target windowAt(PointL screen) const;
  Target mouseTarget(PointL screen) const;
  bool attached(FormClient* form) const;
  void activate(const Target& target);
  void focusPopup(const std::shared_ptr<PopupWindow>& popup);
  FormClient* keyTarget() const;
  bool isDoubleClick(int16_t button, PointL screen, int32_t clicks, const Target& target);

  std::unique_ptr<velt::Clock> clock_;
  TimerQueue timers_;
  std::vector<FormClient*> forms_;  // bottom to top
  std::vector<PopupEntry> popups_;  // bottom to top within each band
  bool capturing_ = false;
  FormClient* captureForm_ = nullptr;
  std::weak_ptr<PopupWindow> capturePopup_;
  std::weak_ptr<PopupWindow> clickPopup_;  // pressed with the left button
  std::weak_ptr<PopupWindow> focusPopup_;
  FormClient* activeForm_ = nullptr;
  std::set<int32_t> keysHeld_;
  std::deque<std::function<void()>> posted_;
  std::unique_ptr<velt::Clipboard> clipboard_;
  int32_t timerFloorMs_ = 1;
  PointerLook pointer_;
  struct Press {
    int16_t button = 0;
    PointL point{};
    int64_t timeMs = 0;
    const void* window = nullptr;
    bool ended = true;  // a double click ends the run: the next press is a first one
  } lastPress_;
};

}  // namespace velt
