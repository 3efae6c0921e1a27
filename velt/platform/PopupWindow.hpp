#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "velt/platform/Canvas.hpp"
#include "velt/platform/Event.hpp"
#include "velt/platform/Geometry.hpp"
#include "velt/platform/TopLevelWindow.hpp"

namespace velt {

class WindowSystem;

// A top-level window with a drawing surface of its own: the menu window, the
// drop-down panel. It starts hidden, at (0, 0), 0 x 0 pixels, opaque. Its
// window system raises the input events while the pointer acts on it (X and Y
// are pixels of the surface) and LostFocus when another window takes the
// input focus from it. This class keeps the window's state; a backend with
// real windows derives from it and mirrors each change onto its window.
class PopupWindow : public TopLevelWindow {
 public:
  explicit PopupWindow(std::string name = "");
  ~PopupWindow() override;

  const std::string& Name() const { return name_; }

  // The window's image, sized by Move.
  Canvas& Surface() { return surface_; }
  const Canvas& Surface() const { return surface_; }
  // Screen pixels, right and bottom one past the last pixel.
  RectL WindowRect() const { return rect_; }

  void Move(int32_t x, int32_t y, int32_t width, int32_t height) override;  // error 5 below 0
  // Showing takes the input focus; hiding the focused window loses it.
  void Show(bool visible) override;
  bool Visible() const override { return visible_; }
  // Also brings the window to the top of its band (topmost or not).
  void Topmost(bool on) override;
  bool Topmost() const override { return topmost_; }
  void ToolWindow(bool on) override { toolWindow_ = on; }
  bool ToolWindow() const override { return toolWindow_; }
  void Layered(bool on) override { layered_ = on; }
  bool Layered() const override { return layered_; }
  void Alpha(uint8_t alpha) override { alpha_ = alpha; }
  uint8_t Alpha() const override { return alpha_; }
  void DropShadow(bool on) override { dropShadow_ = on; }
  bool DropShadow() const override { return dropShadow_; }
  // The surface is read whenever the screen is drawn, so nothing is pending.
  void Redraw() override {}

  // The opacity the window is drawn with: Alpha when layered, else 255.
  uint8_t EffectiveAlpha() const { return layered_ ? alpha_ : 255; }

  Event<int16_t /*Button*/, int16_t /*Shift*/, float /*X*/, float /*Y*/> MouseDown;
  Event<int16_t /*Button*/, int16_t /*Shift*/, float /*X*/, float /*Y*/> MouseMove;
  Event<int16_t /*Button*/, int16_t /*Shift*/, float /*X*/, float /*Y*/> MouseUp;
  // The press just raised as MouseDown was the second of a double click.
  Event<int16_t /*Button*/, int16_t /*Shift*/, float /*X*/, float /*Y*/> DblClick;
  // A press and release of the left button on the window, after MouseUp.
  Event<> Click;
  // The wheel turned over the window, in notches positive away from the user.
  Event<int16_t /*Notches*/> MouseWheel;
  // Keys pressed while the window has the input focus (a menu's keyboard).
  Event<int16_t /*KeyCode*/, int16_t /*Shift*/> KeyDown;
  Event<int16_t /*KeyAscii*/> KeyPress;

  // The owner of the window (a form) may need its controls to stay alive while
  // one of this window's events runs, as a handler may remove them. The window
  // system holds what the guard returns for the duration of each event.
  void OwnerGuard(std::function<std::shared_ptr<void>()> guard) { guard_ = std::move(guard); }
  std::shared_ptr<void> HoldOwner() const { return guard_ ? guard_() : nullptr; }

 private:
  friend class WindowSystem;

  std::string name_;
  WindowSystem* system_ = nullptr;  // cleared by the window system when it goes first
  Canvas surface_{0, 0};
  RectL rect_;
  bool visible_ = false;
  bool topmost_ = false;
  bool toolWindow_ = false;
  bool layered_ = false;
  bool dropShadow_ = false;
  uint8_t alpha_ = 255;
  std::function<std::shared_ptr<void>()> guard_;
};

}  // namespace velt
