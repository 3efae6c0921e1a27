#pragma once

#include <chrono>
#include <cstdint>

#include "velt/platform/Clock.hpp"

namespace velt {

// Real monotonic time in milliseconds since the clock was made.
class SteadyClock : public Clock {
 public:
  SteadyClock();

  int64_t NowMs() const override;

 private:
  std::chrono::steady_clock::time_point start_;
};

}  // namespace velt
