#pragma once

#include <cstdint>

#include "velt/foundation/ColorScheme.hpp"

namespace velt {

class Canvas;
class ImageList;
class MenuItemListings;
class MenuItems;

// What the popup menu window shows. The colours are the menu's twelve, built
// from its back, fore and selection colours (see veltPUMenu::Colors).
struct MenuLookState {
  ColorScheme colors;
  const MenuItemListings* rows = nullptr;  // nothing laid out: the bare window
  const MenuItems* items = nullptr;        // the items the rows' Index points into
  const ImageList* imageList = nullptr;    // nothing: no icons
  int16_t selectedIndex = 0;               // Index of the item under the pointer, 0 = none
  int16_t openWidth = 0;                   // pixels of the top border left open
  bool scrollArrows = false;               // a scrolling menu: arrow rows at both ends
  int32_t rowOffset = 0;                   // added to every row's Top (the scroll)
};

// Paints the whole menu window: clears it, draws the border with its gap, the
// highlight of the row under the pointer, then each row. The rows' captions
// switch the surface font's bold flag, so the surface must own its font.
void PaintMenu(Canvas& surface, const MenuLookState& state);

// Sets the surface font's bold flag, touching the font only when it differs.
void MatchBold(Canvas& surface, bool bold);

}  // namespace velt
