#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include "velt/platform/Picture.hpp"
#include "velt/utilities/IconImage.hpp"

namespace velt {

// The images of icons and cursors that are not PNG: a BITMAPINFOHEADER whose
// height counts the colour rows and the AND mask together, an optional
// palette, the colour rows bottom up and the 1-bit AND mask. Depths 1, 4, 8
// (palette), 24 and 32 (with alpha) without compression. Without alpha a set
// mask bit makes the pixel transparent; a 32-bit image whose alpha is zero
// everywhere is taken as one without alpha, as icon writers have long relied
// on.
class IconBitmap {
 public:
  static constexpr int32_t kMaxSide = 1024;

  // Also the PNG images of icons (signature and header). Nothing when the
  // bytes are neither, or promise a size or depth outside the limits.
  static std::optional<IconImage> Describe(std::span<const uint8_t> bytes);

  // The pixels of an image Describe gave (PNG through libpng's simplified reader, its
  // size checked against the description); nullptr when the bytes are
  // malformed or end early.
  static std::shared_ptr<Picture> Decode(const IconImage& image);
};

}  // namespace velt
