#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "velt/utilities/IconImage.hpp"

namespace velt {

// The images of an .ico or .cur file: a directory (reserved 0, type 1 for an
// icon or 2 for a cursor, a count) and an entry per image with its byte range.
// Entries whose range leaves the file, or whose bytes are neither a bitmap nor
// a PNG within IconBitmap's limits, are left out.
class IcoReader {
 public:
  // Whether the bytes start like an icon or cursor directory.
  static bool Recognizes(std::span<const uint8_t> file);
  // The usable images in the directory's order; empty for anything else.
  static std::vector<IconImage> Images(std::span<const uint8_t> file);
};

}  // namespace velt
