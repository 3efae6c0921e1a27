#include "velt/controls/menus/ToolbarItems.hpp"

namespace velt {

ToolbarItems::ToolbarItems() : items_(KeyComparison::Exact, "ToolbarItems") {}

std::shared_ptr<ToolbarItem> ToolbarItems::Add(const std::string& Key, const std::string& Caption,
                                               int16_t IconIndex, eMenuItemType Style, bool Checked,
                                               bool Enabled) {
  auto item = std::make_shared<ToolbarItem>();
  item->Caption(Caption);
  item->IconIndex(IconIndex);
  item->Style(Style);
  item->sKey(Key);
  item->Checked(Checked);
  item->Enabled(Enabled);
  items_.Add(item, Key);
  // A handler may destroy this collection: nothing below touches it.
  ItemAdded.Raise();
  return item;
}

void ToolbarItems::Clear() {
  items_.Clear();
  ItemChanged.Raise();
}

std::shared_ptr<ToolbarItem> ToolbarItems::Item(int16_t position) const {
  return items_.Item(position);
}

std::shared_ptr<ToolbarItem> ToolbarItems::Item(const std::string& key) const {
  return items_.Item(key);
}

void ToolbarItems::Refresh() {
  ItemChanged.Raise();
}

void ToolbarItems::Remove(int16_t position) {
  items_.Remove(position);
  ItemChanged.Raise();
}

void ToolbarItems::Remove(const std::string& key) {
  items_.Remove(key);
  ItemChanged.Raise();
}

}  // namespace velt
