#include "apps/velt/MenuItemArgument.hpp"

#include <limits>

#include "apps/velt/BarFields.hpp"
#include "velt/controls/menus/MenuItems.hpp"
#include "velt/platform/Error.hpp"

namespace velt::tool {

MenuItemArgument MenuItemArgument::Parse(std::string_view text) {
  const BarFields in("--item", text);
  in.AtMost(9, "Key|Caption|Icon|Enabled|Child|Group|ItemType|Checked|Bold");
  MenuItemArgument item;
  item.Key = in.Text(0);
  item.Caption = in.Text(1);
  item.Icon = static_cast<int16_t>(
      in.Integer(2, "Icon", 0, std::numeric_limits<int16_t>::max(), item.Icon));
  item.Enabled = in.Boolean(3, "Enabled", item.Enabled);
  item.Child = in.Text(4);
  item.Group = in.Text(5);
  item.ItemType = static_cast<eItemType>(in.Integer(6, "ItemType", itNormal, itTitle, itNormal));
  item.Checked = in.Boolean(7, "Checked", item.Checked);
  item.Bold = in.Boolean(8, "Bold", item.Bold);
  return item;
}

void MenuItemArgument::AddTo(MenuItems& items) const {
  items.Add(Key, Caption, Icon, Enabled, Child, Group, ItemType, Checked, Bold);
}

}  // namespace velt::tool
