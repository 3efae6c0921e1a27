#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>

namespace velt {

class Clock;

// The timers of one window system, on its clock. A timer is registered once
// with its callback and then started and stopped any number of times. Started,
// it falls due Interval milliseconds later and again Interval milliseconds
// after each tick began. A timer is never fired while its own callback runs,
// so a callback that lets pending events run does not see itself re-entered;
// it may stop, restart or remove its own timer.
class TimerQueue {
 public:
  using Id = uint64_t;
  using Callback = std::function<void()>;

  explicit TimerQueue(const Clock& clock);
  ~TimerQueue();
  TimerQueue(const TimerQueue&) = delete;
  TimerQueue& operator=(const TimerQueue&) = delete;

  // A stopped timer; the id is never reused.
  Id Add(Callback callback);
  // Unknown or already removed ids are ignored.
  void Remove(Id id);

  // First tick at now + interval (error 5 for an interval below 1 or an
  // unknown id). Starting a started timer restarts its count.
  void Start(Id id, int32_t intervalMs);
  void Stop(Id id);
  bool Started(Id id) const;
  // True while the timer's own callback runs.
  bool Firing(Id id) const;

  // The earliest due time among the started timers that are not firing.
  std::optional<int64_t> NextDue() const;
  // Fires, in due order (ties in the order they were started), every timer that
  // is due now; each at most once per call. Returns the number of ticks.
  int32_t RunDue();
  // Whether RunDue would fire anything now.
  bool AnyDue() const;

  size_t Count() const { return entries_.size(); }

 private:
  struct Entry;

  std::shared_ptr<Entry> find(Id id) const;
  void fire(Entry& entry, int64_t now);

  const Clock& clock_;
  std::map<Id, std::shared_ptr<Entry>> entries_;
  Id nextId_ = 1;
  uint64_t nextOrder_ = 1;
};

}  // namespace velt
