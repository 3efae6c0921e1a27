#pragma once

#include <cstdint>
#include <string>

namespace velt {

class ControlHost;
class PropertyBag;

// A control as its container sees it: the life-cycle calls and the input
// notifications the container forwards. The control's own public events
// (Click, KeyDown, ...) are Event members of the concrete class; the handlers
// here are named On... so the two never clash.
class UserControl {
 public:
  virtual ~UserControl() = default;

  // The class name ("veltButton") and its fixed type code.
  virtual std::string ClassName() const = 0;
  virtual int16_t ID() const = 0;

  // Creation: the container hands over its services before anything else.
  virtual void Initialize(ControlHost& host) = 0;
  virtual void InitProperties() = 0;
  virtual void ReadProperties(PropertyBag& bag) = 0;
  virtual void WriteProperties(PropertyBag& bag) = 0;
  virtual void Resize() = 0;
  // The container is about to drop the control; the host stays valid during the call.
  virtual void Terminate() {}

  virtual void OnMouseDown(int16_t button, int16_t shift, float x, float y) = 0;
  virtual void OnMouseMove(int16_t button, int16_t shift, float x, float y) = 0;
  virtual void OnMouseUp(int16_t button, int16_t shift, float x, float y) = 0;
  // The press just delivered to OnMouseDown was the second of a double click
  // on this control.
  virtual void OnDblClick(int16_t /*button*/, int16_t /*shift*/, float /*x*/, float /*y*/) {}
  // The mouse wheel turned `notches` notches over the control (positive away
  // from the user). A control that does not scroll returns false and the
  // container offers the turn to the control's parent.
  virtual bool OnMouseWheel(int16_t /*notches*/, int16_t /*shift*/, float /*x*/, float /*y*/) {
    return false;
  }
  virtual void OnKeyDown(int16_t& keyCode, int16_t& shift) = 0;
  virtual void OnKeyUp(int16_t& keyCode, int16_t& shift) = 0;
  virtual void OnKeyPress(int16_t& keyAscii) = 0;
  // Text an input method is composing (UTF-8; empty when it ends). The
  // finished text arrives as KeyPress codes afterwards.
  virtual void OnComposition(const std::string& /*text*/) {}
  virtual void OnEnterFocus() = 0;
  virtual void OnExitFocus() = 0;
};

}  // namespace velt
