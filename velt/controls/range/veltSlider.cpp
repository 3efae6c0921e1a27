#include "velt/controls/range/veltSlider.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <utility>

#include "velt/foundation/ButtonFace.hpp"
#include "velt/foundation/Colors.hpp"
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

constexpr const char* kTabSelectColorKey = "TabSelectColor";
constexpr const char* kOrientationKey = "Orientation";
constexpr const char* kTickStyleKey = "TickStyle";
constexpr const char* kMinKey = "Min";
constexpr const char* kMaxKey = "Max";
constexpr const char* kValueKey = "Value";

constexpr OLE_COLOR kPaletteThird = 0xFFFFFF;
constexpr int32_t kTrackBackWeight = 240;  // share of BackColor in the background

constexpr int16_t kLeftButton = 1;
constexpr int16_t kKeyLeft = 37;
constexpr int16_t kKeyUp = 38;
constexpr int16_t kKeyRight = 39;
constexpr int16_t kKeyDown = 40;

// Geometry along the groove: the thumb's centre runs from 10 to the length
// minus 10, its 11-pixel drawing starts 5 before that; the groove from 8 to the
// length minus 8.
constexpr int32_t kThumbMargin = 10;
constexpr int32_t kThumbDrawOffset = 5;
constexpr int32_t kGrooveEnd = 8;
// Across the groove.
constexpr int32_t kTickFrom = 15;
constexpr int32_t kMainTickTo = 25;
constexpr int32_t kQuarterTickTo = 20;
constexpr int32_t kLabelAcross = 26;
constexpr int32_t kThumbTop = 3;      // the pointer is hit between these, exclusive
constexpr int32_t kThumbBottom = 20;  // (its tip row)
constexpr int32_t kThumbWidth = 10;   // hit zone along the groove, exclusive ends

// The thickness the slider keeps: plain ticks, labels below a horizontal
// groove, labels beside a vertical one (the widest of Max and Min plus this).
constexpr int32_t kPlainThickness = 25;
constexpr int32_t kLabelledThickness = 41;
constexpr int32_t kLabelledGap = 33;

// A thumb so far out that it could never show stays at this distance, so the
// drawing arithmetic cannot overflow.
constexpr double kFarOff = 1'000'000;

bool labelled(TickStyles style) {
  return style == Tick_Half_Value || style == Tick_Four_Value;
}

bool quartered(TickStyles style) {
  return style == Tick_Four || style == Tick_Four_Value;
}

// A number with a place kept for its sign: a blank before a non-negative one.
std::string signedText(int32_t value) {
  return value >= 0 ? " " + std::to_string(value) : std::to_string(value);
}

// The pointer, one drawing step at a time, in horizontal terms: `along` is
// counted from the thumb's drawing start p, `across` is the row. A vertical
// slider draws the same steps with the two axes exchanged.
enum class StepKind { Line, Pixel, Rect };
using SchemeColor = OLE_COLOR ColorScheme::*;

struct ThumbStep {
  StepKind kind;
  // (along1, across1): a line's start, the pixel, or a rectangle's corner.
  // (along2, across2): a line's end (not drawn), or a rectangle's extents.
  int32_t along1;
  int32_t across1;
  int32_t along2;
  int32_t across2;
  SchemeColor color;
  SchemeColor toColor = nullptr;  // rectangles: gradient end colour
  int16_t mode = kGradientHorizontal;
};

constexpr ThumbStep line(int32_t a1, int32_t c1, int32_t a2, int32_t c2, SchemeColor color) {
  return ThumbStep{StepKind::Line, a1, c1, a2, c2, color};
}
constexpr ThumbStep pixel(int32_t a, int32_t c, SchemeColor color) {
  return ThumbStep{StepKind::Pixel, a, c, 0, 0, color};
}
constexpr ThumbStep rect(int32_t a, int32_t c, int32_t extentAlong, int32_t extentAcross,
                         SchemeColor from, SchemeColor to, int16_t mode) {
  return ThumbStep{StepKind::Rect, a, c, extentAlong, extentAcross, from, to, mode};
}

constexpr SchemeColor kFillTop = &ColorScheme::FillTop;
constexpr SchemeColor kFillMiddle = &ColorScheme::FillMiddle;
constexpr SchemeColor kFillBottom = &ColorScheme::FillBottom;
constexpr SchemeColor kEdgeLight = &ColorScheme::EdgeLight;
constexpr SchemeColor kEdgeMid = &ColorScheme::EdgeMid;
constexpr SchemeColor kEdgeDark = &ColorScheme::EdgeDark;

