#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "velt/platform/Picture.hpp"

namespace velt {

// PNG files in and out. Every PNG flavour (palette, grey, 16-bit, interlaced)
// reads as 8-bit RGBA. A file must be a regular file of at most kMaxFileBytes;
// its signature and header are checked, and the size they promise against the
// limits, before the rest of it is read or anything is allocated for pixels.
// Errors: 53 for a missing file, 75 for one that cannot be read or written or
// is no regular file, 481 for data that is no PNG, is damaged, is larger than
// kMaxSize in either direction or has more than maxPixels pixels.
//
// Files are written through ReplaceFile: a temporary file renamed over the
// target when complete.
class Png {
 public:
  static constexpr int32_t kMaxSize = 16384;
  static constexpr uint64_t kMaxPixels = uint64_t{kMaxSize} * kMaxSize;
  static constexpr uint64_t kMaxFileBytes = uint64_t{64} << 20;

  static std::shared_ptr<Picture> Read(const std::string& path, uint64_t maxPixels = kMaxPixels);
  static std::shared_ptr<Picture> ReadMemory(std::span<const uint8_t> data,
                                             uint64_t maxPixels = kMaxPixels);

  static void Write(const std::string& path, const Picture& picture);
  // An opaque RGB image from pixels 0x00RRGGBB, as canvases keep them.
  static void WriteRGB(const std::string& path, const uint32_t* pixels, int32_t width,
                       int32_t height);
};

}  // namespace velt
