#include "velt/platform/ListImages.hpp"

#include <algorithm>

#include "velt/platform/Error.hpp"
#include "velt/platform/ImageList.hpp"
#include "velt/platform/PictureScaler.hpp"
#include "velt/platform/Png.hpp"

namespace velt {

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
    picture = PictureScaler::Scale(*picture, width, height);
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
