#pragma once

#include <cstdint>

#include "velt/platform/ListImages.hpp"
#include "velt/platform/Object.hpp"
#include "velt/platform/Types.hpp"

namespace velt {

// The outside image-list control the controls take their icons from: images of
// one size, addressed by a 1-based index or a key, with a mask colour that
// ExtractIcon turns transparent.
class ImageList : public Object {
 public:
  static constexpr OLE_COLOR kDefaultMaskColor = 0xC0C0C0;
  static constexpr int16_t kMaxImageSize = 1024;

  ImageList();
  ImageList(const ImageList&) = delete;
  ImageList& operator=(const ImageList&) = delete;

  // 0 until set or until the first image is added. Error 380 outside 1..1024 or
  // for a change while the list holds images.
  int16_t ImageWidth() const { return imageWidth_; }
  void ImageWidth(int16_t width);
  int16_t ImageHeight() const { return imageHeight_; }
  void ImageHeight(int16_t height);

  OLE_COLOR MaskColor() const { return maskColor_; }
  void MaskColor(OLE_COLOR color) { maskColor_ = color; }
  bool UseMaskColor() const { return useMaskColor_; }
  void UseMaskColor(bool use) { useMaskColor_ = use; }

  velt::ListImages& ListImages() { return listImages_; }
  const velt::ListImages& ListImages() const { return listImages_; }

 private:
  friend class velt::ListImages;

  int16_t checkedSize(int16_t size, int16_t current, const char* name) const;
  void takeSizeFrom(int32_t width, int32_t height);  // for the first image

  int16_t imageWidth_ = 0;
  int16_t imageHeight_ = 0;
  OLE_COLOR maskColor_ = kDefaultMaskColor;
  bool useMaskColor_ = true;
  velt::ListImages listImages_;
};

}  // namespace velt
