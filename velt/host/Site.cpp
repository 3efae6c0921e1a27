#include "velt/host/Site.hpp"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <utility>

#include "velt/host/FormWindow.hpp"
#include "velt/host/HostTimer.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/Font.hpp"
#include "velt/platform/PopupWindow.hpp"
#include "velt/platform/Rounding.hpp"
#include "velt/platform/Types.hpp"
#include "velt/platform/UserControl.hpp"

namespace velt {

namespace {

// Positions beyond this many pixels would not fit in twips.
constexpr int32_t kMaxPosition = 100'000'000;

std::string describe(const RectL& b) {
  return "(" + std::to_string(b.Left) + ", " + std::to_string(b.Top) + ") " +
         std::to_string(b.Width()) + " x " + std::to_string(b.Height());
}

void checkBounds(const std::string& where, const RectL& bounds) {
  if (bounds.Width() < 0 || bounds.Height() < 0 || bounds.Width() > Site::kMaxSize ||
      bounds.Height() > Site::kMaxSize)
    throw Error(errInvalidPropertyValue, where + ": size of " + describe(bounds) +
                                             " is outside 0.." + std::to_string(Site::kMaxSize) +
                                             " pixels");
  if (std::abs(static_cast<int64_t>(bounds.Left)) > kMaxPosition ||
      std::abs(static_cast<int64_t>(bounds.Top)) > kMaxPosition)
    throw Error(errOverflow, where + ": position of " + describe(bounds) + " is too far out");
}

int32_t twipsToPixels(int32_t twips) {
  return static_cast<int32_t>(RoundHalfEven(static_cast<double>(twips) / kDefaultTwipsPerPixel));
}

}  // namespace

Site::Site(FormWindow& form, Site* parent, std::string name, std::shared_ptr<UserControl> control,
           RectL bounds)
    : form_(form),
      parent_(parent),
      name_(std::move(name)),
      bounds_(bounds),
      surface_(bounds.Width(), bounds.Height()),
      control_(std::move(control)) {
  font_ = AmbientFont();
}

Site::~Site() = default;

RectL Site::PlacedRect(int32_t left, int32_t top, int32_t width, int32_t height) {
  const int64_t right = static_cast<int64_t>(left) + width;
  const int64_t bottom = static_cast<int64_t>(top) + height;
  if (std::abs(right) > INT32_MAX / 2 || std::abs(bottom) > INT32_MAX / 2)
    throw Error(errOverflow, "a control placed at (" + std::to_string(left) + ", " +
                                 std::to_string(top) + ") sized " + std::to_string(width) + " x " +
                                 std::to_string(height) + " is too far out");
  return RectL{left, top, static_cast<int32_t>(right), static_cast<int32_t>(bottom)};
}

void Site::CheckPlacement(const char* where, const UserControl* control, const std::string& name,
                          const RectL& bounds) {
  if (!control)
    throw Error(errObjectNotSet, std::string(where) + ": no control given for '" + name + "'");
  if (name.empty())
    throw Error(errInvalidProcedureCall, std::string(where) + ": the control's name is empty");
  checkBounds(std::string(where) + " '" + name + "'", bounds);
}

void Site::Create(const PropertyBag* stored) {
  control_->Initialize(*this);
  if (stored) {
    bag_ = *stored;
    control_->ReadProperties(bag_);
  } else {
    control_->InitProperties();
  }
  control_->Resize();
}

std::exception_ptr Site::Close(bool terminate) {
  if (closed_) return nullptr;
  std::exception_ptr failure;
  auto attempt = [&failure](auto&& step) {
    try {
      step();
    } catch (...) {
      if (!failure) failure = std::current_exception();
    }
  };
  if (terminate) attempt([this] { control_->Terminate(); });
  closed_ = true;
  form_.Touch();
  for (const std::weak_ptr<HostTimer>& weak : timers_)
    if (std::shared_ptr<HostTimer> timer = weak.lock()) timer->Detach();
  timers_.clear();
  std::vector<std::weak_ptr<PopupWindow>> popups = std::move(popups_);
  popups_.clear();
  for (const std::weak_ptr<PopupWindow>& weak : popups) {
    if (std::shared_ptr<PopupWindow> popup = weak.lock()) {
      attempt([&popup] { popup->Show(false); });
      form_.ReleasePopup(*popup);
    }
  }
  for (const std::shared_ptr<Site>& child : children_) {
    std::exception_ptr childFailure = child->Close(terminate);
    if (!failure) failure = childFailure;
  }
  return failure;
}

DispatchScope Site::EnterDispatch() {
  return form_.Enter();
}

Site* Site::FindChild(const std::string& name) const {
  for (const std::shared_ptr<Site>& child : children_)
    if (child->Name() == name) return child.get();
  return nullptr;
}

PropertyBag Site::Save() {
  DispatchScope scope = EnterDispatch();
  PropertyBag bag;
  control_->WriteProperties(bag);
  bag_ = bag;
  return bag;
}

PointL Site::OriginInForm() const {
  PointL origin;
  for (const Site* site = this; site; site = site->parent_) {
    origin.x += site->bounds_.Left;
    origin.y += site->bounds_.Top;
  }
  return origin;
}

void Site::MovePixels(int32_t left, int32_t top, int32_t width, int32_t height) {
  const RectL bounds = PlacedRect(left, top, width, height);
  checkBounds("Move '" + name_ + "'", bounds);
  const bool resized = width != bounds_.Width() || height != bounds_.Height();
  bounds_ = bounds;
  form_.Touch();
  if (!resized) return;
  surface_.Resize(width, height);
  DispatchScope scope = EnterDispatch();
  control_->Resize();
}

bool Site::ReceivesInput() const {
  for (const Site* site = this; site; site = site->parent_)
    if (site->closed_ || !site->visible_ || !site->enabled_) return false;
  return true;
}

std::shared_ptr<velt::Font> Site::AmbientFont() const {
  if (parent_) return parent_->Font();
  return form_.Font()->Clone();
}

Canvas& Site::Surface() {
  form_.Touch();
  return surface_;
}

void Site::Visible(bool visible) {
  visible_ = visible;
  form_.Touch();
}

void Site::PropertyChanged(const std::string& propertyName) {
  changed_.push_back(propertyName);
}

void Site::EventRaised(const std::string& eventName, std::span<const Variant> arguments) {
  EventLog.Raise(eventName, arguments);
}

void Site::Font(std::shared_ptr<velt::Font> font) {
  if (!font) throw Error(errObjectNotSet, "Font of '" + name_ + "' set to nothing");
  font_ = std::move(font);
}

int32_t Site::Left() const {
  return bounds_.Left * kDefaultTwipsPerPixel;
}
int32_t Site::Top() const {
  return bounds_.Top * kDefaultTwipsPerPixel;
}
int32_t Site::Width() const {
  return bounds_.Width() * kDefaultTwipsPerPixel;
}
int32_t Site::Height() const {
  return bounds_.Height() * kDefaultTwipsPerPixel;
}

void Site::Move(int32_t left, int32_t top, int32_t width, int32_t height) {
  if (width < 0 || height < 0)
    throw Error(errInvalidPropertyValue, "Move '" + name_ + "': size " + std::to_string(width) +
                                             " x " + std::to_string(height) + " twips is negative");
  MovePixels(twipsToPixels(left), twipsToPixels(top), twipsToPixels(width), twipsToPixels(height));
}

void Site::MousePointer(int16_t shape) {
  mousePointer_ = CheckedMousePointer(shape, "MousePointer of '" + name_ + "'");
  form_.PointerChanged();
}

void Site::MouseIcon(std::shared_ptr<Picture> icon) {
  mouseIcon_ = std::move(icon);
  form_.PointerChanged();
}

void Site::PointerShape(int16_t shape) {
  if (shape == pointerShape_) return;
  pointerShape_ = shape;
  form_.PointerChanged();
}

PointerLook Site::Pointer() const {
  for (const Site* site = this; site; site = site->parent_) {
    if (site->mousePointer_ == mpCustom) return PointerLook{mpCustom, site->mouseIcon_};
    if (site->mousePointer_ != mpDefault) return PointerLook{site->mousePointer_, nullptr};
    if (site->pointerShape_ != mpDefault) return PointerLook{site->pointerShape_, nullptr};
  }
  return PointerLook{};
}

void Site::SetFocus() {
  DispatchScope scope = EnterDispatch();
  if (closed_) throw Error(errInvalidProcedureCall, "SetFocus: '" + name_ + "' has been removed");
  if (!ReceivesInput())
    throw Error(errInvalidProcedureCall,
                "SetFocus: '" + name_ + "' (or a control it sits on) is hidden or disabled");
  if (!form_.Closed()) form_.System().ActivateForm(form_);
  form_.Router().Focus(shared_from_this());
}

bool Site::HasFocus() const {
  return form_.Router().FocusWithin(*this);
}

std::shared_ptr<Timer> Site::CreateTimer(const std::string& name) {
  TimerQueue* queue = closed_ ? nullptr : &form_.System().Timers();
  auto timer =
      std::make_shared<HostTimer>(name, queue, weak_from_this(), form_.System().TimerFloorMs());
  std::erase_if(timers_, [](const std::weak_ptr<HostTimer>& weak) { return weak.expired(); });
  timers_.push_back(timer);
  return timer;
}

void Site::DoEvents() {
  // The window system may be held by the form alone, and the form may go
  // while the events run.
  std::shared_ptr<WindowSystem> system = form_.SharedSystem();
  system->DoEvents();
}

int32_t Site::TwipsPerPixelX() const {
  return kDefaultTwipsPerPixel;
}
int32_t Site::TwipsPerPixelY() const {
  return kDefaultTwipsPerPixel;
}

SizeL Site::ScreenSize() const {
  return form_.System().ScreenSize();
}
PointL Site::CursorPos() const {
  return form_.System().CursorPos();
}

int16_t Site::AsyncKeyState(int32_t virtualKey) const {
  return form_.System().AsyncKeyState(virtualKey);
}

CalendarDate Site::Today() const {
  return form_.System().Today();
}

Connection Site::ConnectTodayChanged(std::function<void()> handler) {
  return form_.System().TodayChanged.connect(std::move(handler));
}

RectL Site::WindowRect() const {
  const RectL form = form_.ScreenRect();
  const PointL origin = OriginInForm();
  const int32_t left = form.Left + origin.x;
  const int32_t top = form.Top + origin.y;
  return RectL{left, top, left + bounds_.Width(), top + bounds_.Height()};
}

int32_t Site::ShellExecute(const std::string& operation, const std::string& file,
                           const std::string& parameters, const std::string& directory,
                           int32_t showCmd) {
  std::shared_ptr<WindowSystem> system = form_.SharedSystem();
  return system->ShellExecute(operation, file, parameters, directory, showCmd);
}

velt::Clipboard& Site::Clipboard() {
  return form_.System().Clipboard();
}

ControlHost& Site::AddChild(std::shared_ptr<UserControl> control, const std::string& name,
                            int32_t left, int32_t top, int32_t width, int32_t height) {
  const RectL bounds = PlacedRect(left, top, width, height);
  CheckPlacement("AddChild", control.get(), name, bounds);
  if (FindChild(name))
    throw Error(errKeyAlreadyExists,
                "AddChild: '" + name_ + "' already has a part named '" + name + "'");
  DispatchScope scope = EnterDispatch();
  auto child = std::make_shared<Site>(form_, this, name, std::move(control), bounds);
  children_.push_back(child);
  try {
    child->Create(nullptr);
  } catch (...) {
    std::erase(children_, child);
    child->Close(false);
    form_.Retire(child);
    throw;
  }
  if (closed_) child->Close(true);
  return *child;
}

std::shared_ptr<PopupWindow> Site::CreatePopup(const std::string& name) {
  std::shared_ptr<PopupWindow> popup = form_.CreatePopup(name, !closed_);
  if (!closed_) popups_.push_back(popup);
  return popup;
}

}  // namespace velt
