#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace velt {

namespace detail {
struct SlotLife {
  bool alive = true;
};
}  // namespace detail

// Disconnects its handler when destroyed. Move-only; release() keeps the handler
// connected for the life of the event.
class Connection {
 public:
  Connection() = default;
  explicit Connection(std::weak_ptr<detail::SlotLife> slot) : slot_(std::move(slot)) {}
  Connection(Connection&&) noexcept = default;
  Connection& operator=(Connection&& other) noexcept {
    if (this != &other) {
      disconnect();
      slot_ = std::move(other.slot_);
    }
    return *this;
  }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  ~Connection() { disconnect(); }

  void disconnect() {
    if (auto slot = slot_.lock()) slot->alive = false;
    slot_.reset();
  }
  bool connected() const {
    auto slot = slot_.lock();
    return slot && slot->alive;
  }
  void release() { slot_.reset(); }

 private:
  std::weak_ptr<detail::SlotLife> slot_;
};

// An event a control raises to its container. Handlers take the arguments as
// declared: an `int16_t&` parameter lets the handler change the value the
// control acts on afterwards. Handlers may connect or disconnect handlers (their
// own included) and may destroy the event's owner while it is being raised.
template <typename... Args>
class Event {
 public:
  using Handler = std::function<void(Args...)>;

  Event() = default;
  Event(const Event&) = delete;
  Event& operator=(const Event&) = delete;

  [[nodiscard]] Connection connect(Handler handler) {
    state_->compactUnlessRaising();
    auto slot = std::make_shared<Slot>();
    slot->handler = std::move(handler);
    state_->slots.push_back(slot);
    return Connection(slot);
  }

  // Handlers connected while the event is being raised are first called on the
  // next raise; handlers disconnected during it are not called any more.
  void Raise(Args... args) const {
    std::shared_ptr<State> state = state_;
    ++state->raising;
    const std::size_t count = state->slots.size();
    for (std::size_t i = 0; i < count; ++i) {
      std::shared_ptr<Slot> slot = state->slots[i];
      if (slot->alive) slot->handler(args...);
    }
    --state->raising;
    state->compactUnlessRaising();
  }

  bool HasHandlers() const {
    for (const auto& slot : state_->slots)
      if (slot->alive) return true;
    return false;
  }

 private:
  struct Slot : detail::SlotLife {
    Handler handler;
  };
  struct State {
    std::vector<std::shared_ptr<Slot>> slots;
    int raising = 0;
    void compactUnlessRaising() {
      if (raising != 0) return;
      std::erase_if(slots, [](const std::shared_ptr<Slot>& s) { return !s->alive; });
    }
  };
  std::shared_ptr<State> state_ = std::make_shared<State>();
};

}  // namespace velt
