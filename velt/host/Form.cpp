#include "velt/host/Form.hpp"

#include <utility>

#include "velt/host/DispatchScope.hpp"
#include "velt/host/FormWindow.hpp"
#include "velt/host/Site.hpp"
#include "velt/platform/Png.hpp"
#include "velt/platform/UserControl.hpp"
#include "velt/platform/WindowSystem.hpp"

namespace velt {

Form::Form(std::shared_ptr<WindowSystem> system, std::string name, int32_t width, int32_t height)
    : window_(std::make_shared<FormWindow>(std::move(system), std::move(name), width, height)),
      MouseDown(window_->MouseDown) {}

Form::~Form() {
  window_->Close();
}

const std::string& Form::Name() const {
  return window_->Name();
}

WindowSystem& Form::System() const {
  return window_->System();
}

RectL Form::WindowRect() const {
  return window_->ScreenRect();
}

void Form::MoveWindow(int32_t x, int32_t y) {
  const RectL rect = window_->ScreenRect();
  window_->MoveWindow(x, y, rect.Width(), rect.Height());
}

void Form::MoveWindow(int32_t x, int32_t y, int32_t width, int32_t height) {
  window_->MoveWindow(x, y, width, height);
}

OLE_COLOR Form::BackColor() const {
  return window_->BackColor();
}

void Form::BackColor(OLE_COLOR color) {
  window_->BackColor(color);
}

std::shared_ptr<velt::Font> Form::Font() const {
  return window_->Font();
}

void Form::Font(std::shared_ptr<velt::Font> font) {
  window_->Font(std::move(font));
}

Site& Form::AddControl(std::shared_ptr<UserControl> control, const std::string& name, int32_t left,
                       int32_t top, int32_t width, int32_t height, const PropertyBag* stored) {
  return window_->AddSite(std::move(control), name, Site::PlacedRect(left, top, width, height),
                          stored);
}

void Form::RemoveControl(const std::string& name) {
  // Held here: a Terminate handler may destroy this Form.
  std::shared_ptr<FormWindow> window = window_;
  window->RemoveSite(name);
}

Site* Form::FindSite(const std::string& name) const {
  return window_->FindSite(name);
}

std::vector<Site*> Form::Sites() const {
  std::vector<Site*> sites;
  for (const std::shared_ptr<Site>& site : window_->Sites())
    sites.push_back(site.get());
  return sites;
}

Site* Form::FocusedSite() const {
  return window_->Router().Focused();
}

bool Form::FocusNext(bool backward) {
  std::shared_ptr<FormWindow> window = window_;
  return window->FocusNext(backward);
}

Site* Form::CaptureSite() const {
  return window_->Router().Captured();
}

void Form::DoEvents() {
  // Held here: a handler may destroy this Form, and with it the last reference.
  std::shared_ptr<WindowSystem> system = window_->SharedSystem();
  system->DoEvents();
}

void Form::WriteProperties(Site& site, PropertyBag& bag) {
  DispatchScope scope = window_->Enter();
  std::shared_ptr<UserControl> control = site.Control();
  control->WriteProperties(bag);
}

const Canvas& Form::Image() {
  return window_->Image();
}

void Form::SavePng(const std::string& path) {
  const Canvas& image = window_->Image();
  Png::WriteRGB(path, image.Pixels(), image.ScaleWidth(), image.ScaleHeight());
}

}  // namespace velt
