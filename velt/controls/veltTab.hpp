#pragma once

#include <cstdint>
#include <string>

#include "velt/platform/UserControl.hpp"

namespace velt {

// A control with nothing to it but its type code: it paints only its
// background, raises no events and stores no properties.
class veltTab : public UserControl {
 public:
  static constexpr int16_t kID = 12;

  veltTab() = default;

  std::string ClassName() const override { return "veltTab"; }
  int16_t ID() const override { return kID; }

  // UserControl.
  void Initialize(ControlHost& host) override { host_ = &host; }
  void InitProperties() override { repaint(); }
  void ReadProperties(PropertyBag& /*bag*/) override { repaint(); }
  void WriteProperties(PropertyBag& /*bag*/) override {}
  void Resize() override { repaint(); }
  void Terminate() override { host_ = nullptr; }
  void OnMouseDown(int16_t, int16_t, float, float) override {}
  void OnMouseMove(int16_t, int16_t, float, float) override {}
  void OnMouseUp(int16_t, int16_t, float, float) override {}
  void OnKeyDown(int16_t& /*keyCode*/, int16_t& /*shift*/) override {}
  void OnKeyUp(int16_t& /*keyCode*/, int16_t& /*shift*/) override {}
  void OnKeyPress(int16_t& /*keyAscii*/) override {}
  void OnEnterFocus() override {}
  void OnExitFocus() override {}

 private:
  void repaint();

  ControlHost* host_ = nullptr;
};

}  // namespace velt
