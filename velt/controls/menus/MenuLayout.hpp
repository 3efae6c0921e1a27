#pragma once

#include <cstdint>
#include <memory>

#include "velt/controls/menus/MenuItem.hpp"

namespace velt {

class ImageList;
class MenuItemListing;
class MenuItemListings;
class MenuItems;

// The geometry of the popup menu's rows, in pixels of the menu window. Laying
// out, painting and hit-testing all take it from here, so they cannot disagree.

// The first row starts this far below the window's top edge; the window is
// this many pixels higher than its rows (border included).
constexpr int32_t kMenuFirstRowTop = 2;
constexpr int32_t kMenuExtraHeight = 4;
// Added to the icon column and the widest caption to give the window's width.
constexpr int32_t kMenuExtraWidth = 32;
// A menu taller than the screen scrolls between an arrow row at its top and
// one at its bottom, each this high, inside the border.
constexpr int32_t kMenuArrowRowHeight = 12;

// Where the captions start: a fixed column, widened by the images' width.
int32_t MenuIconColumnWidth(const ImageList* imageList);

// The height of a row of the kind, for a font whose capital letter is
// textHeight pixels high. Images taller than a text row make the rows taller.
int32_t MenuRowHeight(eItemType itemType, int32_t textHeight, const ImageList* imageList);

// Normal and check rows can be selected; separators, titles and rows of an
// unknown kind cannot.
bool MenuRowSelectable(eItemType itemType);

// Whether a row still shows an item: one of the itemCount items the menu
// shows. Rows whose items were removed under an open menu paint nothing.
bool MenuRowShown(const MenuItemListing& row, int32_t itemCount);

// Whether the row can be highlighted and chosen: it shows an item (painting
// draws the item now at its Index, whatever it was when laid out) of a kind
// that can be selected.
bool MenuRowChoosable(const MenuItemListing& row, const MenuItems* items);

// The Index of the choosable row whose top and bottom edges y lies strictly
// between; 0 when there is none.
int16_t MenuRowIndexAt(const MenuItemListings& rows, const MenuItems* items, float y);

// The row that shows the item at position index of the menu's items; nullptr
// when no row does.
std::shared_ptr<MenuItemListing> MenuRowShowing(const MenuItemListings& rows, int16_t index);

}  // namespace velt
