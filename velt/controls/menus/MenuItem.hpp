#pragma once

#include <cstdint>
#include <string>

namespace velt {

// The kind of a popup menu row.
enum eItemType : int32_t {
  itNormal = 1,       // selectable entry
  itCheck = 2,        // selectable entry with a check frame while Checked
  itPlaceholder = 3,  // separator row, not selectable
  itTitle = 4,        // shaded title row, not selectable
};

// One entry of a popup menu. Plain data: every property stores and returns its
// value unchanged. A new item has every field zero or empty; MenuItems::Add
// fills it.
class MenuItem {
 public:
  bool Bold() const { return bold_; }
  void Bold(bool value) { bold_ = value; }
  bool Checked() const { return checked_; }
  void Checked(bool value) { checked_ = value; }
  eItemType ItemType() const { return itemType_; }
  void ItemType(eItemType value) { itemType_ = value; }
  // The group the entry belongs to; "" is the root group.
  const std::string& Group() const { return group_; }
  void Group(const std::string& value) { group_ = value; }
  // Kept for the host (the group this entry leads to); the menu does not use it.
  const std::string& Child() const { return child_; }
  void Child(const std::string& value) { child_ = value; }
  // Kept for the host; the menu does not use it.
  bool Enabled() const { return enabled_; }
  void Enabled(bool value) { enabled_ = value; }
  const std::string& Caption() const { return caption_; }
  void Caption(const std::string& value) { caption_ = value; }
  const std::string& Key() const { return key_; }
  void Key(const std::string& value) { key_ = value; }
  // 1-based image of the menu's image list; 0 is none.
  int16_t Icon() const { return icon_; }
  void Icon(int16_t value) { icon_ = value; }

 private:
  bool bold_ = false;
  bool checked_ = false;
  eItemType itemType_{};
  std::string group_;
  std::string child_;
  bool enabled_ = false;
  std::string caption_;
  std::string key_;
  int16_t icon_ = 0;
};

}  // namespace velt
