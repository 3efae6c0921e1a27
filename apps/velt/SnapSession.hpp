#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "apps/velt/EntryArgument.hpp"
#include "apps/velt/HeadlessSession.hpp"
#include "apps/velt/MenuItemArgument.hpp"
#include "apps/velt/ToolArgument.hpp"

namespace velt {

class ControlClass;
class UserControl;
class ImageList;
class veltListbox;
class veltPUMenu;

namespace tool {

// One control alone on a headless form exactly the control's size: the world
// of `velt snap`. The control is named after its class with a 1
// ("veltButton1"); creating it runs InitProperties and Resize. The form is
// made at the size asked for, which the control starts with; a control that
// sizes itself (a slider with tick labels, an AutoSize label) takes the form
// along whenever a property is set and before every snapshot.
class SnapSession : public HeadlessSession {
 public:
  // wholeScreen: snapshots show the whole screen, not the control's rectangle.
  SnapSession(const ControlClass& controlClass, SizeL size, bool wholeScreen);
  ~SnapSession() override;

  Site& ControlSite() { return *site_; }
  UserControl& Control();

  // The composite of the screen, cut to the control's rectangle unless the
  // session shows the whole screen.
  Canvas Snapshot() override;

  // ScriptTarget.
  void CheckProperty(const PropertyArgument& argument) const override;
  void SetProperty(const PropertyArgument& argument) override;
  void CheckGet(const std::string& name) const override;
  Variant GetProperty(const std::string& name) override;
  void Focus() override;
  // The control when it is a veltPUMenu: CreateMenu at the point's screen
  // pixel in twips, root group, M_Width 0 ((0, 0) on the screen opens at the
  // pointer).
  void CheckMenu() const override;
  void OpenMenu(PointL point) override;

  // Appends the items to the control's MenuItem; error 5 for a control
  // without menu items.
  void AddMenuItems(const std::vector<MenuItemArgument>& items);
  // Sets ListboxItems.Sorted (when given), then appends the entries; error 5
  // for a control without list entries.
  void AddEntries(const std::vector<EntryArgument>& entries, std::optional<bool> sorted);
  // Appends the toolbar items with their menus; error 5 for a control that is
  // no veltToolbar.
  void AddTools(const std::vector<ToolArgument>& tools);
  // Gives the control the image list (a toolbar's menus too); error 5 for one
  // without an ImageList.
  void SetImageList(std::shared_ptr<ImageList> images);

 private:
  veltPUMenu* menu() const;  // nullptr unless the control is one
  void followControl();

  const ControlClass& class_;
  bool wholeScreen_;
  Site* site_ = nullptr;
};

}  // namespace tool
}  // namespace velt
