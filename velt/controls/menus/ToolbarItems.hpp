#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "velt/controls/menus/ToolbarItem.hpp"
#include "velt/foundation/KeyedCollection.hpp"
#include "velt/platform/Event.hpp"

namespace velt {

// The entries of a toolbar, in order, optionally under unique keys (matched
// exactly). Tells its owner of every change: ItemAdded after Add, ItemChanged
// after Clear, Remove and Refresh. A call that fails (error 9 for a bad
// position, 5 for an unknown key, 457 for a key in use) changes nothing and
// raises nothing.
class ToolbarItems {
 public:
  using Enumeration = KeyedCollection<ToolbarItem>::Enumeration;

  ToolbarItems();
  ToolbarItems(const ToolbarItems&) = delete;
  ToolbarItems& operator=(const ToolbarItems&) = delete;

  std::shared_ptr<ToolbarItem> Add(const std::string& Key, const std::string& Caption = "",
                                   int16_t IconIndex = 0, eMenuItemType Style = mitNormalButton,
                                   bool Checked = false, bool Enabled = true);
  void Clear();
  std::shared_ptr<ToolbarItem> Item(int16_t position) const;
  std::shared_ptr<ToolbarItem> Item(const std::string& key) const;
  int32_t Count() const { return items_.Count(); }
  // Tells the owner that items changed in place.
  void Refresh();
  void Remove(int16_t position);
  void Remove(const std::string& key);

  Enumeration NewEnum() const { return items_.NewEnum(); }
  KeyedCollection<ToolbarItem>::Iterator begin() const { return items_.begin(); }
  std::default_sentinel_t end() const { return {}; }

  Event<> ItemAdded;
  Event<> ItemChanged;

 private:
  KeyedCollection<ToolbarItem> items_;
};

}  // namespace velt
