#pragma once

#include "apps/velt/HeadlessSession.hpp"

namespace velt {

class ControlRegistry;
class FormFile;

namespace tool {

// A form file's form on a headless window system: the world of
// `velt run --headless`.
//
// The script's focus and prop commands act on the current control: the one
// that has the focus, else the one that had it last, else the first control
// of the form. Blur gives the focus to the helper control, which DropHelpers
// removes again before the form is saved.
class RunSession : public HeadlessSession {
 public:
  // Errors of the form's creation name the file and the control.
  RunSession(const FormFile& file, const ControlRegistry& registry);
  ~RunSession() override;

  // The form's rectangle of the screen, pop-ups over it included.
  Canvas Snapshot() override;
  void DropHelpers();

  // ScriptTarget. A property is checked against every class on the form, as
  // the control it will reach is known only when the line runs.
  void CheckProperty(const PropertyArgument& argument) const override;
  void SetProperty(const PropertyArgument& argument) override;
  // get, too, is checked against every class on the form.
  void CheckGet(const std::string& name) const override;
  Variant GetProperty(const std::string& name) override;
  void Focus() override;
  void Blur() override;

 private:
  Site& currentSite();

  const ControlRegistry& registry_;
  Site* current_ = nullptr;
};

}  // namespace tool
}  // namespace velt
