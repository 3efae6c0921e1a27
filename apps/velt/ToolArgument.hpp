#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "apps/velt/MenuItemArgument.hpp"
#include "velt/controls/menus/ToolbarItem.hpp"

namespace velt {

class ToolbarItems;

namespace tool {

// A toolbar item given by `velt snap --tool`, the arguments of
// ToolbarItems::Add separated by "|": Key|Caption|IconIndex|Style|Checked|
// Enabled. Fields left out (or empty) take Add's defaults. IconIndex and Style
// are integers (decimal, &H or 0x), Checked and Enabled True or False in any
// letter case. The --item options that follow it fill its menu.
struct ToolArgument {
  std::string Key;
  std::string Caption;
  int16_t IconIndex = 0;
  eMenuItemType Style = mitNormalButton;
  bool Checked = false;
  bool Enabled = true;
  std::vector<MenuItemArgument> Menu;

  // Error 5 naming --tool and the field that is wrong.
  static ToolArgument Parse(std::string_view text);
  // Errors of Add (457 for a key in use) reach the caller.
  void AddTo(ToolbarItems& items) const;
};

}  // namespace tool
}  // namespace velt
