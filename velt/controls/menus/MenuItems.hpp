#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "velt/controls/menus/MenuItem.hpp"
#include "velt/foundation/KeyedCollection.hpp"

namespace velt {

// The entries of a popup menu, in order, optionally under unique keys (matched
// exactly). Positions are 1-based. A bad position is error 9, an unknown key
// error 5, a key already in use error 457; a call that fails changes nothing.
class MenuItems {
 public:
  using Enumeration = KeyedCollection<MenuItem>::Enumeration;

  MenuItems();
  MenuItems(const MenuItems&) = delete;
  MenuItems& operator=(const MenuItems&) = delete;

  // Appends a new item, under Key unless Key is empty, and returns it.
  std::shared_ptr<MenuItem> Add(const std::string& Key, const std::string& Caption = "",
                                int16_t Icon = 0, bool Enabled = true,
                                const std::string& Child = "", const std::string& Group = "",
                                eItemType ItemType = itNormal, bool Checked = false,
                                bool Bold = false);
  std::shared_ptr<MenuItem> Item(int16_t position) const;
  // No object (and no error) for an empty key.
  std::shared_ptr<MenuItem> Item(const std::string& key) const;
  int32_t Count() const { return items_.Count(); }
  void Remove(int16_t position);
  void Remove(const std::string& key);

  Enumeration NewEnum() const { return items_.NewEnum(); }
  KeyedCollection<MenuItem>::Iterator begin() const { return items_.begin(); }
  std::default_sentinel_t end() const { return {}; }

 private:
  KeyedCollection<MenuItem> items_;
};

}  // namespace velt
