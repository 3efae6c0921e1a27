#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "velt/platform/Picture.hpp"

namespace velt {

// A file that holds icons, read whole through RegularFile and recognized by
// its first bytes: an .ico or .cur file (one icon), a PE file (one icon per
// icon group), a PNG or an SVG picture (one icon). The kind's size limit is
// checked before the body is read; anything unreadable, unrecognized or
// larger than its limit holds no icons. Never throws.
class IconFile {
 public:
  enum class Kind { None, Ico, Pe, Png, Svg };

  static constexpr uint64_t kMaxIconBytes = uint64_t{16} << 20;
  static constexpr uint64_t kMaxExecutableBytes = uint64_t{256} << 20;

  static IconFile Open(const std::string& path);
  // For bytes already in memory (the fuzzers, tests).
  static IconFile FromBytes(std::vector<uint8_t> bytes, bool svgName = false);

  Kind Type() const { return kind_; }
  int32_t Count() const;
  // The icon at `index` (a position from 0, or for PE files a negative
  // resource identifier) as a side x side picture with alpha, from the image
  // that fits best; nullptr when there is no such icon or none of its images
  // decodes.
  std::shared_ptr<Picture> Render(int32_t index, int32_t side) const;

 private:
  std::vector<uint8_t> bytes_;
  Kind kind_ = Kind::None;
};

}  // namespace velt
