#include "velt/controls/menus/MenuItems.hpp"

namespace velt {

MenuItems::MenuItems() : items_(KeyComparison::Exact, "MenuItems") {}

std::shared_ptr<MenuItem> MenuItems::Add(const std::string& Key, const std::string& Caption,
                                         int16_t Icon, bool Enabled, const std::string& Child,
                                         const std::string& Group, eItemType ItemType, bool Checked,
                                         bool Bold) {
  auto item = std::make_shared<MenuItem>();
  item->Icon(Icon);
  item->Caption(Caption);
  item->Enabled(Enabled);
  item->Child(Child);
  item->Group(Group);
  item->ItemType(ItemType);
  item->Checked(Checked);
  item->Bold(Bold);
  item->Key(Key);
  items_.Add(item, Key);
  return item;
}

std::shared_ptr<MenuItem> MenuItems::Item(int16_t position) const {
  return items_.Item(position);
}

std::shared_ptr<MenuItem> MenuItems::Item(const std::string& key) const {
  if (key.empty()) return nullptr;
  return items_.Item(key);
}

void MenuItems::Remove(int16_t position) {
  items_.Remove(position);
}

void MenuItems::Remove(const std::string& key) {
  items_.Remove(key);
}

}  // namespace velt
