#pragma once

#include <cstdint>
#include <span>

namespace velt {

// One image of an icon as its container holds it: the bytes of a BMP without
// its file header (and with its AND mask) or of a PNG, and the size and depth
// read from those bytes themselves (a directory's own claims are not trusted).
// The bytes point into the container's buffer.
struct IconImage {
  int32_t Width = 0;
  int32_t Height = 0;
  int32_t BitCount = 0;
  bool IsPng = false;
  std::span<const uint8_t> Bytes;
};

}  // namespace velt
