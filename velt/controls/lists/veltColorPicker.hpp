#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "velt/platform/Event.hpp"
#include "velt/platform/Types.hpp"
#include "velt/platform/UserControl.hpp"

namespace velt {

class Canvas;

// A fixed field of eight shaded columns (white through a middle colour to
// black) to pick a colour from by pressing or dragging the left button. The
// picked point gets a small square marker; the picked colour shows as a swatch,
// as red, green and blue numbers and as hexadecimal digits, above a second
// swatch showing Color. The layout does not scale with the control: only the
// columns take its height.
//
// Of the control frame it keeps the type code, persistence and repainting on
// resize: no hover timer, no colours, font or Enabled of its own, no keys.
class veltColorPicker : public UserControl, public std::enable_shared_from_this<veltColorPicker> {
 public:
  static constexpr int16_t kID = 1;
  static constexpr OLE_COLOR kDefaultColor = 38631;  // 0x0096E7, an orange

  veltColorPicker() = default;
  veltColorPicker(const veltColorPicker&) = delete;
  veltColorPicker& operator=(const veltColorPicker&) = delete;
  ~veltColorPicker() override;

  std::string ClassName() const override { return "veltColorPicker"; }
  int16_t ID() const override { return kID; }

  // The lower swatch's colour. Plain RGB only: a system colour or anything
  // above 0xFFFFFF is error 380 and is not stored.
  OLE_COLOR Color() const { return color_; }
  void Color(OLE_COLOR color);

  // The colour the user picked last: the surface's pixel under the pointer as
  // it was shown when picked (white until the first pick). Read-only and not
  // stored; Color is not changed by picking, so a container that wants the
  // pick reads it here, typically in its MouseUp handler.
  OLE_COLOR PickedColor() const { return picked_; }

  // Events, in the order of the event interface. A press or release raises
  // MouseMove before its own event.
  Event<int16_t /*Button*/, int16_t /*Shift*/, float /*X*/, float /*Y*/> MouseDown;
  Event<int16_t /*Button*/, int16_t /*Shift*/, float /*X*/, float /*Y*/> MouseMove;
  Event<int16_t /*Button*/, int16_t /*Shift*/, float /*X*/, float /*Y*/> MouseUp;

  // The picked point, for tools and tests.
  float MarkerX() const { return markerX_; }
  float MarkerY() const { return markerY_; }

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
  void OnKeyDown(int16_t& /*keyCode*/, int16_t& /*shift*/) override {}
  void OnKeyUp(int16_t& /*keyCode*/, int16_t& /*shift*/) override {}
  void OnKeyPress(int16_t& /*keyAscii*/) override {}
  void OnEnterFocus() override {}
  void OnExitFocus() override {}

 private:
  static constexpr float kStartMarker = 3;
  static constexpr OLE_COLOR kStartPicked = 0xFFFFFF;

  bool sited() const { return host_ != nullptr; }

  // Painting.
  void repaint();
  void paintColumns(Canvas& surface) const;
  void paintMarker(Canvas& surface) const;
  void paintSwatches(Canvas& surface) const;
  void paintReadout(Canvas& surface) const;

  // Input.
  bool accepts(int16_t button, float x, float y) const;
  void pick(int16_t button, int16_t shift, float x, float y);
  void raiseMouse(const char* name, const Event<int16_t, int16_t, float, float>& event,
                  int16_t button, int16_t shift, float x, float y);

  ControlHost* host_ = nullptr;
  OLE_COLOR color_ = kDefaultColor;
  OLE_COLOR picked_ = kStartPicked;
  float markerX_ = kStartMarker;
  float markerY_ = kStartMarker;
};

}  // namespace velt
