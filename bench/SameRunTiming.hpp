#pragma once

// Timing shared by the benchmarks that compare against a reference in the
// same run.

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdint>
#include <utility>
#include <vector>

namespace velt::bench {

using Clock = std::chrono::steady_clock;

inline double secondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

// Runs `first` and `second` once per iteration, each timed on its own; the
// reported time is the first's. Returns the seconds each took in all.
template <typename First, typename Second>
std::pair<double, double> alternate(benchmark::State& state, First first, Second second) {
  double firstSeconds = 0;
  double secondSeconds = 0;
  for (auto _ : state) {
    auto start = Clock::now();
    first();
    benchmark::ClobberMemory();
    const double elapsed = secondsSince(start);
    firstSeconds += elapsed;
    state.SetIterationTime(elapsed);
    start = Clock::now();
    second();
    benchmark::ClobberMemory();
    secondSeconds += secondsSince(start);
  }
  return {firstSeconds, secondSeconds};
}

// A disc of one colour on a transparent square of `size` pixels, 0xAARRGGBB.
inline std::vector<uint32_t> discPixels(int32_t size, uint32_t rgb) {
  std::vector<uint32_t> pixels(static_cast<size_t>(size) * size, 0);
  const double r = size / 2.0;
  for (int32_t y = 0; y < size; ++y)
    for (int32_t x = 0; x < size; ++x)
      if ((x + 0.5 - r) * (x + 0.5 - r) + (y + 0.5 - r) * (y + 0.5 - r) <= r * r)
        pixels[y * size + x] = 0xFF000000 | rgb;
  return pixels;
}

}  // namespace velt::bench
