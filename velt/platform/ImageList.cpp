#include "velt/platform/ImageList.hpp"

#include <string>

#include "velt/platform/Error.hpp"

namespace velt {

ImageList::ImageList() : listImages_(*this) {}

int16_t ImageList::checkedSize(int16_t size, int16_t current, const char* name) const {
  if (size < 1 || size > kMaxImageSize)
    throw Error(errInvalidPropertyValue, std::string("ImageList.") + name + " " +
                                             std::to_string(size) + " is outside 1 to " +
                                             std::to_string(kMaxImageSize));
  if (size != current && listImages_.Count() > 0)
    throw Error(errInvalidPropertyValue, std::string("ImageList.") + name +
                                             " cannot change while the list holds " +
                                             std::to_string(listImages_.Count()) + " images");
  return size;
}

void ImageList::ImageWidth(int16_t width) {
  imageWidth_ = checkedSize(width, imageWidth_, "ImageWidth");
}

void ImageList::ImageHeight(int16_t height) {
  imageHeight_ = checkedSize(height, imageHeight_, "ImageHeight");
}

void ImageList::takeSizeFrom(int32_t width, int32_t height) {
  const auto checked = [](int32_t size, int16_t current, const char* name) {
    if (current != 0) return current;
    if (size < 1 || size > kMaxImageSize)
      throw Error(errInvalidPropertyValue, std::string("ImageList.") + name +
                                               " cannot be taken from a first image " +
                                               std::to_string(size) + " pixels in size");
    return static_cast<int16_t>(size);
  };
  const int16_t newWidth = checked(width, imageWidth_, "ImageWidth");
  const int16_t newHeight = checked(height, imageHeight_, "ImageHeight");
  imageWidth_ = newWidth;
  imageHeight_ = newHeight;
}

}  // namespace velt
