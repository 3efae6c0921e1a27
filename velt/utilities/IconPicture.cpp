#include "velt/utilities/IconPicture.hpp"

#include <algorithm>
#include <numeric>
#include <tuple>

#include "velt/foundation/Colors.hpp"
#include "velt/platform/PictureScaler.hpp"

namespace velt {

std::vector<size_t> IconPicture::Preference(const std::vector<IconImage>& images, int32_t side) {
  std::vector<size_t> order(images.size());
  std::iota(order.begin(), order.end(), size_t{0});
  auto rank = [&](size_t i) {
    const int32_t size = std::max(images[i].Width, images[i].Height);
    const int group = size == side ? 0 : size > side ? 1 : 2;
    const int32_t nearness = group == 1 ? size - side : side - size;
    return std::make_tuple(group, nearness, -images[i].BitCount);
  };
  std::stable_sort(order.begin(), order.end(),
                   [&](size_t a, size_t b) { return rank(a) < rank(b); });
  return order;
}

std::shared_ptr<Picture> IconPicture::Fit(const Picture& picture, int32_t side) {
  const int32_t longer = std::max(picture.Width(), picture.Height());
  if (picture.Width() == side && picture.Height() == side)
    return std::make_shared<Picture>(picture);
  const auto width =
      std::max<int32_t>(1, static_cast<int32_t>(int64_t{picture.Width()} * side / longer));
  const auto height =
      std::max<int32_t>(1, static_cast<int32_t>(int64_t{picture.Height()} * side / longer));
  const auto scaled = PictureScaler::Scale(picture, width, height);
  if (width == side && height == side) return scaled;
  auto square = std::make_shared<Picture>(side, side);
  const int32_t left = (side - width) / 2, top = (side - height) / 2;
  for (int32_t y = 0; y < height; ++y)
    for (int32_t x = 0; x < width; ++x)
      square->Pixel(left + x, top + y, scaled->Pixel(x, y));
  return square;
}

std::shared_ptr<Picture> IconPicture::OverColor(const Picture* icon, int32_t side, OLE_COLOR mask) {
  const uint32_t background = OleToPixel(TranslateSysColor(mask)) & 0xFFFFFF;
  auto picture = std::make_shared<Picture>(
      side, side,
      std::vector<uint32_t>(static_cast<size_t>(side) * static_cast<size_t>(side),
                            background | 0xFF000000));
  if (!icon) return picture;
  const int32_t width = std::min(side, icon->Width());
  for (int32_t y = 0; y < std::min(side, icon->Height()); ++y) {
    const uint32_t* from =
        icon->Pixels() + static_cast<size_t>(y) * static_cast<size_t>(icon->Width());
    uint32_t* to = picture->Pixels() + static_cast<size_t>(y) * static_cast<size_t>(side);
    for (int32_t x = 0; x < width; ++x) {
      const uint32_t pixel = from[x];
      const uint32_t alpha = pixel >> 24;
      if (alpha == 0) continue;
      if (alpha == 255) {
        to[x] = pixel;
        continue;
      }
      uint32_t mixed = 0xFF000000;
      for (int shift : {16, 8, 0}) {
        const uint32_t over = pixel >> shift & 0xFF, under = background >> shift & 0xFF;
        mixed |= ((over * alpha + under * (255 - alpha) + 127) / 255) << shift;
      }
      to[x] = mixed;
    }
  }
  return picture;
}

}  // namespace velt
