#pragma once

#include <string_view>

#include "velt/foundation/ColorScheme.hpp"
#include "velt/platform/Types.hpp"

namespace velt {

class Canvas;

// The push-button chrome shared by the buttons and the parts built from them:
// the surface erased to the control's BackColor, the face shaded FillTop ->
// FillMiddle -> FillBottom in two stacked halves, then the four edges: top
// EdgeLight -> EdgeMid, left EdgeLight -> EdgeDark, bottom EdgeDark, right
// EdgeMid -> EdgeDark. The four corner pixels keep the face's colours.
void PaintButtonFace(Canvas& surface, OLE_COLOR backColor, const ColorScheme& palette);

// Prints text once with its top-left corner at (x, y) in the colour: one line,
// no clipping or wrapping, so a caption wider than the surface runs past its
// edges.
void PrintCaption(Canvas& surface, float x, float y, std::string_view text, OLE_COLOR color);

}  // namespace velt
