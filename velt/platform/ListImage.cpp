#include "velt/platform/ListImage.hpp"

#include "velt/platform/Error.hpp"
#include "velt/platform/ImageList.hpp"
#include "velt/platform/SystemColors.hpp"

namespace velt {

ListImage::ListImage(const ImageList* owner, int32_t index, std::string key,
                     std::shared_ptr<velt::Picture> picture)
    : owner_(owner), index_(index), key_(std::move(key)), picture_(std::move(picture)) {}

std::shared_ptr<velt::Picture> ListImage::ExtractIcon() const {
  if (!owner_)
    throw Error(errObjectNotSet, "ListImage.ExtractIcon: the image \"" + key_ +
                                     "\" was removed from its image list");
  auto icon = std::make_shared<velt::Picture>(*picture_);
  if (!owner_->UseMaskColor()) return icon;
  const uint32_t mask = OleToPixel(SystemColors::Resolve(owner_->MaskColor())) & 0xFFFFFFu;
  uint32_t* pixels = icon->Pixels();
  const size_t count = static_cast<size_t>(icon->Width()) * static_cast<size_t>(icon->Height());
  for (size_t i = 0; i < count; ++i) {
    if ((pixels[i] & 0xFFFFFFu) == mask) pixels[i] &= 0xFFFFFFu;
  }
  return icon;
}

}  // namespace velt
