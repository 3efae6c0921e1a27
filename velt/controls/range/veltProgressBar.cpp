#include "velt/controls/range/veltProgressBar.hpp"

#include <algorithm>
#include <array>
#include <utility>

#include "velt/foundation/ButtonFace.hpp"
#include "velt/foundation/Colors.hpp"
#include "velt/foundation/Gradients.hpp"
#include "velt/foundation/NumberText.hpp"
#include "velt/platform/Canvas.hpp"
#include "velt/platform/ControlHost.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/Font.hpp"
#include "velt/platform/PropertyBag.hpp"
#include "velt/platform/Rounding.hpp"
#include "velt/platform/Variant.hpp"

namespace velt {

namespace {

constexpr const char* kOrientationKey = "Orientation";
constexpr const char* kStyleKey = "Style";
constexpr const char* kValueKey = "Value";
constexpr const char* kCaptionKey = "Caption";

constexpr OLE_COLOR kPaletteThird = 0xFFFFFF;
constexpr int32_t kLineHorizontal = 1;  // any GradientLine orientation but vertical

// Blocks sit 3 pixels inside the frame, 6 pixels long on an 8-pixel pitch; the
// first one starts a pixel further in, at 4.
constexpr int32_t kInset = 3;
constexpr int32_t kBlockLength = 6;
constexpr int32_t kBlockPitch = 8;
constexpr int32_t kFirstBlock = 4;
// The search comet's three blocks trail one pitch apart, so its track is
// longer than the bar by the whole comet and one pixel: at 100 it has left.
constexpr int32_t kCometLength = 3 * kBlockPitch + 1;

// BlendColor weights (the share of BackColor) of the three colours of a block:
// light, middle and dark across the bar's thickness.
struct BlockWeights {
  int32_t light;
  int32_t middle;
  int32_t dark;
};
constexpr BlockWeights kBlockWeights{180, 140, 80};

// The comet: the lead block, then two fainter ones trailing behind it.
struct CometBlock {
  int32_t offset;  // behind the head
  BlockWeights weights;
};
constexpr std::array<CometBlock, 3> kComet{{
    {0, kBlockWeights},
    {kBlockPitch, {198, 165, 120}},
    {2 * kBlockPitch, {210, 180, 130}},
}};

// The caption's halo: sixteen prints in the back colour around the text, the
// nearest ring first, then the ring two pixels out.
struct Offset {
  int32_t dx;
  int32_t dy;
};
constexpr std::array<Offset, 16> kHalo{{{-1, 0},
                                        {0, -1},
                                        {1, 0},
                                        {0, 1},
                                        {-1, -1},
                                        {1, -1},
                                        {1, 1},
                                        {-1, 1},
                                        {-2, 0},
                                        {0, -2},
                                        {2, 0},
                                        {0, 2},
                                        {-2, -2},
                                        {2, -2},
                                        {2, 2},
                                        {-2, 2}}};

}  // namespace

struct veltProgressBar::BlockColors {
  OLE_COLOR light;
  OLE_COLOR middle;
  OLE_COLOR dark;

