#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace velt {

class Canvas;
class ImageList;
class ToolbarItem;
class ToolbarItems;

// The geometry of the toolbar's items, in pixels of the toolbar. Painting and
// hit-testing both take it from here, so a button lights exactly where it is
// drawn.

// Items start this far from the left edge and sit this far below the top.
constexpr int32_t kToolbarFirstLeft = 7;
constexpr int32_t kToolbarItemTop = 6;
// A button's background starts this far left of and above its item.
constexpr int32_t kToolbarButtonInsetX = 7;
constexpr int32_t kToolbarButtonInsetY = 3;
// Added to the captions and icons to give an item's width, and to the item
// height to give the bar's.
constexpr int32_t kToolbarItemPadding = 15;
constexpr int32_t kToolbarBarPadding = 14;
// Between a caption and the drop-down arrow of a mitMenu2 item, and between an
// icon and its caption.
constexpr int32_t kToolbarArrowGap = 3;
constexpr int32_t kToolbarIconGap = 3;
// The drop-down arrow: "6" of the symbol font, printed this far above the caption.
constexpr const char* kToolbarArrowFont = "Webdings";
constexpr const char* kToolbarArrowGlyph = "6";
constexpr int32_t kToolbarArrowRise = 3;

// One item laid out: its 1-based position, the left edge of its item (x of its
// caption without an icon), its width, whether it shows an icon. The button
// drawn for it covers ButtonLeft() .. ButtonLeft() + Width - 1.
struct ToolbarCell {
  int16_t Index = 0;
  int32_t Left = 0;
  int32_t Width = 0;
  bool HasIcon = false;
  int32_t ButtonLeft() const { return Left - kToolbarButtonInsetX; }
};

struct ToolbarLayout {
  int32_t ItemHeight = 0;          // h: every item's height
  int32_t TextHeight = 0;          // TextHeight("I") of the surface's font
  std::vector<ToolbarCell> Cells;  // the items that fit, in order
  bool Truncated = false;          // items after the last cell did not fit

  int32_t BarHeight() const { return ItemHeight + kToolbarBarPadding; }
  // The first item whose button columns hold x and whose item rows hold y
  // strictly (kToolbarItemTop < y < kToolbarItemTop + h); nullptr when none.
  const ToolbarCell* CellAt(float x, float y) const;
  // The laid-out cell of the item at a position; nullptr when it is hidden.
  const ToolbarCell* CellOf(int16_t index) const;
};

// Item height: the image list's ImageHeight when it is taller than a line of
// text, else the text height.
int32_t ToolbarItemHeight(int32_t textHeight, const ImageList* imageList);

// The width of a caption in the surface's font.
using ToolbarCaptionWidth = std::function<int32_t(const std::string& caption)>;

// Lays the items out along a bar barWidth pixels wide, measuring captions with
// captionWidth (the surface's TextWidth when none is given). Items whose
// button would pass the bar's right border are hidden, and every item after
// them: the bar never draws half a button.
ToolbarLayout LayOutToolbar(const Canvas& surface, const ToolbarItems& items,
                            const ImageList* imageList, int32_t barWidth,
                            const ToolbarCaptionWidth& captionWidth = {});

}  // namespace velt
