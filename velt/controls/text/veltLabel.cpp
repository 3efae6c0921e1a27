#include "velt/controls/text/veltLabel.hpp"

#include <limits>
#include <utility>

#include "velt/controls/text/LabelLayout.hpp"
#include "velt/foundation/Colors.hpp"
#include "velt/foundation/EventRaising.hpp"
#include "velt/foundation/SystemRoutines.hpp"
#include "velt/foundation/Utf8Text.hpp"
#include "velt/platform/Canvas.hpp"
#include "velt/platform/ControlHost.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/Font.hpp"
#include "velt/platform/ImageList.hpp"
#include "velt/platform/MousePointer.hpp"
#include "velt/platform/Picture.hpp"
#include "velt/platform/PropertyBag.hpp"
#include "velt/platform/Rounding.hpp"
#include "velt/platform/Variant.hpp"

namespace velt {

namespace {

constexpr const char* kImageListKey = "ImageList";
constexpr const char* kImageIndexKey = "ImageIndex";
constexpr const char* kHyperlinkKey = "Hyperlink";
constexpr const char* kSelectionColorKey = "SelectionColor";
constexpr const char* kTextWrapKey = "TextWrap";
constexpr const char* kAutoSizeKey = "AutoSize";
constexpr const char* kMousePointerKey = "MousePointer";
constexpr const char* kMouseIconKey = "MouseIcon";

constexpr int16_t kLeftButton = 1;

// The surface's background is this much BackColor mixed into ForeColor.
constexpr int32_t kBackgroundWeight = 240;

// Layout, in pixels: text starts 2 below the top and keeps 2 free at the right;
// a wrapped caption stops 8 above the bottom; the icon sits at (2, 2) with the
// text 2 to the right of its width.
constexpr double kTextTop = 2;
constexpr double kRightMargin = 2;
constexpr double kBottomMargin = 8;
constexpr int32_t kIconOffset = 2;
constexpr double kIconGap = 2;
// AutoSize adds this to the text height, and to the text width (with an icon,
// twice this to the text and icon widths together).
constexpr int32_t kAutoSizeMargin = 4;

const char* const kShellOperation = "Open";

// The caption as one line: line breaks dropped, blanks trimmed.
std::string singleLine(const std::string& caption) {
  std::string line;
  line.reserve(caption.size());
  for (char c : caption)
    if (c != '\r' && c != '\n') line += c;
  return Trim(line);
}

int32_t roundedPixels(double value) {
  return static_cast<int32_t>(RoundHalfEven(value));
}

// A stored object of the expected class, or nullptr when none is stored; any
// other object is error 13 naming the key.
template <class T>
std::shared_ptr<T> readObject(const PropertyBag& bag, const char* key, const char* className) {
  const std::shared_ptr<Object> stored = bag.ReadProperty(key, Variant(nullptr)).ToObject();
  auto object = std::dynamic_pointer_cast<T>(stored);
  if (stored && !object)
    throw Error(errTypeMismatch, std::string("PropertyBag key \"") + key +
                                     "\": the stored object is not a " + className);
  return object;
}

// A size in pixels as the host's twips; error 6 when it does not fit.
int32_t toTwips(int64_t pixels, int32_t twipsPerPixel, const char* what) {
  const int64_t twips = pixels * twipsPerPixel;
  if (twips > std::numeric_limits<int32_t>::max())
    throw Error(errOverflow, std::string("veltLabel.AutoSize: the ") + what + " of " +
                                 std::to_string(pixels) + " pixels does not fit in twips");
  return static_cast<int32_t>(twips);
}

}  // namespace

veltLabel::~veltLabel() = default;

// ---- Properties -------------------------------------------------------------

void veltLabel::BackColor(OLE_COLOR color) {
  properties_.BackColor = color;
  markChanged("BackColor");
  paletteChanged();
}

void veltLabel::ForeColor(OLE_COLOR color) {
  properties_.ForeColor = color;
  markChanged("ForeColor");
  paletteChanged();
}

bool veltLabel::Enabled() const {
  return host().Enabled();
}

void veltLabel::Enabled(bool enabled) {
  host().Enabled(enabled);
  propertyChanged("Enabled");
}

void veltLabel::ImageList(std::shared_ptr<velt::ImageList> imageList) {
  imageList_ = std::move(imageList);
  markChanged(kImageListKey);
  applyResizeRule();
  repaint();
}

void veltLabel::ImageIndex(int16_t index) {
  imageIndex_ = index;
  propertyChanged(kImageIndexKey);
}

// Repaints but does not resize: an AutoSize label follows its caption on the
// next resize, Font, ImageList or AutoSize change.
void veltLabel::Caption(const std::string& caption) {
  properties_.Caption = caption;
  propertyChanged("Caption");
}

void veltLabel::Hyperlink(const std::string& hyperlink) {
  hyperlink_ = hyperlink;
  showPointer();
  propertyChanged(kHyperlinkKey);
}

void veltLabel::SelectionColor(OLE_COLOR color) {
  selectionColor_ = color;
  markChanged(kSelectionColorKey);
  paletteChanged();
}

void veltLabel::TextWrap(bool wrap) {
  textWrap_ = wrap;
  markChanged(kTextWrapKey);
  autoSize_ = false;
  markChanged(kAutoSizeKey);
  repaint();
}

void veltLabel::AutoSize(bool autoSize) {
  autoSize_ = autoSize;
  markChanged(kAutoSizeKey);
  textWrap_ = false;
  markChanged(kTextWrapKey);
  applyResizeRule();
  repaint();
}

std::shared_ptr<velt::Font> veltLabel::Font() const {
  return host().Font();
}

void veltLabel::Font(std::shared_ptr<velt::Font> font) {
  if (!font) throw Error(errObjectNotSet, "veltLabel.Font: no font object given");
  host().Font(std::move(font));
  markChanged("Font");
  applyResizeRule();
  repaint();
}

int16_t veltLabel::MousePointer() const {
  return host().MousePointer();
}

void veltLabel::MousePointer(int16_t pointer) {
  host().MousePointer(CheckedMousePointer(pointer, "veltLabel.MousePointer"));
  markChanged(kMousePointerKey);
}

std::shared_ptr<Picture> veltLabel::MouseIcon() const {
  return host().MouseIcon();
}

void veltLabel::MouseIcon(std::shared_ptr<Picture> icon) {
  host().MouseIcon(std::move(icon));
  markChanged(kMouseIconKey);
}

void veltLabel::markChanged(const std::string& name) {
  if (host_) host_->PropertyChanged(name);
}

void veltLabel::propertyChanged(const std::string& name) {
  markChanged(name);
  repaint();
}

ControlHost& veltLabel::host() const {
  if (!host_) throw Error(errObjectNotSet, "veltLabel: the control is not sited on a container");
  return *host_;
}

// ---- Life cycle and persistence ---------------------------------------------

void veltLabel::Initialize(ControlHost& host) {
  host_ = &host;
  state_ = lsCreated;
  mouseIsDown_ = false;
  hover_.Attach(
      host, [this](HoverTracker::Finding finding) { hoverFinding(finding); },
      [this]() -> std::shared_ptr<const void> { return weak_from_this().lock(); });
}

void veltLabel::InitProperties() {
  properties_.InitProperties(host());
  imageList_.reset();
  imageIndex_ = 0;
  hyperlink_.clear();
  selectionColor_ = kDefaultSelectionColor;
  textWrap_ = false;
  autoSize_ = false;
  paletteChanged();
}

// Straight into the fields: going through the setters would let AutoSize,
// read after TextWrap, clear it. Should a damaged bag hold both as True,
// AutoSize wins, as if it had been set last.
void veltLabel::ReadProperties(PropertyBag& bag) {
  ControlHost& site = host();
  properties_.Read(FrameProperty::BackColor, bag, site);
  properties_.Read(FrameProperty::ForeColor, bag, site);
  properties_.Read(FrameProperty::Enabled, bag, site);
  imageList_ = readObject<velt::ImageList>(bag, kImageListKey, "ImageList");
  imageIndex_ = bag.ReadProperty(kImageIndexKey, Variant(int16_t{0})).ToInteger();
  properties_.Read(FrameProperty::Caption, bag, site);
  hyperlink_ = bag.ReadProperty(kHyperlinkKey, Variant("")).ToString();
  selectionColor_ =
      bag.ReadProperty(kSelectionColorKey, Variant::Color(kDefaultSelectionColor)).ToColor();
  textWrap_ = bag.ReadProperty(kTextWrapKey, Variant(false)).ToBoolean();
  autoSize_ = bag.ReadProperty(kAutoSizeKey, Variant(false)).ToBoolean();
  if (autoSize_) textWrap_ = false;
  properties_.Read(FrameProperty::Font, bag, site);
  site.MousePointer(
      CheckedMousePointer(bag.ReadProperty(kMousePointerKey, Variant(int16_t{0})).ToInteger(),
                          std::string("PropertyBag key \"") + kMousePointerKey + "\""));
  site.MouseIcon(readObject<Picture>(bag, kMouseIconKey, "Picture"));
  paletteChanged();
}

void veltLabel::WriteProperties(PropertyBag& bag) {
  const ControlHost& site = host();
  properties_.Write(FrameProperty::BackColor, bag, site);
  properties_.Write(FrameProperty::ForeColor, bag, site);
  properties_.Write(FrameProperty::Enabled, bag, site);
  bag.WriteProperty(kImageListKey, Variant(std::static_pointer_cast<Object>(imageList_)),
                    Variant(nullptr));
  bag.WriteProperty(kImageIndexKey, Variant(imageIndex_), Variant(int16_t{0}));
  properties_.Write(FrameProperty::Caption, bag, site);
  bag.WriteProperty(kHyperlinkKey, Variant(hyperlink_), Variant(""));
  bag.WriteProperty(kSelectionColorKey, Variant::Color(selectionColor_),
                    Variant::Color(kDefaultSelectionColor));
  bag.WriteProperty(kTextWrapKey, Variant(textWrap_), Variant(false));
  bag.WriteProperty(kAutoSizeKey, Variant(autoSize_), Variant(false));
  properties_.Write(FrameProperty::Font, bag, site);
  bag.WriteProperty(kMousePointerKey, Variant(site.MousePointer()), Variant(int16_t{0}));
  bag.WriteProperty(kMouseIconKey, Variant(std::static_pointer_cast<Object>(site.MouseIcon())),
                    Variant(nullptr));
  repaint();
}

void veltLabel::Resize() {
  applyResizeRule();
  repaint();
}

void veltLabel::Terminate() {
  hover_.Detach();
  if (host_) host_->PointerShape(mpDefault);
  host_ = nullptr;
}

// ---- State and painting -----------------------------------------------------

void veltLabel::paletteChanged() {
  applyPalette();
  repaint();
}

// The palette mixes the selection colour in as its third colour, so Accent3 is
// the hover colour of a hyperlink.
void veltLabel::applyPalette() {
  palette_ = SchemeNormal(properties_.BackColor, properties_.ForeColor, selectionColor_);
  if (!host_) return;
  Canvas& canvas = host_->Surface();
  canvas.ForeColor(palette_.Text);
  canvas.BackColor(BlendColor(properties_.BackColor, properties_.ForeColor, kBackgroundWeight));
}

// The size follows the caption measured as it is, line breaks included. The
// host's Move calls Resize again with the new size, which finds nothing to
// change.
void veltLabel::applyResizeRule() {
  if (!host_ || !autoSize_) return;
  const Canvas& canvas = surface();
  const int32_t letter = canvas.TextHeight("I");
  const int64_t text = canvas.TextWidth(Caption());
  int64_t width = text + kAutoSizeMargin;
  int64_t height = letter + kAutoSizeMargin;
  if (imageList_) {
    const int32_t imageHeight = imageList_->ImageHeight();
    if (imageHeight > letter) height = imageHeight + kAutoSizeMargin;
    width = text + imageList_->ImageWidth() + 2 * kAutoSizeMargin;
  }
  ControlHost& site = *host_;
  site.Move(site.Left(), site.Top(), toTwips(width, site.TwipsPerPixelX(), "width"),
            toTwips(height, site.TwipsPerPixelY(), "height"));
}

Canvas& veltLabel::surface() {
  Canvas& canvas = host_->Surface();
  if (std::shared_ptr<velt::Font> font = host_->Font(); font && canvas.Font() != font)
    canvas.Font(std::move(font));
  return canvas;
}

void veltLabel::repaint() {
  if (!host_) return;
  Canvas& canvas = surface();
  canvas.Clear();
  const bool enabled = host_->Enabled();
  canvas.ForeColor(textColor(enabled));
  if (!hasIcon()) {
    paintText(canvas);
    return;
  }
  paintTextBesideIcon(canvas);
  drawIcon(canvas, enabled);
}

OLE_COLOR veltLabel::textColor(bool enabled) const {
  if (!enabled) return palette_.EdgeDark;
  if (!hyperlink_.empty() && state_ == lsHover) return palette_.Accent3;
  return palette_.Text;
}

void veltLabel::paintText(Canvas& canvas) {
  const double width = canvas.ScaleWidth() - kRightMargin;
  if (textWrap_) {
    DrawWrapped(canvas, Caption(), 0, kTextTop, width, canvas.ScaleHeight() - kBottomMargin);
    return;
  }
  canvas.CurrentX(0);
  canvas.CurrentY(static_cast<float>(kTextTop));
  canvas.Print(FitText(canvas, singleLine(Caption()), roundedPixels(width)));
}

// An icon taller than a letter centres one caption line on it.
void veltLabel::paintTextBesideIcon(Canvas& canvas) {
  const double left = imageList_->ImageWidth() + kIconGap;
  const double imageHeight = imageList_->ImageHeight();
  const double width = canvas.ScaleWidth() - left;
  canvas.CurrentX(static_cast<float>(left));
  if (textWrap_) {
    DrawWrapped(canvas, Caption(), left, kTextTop, width, canvas.ScaleHeight() - kBottomMargin);
    return;
  }
  double top = kTextTop;
  if (imageHeight > canvas.TextHeight("I"))
    top = kTextTop + imageHeight / 2 - canvas.TextHeight(Caption()) / 2.0;
  canvas.CurrentY(static_cast<float>(top));
  canvas.Print(FitText(canvas, singleLine(Caption()), roundedPixels(width)));
}

// An icon that cannot be had (no such index, an empty list) is left out.
void veltLabel::drawIcon(Canvas& canvas, bool enabled) const {
  try {
    const std::shared_ptr<ListImage> image = imageList_->ListImages().Item(imageIndex_);
    const std::shared_ptr<Picture> icon = image ? image->ExtractIcon() : nullptr;
    if (!icon) return;
    canvas.DrawPicture(*icon, kIconOffset, kIconOffset,
                       enabled ? PictureLook::Normal : PictureLook::Disabled);
  } catch (const Error&) {
    // Image drawing runs with errors ignored.
  }
}

// A tick that finds the state as it was changes nothing on the face.
void veltLabel::hoverFinding(HoverTracker::Finding finding) {
  const LabelState found = finding == HoverTracker::Finding::Left ? lsLeft
                           : mouseIsDown_                         ? lsPressed
                                                                  : lsHover;
  if (found == state_) return;
  state_ = found;
  showPointer();
  repaint();
}

// A hyperlink shows the hand while the pointer is on the label (hovering or
// pressed); the host shows it unless MousePointer asks for another.
void veltLabel::showPointer() {
  if (!host_) return;
  const bool onLink = !hyperlink_.empty() && (state_ == lsHover || state_ == lsPressed);
  host_->PointerShape(onLink ? mpHand : mpDefault);
}

// ---- Input ------------------------------------------------------------------
// Each handler holds the label alive while it raises events: a handler may
// remove it from its container, which unsites it; the rest of the sequence is
// then skipped.

void veltLabel::OnMouseDown(int16_t button, int16_t shift, float x, float y) {
  if (button != kLeftButton) return;
  const auto self = weak_from_this().lock();
  mouseIsDown_ = true;
  raiseMouse("MouseDown", MouseDown, button, shift, x, y);
}

// Only a label with a hyperlink tracks the pointer, so only it shows a hover look.
void veltLabel::OnMouseMove(int16_t button, int16_t shift, float x, float y) {
  const auto self = weak_from_this().lock();
  if (!hyperlink_.empty()) hover_.MouseMoved();
  raiseMouse("MouseMove", MouseMove, button, shift, x, y);
}

// MouseDown, Click, HyperlinkClick, the shell, MouseUp. The host holds the
// capture while the button is down, so a release outside the label arrives too.
void veltLabel::OnMouseUp(int16_t button, int16_t shift, float x, float y) {
  if (button != kLeftButton) return;
  const auto self = weak_from_this().lock();
  if (mouseIsDown_ && sited()) RaiseEvent(*host_, "Click", Click);
  if (!sited()) return;
  if (!hyperlink_.empty()) followHyperlink();
  if (!sited()) return;
  mouseIsDown_ = false;
  raiseMouse("MouseUp", MouseUp, button, shift, x, y);
}

// The handler gets the stored hyperlink itself, so a change it makes stays in
// the property and is what the shell opens. The shell's answer is not used: a
// link that cannot be opened is ignored.
// A handler that removed the label ends the sequence: nothing is opened.
void veltLabel::followHyperlink() {
  bool Cancel = false;
  RaiseEvent(*host_, "HyperlinkClick", HyperlinkClick, hyperlink_, Cancel);
  if (Cancel || !sited()) return;
  ShellOpen(*host_, hyperlink_, kShellOperation, "", "", 0);
}

void veltLabel::raiseMouse(const char* name, const Event<int16_t, int16_t, float, float>& event,
                           int16_t button, int16_t shift, float x, float y) {
  if (!sited()) return;
  RaiseEvent(*host_, name, event, button, shift, x, y);
}

}  // namespace velt
