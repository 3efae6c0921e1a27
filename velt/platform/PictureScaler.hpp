#pragma once

#include <cstdint>
#include <memory>

#include "velt/platform/Picture.hpp"

namespace velt {

// Resizes pictures for image lists and icons: an area average (box filter)
// when shrinking, bilinear when growing, weighted by alpha so transparent
// pixels do not darken the edges.
class PictureScaler {
 public:
  // Error 5 for sizes below 1.
  static std::shared_ptr<Picture> Scale(const Picture& source, int32_t width, int32_t height);
};

}  // namespace velt
