#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "velt/platform/Picture.hpp"

namespace velt {

// Scalable pictures through librsvg, rendered at the size asked for (the
// document fitted into the square, its aspect kept). The document comes from
// memory with no base location, so it cannot pull in other files, and
// librsvg's own limits on nesting and element counts stay on.
class SvgRenderer {
 public:
  static constexpr uint64_t kMaxBytes = uint64_t{8} << 20;

  // Whether librsvg reads the bytes as a document.
  static bool Parses(std::span<const uint8_t> bytes);

  // nullptr when the bytes are no SVG document librsvg can render, or the
  // side is outside 1 to 1024.
  static std::shared_ptr<Picture> Render(std::span<const uint8_t> bytes, int32_t side);
};

}  // namespace velt
