#include "apps/velt/GalleryIcons.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "velt/platform/ImageList.hpp"
#include "velt/platform/Picture.hpp"

namespace velt::tool {

namespace {

constexpr int kSamples = 4;  // per pixel and direction
constexpr double kCentre = GalleryIcons::kSize / 2.0;
constexpr double kRadius = kCentre - 0.75;
constexpr double kRimWidth = 1.0;
constexpr double kStrokeHalfWidth = 1.1;
constexpr uint32_t kWhite = 0xFFFFFF;

struct Segment {
  double x1, y1, x2, y2;
};

struct Look {
  uint32_t disc;  // 0xRRGGBB
  std::vector<Segment> strokes;
};

Look lookOf(GalleryIcons::Symbol symbol) {
  switch (symbol) {
    case GalleryIcons::Symbol::Check:
      return {0x2E9E44, {{4.5, 8.5, 7.0, 11.0}, {7.0, 11.0, 11.5, 5.5}}};
    case GalleryIcons::Symbol::Cross:
      return {0xD23B3B, {{5.5, 5.5, 10.5, 10.5}, {10.5, 5.5, 5.5, 10.5}}};
    case GalleryIcons::Symbol::Info:
      return {0x2F6FD0, {{8.0, 4.6, 8.0, 4.7}, {8.0, 7.2, 8.0, 11.5}}};
    case GalleryIcons::Symbol::Plus:
      break;
  }
  return {0xE08A1E, {{8.0, 4.5, 8.0, 11.5}, {4.5, 8.0, 11.5, 8.0}}};
}

double distanceToSegment(double x, double y, const Segment& s) {
  const double dx = s.x2 - s.x1;
  const double dy = s.y2 - s.y1;
  const double length2 = dx * dx + dy * dy;
  const double t =
      length2 == 0 ? 0 : std::clamp(((x - s.x1) * dx + (y - s.y1) * dy) / length2, 0.0, 1.0);
  return std::hypot(x - (s.x1 + t * dx), y - (s.y1 + t * dy));
}

uint32_t darker(uint32_t rgb) {
  uint32_t result = 0;
  for (int shift = 0; shift <= 16; shift += 8)
    result |= ((((rgb >> shift) & 0xFF) * 3 / 4) & 0xFF) << shift;
  return result;
}

// The colour of one sample point, or nothing outside the disc.
bool sample(const Look& look, double x, double y, uint32_t& rgb) {
  const double fromCentre = std::hypot(x - kCentre, y - kCentre);
  if (fromCentre > kRadius) return false;
  const bool stroke = std::any_of(look.strokes.begin(), look.strokes.end(), [&](const Segment& s) {
    return distanceToSegment(x, y, s) <= kStrokeHalfWidth;
  });
  if (stroke)
    rgb = kWhite;
  else
    rgb = fromCentre > kRadius - kRimWidth ? darker(look.disc) : look.disc;
  return true;
}

uint32_t pixel(const Look& look, int32_t px, int32_t py) {
  std::array<uint32_t, 3> sum{};
  uint32_t covered = 0;
  for (int sy = 0; sy < kSamples; ++sy)
    for (int sx = 0; sx < kSamples; ++sx) {
      uint32_t rgb = 0;
      if (!sample(look, px + (sx + 0.5) / kSamples, py + (sy + 0.5) / kSamples, rgb)) continue;
      ++covered;
      for (int c = 0; c < 3; ++c)
        sum[c] += (rgb >> (16 - 8 * c)) & 0xFF;
    }
  if (covered == 0) return 0;
  const uint32_t alpha = covered * 255 / (kSamples * kSamples);
  uint32_t argb = alpha << 24;
  for (int c = 0; c < 3; ++c)
    argb |= ((sum[c] + covered / 2) / covered) << (16 - 8 * c);
  return argb;
}

}  // namespace

std::shared_ptr<Picture> GalleryIcons::Draw(Symbol symbol) {
  const Look look = lookOf(symbol);
  auto picture = std::make_shared<Picture>(kSize, kSize);
  for (int32_t y = 0; y < kSize; ++y)
    for (int32_t x = 0; x < kSize; ++x)
      picture->Pixel(x, y, pixel(look, x, y));
  return picture;
}

std::shared_ptr<ImageList> GalleryIcons::Make() {
  auto list = std::make_shared<ImageList>();
  list->ListImages().Add(Draw(Symbol::Check), "check");
  list->ListImages().Add(Draw(Symbol::Cross), "cross");
  list->ListImages().Add(Draw(Symbol::Info), "info");
  list->ListImages().Add(Draw(Symbol::Plus), "plus");
  return list;
}

}  // namespace velt::tool
