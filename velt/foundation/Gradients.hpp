#pragma once

#include <cstdint>

#include "velt/foundation/Colors.hpp"
#include "velt/platform/Canvas.hpp"
#include "velt/platform/Types.hpp"

namespace velt {

// Mode values of GradientRect.
constexpr int16_t kGradientHorizontal = 0;  // colour varies left to right
constexpr int16_t kGradientVertical = 1;    // colour varies top to bottom

// Direction values of GradientBox3.
constexpr int32_t kBoxStacked = 1;     // halves top and bottom, each shaded vertically
constexpr int32_t kBoxSideBySide = 2;  // halves left and right, each shaded horizontally

// Orientation value of GradientLine for a vertical line; any other is horizontal.
constexpr int32_t kLineVertical = 2;

// The rectangle X..X+Width by Y..Y+Height shaded from FromColor at its left
// (Mode 0) or top (Mode 1) edge towards ToColor, with the canvas's GradientFill
// pixel rules. An X + Width or Y + Height beyond 32 bits is error 6.
void GradientRect(Canvas& hDC, int32_t X, int32_t Y, int32_t Width, int32_t Height,
                  VertexColor FromColor, VertexColor ToColor, int16_t Mode);

// Two adjoining gradients, Color1 to Color2 then Color2 to Color3. The second
// half is placed from the canvas's own edge (Height - h, or Width - w), not from
// Y or X: the controls' insets depend on that placement. A Direction other than
// 1 or 2 paints nothing. Colours must be plain (see ColorToVertexColor).
void GradientBox3(Canvas& hDC, int32_t X, int32_t Y, int32_t Width, int32_t Height,
                  OLE_COLOR Color1, OLE_COLOR Color2, OLE_COLOR Color3, int32_t Direction);

// A gradient one pixel thick: down from (X, Y) for Orientation 2, to the right
// for any other value.
void GradientLine(Canvas& hDC, int32_t X, int32_t Y, int32_t Length, int32_t Orientation,
                  OLE_COLOR Color1, OLE_COLOR Color2);

}  // namespace velt
