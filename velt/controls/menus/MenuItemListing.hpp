#pragma once

#include <cstdint>
#include <string>

namespace velt {

// One laid-out row of the popup menu that is shown: where it is, how high, and
// which MenuItem it shows. Plain data.
class MenuItemListing {
 public:
  // The menu always stores an empty key.
  const std::string& Key() const { return key_; }
  void Key(const std::string& value) { key_ = value; }
  // Whether the mouse may select the row.
  bool Selectable() const { return selectable_; }
  void Selectable(bool value) { selectable_ = value; }
  // Row height in pixels.
  int32_t Height() const { return height_; }
  void Height(int32_t value) { height_ = value; }
  // Top edge of the row in pixels, inside the menu window.
  int32_t Top() const { return top_; }
  void Top(int32_t value) { top_ = value; }
  // 1-based position of the shown item in the menu's MenuItems.
  int16_t Index() const { return index_; }
  void Index(int16_t value) { index_ = value; }

 private:
  std::string key_;
  bool selectable_ = false;
  int32_t height_ = 0;
  int32_t top_ = 0;
  int16_t index_ = 0;
};

}  // namespace velt
