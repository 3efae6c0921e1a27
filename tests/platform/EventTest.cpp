#include "velt/platform/Event.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace velt {
namespace {

TEST(EventTest, HandlersChangeByReferenceArgumentsTheRaiserSees) {
  Event<int16_t&, int16_t> keyDown;
  std::vector<int16_t> seen;
  Connection first = keyDown.connect([&](int16_t& keyCode, int16_t shift) {
    seen.push_back(keyCode);
    keyCode = static_cast<int16_t>(keyCode + shift);
  });
  Connection second = keyDown.connect([&](int16_t& keyCode, int16_t) {
    seen.push_back(keyCode);
    keyCode = 0;
  });
  int16_t keyCode = 13;
  keyDown.Raise(keyCode, 2);
  EXPECT_EQ(keyCode, 0);
  EXPECT_EQ(seen,
            (std::vector<int16_t>{13, 15}));  // in connection order, each sees the last change
}

TEST(EventTest, DisconnectingDuringRaise) {
  Event<> event;
  std::string calls;
  Connection self;
  Connection other;
  self = event.connect([&] {
    calls += 'a';
    self.disconnect();
    other.disconnect();  // the later handler is not called in this raise either
  });
  other = event.connect([&] { calls += 'b'; });
  Connection last = event.connect([&] { calls += 'c'; });
  event.Raise();
  EXPECT_EQ(calls, "ac");
  event.Raise();
  EXPECT_EQ(calls, "acc");
  EXPECT_FALSE(self.connected());
}

TEST(EventTest, HandlerConnectedDuringRaiseRunsFromTheNextRaise) {
  Event<int> event;
  std::vector<int> added;
  std::vector<Connection> keep;
  keep.push_back(event.connect([&](int value) {
    if (keep.size() < 2) keep.push_back(event.connect([&](int v) { added.push_back(v); }));
    (void)value;
  }));
  event.Raise(1);
  EXPECT_TRUE(added.empty());
  event.Raise(2);
  EXPECT_EQ(added, (std::vector<int>{2}));
}

TEST(EventTest, AConnectionMayOutliveItsEventAndAHandlerMayDestroyIt) {
  Connection connection;
  {
    Event<> event;
    connection = event.connect([] {});
    EXPECT_TRUE(connection.connected());
  }
  EXPECT_FALSE(connection.connected());

  auto event = std::make_unique<Event<>>();
  int later = 0;
  Connection destroy = event->connect([&] { event.reset(); });
  Connection after = event->connect([&] { ++later; });
  event->Raise();
  EXPECT_EQ(event, nullptr);
  EXPECT_EQ(later, 1) << "the raise in progress runs to its end";
}

TEST(EventTest, ConnectionMoveTransfersOwnership) {
  Event<> event;
  int calls = 0;
  Connection original = event.connect([&] { ++calls; });
  Connection moved(std::move(original));
  original = Connection();  // the moved-from one disconnects nothing
  event.Raise();
  EXPECT_EQ(calls, 1);
  Connection other = event.connect([&] { calls += 10; });
  moved = std::move(other);  // the handler moved held before is disconnected
  event.Raise();
  EXPECT_EQ(calls, 11);
  { Connection scoped = std::move(moved); }
  EXPECT_FALSE(event.HasHandlers());
  event.connect([&] { calls += 100; }).release();
  event.Raise();
  EXPECT_EQ(calls, 111);
  EXPECT_TRUE(event.HasHandlers());
}

}  // namespace
}  // namespace velt