// A flat top at row 3, a body down to row 14 and a tip at (p + 5, 20) pointing
// at the ticks. The order matters: later steps paint over earlier ones.
constexpr ThumbStep kThumb[] = {
    line(10, 4, 10, 15, kEdgeDark),
    line(1, 3, 10, 3, kFillBottom),
    line(0, 4, 0, 15, kFillBottom),
    rect(1, 4, 9, 3, kFillMiddle, kFillBottom, kGradientVertical),
    rect(1, 7, 7, 8, kFillTop, kFillTop, kGradientHorizontal),
    line(9, 6, 9, 14, kFillBottom),
    line(8, 7, 8, 14, kFillMiddle),
    line(0, 15, 3, 18, kFillMiddle),
    line(3, 15, 7, 15, kFillTop),
    pixel(4, 16, kFillTop),
    pixel(5, 16, kFillTop),
    pixel(4, 17, kFillTop),
    pixel(10, 15, kEdgeDark),
    pixel(9, 16, kEdgeDark),
    pixel(8, 14, kFillMiddle),
    pixel(7, 14, kEdgeMid),
    pixel(7, 15, kEdgeMid),
    pixel(7, 16, kFillMiddle),
    pixel(6, 16, kEdgeMid),
    pixel(6, 17, kFillMiddle),
    pixel(5, 17, kEdgeMid),
    pixel(5, 18, kFillMiddle),
    pixel(9, 14, kFillBottom),
    pixel(8, 15, kFillBottom),
    pixel(7, 17, kFillBottom),
    pixel(6, 18, kFillBottom),
    pixel(8, 17, kFillBottom),
    pixel(6, 19, kFillBottom),
    pixel(9, 15, kEdgeDark),
    pixel(8, 16, kEdgeDark),
    pixel(7, 18, kEdgeDark),
    line(1, 14, 4, 17, kEdgeLight),
    line(1, 15, 4, 18, kEdgeLight),
    pixel(3, 18, kFillBottom),
    pixel(4, 19, kFillBottom),
    pixel(5, 20, kFillBottom),
    pixel(4, 18, kFillMiddle),
    pixel(5, 19, kFillMiddle),
    pixel(4, 17, kEdgeMid),
};

}  // namespace

// Places (along, across) on the surface: along the groove is x for a
// horizontal slider and y for a vertical one.
struct veltSlider::Axis {
  bool vertical;

  int32_t x(int32_t along, int32_t across) const { return vertical ? across : along; }
  int32_t y(int32_t along, int32_t across) const { return vertical ? along : across; }
  void line(Canvas& s, int32_t a1, int32_t c1, int32_t a2, int32_t c2, OLE_COLOR color) const {
    s.Line(x(a1, c1), y(a1, c1), x(a2, c2), y(a2, c2), color);
  }
};

veltSlider::~veltSlider() = default;

// ---- Properties -------------------------------------------------------------

void veltSlider::BackColor(OLE_COLOR color) {
  frame_.BackColor = color;
  restyle(FrameProperties::Key(FrameProperty::BackColor));
}

void veltSlider::ForeColor(OLE_COLOR color) {
  frame_.ForeColor = color;
  restyle(FrameProperties::Key(FrameProperty::ForeColor));
}

bool veltSlider::Enabled() const {
  return host().Enabled();
}

void veltSlider::Enabled(bool enabled) {
  host().Enabled(enabled);
  restyle(FrameProperties::Key(FrameProperty::Enabled));
}

std::shared_ptr<velt::Font> veltSlider::Font() const {
  return host().Font();
}

void veltSlider::Font(std::shared_ptr<velt::Font> font) {
  if (!font) throw Error(errObjectNotSet, ClassName() + ".Font: no font object given");
  host().Font(std::move(font));
  notifyChanged(FrameProperties::Key(FrameProperty::Font));
  repaint();
}

void veltSlider::TabSelectColor(OLE_COLOR color) {
  tabSelectColor_ = color;
  restyle(kTabSelectColorKey);
}

void veltSlider::Orientation(MyOrientation orientation) {
  orientation_ = orientation;
  relayout(kOrientationKey);
}

void veltSlider::TickStyle(TickStyles style) {
  tickStyle_ = style;
  relayout(kTickStyleKey);
}

