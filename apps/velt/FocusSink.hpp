#pragma once

#include <cstdint>
#include <string>

#include "velt/platform/UserControl.hpp"

namespace velt::tool {

// An empty control of no size that only takes the focus, so a script can take
// the focus away from the control it drives ("blur"): the form gives the focus
// to a control, never to nothing. Being zero pixels large, it draws nothing and
// no pointer ever lands on it.
class FocusSink : public UserControl {
 public:
  std::string ClassName() const override { return "FocusSink"; }
  int16_t ID() const override { return -1; }

  void Initialize(ControlHost& /*host*/) override {}
  void InitProperties() override {}
  void ReadProperties(PropertyBag& /*bag*/) override {}
  void WriteProperties(PropertyBag& /*bag*/) override {}
  void Resize() override {}

  void OnMouseDown(int16_t, int16_t, float, float) override {}
  void OnMouseMove(int16_t, int16_t, float, float) override {}
  void OnMouseUp(int16_t, int16_t, float, float) override {}
  void OnKeyDown(int16_t&, int16_t&) override {}
  void OnKeyUp(int16_t&, int16_t&) override {}
  void OnKeyPress(int16_t&) override {}
  void OnEnterFocus() override {}
  void OnExitFocus() override {}
};

}  // namespace velt::tool
