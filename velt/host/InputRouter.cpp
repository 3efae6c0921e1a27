#include "velt/host/InputRouter.hpp"

#include <algorithm>
#include <utility>
#include <vector>

#include "velt/host/FormWindow.hpp"
#include "velt/host/Site.hpp"
#include "velt/platform/UserControl.hpp"

namespace velt {

namespace {

bool contains(const RectL& rect, PointL point) {
  return point.x >= rect.Left && point.x < rect.Right && point.y >= rect.Top &&
         point.y < rect.Bottom;
}

// Sites is bottom to top; point is relative to their container.
std::shared_ptr<Site> hitTest(const std::vector<std::shared_ptr<Site>>& sites, PointL point) {
  for (auto it = sites.rbegin(); it != sites.rend(); ++it) {
    const std::shared_ptr<Site>& site = *it;
    if (site->Closed() || !site->Visible() || !site->Enabled()) continue;
    const RectL bounds = site->Bounds();
    if (!contains(bounds, point)) continue;
    std::shared_ptr<Site> child =
        hitTest(site->Children(), PointL{point.x - bounds.Left, point.y - bounds.Top});
    return child ? child : site;
  }
  return nullptr;
}

// The site and its parents, innermost first.
std::vector<Site*> chainOf(Site* site) {
  std::vector<Site*> chain;
  for (; site; site = site->Parent())
    chain.push_back(site);
  return chain;
}

bool inChain(const std::vector<Site*>& chain, Site* site) {
  return std::find(chain.begin(), chain.end(), site) != chain.end();
}

struct LocalPoint {
  float x;
  float y;
};

LocalPoint localPoint(const Site& site, PointL point) {
  const PointL origin = site.OriginInForm();
  return LocalPoint{static_cast<float>(point.x - origin.x), static_cast<float>(point.y - origin.y)};
}

}  // namespace

InputRouter::InputRouter(FormWindow& form) : form_(form) {}

void InputRouter::MouseDown(int16_t button, int16_t shift, PointL point) {
  std::shared_ptr<Site> site = mouseTarget(point);
  if (!capturing_) {
    capturing_ = true;
    capture_ = site;
  }
  pressed_ |= button;
  previousPress_ = std::exchange(latestPress_, site);
  if (!site || !site->ReceivesInput()) return;
  if (Focused() != site.get()) Focus(site);
  // A focus handler may have removed or disabled it.
  if (!site->ReceivesInput()) return;
  const LocalPoint local = localPoint(*site, point);
  std::shared_ptr<UserControl> control = site->Control();
  control->OnMouseDown(button, shift, local.x, local.y);
}

void InputRouter::MouseMove(int16_t button, int16_t shift, PointL point) {
  std::shared_ptr<Site> site = mouseTarget(point);
  if (!site || !site->ReceivesInput()) return;
  const LocalPoint local = localPoint(*site, point);
  std::shared_ptr<UserControl> control = site->Control();
  control->OnMouseMove(button, shift, local.x, local.y);
}

void InputRouter::MouseUp(int16_t button, int16_t shift, PointL point) {
  std::shared_ptr<Site> site = mouseTarget(point);
  pressed_ &= ~static_cast<int32_t>(button);
  if (pressed_ == 0) {
    capturing_ = false;
    capture_.reset();
  }
  if (!site || !site->ReceivesInput()) return;
  const LocalPoint local = localPoint(*site, point);
  std::shared_ptr<UserControl> control = site->Control();
  control->OnMouseUp(button, shift, local.x, local.y);
}

void InputRouter::DblClick(int16_t button, int16_t shift, PointL point) {
  std::shared_ptr<Site> site = latestPress_.lock();
  if (!site || site != previousPress_.lock() || !site->ReceivesInput()) return;
  const LocalPoint local = localPoint(*site, point);
  std::shared_ptr<UserControl> control = site->Control();
  control->OnDblClick(button, shift, local.x, local.y);
}

void InputRouter::MouseWheel(int16_t notches, int16_t shift, PointL point) {
  for (std::shared_ptr<Site> site = SiteAt(point); site;
       site = site->Parent() ? site->Parent()->shared_from_this() : nullptr) {
    if (!site->ReceivesInput()) return;
    const LocalPoint local = localPoint(*site, point);
    std::shared_ptr<UserControl> control = site->Control();
    if (control->OnMouseWheel(notches, shift, local.x, local.y)) return;
  }
}

void InputRouter::KeyDown(int16_t keyCode, int16_t shift) {
  std::shared_ptr<Site> site = focus_.lock();
  if (!site || !site->ReceivesInput()) return;
  std::shared_ptr<UserControl> control = site->Control();
  control->OnKeyDown(keyCode, shift);
}

void InputRouter::KeyUp(int16_t keyCode, int16_t shift) {
  std::shared_ptr<Site> site = focus_.lock();
  if (!site || !site->ReceivesInput()) return;
  std::shared_ptr<UserControl> control = site->Control();
  control->OnKeyUp(keyCode, shift);
}

void InputRouter::KeyPress(int16_t charCode) {
  std::shared_ptr<Site> site = focus_.lock();
  if (!site || !site->ReceivesInput()) return;
  std::shared_ptr<UserControl> control = site->Control();
  control->OnKeyPress(charCode);
}

void InputRouter::Composition(const std::string& text) {
  std::shared_ptr<Site> site = focus_.lock();
  if (!site || !site->ReceivesInput()) return;
  std::shared_ptr<UserControl> control = site->Control();
  control->OnComposition(text);
}

void InputRouter::Focus(const std::shared_ptr<Site>& site) {
  std::shared_ptr<Site> old = focus_.lock();
  if (old == site) return;
  focus_ = site;
  const std::vector<Site*> leaving = chainOf(old.get());
  const std::vector<Site*> entering = chainOf(site.get());
  for (Site* s : leaving)
    if (!inChain(entering, s) && !s->Closed()) s->Control()->OnExitFocus();
  if (focus_.lock() != site) return;  // an ExitFocus handler moved it on
  for (auto it = entering.rbegin(); it != entering.rend(); ++it)
    if (!inChain(leaving, *it) && !(*it)->Closed()) (*it)->Control()->OnEnterFocus();
}

Site* InputRouter::Focused() const {
  std::shared_ptr<Site> site = focus_.lock();
  return site && !site->Closed() ? site.get() : nullptr;
}

bool InputRouter::FocusWithin(const Site& site) const {
  for (Site* s = Focused(); s; s = s->Parent())
    if (s == &site) return true;
  return false;
}

Site* InputRouter::Captured() const {
  std::shared_ptr<Site> site = capture_.lock();
  return capturing_ && site && !site->Closed() ? site.get() : nullptr;
}

std::shared_ptr<Site> InputRouter::SiteAt(PointL point) const {
  return hitTest(form_.Sites(), point);
}

void InputRouter::Reset() {
  focus_.reset();
  capture_.reset();
  latestPress_.reset();
  previousPress_.reset();
  capturing_ = false;
  pressed_ = 0;
}

std::shared_ptr<Site> InputRouter::mouseTarget(PointL point) const {
  return capturing_ ? capture_.lock() : SiteAt(point);
}

}  // namespace velt
