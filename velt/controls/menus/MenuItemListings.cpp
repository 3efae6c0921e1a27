#include "velt/controls/menus/MenuItemListings.hpp"

namespace velt {

MenuItemListings::MenuItemListings() : rows_(KeyComparison::Exact, "MenuItemListings") {}

std::shared_ptr<MenuItemListing> MenuItemListings::Add(const std::string& Key, int16_t Index,
                                                       int32_t Top, int32_t Height,
                                                       bool Selectable) {
  auto row = std::make_shared<MenuItemListing>();
  row->Index(Index);
  row->Top(Top);
  row->Key(Key);
  row->Height(Height);
  row->Selectable(Selectable);
  rows_.Add(row, Key);
  return row;
}

std::shared_ptr<MenuItemListing> MenuItemListings::Item(int16_t position) const {
  return rows_.Item(position);
}

std::shared_ptr<MenuItemListing> MenuItemListings::Item(const std::string& key) const {
  return rows_.Item(key);
}

void MenuItemListings::Remove(int16_t position) {
  rows_.Remove(position);
}

void MenuItemListings::Remove(const std::string& key) {
  rows_.Remove(key);
}

}  // namespace velt
