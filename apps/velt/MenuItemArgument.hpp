#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "velt/controls/menus/MenuItem.hpp"

namespace velt {

class MenuItems;

namespace tool {

// A popup menu entry given by `velt snap --item`, the arguments of
// MenuItems::Add separated by "|": Key|Caption|Icon|Enabled|Child|Group|
// ItemType|Checked|Bold. Fields left out (or empty) take Add's defaults.
// Icon and ItemType are integers (decimal, &H or 0x), Enabled, Checked and
// Bold True or False in any letter case.
struct MenuItemArgument {
  std::string Key;
  std::string Caption;
  int16_t Icon = 0;
  bool Enabled = true;
  std::string Child;
  std::string Group;
  eItemType ItemType = itNormal;
  bool Checked = false;
  bool Bold = false;

  // Error 5 naming --item and the field that is wrong.
  static MenuItemArgument Parse(std::string_view text);
  // Errors of Add (457 for a key in use) reach the caller.
  void AddTo(MenuItems& items) const;
};

}  // namespace tool
}  // namespace velt
