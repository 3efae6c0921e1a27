#pragma once

#include <array>
#include <string>
#include <utility>

#include "velt/platform/ControlHost.hpp"
#include "velt/platform/Event.hpp"
#include "velt/platform/Variant.hpp"

namespace velt {

// Raises one of a control's public events: first tells the host (so tools can
// log every event with the arguments the handlers are about to get), then calls
// the handlers. Reference arguments stay references, so a handler's change to
// KeyCode or KeyAscii reaches the caller.
template <typename... Params, typename... Values>
void RaiseEvent(ControlHost& host, const std::string& name, const Event<Params...>& event,
                Values&&... values) {
  const std::array<Variant, sizeof...(Values)> arguments{Variant(values)...};
  host.EventRaised(name, arguments);
  event.Raise(std::forward<Values>(values)...);
}

}  // namespace velt
