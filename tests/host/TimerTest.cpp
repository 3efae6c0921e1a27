#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "host/Probe.hpp"
#include "support/ExpectError.hpp"
#include "velt/host/Form.hpp"
#include "velt/host/HostTimer.hpp"
#include "velt/host/Site.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/HeadlessWindowSystem.hpp"
#include "velt/platform/Timer.hpp"
#include "velt/platform/VirtualClock.hpp"

namespace velt {
namespace {

using testing::Probe;
using Calls = std::vector<std::string>;

class TimerTest : public ::testing::Test {
 protected:
  TimerTest() { site = &form.AddControl(std::make_shared<Probe>(), "P", 0, 0, 10, 10); }

  std::shared_ptr<Timer> timer(const std::string& name, int32_t interval,
                               std::function<void()> extra = {}) {
    std::shared_ptr<Timer> t = site->CreateTimer(name);
    t->Interval(interval);
    connections.push_back(t->Tick.connect([this, name, extra] {
      ticks.push_back(std::to_string(system->NowMs()) + name);
      if (extra) extra();
    }));
    return t;
  }

  std::shared_ptr<HeadlessWindowSystem> system = std::make_shared<HeadlessWindowSystem>();
  Form form{system};
  Site* site = nullptr;
  std::vector<std::string> ticks;
  std::vector<Connection> connections;
};

TEST_F(TimerTest, OneMillisecondTimerTicksOncePerMillisecondMoved) {
  auto t = timer("", 1);
  system->AdvanceClock(5);
  EXPECT_TRUE(ticks.empty());  // created disabled
  t->Enabled(true);
  system->AdvanceClock(4);
  system->PostWait(2);
  system->RunUntilIdle();
  EXPECT_EQ(ticks, (Calls{"6", "7", "8", "9", "10", "11"}));
  EXPECT_EQ(system->NowMs(), 11);
}

TEST_F(TimerTest, TimersTickInDueOrder) {
  auto a = timer("A", 3);
  auto b = timer("B", 2);
  a->Enabled(true);
  b->Enabled(true);
  system->AdvanceClock(6);
  // At 6 both are due; A was rearmed first (at 3, B at 4).
  EXPECT_EQ(ticks, (Calls{"2B", "3A", "4B", "6A", "6B"}));
}

TEST_F(TimerTest, IntervalAndEnabledChangesCountFromNow) {
  auto t = timer("", 10);
  t->Enabled(true);
  system->AdvanceClock(4);
  t->Interval(3);  // next tick 3 ms from now
  system->AdvanceClock(3);
  t->Interval(3);  // the same value changes nothing
  t->Enabled(true);
  system->AdvanceClock(2);
  t->Enabled(false);
  t->Enabled(true);  // counts again from 9
  system->AdvanceClock(3);
  t->Interval(0);  // enabled but silent
  system->AdvanceClock(20);
  EXPECT_EQ(ticks, (Calls{"7", "12"}));
  EXPECT_TRUE(t->Enabled());
  test::errorOf(errInvalidPropertyValue, [&] { t->Interval(-1); });
}

TEST_F(TimerTest, HandlerMayDisableOrDestroyItsOwnTimer) {
  std::shared_ptr<Timer> once;
  once = timer("once", 1, [&] { once->Enabled(false); });
  std::shared_ptr<Timer> doomed;
  doomed = timer("doomed", 2, [&] { doomed.reset(); });
  once->Enabled(true);
  doomed->Enabled(true);
  system->AdvanceClock(10);
  EXPECT_EQ(ticks, (Calls{"1once", "2doomed"}));
  EXPECT_EQ(system->Timers().Count(), 1u);
}

TEST_F(TimerTest, TimerIsNotReenteredWhileItsHandlerRunsDoEvents) {
  int depth = 0;
  int deepest = 0;
  std::shared_ptr<Timer> other = timer("other", 2);
  std::shared_ptr<Timer> busy = timer("busy", 1, [&] {
    ++depth;
    deepest = std::max(deepest, depth);
    if (system->NowMs() == 1) {
      // Time passes while this handler waits in DoEvents; the others still tick.
      system->PostWait(4);
      site->DoEvents();
    }
    --depth;
  });
  busy->Enabled(true);
  other->Enabled(true);
  system->AdvanceClock(7);
  EXPECT_EQ(deepest, 1);
  // busy misses the milliseconds it spent waiting and ticks once when back.
  EXPECT_EQ(ticks, (Calls{"1busy", "2other", "4other", "5busy", "6other", "6busy", "7busy"}));
}

TEST_F(TimerTest, TimersOfARemovedControlNeverTickAgain) {
  auto t = timer("", 1);
  t->Enabled(true);
  system->AdvanceClock(2);
  form.RemoveControl("P");
  t->Enabled(false);
  t->Enabled(true);
  system->AdvanceClock(5);
  EXPECT_EQ(ticks, (Calls{"1", "2"}));
  EXPECT_FALSE(std::static_pointer_cast<HostTimer>(t)->Attached());
  EXPECT_EQ(system->Timers().Count(), 0u);
}

TEST(TimerQueueTest, StartsAndRunsOnItsClock) {
  VirtualClock clock;
  TimerQueue queue(clock);
  int ticks = 0;
  const TimerQueue::Id id = queue.Add([&] { ++ticks; });
  EXPECT_FALSE(queue.NextDue().has_value());
  test::errorOf(errInvalidProcedureCall, [&] { queue.Start(id, 0); });
  test::errorOf(errInvalidProcedureCall, [&] { queue.Start(id + 1, 5); });
  queue.Start(id, 5);
  EXPECT_EQ(queue.NextDue(), 5);
  EXPECT_EQ(queue.RunDue(), 0);
  clock.Advance(12);
  EXPECT_EQ(queue.RunDue(), 1);  // overdue ticks collapse into one
  EXPECT_EQ(queue.NextDue(), 17);
  queue.Stop(id);
  clock.Advance(10);
  EXPECT_EQ(queue.RunDue(), 0);
  queue.Remove(id);
  queue.Remove(id);
  EXPECT_EQ(queue.Count(), 0u);
  EXPECT_EQ(ticks, 1);
  test::errorOf(errInvalidProcedureCall, [&] { clock.Advance(-1); });
}

}  // namespace
}  // namespace velt
