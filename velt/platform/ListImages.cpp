#include "velt/platform/ListImages.hpp"

#include <algorithm>
#include <cmath>

#include "velt/platform/Error.hpp"
#include "velt/platform/ImageList.hpp"
#include "velt/platform/Png.hpp"

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

// Averages with alpha weighting so transparent pixels do not darken the edges.
std::shared_ptr<Picture> scaledPicture(const Picture& source, int32_t width, int32_t height) {
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

}  // namespace

ListImages::ListImages(ImageList& owner) : owner_(owner) {}

ListImages::~ListImages() {
  for (const auto& item : items_)
    item->detach();
}

void ListImages::checkIndex(int32_t index) const {
  if (index < 1 || index > Count())
    throw Error(errSubscriptOutOfRange, "ListImages: index " + std::to_string(index) +
                                            " is outside 1 to " + std::to_string(Count()));
}

std::shared_ptr<ListImage> ListImages::Item(int32_t index) const {
  checkIndex(index);
  return items_[static_cast<size_t>(index - 1)];
}

std::shared_ptr<ListImage> ListImages::Item(const std::string& key) const {
  const auto it = std::find_if(items_.begin(), items_.end(), [&](const auto& item) {
    return !key.empty() && item->Key() == key;
  });
  if (it == items_.end())
    throw Error(errSubscriptOutOfRange, "ListImages: no image has the key \"" + key + "\"");
  return *it;
}

std::shared_ptr<ListImage> ListImages::Add(std::shared_ptr<Picture> picture,
                                           const std::string& key) {
  if (!picture) throw Error(errObjectNotSet, "ListImages.Add: no picture given");
  if (!key.empty() && std::any_of(items_.begin(), items_.end(),
                                  [&](const auto& item) { return item->Key() == key; }))
    throw Error(errKeyAlreadyExists, "ListImages.Add: the key \"" + key + "\" is already in use");
  if (picture->Width() < 1 || picture->Height() < 1)
    throw Error(errInvalidPicture, "ListImages.Add: the picture is empty (" +
                                       std::to_string(picture->Width()) + "x" +
                                       std::to_string(picture->Height()) + ")");
  owner_.takeSizeFrom(picture->Width(), picture->Height());
  const int32_t width = owner_.ImageWidth();
  const int32_t height = owner_.ImageHeight();
  if (picture->Width() != width || picture->Height() != height)
    picture = scaledPicture(*picture, width, height);
  auto item = std::make_shared<ListImage>(&owner_, Count() + 1, key, std::move(picture));
  items_.push_back(item);
  return item;
}

std::shared_ptr<ListImage> ListImages::Add(const std::string& pngPath, const std::string& key) {
  return Add(Png::Read(pngPath), key);
}

void ListImages::Remove(int32_t index) {
  checkIndex(index);
  const auto position = items_.begin() + (index - 1);
  (*position)->detach();
  items_.erase(position);
  renumber();
}

void ListImages::Remove(const std::string& key) {
  Remove(Item(key)->Index());
}

void ListImages::Clear() {
  for (const auto& item : items_)
    item->detach();
  items_.clear();
}

void ListImages::renumber() {
  for (size_t i = 0; i < items_.size(); ++i)
    items_[i]->index_ = static_cast<int32_t>(i + 1);
}

}  // namespace velt
