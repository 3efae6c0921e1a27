#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "velt/platform/Picture.hpp"

namespace velt {

// The system icon library the library reserves for itself: a location whose
// file name is "shell32.dll" (any letter case) and that names no existing
// file. Its numbers are the stock icons list sources and file types ask for,
// each mapped to icon-theme names (the first the theme has is used) and to a
// small drawn picture for machines without an icon theme. Numbers without an
// icon give none, as do negative ones.
class StockIcons {
 public:
  // Numbers 0 to kCount - 1 exist; only some of them hold an icon.
  static constexpr int32_t kCount = 168;

  // Whether the location's file name is the reserved one; the extractor reads
  // an existing file of that name as the file it is.
  static bool Names(const std::string& location);
  // The theme names for a number, most fitting first; empty when it holds none.
  static std::vector<std::string> ThemeNames(int32_t index);
  // The drawn picture with alpha; nullptr when the number holds no icon.
  static std::shared_ptr<Picture> Drawn(int32_t index, int32_t side);
};

}  // namespace velt
