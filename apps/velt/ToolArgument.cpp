#include "apps/velt/ToolArgument.hpp"

#include <limits>
#include <memory>

#include "apps/velt/BarFields.hpp"
#include "velt/controls/menus/ToolbarItems.hpp"

namespace velt::tool {

ToolArgument ToolArgument::Parse(std::string_view text) {
  const BarFields in("--tool", text);
  in.AtMost(6, "Key|Caption|IconIndex|Style|Checked|Enabled");
  ToolArgument tool;
  tool.Key = in.Text(0);
  tool.Caption = in.Text(1);
  tool.IconIndex = static_cast<int16_t>(
      in.Integer(2, "IconIndex", 0, std::numeric_limits<int16_t>::max(), tool.IconIndex));
  tool.Style = static_cast<eMenuItemType>(
      in.Integer(3, "Style", mitNormalButton, mitCaption, mitNormalButton));
  tool.Checked = in.Boolean(4, "Checked", tool.Checked);
  tool.Enabled = in.Boolean(5, "Enabled", tool.Enabled);
  return tool;
}

void ToolArgument::AddTo(ToolbarItems& items) const {
  const std::shared_ptr<ToolbarItem> item =
      items.Add(Key, Caption, IconIndex, Style, Checked, Enabled);
  for (const MenuItemArgument& entry : Menu)
    entry.AddTo(*item->ToolbarMenuItems);
}

}  // namespace velt::tool
