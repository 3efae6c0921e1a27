#include "velt/platform/sdl/SdlPopupWindow.hpp"

#include <SDL.h>

#include <utility>

#include "velt/platform/sdl/SdlFrame.hpp"
#include "velt/platform/sdl/SdlWindowSystem.hpp"

namespace velt {

SdlPopupWindow::SdlPopupWindow(SdlWindowSystem& system, std::string name)
    : PopupWindow(std::move(name)),
      sdl_(&system),
      frame_(std::make_unique<SdlFrame>(SdlFrame::Kind::Popup, Name(), WindowRect())) {
  sdl_->popupMade(*this);
}

SdlPopupWindow::~SdlPopupWindow() {
  if (sdl_) sdl_->popupGone(*this);
}

void SdlPopupWindow::Move(int32_t x, int32_t y, int32_t width, int32_t height) {
  PopupWindow::Move(x, y, width, height);
  if (!frame_) return;
  frame_->Place(WindowRect());
  if (frame_->OnScreen()) exposed_ = true;
  sdl_->Invalidate();
}

void SdlPopupWindow::Show(bool visible) {
  // The window system's bookkeeping first: it raises LostFocus on the window
  // that had the focus, and a handler may change this window again.
  try {
    PopupWindow::Show(visible);
  } catch (...) {
    mirrorVisibility();
    throw;
  }
  mirrorVisibility();
}

void SdlPopupWindow::mirrorVisibility() {
  if (!frame_ || frame_->Shown() == Visible()) return;
  frame_->Show(Visible());
  if (Visible()) {
    Present(true);
  } else {
    sdl_->popupHidden(*this);
  }
  sdl_->Invalidate();
}

void SdlPopupWindow::Topmost(bool on) {
  PopupWindow::Topmost(on);
  if (!frame_) return;
  SDL_SetWindowAlwaysOnTop(frame_->Window(), on ? SDL_TRUE : SDL_FALSE);
  if (frame_->OnScreen()) SDL_RaiseWindow(frame_->Window());
}

void SdlPopupWindow::Layered(bool on) {
  PopupWindow::Layered(on);
  applyOpacity();
}

void SdlPopupWindow::Alpha(uint8_t alpha) {
  PopupWindow::Alpha(alpha);
  applyOpacity();
}

void SdlPopupWindow::applyOpacity() {
  // Fails without a compositing desktop: the window then stays opaque.
  if (frame_) SDL_SetWindowOpacity(frame_->Window(), static_cast<float>(EffectiveAlpha()) / 255.0f);
}

void SdlPopupWindow::Redraw() {
  Present(true);
}

uint32_t SdlPopupWindow::WindowId() const {
  return frame_ ? frame_->Id() : 0;
}

bool SdlPopupWindow::Present(bool force) {
  if (!frame_ || !Visible()) return false;
  const bool drew = frame_->Draw(Surface(), force || exposed_);
  exposed_ = false;
  return drew;
}

void SdlPopupWindow::Orphan() {
  frame_.reset();
  sdl_ = nullptr;
}

}  // namespace velt
