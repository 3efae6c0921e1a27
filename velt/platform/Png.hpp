#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "velt/platform/Picture.hpp"

namespace velt {

// PNG files in and out. Every PNG flavour (palette, grey, 16-bit, interlaced)
// reads as 8-bit RGBA. Errors: 53 for a missing file, 75 for one that cannot be
// read or written, 481 for data that is no PNG, is damaged or is larger than
// kMaxSize in either direction.
class Png {
 public:
  static constexpr int32_t kMaxSize = 16384;

  static std::shared_ptr<Picture> Read(const std::string& path);
  static std::shared_ptr<Picture> ReadMemory(std::span<const uint8_t> data);

  static void Write(const std::string& path, const Picture& picture);
  // An opaque RGB image from pixels 0x00RRGGBB, as canvases keep them.
  static void WriteRGB(const std::string& path, const uint32_t* pixels, int32_t width,
                       int32_t height);
};

}  // namespace velt
