#include "apps/velt/SnapSession.hpp"

#include <algorithm>

#include "apps/velt/FocusSink.hpp"
#include "apps/velt/PropertyArgument.hpp"
#include "velt/controls/ControlClass.hpp"
#include "velt/controls/menus/MenuItems.hpp"
#include "velt/controls/menus/veltPUMenu.hpp"
#include "velt/host/Form.hpp"
#include "velt/host/Site.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/HeadlessWindowSystem.hpp"
#include "velt/platform/Png.hpp"

namespace velt::tool {

namespace {

constexpr const char* kSinkName = "veltSnapFocusSink";

SizeL screenFor(SizeL control) {
  return SizeL{std::max(SnapSession::kMinScreenWidth, control.width + 1),
               std::max(SnapSession::kMinScreenHeight, control.height + 1)};
}

Canvas crop(const Canvas& image, const RectL& rect) {
  const int32_t left = std::clamp(rect.Left, 0, image.ScaleWidth());
  const int32_t top = std::clamp(rect.Top, 0, image.ScaleHeight());
  const int32_t right = std::clamp(rect.Right, left, image.ScaleWidth());
  const int32_t bottom = std::clamp(rect.Bottom, top, image.ScaleHeight());
  Canvas result(right - left, bottom - top);
  for (int32_t y = top; y < bottom; ++y) {
    const uint32_t* from = image.Pixels() + static_cast<size_t>(y) * image.ScaleWidth() + left;
    std::copy(from, from + (right - left),
              result.Pixels() + static_cast<size_t>(y - top) * result.ScaleWidth());
  }
  return result;
}

}  // namespace

SnapSession::SnapSession(const ControlClass& controlClass, SizeL size, bool wholeScreen)
    : class_(controlClass), wholeScreen_(wholeScreen) {
  const SizeL screen = screenFor(size);
  system_ = std::make_shared<HeadlessWindowSystem>(screen.width, screen.height);
  system_->SetCursor(screen.width - 1, screen.height - 1);
  form_ = std::make_unique<Form>(system_, "Form1", size.width, size.height);
  site_ = &form_->AddControl(controlClass.Create(), controlClass.Name() + "1", 0, 0, size.width,
                             size.height);
}

SnapSession::~SnapSession() = default;

UserControl& SnapSession::Control() {
  return *site_->Control();
}

Canvas SnapSession::Snapshot() {
  Canvas screen = system_->CompositeScreen();
  if (wholeScreen_) return screen;
  return crop(screen, site_->WindowRect());
}

void SnapSession::WritePng(const std::string& path) {
  const Canvas image = Snapshot();
  Png::WriteRGB(path, image.Pixels(), image.ScaleWidth(), image.ScaleHeight());
}

PointL SnapSession::Origin() const {
  const RectL form = form_->WindowRect();
  return PointL{form.Left, form.Top};
}

void SnapSession::CheckProperty(const PropertyArgument& argument) const {
  argument.ValueFor(class_);
}

void SnapSession::SetProperty(const PropertyArgument& argument) {
  argument.ApplyTo(class_, Control());
}

void SnapSession::Focus() {
  site_->SetFocus();
}

void SnapSession::Blur() {
  if (!sink_) sink_ = &form_->AddControl(std::make_shared<FocusSink>(), kSinkName, 0, 0, 0, 0);
  sink_->SetFocus();
}

veltPUMenu* SnapSession::menu() const {
  return dynamic_cast<veltPUMenu*>(site_->Control().get());
}

void SnapSession::CheckMenu() const {
  if (!menu())
    throw Error(errInvalidProcedureCall,
                "menu: " + class_.Name() + " is not a veltPUMenu, it has no menu to open");
}

void SnapSession::OpenMenu(PointL point) {
  CheckMenu();
  const PointL origin = Origin();
  const int32_t x = (origin.x + point.x) * site_->TwipsPerPixelX();
  const int32_t y = (origin.y + point.y) * site_->TwipsPerPixelY();
  // Held: a handler run while the menu waits may take the control away.
  const std::shared_ptr<UserControl> control = site_->Control();
  static_cast<veltPUMenu&>(*control).CreateMenu(x, y, "", 0);
}

void SnapSession::AddMenuItems(const std::vector<MenuItemArgument>& items) {
  if (items.empty()) return;
  veltPUMenu* control = menu();
  if (!control)
    throw Error(errInvalidProcedureCall,
                "--item: " + class_.Name() + " has no menu items (only veltPUMenu takes --item)");
  if (!control->MenuItem) control->MenuItem = std::make_shared<MenuItems>();
  for (const MenuItemArgument& item : items)
    item.AddTo(*control->MenuItem);
}

}  // namespace velt::tool
