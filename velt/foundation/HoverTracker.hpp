#pragma once

#include <functional>
#include <memory>

#include "velt/platform/Event.hpp"
#include "velt/platform/Geometry.hpp"

namespace velt {

class ControlHost;
class Timer;

// Hover tracking with the sited `MousePos` timer. The pointer is never
// hit-tested against the control: a MouseMove records where the pointer was and
// starts the 1 ms timer; each tick compares that with where the pointer is now.
// Two pixels or more apart means the pointer moved on without the control
// hearing of it, so it has left. The owner decides what each finding means for
// its own states.
class HoverTracker {
 public:
  enum class Finding {
    Over,  // still where the last MouseMove saw it
    Left,  // moved away; the timer stops after the owner was told
  };
  using Listener = std::function<void(Finding)>;
  // Gives a strong reference to the owner for the length of a tick, so the
  // pending events a tick lets run may drop the owner without freeing it under
  // the tick.
  using KeepAlive = std::function<std::shared_ptr<const void>()>;

  static constexpr int32_t kInterval = 1;  // milliseconds
  static constexpr const char* kTimerName = "MousePos";

  HoverTracker() = default;
  HoverTracker(const HoverTracker&) = delete;
  HoverTracker& operator=(const HoverTracker&) = delete;
  ~HoverTracker();  // releases the timer without calling the host

  // Sites the timer (disabled) on the host. Calling it again re-sites it.
  void Attach(ControlHost& host, Listener listener, KeepAlive keepAlive = {});
  // Stops the timer and forgets the host (call it while the host is still
  // valid); later calls do nothing.
  void Detach();

  // On every MouseMove: remember the pointer, start the timer unless it runs.
  void MouseMoved();
  bool Running() const;

  PointL LastCursor() const { return lastCursor_; }
  PointL NowCursor() const { return nowCursor_; }

  // True when `now` is two or more pixels away from `last` along either axis.
  static bool PointerLeft(PointL last, PointL now);

 private:
  void tick();

  ControlHost* host_ = nullptr;
  std::shared_ptr<Timer> timer_;
  Connection tickConnection_;
  Listener listener_;
  KeepAlive keepAlive_;
  PointL lastCursor_;
  PointL nowCursor_;
};

}  // namespace velt
