#include "apps/velt/EventPrinter.hpp"

#include <span>
#include <utility>

#include "apps/velt/EventLine.hpp"
#include "velt/host/Site.hpp"

namespace velt::tool {

EventPrinter::EventPrinter(Site& site, std::ostream& out, std::string prefix)
    : out_(out),
      prefix_(std::move(prefix)),
      connection_(site.EventLog.connect(
          [this](const std::string& name, std::span<const Variant> arguments) {
            out_ << prefix_ << EventLine::Format(name, arguments) << std::endl;
          })) {}

}  // namespace velt::tool
