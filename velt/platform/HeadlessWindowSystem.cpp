#include "velt/platform/HeadlessWindowSystem.hpp"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "velt/platform/Error.hpp"
#include "velt/platform/Png.hpp"
#include "velt/platform/PopupWindow.hpp"
#include "velt/platform/Shell.hpp"

namespace velt {

namespace {

constexpr int32_t kShadowOffset = 4;

void checkButton(const char* where, int16_t button) {
  if (button != 1 && button != 2 && button != 4)
    throw Error(errInvalidProcedureCall, std::string("HeadlessWindowSystem::") + where +
                                             ": button " + std::to_string(button) +
                                             " is not 1, 2 or 4");
}

void checkTime(const char* where, int64_t milliseconds) {
  if (milliseconds < 0)
    throw Error(errInvalidProcedureCall, std::string("HeadlessWindowSystem::") + where + ": " +
                                             std::to_string(milliseconds) +
                                             " ms would move time back");
}

RectL intersect(const RectL& a, const RectL& b) {
  RectL r{std::max(a.Left, b.Left), std::max(a.Top, b.Top), std::min(a.Right, b.Right),
          std::min(a.Bottom, b.Bottom)};
  if (r.Right < r.Left) r.Right = r.Left;
  if (r.Bottom < r.Top) r.Bottom = r.Top;
  return r;
}

uint32_t blendChannel(uint32_t src, uint32_t dst, uint32_t alpha, int shift) {
  const uint32_t s = (src >> shift) & 0xFF;
  const uint32_t d = (dst >> shift) & 0xFF;
  return ((s * alpha + d * (255 - alpha) + 127) / 255) << shift;
}

uint32_t blend(uint32_t src, uint32_t dst, uint8_t alpha) {
  if (alpha == 255) return src;
  return blendChannel(src, dst, alpha, 16) | blendChannel(src, dst, alpha, 8) |
         blendChannel(src, dst, alpha, 0);
}

// Draws the image with its top-left corner at (x, y), blended with alpha.
void drawImage(Canvas& screen, const Canvas& image, int32_t x, int32_t y, uint8_t alpha) {
  const RectL screenRect{0, 0, screen.ScaleWidth(), screen.ScaleHeight()};
  const RectL area =
      intersect(screenRect, RectL{x, y, x + image.ScaleWidth(), y + image.ScaleHeight()});
  for (int32_t row = area.Top; row < area.Bottom; ++row) {
    const uint32_t* from = image.Pixels() + static_cast<size_t>(row - y) * image.ScaleWidth();
    uint32_t* to = screen.Pixels() + static_cast<size_t>(row) * screen.ScaleWidth();
    for (int32_t col = area.Left; col < area.Right; ++col)
      to[col] = blend(from[col - x], to[col], alpha);
  }
}

// Darkens the pixels of the rectangle to five eighths.
void darken(Canvas& screen, const RectL& rect) {
  const RectL area = intersect(RectL{0, 0, screen.ScaleWidth(), screen.ScaleHeight()}, rect);
  for (int32_t row = area.Top; row < area.Bottom; ++row) {
    uint32_t* to = screen.Pixels() + static_cast<size_t>(row) * screen.ScaleWidth();
    for (int32_t col = area.Left; col < area.Right; ++col) {
      const uint32_t p = to[col];
      to[col] = ((((p >> 16) & 0xFF) * 5 / 8) << 16) | ((((p >> 8) & 0xFF) * 5 / 8) << 8) |
                ((p & 0xFF) * 5 / 8);
    }
  }
}

// A band along the right edge and one along the bottom edge, offset down and right.
void drawShadow(Canvas& screen, const RectL& window) {
  if (window.Width() == 0 || window.Height() == 0) return;
  darken(screen, RectL{window.Right, window.Top + kShadowOffset, window.Right + kShadowOffset,
                       window.Bottom + kShadowOffset});
  darken(screen, RectL{window.Left + kShadowOffset, window.Bottom, window.Right,
                       window.Bottom + kShadowOffset});
}

}  // namespace

HeadlessWindowSystem::HeadlessWindowSystem(int32_t screenWidth, int32_t screenHeight)
    : HeadlessWindowSystem(new VirtualClock, screenWidth, screenHeight) {}

HeadlessWindowSystem::HeadlessWindowSystem(VirtualClock* clock, int32_t screenWidth,
                                           int32_t screenHeight)
    : WindowSystem(std::unique_ptr<velt::Clock>(clock)),
      virtualClock_(clock),
      screen_{screenWidth, screenHeight} {
  if (screenWidth <= 0 || screenHeight <= 0)
    throw Error(errInvalidProcedureCall, "HeadlessWindowSystem: screen size " +
                                             std::to_string(screenWidth) + " x " +
                                             std::to_string(screenHeight) + " is not positive");
}

void HeadlessWindowSystem::SetButtons(int32_t mask) {
  if (mask < 0 || mask > 7)
    throw Error(errInvalidProcedureCall, "HeadlessWindowSystem::SetButtons: mask " +
                                             std::to_string(mask) + " is outside 0..7");
  buttons_ = mask;
  idleCalls_ = 0;
}

void HeadlessWindowSystem::SetToday(const CalendarDate& date) {
  if (!date.Exists())
    throw Error(errInvalidProcedureCall,
                "HeadlessWindowSystem::SetToday: " + std::to_string(date.Year) + "-" +
                    std::to_string(date.Month) + "-" + std::to_string(date.Day) +
                    " is not a day of the calendar");
  if (date == today_) return;
  today_ = date;
  TodayChanged.Raise();
}

void HeadlessWindowSystem::AdvanceClock(int64_t milliseconds) {
  checkTime("AdvanceClock", milliseconds);
  auto self = weak_from_this().lock();
  const int64_t target = virtualClock_->NowMs() + milliseconds;
  for (;;) {
    const std::optional<int64_t> next = Timers().NextDue();
    if (!next || *next > target) break;
    // A timer held up by its own long callback may be overdue; time never goes back.
    if (*next > virtualClock_->NowMs()) virtualClock_->Advance(*next - virtualClock_->NowMs());
    idleCalls_ = 0;
    runDueTimers();
  }
  if (virtualClock_->NowMs() < target) virtualClock_->Advance(target - virtualClock_->NowMs());
  idleCalls_ = 0;
}

void HeadlessWindowSystem::PostMouseMove(int32_t x, int32_t y) {
  post(ScriptItem{ScriptKind::MouseMove, 0, 0, PointL{x, y}, 0, {}});
}

void HeadlessWindowSystem::PostMouseDown(int16_t button, int32_t x, int32_t y, int16_t shift) {
  checkButton("PostMouseDown", button);
  post(ScriptItem{ScriptKind::MouseDown, button, shift, PointL{x, y}, 0, {}});
}

void HeadlessWindowSystem::PostMouseUp(int16_t button, int32_t x, int32_t y, int16_t shift) {
  checkButton("PostMouseUp", button);
  post(ScriptItem{ScriptKind::MouseUp, button, shift, PointL{x, y}, 0, {}});
}

void HeadlessWindowSystem::PostMouseWheel(int32_t x, int32_t y, int16_t notches, int16_t shift) {
  post(ScriptItem{ScriptKind::MouseWheel, notches, shift, PointL{x, y}, 0, {}});
}

void HeadlessWindowSystem::PostKeyDown(int16_t keyCode, int16_t shift) {
  post(ScriptItem{ScriptKind::KeyDown, keyCode, shift, {}, 0, {}});
}

void HeadlessWindowSystem::PostKeyUp(int16_t keyCode, int16_t shift) {
  post(ScriptItem{ScriptKind::KeyUp, keyCode, shift, {}, 0, {}});
}

void HeadlessWindowSystem::PostKeyPress(int16_t charCode) {
  post(ScriptItem{ScriptKind::KeyPress, charCode, 0, {}, 0, {}});
}

void HeadlessWindowSystem::PostComposition(const std::string& text) {
  post(ScriptItem{ScriptKind::Composition, 0, 0, {}, 0, {}, text});
}

void HeadlessWindowSystem::PostWait(int64_t milliseconds) {
  checkTime("PostWait", milliseconds);
  post(ScriptItem{ScriptKind::Wait, 0, 0, {}, milliseconds, {}});
}

void HeadlessWindowSystem::PostAction(std::function<void()> action) {
  if (!action) throw Error(errObjectNotSet, "HeadlessWindowSystem::PostAction: no action given");
  post(ScriptItem{ScriptKind::Action, 0, 0, {}, 0, std::move(action)});
}

void HeadlessWindowSystem::post(ScriptItem item) {
  script_.push_back(std::move(item));
}

void HeadlessWindowSystem::DoEvents() {
  // The turn a timer tick makes while nothing else happens (a hover timer
  // through a long wait) costs a few checks, not a pass of the whole loop.
  if (script_.empty() && PendingWork() == 0 && !Timers().AnyDue()) {
    idleCalls_ = std::min(idleCalls_ + 1, 2);
    if (idleCalls_ == 2 && buttons_ != 0) releaseHeldButtons();
    return;
  }
  auto self = weak_from_this().lock();
  bool busy = PendingWork() != 0;
  if (!script_.empty()) {
    busy = true;
    // Taken off the queue first: the item's handlers may call DoEvents again.
    ScriptItem item = std::move(script_.front());
    script_.pop_front();
    run(item);
  }
  runPostedWork();
  if (Timers().RunDue() != 0) busy = true;
  idleCalls_ = busy ? 0 : std::min(idleCalls_ + 1, 2);
  if (idleCalls_ == 2 && buttons_ != 0) releaseHeldButtons();
}

void HeadlessWindowSystem::releaseHeldButtons() {
  idleCalls_ = 0;
  for (int16_t button : {int16_t{1}, int16_t{2}, int16_t{4}}) {
    if ((buttons_ & button) == 0) continue;
    buttons_ &= ~static_cast<int32_t>(button);
    deliverMouseUp(button, ShiftState(), cursor_);
  }
}

void HeadlessWindowSystem::RunUntilIdle() {
  auto self = weak_from_this().lock();
  do {
    DoEvents();
  } while (!script_.empty() || PendingWork() != 0);
}

void HeadlessWindowSystem::run(ScriptItem& item) {
  switch (item.kind) {
    case ScriptKind::MouseMove:
      cursor_ = item.point;
      deliverMouseMove(ShiftState(), item.point);
      break;
    case ScriptKind::MouseDown:
      cursor_ = item.point;
      buttons_ |= item.button;
      deliverMouseDown(item.button, item.shift, item.point);
      break;
    case ScriptKind::MouseUp:
      cursor_ = item.point;
      buttons_ &= ~static_cast<int32_t>(item.button);
      deliverMouseUp(item.button, item.shift, item.point);
      break;
    case ScriptKind::MouseWheel:
      cursor_ = item.point;
      deliverMouseWheel(item.button, item.shift, item.point);
      break;
    case ScriptKind::KeyDown:
      deliverKeyDown(item.button, item.shift);
      break;
    case ScriptKind::KeyUp:
      deliverKeyUp(item.button, item.shift);
      break;
    case ScriptKind::KeyPress:
      deliverKeyPress(item.button);
      break;
    case ScriptKind::Composition:
      deliverComposition(item.text);
      break;
    case ScriptKind::Wait:
      AdvanceClock(item.milliseconds);
      break;
    case ScriptKind::Action:
      item.action();
      break;
  }
}

int32_t HeadlessWindowSystem::ShellExecute(const std::string& operation, const std::string& file,
                                           const std::string& parameters,
                                           const std::string& directory, int32_t /*showCmd*/) {
  shellRequests_.push_back(ShellRequest{operation, file, parameters, directory});
  auto self = weak_from_this().lock();
  ShellOpened.Raise(shellRequests_.back());
  return Shell::kSucceeded;
}

Canvas HeadlessWindowSystem::CompositeScreen() {
  Canvas screen(screen_.width, screen_.height);
  screen.BackColor(kDesktopColor);
  for (const StackedWindow& window : Stack()) {
    if (window.form) {
      const RectL rect = window.form->ScreenRect();
      drawImage(screen, window.form->Image(), rect.Left, rect.Top, 255);
      continue;
    }
    const PopupWindow& popup = *window.popup;
    if (!popup.Visible()) continue;
    const RectL rect = popup.WindowRect();
    if (popup.DropShadow()) drawShadow(screen, rect);
    drawImage(screen, popup.Surface(), rect.Left, rect.Top, popup.EffectiveAlpha());
  }
  return screen;
}

void HeadlessWindowSystem::SavePng(const std::string& path) {
  const Canvas screen = CompositeScreen();
  Png::WriteRGB(path, screen.Pixels(), screen.ScaleWidth(), screen.ScaleHeight());
}

}  // namespace velt
