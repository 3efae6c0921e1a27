#include "velt/host/FormWindow.hpp"

#include <algorithm>
#include <exception>
#include <utility>

#include "velt/host/Site.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/Font.hpp"
#include "velt/platform/PopupWindow.hpp"

namespace velt {

namespace {

RectL intersect(const RectL& a, const RectL& b) {
  RectL r{std::max(a.Left, b.Left), std::max(a.Top, b.Top), std::min(a.Right, b.Right),
          std::min(a.Bottom, b.Bottom)};
  if (r.Right < r.Left) r.Right = r.Left;
  if (r.Bottom < r.Top) r.Bottom = r.Top;
  return r;
}

// Copies the part of the surface inside clip, its top-left corner at (x, y).
void copySurface(const Canvas& surface, Canvas& image, int32_t x, int32_t y, const RectL& clip) {
  const RectL area =
      intersect(clip, RectL{x, y, x + surface.ScaleWidth(), y + surface.ScaleHeight()});
  if (area.Width() == 0) return;
  for (int32_t row = area.Top; row < area.Bottom; ++row) {
    const uint32_t* from =
        surface.Pixels() + static_cast<size_t>(row - y) * surface.ScaleWidth() + (area.Left - x);
    uint32_t* to = image.Pixels() + static_cast<size_t>(row) * image.ScaleWidth() + area.Left;
    std::copy(from, from + area.Width(), to);
  }
}

}  // namespace

FormWindow::FormWindow(std::shared_ptr<WindowSystem> system, std::string name, int32_t width,
                       int32_t height)
    : system_(std::move(system)),
      name_(std::move(name)),
      font_(Font::Ambient()),
      image_(0, 0),
      router_(*this) {
  if (!system_) throw Error(errObjectNotSet, "Form '" + name_ + "': no window system given");
  if (width < 0 || height < 0)
    throw Error(errInvalidPropertyValue, "Form '" + name_ + "': size " + std::to_string(width) +
                                             " x " + std::to_string(height) + " is negative");
  rect_ = RectL{0, 0, width, height};
  system_->AttachForm(*this);
}

FormWindow::~FormWindow() {
  Close();
}

void FormWindow::Close() {
  if (closed_) return;
  closed_ = true;
  system_->DetachForm(*this);
  // Empty when called from the destructor; then the members release the sites.
  DispatchScope scope = Enter();
  std::vector<std::shared_ptr<Site>> sites = std::move(sites_);
  sites_.clear();
  sitesByName_.clear();
  for (const std::shared_ptr<Site>& site : sites) {
    site->Close(true);  // a control failing to terminate is dropped all the same
    retired_.push_back(site);
  }
  router_.Reset();
  std::vector<std::shared_ptr<PopupWindow>> popups = std::move(popups_);
  popups_.clear();
  for (const std::shared_ptr<PopupWindow>& popup : popups) {
    try {
      popup->Show(false);
    } catch (...) {
      // A LostFocus handler failing does not keep the window up.
    }
  }
}

DispatchScope FormWindow::Enter() {
  std::shared_ptr<FormWindow> self = weak_from_this().lock();
  return self ? DispatchScope(std::move(self)) : DispatchScope();
}

void FormWindow::leaveDispatch() {
  if (--dispatchDepth_ > 0) return;
  std::vector<std::shared_ptr<Site>> released = std::move(retired_);
  retired_.clear();
}

void FormWindow::MoveWindow(int32_t x, int32_t y, int32_t width, int32_t height) {
  if (width < 0 || height < 0)
    throw Error(errInvalidPropertyValue, "Form '" + name_ + "': size " + std::to_string(width) +
                                             " x " + std::to_string(height) + " is negative");
  rect_ = RectL{x, y, x + width, y + height};
  Touch();
  system_->FormChanged(*this);
}

void FormWindow::WindowMoved(int32_t x, int32_t y) {
  rect_ = RectL{x, y, x + rect_.Width(), y + rect_.Height()};
}

bool FormWindow::FocusNext(bool backward) {
  DispatchScope scope = Enter();
  const RectL client{0, 0, rect_.Width(), rect_.Height()};
  const auto takesFocus = [&client](const Site& site) {
    const RectL b = intersect(site.Bounds(), client);
    return site.ReceivesInput() && b.Width() > 0 && b.Height() > 0;
  };
  // The control on the form that holds the focus, itself or through a part.
  Site* current = router_.Focused();
  while (current && current->Parent())
    current = current->Parent();
  const auto count = static_cast<ptrdiff_t>(sites_.size());
  ptrdiff_t start = backward ? count : -1;
  for (ptrdiff_t i = 0; i < count; ++i)
    if (sites_[i].get() == current) start = i;
  for (ptrdiff_t step = 1; step <= count; ++step) {
    const ptrdiff_t offset = backward ? -step : step;
    const std::shared_ptr<Site> site = sites_[((start + offset) % count + count) % count];
    if (site.get() == current || !takesFocus(*site)) continue;
    system_->ActivateForm(*this);
    router_.Focus(site);
    return true;
  }
  return false;
}

PointerLook FormWindow::PointerAt(int32_t x, int32_t y) const {
  const Site* site = router_.Capturing() ? router_.Captured() : router_.SiteAt(PointL{x, y}).get();
  return site ? site->Pointer() : PointerLook{};
}

void FormWindow::PointerChanged() {
  if (!closed_) system_->RefreshPointer();
}

void FormWindow::WindowShown() {
  if (!closed_ && !router_.Focused()) FocusNext(false);
}

void FormWindow::Font(std::shared_ptr<velt::Font> font) {
  if (!font) throw Error(errObjectNotSet, "Form '" + name_ + "': Font set to nothing");
  font_ = std::move(font);
}

Site& FormWindow::AddSite(std::shared_ptr<UserControl> control, const std::string& name,
                          RectL bounds, const PropertyBag* stored) {
  Site::CheckPlacement("AddControl", control.get(), name, bounds);
  if (FindSite(name))
    throw Error(errKeyAlreadyExists,
                "AddControl: form '" + name_ + "' already has a control named '" + name + "'");
  if (closed_) throw Error(errInvalidProcedureCall, "AddControl: form '" + name_ + "' is closed");
  DispatchScope scope = Enter();
  auto site = std::make_shared<Site>(*this, nullptr, name, std::move(control), bounds);
  sites_.push_back(site);
  sitesByName_.emplace(name, site.get());
  Touch();
  try {
    site->Create(stored);
  } catch (...) {
    std::erase(sites_, site);
    sitesByName_.erase(name);
    site->Close(false);
    retired_.push_back(site);
    throw;
  }
  return *site;
}

void FormWindow::RemoveSite(const std::string& name) {
  Site* named = FindSite(name);
  auto it = named ? std::find_if(
                        sites_.begin(), sites_.end(),
                        [named](const std::shared_ptr<Site>& site) { return site.get() == named; })
                  : sites_.end();
  if (it == sites_.end())
    throw Error(errInvalidProcedureCall,
                "RemoveControl: form '" + name_ + "' has no control named '" + name + "'");
  DispatchScope scope = Enter();
  std::shared_ptr<Site> site = *it;
  sites_.erase(it);
  sitesByName_.erase(name);
  Touch();
  retired_.push_back(site);
  std::exception_ptr failure = site->Close(true);
  PointerChanged();  // the pointer may have been over it
  if (failure) std::rethrow_exception(failure);
}

Site* FormWindow::FindSite(const std::string& name) const {
  const auto it = sitesByName_.find(name);
  return it == sitesByName_.end() ? nullptr : it->second;
}

std::shared_ptr<PopupWindow> FormWindow::CreatePopup(const std::string& name, bool owned) {
  std::shared_ptr<PopupWindow> popup = system_->CreatePopup(name);
  std::weak_ptr<FormWindow> weak = weak_from_this();
  popup->OwnerGuard([weak]() -> std::shared_ptr<void> {
    std::shared_ptr<FormWindow> form = weak.lock();
    if (!form) return nullptr;
    return std::make_shared<DispatchScope>(form->Enter());
  });
  if (owned && !closed_) popups_.push_back(popup);
  return popup;
}

void FormWindow::ReleasePopup(const PopupWindow& popup) {
  std::erase_if(popups_,
                [&popup](const std::shared_ptr<PopupWindow>& p) { return p.get() == &popup; });
}

void FormWindow::Retire(std::shared_ptr<Site> site) {
  retired_.push_back(std::move(site));
}

const Canvas& FormWindow::Image() {
  if (image_.ScaleWidth() != rect_.Width() || image_.ScaleHeight() != rect_.Height())
    image_.Resize(rect_.Width(), rect_.Height());
  image_.BackColor(backColor_);  // erases the whole image
  compose(sites_, PointL{0, 0}, RectL{0, 0, rect_.Width(), rect_.Height()});
  return image_;
}

void FormWindow::compose(const std::vector<std::shared_ptr<Site>>& sites, PointL origin,
                         const RectL& clip) {
  for (const std::shared_ptr<Site>& site : sites) {
    if (site->Closed() || !site->Visible()) continue;
    const RectL bounds = site->Bounds();
    const RectL placed{origin.x + bounds.Left, origin.y + bounds.Top, origin.x + bounds.Right,
                       origin.y + bounds.Bottom};
    copySurface(site->Image(), image_, placed.Left, placed.Top, clip);
    compose(site->Children(), PointL{placed.Left, placed.Top}, intersect(clip, placed));
  }
}

void FormWindow::OnMouseDown(int16_t button, int16_t shift, int32_t x, int32_t y) {
  DispatchScope scope = Enter();
  const PointL point{x, y};
  // Decided before routing: the press itself may move or remove controls.
  const bool onForm =
      router_.Capturing() ? router_.Captured() == nullptr : router_.SiteAt(point) == nullptr;
  router_.MouseDown(button, shift, point);
  if (onForm && !closed_)
    MouseDown.Raise(button, shift, static_cast<float>(x), static_cast<float>(y));
}

void FormWindow::OnMouseMove(int16_t button, int16_t shift, int32_t x, int32_t y) {
  DispatchScope scope = Enter();
  router_.MouseMove(button, shift, PointL{x, y});
}

void FormWindow::OnMouseUp(int16_t button, int16_t shift, int32_t x, int32_t y) {
  DispatchScope scope = Enter();
  router_.MouseUp(button, shift, PointL{x, y});
}

void FormWindow::OnDblClick(int16_t button, int16_t shift, int32_t x, int32_t y) {
  DispatchScope scope = Enter();
  router_.DblClick(button, shift, PointL{x, y});
}

void FormWindow::OnMouseWheel(int16_t notches, int16_t shift, int32_t x, int32_t y) {
  DispatchScope scope = Enter();
  router_.MouseWheel(notches, shift, PointL{x, y});
}

void FormWindow::OnKeyDown(int16_t keyCode, int16_t shift) {
  DispatchScope scope = Enter();
  router_.KeyDown(keyCode, shift);
}

void FormWindow::OnKeyUp(int16_t keyCode, int16_t shift) {
  DispatchScope scope = Enter();
  router_.KeyUp(keyCode, shift);
}

void FormWindow::OnKeyPress(int16_t charCode) {
  DispatchScope scope = Enter();
  router_.KeyPress(charCode);
}

void FormWindow::OnComposition(const std::string& text) {
  DispatchScope scope = Enter();
  router_.Composition(text);
}

}  // namespace velt
