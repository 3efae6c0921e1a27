#pragma once

#include <memory>
#include <string>

#include "apps/velt/ScriptTarget.hpp"
#include "velt/platform/Canvas.hpp"
#include "velt/platform/Geometry.hpp"

namespace velt {

class ControlRegistry;
class Form;
class FormFile;
class HeadlessWindowSystem;
class Site;

namespace tool {

// A form file's form on a headless window system: the world of
// `velt run --headless`. The form's client area sits at the screen's origin;
// the screen is at least 1024x768 and one pixel wider and taller than the
// form, and the pointer starts on its bottom-right pixel, off the form.
//
// The script's focus and prop commands act on the current control: the one
// that has the focus, else the one that had it last, else the first control
// of the form. Blur gives the focus to a helper control of no size, which
// DropHelpers removes again before the form is saved.
class RunSession : public ScriptTarget {
 public:
  static constexpr int32_t kMinScreenWidth = 1024;
  static constexpr int32_t kMinScreenHeight = 768;

  // Errors of the form's creation name the file and the control.
  RunSession(const FormFile& file, const ControlRegistry& registry);
  ~RunSession() override;
  RunSession(const RunSession&) = delete;
  RunSession& operator=(const RunSession&) = delete;

  HeadlessWindowSystem& System() { return *system_; }
  Form& HostForm() { return *form_; }

  // The form's rectangle of the screen, pop-ups over it included.
  Canvas Snapshot();
  void WritePng(const std::string& path);
  void DropHelpers();

  // ScriptTarget. A property is checked against every class on the form, as
  // the control it will reach is known only when the line runs.
  PointL Origin() const override;
  void CheckProperty(const PropertyArgument& argument) const override;
  void SetProperty(const PropertyArgument& argument) override;
  void Focus() override;
  void Blur() override;
  void Shot(const std::string& path) override { WritePng(path); }

 private:
  Site& currentSite();

  const ControlRegistry& registry_;
  std::shared_ptr<HeadlessWindowSystem> system_;
  std::unique_ptr<Form> form_;
  Site* current_ = nullptr;
  Site* sink_ = nullptr;  // made by the first Blur
};

}  // namespace tool
}  // namespace velt