void veltSlider::Min(int32_t value) {
  rangeChanged(kMinKey, range_.SetMin(value));
}

void veltSlider::Max(int32_t value) {
  rangeChanged(kMaxKey, range_.SetMax(value));
}

// Compared with the value last reported, not the current one: a disabled
// slider does not report, so setting it back to the reported value is no
// change. The repaint reports the new value (ValueChange).
void veltSlider::Value(int32_t value) {
  if (value == lastValue_) return;
  lastValue_ = range_.Value();
  range_.SetValue(value);
  notifyChanged(kValueKey);
  repaint();
}

void veltSlider::notifyChanged(const char* name) {
  if (host_) host_->PropertyChanged(name);
}

// What a setter does once it has stored: the look, the size or the range
// follow, then the repaint.
void veltSlider::restyle(const char* name) {
  notifyChanged(name);
  selectScheme();
  repaint();
}

void veltSlider::relayout(const char* name) {
  notifyChanged(name);
  applySizeRule();
  repaint();
}

void veltSlider::rangeChanged(const char* name, bool valueMoved) {
  notifyChanged(name);
  if (valueMoved) notifyChanged(kValueKey);
  repaint();
}

ControlHost& veltSlider::host() const {
  if (!host_)
    throw Error(errObjectNotSet, ClassName() + ": the control is not sited on a container");
  return *host_;
}

// ---- Life cycle and persistence ---------------------------------------------

// The palette is chosen here already, so even this first paint is in the
// slider's colours.
void veltSlider::Initialize(ControlHost& host) {
  host_ = &host;
  state_ = ssRest;
  hasFocus_ = 0;
  mouseIsDown_ = false;
  hover_.Attach(
      host, [this](HoverTracker::Finding finding) { hoverFinding(finding); },
      [this]() -> std::shared_ptr<const void> { return weak_from_this().lock(); });
  selectScheme();
  repaint();
}

// No repaint of its own: the container's Resize follows.
void veltSlider::InitProperties() {
  ControlHost& h = host();
  frame_.BackColor = FrameProperties::kDefaultBackColor;
  frame_.ForeColor = FrameProperties::kDefaultForeColor;
  h.Font(h.AmbientFont());
  tabSelectColor_ = kDefaultTabSelectColor;
  orientation_ = pbHorizontal;
  tickStyle_ = Tick_None;
  range_.Reset(kDefaultMin, kDefaultMax, kDefaultValue);
  selectScheme();
}

// Stored values go straight into the fields: a stored range is not checked.
void veltSlider::ReadProperties(PropertyBag& bag) {
  ControlHost& h = host();
  frame_.Read(FrameProperty::BackColor, bag, h);
  frame_.Read(FrameProperty::ForeColor, bag, h);
  frame_.Read(FrameProperty::Enabled, bag, h);
  frame_.Read(FrameProperty::Font, bag, h);
  tabSelectColor_ =
      bag.ReadProperty(kTabSelectColorKey, Variant::Color(kDefaultTabSelectColor)).ToColor();
  orientation_ = static_cast<MyOrientation>(
      bag.ReadProperty(kOrientationKey, Variant(int32_t{pbHorizontal})).ToLong());
  tickStyle_ = static_cast<TickStyles>(
      bag.ReadProperty(kTickStyleKey, Variant(int32_t{Tick_None})).ToLong());
  const int32_t min = bag.ReadProperty(kMinKey, Variant(kDefaultMin)).ToLong();
  const int32_t max = bag.ReadProperty(kMaxKey, Variant(kDefaultMax)).ToLong();
  range_.Reset(min, max, bag.ReadProperty(kValueKey, Variant(kDefaultValue)).ToLong());
  selectScheme();
  repaint();
}

void veltSlider::WriteProperties(PropertyBag& bag) {
  const ControlHost& h = host();
  frame_.Write(FrameProperty::BackColor, bag, h);
  frame_.Write(FrameProperty::ForeColor, bag, h);
  frame_.Write(FrameProperty::Enabled, bag, h);
  frame_.Write(FrameProperty::Font, bag, h);
  bag.WriteProperty(kTabSelectColorKey, Variant::Color(tabSelectColor_),
                    Variant::Color(kDefaultTabSelectColor));
  bag.WriteProperty(kOrientationKey, Variant(static_cast<int32_t>(orientation_)),
                    Variant(int32_t{pbHorizontal}));
  bag.WriteProperty(kTickStyleKey, Variant(static_cast<int32_t>(tickStyle_)),
                    Variant(int32_t{Tick_None}));
  bag.WriteProperty(kMinKey, Variant(range_.Min()), Variant(kDefaultMin));
  bag.WriteProperty(kMaxKey, Variant(range_.Max()), Variant(kDefaultMax));
  bag.WriteProperty(kValueKey, Variant(range_.Value()), Variant(kDefaultValue));
  repaint();
}

