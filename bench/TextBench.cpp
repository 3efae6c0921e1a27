// Measuring and printing a 20-character line through the canvas, timed against
// cairo doing the same in the same run (cairo_text_extents for the width,
// cairo_show_text for the drawing) with the same family and pixel size on an
// image of the same size. Figures are ratios, so they do not depend on the
// machine. The uncached variants forget every rendered glyph before each
// iteration; cairo's reference there keeps its own cache warm, so their ratio
// is the worst case of a first paint against cairo's steady state.

#include <benchmark/benchmark.h>
#include <cairo.h>

#include <chrono>
#include <cstdint>
#include <memory>

#include "bench/SameRunTiming.hpp"
#include "velt/platform/Canvas.hpp"
#include "velt/platform/Font.hpp"
#include "velt/platform/TextEngine.hpp"

namespace {

using velt::bench::Clock;
using velt::bench::secondsSince;

constexpr int32_t kWidth = 200;
constexpr int32_t kHeight = 20;
constexpr const char* kText = "Quick brown fox, 42!";  // 20 characters
constexpr const char* kFamily = "DejaVu Sans";
constexpr float kPoints = 8.25f;
constexpr double kPixels = 11.0;  // 8.25 points at 96 DPI

struct CairoText {
  CairoText()
      : surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, kWidth, kHeight)),
        cr(cairo_create(surface)) {
    cairo_select_font_face(cr, kFamily, CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(cr, kPixels);
    // Grey anti-aliasing and light hinting, as the canvas renders.
    cairo_font_options_t* options = cairo_font_options_create();
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_SLIGHT);
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_ON);
    cairo_set_font_options(cr, options);
    cairo_font_options_destroy(options);
    cairo_set_source_rgb(cr, 0.5, 0.0, 0.1);
    cairo_font_extents(cr, &font);
  }
  ~CairoText() {
    cairo_destroy(cr);
    cairo_surface_destroy(surface);
  }
  CairoText(const CairoText&) = delete;
  CairoText& operator=(const CairoText&) = delete;

  double Width() {
    cairo_text_extents_t extents;
    cairo_text_extents(cr, kText, &extents);
    return extents.x_advance;
  }
  void Show() {
    cairo_move_to(cr, 4, 2 + font.ascent);
    cairo_show_text(cr, kText);
    cairo_surface_flush(surface);
  }

  cairo_surface_t* surface;
  cairo_t* cr;
  cairo_font_extents_t font{};
};

velt::Canvas textCanvas() {
  velt::Canvas canvas(kWidth, kHeight);
  canvas.Font(std::make_shared<velt::Font>(kFamily, kPoints));
  canvas.ForeColor(velt::RGB(0x80, 0, 0x1A));
  return canvas;
}

void printLine(velt::Canvas& canvas) {
  canvas.CurrentX(4);
  canvas.CurrentY(2);
  canvas.Print(kText);
}

// Runs `velt` and `reference` once per iteration, each timed on its own; the
// reported time is the canvas's, cairo_ns is cairo's and speedup_vs_cairo the
// one over the other. `prepare` runs untimed before the canvas's turn.
template <typename Prepare, typename Velt, typename Reference>
void compare(benchmark::State& state, Prepare prepare, Velt velt, Reference reference) {
  double veltSeconds = 0;
  double cairoSeconds = 0;
  for (auto _ : state) {
    prepare();
    auto start = Clock::now();
    velt();
    benchmark::ClobberMemory();
    const double elapsed = secondsSince(start);
    veltSeconds += elapsed;
    state.SetIterationTime(elapsed);

    start = Clock::now();
    reference();
    benchmark::ClobberMemory();
    cairoSeconds += secondsSince(start);
  }
  state.counters["cairo_ns"] = 1e9 * cairoSeconds / static_cast<double>(state.iterations());
  state.counters["speedup_vs_cairo"] = cairoSeconds / veltSeconds;
}

void warmCache() {}
void clearCache() {
  velt::TextEngine::Instance().ClearCache();
}

void BM_TextWidth(benchmark::State& state) {
  velt::Canvas canvas = textCanvas();
  CairoText cairo;
  benchmark::DoNotOptimize(canvas.TextWidth(kText));
  compare(
      state, warmCache, [&] { benchmark::DoNotOptimize(canvas.TextWidth(kText)); },
      [&] { benchmark::DoNotOptimize(cairo.Width()); });
}
BENCHMARK(BM_TextWidth)->UseManualTime();

void BM_TextWidthUncached(benchmark::State& state) {
  velt::Canvas canvas = textCanvas();
  CairoText cairo;
  compare(
      state, clearCache, [&] { benchmark::DoNotOptimize(canvas.TextWidth(kText)); },
      [&] { benchmark::DoNotOptimize(cairo.Width()); });
}
BENCHMARK(BM_TextWidthUncached)->UseManualTime();

void BM_Print(benchmark::State& state) {
  velt::Canvas canvas = textCanvas();
  CairoText cairo;
  printLine(canvas);
  compare(
      state, warmCache, [&] { printLine(canvas); }, [&] { cairo.Show(); });
}
BENCHMARK(BM_Print)->UseManualTime();

void BM_PrintUncached(benchmark::State& state) {
  velt::Canvas canvas = textCanvas();
  CairoText cairo;
  compare(
      state, clearCache, [&] { printLine(canvas); }, [&] { cairo.Show(); });
}
BENCHMARK(BM_PrintUncached)->UseManualTime();

}  // namespace
