#include "velt/platform/WindowSystem.hpp"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "velt/platform/Error.hpp"
#include "velt/platform/MemoryClipboard.hpp"
#include "velt/platform/PopupWindow.hpp"
#include "velt/platform/Shell.hpp"

namespace velt {

namespace {

constexpr int32_t kVkLeftButton = 1;
constexpr int32_t kVkRightButton = 2;
constexpr int32_t kVkMiddleButton = 4;
constexpr int32_t kVkShift = 16;
constexpr int32_t kVkControl = 17;
constexpr int32_t kVkAlt = 18;

bool contains(const RectL& rect, PointL point) {
  return point.x >= rect.Left && point.x < rect.Right && point.y >= rect.Top &&
         point.y < rect.Bottom;
}

float relative(int32_t screen, int32_t origin) {
  return static_cast<float>(screen - origin);
}

}  // namespace

WindowSystem::WindowSystem(std::unique_ptr<velt::Clock> clock)
    : clock_(std::move(clock)), timers_(*clock_) {
  if (!clock_) throw Error(errObjectNotSet, "WindowSystem: no clock given");
}

WindowSystem::~WindowSystem() {
  for (PopupEntry& entry : popups_)
    entry.window->system_ = nullptr;
}

bool WindowSystem::KeyHeld(int32_t keyCode) const {
  return keysHeld_.count(keyCode) != 0;
}

int16_t WindowSystem::AsyncKeyState(int32_t virtualKey) const {
  bool held = false;
  switch (virtualKey) {
    case kVkLeftButton:
    case kVkRightButton:
    case kVkMiddleButton:
      held = (MouseButtons() & virtualKey) != 0;
      break;
    default:
      held = KeyHeld(virtualKey);
  }
  return held ? kKeyHeld : int16_t{0};
}

int16_t WindowSystem::ShiftState() const {
  int16_t shift = 0;
  if (KeyHeld(kVkShift)) shift |= 1;
  if (KeyHeld(kVkControl)) shift |= 2;
  if (KeyHeld(kVkAlt)) shift |= 4;
  return shift;
}

std::shared_ptr<PopupWindow> WindowSystem::CreatePopup(const std::string& name) {
  std::shared_ptr<PopupWindow> popup = makePopup(name);
  if (!popup) throw Error(errObjectNotSet, "CreatePopup: the window system made no window");
  popup->system_ = this;
  popups_.push_back(PopupEntry{popup.get(), popup});
  return popup;
}

std::shared_ptr<PopupWindow> WindowSystem::makePopup(const std::string& name) {
  return std::make_shared<PopupWindow>(name);
}

void WindowSystem::AttachForm(FormClient& form) {
  if (attached(&form)) return;
  formAttached(form);
  forms_.push_back(&form);
  if (!activeForm_) activeForm_ = &form;
}

void WindowSystem::DetachForm(FormClient& form) {
  if (attached(&form)) formDetached(form);
  std::erase(forms_, &form);
  if (captureForm_ == &form) captureForm_ = nullptr;
  if (activeForm_ == &form) activeForm_ = forms_.empty() ? nullptr : forms_.back();
}

void WindowSystem::ActivateForm(FormClient& form) {
  auto self = weak_from_this().lock();
  activate(Target{&form, nullptr});
}

void WindowSystem::FormChanged(FormClient&) {}

void WindowSystem::RefreshPointer() {
  const PointL screen = CursorPos();
  const Target target = mouseTarget(screen);
  PointerLook look;
  if (!target.popup && attached(target.form)) {
    const RectL rect = target.form->ScreenRect();
    look = target.form->PointerAt(screen.x - rect.Left, screen.y - rect.Top);
  }
  if (look == pointer_) return;
  pointer_ = std::move(look);
  showPointer(pointer_);
}

int32_t WindowSystem::ShellExecute(const std::string& operation, const std::string& file,
                                   const std::string& parameters, const std::string& directory,
                                   int32_t showCmd) {
  return Shell::Execute(operation, file, parameters, directory, showCmd);
}

velt::Clipboard& WindowSystem::Clipboard() {
  if (!clipboard_) clipboard_ = std::make_unique<MemoryClipboard>();
  return *clipboard_;
}

std::vector<WindowSystem::StackedWindow> WindowSystem::Stack() const {
  std::vector<StackedWindow> stack;
  for (FormClient* form : forms_)
    stack.push_back(StackedWindow{form, nullptr});
  for (bool topmostBand : {false, true})
    for (const PopupEntry& entry : popups_)
      if (auto popup = entry.weak.lock(); popup && popup->Topmost() == topmostBand)
        stack.push_back(StackedWindow{nullptr, popup});
  return stack;
}

void WindowSystem::Post(std::function<void()> work) {
  if (!work) throw Error(errObjectNotSet, "WindowSystem::Post: the work is empty");
  posted_.push_back(std::move(work));
}

void WindowSystem::runPostedWork() {
  auto self = weak_from_this().lock();
  for (size_t count = posted_.size(); count > 0 && !posted_.empty(); --count) {
    std::function<void()> work = std::move(posted_.front());
    posted_.pop_front();
    work();
  }
}

void WindowSystem::deliverMouseDown(int16_t button, int16_t shift, PointL screen, int32_t clicks) {
  auto self = weak_from_this().lock();
  Target target = mouseTarget(screen);
  if (!capturing_) {
    capturing_ = true;
    captureForm_ = target.form;
    capturePopup_ = target.popup;
  }
  const bool doubleClick = isDoubleClick(button, screen, clicks, target);
  activate(target);
  if (std::shared_ptr<PopupWindow> popup = target.popup) {
    if (button == kVkLeftButton) clickPopup_ = popup;
    if (!popup->Visible()) return;
    auto hold = popup->HoldOwner();
    const RectL rect = popup->WindowRect();
    const float x = relative(screen.x, rect.Left);
    const float y = relative(screen.y, rect.Top);
    popup->MouseDown.Raise(button, shift, x, y);
    if (doubleClick && popup->Visible()) popup->DblClick.Raise(button, shift, x, y);
  } else if (target.form && attached(target.form)) {
    const RectL rect = target.form->ScreenRect();
    target.form->OnMouseDown(button, shift, screen.x - rect.Left, screen.y - rect.Top);
    if (doubleClick && attached(target.form))
      target.form->OnDblClick(button, shift, screen.x - rect.Left, screen.y - rect.Top);
  }
  RefreshPointer();
}

bool WindowSystem::isDoubleClick(int16_t button, PointL screen, int32_t clicks,
                                 const Target& target) {
  const void* window = target.popup ? static_cast<const void*>(target.popup.get())
                                    : static_cast<const void*>(target.form);
  const int64_t now = NowMs();
  bool second = false;
  if (clicks > 0) {
    second = clicks % 2 == 0 && window == lastPress_.window;
  } else {
    second = !lastPress_.ended && button == lastPress_.button && window == lastPress_.window &&
             now - lastPress_.timeMs <= kDoubleClickMs &&
             std::abs(screen.x - lastPress_.point.x) <= kDoubleClickDistance &&
             std::abs(screen.y - lastPress_.point.y) <= kDoubleClickDistance;
  }
  lastPress_ = Press{button, screen, now, window, second};
  return second;
}

void WindowSystem::deliverMouseMove(int16_t shift, PointL screen) {
  auto self = weak_from_this().lock();
  Target target = mouseTarget(screen);
  const auto buttons = static_cast<int16_t>(MouseButtons());
  if (std::shared_ptr<PopupWindow> popup = target.popup) {
    if (!popup->Visible()) return;
    auto hold = popup->HoldOwner();
    const RectL rect = popup->WindowRect();
    popup->MouseMove.Raise(buttons, shift, relative(screen.x, rect.Left),
                           relative(screen.y, rect.Top));
  } else if (target.form) {
    const RectL rect = target.form->ScreenRect();
    target.form->OnMouseMove(buttons, shift, screen.x - rect.Left, screen.y - rect.Top);
  }
  RefreshPointer();
}

void WindowSystem::deliverMouseUp(int16_t button, int16_t shift, PointL screen) {
  auto self = weak_from_this().lock();
  Target target = mouseTarget(screen);
  if (MouseButtons() == 0) {
    capturing_ = false;
    captureForm_ = nullptr;
    capturePopup_.reset();
  }
  bool click = false;
  if (button == kVkLeftButton) {
    click = target.popup && clickPopup_.lock() == target.popup &&
            contains(target.popup->WindowRect(), screen);
    clickPopup_.reset();
  }
  if (std::shared_ptr<PopupWindow> popup = target.popup) {
    if (!popup->Visible()) return;
    auto hold = popup->HoldOwner();
    const RectL rect = popup->WindowRect();
    popup->MouseUp.Raise(button, shift, relative(screen.x, rect.Left),
                         relative(screen.y, rect.Top));
    if (click) popup->Click.Raise();
  } else if (target.form) {
    const RectL rect = target.form->ScreenRect();
    target.form->OnMouseUp(button, shift, screen.x - rect.Left, screen.y - rect.Top);
  }
  RefreshPointer();
}

void WindowSystem::deliverMouseWheel(int16_t notches, int16_t shift, PointL screen) {
  auto self = weak_from_this().lock();
  const Target target = windowAt(screen);
  if (target.popup) {
    if (!target.popup->Visible()) return;
    auto hold = target.popup->HoldOwner();
    target.popup->MouseWheel.Raise(notches);
    return;
  }
  if (!target.form) return;
  const RectL rect = target.form->ScreenRect();
  target.form->OnMouseWheel(notches, shift, screen.x - rect.Left, screen.y - rect.Top);
}

void WindowSystem::deliverKeyDown(int16_t keyCode, int16_t shift) {
  auto self = weak_from_this().lock();
  keysHeld_.insert(keyCode);
  if (std::shared_ptr<PopupWindow> popup = focusPopup_.lock(); popup && popup->Visible()) {
    auto hold = popup->HoldOwner();
    popup->KeyDown.Raise(keyCode, shift);
  } else if (FormClient* form = keyTarget()) {
    form->OnKeyDown(keyCode, shift);
  }
}

void WindowSystem::deliverKeyUp(int16_t keyCode, int16_t shift) {
  auto self = weak_from_this().lock();
  keysHeld_.erase(keyCode);
  if (FormClient* form = keyTarget()) form->OnKeyUp(keyCode, shift);
}

void WindowSystem::deliverKeyPress(int16_t charCode) {
  auto self = weak_from_this().lock();
  if (std::shared_ptr<PopupWindow> popup = focusPopup_.lock(); popup && popup->Visible()) {
    auto hold = popup->HoldOwner();
    popup->KeyPress.Raise(charCode);
  } else if (FormClient* form = keyTarget()) {
    form->OnKeyPress(charCode);
  }
}

void WindowSystem::deliverComposition(const std::string& text) {
  auto self = weak_from_this().lock();
  if (std::shared_ptr<PopupWindow> popup = focusPopup_.lock(); popup && popup->Visible()) return;
  if (FormClient* form = keyTarget()) form->OnComposition(text);
}

void WindowSystem::popupShown(PopupWindow& popup) {
  raiseToTop(popup);
  if (auto shared = lockPopup(popup)) focusPopup(shared);
}

void WindowSystem::popupHidden(PopupWindow& popup) {
  std::shared_ptr<PopupWindow> focused = focusPopup_.lock();
  if (focused.get() != &popup) return;
  focusPopup_.reset();
  auto hold = focused->HoldOwner();
  focused->LostFocus.Raise();
}

void WindowSystem::popupRaised(PopupWindow& popup) {
  raiseToTop(popup);
}

void WindowSystem::popupGone(PopupWindow* popup) {
  std::erase_if(popups_, [popup](const PopupEntry& entry) { return entry.window == popup; });
}

std::shared_ptr<PopupWindow> WindowSystem::lockPopup(PopupWindow& popup) const {
  for (const PopupEntry& entry : popups_)
    if (entry.window == &popup) return entry.weak.lock();
  return nullptr;
}

void WindowSystem::raiseToTop(PopupWindow& popup) {
  auto it = std::find_if(popups_.begin(), popups_.end(),
                         [&popup](const PopupEntry& entry) { return entry.window == &popup; });
  if (it == popups_.end()) return;
  PopupEntry entry = *it;
  popups_.erase(it);
  popups_.push_back(entry);
}

WindowSystem::Target WindowSystem::windowAt(PointL screen) const {
  const std::vector<StackedWindow> stack = Stack();
  for (auto it = stack.rbegin(); it != stack.rend(); ++it) {
    if (it->popup) {
      if (it->popup->Visible() && contains(it->popup->WindowRect(), screen))
        return Target{nullptr, it->popup};
    } else if (contains(it->form->ScreenRect(), screen)) {
      return Target{it->form, nullptr};
    }
  }
  return Target{};
}

WindowSystem::Target WindowSystem::mouseTarget(PointL screen) const {
  if (!capturing_) return windowAt(screen);
  return Target{attached(captureForm_) ? captureForm_ : nullptr, capturePopup_.lock()};
}

bool WindowSystem::attached(FormClient* form) const {
  return form && std::find(forms_.begin(), forms_.end(), form) != forms_.end();
}

void WindowSystem::activate(const Target& target) {
  if (target.popup) {
    if (target.popup->Visible()) focusPopup(target.popup);
    return;
  }
  if (target.form && attached(target.form)) {
    activeForm_ = target.form;
    std::erase(forms_, target.form);
    forms_.push_back(target.form);
  }
  focusPopup(nullptr);
}

void WindowSystem::focusPopup(const std::shared_ptr<PopupWindow>& popup) {
  std::shared_ptr<PopupWindow> old = focusPopup_.lock();
  if (old == popup) return;
  focusPopup_ = popup;
  if (old) {
    auto hold = old->HoldOwner();
    old->LostFocus.Raise();
  }
}

WindowSystem::FormClient* WindowSystem::keyTarget() const {
  if (auto popup = focusPopup_.lock(); popup && popup->Visible()) return nullptr;
  if (attached(activeForm_)) return activeForm_;
  return forms_.empty() ? nullptr : forms_.back();
}

}  // namespace velt
