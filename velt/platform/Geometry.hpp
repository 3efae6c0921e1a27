#pragma once

#include <cstdint>

namespace velt {

// A point in pixels (screen or surface coordinates, as the caller says).
struct PointL {
  int32_t x = 0;
  int32_t y = 0;
  bool operator==(const PointL&) const = default;
};

struct SizeL {
  int32_t width = 0;
  int32_t height = 0;
  bool operator==(const SizeL&) const = default;
};

// A rectangle by its edges; Right and Bottom are one past the last pixel, as a
// window rectangle is.
struct RectL {
  int32_t Left = 0;
  int32_t Top = 0;
  int32_t Right = 0;
  int32_t Bottom = 0;
  int32_t Width() const { return Right - Left; }
  int32_t Height() const { return Bottom - Top; }
  bool operator==(const RectL&) const = default;
};

}  // namespace velt
