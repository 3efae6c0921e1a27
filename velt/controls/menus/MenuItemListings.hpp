#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "velt/controls/menus/MenuItemListing.hpp"
#include "velt/foundation/KeyedCollection.hpp"

namespace velt {

// The rows of the menu being shown, rebuilt by every layout. Ordered, with
// optional unique keys matched exactly; errors as MenuItems gives them, but an
// empty key is an unknown key here, not "no object".
class MenuItemListings {
 public:
  using Enumeration = KeyedCollection<MenuItemListing>::Enumeration;

  MenuItemListings();
  MenuItemListings(const MenuItemListings&) = delete;
  MenuItemListings& operator=(const MenuItemListings&) = delete;

  std::shared_ptr<MenuItemListing> Add(const std::string& Key, int16_t Index, int32_t Top,
                                       int32_t Height, bool Selectable);
  std::shared_ptr<MenuItemListing> Item(int16_t position) const;
  std::shared_ptr<MenuItemListing> Item(const std::string& key) const;
  void Clear() { rows_.Clear(); }
  int32_t Count() const { return rows_.Count(); }
  void Remove(int16_t position);
  void Remove(const std::string& key);

  Enumeration NewEnum() const { return rows_.NewEnum(); }
  KeyedCollection<MenuItemListing>::Iterator begin() const { return rows_.begin(); }
  std::default_sentinel_t end() const { return {}; }

 private:
  KeyedCollection<MenuItemListing> rows_;
};

}  // namespace velt
