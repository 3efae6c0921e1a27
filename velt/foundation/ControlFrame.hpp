#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "velt/foundation/ButtonState.hpp"
#include "velt/foundation/ColorScheme.hpp"
#include "velt/foundation/FrameProperties.hpp"
#include "velt/foundation/HoverTracker.hpp"
#include "velt/platform/Event.hpp"
#include "velt/platform/Geometry.hpp"
#include "velt/platform/Types.hpp"
#include "velt/platform/UserControl.hpp"

namespace velt {

class Canvas;
class Font;

// The base of the controls that follow the frame exactly (the push buttons):
// the five frame properties, the visual state machine with hover tracking,
// mouse, keyboard and focus handling, and the repaint rule. A derived control
// supplies its class name, type code, painting and its own properties.
//
// A control owned by a std::shared_ptr (the form makes it so) holds a strong
// reference to itself while it raises an event, so a handler may remove it from
// its form.
class ControlFrame : public UserControl, public std::enable_shared_from_this<ControlFrame> {
 public:
  // The third colour of every palette but the button's focused one.
  static constexpr OLE_COLOR kPaletteThird = 0xFFFFFF;

  ControlFrame(const ControlFrame&) = delete;
  ControlFrame& operator=(const ControlFrame&) = delete;
  ~ControlFrame() override;

  // Properties. Enabled and Font are the host's and raise error 91 while the
  // control is not sited; the others may be set before.
  OLE_COLOR BackColor() const { return properties_.BackColor; }
  void BackColor(OLE_COLOR color);
  OLE_COLOR ForeColor() const { return properties_.ForeColor; }
  void ForeColor(OLE_COLOR color);
  bool Enabled() const;
  void Enabled(bool enabled);
  std::shared_ptr<velt::Font> Font() const;
  void Font(std::shared_ptr<velt::Font> font);  // by reference; nullptr is error 91
  const std::string& Caption() const { return properties_.Caption; }
  void Caption(const std::string& caption);

  // Events, in the order of the event interface.
  Event<> Click;
  Event<int16_t& /*KeyCode*/, int16_t& /*Shift*/> KeyDown;
  Event<int16_t& /*KeyAscii*/> KeyPress;
  Event<int16_t& /*KeyCode*/, int16_t& /*Shift*/> KeyUp;
  Event<int16_t /*Button*/, int16_t /*Shift*/, float /*X*/, float /*Y*/> MouseDown;
  Event<int16_t /*Button*/, int16_t /*Shift*/, float /*X*/, float /*Y*/> MouseMove;
  Event<int16_t /*Button*/, int16_t /*Shift*/, float /*X*/, float /*Y*/> MouseUp;

  // The frame's fields, read-only, for tools and tests.
  ButtonState State() const { return state_; }
  int32_t HasFocus() const { return hasFocus_; }
  bool MouseIsDown() const { return mouseIsDown_; }
  PointL LastCursor() const { return hover_.LastCursor(); }
  PointL NowCursor() const { return hover_.NowCursor(); }
  bool HoverTimerRunning() const { return hover_.Running(); }

  // UserControl.
  void Initialize(ControlHost& host) override;
  void InitProperties() override;
  void ReadProperties(PropertyBag& bag) override;
  void WriteProperties(PropertyBag& bag) override;
  void Resize() override;
  void Terminate() override;
  void OnMouseDown(int16_t button, int16_t shift, float x, float y) override;
  void OnMouseMove(int16_t button, int16_t shift, float x, float y) override;
  void OnMouseUp(int16_t button, int16_t shift, float x, float y) override;
  void OnKeyDown(int16_t& keyCode, int16_t& shift) override;
  void OnKeyUp(int16_t& keyCode, int16_t& shift) override;
  void OnKeyPress(int16_t& keyAscii) override;
  void OnEnterFocus() override;
  void OnExitFocus() override;

 protected:
  static constexpr int16_t kLeftButton = 1;
  static constexpr int16_t kKeyEnter = 13;
  static constexpr int16_t kKeySpace = 32;

  ControlFrame() = default;

  // The palette of a state: normal, hover, pressed, disabled, normal.
  virtual ColorScheme palette(ButtonState state) const;
  // Paints the whole face with the palette; the surface was just cleared.
  virtual void paint(Canvas& surface, const ColorScheme& palette) = 0;
  // The class's own properties, after the frame's.
  virtual void initOwnProperties() {}
  virtual void readOwnProperties(const PropertyBag& /*bag*/) {}
  virtual void writeOwnProperties(PropertyBag& /*bag*/) const {}

  // Clear, settle the disabled state, build the palette, paint. Does nothing
  // while the control is not sited.
  void repaint();
  // What every property setter does after storing the value.
  void propertyChanged(const std::string& name);

  bool sited() const { return host_ != nullptr; }
  ControlHost& host() const;  // error 91 while not sited
  void clearMouseIsDown() { mouseIsDown_ = false; }

 private:
  void changeState(ButtonState state);
  void hoverFinding(HoverTracker::Finding finding);
  bool isClickKey(int16_t keyCode) const { return keyCode == kKeyEnter || keyCode == kKeySpace; }

  void raiseClick();
  void raiseKey(const char* name, const Event<int16_t&, int16_t&>& event, int16_t& keyCode,
                int16_t& shift);
  void raiseMouse(const char* name, const Event<int16_t, int16_t, float, float>& event,
                  int16_t button, int16_t shift, float x, float y);

  ControlHost* host_ = nullptr;
  FrameProperties properties_;
  HoverTracker hover_;
  ButtonState state_ = bsNormal;
  int32_t hasFocus_ = 0;
  bool mouseIsDown_ = false;
};

}  // namespace velt
