#include "velt/controls/buttons/veltButton.hpp"

#include <utility>

#include "velt/foundation/ButtonFace.hpp"
#include "velt/platform/Canvas.hpp"
#include "velt/platform/ControlHost.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/ImageList.hpp"
#include "velt/platform/PropertyBag.hpp"
#include "velt/platform/Rounding.hpp"
#include "velt/platform/Variant.hpp"

namespace velt {

namespace {

constexpr const char* kTabSelectColorKey = "TabSelectColor";
constexpr const char* kImageListKey = "ImageList";
constexpr const char* kImageIndexKey = "ImageIndex";

// An icon and one caption line are stacked when the icon plus 1.7 letter
// heights fit inside the button less 6 pixels; otherwise they sit side by side.
constexpr double kStackedTextLines = 1.7;
constexpr double kStackedMargin = 6;
constexpr double kStackedGap = 5;  // between the icon and the caption
constexpr float kSideIconX = 12;
constexpr float kSideCaptionGap = 24;  // caption X = icon width + this

float fixed(double value) {
  return static_cast<float>(Fix(value));
}

}  // namespace

// Where the icon and the caption go; the icon's position is meaningful only
// when the button has one.
struct veltButton::Placement {
  float iconX = 0;
  float iconY = 0;
  float captionX = 0;
  float captionY = 0;
};

// ---- Properties -------------------------------------------------------------

void veltButton::TabSelectColor(OLE_COLOR color) {
  tabSelectColor_ = color;
  propertyChanged(kTabSelectColorKey);
}

void veltButton::ImageList(std::shared_ptr<velt::ImageList> imageList) {
  imageList_ = std::move(imageList);
  propertyChanged(kImageListKey);
}

void veltButton::ImageIndex(int16_t index) {
  imageIndex_ = index;
  propertyChanged(kImageIndexKey);
}

void veltButton::initOwnProperties() {
  tabSelectColor_ = kDefaultTabSelectColor;
  imageList_.reset();
  imageIndex_ = 0;
}

void veltButton::readOwnProperties(const PropertyBag& bag) {
  tabSelectColor_ =
      bag.ReadProperty(kTabSelectColorKey, Variant::Color(kDefaultTabSelectColor)).ToColor();
  const std::shared_ptr<Object> stored =
      bag.ReadProperty(kImageListKey, Variant(nullptr)).ToObject();
  auto imageList = std::dynamic_pointer_cast<velt::ImageList>(stored);
  if (stored && !imageList)
    throw Error(errTypeMismatch, std::string("PropertyBag key \"") + kImageListKey +
                                     "\": the stored object is not an ImageList");
  imageList_ = std::move(imageList);
  imageIndex_ = bag.ReadProperty(kImageIndexKey, Variant(int16_t{0})).ToInteger();
}

void veltButton::writeOwnProperties(PropertyBag& bag) const {
  bag.WriteProperty(kTabSelectColorKey, Variant::Color(tabSelectColor_),
                    Variant::Color(kDefaultTabSelectColor));
  bag.WriteProperty(kImageListKey, Variant(std::static_pointer_cast<Object>(imageList_)),
                    Variant(nullptr));
  bag.WriteProperty(kImageIndexKey, Variant(imageIndex_), Variant(int16_t{0}));
}

// ---- Painting ---------------------------------------------------------------

// Only the resting state shows the focus: hovered, pressed or disabled, a
// focused button looks like any other.
ColorScheme veltButton::palette(ButtonState state) const {
  if (state == bsNormal && HasFocus() == 1)
    return SchemeFocused(BackColor(), tabSelectColor_, ForeColor());
  return ControlFrame::palette(state);
}

void veltButton::paint(Canvas& surface, const ColorScheme& palette) {
  PaintButtonFace(surface, BackColor(), palette);
  const bool enabled = host().Enabled();
  if (!enabled) clearMouseIsDown();
  const OLE_COLOR captionColor = enabled ? palette.Text : palette.EdgeDark;
  const Placement placement = place(surface);
  if (hasIcon()) drawIcon(surface, placement.iconX, placement.iconY, enabled, palette.EdgeDark);
  if (!hasIcon() || !Caption().empty())
    PrintCaption(surface, placement.captionX, placement.captionY, Caption(), captionColor);
}

veltButton::Placement veltButton::place(const Canvas& surface) const {
  const double w = surface.ScaleWidth();
  const double h = surface.ScaleHeight();
  const std::string& caption = Caption();
  Placement p;
  p.captionX = fixed(w / 2 - surface.TextWidth(caption) / 2.0);
  p.captionY = fixed(h / 2 - surface.TextHeight(caption) / 2.0);
  if (!hasIcon()) return p;

  const double iw = imageList_->ImageWidth();
  const double ih = imageList_->ImageHeight();
  p.iconX = fixed(w / 2 - iw / 2);
  p.iconY = fixed(h / 2 - ih / 2);
  if (caption.empty()) return p;

  const double t = surface.TextHeight("I");
  if (ih + kStackedTextLines * t <= h - kStackedMargin) {
    const double top = h / 2 - (ih + t + kStackedGap) / 2;
    p.iconY = fixed(top);
    p.captionY = fixed(top + ih + kStackedGap);
  } else {
    p.iconX = kSideIconX;
    p.captionX = static_cast<float>(iw + kSideCaptionGap);
  }
  return p;
}

// An icon that cannot be had (no such index, an empty list) is left out; the
// caption is drawn regardless. The disabled look paints the icon's shape in the
// palette's EdgeDark, the colour the disabled caption takes, so icon and text
// fade alike.
void veltButton::drawIcon(Canvas& surface, float x, float y, bool enabled,
                          OLE_COLOR monochrome) const {
  try {
    const std::shared_ptr<ListImage> image = imageList_->ListImages().Item(imageIndex_);
    const std::shared_ptr<Picture> icon = image ? image->ExtractIcon() : nullptr;
    if (!icon) return;
    surface.DrawPicture(*icon, static_cast<int32_t>(x), static_cast<int32_t>(y),
                        enabled ? PictureLook::Normal : PictureLook::Monochrome, monochrome);
  } catch (const Error&) {
    // Image drawing runs with errors ignored.
  }
}

}  // namespace velt