void veltSlider::Resize() {
  applySizeRule();
  repaint();
}

void veltSlider::Terminate() {
  hover_.Detach();
  host_ = nullptr;
}

// ---- State and geometry -----------------------------------------------------

void veltSlider::selectScheme() {
  if (!host_) return;
  if (!host_->Enabled())
    state_ = ssDisabled;
  else if (state_ == ssDisabled)
    state_ = ssIdle;
  palette_ = paletteFor(state_);
}

// Only the resting look shows the focus; pressing keeps the normal palette.
ColorScheme veltSlider::paletteFor(SliderState state) const {
  const OLE_COLOR back = frame_.BackColor;
  const OLE_COLOR fore = frame_.ForeColor;
  switch (state) {
    case ssHover:
      return SchemeHover(back, fore, kPaletteThird);
    case ssDisabled:
      return SchemeDisabled(back, fore, kPaletteThird);
    case ssRest:
      if (hasFocus_ == 1) return SchemeFocused(back, fore, tabSelectColor_);
      break;
    case ssIdle:
    case ssPressed:
      break;
  }
  return SchemeNormal(back, fore, kPaletteThird);
}

// The thickness across the groove is fixed; the host is given the new size in
// twips. A size it already has is no change, so the Resize this causes does
// not come back here again.
void veltSlider::applySizeRule() {
  if (!host_) return;
  ControlHost& h = *host_;
  Canvas& surface = h.Surface();
  int32_t thickness = kPlainThickness;
  if (labelled(tickStyle_)) {
    syncFont(surface);
    thickness = vertical() ? surface.TextWidth(std::to_string(range_.Max())) + kLabelledGap +
                                 surface.TextWidth(std::to_string(range_.Min()))
                           : kLabelledThickness;
  }
  const int32_t width = vertical() ? thickness : surface.ScaleWidth();
  const int32_t height = vertical() ? surface.ScaleHeight() : thickness;
  h.Move(h.Left(), h.Top(), width * h.TwipsPerPixelX(), height * h.TwipsPerPixelY());
}

int32_t veltSlider::length() const {
  const Canvas& surface = host_->Surface();
  return vertical() ? surface.ScaleHeight() : surface.ScaleWidth();
}

// Whole percents of the track, so the thumb moves in steps of one percent.
// With Max equal to Min every value sits at the Min end.
int32_t veltSlider::valueToPos(int32_t value) {
  const int32_t min = range_.Min();
  const int32_t max = range_.Max();
  double percent = 0;
  if (value != min && max != min)
    percent =
        RoundHalfEven((static_cast<double>(value) - min) / (static_cast<double>(max) - min) * 100);
  const double track = RoundHalfEven(static_cast<double>(length()) - 2 * kThumbMargin);
  const double pos = std::clamp(Fix(percent * track / 100), -kFarOff, kFarOff);
  thumbPos_ = static_cast<int32_t>(pos);
  return thumbPos_;
}

// `pos` is the pointer's coordinate along the groove less the thumb margin.
int32_t veltSlider::posToValue(double pos) const {
  const double track = static_cast<double>(length()) - 2 * kThumbMargin;
  const double percent = pos == 0 ? 0 : RoundHalfEven(pos / track * 100);
  const int32_t min = range_.Min();
  const int32_t max = range_.Max();
  double value = min + Fix((static_cast<double>(max) - min) * percent / 100);
  if (std::isnan(value) || value < min) value = min;
  if (value > max) value = max;
  return static_cast<int32_t>(value);
}

void veltSlider::hoverFinding(HoverTracker::Finding finding) {
  if (finding == HoverTracker::Finding::Left) {
    state_ = ssRest;
    selectScheme();
    repaint();
    return;
  }
  const bool pressed = mouseIsDown_;
  // Resting in the hover look again changes nothing on the face.
  if (!pressed && state_ == ssHover) return;
  state_ = pressed ? ssPressed : ssHover;
  selectScheme();
  repaint();
  if (pressed) raiseClick();
}

