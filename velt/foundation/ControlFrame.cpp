#include "velt/foundation/ControlFrame.hpp"

#include <utility>

#include "velt/foundation/EventRaising.hpp"
#include "velt/platform/Canvas.hpp"
#include "velt/platform/ControlHost.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/Font.hpp"
#include "velt/platform/PropertyBag.hpp"

namespace velt {

ControlFrame::~ControlFrame() = default;

// ---- Properties -------------------------------------------------------------

void ControlFrame::BackColor(OLE_COLOR color) {
  properties_.BackColor = color;
  propertyChanged("BackColor");
}

void ControlFrame::ForeColor(OLE_COLOR color) {
  properties_.ForeColor = color;
  propertyChanged("ForeColor");
}

bool ControlFrame::Enabled() const {
  return host().Enabled();
}

void ControlFrame::Enabled(bool enabled) {
  host().Enabled(enabled);
  propertyChanged("Enabled");
}

std::shared_ptr<velt::Font> ControlFrame::Font() const {
  return host().Font();
}

void ControlFrame::Font(std::shared_ptr<velt::Font> font) {
  if (!font) throw Error(errObjectNotSet, ClassName() + ".Font: no font object given");
  host().Font(std::move(font));
  propertyChanged("Font");
}

void ControlFrame::Caption(const std::string& caption) {
  properties_.Caption = caption;
  propertyChanged("Caption");
}

void ControlFrame::propertyChanged(const std::string& name) {
  if (!host_) return;
  host_->PropertyChanged(name);
  repaint();
}

ControlHost& ControlFrame::host() const {
  if (!host_)
    throw Error(errObjectNotSet, ClassName() + ": the control is not sited on a container");
  return *host_;
}

// ---- Life cycle -------------------------------------------------------------

void ControlFrame::Initialize(ControlHost& host) {
  host_ = &host;
  state_ = bsNormal;
  hasFocus_ = 0;
  mouseIsDown_ = false;
  hover_.Attach(
      host, [this](HoverTracker::Finding finding) { hoverFinding(finding); },
      [this]() -> std::shared_ptr<const void> { return weak_from_this().lock(); });
}

void ControlFrame::InitProperties() {
  properties_.InitProperties(host());
  initOwnProperties();
  repaint();
}

void ControlFrame::ReadProperties(PropertyBag& bag) {
  properties_.ReadProperties(bag, host());
  readOwnProperties(bag);
  repaint();
}

void ControlFrame::WriteProperties(PropertyBag& bag) {
  properties_.WriteProperties(bag, host());
  writeOwnProperties(bag);
  repaint();
}

void ControlFrame::Resize() {
  repaint();
}

void ControlFrame::Terminate() {
  hover_.Detach();
  host_ = nullptr;
}

// ---- State and painting -----------------------------------------------------

ColorScheme ControlFrame::palette(ButtonState state) const {
  const OLE_COLOR back = properties_.BackColor;
  const OLE_COLOR fore = properties_.ForeColor;
  switch (state) {
    case bsHover:
      return SchemeHover(back, fore, kPaletteThird);
    case bsPressed:
      return SchemePressed(back, fore, kPaletteThird);
    case bsDisabled:
      return SchemeDisabled(back, fore, kPaletteThird);
    case bsIdle:
    case bsNormal:
      break;
  }
  return SchemeNormal(back, fore, kPaletteThird);
}

void ControlFrame::repaint() {
  if (!host_) return;
  Canvas& surface = host_->Surface();
  if (std::shared_ptr<velt::Font> font = host_->Font(); font && surface.Font() != font)
    surface.Font(std::move(font));
  surface.Clear();
  if (!host_->Enabled())
    state_ = bsDisabled;
  else if (state_ == bsDisabled)
    state_ = bsIdle;
  paint(surface, palette(state_));
}

void ControlFrame::changeState(ButtonState state) {
  state_ = state;
  repaint();
}

// A tick that finds the state as it was changes nothing on the face, so it
// paints nothing: a pointer resting on a control costs next to nothing.
void ControlFrame::hoverFinding(HoverTracker::Finding finding) {
  const ButtonState found = finding == HoverTracker::Finding::Left ? bsNormal
                            : mouseIsDown_                         ? bsPressed
                                                                   : bsHover;
  if (found != state_) changeState(found);
}

// ---- Input ------------------------------------------------------------------
// Each handler holds the control alive while it raises events: a handler may
// remove the control from its container, which terminates it (unsites it); the
// rest of the sequence is then skipped.

void ControlFrame::OnMouseDown(int16_t button, int16_t shift, float x, float y) {
  if (button != kLeftButton) return;
  const auto self = weak_from_this().lock();
  mouseIsDown_ = true;
  raiseMouse("MouseDown", MouseDown, button, shift, x, y);
}

void ControlFrame::OnMouseMove(int16_t button, int16_t shift, float x, float y) {
  const auto self = weak_from_this().lock();
  hover_.MouseMoved();
  raiseMouse("MouseMove", MouseMove, button, shift, x, y);
}

// The host holds the capture while the button is down, so a release outside
// the control arrives here too and still clicks.
void ControlFrame::OnMouseUp(int16_t button, int16_t shift, float x, float y) {
  if (button != kLeftButton) return;
  const auto self = weak_from_this().lock();
  if (mouseIsDown_) raiseClick();
  if (!sited()) return;
  mouseIsDown_ = false;
  raiseMouse("MouseUp", MouseUp, button, shift, x, y);
}

// The key test uses KeyCode as the container's KeyDown handler left it, so a
// handler that zeroes it suppresses the click.
void ControlFrame::OnKeyDown(int16_t& keyCode, int16_t& shift) {
  const auto self = weak_from_this().lock();
  raiseKey("KeyDown", KeyDown, keyCode, shift);
  if (!sited() || !isClickKey(keyCode)) return;
  changeState(bsPressed);
  raiseClick();
}

void ControlFrame::OnKeyUp(int16_t& keyCode, int16_t& shift) {
  const auto self = weak_from_this().lock();
  raiseKey("KeyUp", KeyUp, keyCode, shift);
  if (!sited() || !isClickKey(keyCode)) return;
  changeState(bsNormal);
}

void ControlFrame::OnKeyPress(int16_t& keyAscii) {
  const auto self = weak_from_this().lock();
  if (!sited()) return;
  RaiseEvent(*host_, "KeyPress", KeyPress, keyAscii);
}

void ControlFrame::OnEnterFocus() {
  hasFocus_ = 1;
  repaint();
}

void ControlFrame::OnExitFocus() {
  hasFocus_ = 0;
  repaint();
}

void ControlFrame::raiseClick() {
  if (!sited()) return;
  RaiseEvent(*host_, "Click", Click);
}

void ControlFrame::raiseKey(const char* name, const Event<int16_t&, int16_t&>& event,
                            int16_t& keyCode, int16_t& shift) {
  if (!sited()) return;
  RaiseEvent(*host_, name, event, keyCode, shift);
}

void ControlFrame::raiseMouse(const char* name, const Event<int16_t, int16_t, float, float>& event,
                              int16_t button, int16_t shift, float x, float y) {
  if (!sited()) return;
  RaiseEvent(*host_, name, event, button, shift, x, y);
}

}  // namespace velt
