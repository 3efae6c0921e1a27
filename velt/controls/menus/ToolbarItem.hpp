#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "velt/controls/menus/MenuItems.hpp"

namespace velt {

// The kind of a toolbar entry.
enum eMenuItemType : int32_t {
  mitNormalButton = 1,
  mitCheckButton = 2,
  mitMenu = 3,
  mitMenu2 = 4,
  mitPlaceholder = 5,
  mitSeparator = 6,
  mitCaption = 7,
};

// One toolbar entry: a button, separator, caption or drop-down. Plain data;
// changing a property tells the toolbar nothing (ToolbarItems::Refresh does).
class ToolbarItem {
 public:
  // The entries of the item's drop-down menu: a new empty collection with
  // every item, which the host may replace.
  std::shared_ptr<MenuItems> ToolbarMenuItems = std::make_shared<MenuItems>();

  eMenuItemType Style() const { return style_; }
  void Style(eMenuItemType value) { style_ = value; }
  // 1-based image of the toolbar's image list; 0 is none.
  int16_t IconIndex() const { return iconIndex_; }
  void IconIndex(int16_t value) { iconIndex_ = value; }
  bool Checked() const { return checked_; }
  void Checked(bool value) { checked_ = value; }
  bool Enabled() const { return enabled_; }
  void Enabled(bool value) { enabled_ = value; }
  const std::string& Caption() const { return caption_; }
  void Caption(const std::string& value) { caption_ = value; }
  // The key the item was added under.
  const std::string& sKey() const { return sKey_; }
  void sKey(const std::string& value) { sKey_ = value; }

 private:
  eMenuItemType style_{};
  int16_t iconIndex_ = 0;
  bool checked_ = false;
  bool enabled_ = false;
  std::string caption_;
  std::string sKey_;
};

}  // namespace velt