// ---- Painting ---------------------------------------------------------------

// The thumb, and with it the value report, only while enabled.
void veltSlider::repaint() {
  if (!host_) return;
  ++repaints_;
  Canvas& surface = host_->Surface();
  syncFont(surface);
  surface.Clear();
  const Axis axis{vertical()};
  drawTrack(surface, axis);
  drawTicks(surface, axis);
  if (host_->Enabled()) drawThumb(surface, axis);
}

void veltSlider::syncFont(Canvas& surface) const {
  if (std::shared_ptr<velt::Font> font = host_->Font(); font && surface.Font() != font)
    surface.Font(std::move(font));
}

// The background comes from setting the surface's back colour, which erases it.
void veltSlider::drawTrack(Canvas& surface, const Axis& axis) const {
  const ColorScheme& p = palette_;
  surface.BackColor(BlendColor(frame_.BackColor, frame_.ForeColor, kTrackBackWeight));
  const int32_t end = length() - kGrooveEnd;
  const std::array<OLE_COLOR, 4> rows{p.FillTop, p.FillMiddle, p.FillMiddle, p.FillBottom};
  for (int32_t i = 0; i < 4; ++i)
    axis.line(surface, kGrooveEnd, kGrooveEnd + i, end, kGrooveEnd + i, rows[i]);
  axis.line(surface, kGrooveEnd - 1, 9, kGrooveEnd - 1, 11, p.FillTop);
  axis.line(surface, end, 9, end, 11, p.FillBottom);
}

void veltSlider::drawTicks(Canvas& surface, const Axis& axis) {
  if (tickStyle_ == Tick_None) return;
  const OLE_COLOR text = palette_.Text;
  const int32_t min = range_.Min();
  const int32_t max = range_.Max();
  const double range = static_cast<double>(max) - min;
  const auto middle = static_cast<int32_t>(Fix(range / 2) + min);
  const int32_t far = length() - kThumbMargin;
  const int32_t middleAt = valueToPos(middle) + kThumbMargin;
  axis.line(surface, middleAt, kTickFrom, middleAt, kMainTickTo, text);
  axis.line(surface, kThumbMargin, kTickFrom, kThumbMargin, kMainTickTo, text);
  axis.line(surface, far, kTickFrom, far, kMainTickTo, text);
  drawTickLabel(surface, axis, std::to_string(middle), text, middleAt);
  if (quartered(tickStyle_)) {
    for (const double share : {range / 4, range / 4 * 3}) {
      const auto quarter = static_cast<int32_t>(Fix(share) + min);
      const int32_t at = valueToPos(quarter) + kThumbMargin;
      axis.line(surface, at, kTickFrom, at, kQuarterTickTo, palette_.FillBottom);
      drawTickLabel(surface, axis, std::to_string(quarter), text, at);
    }
  }
  drawTickLabel(surface, axis, signedText(max), text, far);
  drawTickLabel(surface, axis, signedText(min), text, kThumbMargin);
}

// Centred on its tick along the groove, below (or beside) the ticks.
void veltSlider::drawTickLabel(Canvas& surface, const Axis& axis, const std::string& text,
                               OLE_COLOR color, int32_t position) const {
  if (!labelled(tickStyle_)) return;
  const auto along = static_cast<int32_t>(Fix(position - surface.TextWidth(text) / 2.0));
  PrintCaption(surface, static_cast<float>(axis.x(along, kLabelAcross)),
               static_cast<float>(axis.y(along, kLabelAcross)), text, color);
}

// Reports a new value before drawing the pointer. A handler may set the value
// again (the repaint that causes is complete, so this one stops) or remove the
// slider.
void veltSlider::drawThumb(Canvas& surface, const Axis& axis) {
  const int32_t value = range_.Value();
  const int32_t p = valueToPos(value) + kThumbDrawOffset;
  if (value != lastValue_) {
    const uint64_t before = repaints_;
    const auto self = weak_from_this().lock();
    RaiseEvent(*host_, "ValueChange", ValueChange);
    lastValue_ = range_.Value();
    if (!host_ || repaints_ != before) return;
  }
  const ColorScheme& scheme = palette_;
  for (const ThumbStep& step : kThumb) {
    const int32_t a = p + step.along1;
    const int32_t c = step.across1;
    switch (step.kind) {
      case StepKind::Line:
        axis.line(surface, a, c, p + step.along2, step.across2, scheme.*step.color);
        break;
      case StepKind::Pixel:
        surface.PSet(axis.x(a, c), axis.y(a, c), scheme.*step.color);
        break;
      case StepKind::Rect:
        GradientRect(surface, axis.x(a, c), axis.y(a, c), axis.x(step.along2, step.across2),
                     axis.y(step.along2, step.across2), ColorToVertexColor(scheme.*step.color),
                     ColorToVertexColor(scheme.*step.toColor), step.mode);
        break;
    }
  }
}

