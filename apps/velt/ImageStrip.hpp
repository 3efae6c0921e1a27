#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace velt {

class ImageList;

namespace tool {

// An image list given by `velt snap --imagelist FILE.png[:W]`: a PNG holding
// a horizontal strip of square icons W pixels wide (by default as wide as the
// strip is high), cut into the list's images from the left.
struct ImageStrip {
  std::string File;
  std::optional<int32_t> Width;

  // Error 5 naming --imagelist for a W that is not 1..1024.
  static ImageStrip Parse(std::string_view text);
  // Reads the file (the PNG errors: 53, 75, 481) and cuts it; error 5 when the
  // strip is not as high as the icons are wide or not a whole number of them.
  std::shared_ptr<ImageList> Load() const;
};

}  // namespace tool
}  // namespace velt
