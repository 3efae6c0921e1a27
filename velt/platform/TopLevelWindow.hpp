#pragma once

#include <cstdint>

#include "velt/platform/Event.hpp"

namespace velt {

// A window of its own on the desktop, as the pop-up windows (the menu window,
// the drop-down panel) use it. Each window system backend implements it. The
// calls are requests: a window system that cannot do one (a drop shadow, say)
// ignores it quietly, and the getters then report what the window really has.
class TopLevelWindow {
 public:
  // The classic extended-style and class-style bits these properties stand
  // for, for backends and code that keep a combined style word.
  static constexpr uint32_t kExStyleTopmost = 0x8;
  static constexpr uint32_t kExStyleToolWindow = 0x80;
  static constexpr uint32_t kExStyleLayered = 0x80000;
  static constexpr uint32_t kClassStyleDropShadow = 0x20000;

  virtual ~TopLevelWindow();

  // Screen position and size, in pixels.
  virtual void Move(int32_t x, int32_t y, int32_t width, int32_t height) = 0;

  virtual void Show(bool visible) = 0;
  virtual bool Visible() const = 0;

  // Stays above ordinary windows.
  virtual void Topmost(bool on) = 0;
  virtual bool Topmost() const = 0;

  // A helper window: no task-bar entry, no window-switcher entry.
  virtual void ToolWindow(bool on) = 0;
  virtual bool ToolWindow() const = 0;

  // A layered window is drawn with its Alpha; without the layered style the
  // window is opaque whatever Alpha holds.
  virtual void Layered(bool on) = 0;
  virtual bool Layered() const = 0;

  // Opacity, 0 transparent to 255 opaque.
  virtual void Alpha(uint8_t alpha) = 0;
  virtual uint8_t Alpha() const = 0;

  virtual void DropShadow(bool on) = 0;
  virtual bool DropShadow() const = 0;

  // Repaints the whole window, frame included.
  virtual void Redraw() = 0;

  // Raised when the window loses the input focus.
  Event<> LostFocus;

 protected:
  TopLevelWindow() = default;
  TopLevelWindow(const TopLevelWindow&) = delete;
  TopLevelWindow& operator=(const TopLevelWindow&) = delete;
};

}  // namespace velt
