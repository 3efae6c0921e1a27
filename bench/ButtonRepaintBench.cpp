// A real veltButton on a headless form: one full repaint (face, edges,
// caption) and one hover-timer tick (pointer read, leave test, repaint, do
// events), each timed against a solid fill of the same 100x30 pixels in the
// same run. ratio_vs_solid is how many solid fills one of them costs.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <memory>

#include "bench/SameRunTiming.hpp"
#include "velt/controls/buttons/veltButton.hpp"
#include "velt/host/Form.hpp"
#include "velt/host/Site.hpp"
#include "velt/platform/Canvas.hpp"
#include "velt/platform/Font.hpp"
#include "velt/platform/HeadlessWindowSystem.hpp"

namespace {

using velt::bench::Clock;
using velt::bench::secondsSince;

constexpr int32_t kWidth = 100;
constexpr int32_t kHeight = 30;

struct ButtonOnForm {
  ButtonOnForm() : system(std::make_shared<velt::HeadlessWindowSystem>()), form(system) {
    form.Font(std::make_shared<velt::Font>("DejaVu Sans", 8.25f));
    button = form.Add<velt::veltButton>("veltButton1", 0, 0, kWidth, kHeight);
    button->Caption("Button");
    surface = &form.FindSite("veltButton1")->Surface();
  }

  std::shared_ptr<velt::HeadlessWindowSystem> system;
  velt::Form form;
  std::shared_ptr<velt::veltButton> button;
  velt::Canvas* surface = nullptr;
};

// The reference: one colour written to the same pixels.
double timeSolidFill(velt::Canvas& surface, uint32_t& color) {
  const auto start = Clock::now();
  std::fill_n(surface.Pixels(), kWidth * kHeight, color++);
  benchmark::ClobberMemory();
  return secondsSince(start);
}

void report(benchmark::State& state, double measured, double solid) {
  state.counters["solid_ns"] = 1e9 * solid / static_cast<double>(state.iterations());
  state.counters["ratio_vs_solid"] = measured / solid;
}

// Resize repaints and does nothing else, so it times exactly one repaint.
void BM_ButtonRepaint(benchmark::State& state) {
  ButtonOnForm fixture;
  double repaint = 0;
  double solid = 0;
  uint32_t color = 0x336699;
  for (auto _ : state) {
    const auto start = Clock::now();
    fixture.button->Resize();
    benchmark::ClobberMemory();
    const double elapsed = secondsSince(start);
    repaint += elapsed;
    state.SetIterationTime(elapsed);
    solid += timeSolidFill(*fixture.surface, color);
  }
  report(state, repaint, solid);
}
BENCHMARK(BM_ButtonRepaint)->UseManualTime();

// The pointer rests on the button, so every millisecond of the virtual clock
// is one MousePos tick that repaints the hovered face.
void BM_ButtonHoverTick(benchmark::State& state) {
  ButtonOnForm fixture;
  fixture.system->PostMouseMove(kWidth / 2, kHeight / 2);
  fixture.system->RunUntilIdle();
  double tick = 0;
  double solid = 0;
  uint32_t color = 0x336699;
  for (auto _ : state) {
    const auto start = Clock::now();
    fixture.system->AdvanceClock(1);
    benchmark::ClobberMemory();
    const double elapsed = secondsSince(start);
    tick += elapsed;
    state.SetIterationTime(elapsed);
    solid += timeSolidFill(*fixture.surface, color);
  }
  if (fixture.button->State() != velt::bsHover) state.SkipWithError("the button is not hovered");
  report(state, tick, solid);
}
BENCHMARK(BM_ButtonHoverTick)->UseManualTime();

}  // namespace
