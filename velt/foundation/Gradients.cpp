#include "velt/foundation/Gradients.hpp"

#include <array>
#include <string>

#include "velt/platform/Error.hpp"

namespace velt {

namespace {

int32_t farEdge(int32_t start, int32_t extent, const char* what) {
  int32_t edge = 0;
  if (__builtin_add_overflow(start, extent, &edge)) {
    throw Error(errOverflow, std::string("GradientRect: ") + what + " " + std::to_string(start) +
                                 " + " + std::to_string(extent) + " exceeds 32 bits");
  }
  return edge;
}

TriVertex vertexAt(int32_t x, int32_t y, VertexColor color) {
  TriVertex vertex;
  vertex.x = x;
  vertex.y = y;
  vertex.Red = static_cast<uint16_t>(color.Red);
  vertex.Green = static_cast<uint16_t>(color.Green);
  vertex.Blue = static_cast<uint16_t>(color.Blue);
  vertex.Alpha = 0;
  return vertex;
}

}  // namespace

void GradientRect(Canvas& hDC, int32_t X, int32_t Y, int32_t Width, int32_t Height,
                  VertexColor FromColor, VertexColor ToColor, int16_t Mode) {
  const std::array<TriVertex, 2> vertices{
      vertexAt(X, Y, FromColor),
      vertexAt(farEdge(X, Width, "X"), farEdge(Y, Height, "Y"), ToColor)};
  // The record names the far vertex as upper left; the fill orders the corners
  // by position and keeps each colour with its vertex.
  const std::array<GradientRectMesh, 1> mesh{GradientRectMesh{1, 0}};
  hDC.GradientFill(vertices, mesh, static_cast<uint32_t>(Mode));
}

void GradientBox3(Canvas& hDC, int32_t X, int32_t Y, int32_t Width, int32_t Height,
                  OLE_COLOR Color1, OLE_COLOR Color2, OLE_COLOR Color3, int32_t Direction) {
  const VertexColor first = ColorToVertexColor(Color1);
  const VertexColor middle = ColorToVertexColor(Color2);
  const VertexColor last = ColorToVertexColor(Color3);
  if (Direction == kBoxStacked) {
    const int32_t h = Height / 2;  // C++ division truncates toward zero, as Fix does
    GradientRect(hDC, X, Y, Width, h + 1, first, middle, kGradientVertical);
    GradientRect(hDC, X, Height - h, Width, h, middle, last, kGradientVertical);
  } else if (Direction == kBoxSideBySide) {
    const int32_t w = Width / 2;
    GradientRect(hDC, X, Y, w + 1, Height, first, middle, kGradientHorizontal);
    GradientRect(hDC, Width - w, Y, w, Height, middle, last, kGradientHorizontal);
  }
}

void GradientLine(Canvas& hDC, int32_t X, int32_t Y, int32_t Length, int32_t Orientation,
                  OLE_COLOR Color1, OLE_COLOR Color2) {
  const VertexColor from = ColorToVertexColor(Color1);
  const VertexColor to = ColorToVertexColor(Color2);
  if (Orientation == kLineVertical) {
    GradientRect(hDC, X, Y, 1, Length, from, to, kGradientVertical);
  } else {
    GradientRect(hDC, X, Y, Length, 1, from, to, kGradientHorizontal);
  }
}

}  // namespace velt
