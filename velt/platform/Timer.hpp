#pragma once

#include <cstdint>

#include "velt/platform/Event.hpp"

namespace velt {

// A timer sited on a control. Disabled when created; while enabled it raises
// Tick every Interval milliseconds on the user-interface thread. A tick is never
// raised again while its own handler runs (a handler that lets pending events run
// does not see its own timer re-enter). Interval 0 means no ticks even when enabled.
class Timer {
 public:
  virtual ~Timer() = default;

  virtual bool Enabled() const = 0;
  virtual void Enabled(bool enabled) = 0;
  virtual int32_t Interval() const = 0;
  virtual void Interval(int32_t milliseconds) = 0;  // error 380 below 0

  Event<> Tick;
};

}  // namespace velt
