#include "velt/platform/TimerQueue.hpp"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "velt/platform/Clock.hpp"
#include "velt/platform/Error.hpp"

namespace velt {

struct TimerQueue::Entry {
  Callback callback;
  bool started = false;
  bool firing = false;
  bool removed = false;
  int32_t interval = 0;
  int64_t due = 0;
  uint64_t order = 0;  // when it was last (re)armed: breaks ties between equal due times
};

namespace {

// Clears the firing flag however the callback ends, exceptions included.
class FiringFlag {
 public:
  explicit FiringFlag(bool& flag) : flag_(flag) { flag_ = true; }
  ~FiringFlag() { flag_ = false; }
  FiringFlag(const FiringFlag&) = delete;
  FiringFlag& operator=(const FiringFlag&) = delete;

 private:
  bool& flag_;
};

}  // namespace

TimerQueue::TimerQueue(const Clock& clock) : clock_(clock) {}

TimerQueue::~TimerQueue() {
  for (auto& [id, entry] : entries_)
    entry->removed = true;
}

TimerQueue::Id TimerQueue::Add(Callback callback) {
  if (!callback) throw Error(errObjectNotSet, "TimerQueue::Add: the callback is empty");
  auto entry = std::make_shared<Entry>();
  entry->callback = std::move(callback);
  const Id id = nextId_++;
  entries_.emplace(id, std::move(entry));
  return id;
}

void TimerQueue::Remove(Id id) {
  auto it = entries_.find(id);
  if (it == entries_.end()) return;
  // A firing entry is also held by RunDue, so its callback outlives this.
  it->second->removed = true;
  it->second->started = false;
  entries_.erase(it);
}

void TimerQueue::Start(Id id, int32_t intervalMs) {
  if (intervalMs < 1)
    throw Error(errInvalidProcedureCall,
                "TimerQueue::Start: interval " + std::to_string(intervalMs) + " ms is below 1");
  std::shared_ptr<Entry> entry = find(id);
  if (!entry)
    throw Error(errInvalidProcedureCall,
                "TimerQueue::Start: no timer with id " + std::to_string(id));
  entry->started = true;
  entry->interval = intervalMs;
  entry->due = clock_.NowMs() + intervalMs;
  entry->order = nextOrder_++;
}

void TimerQueue::Stop(Id id) {
  if (std::shared_ptr<Entry> entry = find(id)) entry->started = false;
}

bool TimerQueue::Started(Id id) const {
  std::shared_ptr<Entry> entry = find(id);
  return entry && entry->started;
}

bool TimerQueue::Firing(Id id) const {
  std::shared_ptr<Entry> entry = find(id);
  return entry && entry->firing;
}

std::optional<int64_t> TimerQueue::NextDue() const {
  std::optional<int64_t> next;
  for (const auto& [id, entry] : entries_) {
    if (!entry->started || entry->firing) continue;
    if (!next || entry->due < *next) next = entry->due;
  }
  return next;
}

int32_t TimerQueue::RunDue() {
  const int64_t now = clock_.NowMs();
  // Most turns find one timer due (a hover timer ticking through a long
  // wait): that one fires without building and sorting a list.
  std::shared_ptr<Entry> single;
  size_t dueCount = 0;
  for (const auto& [id, entry] : entries_) {
    if (entry->started && !entry->firing && entry->due <= now) {
      if (++dueCount == 1) single = entry;
    }
  }
  if (dueCount == 0) return 0;
  if (dueCount == 1) {
    fire(*single, now);
    return 1;
  }
  std::vector<std::shared_ptr<Entry>> due;
  due.reserve(dueCount);
  for (const auto& [id, entry] : entries_)
    if (entry->started && !entry->firing && entry->due <= now) due.push_back(entry);
  std::sort(due.begin(), due.end(), [](const auto& a, const auto& b) {
    return a->due != b->due ? a->due < b->due : a->order < b->order;
  });
  int32_t ticks = 0;
  for (const std::shared_ptr<Entry>& entry : due) {
    // An earlier callback may have stopped, restarted or removed this one.
    if (entry->removed || !entry->started || entry->firing || entry->due > now) continue;
    fire(*entry, clock_.NowMs());
    ++ticks;
  }
  return ticks;
}

bool TimerQueue::AnyDue() const {
  const std::optional<int64_t> next = NextDue();
  return next && *next <= clock_.NowMs();
}

std::shared_ptr<TimerQueue::Entry> TimerQueue::find(Id id) const {
  auto it = entries_.find(id);
  return it == entries_.end() ? nullptr : it->second;
}

void TimerQueue::fire(Entry& entry, int64_t now) {
  // Rearm before the callback, so a callback that stops or restarts its own
  // timer has the last word.
  entry.due = now + entry.interval;
  entry.order = nextOrder_++;
  FiringFlag firing(entry.firing);
  entry.callback();
}

}  // namespace velt
