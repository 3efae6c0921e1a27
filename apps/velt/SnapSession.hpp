#pragma once

#include <memory>
#include <string>
#include <vector>

#include "apps/velt/MenuItemArgument.hpp"
#include "apps/velt/ScriptTarget.hpp"
#include "velt/platform/Canvas.hpp"
#include "velt/platform/Geometry.hpp"

namespace velt {

class ControlClass;
class Form;
class HeadlessWindowSystem;
class Site;
class UserControl;
class veltPUMenu;

namespace tool {

// One control alone on a headless form whose client area, exactly the
// control's size, sits at the screen's origin: the world of `velt snap`. The
// screen is at least 1024x768 and one pixel wider and taller than the
// control, and the pointer starts on its bottom-right pixel, off the control.
// The control is named after its class with a 1 ("veltButton1"); creating it
// runs InitProperties and Resize.
class SnapSession : public ScriptTarget {
 public:
  static constexpr int32_t kMinScreenWidth = 1024;
  static constexpr int32_t kMinScreenHeight = 768;

  // wholeScreen: snapshots show the whole screen, not the control's rectangle.
  SnapSession(const ControlClass& controlClass, SizeL size, bool wholeScreen);
  ~SnapSession() override;
  SnapSession(const SnapSession&) = delete;
  SnapSession& operator=(const SnapSession&) = delete;

  HeadlessWindowSystem& System() { return *system_; }
  Form& HostForm() { return *form_; }
  Site& ControlSite() { return *site_; }
  UserControl& Control();

  // The composite of the screen, cut to the control's rectangle unless the
  // session shows the whole screen.
  Canvas Snapshot();
  void WritePng(const std::string& path);

  // ScriptTarget.
  PointL Origin() const override;
  void CheckProperty(const PropertyArgument& argument) const override;
  void SetProperty(const PropertyArgument& argument) override;
  void Focus() override;
  void Blur() override;
  void Shot(const std::string& path) override { WritePng(path); }
  // The control when it is a veltPUMenu: CreateMenu at the point's screen
  // pixel in twips, root group, M_Width 0 ((0, 0) on the screen opens at the
  // pointer).
  void CheckMenu() const override;
  void OpenMenu(PointL point) override;

  // Appends the items to the control's MenuItem; error 5 for a control
  // without menu items.
  void AddMenuItems(const std::vector<MenuItemArgument>& items);

 private:
  veltPUMenu* menu() const;  // nullptr unless the control is one

  const ControlClass& class_;
  bool wholeScreen_;
  std::shared_ptr<HeadlessWindowSystem> system_;
  std::unique_ptr<Form> form_;
  Site* site_ = nullptr;
  Site* sink_ = nullptr;  // made by the first Blur
};

}  // namespace tool
}  // namespace velt
