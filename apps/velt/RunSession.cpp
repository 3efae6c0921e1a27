#include "apps/velt/RunSession.hpp"

#include "apps/velt/PropertyArgument.hpp"
#include "velt/controls/ControlRegistry.hpp"
#include "velt/host/Form.hpp"
#include "velt/host/FormFile.hpp"
#include "velt/host/Site.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/HeadlessWindowSystem.hpp"
#include "velt/platform/UserControl.hpp"

namespace velt::tool {

namespace {

constexpr const char* kSinkName = "veltRunFocusSink";

}  // namespace

RunSession::RunSession(const FormFile& file, const ControlRegistry& registry)
    : HeadlessSession(SizeL{file.Width, file.Height}, kSinkName), registry_(registry) {
  adoptForm(file.CreateForm(system(), registry));
  System().RunUntilIdle();
}

RunSession::~RunSession() = default;

Canvas RunSession::Snapshot() {
  return screenPart(HostForm().WindowRect());
}

void RunSession::DropHelpers() {
  if (current_ == sink()) current_ = nullptr;
  dropSink();
}

void RunSession::CheckProperty(const PropertyArgument& argument) const {
  Form& form = HostForm();
  if (form.Sites().empty())
    throw Error(errInvalidProcedureCall, "the form has no control to set a property of");
  std::string firstProblem;
  int32_t firstNumber = 0;
  for (Site* site : form.Sites()) {
    try {
      argument.ValueFor(registry_.ClassOf(*site->Control()));
      return;
    } catch (const Error& error) {
      if (firstProblem.empty()) {
        firstProblem = error.Description();
        firstNumber = error.Number();
      }
    }
  }
  throw Error(firstNumber, firstProblem);
}

void RunSession::SetProperty(const PropertyArgument& argument) {
  Site& site = currentSite();
  argument.ApplyTo(registry_.ClassOf(*site.Control()), *site.Control());
}

void RunSession::CheckGet(const std::string& name) const {
  const std::vector<Site*> sites = HostForm().Sites();
  for (Site* site : sites)
    if (registry_.ClassOf(*site->Control()).FindProperty(name)) return;
  throw Error(errInvalidProcedureCall,
              "get " + name + ": no control on the form has a property \"" + name + "\"");
}

Variant RunSession::GetProperty(const std::string& name) {
  Site& site = currentSite();
  return registry_.ClassOf(*site.Control()).GetProperty(*site.Control(), name);
}

void RunSession::Focus() {
  currentSite().SetFocus();
}

void RunSession::Blur() {
  currentSite();  // remembers the control that loses the focus
  HeadlessSession::Blur();
}

Site& RunSession::currentSite() {
  Site* focused = HostForm().FocusedSite();
  if (focused && focused != sink()) current_ = focused;
  if (!current_) {
    for (Site* site : HostForm().Sites())
      if (site != sink()) {
        current_ = site;
        break;
      }
  }
  if (!current_) throw Error(errInvalidProcedureCall, "the form has no controls");
  return *current_;
}

}  // namespace velt::tool
