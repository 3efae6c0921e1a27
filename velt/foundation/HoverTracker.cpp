#include "velt/foundation/HoverTracker.hpp"

#include <utility>

#include "velt/platform/ControlHost.hpp"
#include "velt/platform/Timer.hpp"

namespace velt {

// Only lets go of the timer: the host may be gone by now, so no calls into it.
HoverTracker::~HoverTracker() = default;

void HoverTracker::Attach(ControlHost& host, Listener listener, KeepAlive keepAlive) {
  Detach();
  host_ = &host;
  listener_ = std::move(listener);
  keepAlive_ = std::move(keepAlive);
  timer_ = host.CreateTimer(kTimerName);
  timer_->Enabled(false);
  timer_->Interval(kInterval);
  tickConnection_ = timer_->Tick.connect([this] { tick(); });
}

// The timer object itself is kept until destruction: Detach may run from inside
// one of its own ticks (a handler that drops the control), and the host is
// still raising that tick.
void HoverTracker::Detach() {
  tickConnection_.disconnect();
  if (timer_ && host_) timer_->Enabled(false);
  host_ = nullptr;
}

void HoverTracker::MouseMoved() {
  if (!host_ || !timer_) return;
  lastCursor_ = host_->CursorPos();
  if (!timer_->Enabled()) timer_->Enabled(true);
}

bool HoverTracker::Running() const {
  return host_ && timer_ && timer_->Enabled();
}

bool HoverTracker::PointerLeft(PointL last, PointL now) {
  return last.x <= now.x - 2 || last.x >= now.x + 2 || last.y <= now.y - 2 || last.y >= now.y + 2;
}

void HoverTracker::tick() {
  const std::shared_ptr<const void> owner = keepAlive_ ? keepAlive_() : nullptr;
  if (!host_) return;
  nowCursor_ = host_->CursorPos();
  if (PointerLeft(lastCursor_, nowCursor_)) {
    listener_(Finding::Left);
    if (host_) timer_->Enabled(false);
  } else {
    listener_(Finding::Over);
  }
  // Pending input may run here, re-enter the owner, or even drop it; nothing
  // of this object is touched after the call.
  if (host_) host_->DoEvents();
}

}  // namespace velt
