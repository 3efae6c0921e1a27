#include "velt/platform/PopupWindow.hpp"

#include <string>
#include <utility>

#include "velt/platform/Error.hpp"
#include "velt/platform/WindowSystem.hpp"

namespace velt {

PopupWindow::PopupWindow(std::string name) : name_(std::move(name)) {}

PopupWindow::~PopupWindow() {
  if (system_) system_->popupGone(this);
}

void PopupWindow::Move(int32_t x, int32_t y, int32_t width, int32_t height) {
  if (width < 0 || height < 0)
    throw Error(errInvalidProcedureCall, "PopupWindow::Move: size " + std::to_string(width) +
                                             " x " + std::to_string(height) + " of window '" +
                                             name_ + "' is negative");
  if (width != rect_.Width() || height != rect_.Height()) surface_.Resize(width, height);
  rect_ = RectL{x, y, x + width, y + height};
}

void PopupWindow::Show(bool visible) {
  if (visible == visible_) return;
  visible_ = visible;
  if (!system_) return;
  if (visible)
    system_->popupShown(*this);
  else
    system_->popupHidden(*this);
}

void PopupWindow::Topmost(bool on) {
  topmost_ = on;
  // As SetWindowPos with HWND_TOPMOST does, the call also brings it to the top.
  if (system_) system_->popupRaised(*this);
}

}  // namespace velt
