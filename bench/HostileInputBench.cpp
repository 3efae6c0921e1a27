// Costs that must stay in proportion to the input, each against a reference
// doing the bare part of the same job in the same run:
// - a long virtual wait with a 1 ms timer whose tick lets pending events run
//   (as a hover timer does): AdvanceClock against calling the same callback
//   as often in a plain loop. The ratio is the loop's overhead per tick.
// - reading form files of 2,000 and 20,000 controls against parsing their
//   JSON alone: the ratio stays flat when every check by name is constant
//   time, and grows tenfold with the file when one is linear.
// Figures are ratios (velt time / reference time); ns_per_tick and
// ns_per_control give the absolute cost here.

#include <benchmark/benchmark.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include <nlohmann/json.hpp>

#include "bench/SameRunTiming.hpp"
#include "velt/controls/ControlRegistry.hpp"
#include "velt/host/FormFile.hpp"
#include "velt/platform/HeadlessWindowSystem.hpp"

namespace {

using velt::bench::Clock;
using velt::bench::secondsSince;

void BM_LongWaitWithAOneMillisecondTimer(benchmark::State& state) {
  constexpr int64_t kWaitMs = 1'000'000;
  auto system = std::make_shared<velt::HeadlessWindowSystem>();
  int64_t ticks = 0;
  velt::HeadlessWindowSystem* raw = system.get();
  const std::function<void()> tick = [&ticks, raw] {
    ++ticks;
    raw->DoEvents();
  };
  const auto id = system->Timers().Add(tick);
  system->Timers().Start(id, 1);
  double veltSeconds = 0, loopSeconds = 0;
  for (auto _ : state) {
    Clock::time_point start = Clock::now();
    system->AdvanceClock(kWaitMs);
    const double elapsed = secondsSince(start);
    veltSeconds += elapsed;
    state.SetIterationTime(elapsed);
    // The reference: the ticks' own work alone, with nothing due in between.
    system->Timers().Stop(id);
    start = Clock::now();
    for (int64_t i = 0; i < kWaitMs; ++i)
      tick();
    loopSeconds += secondsSince(start);
    system->Timers().Start(id, 1);
  }
  if (ticks != 2 * kWaitMs * static_cast<int64_t>(state.iterations()))
    state.SkipWithError("the timer did not tick once per millisecond");
  state.counters["ratio_vs_plain_calls"] = veltSeconds / loopSeconds;
  state.counters["ns_per_tick"] =
      veltSeconds * 1e9 / (static_cast<double>(state.iterations()) * kWaitMs);
}
BENCHMARK(BM_LongWaitWithAOneMillisecondTimer)->UseManualTime()->Unit(benchmark::kMillisecond);

std::string formOf(int64_t controls) {
  std::string text = R"({"version": 1, "width": 100, "height": 100, "controls": [)";
  for (int64_t i = 0; i < controls; ++i)
    text += std::string(i ? "," : "") + R"({"type": "veltButton", "name": "b)" + std::to_string(i) +
            R"(", "left": 0, "top": 0, "width": 9, "height": 9, "properties": {"Caption": "x"}})";
  return text + "]}";
}

void BM_ReadFormFile(benchmark::State& state) {
  const int64_t controls = state.range(0);
  const std::string text = formOf(controls);
  const velt::ControlRegistry& types = velt::ControlRegistry::Standard();
  double veltSeconds = 0, jsonSeconds = 0;
  for (auto _ : state) {
    Clock::time_point start = Clock::now();
    benchmark::DoNotOptimize(velt::FormFile::Parse(text, "bench.json", types));
    const double elapsed = secondsSince(start);
    veltSeconds += elapsed;
    state.SetIterationTime(elapsed);
    start = Clock::now();
    benchmark::DoNotOptimize(nlohmann::ordered_json::parse(text));
    jsonSeconds += secondsSince(start);
  }
  state.counters["ratio_vs_json_parse"] = veltSeconds / jsonSeconds;
  state.counters["ns_per_control"] =
      veltSeconds * 1e9 / (static_cast<double>(state.iterations()) * controls);
}
BENCHMARK(BM_ReadFormFile)->Arg(2000)->Arg(20000)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
