#include "velt/controls/menus/MenuLook.hpp"

#include <memory>

#include "velt/controls/menus/MenuItem.hpp"
#include "velt/controls/menus/MenuItemListing.hpp"
#include "velt/controls/menus/MenuItemListings.hpp"
#include "velt/controls/menus/MenuItems.hpp"
#include "velt/controls/menus/MenuLayout.hpp"
#include "velt/foundation/Colors.hpp"
#include "velt/foundation/Gradients.hpp"
#include "velt/platform/Canvas.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/ImageList.hpp"

namespace velt {

namespace {

// Where things sit inside a row, in pixels.
constexpr int32_t kShadeInset = 3;  // highlight and title shading, from either side
constexpr int32_t kHighlightFrameInset = 2;
constexpr int32_t kTitleCaptionTop = 8;
constexpr int32_t kCheckLeft = 4;         // the check frame's left edge
constexpr int32_t kCheckRightGap = 9;     // from the check frame's right edge to the captions
constexpr int32_t kIconColumnMargin = 4;  // the icon is centred in the column less this

// The roles of the menu's twelve colours (entries 2, 4, 7, 8, 9, 10 and 11).
struct Roles {
  OLE_COLOR frame;              // 7: window, highlight and check frames, separator end, title text
  OLE_COLOR caption;            // 8
  OLE_COLOR separatorStart;     // 2
  OLE_COLOR titleStart;         // 4
  OLE_COLOR titleEnd;           // 2
  OLE_COLOR highlightStart;     // 10
  OLE_COLOR highlightEnd;       // 9
  OLE_COLOR checkFill;          // 9
  OLE_COLOR checkFillSelected;  // 11
};

Roles rolesOf(const ColorScheme& c) {
  return Roles{c.EdgeDark, c.Text,    c.FillTop, c.FillBottom, c.FillTop,
               c.Accent2,  c.Accent1, c.Accent1, c.Accent3};
}

// A one-pixel outline with both corners inclusive.
void frame(Canvas& surface, int32_t x1, int32_t y1, int32_t x2, int32_t y2, OLE_COLOR color) {
  if (x2 < x1 || y2 < y1) return;
  surface.FillRect(x1, y1, x2 - x1 + 1, 1, color);
  surface.FillRect(x1, y2, x2 - x1 + 1, 1, color);
  surface.FillRect(x1, y1, 1, y2 - y1 + 1, color);
  surface.FillRect(x2, y1, 1, y2 - y1 + 1, color);
}

void shadeAcross(Canvas& surface, int32_t x, int32_t y, int32_t width, int32_t height,
                 OLE_COLOR from, OLE_COLOR to) {
  GradientRect(surface, x, y, width, height, ColorToVertexColor(from), ColorToVertexColor(to),
               kGradientHorizontal);
}

void printAt(Canvas& surface, int32_t x, int32_t y, const std::string& text, OLE_COLOR color) {
  surface.ForeColor(color);
  surface.CurrentX(static_cast<float>(x));
  surface.CurrentY(static_cast<float>(y));
  surface.Print(text);
}

// The left end of the top border is left open over openWidth pixels, where the
// menu touches the control that opened it.
void paintBorder(Canvas& surface, int16_t openWidth, OLE_COLOR color) {
  const int32_t w = surface.ScaleWidth();
  const int32_t h = surface.ScaleHeight();
  surface.FillRect(0, 0, 1, h, color);
  surface.FillRect(w - 1, 0, 1, h, color);
  surface.FillRect(0, h - 1, w - 1, 1, color);
  surface.FillRect(openWidth, 0, w - openWidth, 1, color);
}

void paintHighlight(Canvas& surface, const MenuLookState& state, const Roles& roles) {
  if (!state.rows) return;
  const std::shared_ptr<MenuItemListing> row = MenuRowShowing(*state.rows, state.selectedIndex);
  if (!row) return;
  const int32_t w = surface.ScaleWidth();
  const int32_t top = row->Top() + state.rowOffset;
  shadeAcross(surface, kShadeInset, top + 1, w - 2 * kShadeInset, row->Height() - 2,
              roles.highlightStart, roles.highlightEnd);
  frame(surface, kHighlightFrameInset, top, w - 1 - kHighlightFrameInset, top + row->Height() - 1,
        roles.frame);
}

// A triangle pointing up or down, centred in the band, in the frame colour.
void paintArrowRow(Canvas& surface, int32_t top, bool up, OLE_COLOR back, OLE_COLOR color) {
  const int32_t w = surface.ScaleWidth();
  surface.FillRect(1, top, w - 2, kMenuArrowRowHeight, back);
  constexpr int32_t kHalf = 4;
  const int32_t middle = top + kMenuArrowRowHeight / 2;
  for (int32_t i = 0; i < kHalf; ++i) {
    const int32_t y = up ? middle - kHalf / 2 + i : middle + kHalf / 2 - i;
    surface.FillRect(w / 2 - i, y, 2 * i + 1, 1, color);
  }
}

// An icon the image list cannot give is left out.
void paintIcon(Canvas& surface, const ImageList* imageList, int16_t icon, int32_t top,
               int32_t column, int32_t height) {
  if (!imageList || icon == 0) return;
  try {
    const int32_t x = (column - kIconColumnMargin) / 2 - imageList->ImageWidth() / 2;
    const int32_t y = top + height / 2 - imageList->ImageHeight() / 2;
    const std::shared_ptr<Picture> picture = imageList->ListImages().Item(icon)->ExtractIcon();
    if (picture) surface.DrawPicture(*picture, x, y);
  } catch (const Error&) {
    // Image drawing runs with errors ignored.
  }
}

void paintCheck(Canvas& surface, int32_t top, int32_t height, int32_t column, bool underPointer,
                const Roles& roles) {
  surface.FillRect(kCheckLeft + 1, top + 2, column - kCheckRightGap - kCheckLeft, height - 3,
                   underPointer ? roles.checkFillSelected : roles.checkFill);
  frame(surface, kCheckLeft, top + 1, column - kCheckRightGap, top + height - 2, roles.frame);
}

void paintRow(Canvas& surface, const MenuLookState& state, const Roles& roles,
              const MenuItemListing& row, const MenuItem& item) {
  const int32_t w = surface.ScaleWidth();
  const int32_t top = row.Top() + state.rowOffset;
  const int32_t h = row.Height();
  const int32_t column = MenuIconColumnWidth(state.imageList);
  MatchBold(surface, item.Bold());
  switch (item.ItemType()) {
    case itPlaceholder:
      GradientLine(surface, 1, top + 1, w, 1, roles.separatorStart, roles.frame);
      return;
    case itTitle:
      shadeAcross(surface, kShadeInset, top + 1, w - 2 * kShadeInset, h - 2, roles.titleStart,
                  roles.titleEnd);
      printAt(surface, column, top + kTitleCaptionTop, item.Caption(), roles.frame);
      break;
    case itNormal:
    case itCheck:
      printAt(surface, column, top + h / 2 - surface.TextHeight("I") / 2, item.Caption(),
              roles.caption);
      if (item.ItemType() == itCheck && item.Checked())
        paintCheck(surface, top, h, column, state.selectedIndex == row.Index(), roles);
      break;
    default:
      return;  // an unknown kind keeps its height and shows nothing
  }
  paintIcon(surface, state.imageList, item.Icon(), top, column, h);
}

}  // namespace

void MatchBold(Canvas& surface, bool bold) {
  if (surface.Font()->Bold() != bold) surface.Font()->Bold(bold);
}

void PaintMenu(Canvas& surface, const MenuLookState& state) {
  const Roles roles = rolesOf(state.colors);
  surface.Clear();
  paintBorder(surface, state.openWidth, roles.frame);
  paintHighlight(surface, state, roles);
  if (state.rows && state.items) {
    const int32_t count = state.items->Count();
    const int32_t height = surface.ScaleHeight();
    for (const std::shared_ptr<MenuItemListing>& row : *state.rows) {
      // The items may have been changed under an open menu: a row whose item
      // went shows nothing.
      if (!MenuRowShown(*row, count)) continue;
      const int32_t top = row->Top() + state.rowOffset;
      if (top + row->Height() <= 0 || top >= height) continue;  // scrolled out of sight
      paintRow(surface, state, roles, *row, *state.items->Item(row->Index()));
    }
  }
  if (!state.scrollArrows) return;
  // The arrow rows cover what scrolled under them, then the border is whole again.
  paintArrowRow(surface, 1, true, state.colors.Back, roles.frame);
  paintArrowRow(surface, surface.ScaleHeight() - 1 - kMenuArrowRowHeight, false, state.colors.Back,
                roles.frame);
  paintBorder(surface, state.openWidth, roles.frame);
}

}  // namespace velt
