#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "velt/controls/range/MyOrientation.hpp"
#include "velt/controls/range/RangeModel.hpp"
#include "velt/foundation/ColorScheme.hpp"
#include "velt/foundation/FrameProperties.hpp"
#include "velt/foundation/HoverTracker.hpp"
#include "velt/platform/Event.hpp"
#include "velt/platform/Geometry.hpp"
#include "velt/platform/Types.hpp"
#include "velt/platform/UserControl.hpp"

namespace velt {

class Canvas;
class ControlHost;
class Font;

// Tick marks at the ends, the middle and (four-part styles) the quarters, with
// value labels in the value styles. Stored in property bags: the numbers stay.
enum TickStyles : int32_t {
  Tick_None = 0,
  Tick_Half = 1,        // Min end, middle, Max end
  Tick_Four = 2,        // as Tick_Half plus the two quarters
  Tick_Half_Value = 3,  // as Tick_Half, each tick labelled with its value
  Tick_Four_Value = 4,  // as Tick_Four, each tick labelled with its value
};

// A track bar: a 4-pixel groove and a small pixel-drawn pointer over the
// integer range Min..Max, dragged, clicked to a place or moved with the arrow
// keys. Min lies at the left or at the top. The control keeps a fixed
// thickness that depends on its orientation and tick style.
//
// It takes the frame's pieces (persistence of the frame colours, Enabled and
// Font on the host, hover tracking with the MousePos timer) but numbers its
// looks its own way and raises no mouse events. Orientations other than
// pbVertical are drawn and laid out as horizontal.
class veltSlider : public UserControl, public std::enable_shared_from_this<veltSlider> {
 public:
  // The slider's own look states; the numbers are part of its contract.
  enum SliderState : int32_t {
    ssIdle = 0,      // what a disabled slider becomes when enabled again
    ssHover = 2,     // the pointer rests on the thumb, no button held
    ssPressed = 3,   // the left button is held
    ssDisabled = 4,  // the host's Enabled is False
    ssRest = 5,      // after creation and after the pointer left
  };

  static constexpr int16_t kID = 11;
  static constexpr OLE_COLOR kDefaultTabSelectColor = 38631;  // 0x0096E7, an orange
  static constexpr int32_t kDefaultMin = 0;
  static constexpr int32_t kDefaultMax = 10;
  static constexpr int32_t kDefaultValue = 5;

  veltSlider() = default;
  veltSlider(const veltSlider&) = delete;
  veltSlider& operator=(const veltSlider&) = delete;
  ~veltSlider() override;

  std::string ClassName() const override { return "veltSlider"; }
  int16_t ID() const override { return kID; }

  // Properties, in the order they are stored. Enabled and Font are the host's
  // and raise error 91 while the slider is not sited.
  OLE_COLOR BackColor() const { return frame_.BackColor; }
  void BackColor(OLE_COLOR color);
  OLE_COLOR ForeColor() const { return frame_.ForeColor; }
  void ForeColor(OLE_COLOR color);
  bool Enabled() const;
  void Enabled(bool enabled);
  std::shared_ptr<velt::Font> Font() const;
  void Font(std::shared_ptr<velt::Font> font);  // by reference; nullptr is error 91
  OLE_COLOR TabSelectColor() const { return tabSelectColor_; }
  void TabSelectColor(OLE_COLOR color);  // third colour of the focused look
  MyOrientation Orientation() const { return orientation_; }
  void Orientation(MyOrientation orientation);
  TickStyles TickStyle() const { return tickStyle_; }
  void TickStyle(TickStyles style);
  // Min stays below Max: a Min at or above Max becomes Max - 1, a Max at or
  // below Min becomes Min + 1, and Value is pulled into the range. Error 6 when
  // that neighbour does not exist.
  int32_t Min() const { return range_.Min(); }
  void Min(int32_t value);
  int32_t Max() const { return range_.Max(); }
  void Max(int32_t value);
  // Not checked against the range: a value outside it stays as set.
  int32_t Value() const { return range_.Value(); }
  void Value(int32_t value);

  // Events, in the order of the event interface.
  Event<> Click;
  Event<int16_t& /*KeyCode*/, int16_t& /*Shift*/> KeyDown;
  Event<int16_t& /*KeyAscii*/> KeyPress;
  Event<int16_t& /*KeyCode*/, int16_t& /*Shift*/> KeyUp;
  Event<> ValueChange;
  Event<> Slide;

  // The slider's fields, read-only, for tools and tests.
  SliderState State() const { return state_; }
  int32_t HasFocus() const { return hasFocus_; }
  bool MouseIsDown() const { return mouseIsDown_; }
  int32_t LastValue() const { return lastValue_; }
  int32_t ThumbPos() const { return thumbPos_; }
  const ColorScheme& Palette() const { return palette_; }
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

 private:
  struct Axis;

  bool sited() const { return host_ != nullptr; }
  ControlHost& host() const;  // error 91 while not sited
  void notifyChanged(const char* name);
  void restyle(const char* name);
  void relayout(const char* name);
  void rangeChanged(const char* name, bool valueMoved);
  bool vertical() const { return orientation_ == pbVertical; }
  int32_t length() const;  // along the groove, pixels
  void syncFont(Canvas& surface) const;

  // State and geometry.
  void selectScheme();
  ColorScheme paletteFor(SliderState state) const;
  void applySizeRule();
  int32_t valueToPos(int32_t value);
  int32_t posToValue(double pos) const;
  void hoverFinding(HoverTracker::Finding finding);

  // Painting.
  void repaint();
  void drawTrack(Canvas& surface, const Axis& axis) const;
  void drawTicks(Canvas& surface, const Axis& axis);
  void drawTickLabel(Canvas& surface, const Axis& axis, const std::string& text, OLE_COLOR color,
                     int32_t position) const;
  void drawThumb(Canvas& surface, const Axis& axis);

  // Input.
  bool onThumb(float along, float across) const;
  void raiseClick();

  ControlHost* host_ = nullptr;
  FrameProperties frame_;  // BackColor and ForeColor; the slider has no caption
  OLE_COLOR tabSelectColor_ = kDefaultTabSelectColor;
  MyOrientation orientation_ = pbHorizontal;
  TickStyles tickStyle_ = Tick_None;
  RangeModel range_{"veltSlider", RangeModel::Width::Any, kDefaultMin, kDefaultMax, kDefaultValue};
  ColorScheme palette_;
  SliderState state_ = ssRest;
  int32_t hasFocus_ = 0;
  bool mouseIsDown_ = false;
  int32_t lastValue_ = kDefaultValue;  // so a new slider has nothing to report
  int32_t thumbPos_ = 0;
  HoverTracker hover_;
  uint64_t repaints_ = 0;  // lets a repaint notice that a handler repainted under it
};

}  // namespace velt
