#include "velt/foundation/ButtonFace.hpp"

#include "velt/foundation/Gradients.hpp"
#include "velt/platform/Canvas.hpp"

namespace velt {

namespace {
constexpr int32_t kLineHorizontal = 1;  // any GradientLine orientation but vertical
}  // namespace

void PaintButtonFace(Canvas& surface, OLE_COLOR backColor, const ColorScheme& palette) {
  const int32_t w = surface.ScaleWidth();
  const int32_t h = surface.ScaleHeight();
  surface.BackColor(backColor);
  GradientBox3(surface, 0, 0, w, h, palette.FillTop, palette.FillMiddle, palette.FillBottom,
               kBoxStacked);
  GradientLine(surface, 1, 0, w - 2, kLineHorizontal, palette.EdgeLight, palette.EdgeMid);
  GradientLine(surface, 0, 1, h - 2, kLineVertical, palette.EdgeLight, palette.EdgeDark);
  surface.Line(1, h - 1, w - 1, h - 1, palette.EdgeDark);
  GradientLine(surface, w - 1, 1, h - 2, kLineVertical, palette.EdgeMid, palette.EdgeDark);
}

void PrintCaption(Canvas& surface, float x, float y, std::string_view text, OLE_COLOR color) {
  surface.ForeColor(color);
  surface.CurrentX(x);
  surface.CurrentY(y);
  surface.Print(text);
}

}  // namespace velt
