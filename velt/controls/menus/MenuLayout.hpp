#pragma once

#include <cstdint>
#include <memory>

#include "velt/controls/menus/MenuItem.hpp"

namespace velt {

class ImageList;
class MenuItemListing;
class MenuItemListings;

// The geometry of the popup menu's rows, in pixels of the menu window. Laying
// out, painting and hit-testing all take it from here, so they cannot disagree.

// The first row starts this far below the window's top edge; the window is
// this many pixels higher than its rows (border included).
constexpr int32_t kMenuFirstRowTop = 2;
constexpr int32_t kMenuExtraHeight = 4;
// Added to the icon column and the widest caption to give the window's width.
constexpr int32_t kMenuExtraWidth = 32;

// Where the captions start: a fixed column, widened by the images' width.
int32_t MenuIconColumnWidth(const ImageList* imageList);

// The height of a row of the kind, for a font whose capital letter is
// textHeight pixels high. Images taller than a text row make the rows taller.
int32_t MenuRowHeight(eItemType itemType, int32_t textHeight, const ImageList* imageList);

// Normal and check rows can be selected; separators, titles and rows of an
// unknown kind cannot.
bool MenuRowSelectable(eItemType itemType);

// The Index of the selectable row whose top and bottom edges y lies strictly
// between; 0 when there is none.
int16_t MenuRowIndexAt(const MenuItemListings& rows, float y);

// The row that shows the item at position index of the menu's items; nullptr
// when no row does.
std::shared_ptr<MenuItemListing> MenuRowShowing(const MenuItemListings& rows, int16_t index);

}  // namespace velt
