#include "velt/controls/range/ScrollBarGeometry.hpp"

#include <algorithm>
#include <cmath>

#include "velt/platform/Rounding.hpp"

namespace velt {

namespace {

constexpr int32_t kMargin = 2;  // between the bar's edge and an arrow button or the thumb

}  // namespace

ScrollBarGeometry::ScrollBarGeometry(MyOrientation orientation, int32_t width, int32_t height,
                                     int32_t buttonSide)
    : orientation_(orientation), width_(width), height_(height), buttonSide_(buttonSide) {}

RectL ScrollBarGeometry::ArrowRect(int index) const {
  const int32_t side = std::max(0, Thickness() - 2 * kMargin);
  int32_t left = kMargin;
  int32_t top = kMargin;
  if (index == 1) (Horizontal() ? left : top) = Extent() - side - kMargin;
  return RectL{left, top, left + side, top + side};
}

int32_t ScrollBarGeometry::ThumbSize() const {
  return static_cast<int32_t>(RoundHalfEven(Extent() / 2.0 - ButtonSize()));
}

int32_t ScrollBarGeometry::TrackLength() const {
  return Extent() - ThumbSize() - 2 * ButtonSize();
}

int32_t ScrollBarGeometry::ValueToPos(int32_t min, int32_t max, int32_t value) const {
  const double range = static_cast<double>(max) - min;
  const double percent =
      value == min ? 0 : RoundHalfEven(100 * (static_cast<double>(value) - min) / range);
  return static_cast<int32_t>(Fix(percent * TrackLength() / 100));
}

int32_t ScrollBarGeometry::PosToValue(double pos, int32_t min, int32_t max) const {
  const int32_t track = TrackLength();
  if (pos == 0) return min;
  // A bar too short to have a track: any move away from the start is the end.
  if (track == 0) return pos > 0 ? max : min;
  const double percent = RoundHalfEven(100 * pos / track);
  const double value = min + Fix((static_cast<double>(max) - min) * percent / 100);
  return static_cast<int32_t>(
      std::clamp(value, static_cast<double>(min), static_cast<double>(max)));
}

RectL ScrollBarGeometry::ThumbRect(int32_t thumbPos) const {
  const int32_t start = ButtonSize() + thumbPos;
  const int32_t end = start + ThumbSize();
  const int32_t acrossEnd = Thickness() - kMargin;
  if (Horizontal()) return RectL{start, kMargin, end, acrossEnd};
  return RectL{kMargin, start, acrossEnd, end};
}

ScrollBarGeometry::Part ScrollBarGeometry::PartAt(float x, float y, int32_t thumbPos) const {
  const RectL thumb = ThumbRect(thumbPos);
  const float along = Along(x, y);
  const float across = Horizontal() ? y : x;
  const int32_t start = Horizontal() ? thumb.Left : thumb.Top;
  const int32_t end = Horizontal() ? thumb.Right : thumb.Bottom;
  if (along < start) return Part::BeforeThumb;
  if (along >= end) return Part::AfterThumb;
  const int32_t acrossStart = Horizontal() ? thumb.Top : thumb.Left;
  const int32_t acrossEnd = Horizontal() ? thumb.Bottom : thumb.Right;
  return across >= acrossStart && across < acrossEnd ? Part::Thumb : Part::Beside;
}

}  // namespace velt
