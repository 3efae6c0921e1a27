#include "velt/platform/SteadyClock.hpp"

namespace velt {

SteadyClock::SteadyClock() : start_(std::chrono::steady_clock::now()) {}

int64_t SteadyClock::NowMs() const {
  const auto elapsed = std::chrono::steady_clock::now() - start_;
  return std::chrono::duration_cast<std::chrono::milliseconds>(elapsed).count();
}

}  // namespace velt
