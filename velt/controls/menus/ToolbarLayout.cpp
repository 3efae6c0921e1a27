#include "velt/controls/menus/ToolbarLayout.hpp"

#include <memory>

#include "velt/controls/menus/ToolbarItems.hpp"
#include "velt/platform/Canvas.hpp"
#include "velt/platform/ImageList.hpp"

namespace velt {

const ToolbarCell* ToolbarLayout::CellAt(float x, float y) const {
  if (!(y > kToolbarItemTop && y < kToolbarItemTop + ItemHeight)) return nullptr;
  for (const ToolbarCell& cell : Cells)
    if (x >= cell.ButtonLeft() && x < cell.ButtonLeft() + cell.Width) return &cell;
  return nullptr;
}

const ToolbarCell* ToolbarLayout::CellOf(int16_t index) const {
  for (const ToolbarCell& cell : Cells)
    if (cell.Index == index) return &cell;
  return nullptr;
}

int32_t ToolbarItemHeight(int32_t textHeight, const ImageList* imageList) {
  if (imageList && imageList->ImageHeight() > textHeight) return imageList->ImageHeight();
  return textHeight;
}

ToolbarLayout LayOutToolbar(const Canvas& surface, const ToolbarItems& items,
                            const ImageList* imageList, int32_t barWidth,
                            const ToolbarCaptionWidth& captionWidth) {
  ToolbarLayout layout;
  layout.TextHeight = surface.TextHeight("I");
  layout.ItemHeight = ToolbarItemHeight(layout.TextHeight, imageList);
  // Widths add up in 64 bits: thousands of long captions cannot wrap around.
  int64_t x = kToolbarFirstLeft;
  int16_t index = 0;
  for (const std::shared_ptr<ToolbarItem>& item : items) {
    ++index;
    const bool hasIcon = imageList && item->IconIndex() != 0;
    const int32_t textWidth =
        captionWidth ? captionWidth(item->Caption()) : surface.TextWidth(item->Caption());
    int64_t width = int64_t{textWidth} + kToolbarItemPadding;
    if (hasIcon) width += imageList->ImageWidth();
    if (item->Style() == mitMenu2)
      width += kToolbarArrowGap + surface.TextWidth(kToolbarArrowGlyph);
    if (x - kToolbarButtonInsetX + width > barWidth - 1) {
      layout.Truncated = true;
      break;
    }
    layout.Cells.push_back(
        ToolbarCell{index, static_cast<int32_t>(x), static_cast<int32_t>(width), hasIcon});
    x += width;
  }
  return layout;
}

}  // namespace velt
