#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "velt/platform/Picture.hpp"
#include "velt/platform/Types.hpp"
#include "velt/utilities/IconImage.hpp"

namespace velt {

// Turning the images of an icon into the square picture a caller asked for.
class IconPicture {
 public:
  // The order in which to try an icon's images for a square of `side`
  // pixels: the exact size (deepest first), then the larger ones from the
  // nearest up (shrunk with an area filter), then the smaller ones from the
  // nearest down (grown). An image's size is its larger side.
  static std::vector<size_t> Preference(const std::vector<IconImage>& images, int32_t side);

  // The picture scaled to fit the square, its aspect kept, centred.
  static std::shared_ptr<Picture> Fit(const Picture& picture, int32_t side);

  // A square of MaskColor with the icon (nullptr for none) drawn over it
  // through its alpha: every pixel opaque, the caller's own picture.
  static std::shared_ptr<Picture> OverColor(const Picture* icon, int32_t side, OLE_COLOR mask);
};

}  // namespace velt
