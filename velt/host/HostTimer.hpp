#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "velt/platform/Timer.hpp"
#include "velt/platform/TimerQueue.hpp"

namespace velt {

class Site;

// A timer sited on a control: an entry of the window system's timer queue.
// Enabling it, or changing its interval while enabled, counts the interval
// from now. Each tick runs inside a dispatch scope of the control's form, so
// the tick handler may remove the control or the form. Once the control is
// removed the timer is detached and never ticks again, whatever is set on it.
// An interval below the window system's floor fires at the floor; Interval
// still reads as set.
class HostTimer final : public Timer {
 public:
  // Without a queue the timer is detached from the start.
  HostTimer(std::string name, TimerQueue* queue, std::weak_ptr<Site> site, int32_t floorMs = 1);
  ~HostTimer() override;
  HostTimer(const HostTimer&) = delete;
  HostTimer& operator=(const HostTimer&) = delete;

  const std::string& Name() const { return name_; }

  bool Enabled() const override { return enabled_; }
  void Enabled(bool enabled) override;
  int32_t Interval() const override { return interval_; }
  void Interval(int32_t milliseconds) override;  // error 380 below 0

  void Detach();
  bool Attached() const { return queue_ != nullptr; }

 private:
  void tick();
  void reschedule();

  std::string name_;
  TimerQueue* queue_;
  TimerQueue::Id id_ = 0;
  std::weak_ptr<Site> site_;
  bool enabled_ = false;
  int32_t interval_ = 0;
  int32_t floorMs_;
};

}  // namespace velt
