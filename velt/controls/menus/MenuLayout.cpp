#include "velt/controls/menus/MenuLayout.hpp"

#include "velt/controls/menus/MenuItemListing.hpp"
#include "velt/controls/menus/MenuItemListings.hpp"
#include "velt/controls/menus/MenuItems.hpp"
#include "velt/platform/ImageList.hpp"

namespace velt {

namespace {

constexpr int32_t kIconColumn = 18;
constexpr int32_t kTextRowPadding = 8;  // a text row is the letter height plus this
constexpr int32_t kSeparatorHeight = 3;
constexpr int32_t kImageRowPadding = 4;
constexpr int32_t kImageTitlePadding = 16;

}  // namespace

int32_t MenuIconColumnWidth(const ImageList* imageList) {
  return imageList ? imageList->ImageWidth() + kIconColumn : kIconColumn;
}

int32_t MenuRowHeight(eItemType itemType, int32_t textHeight, const ImageList* imageList) {
  const int32_t textRow = textHeight + kTextRowPadding;
  const int32_t image = imageList ? imageList->ImageHeight() : 0;
  switch (itemType) {
    case itPlaceholder:
      return kSeparatorHeight;
    case itTitle:
      return image > textRow ? image + kImageTitlePadding : 2 * textRow;
    case itNormal:
    case itCheck:
      return image > textRow ? image + kImageRowPadding : textRow;
  }
  return textRow;
}

bool MenuRowSelectable(eItemType itemType) {
  return itemType == itNormal || itemType == itCheck;
}

bool MenuRowShown(const MenuItemListing& row, int32_t itemCount) {
  return row.Index() >= 1 && row.Index() <= itemCount;
}

bool MenuRowChoosable(const MenuItemListing& row, const MenuItems* items) {
  return items && row.Selectable() && MenuRowShown(row, items->Count()) &&
         MenuRowSelectable(items->Item(row.Index())->ItemType());
}

int16_t MenuRowIndexAt(const MenuItemListings& rows, const MenuItems* items, float y) {
  int16_t index = 0;
  for (const std::shared_ptr<MenuItemListing>& row : rows) {
    const auto top = static_cast<float>(row->Top());
    const auto bottom = static_cast<float>(row->Top() + row->Height());
    if (MenuRowChoosable(*row, items) && top < y && y < bottom) index = row->Index();
  }
  return index;
}

std::shared_ptr<MenuItemListing> MenuRowShowing(const MenuItemListings& rows, int16_t index) {
  if (index == 0) return nullptr;
  for (const std::shared_ptr<MenuItemListing>& row : rows)
    if (row->Index() == index) return row;
  return nullptr;
}

}  // namespace velt
