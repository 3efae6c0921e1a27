#pragma once

#include <memory>
#include <ostream>
#include <vector>

namespace velt {

class Form;

namespace tool {

class EventPrinter;

// Prints every event the controls of a form raise, as `velt snap --events`
// does, each line after the control's name and a dot:
// "okButton.Click", "volume.Scroll". The controls on the form when it is made
// are the ones heard.
class FormEvents {
 public:
  FormEvents(Form& form, std::ostream& out);
  ~FormEvents();
  FormEvents(const FormEvents&) = delete;
  FormEvents& operator=(const FormEvents&) = delete;

 private:
  std::vector<std::unique_ptr<EventPrinter>> printers_;
};

}  // namespace tool
}  // namespace velt