  static BlockColors Of(OLE_COLOR back, OLE_COLOR fore, const BlockWeights& weights) {
    return BlockColors{BlendColor(back, fore, weights.light),
                       BlendColor(back, fore, weights.middle),
                       BlendColor(back, fore, weights.dark)};
  }
};

veltProgressBar::~veltProgressBar() = default;

// ---- Properties -------------------------------------------------------------

void veltProgressBar::BackColor(OLE_COLOR color) {
  frame_.BackColor = color;
  propertyChanged(FrameProperties::Key(FrameProperty::BackColor));
}

bool veltProgressBar::Enabled() const {
  return host().Enabled();
}

void veltProgressBar::Enabled(bool enabled) {
  host().Enabled(enabled);
  propertyChanged(FrameProperties::Key(FrameProperty::Enabled));
}

std::shared_ptr<velt::Font> veltProgressBar::Font() const {
  return host().Font();
}

void veltProgressBar::Font(std::shared_ptr<velt::Font> font) {
  if (!font) throw Error(errObjectNotSet, ClassName() + ".Font: no font object given");
  host().Font(std::move(font));
  propertyChanged(FrameProperties::Key(FrameProperty::Font));
}

void veltProgressBar::Orientation(MyOrientation orientation) {
  orientation_ = orientation;
  propertyChanged(kOrientationKey);
}

void veltProgressBar::Style(MyType style) {
  style_ = style;
  propertyChanged(kStyleKey);
}

void veltProgressBar::Value(int16_t value) {
  value_ = std::clamp(value, kLowestValue, kHighestValue);
  propertyChanged(kValueKey);
}

void veltProgressBar::Caption(const std::string& caption) {
  caption_ = caption;
  propertyChanged(kCaptionKey);
}

void veltProgressBar::ForeColor(OLE_COLOR color) {
  frame_.ForeColor = color;
  propertyChanged(FrameProperties::Key(FrameProperty::ForeColor));
}

void veltProgressBar::propertyChanged(const std::string& name) {
  if (!host_) return;
  host_->PropertyChanged(name);
  repaint();
}

ControlHost& veltProgressBar::host() const {
  if (!host_)
    throw Error(errObjectNotSet, ClassName() + ": the control is not sited on a container");
  return *host_;
}

// ---- Life cycle and persistence ---------------------------------------------

void veltProgressBar::Initialize(ControlHost& host) {
  host_ = &host;
}

void veltProgressBar::InitProperties() {
  ControlHost& h = host();
  frame_.BackColor = FrameProperties::kDefaultBackColor;
  h.Font(h.AmbientFont());
  orientation_ = pbHorizontal;
  style_ = tNormal;
  value_ = kDefaultValue;
  caption_ = kValueCaption;
  frame_.ForeColor = FrameProperties::kDefaultForeColor;
  repaint();
}

// A stored Value is taken as it is, even outside 0..100.
void veltProgressBar::ReadProperties(PropertyBag& bag) {
  ControlHost& h = host();
  frame_.Read(FrameProperty::BackColor, bag, h);
  frame_.Read(FrameProperty::Enabled, bag, h);
  frame_.Read(FrameProperty::Font, bag, h);
  orientation_ = static_cast<MyOrientation>(
      bag.ReadProperty(kOrientationKey, Variant(int32_t{pbHorizontal})).ToLong());
  style_ = static_cast<MyType>(bag.ReadProperty(kStyleKey, Variant(int32_t{tNormal})).ToLong());
  value_ = bag.ReadProperty(kValueKey, Variant(kDefaultValue)).ToInteger();
  caption_ = bag.ReadProperty(kCaptionKey, Variant(kValueCaption)).ToString();
  frame_.Read(FrameProperty::ForeColor, bag, h);
  repaint();
}

void veltProgressBar::WriteProperties(PropertyBag& bag) {
  const ControlHost& h = host();
  frame_.Write(FrameProperty::BackColor, bag, h);
  frame_.Write(FrameProperty::Enabled, bag, h);
  frame_.Write(FrameProperty::Font, bag, h);
  bag.WriteProperty(kOrientationKey, Variant(int32_t{orientation_}),
                    Variant(int32_t{pbHorizontal}));
  bag.WriteProperty(kStyleKey, Variant(int32_t{style_}), Variant(int32_t{tNormal}));
  bag.WriteProperty(kValueKey, Variant(value_), Variant(kDefaultValue));
  bag.WriteProperty(kCaptionKey, Variant(caption_), Variant(kValueCaption));
  frame_.Write(FrameProperty::ForeColor, bag, h);
  repaint();
}

void veltProgressBar::Resize() {
  repaint();
}

void veltProgressBar::Terminate() {
  host_ = nullptr;
}

// ---- Painting ---------------------------------------------------------------

// A disabled bar shows its frame and background only.
void veltProgressBar::repaint() {
  if (!host_) return;
  Canvas& surface = host_->Surface();
  if (std::shared_ptr<velt::Font> font = host_->Font(); font && surface.Font() != font)
    surface.Font(std::move(font));
  const bool enabled = host_->Enabled();
  const OLE_COLOR back = frame_.BackColor;
  const OLE_COLOR fore = frame_.ForeColor;
  surface.Clear();
  drawFrame(surface, enabled ? SchemeNormal(back, fore, kPaletteThird)
                             : SchemeDisabled(back, fore, kPaletteThird));
  if (!enabled) return;
  if (value_ >= 1) {
    if (style_ == tNormal)
      drawBlocks(surface);
    else if (style_ == tSearch)
      drawComet(surface);
  }
  drawOutlinedText(surface, captionText());
}

// The trough is shaded across the bar's thickness: the orientation's value is
// the matching GradientBox3 direction, so an unknown orientation leaves the
// back colour with only the edges on it.
void veltProgressBar::drawFrame(Canvas& surface, const ColorScheme& scheme) const {
  const int32_t w = surface.ScaleWidth();
  const int32_t h = surface.ScaleHeight();
  surface.BackColor(frame_.BackColor);
  GradientBox3(surface, 0, 0, w, h, scheme.FillTop, scheme.FillMiddle, scheme.FillBottom,
               static_cast<int32_t>(orientation_));
  GradientLine(surface, 1, 0, w - 2, kLineHorizontal, scheme.EdgeLight, scheme.EdgeMid);
  GradientLine(surface, 0, 1, h - 2, kLineVertical, scheme.EdgeLight, scheme.EdgeDark);
  surface.Line(1, h - 1, w - 1, h - 1, scheme.EdgeDark);
  GradientLine(surface, w - 1, 1, h - 2, kLineVertical, scheme.EdgeMid, scheme.EdgeDark);
}

// GradientBox3 places a block's second half from the surface's own edge, which
// is what keeps the 3-pixel inset on the far side of the bar too.
void veltProgressBar::drawBlocks(Canvas& surface) {
  const int32_t w = surface.ScaleWidth();
  const int32_t h = surface.ScaleHeight();
  const bool vertical = orientation_ == pbVertical;
  if (!vertical && orientation_ != pbHorizontal) return;
  const int32_t length = (vertical ? h : w) - 2 * kInset;
  int32_t slots = length / kBlockPitch;  // truncates toward zero, as Fix does
  if (slots * kBlockPitch > length) --slots;
  blockSlots_ = static_cast<int16_t>(slots);
  const int32_t head = PercentOf(length, value_);
  const int32_t count = std::min(head / kBlockPitch + 1, slots);
  const BlockColors colors = BlockColors::Of(frame_.BackColor, frame_.ForeColor, kBlockWeights);
  for (int32_t i = 0; i < count; ++i) {
    const int32_t along = kFirstBlock + kBlockPitch * i;
    if (vertical)
      GradientBox3(surface, kInset, h - kBlockLength - along, w - kInset, kBlockLength,
                   colors.light, colors.middle, colors.dark, kBoxSideBySide);
    else
      GradientBox3(surface, along, kInset, kBlockLength, h - kInset, colors.light, colors.middle,
                   colors.dark, kBoxStacked);
  }
}

void veltProgressBar::drawComet(Canvas& surface) const {
  const bool vertical = orientation_ == pbVertical;
  if (!vertical && orientation_ != pbHorizontal) return;
  const int32_t extent = vertical ? surface.ScaleHeight() : surface.ScaleWidth();
  const int32_t head = PercentOf(extent - 2 * kInset + kCometLength, value_);
  for (const CometBlock& block : kComet) {
    if (block.offset > 0 && head <= block.offset) continue;
    drawCometBlock(surface, head, block.offset,
                   BlockColors::Of(frame_.BackColor, frame_.ForeColor, block.weights));
  }
}

// A block's leading edge is `offset` behind the head; the block is cut where
// it crosses either inset, and left out when nothing of it remains.
void veltProgressBar::drawCometBlock(Canvas& surface, int32_t head, int32_t offset,
                                     const BlockColors& colors) const {
  const int32_t w = surface.ScaleWidth();
  const int32_t h = surface.ScaleHeight();
  const int32_t lead = head - offset;
  if (orientation_ == pbVertical) {
    int32_t top = h - lead;
    int32_t height = kBlockLength;
    if (top <= kInset) {
      top = kInset;
      if (h - lead < kInset) height = kBlockLength - (kInset - (h - lead));
    } else {
      height = h - kInset > top ? std::min(h - kInset - top, kBlockLength) : 0;
    }
    if (height >= 1)
      GradientBox3(surface, kInset, top, w - kInset, height, colors.light, colors.middle,
                   colors.dark, kBoxSideBySide);
    return;
  }
  int32_t right = lead;
  int32_t width = kBlockLength;
  if (right - kInset < kBlockLength) width = right - kInset;
  if (right > w - kInset) {
    right = w - kInset;
    width = kBlockLength - (lead - (w - kInset));
  }
  if (width >= 1)
    GradientBox3(surface, right - width, kInset, width, h - kInset, colors.light, colors.middle,
                 colors.dark, kBoxStacked);
}

std::string veltProgressBar::captionText() const {
  if (caption_ != kValueCaption) return caption_;
  if (style_ == tNormal) return std::to_string(value_) + " %";
  if (style_ == tSearch) return kSearchingText;
  return caption_;
}

// Centred on the text's width and on the height of "I", with a two-pixel halo
// in the back colour that keeps the text legible over the blocks. Vertical
// bars show no caption.
void veltProgressBar::drawOutlinedText(Canvas& surface, const std::string& text) const {
  if (orientation_ == pbVertical || text.empty()) return;
  const double w = surface.ScaleWidth();
  const double h = surface.ScaleHeight();
  const auto x = static_cast<int32_t>(Fix(w / 2 - surface.TextWidth(text) / 2.0));
  const auto y = static_cast<int32_t>(Fix(h / 2 - surface.TextHeight("I") / 2.0));
  for (const Offset& offset : kHalo)
    PrintCaption(surface, static_cast<float>(x + offset.dx), static_cast<float>(y + offset.dy),
                 text, frame_.BackColor);
  PrintCaption(surface, static_cast<float>(x), static_cast<float>(y), text, frame_.ForeColor);
}

}  // namespace velt
