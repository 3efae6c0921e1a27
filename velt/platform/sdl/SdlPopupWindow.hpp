#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "velt/platform/PopupWindow.hpp"

namespace velt {

class SdlFrame;
class SdlWindowSystem;

// A pop-up as an SDL window: borderless, above the other windows, outside the
// task bar, and shown without taking the activation from the form. It mirrors
// every change of the window's state onto its SDL window; the surface reaches
// the screen with the window system's next present. Drop shadows are left to
// the desktop, so DropShadow stays false; opacity works where the desktop
// composites windows and is skipped elsewhere.
class SdlPopupWindow final : public PopupWindow {
 public:
  SdlPopupWindow(SdlWindowSystem& system, std::string name);
  ~SdlPopupWindow() override;

  using PopupWindow::Alpha;
  using PopupWindow::DropShadow;
  using PopupWindow::Layered;
  using PopupWindow::Topmost;

  void Move(int32_t x, int32_t y, int32_t width, int32_t height) override;
  void Show(bool visible) override;
  void Topmost(bool on) override;
  void Layered(bool on) override;
  void Alpha(uint8_t alpha) override;
  void DropShadow(bool) override {}
  void Redraw() override;

  // For the window system.
  uint32_t WindowId() const;
  SdlFrame* Frame() const { return frame_.get(); }
  // Draws the surface when it changed (or always when forced, or after the
  // window was uncovered); returns whether it drew.
  bool Present(bool force);
  void Exposed() { exposed_ = true; }
  // The window system goes first: the SDL window goes with it.
  void Orphan();

 private:
  void mirrorVisibility();
  void applyOpacity();

  SdlWindowSystem* sdl_;
  std::unique_ptr<SdlFrame> frame_;
  bool exposed_ = false;
};

}  // namespace velt
