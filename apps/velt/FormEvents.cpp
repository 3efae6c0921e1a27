#include "apps/velt/FormEvents.hpp"

#include "apps/velt/EventPrinter.hpp"
#include "velt/host/Form.hpp"
#include "velt/host/Site.hpp"

namespace velt::tool {

FormEvents::FormEvents(Form& form, std::ostream& out) {
  for (Site* site : form.Sites())
    printers_.push_back(std::make_unique<EventPrinter>(*site, out, site->Name() + "."));
}

FormEvents::~FormEvents() = default;

}  // namespace velt::tool
