#include "velt/platform/PictureScaler.hpp"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "velt/platform/Error.hpp"

namespace velt {

namespace {

struct Tap {
  int32_t source;
  float weight;
};

// For each target position along one axis, the source positions it is made of:
// the covered span (box filter) when shrinking, the two nearest neighbours
// (bilinear) when growing.
std::vector<std::vector<Tap>> axisTaps(int32_t sourceSize, int32_t targetSize) {
  std::vector<std::vector<Tap>> taps(static_cast<size_t>(targetSize));
  const double scale = static_cast<double>(sourceSize) / targetSize;
  for (int32_t t = 0; t < targetSize; ++t) {
    auto& list = taps[static_cast<size_t>(t)];
    if (scale >= 1.0) {
      const double start = t * scale;
      const double end = start + scale;
      const auto last = std::min(static_cast<int32_t>(std::ceil(end)), sourceSize);
      for (auto s = static_cast<int32_t>(start); s < last; ++s) {
        const double covered = std::min(end, s + 1.0) - std::max(start, static_cast<double>(s));
        if (covered > 0) list.push_back({s, static_cast<float>(covered / scale)});
      }
    } else {
      const double centre = std::clamp((t + 0.5) * scale - 0.5, 0.0, sourceSize - 1.0);
      const auto first = static_cast<int32_t>(centre);
      const auto fraction = static_cast<float>(centre - first);
      list.push_back({first, 1.0f - fraction});
      if (first + 1 < sourceSize) list.push_back({first + 1, fraction});
    }
  }
  return taps;
}

uint32_t channel(float value) {
  return static_cast<uint32_t>(std::clamp(std::lround(value * 255.0f), 0L, 255L));
}

}  // namespace

std::shared_ptr<Picture> PictureScaler::Scale(const Picture& source, int32_t width,
                                              int32_t height) {
  if (width < 1 || height < 1 || source.Width() < 1 || source.Height() < 1)
    throw Error(errInvalidProcedureCall, "PictureScaler: cannot scale " +
                                             std::to_string(source.Width()) + "x" +
                                             std::to_string(source.Height()) + " to " +
                                             std::to_string(width) + "x" + std::to_string(height));
  const auto columns = axisTaps(source.Width(), width);
  const auto rows = axisTaps(source.Height(), height);
  auto target = std::make_shared<Picture>(width, height);
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t x = 0; x < width; ++x) {
      float red = 0, green = 0, blue = 0, alpha = 0;
      for (const Tap& row : rows[static_cast<size_t>(y)]) {
        for (const Tap& column : columns[static_cast<size_t>(x)]) {
          const uint32_t pixel = source.Pixel(column.source, row.source);
          const float a = static_cast<float>(pixel >> 24) / 255.0f * row.weight * column.weight;
          red += static_cast<float>((pixel >> 16) & 0xFF) / 255.0f * a;
          green += static_cast<float>((pixel >> 8) & 0xFF) / 255.0f * a;
          blue += static_cast<float>(pixel & 0xFF) / 255.0f * a;
          alpha += a;
        }
      }
      if (alpha <= 0.0f) continue;
      target->Pixel(x, y,
                    (channel(alpha) << 24) | (channel(red / alpha) << 16) |
                        (channel(green / alpha) << 8) | channel(blue / alpha));
    }
  }
  return target;
}

}  // namespace velt
