#include "velt/host/HostTimer.hpp"

#include <algorithm>
#include <utility>

#include "velt/host/DispatchScope.hpp"
#include "velt/host/Site.hpp"
#include "velt/platform/Error.hpp"

namespace velt {

HostTimer::HostTimer(std::string name, TimerQueue* queue, std::weak_ptr<Site> site, int32_t floorMs)
    : name_(std::move(name)), queue_(queue), site_(std::move(site)), floorMs_(floorMs) {
  if (queue_) id_ = queue_->Add([this] { tick(); });
}

HostTimer::~HostTimer() {
  Detach();
}

void HostTimer::Enabled(bool enabled) {
  if (enabled == enabled_) return;
  enabled_ = enabled;
  reschedule();
}

void HostTimer::Interval(int32_t milliseconds) {
  if (milliseconds < 0)
    throw Error(errInvalidPropertyValue,
                "Timer '" + name_ + "': Interval " + std::to_string(milliseconds) + " is below 0");
  if (milliseconds == interval_) return;
  interval_ = milliseconds;
  reschedule();
}

void HostTimer::Detach() {
  if (!queue_) return;
  queue_->Remove(id_);
  queue_ = nullptr;
}

void HostTimer::tick() {
  std::shared_ptr<Site> site = site_.lock();
  if (!site || site->Closed()) return;
  DispatchScope scope = site->EnterDispatch();
  // Nothing of this timer is touched after the handlers: they may destroy it.
  Tick.Raise();
}

void HostTimer::reschedule() {
  if (!queue_) return;
  if (enabled_ && interval_ > 0)
    queue_->Start(id_, std::max(interval_, floorMs_));
  else
    queue_->Stop(id_);
}

}  // namespace velt
