#pragma once

#include <cmath>
#include <cstdint>

namespace velt {

// The library's two ways from a fraction to a whole number. They live in the
// platform layer because Variant's conversions need them as much as the
// drawing routines do.

// To the nearest integer, an exact half to the even neighbour (2.5 -> 2, 3.5 -> 4).
// Written out rather than left to the floating-point rounding mode, which a
// host could have changed.
inline double RoundHalfEven(double value) {
  const double floor = std::floor(value);
  const double diff = value - floor;
  if (diff > 0.5) return floor + 1.0;
  if (diff < 0.5) return floor;
  return std::fmod(floor, 2.0) == 0.0 ? floor : floor + 1.0;
}

// Toward zero (-2.7 -> -2).
inline double Fix(double value) {
  return std::trunc(value);
}

}  // namespace velt
