// Gradient and line drawing of the canvas, each timed against a reference that
// draws the same pixels in the same run, so the figures are ratios that do not
// depend on the machine.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <random>
#include <vector>

#include "bench/SameRunTiming.hpp"
#include "velt/platform/Canvas.hpp"

namespace {

using velt::bench::Clock;
using velt::bench::secondsSince;

// The reference: every pixel of the canvas set to one colour, a row at a time,
// with stores the compiler vectorises.
void solidFill(velt::Canvas& canvas, uint32_t rgb) {
  uint32_t* pixels = canvas.Pixels();
  const int32_t width = canvas.ScaleWidth();
  for (int32_t y = 0; y < canvas.ScaleHeight(); ++y)
    std::fill_n(pixels + static_cast<size_t>(y) * width, width, rgb);
}

// Args: width, height, mode. Reported time is the gradient's; ratio_vs_solid is
// the gradient's time over the solid fill's for the same pixels.
void BM_GradientFill(benchmark::State& state) {
  const auto width = static_cast<int32_t>(state.range(0));
  const auto height = static_cast<int32_t>(state.range(1));
  const auto mode = static_cast<uint32_t>(state.range(2));
  velt::Canvas canvas(width, height);
  const velt::TriVertex vertices[] = {{width, height, 0xFF00, 0x8000, 0x1000, 0},
                                      {0, 0, 0x2000, 0xA000, 0xFF00, 0}};
  const velt::GradientRectMesh mesh{1, 0};
  double solid = 0;
  double gradient = 0;
  uint32_t color = 0x336699;
  for (auto _ : state) {
    auto start = Clock::now();
    solidFill(canvas, color++);
    benchmark::ClobberMemory();
    solid += secondsSince(start);

    start = Clock::now();
    canvas.GradientFill(vertices, {&mesh, 1}, mode);
    benchmark::ClobberMemory();
    const double elapsed = secondsSince(start);
    gradient += elapsed;
    state.SetIterationTime(elapsed);
  }
  state.counters["ratio_vs_solid"] = gradient / solid;
  state.counters["solid_ns"] = 1e9 * solid / static_cast<double>(state.iterations());
  state.SetItemsProcessed(state.iterations() * width * height);
}

void gradientSizes(benchmark::internal::Benchmark* b) {
  b->ArgNames({"w", "h", "mode"});
  for (int mode : {0, 1})
    for (auto [w, h] : {std::pair{100, 30}, std::pair{200, 200}, std::pair{1920, 1080}})
      b->Args({w, h, mode});
}
BENCHMARK(BM_GradientFill)->Apply(gradientSizes)->UseManualTime();

struct Segment {
  int32_t x0, y0, x1, y1;
};

// Lines across a 200x200 canvas, some leaving it, in every direction.
std::vector<Segment> randomSegments(int count) {
  std::mt19937 rng(42);
  std::uniform_int_distribution<int32_t> coord(-20, 220);
  std::vector<Segment> segments(count);
  for (Segment& s : segments)
    s = {coord(rng), coord(rng), coord(rng), coord(rng)};
  return segments;
}

// The pixels each segment lights, found by drawing it alone on a scratch
// canvas, so the references set exactly the pixels the line routine sets.
std::vector<std::pair<int32_t, int32_t>> litPixels(const std::vector<Segment>& segments) {
  std::vector<std::pair<int32_t, int32_t>> lit;
  velt::Canvas scratch(200, 200);
  for (const Segment& s : segments) {
    scratch.Line(s.x0, s.y0, s.x1, s.y1, 0);
    for (int32_t y = 0; y < 200; ++y)
      for (int32_t x = 0; x < 200; ++x)
        if (scratch.PixelRGB(x, y) == 0) {
          lit.emplace_back(x, y);
          scratch.PSet(x, y, 0xFFFFFF);
        }
  }
  return lit;
}

// Reported time is Line's; ratio_vs_pset compares it with PSet of the same
// pixels, ratio_vs_stores with bare stores to precomputed addresses.
void BM_Lines(benchmark::State& state) {
  const std::vector<Segment> segments = randomSegments(3000);
  const auto lit = litPixels(segments);
  std::vector<uint32_t> offsets;
  for (auto [x, y] : lit)
    offsets.push_back(static_cast<uint32_t>(y * 200 + x));
  velt::Canvas canvas(200, 200);
  double lines = 0;
  double psets = 0;
  double stores = 0;
  velt::OLE_COLOR color = 0x102030;
  for (auto _ : state) {
    ++color;
    auto start = Clock::now();
    for (const Segment& s : segments)
      canvas.Line(s.x0, s.y0, s.x1, s.y1, color);
    benchmark::ClobberMemory();
    const double elapsed = secondsSince(start);
    lines += elapsed;
    state.SetIterationTime(elapsed);

    start = Clock::now();
    for (auto [x, y] : lit)
      canvas.PSet(x, y, color);
    benchmark::ClobberMemory();
    psets += secondsSince(start);

    start = Clock::now();
    uint32_t* pixels = canvas.Pixels();
    for (uint32_t offset : offsets)
      pixels[offset] = color;
    benchmark::ClobberMemory();
    stores += secondsSince(start);
  }
  state.counters["ratio_vs_pset"] = lines / psets;
  state.counters["ratio_vs_stores"] = lines / stores;
  state.counters["pixels"] = static_cast<double>(lit.size());
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(lit.size()));
}
BENCHMARK(BM_Lines)->UseManualTime();

}  // namespace
