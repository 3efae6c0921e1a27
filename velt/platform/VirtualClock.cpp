#include "velt/platform/VirtualClock.hpp"

#include <string>

#include "velt/platform/Error.hpp"

namespace velt {

void VirtualClock::Advance(int64_t milliseconds) {
  if (milliseconds < 0)
    throw Error(errInvalidProcedureCall, "VirtualClock::Advance: time cannot go back (" +
                                             std::to_string(milliseconds) + " ms)");
  now_ += milliseconds;
}

}  // namespace velt
