#pragma once

#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "velt/platform/Canvas.hpp"
#include "velt/platform/ControlHost.hpp"
#include "velt/platform/PropertyBag.hpp"
#include "velt/platform/UserControl.hpp"

namespace velt::testing {

// A control for the host tests: it records every call its host makes, fills
// its surface with one colour, and lets a test react to a press or release.
class Probe : public UserControl {
 public:
  explicit Probe(OLE_COLOR color = 0x0000FF, std::vector<std::string>* journal = nullptr)
      : color_(color), journal_(journal) {}

  std::vector<std::string> calls;
  ControlHost* host = nullptr;
  std::string caption;
  std::function<void()> onMouseDown, onMouseUp, onReadProperties;
  bool scrolls = false;  // takes the wheel's turns rather than passing them on

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
    const Canvas& s = host->Surface();
    record("Resize " + std::to_string(s.ScaleWidth()) + "x" + std::to_string(s.ScaleHeight()));
    paint();
  }
  void Terminate() override { record("Terminate"); }
  void OnMouseDown(int16_t b, int16_t s, float x, float y) override {
    react(mouse("MouseDown", b, s, x, y), onMouseDown);
  }
  void OnMouseMove(int16_t b, int16_t s, float x, float y) override {
    record(mouse("MouseMove", b, s, x, y));
  }
  void OnMouseUp(int16_t b, int16_t s, float x, float y) override {
    react(mouse("MouseUp", b, s, x, y), onMouseUp);
  }
  void OnDblClick(int16_t b, int16_t s, float x, float y) override {
    record(mouse("DblClick", b, s, x, y));
  }
  bool OnMouseWheel(int16_t n, int16_t s, float x, float y) override {
    record(mouse("MouseWheel", n, s, x, y));
    return scrolls;
  }
  void OnKeyDown(int16_t& k, int16_t& s) override { record(key("KeyDown", k, s)); }
  void OnKeyUp(int16_t& k, int16_t& s) override { record(key("KeyUp", k, s)); }
  void OnKeyPress(int16_t& keyAscii) override { record("KeyPress " + std::to_string(keyAscii)); }
  void OnEnterFocus() override { record("EnterFocus"); }
  void OnExitFocus() override { record("ExitFocus"); }

  void paint() { host->Surface().BackColor(color_); }
  void clear() { calls.clear(); }

 private:
  void record(const std::string& call) {
    calls.push_back(call);
    if (journal_) journal_->push_back((host ? host->AmbientDisplayName() : "?") + ":" + call);
  }
  // After its handler, a control goes on as after raising an event: it
  // repaints and asks its host things that reach the form.
  void react(const std::string& call, const std::function<void()>& handler) {
    record(call);
    if (!handler) return;
    handler();
    paint();
    host->PropertyChanged("State");
    (void)host->WindowRect();
    (void)host->HasFocus();
  }
  static std::string key(const char* what, int16_t k, int16_t s) {
    return std::string(what) + " " + std::to_string(k) + " " + std::to_string(s);
  }
  static std::string mouse(const char* what, int16_t button, int16_t shift, float x, float y) {
    char text[96];
    std::snprintf(text, sizeof text, "%s %d %d %g %g", what, button, shift, x, y);
    return text;
  }

  OLE_COLOR color_;
  std::vector<std::string>* journal_;
};

}  // namespace velt::testing