// ---- Input ------------------------------------------------------------------
// Each handler holds the slider alive while it raises events: a handler may
// remove it from its container, which unsites it; the rest is then skipped.

// A press anywhere moves the thumb's centre to the pointer.
void veltSlider::OnMouseDown(int16_t button, int16_t /*shift*/, float x, float y) {
  if (button != kLeftButton) return;
  const auto self = weak_from_this().lock();
  mouseIsDown_ = true;
  Value(posToValue((vertical() ? y : x) - kThumbMargin));
}

// Only the thumb (or a drag) is tracked; no MouseMove reaches the container.
void veltSlider::OnMouseMove(int16_t button, int16_t /*shift*/, float x, float y) {
  const float along = vertical() ? y : x;
  const float across = vertical() ? x : y;
  if (!onThumb(along, across) && !mouseIsDown_) return;
  const auto self = weak_from_this().lock();
  hover_.MouseMoved();
  if ((button & kLeftButton) == 0) return;
  Value(posToValue(along - kThumbMargin));
  if (sited()) RaiseEvent(*host_, "Slide", Slide);
}

// The release clicks, and so does the container's own click notification for
// a press and release both on the control. This host has no such notification,
// so a release on the control stands in for it: a plain click raises Click
// twice, as it always has.
void veltSlider::OnMouseUp(int16_t button, int16_t /*shift*/, float x, float y) {
  if (button != kLeftButton) return;
  const auto self = weak_from_this().lock();
  const bool wasDown = mouseIsDown_;
  if (wasDown) raiseClick();
  if (!sited()) return;
  mouseIsDown_ = false;
  const Canvas& surface = host_->Surface();
  const bool onControl = x >= 0 && y >= 0 && x < surface.ScaleWidth() && y < surface.ScaleHeight();
  if (wasDown && onControl) raiseClick();
}

// Arrow keys along the slider's own axis step the value by one, inside the
// range; the test uses KeyCode as the container's KeyDown handler left it.
void veltSlider::OnKeyDown(int16_t& keyCode, int16_t& shift) {
  const auto self = weak_from_this().lock();
  if (!sited()) return;
  RaiseEvent(*host_, "KeyDown", KeyDown, keyCode, shift);
  if (!sited()) return;
  const int16_t lower = vertical() ? kKeyUp : kKeyLeft;
  const int16_t higher = vertical() ? kKeyDown : kKeyRight;
  if (keyCode == lower)
    Value(static_cast<int32_t>(std::max<int64_t>(int64_t{range_.Value()} - 1, range_.Min())));
  else if (keyCode == higher)
    Value(static_cast<int32_t>(std::min<int64_t>(int64_t{range_.Value()} + 1, range_.Max())));
}

void veltSlider::OnKeyUp(int16_t& keyCode, int16_t& shift) {
  const auto self = weak_from_this().lock();
  if (!sited()) return;
  RaiseEvent(*host_, "KeyUp", KeyUp, keyCode, shift);
}

void veltSlider::OnKeyPress(int16_t& keyAscii) {
  const auto self = weak_from_this().lock();
  if (!sited()) return;
  RaiseEvent(*host_, "KeyPress", KeyPress, keyAscii);
}

void veltSlider::OnEnterFocus() {
  hasFocus_ = 1;
  selectScheme();
  repaint();
}

void veltSlider::OnExitFocus() {
  hasFocus_ = 0;
  selectScheme();
  repaint();
}

bool veltSlider::onThumb(float along, float across) const {
  const int32_t start = thumbPos_ + kThumbDrawOffset;
  return across > kThumbTop && across < kThumbBottom && along > start &&
         along < start + kThumbWidth;
}

void veltSlider::raiseClick() {
  if (!sited()) return;
  const auto self = weak_from_this().lock();
  RaiseEvent(*host_, "Click", Click);
}

}  // namespace velt
