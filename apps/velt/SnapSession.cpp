#include "apps/velt/SnapSession.hpp"

#include "velt/controls/lists/veltListbox.hpp"
#include "velt/platform/ImageList.hpp"

#include <memory>

#include "apps/velt/PropertyArgument.hpp"
#include "velt/controls/ControlClass.hpp"
#include "velt/controls/menus/MenuItems.hpp"
#include "velt/controls/menus/veltPUMenu.hpp"
#include "velt/controls/menus/veltToolbar.hpp"
#include "velt/host/Form.hpp"
#include "velt/host/Site.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/HeadlessWindowSystem.hpp"

namespace velt::tool {

namespace {

constexpr const char* kSinkName = "veltSnapFocusSink";

}  // namespace

SnapSession::SnapSession(const ControlClass& controlClass, SizeL size, bool wholeScreen)
    : HeadlessSession(size, kSinkName), class_(controlClass), wholeScreen_(wholeScreen) {
  adoptForm(std::make_unique<Form>(system(), "Form1", size.width, size.height));
  site_ = &HostForm().AddControl(controlClass.Create(), controlClass.Name() + "1", 0, 0, size.width,
                                 size.height);
}

SnapSession::~SnapSession() = default;

UserControl& SnapSession::Control() {
  return *site_->Control();
}

void SnapSession::followControl() {
  const RectL control = site_->Bounds();
  const RectL form = HostForm().WindowRect();
  if (control.Width() != form.Width() || control.Height() != form.Height())
    HostForm().MoveWindow(form.Left, form.Top, control.Width(), control.Height());
}

Canvas SnapSession::Snapshot() {
  followControl();
  if (wholeScreen_) return System().CompositeScreen();
  return screenPart(site_->WindowRect());
}

void SnapSession::CheckProperty(const PropertyArgument& argument) const {
  argument.ValueFor(class_);
}

void SnapSession::SetProperty(const PropertyArgument& argument) {
  argument.ApplyTo(class_, Control());
  followControl();
}

void SnapSession::CheckGet(const std::string& name) const {
  class_.PropertyNamed(name);
}

Variant SnapSession::GetProperty(const std::string& name) {
  return class_.GetProperty(Control(), name);
}

void SnapSession::Focus() {
  site_->SetFocus();
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

void SnapSession::AddEntries(const std::vector<EntryArgument>& entries,
                             std::optional<bool> sorted) {
  if (entries.empty() && !sorted) return;
  auto* list = dynamic_cast<veltListbox*>(&Control());
  if (!list)
    throw Error(errInvalidProcedureCall, "--entry, --sorted: " + class_.Name() +
                                             " has no list entries (only veltListbox takes them)");
  if (sorted) list->ListboxItems.Sorted(*sorted);
  for (const EntryArgument& entry : entries)
    entry.AddTo(list->ListboxItems);
}

void SnapSession::AddTools(const std::vector<ToolArgument>& tools) {
  if (tools.empty()) return;
  auto* toolbar = dynamic_cast<veltToolbar*>(&Control());
  if (!toolbar)
    throw Error(
        errInvalidProcedureCall,
        "--tool: " + class_.Name() + " has no toolbar items (only veltToolbar takes --tool)");
  for (const ToolArgument& tool : tools)
    tool.AddTo(toolbar->ToolbarItems);
  followControl();
}

void SnapSession::SetImageList(std::shared_ptr<ImageList> images) {
  constexpr const char* kImageList = "ImageList";
  constexpr const char* kMenuImageList = "MenuImageList";
  if (!class_.FindProperty(kImageList))
    throw Error(errInvalidProcedureCall,
                "--imagelist: " + class_.Name() + " has no ImageList property");
  const Variant list(std::shared_ptr<Object>(std::move(images)));
  class_.SetProperty(Control(), kImageList, list);
  if (class_.FindProperty(kMenuImageList)) class_.SetProperty(Control(), kMenuImageList, list);
  followControl();
}

}  // namespace velt::tool
