#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "velt/foundation/ControlFrame.hpp"

namespace velt {

class ImageList;

// The push button: a shaded face with a centred caption and an optional icon
// from an image list. It follows the control frame without exception and adds
// the focused look (its resting palette tinted with TabSelectColor).
class veltButton : public ControlFrame {
 public:
  static constexpr int16_t kID = 0;
  static constexpr OLE_COLOR kDefaultTabSelectColor = 38631;  // 0x0096E7, an orange

  veltButton() = default;

  std::string ClassName() const override { return "veltButton"; }
  int16_t ID() const override { return kID; }

  OLE_COLOR TabSelectColor() const { return tabSelectColor_; }
  void TabSelectColor(OLE_COLOR color);
  std::shared_ptr<velt::ImageList> ImageList() const { return imageList_; }
  void ImageList(std::shared_ptr<velt::ImageList> imageList);  // by reference; nullptr = none
  int16_t ImageIndex() const { return imageIndex_; }
  void ImageIndex(int16_t index);  // 1-based; 0 = no icon

 protected:
  ColorScheme palette(ButtonState state) const override;
  void paint(Canvas& surface, const ColorScheme& palette) override;
  void initOwnProperties() override;
  void readOwnProperties(const PropertyBag& bag) override;
  void writeOwnProperties(PropertyBag& bag) const override;

 private:
  struct Placement;

  bool hasIcon() const { return imageList_ && imageIndex_ != 0; }
  Placement place(const Canvas& surface) const;
  void drawIcon(Canvas& surface, float x, float y, bool enabled, OLE_COLOR monochrome) const;

  OLE_COLOR tabSelectColor_ = kDefaultTabSelectColor;
  std::shared_ptr<velt::ImageList> imageList_;
  int16_t imageIndex_ = 0;
};

}  // namespace velt
