#pragma once

#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "velt/platform/Canvas.hpp"
#include "velt/platform/ControlHost.hpp"
#include "velt/platform/PropertyBag.hpp"
#include "velt/platform/UserControl.hpp"
#include "velt/platform/Variant.hpp"

namespace velt::testing {

// A control for the host tests: it records every call its host makes, fills
// its surface with one colour, and lets a test react to input.
class Probe : public UserControl {
 public:
  explicit Probe(OLE_COLOR color = 0x0000FF, std::vector<std::string>* journal = nullptr)
      : color_(color), journal_(journal) {}

  std::vector<std::string> calls;
  ControlHost* host = nullptr;
  std::string caption;
  std::function<void()> onMouseDown, onMouseUp, onMouseMove, onKeyDown, onReadProperties;

  std::string ClassName() const override { return "Probe"; }
  int16_t ID() const override { return 99; }

  void Initialize(ControlHost& h) override {
    host = &h;
    record("Initialize");
  }
  void InitProperties() override {
    caption = host->AmbientDisplayName();
    record("InitProperties");
    paint();
  }
  void ReadProperties(PropertyBag& bag) override {
    caption = bag.ReadProperty("Caption", "").ToString();
    record("ReadProperties " + caption);
    if (onReadProperties) onReadProperties();
    paint();
  }
  void WriteProperties(PropertyBag& bag) override {
    bag.WriteProperty("Caption", caption, "");
    record("WriteProperties");
  }
  void Resize() override {
    record("Resize " + std::to_string(host->Surface().ScaleWidth()) + "x" +
           std::to_string(host->Surface().ScaleHeight()));
    paint();
  }
  void Terminate() override { record("Terminate"); }

  void OnMouseDown(int16_t button, int16_t shift, float x, float y) override {
    record(mouse("MouseDown", button, shift, x, y));
    if (onMouseDown) {
      onMouseDown();
      afterHandler();
    }
  }
  void OnMouseMove(int16_t button, int16_t shift, float x, float y) override {
    record(mouse("MouseMove", button, shift, x, y));
    if (onMouseMove) {
      onMouseMove();
      afterHandler();
    }
  }
  void OnMouseUp(int16_t button, int16_t shift, float x, float y) override {
    record(mouse("MouseUp", button, shift, x, y));
    if (onMouseUp) {
      onMouseUp();
      afterHandler();
    }
  }
  void OnKeyDown(int16_t& keyCode, int16_t& shift) override {
    record("KeyDown " + std::to_string(keyCode) + " " + std::to_string(shift));
    if (onKeyDown) {
      onKeyDown();
      afterHandler();
    }
  }
  void OnKeyUp(int16_t& keyCode, int16_t& shift) override {
    record("KeyUp " + std::to_string(keyCode) + " " + std::to_string(shift));
  }
  void OnKeyPress(int16_t& keyAscii) override { record("KeyPress " + std::to_string(keyAscii)); }
  void OnEnterFocus() override { record("EnterFocus"); }
  void OnExitFocus() override { record("ExitFocus"); }

  // Uses the host after a handler ran, as a real control repaints.
  void paint() { host->Surface().BackColor(color_); }

  void clear() { calls.clear(); }

  // Set once the control went on after a handler, using its host and itself.
  int continued = 0;

 private:
  void record(const std::string& call) {
    calls.push_back(call);
    if (journal_) journal_->push_back((host ? host->AmbientDisplayName() : "?") + ":" + call);
  }
  // What a control does after raising an event: repaint, and ask its host
  // things that reach the form.
  void afterHandler() {
    paint();
    host->PropertyChanged("State");
    lastRect = host->WindowRect();
    lastFocus = host->HasFocus();
    ++continued;
  }

 public:
  RectL lastRect;
  bool lastFocus = false;

 private:
  static std::string mouse(const char* what, int16_t button, int16_t shift, float x, float y) {
    char text[96];
    std::snprintf(text, sizeof text, "%s %d %d %g %g", what, button, shift, x, y);
    return text;
  }

  OLE_COLOR color_;
  std::vector<std::string>* journal_;
};

}  // namespace velt::testing
