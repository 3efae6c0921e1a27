#pragma once

#include <cstdint>
#include <memory>

namespace velt {

class ImageList;
class Picture;

namespace tool {

// Small pictures drawn in code, so the gallery needs no files: a white symbol
// on a coloured disc, kSize pixels square, anti-aliased, transparent around
// the disc.
class GalleryIcons {
 public:
  static constexpr int32_t kSize = 16;

  enum class Symbol { Check, Cross, Info, Plus };

  static std::shared_ptr<Picture> Draw(Symbol symbol);
  // The four symbols in the order above, keyed "check", "cross", "info", "plus".
  static std::shared_ptr<ImageList> Make();
};

}  // namespace tool
}  // namespace velt
