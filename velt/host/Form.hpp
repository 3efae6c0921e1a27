#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "velt/platform/Canvas.hpp"
#include "velt/platform/Event.hpp"
#include "velt/platform/Geometry.hpp"
#include "velt/platform/Types.hpp"

namespace velt {

class Font;
class FormWindow;
class PropertyBag;
class Site;
class UserControl;
class WindowSystem;

// A form: a window of a window system that holds controls. Positions and sizes
// given to the form are pixels; its client area sits at screen (0, 0) until
// moved. The form's core outlives this handle while a call into one of its
// controls is still running, so an event handler may remove the control that
// raised it, or destroy the form itself.
class Form {
  // First: MouseDown refers into it.
  std::shared_ptr<FormWindow> window_;

 public:
  explicit Form(std::shared_ptr<WindowSystem> system, std::string name = "Form1",
                int32_t width = 640, int32_t height = 480);
  ~Form();
  Form(const Form&) = delete;
  Form& operator=(const Form&) = delete;

  const std::string& Name() const;
  WindowSystem& System() const;

  // The client area on the screen.
  RectL WindowRect() const;
  void MoveWindow(int32_t x, int32_t y);
  void MoveWindow(int32_t x, int32_t y, int32_t width, int32_t height);  // error 380 below 0

  OLE_COLOR BackColor() const;
  void BackColor(OLE_COLOR color);
  // The ambient font: controls created later get a copy of it.
  std::shared_ptr<velt::Font> Font() const;
  void Font(std::shared_ptr<velt::Font> font);  // error 91 for nullptr

  // Sites the control and runs its creation: Initialize, then ReadProperties
  // of a copy of stored (InitProperties without one), then Resize. Errors: 91
  // no control, 5 empty name, 457 name taken, 380 negative size; an error of
  // the control's creation reaches the caller and the control is not added.
  Site& AddControl(std::shared_ptr<UserControl> control, const std::string& name, int32_t left,
                   int32_t top, int32_t width, int32_t height, const PropertyBag* stored = nullptr);
  template <class T>
  std::shared_ptr<T> Add(const std::string& name, int32_t left, int32_t top, int32_t width,
                         int32_t height) {
    auto control = std::make_shared<T>();
    AddControl(control, name, left, top, width, height);
    return control;
  }
  // Terminates the control and drops it (once nothing of it runs any more).
  // Error 5 for an unknown name.
  void RemoveControl(const std::string& name);
  Site* FindSite(const std::string& name) const;  // nullptr when unknown
  std::vector<Site*> Sites() const;               // bottom to top

  Site* FocusedSite() const;
  // Moves the focus on to the next control in the order they were added (the
  // previous one when backward), as the Tab key does. False when no other
  // control can take it.
  bool FocusNext(bool backward = false);
  Site* CaptureSite() const;

  // Lets pending input, posted work and due timers run once.
  void DoEvents();
  void WriteProperties(Site& site, PropertyBag& bag);

  // The client area as drawn: background and controls.
  const Canvas& Image();
  void SavePng(const std::string& path);

  // A press on the form's background, outside every control: button, shift
  // state and the point in pixels of the client area. The event lives in the
  // form's core, so a handler may destroy this Form.
  Event<int16_t /*Button*/, int16_t /*Shift*/, float /*X*/, float /*Y*/>& MouseDown;
};

}  // namespace velt
