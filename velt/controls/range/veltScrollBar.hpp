#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "velt/controls/range/MyOrientation.hpp"
#include "velt/controls/range/RangeModel.hpp"
#include "velt/controls/range/ScrollBarGeometry.hpp"
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
class veltXButton;

// An owner-drawn scroll bar: two glyph buttons at the ends of a track (its
// parts, the control array veltButton1 with indices 0 and 1) and a thumb that
// shows Value between Min and Max. The thumb is half the bar long less one
// button, whatever the range, and moves in steps of one percent of it. A press
// on the track jumps to Min or Max; there is no paging and no keyboard
// stepping. The bar keeps its thickness between 15 and 25 pixels.
//
// It takes the frame's pieces (persistence of the colours and Enabled, hover
// tracking with the MousePos timer) but numbers its looks its own way and has
// no Font: the arrows draw their glyphs in the symbol font.
class veltScrollBar : public UserControl, public std::enable_shared_from_this<veltScrollBar> {
 public:
  // The thumb's look states; the numbers are part of the bar's contract.
  enum ScrollBarState : int32_t {
    sbIdle = 0,      // what a disabled bar becomes when enabled again
    sbNormal = 1,    // after creation
    sbHover = 2,     // the pointer rests on the thumb
    sbDragging = 3,  // the thumb is being dragged
    sbDisabled = 4,  // the host's Enabled is False
    sbRest = 5,      // after the pointer left
  };

  static constexpr int16_t kID = 10;
  static constexpr int32_t kDefaultMin = 1;
  static constexpr int32_t kDefaultMax = 100;
  static constexpr int32_t kDefaultValue = 50;
  static constexpr MyOrientation kDefaultOrientation = pbVertical;
  // The thickness a resize keeps the bar within, pixels.
  static constexpr int32_t kMinThickness = 15;
  static constexpr int32_t kMaxThickness = 25;
  // The part names and the font of the arrow glyphs.
  static constexpr const char* kArrowName = "veltButton1";
  static constexpr const char* kArrowFontName = "Webdings";
  static constexpr int kArrowCount = 2;

  veltScrollBar() = default;
  veltScrollBar(const veltScrollBar&) = delete;
  veltScrollBar& operator=(const veltScrollBar&) = delete;
  ~veltScrollBar() override;

  std::string ClassName() const override { return "veltScrollBar"; }
  int16_t ID() const override { return kID; }

  // Properties, in the order they are stored. Enabled is the host's and raises
  // error 91 while the bar is not sited.
  bool Enabled() const;
  void Enabled(bool enabled);
  // Min stays below Max: a Min at or above Max becomes Max - 1, a Max at or
  // below Min becomes Min + 1, and Value is pulled into the range. Error 6 when
  // that neighbour does not exist or Max - Min would not fit 32 bits.
  int32_t Min() const { return range_.Min(); }
  void Min(int32_t value);
  int32_t Max() const { return range_.Max(); }
  void Max(int32_t value);
  // Clamped into Min..Max. Setting the value last reported does nothing.
  int32_t Value() const { return range_.Value(); }
  void Value(int32_t value);
  // Not checked: another value leaves the arrows as they are and draws
  // neither the outlines nor the thumb.
  MyOrientation Orientation() const { return orientation_; }
  void Orientation(MyOrientation orientation);
  OLE_COLOR BackColor() const { return frame_.BackColor; }
  void BackColor(OLE_COLOR color);
  OLE_COLOR ForeColor() const { return frame_.ForeColor; }
  void ForeColor(OLE_COLOR color);

  // Events, in the order of the event interface.
  Event<int16_t /*Button*/, int16_t /*Shift*/, float /*X*/, float /*Y*/> MouseDown;
  Event<int16_t /*Button*/, int16_t /*Shift*/, float /*X*/, float /*Y*/> MouseUp;
  Event<int16_t /*Button*/, int16_t /*Shift*/, float /*X*/, float /*Y*/> MouseMove;
  Event<> Click;
  Event<int16_t& /*KeyAscii*/> KeyPress;
  Event<int16_t& /*KeyCode*/, int16_t& /*Shift*/> KeyUp;
  Event<int16_t& /*KeyCode*/, int16_t& /*Shift*/> KeyDown;
  Event<> Scroll;
  Event<> ValueChanged;

  // The arrow buttons: 0 at the Min end, 1 at the Max end (error 9 otherwise;
  // nullptr before the bar is sited).
  std::shared_ptr<veltXButton> veltButton1(int16_t index) const;

  // The bar's fields and layout, read-only, for tools and tests.
  ScrollBarState State() const { return state_; }
  int32_t OldValue() const { return oldValue_; }
  int32_t ThumbPos() const { return thumbPos_; }
  bool Dragging() const { return dragging_; }
  int32_t GrabOffset() const { return grabOffset_; }
  const ColorScheme& Palette() const { return palette_; }
  ScrollBarGeometry Geometry() const;  // error 91 while not sited
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
  using MouseEvent = Event<int16_t, int16_t, float, float>;

  bool sited() const { return host_ != nullptr; }
  ControlHost& host() const;  // error 91 while not sited
  void notifyChanged(const char* name);
  bool laidOut() const { return orientation_ == pbHorizontal || orientation_ == pbVertical; }

  // The value model.
  void rangeChanged(const char* name, bool valueMoved);

  // Parts and layout.
  void createArrows();
  void connectArrow(int index);
  void applyThicknessLimits();
  void applyOrientation();

  // State.
  void selectScheme();
  ColorScheme paletteFor(ScrollBarState state) const;
  void giveArrowsColors();
  void hoverFinding(HoverTracker::Finding finding);

  // Painting.
  void repaint();
  void drawTrack(Canvas& surface, const ScrollBarGeometry& geometry) const;
  void drawVerticalOutlines(Canvas& surface, int32_t side) const;
  void drawHorizontalOutlines(Canvas& surface, int32_t side) const;
  bool reportValue();
  void drawThumb(Canvas& surface, const ScrollBarGeometry& geometry) const;
  void drawGrip(Canvas& surface, const ScrollBarGeometry& geometry, const RectL& thumb) const;

  // Input.
  void onArrowClick(int index);
  void forwardMouse(const char* name, const MouseEvent& event, int16_t button, int16_t shift,
                    float x, float y);
  void raiseClick();
  bool onSurface(float x, float y) const;

  ControlHost* host_ = nullptr;
  FrameProperties frame_;  // BackColor and ForeColor; the bar has no caption
  RangeModel range_{"veltScrollBar", RangeModel::Width::FitsLong, kDefaultMin, kDefaultMax,
                    kDefaultValue};
  MyOrientation orientation_ = kDefaultOrientation;
  ColorScheme palette_;
  ScrollBarState state_ = sbNormal;
  int32_t oldValue_ = kDefaultValue;  // so a new bar has nothing to report
  int32_t thumbPos_ = 0;
  bool dragging_ = false;
  int32_t grabOffset_ = 0;
  bool pressedOnBar_ = false;  // a left press on the bar awaits its release
  HoverTracker hover_;
  std::array<std::shared_ptr<veltXButton>, kArrowCount> arrows_;
  std::array<ControlHost*, kArrowCount> arrowHosts_{};
  std::vector<Connection> arrowConnections_;
  uint64_t repaints_ = 0;  // lets a repaint notice that a handler repainted under it
};

}  // namespace velt
