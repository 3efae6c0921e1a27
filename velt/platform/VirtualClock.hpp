#pragma once

#include <cstdint>

#include "velt/platform/Clock.hpp"

namespace velt {

// Time that moves only when told to, so tests run timers without sleeping.
// Advancing only changes the number: firing the timers that fall due on the way
// is the window system's job, which steps the clock from due time to due time.
class VirtualClock : public Clock {
 public:
  VirtualClock() = default;

  int64_t NowMs() const override { return now_; }
  void Advance(int64_t milliseconds);  // error 5 below 0

 private:
  int64_t now_ = 0;
};

}  // namespace velt
