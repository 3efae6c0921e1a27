#pragma once

#include <cstdint>

namespace velt {

// A source of milliseconds for the timer queue. Only differences between two
// readings mean anything; where zero lies is the clock's own business.
class Clock {
 public:
  virtual ~Clock();

  virtual int64_t NowMs() const = 0;

 protected:
  Clock() = default;
  Clock(const Clock&) = default;
  Clock& operator=(const Clock&) = default;
};

}  // namespace velt
