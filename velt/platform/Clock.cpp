#include "velt/platform/Clock.hpp"

namespace velt {

Clock::~Clock() = default;

}  // namespace velt
