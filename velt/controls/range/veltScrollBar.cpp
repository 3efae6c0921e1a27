#include "velt/controls/range/veltScrollBar.hpp"

#include <algorithm>
#include <limits>
#include <string>
#include <utility>

#include "velt/controls/buttons/veltXButton.hpp"
#include "velt/foundation/EventRaising.hpp"
#include "velt/foundation/Gradients.hpp"
#include "velt/platform/Canvas.hpp"
#include "velt/platform/ControlHost.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/Font.hpp"
#include "velt/platform/PropertyBag.hpp"
#include "velt/platform/Rounding.hpp"
#include "velt/platform/Variant.hpp"

namespace velt {

namespace {

constexpr const char* kMinKey = "Min";
constexpr const char* kMaxKey = "Max";
constexpr const char* kValueKey = "Value";
constexpr const char* kOrientationKey = "Orientation";

constexpr OLE_COLOR kPaletteThird = 0xFFFFFF;
constexpr int16_t kLeftButton = 1;
constexpr int32_t kLineHorizontal = 1;  // any GradientLine orientation but vertical

// The arrows' font as they are created; only its name is set again later.
constexpr float kArrowFontSize = 8.25f;
constexpr int16_t kArrowFontWeight = 400;
constexpr int16_t kSymbolCharset = 2;
// The symbol font's digits draw triangles pointing left, right, up and down.
constexpr std::array<const char*, 2> kHorizontalGlyphs = {"3", "4"};
constexpr std::array<const char*, 2> kVerticalGlyphs = {"5", "6"};

// The grip: three dark grooves, each with a light line after it, across the
// thumb's middle, on thumbs long enough to keep them off the edges.
constexpr int32_t kGripMinThumb = 10;
constexpr int32_t kGripLength = 6;

constexpr int64_t kLongMin = std::numeric_limits<int32_t>::min();
constexpr int64_t kLongMax = std::numeric_limits<int32_t>::max();

int32_t saturated(int64_t value) {
  return static_cast<int32_t>(std::clamp(value, kLongMin, kLongMax));
}

}  // namespace

veltScrollBar::~veltScrollBar() = default;

// ---- Properties -------------------------------------------------------------

bool veltScrollBar::Enabled() const {
  return host().Enabled();
}

void veltScrollBar::Enabled(bool enabled) {
  host().Enabled(enabled);
  notifyChanged(FrameProperties::Key(FrameProperty::Enabled));
  repaint();
}

void veltScrollBar::Min(int32_t value) {
  rangeChanged(kMinKey, range_.SetMin(value));
}

void veltScrollBar::Max(int32_t value) {
  rangeChanged(kMaxKey, range_.SetMax(value));
}

// Compared with the value last reported, not the current one. The repaint
// reports the change (ValueChanged). Without a container there is nothing to
// report to, so the two stay in step.
void veltScrollBar::Value(int32_t value) {
  if (value == oldValue_) return;
  oldValue_ = range_.Value();
  range_.SetValue(range_.Clamp(value));
  notifyChanged(kValueKey);
  if (!sited()) {
    oldValue_ = range_.Value();
    return;
  }
  thumbPos_ = Geometry().ValueToPos(range_.Min(), range_.Max(), range_.Value());
  repaint();
}

void veltScrollBar::Orientation(MyOrientation orientation) {
  orientation_ = orientation;
  notifyChanged(kOrientationKey);
  applyOrientation();
  repaint();
}

void veltScrollBar::BackColor(OLE_COLOR color) {
  frame_.BackColor = color;
  notifyChanged(FrameProperties::Key(FrameProperty::BackColor));
  repaint();
}

void veltScrollBar::ForeColor(OLE_COLOR color) {
  frame_.ForeColor = color;
  notifyChanged(FrameProperties::Key(FrameProperty::ForeColor));
  repaint();
}

std::shared_ptr<veltXButton> veltScrollBar::veltButton1(int16_t index) const {
  if (index < 0 || index >= kArrowCount)
    throw Error(errSubscriptOutOfRange,
                "veltScrollBar.veltButton1: no arrow button " + std::to_string(index));
  return arrows_[static_cast<size_t>(index)];
}

ScrollBarGeometry veltScrollBar::Geometry() const {
  const Canvas& surface = host().Surface();
  const ControlHost* first = arrowHosts_[0];
  const int32_t side = first ? first->Height() / first->TwipsPerPixelY() : 0;
  return ScrollBarGeometry(orientation_, surface.ScaleWidth(), surface.ScaleHeight(), side);
}

void veltScrollBar::notifyChanged(const char* name) {
  if (host_) host_->PropertyChanged(name);
}

ControlHost& veltScrollBar::host() const {
  if (!host_)
    throw Error(errObjectNotSet, ClassName() + ": the control is not sited on a container");
  return *host_;
}

// ---- Value model ------------------------------------------------------------

void veltScrollBar::rangeChanged(const char* name, bool valueMoved) {
  notifyChanged(name);
  if (valueMoved) notifyChanged(kValueKey);
  repaint();
}

// ---- Life cycle and persistence ---------------------------------------------

void veltScrollBar::Initialize(ControlHost& host) {
  host_ = &host;
  state_ = sbNormal;
  dragging_ = false;
  pressedOnBar_ = false;
  hover_.Attach(
      host, [this](HoverTracker::Finding finding) { hoverFinding(finding); },
      [this]() -> std::shared_ptr<const void> { return weak_from_this().lock(); });
  createArrows();
  selectScheme();
}

// A new bar has nothing to report: OldValue starts at Value.
void veltScrollBar::InitProperties() {
  host();  // error 91 while not sited
  range_.Reset(kDefaultMin, kDefaultMax, kDefaultValue);
  oldValue_ = kDefaultValue;
  orientation_ = kDefaultOrientation;
  frame_.BackColor = FrameProperties::kDefaultBackColor;
  frame_.ForeColor = FrameProperties::kDefaultForeColor;
  applyOrientation();
  repaint();
}

// A stored range gets the setters' corrections, so Min < Max and Value inside
// hold for a loaded bar too; loading reports no value.
void veltScrollBar::ReadProperties(PropertyBag& bag) {
  ControlHost& h = host();
  frame_.Read(FrameProperty::Enabled, bag, h);
  const int32_t min = bag.ReadProperty(kMinKey, Variant(kDefaultMin)).ToLong();
  const int32_t max = bag.ReadProperty(kMaxKey, Variant(kDefaultMax)).ToLong();
  const int32_t value = bag.ReadProperty(kValueKey, Variant(kDefaultValue)).ToLong();
  const auto orientation = static_cast<MyOrientation>(
      bag.ReadProperty(kOrientationKey, Variant(int32_t{kDefaultOrientation})).ToLong());
  frame_.Read(FrameProperty::BackColor, bag, h);
  frame_.Read(FrameProperty::ForeColor, bag, h);
  range_.Load(min, max, value);
  oldValue_ = range_.Value();
  orientation_ = orientation;
  applyOrientation();
  repaint();
}

void veltScrollBar::WriteProperties(PropertyBag& bag) {
  const ControlHost& h = host();
  frame_.Write(FrameProperty::Enabled, bag, h);
  bag.WriteProperty(kMinKey, Variant(range_.Min()), Variant(kDefaultMin));
  bag.WriteProperty(kMaxKey, Variant(range_.Max()), Variant(kDefaultMax));
  bag.WriteProperty(kValueKey, Variant(range_.Value()), Variant(kDefaultValue));
  bag.WriteProperty(kOrientationKey, Variant(static_cast<int32_t>(orientation_)),
                    Variant(int32_t{kDefaultOrientation}));
  frame_.Write(FrameProperty::BackColor, bag, h);
  frame_.Write(FrameProperty::ForeColor, bag, h);
  repaint();
}

// A size outside the thickness limits is corrected first; the correction
// resizes again (and lays out there), after which this one finds nothing left
// to change.
void veltScrollBar::Resize() {
  applyThicknessLimits();
  applyOrientation();
  repaint();
}

void veltScrollBar::Terminate() {
  hover_.Detach();
  arrowConnections_.clear();
  host_ = nullptr;
}

// ---- Parts and layout -------------------------------------------------------

// The arrows are parts sited on the bar, as a form sites controls; they get
// their symbol font here and their glyphs with the orientation.
void veltScrollBar::createArrows() {
  const ScrollBarGeometry geometry = Geometry();
  for (int index = 0; index < kArrowCount; ++index) {
    const RectL place = geometry.ArrowRect(index);
    auto arrow = std::make_shared<veltXButton>();
    const std::string name = std::string(kArrowName) + "(" + std::to_string(index) + ")";
    arrowHosts_[index] =
        &host_->AddChild(arrow, name, place.Left, place.Top, place.Width(), place.Height());
    arrows_[index] = arrow;
    auto font = std::make_shared<Font>(kArrowFontName, kArrowFontSize);
    font->Weight(kArrowFontWeight);
    font->Charset(kSymbolCharset);
    arrow->Font(std::move(font));
    connectArrow(index);
  }
  applyOrientation();
}

// The bar listens to its arrows as an application would: their clicks step
// the value, their mouse events become the bar's own.
void veltScrollBar::connectArrow(int index) {
  veltXButton& arrow = *arrows_[index];
  arrowConnections_.push_back(arrow.Click.connect([this, index] { onArrowClick(index); }));
  arrowConnections_.push_back(
      arrow.MouseDown.connect([this](int16_t button, int16_t shift, float x, float y) {
        forwardMouse("MouseDown", MouseDown, button, shift, x, y);
      }));
  arrowConnections_.push_back(
      arrow.MouseMove.connect([this](int16_t button, int16_t shift, float x, float y) {
        forwardMouse("MouseMove", MouseMove, button, shift, x, y);
      }));
  arrowConnections_.push_back(
      arrow.MouseUp.connect([this](int16_t button, int16_t shift, float x, float y) {
        forwardMouse("MouseUp", MouseUp, button, shift, x, y);
      }));
}

// Heights (horizontal) or widths (vertical) are told to the container in
// twips; each correction resizes the bar again.
void veltScrollBar::applyThicknessLimits() {
  if (!host_) return;
  ControlHost& h = *host_;
  if (orientation_ == pbHorizontal) {
    const int32_t tpp = h.TwipsPerPixelY();
    if (h.Height() > kMaxThickness * tpp) h.Move(h.Left(), h.Top(), h.Width(), kMaxThickness * tpp);
    if (h.Height() < kMinThickness * tpp) h.Move(h.Left(), h.Top(), h.Width(), kMinThickness * tpp);
  } else if (orientation_ == pbVertical) {
    const int32_t tpp = h.TwipsPerPixelX();
    if (h.Width() > kMaxThickness * tpp) h.Move(h.Left(), h.Top(), kMaxThickness * tpp, h.Height());
    if (h.Width() < kMinThickness * tpp) h.Move(h.Left(), h.Top(), kMinThickness * tpp, h.Height());
  }
}

// Glyphs and places of the arrows for the orientation; another orientation
// leaves them as they are.
void veltScrollBar::applyOrientation() {
  if (!host_ || !laidOut() || !arrowHosts_[0]) return;
  const auto& glyphs = orientation_ == pbHorizontal ? kHorizontalGlyphs : kVerticalGlyphs;
  const ScrollBarGeometry geometry = Geometry();
  const int32_t tppX = host_->TwipsPerPixelX();
  const int32_t tppY = host_->TwipsPerPixelY();
  for (int index = 0; index < kArrowCount; ++index) {
    veltXButton& arrow = *arrows_[index];
    arrow.Font()->Name(kArrowFontName);
    arrow.Caption(glyphs[index]);
    const RectL place = geometry.ArrowRect(index);
    arrowHosts_[index]->Move(place.Left * tppX, place.Top * tppY, place.Width() * tppX,
                             place.Height() * tppY);
  }
}

// ---- State ------------------------------------------------------------------

// A disabled bar drops a drag in progress: its release may never arrive.
void veltScrollBar::selectScheme() {
  if (!host_) return;
  if (!host_->Enabled()) {
    state_ = sbDisabled;
    dragging_ = false;
    pressedOnBar_ = false;
  } else if (state_ == sbDisabled) {
    state_ = sbIdle;
  }
  palette_ = paletteFor(state_);
  giveArrowsColors();
}

ColorScheme veltScrollBar::paletteFor(ScrollBarState state) const {
  const OLE_COLOR back = frame_.BackColor;
  const OLE_COLOR fore = frame_.ForeColor;
  switch (state) {
    case sbHover:
    case sbDragging:
      return SchemeHover(back, fore, kPaletteThird);
    case sbDisabled:
      return SchemeDisabled(back, fore, kPaletteThird);
    case sbIdle:
    case sbNormal:
    case sbRest:
      break;
  }
  return SchemeNormal(back, fore, kPaletteThird);
}

// Only a colour that differs is set: each set repaints the arrow.
void veltScrollBar::giveArrowsColors() {
  for (const std::shared_ptr<veltXButton>& arrow : arrows_) {
    if (!arrow) continue;
    if (arrow->BackColor() != frame_.BackColor) arrow->BackColor(frame_.BackColor);
    if (arrow->ForeColor() != frame_.ForeColor) arrow->ForeColor(frame_.ForeColor);
  }
}

// A held drag clicks on every tick.
void veltScrollBar::hoverFinding(HoverTracker::Finding finding) {
  if (finding == HoverTracker::Finding::Left) {
    state_ = sbRest;
    repaint();
    return;
  }
  const bool dragging = dragging_;
  // Resting in the hover look again changes nothing on the face.
  if (!dragging && state_ == sbHover) return;
  state_ = dragging ? sbDragging : sbHover;
  repaint();
  if (dragging) raiseClick();
}

// ---- Painting ---------------------------------------------------------------

// The value is reported between the track and the thumb. A handler may set the
// value again (the repaint that causes is complete, so this one stops) or
// remove the bar.
void veltScrollBar::repaint() {
  if (!host_) return;
  ++repaints_;
  selectScheme();
  Canvas& surface = host_->Surface();
  surface.Clear();
  surface.BackColor(palette_.EdgeDark);  // erases the image: the 1-pixel border
  const ScrollBarGeometry geometry = Geometry();
  drawTrack(surface, geometry);
  if (orientation_ == pbVertical) drawVerticalOutlines(surface, geometry.ButtonSide());
  if (orientation_ == pbHorizontal) drawHorizontalOutlines(surface, geometry.ButtonSide());
  thumbPos_ = geometry.ValueToPos(range_.Min(), range_.Max(), range_.Value());
  if (!reportValue()) return;
  if (laidOut()) drawThumb(surface, geometry);
}

// Shaded across the bar's thickness.
void veltScrollBar::drawTrack(Canvas& surface, const ScrollBarGeometry& geometry) const {
  const int16_t mode = geometry.Horizontal() ? kGradientVertical : kGradientHorizontal;
  GradientRect(surface, 1, 1, geometry.Width() - 2, geometry.Height() - 2,
               ColorToVertexColor(palette_.FillBottom), ColorToVertexColor(palette_.FillMiddle),
               mode);
}

// Light outlines around the two button places (`side` is the arrows' side)
// and a dark line at each end of the track.
void veltScrollBar::drawVerticalOutlines(Canvas& s, int32_t side) const {
  const int32_t sw = s.ScaleWidth();
  const int32_t sh = s.ScaleHeight();
  const OLE_COLOR light = palette_.FillTop;
  s.Line(1, 1, sw - 1, 1, light);
  s.Line(1, 1, 1, side + 2, light);
  s.Line(1, side + 2, sw - 1, side + 2, light);
  s.Line(sw - 2, 1, sw - 2, side + 2, light);
  s.Line(1, sh - 2, sw - 1, sh - 2, light);
  s.Line(1, sh - 2, 1, sh - side - 3, light);
  s.Line(1, sh - side - 3, sw - 1, sh - side - 3, light);
  s.Line(sw - 2, sh - 2, sw - 2, sh - side - 3, light);
  s.Line(1, side + 3, sw - 1, side + 3, palette_.EdgeDark);
  s.Line(1, sh - side - 4, sw - 1, sh - side - 4, palette_.EdgeDark);
}

void veltScrollBar::drawHorizontalOutlines(Canvas& s, int32_t side) const {
  const int32_t sw = s.ScaleWidth();
  const int32_t sh = s.ScaleHeight();
  const OLE_COLOR light = palette_.FillTop;
  s.Line(1, 1, 1, sh - 2, light);
  s.Line(1, 1, side + 2, 1, light);
  s.Line(side + 2, 1, side + 2, sh - 2, light);
  s.Line(1, sh - 2, side + 3, sh - 2, light);
  s.Line(sw - 2, 1, sw - 2, sh - 2, light);
  s.Line(sw - 2, 1, sw - side - 3, 1, light);
  s.Line(sw - side - 3, 1, sw - side - 3, sh - 1, light);
  s.Line(sw - 2, sh - 2, sw - side - 3, sh - 2, light);
  s.Line(side + 3, 1, side + 3, sh - 1, palette_.EdgeDark);
  s.Line(sw - side - 4, 1, sw - side - 4, sh - 1, palette_.EdgeDark);
}

// True when the repaint goes on. OldValue is set before the handlers run, so
// a handler that sets the value back is a change of its own.
bool veltScrollBar::reportValue() {
  if (range_.Value() == oldValue_) return true;
  oldValue_ = range_.Value();
  const uint64_t before = repaints_;
  const auto self = weak_from_this().lock();
  RaiseEvent(*host_, "ValueChanged", ValueChanged);
  return host_ && repaints_ == before;
}

// The push-button face on the thumb rectangle. The face's far half is placed
// from the surface's edge (GradientBox3), which keeps it 2 pixels in from the
// far side too.
void veltScrollBar::drawThumb(Canvas& s, const ScrollBarGeometry& geometry) const {
  const ColorScheme& p = palette_;
  const RectL thumb = geometry.ThumbRect(thumbPos_);
  const int32_t size = geometry.ThumbSize();
  if (geometry.Horizontal())
    GradientBox3(s, thumb.Left, thumb.Top, size, geometry.Height() - 2, p.FillTop, p.FillMiddle,
                 p.FillBottom, kBoxStacked);
  else
    GradientBox3(s, thumb.Left, thumb.Top, geometry.Width() - 2, size, p.FillTop, p.FillMiddle,
                 p.FillBottom, kBoxSideBySide);
  const int32_t w = thumb.Width();
  const int32_t h = thumb.Height();
  GradientLine(s, thumb.Left + 1, thumb.Top, w - 2, kLineHorizontal, p.EdgeLight, p.EdgeMid);
  GradientLine(s, thumb.Left, thumb.Top + 1, h - 2, kLineVertical, p.EdgeLight, p.EdgeDark);
  s.Line(thumb.Left + 1, thumb.Bottom - 1, thumb.Right - 1, thumb.Bottom - 1, p.EdgeDark);
  GradientLine(s, thumb.Right - 1, thumb.Top + 1, h - 2, kLineVertical, p.EdgeMid, p.EdgeDark);
  drawGrip(s, geometry, thumb);
}

void veltScrollBar::drawGrip(Canvas& s, const ScrollBarGeometry& geometry,
                             const RectL& thumb) const {
  const int32_t size = geometry.ThumbSize();
  if (size < kGripMinThumb) return;
  const bool horizontal = geometry.Horizontal();
  const int32_t middle = (horizontal ? thumb.Left : thumb.Top) + size / 2;
  const int32_t from = (geometry.Thickness() - kGripLength) / 2;
  const int32_t to = from + kGripLength;
  for (int32_t along = middle - 2; along <= middle + 2; along += 2) {
    for (const auto& [at, color] :
         {std::pair{along, palette_.EdgeDark}, std::pair{along + 1, palette_.FillTop}}) {
      if (horizontal)
        s.Line(at, from, at, to, color);
      else
        s.Line(from, at, to, at, color);
    }
  }
}

// ---- Input ------------------------------------------------------------------
// Each handler holds the bar alive while it raises events: a handler may
// remove it from its container, which unsites it; the rest is then skipped.

// The thumb is grabbed where it was hit; a press elsewhere on the track jumps
// to the end on that side.
void veltScrollBar::OnMouseDown(int16_t button, int16_t shift, float x, float y) {
  if (button != kLeftButton) return;
  const auto self = weak_from_this().lock();
  pressedOnBar_ = true;
  const ScrollBarGeometry geometry = Geometry();
  switch (geometry.PartAt(x, y, thumbPos_)) {
    case ScrollBarGeometry::Part::Thumb:
      dragging_ = true;
      grabOffset_ = static_cast<int32_t>(
          RoundHalfEven(geometry.Along(x, y) - thumbPos_ - geometry.ButtonSize()));
      break;
    case ScrollBarGeometry::Part::BeforeThumb:
      Value(range_.Min());
      break;
    case ScrollBarGeometry::Part::AfterThumb:
      Value(range_.Max());
      break;
    case ScrollBarGeometry::Part::Beside:
      break;
  }
  if (sited()) RaiseEvent(*host_, "MouseDown", MouseDown, button, shift, x, y);
}

// Only the thumb (or a drag) is tracked. Every move with the left button held
// scrolls, whether or not the value changed.
void veltScrollBar::OnMouseMove(int16_t button, int16_t shift, float x, float y) {
  const auto self = weak_from_this().lock();
  const ScrollBarGeometry geometry = Geometry();
  if (dragging_ || geometry.PartAt(x, y, thumbPos_) == ScrollBarGeometry::Part::Thumb) {
    hover_.MouseMoved();
    if (button == kLeftButton) {
      const double pos = geometry.Along(x, y) - geometry.ButtonSize() - grabOffset_;
      Value(geometry.PosToValue(pos, range_.Min(), range_.Max()));
      if (!sited()) return;
      RaiseEvent(*host_, "Scroll", Scroll);
    }
  }
  if (sited()) RaiseEvent(*host_, "MouseMove", MouseMove, button, shift, x, y);
}

// A drag's release clicks before MouseUp. The container's own click for a
// press and release both on the control follows it; this host has no such
// notification, so a left release on the bar after a left press on it stands
// in for it. A drag released on the bar therefore clicks twice.
void veltScrollBar::OnMouseUp(int16_t button, int16_t shift, float x, float y) {
  if (button != kLeftButton) return;
  const auto self = weak_from_this().lock();
  const bool hostClick = pressedOnBar_ && onSurface(x, y);
  pressedOnBar_ = false;
  if (dragging_) raiseClick();
  if (!sited()) return;
  dragging_ = false;
  RaiseEvent(*host_, "MouseUp", MouseUp, button, shift, x, y);
  if (hostClick) raiseClick();
}

// Keys are only passed on: the bar has no keyboard stepping.
void veltScrollBar::OnKeyDown(int16_t& keyCode, int16_t& shift) {
  const auto self = weak_from_this().lock();
  if (sited()) RaiseEvent(*host_, "KeyDown", KeyDown, keyCode, shift);
}

void veltScrollBar::OnKeyUp(int16_t& keyCode, int16_t& shift) {
  const auto self = weak_from_this().lock();
  if (sited()) RaiseEvent(*host_, "KeyUp", KeyUp, keyCode, shift);
}

void veltScrollBar::OnKeyPress(int16_t& keyAscii) {
  const auto self = weak_from_this().lock();
  if (sited()) RaiseEvent(*host_, "KeyPress", KeyPress, keyAscii);
}

// The bar has no focused look.
void veltScrollBar::OnEnterFocus() {}
void veltScrollBar::OnExitFocus() {}

// An arrow's click (on release, or Enter/Space while it has the focus) steps
// the value by one through the property, so it is clamped and reported.
void veltScrollBar::onArrowClick(int index) {
  if (!sited()) return;
  const auto self = weak_from_this().lock();
  const int64_t step = index == 0 ? -1 : 1;
  Value(saturated(int64_t{range_.Value()} + step));
}

void veltScrollBar::forwardMouse(const char* name, const MouseEvent& event, int16_t button,
                                 int16_t shift, float x, float y) {
  if (!sited()) return;
  const auto self = weak_from_this().lock();
  RaiseEvent(*host_, name, event, button, shift, x, y);
}

void veltScrollBar::raiseClick() {
  if (!sited()) return;
  const auto self = weak_from_this().lock();
  RaiseEvent(*host_, "Click", Click);
}

bool veltScrollBar::onSurface(float x, float y) const {
  const Canvas& surface = host_->Surface();
  return x >= 0 && y >= 0 && x < surface.ScaleWidth() && y < surface.ScaleHeight();
}

}  // namespace velt
