#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "velt/platform/Canvas.hpp"
#include "velt/platform/Geometry.hpp"
#include "velt/platform/WindowSystem.hpp"
#include "velt/platform/sdl/PresentPacer.hpp"
#include "velt/platform/sdl/SdlDisplayWait.hpp"

union SDL_Event;
struct SDL_Cursor;
struct SDL_MouseMotionEvent;
struct SDL_MouseButtonEvent;
struct SDL_MouseWheelEvent;
struct SDL_KeyboardEvent;
struct SDL_TextInputEvent;
struct SDL_WindowEvent;

namespace velt {

class SdlClipboard;
class SdlFrame;
class SdlPopupWindow;
class SdlVideo;

// The window system on a real desktop through SDL2 (X11 or Wayland): each
// form is a window whose client area shows the form's image, pop-ups are
// borderless windows above it, input comes from SDL's event queue, and time is
// real. The windows are brought up to date after input, timers and posted work
// ran, only where the image changed and at most once a display frame. A form's
// window opens with the form and shows with the first present.
//
// The pointer position and buttons are those of the last mouse event while
// the pointer is over one of the windows or a button is held (the window
// pressed on then keeps the mouse, even outside it); elsewhere they are the
// desktop's, read when asked.
class SdlWindowSystem final : public WindowSystem {
 public:
  // driver: an SDL video driver by name, or empty for SDL's choice. Error 5
  // saying why when there is no display or SDL cannot open one, so that a
  // caller can fall back to the headless window system.
  explicit SdlWindowSystem(const std::string& driver = "");
  ~SdlWindowSystem() override;

  const std::string& Driver() const;

  SizeL ScreenSize() const override;
  PointL CursorPos() const override;
  int32_t MouseButtons() const override;
  velt::Clipboard& Clipboard() override;
  void FormChanged(FormClient& form) override;

  // Takes the events waiting (none is waited for), runs the posted work and the
  // due timers, and presents when a frame is due.
  void DoEvents() override;
  // Runs until every form window was closed by the user, or Quit; sleeps while
  // nothing is due. Returns 0.
  int Run();
  // Makes Run return after the current round.
  void Quit() { quit_ = true; }
  bool QuitRequested() const { return quit_; }
  // Brings every window up to date now, whatever the frame pacing says.
  void Present();
  // Marks the windows for the next present.
  void Invalidate() { pacer_.Invalidate(); }

  // What a window shows: the pixels last presented. Error 5 for a form or
  // pop-up that has no window here.
  Canvas WindowImage(const FormClient& form) const;
  Canvas WindowImage(const PopupWindow& popup) const;
  // False once the user closed the form's window (or it has none here).
  bool WindowOpen(const FormClient& form) const;
  // SDL's id of the window, for code that talks to SDL itself; 0 when there
  // is none here.
  uint32_t WindowId(const FormClient& form) const;
  uint32_t WindowId(const PopupWindow& popup) const;
  // The pointer shape SDL shows now, as the look it was made for (mpCustom
  // for a picture); none when SDL shows a cursor this system did not set (its
  // own default, or none on a driver without cursors).
  std::optional<int16_t> ShownShape() const;
  // How many times a window's pixels went to the screen so far.
  uint64_t DrawCount() const { return drawCount_; }

 protected:
  void formAttached(FormClient& form) override;
  void formDetached(FormClient& form) override;
  std::shared_ptr<PopupWindow> makePopup(const std::string& name) override;
  void showPointer(const PointerLook& look) override;

 private:
  friend class SdlPopupWindow;

  struct FormFrame {
    FormClient* form = nullptr;
    std::unique_ptr<SdlFrame> frame;
    bool closed = false;                // by the user
    bool exposed = false;               // must be drawn whether changed or not
    std::optional<uint64_t> presented;  // the form's image stamp when last presented
  };

  // Pop-ups report in and out.
  void popupMade(SdlPopupWindow& popup);
  void popupGone(SdlPopupWindow& popup);
  void popupHidden(SdlPopupWindow& popup);

  void pumpEvents();
  void handle(const SDL_Event& event);
  void onWindowEvent(const SDL_WindowEvent& event);
  void onMotion(const SDL_MouseMotionEvent& event);
  void onButton(const SDL_MouseButtonEvent& event, bool down);
  void onWheel(const SDL_MouseWheelEvent& event);
  void onKey(const SDL_KeyboardEvent& event, bool down);
  void onText(const SDL_TextInputEvent& event);
  void checkFocusLeftApplication();
  void releaseLostButtons();
  void giveFocusToActiveForm();
  bool tabMovesFocus(bool backward);

  void present(bool force);
  void waitForWork();
  bool anyFormOpen() const;
  bool imagesMayHaveChanged() const;

  FormFrame* formFrame(uint32_t windowId);
  const FormFrame* formFrame(const FormClient& form) const;
  SdlPopupWindow* popupFrame(uint32_t windowId) const;
  // The window's rectangle as the routing sees it; false for an unknown window.
  bool windowRect(uint32_t windowId, RectL& rect);
  PointL desktopPointer(int32_t* buttons) const;
  bool pointerTracked() const { return pointerWindow_ != 0 || buttons_ != 0; }
  SDL_Cursor* systemCursor(int16_t shape);
  SDL_Cursor* customCursor(const std::shared_ptr<const Picture>& icon);
  void freeCursors();

  std::unique_ptr<SdlVideo> video_;  // first in, last out: everything below needs it
  std::unique_ptr<SdlClipboard> clipboard_;
  PresentPacer pacer_;
  SdlDisplayWait displayWait_;
  bool displayQuiet_ = false;  // the last sleep ended with nothing from the display
  bool presentedSinceWait_ = false;
  std::vector<FormFrame> forms_;
  std::vector<SdlPopupWindow*> popups_;
  SizeL screen_;
  PointL cursor_;
  int32_t buttons_ = 0;
  uint32_t pointerWindow_ = 0;  // the window the pointer is over, 0 outside them
  uint32_t enteredWindow_ = 0;  // entered since its last motion
  bool focusChanged_ = false;   // a window lost the keyboard focus during the pump
  bool quit_ = false;
  uint64_t drawCount_ = 0;
  int64_t lastPumpMs_ = -1;
  int64_t lastReadMs_ = -1;  // when SDL last read the display
  // SDL cursors by shape, made when first shown; the custom one is remade for
  // each new picture.
  std::vector<std::pair<int16_t, SDL_Cursor*>> cursors_;
  SDL_Cursor* custom_ = nullptr;
  std::shared_ptr<const Picture> customPicture_;
};

}  // namespace velt
