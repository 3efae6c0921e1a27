#pragma once

#include <ostream>
#include <string>

#include "velt/platform/Event.hpp"

namespace velt {

class Site;

namespace tool {

// Writes every event a site's control raises to a stream as it is raised, one
// EventLine a line after an optional prefix (a form runner may put the
// control's name there), with the arguments the handlers are about to get.
// The stream is flushed after each line so the lines interleave correctly
// with anything else the program writes.
class EventPrinter {
 public:
  EventPrinter(Site& site, std::ostream& out, std::string prefix = "");
  EventPrinter(const EventPrinter&) = delete;
  EventPrinter& operator=(const EventPrinter&) = delete;

 private:
  std::ostream& out_;
  std::string prefix_;
  Connection connection_;
};

}  // namespace tool
}  // namespace velt
