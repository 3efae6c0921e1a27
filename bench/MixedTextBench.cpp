// Laying out and drawing a line that mixes Latin, Hebrew and CJK, with no
// shaped line cached, against Pango laying out and drawing the same line
// through cairo in the same run (a fresh PangoLayout each time, Pango's and
// cairo's font and glyph caches warm, as ours are: only the layout is new).
// The figure is the ratio pango_ns / velt_ns.

#include <benchmark/benchmark.h>
#include <cairo.h>
#include <pango/pangocairo.h>

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

constexpr int32_t kWidth = 300;
constexpr int32_t kHeight = 20;
constexpr const char* kLine =
    "Order 42: \xD7\xA9\xD7\x9C\xD7\x95\xD7\x9D \xD7\xA2\xD7\x95\xD7\x9C\xD7\x9D, "
    "\xE7\xA2\xBA\xE5\xAE\x9A \xE5\x8F\x96\xE6\xB6\x88 done";
constexpr const char* kFamily = "DejaVu Sans";
constexpr float kPoints = 8.25f;

struct PangoLine {
  PangoLine()
      : surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, kWidth, kHeight)),
        cr(cairo_create(surface)),
        font(pango_font_description_from_string("DejaVu Sans 8.25")) {
    cairo_font_options_t* options = cairo_font_options_create();
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_SLIGHT);
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_ON);
    context = pango_cairo_create_context(cr);
    pango_cairo_context_set_font_options(context, options);
    pango_cairo_context_set_resolution(context, 96);
    cairo_font_options_destroy(options);
    cairo_set_source_rgb(cr, 0.5, 0.0, 0.1);
  }
  ~PangoLine() {
    g_object_unref(context);
    pango_font_description_free(font);
    cairo_destroy(cr);
    cairo_surface_destroy(surface);
  }
  PangoLine(const PangoLine&) = delete;
  PangoLine& operator=(const PangoLine&) = delete;

  void Show() {
    PangoLayout* layout = pango_layout_new(context);
    pango_layout_set_font_description(layout, font);
    pango_layout_set_text(layout, kLine, -1);
    cairo_move_to(cr, 4, 2);
    pango_cairo_show_layout(cr, layout);
    cairo_surface_flush(surface);
    g_object_unref(layout);
  }

  cairo_surface_t* surface;
  cairo_t* cr;
  PangoFontDescription* font;
  PangoContext* context = nullptr;
};

void BM_MixedLineUncached(benchmark::State& state) {
  velt::Canvas canvas(kWidth, kHeight);
  canvas.Font(std::make_shared<velt::Font>(kFamily, kPoints));
  canvas.ForeColor(velt::RGB(0x80, 0, 0x1A));
  PangoLine pango;
  const auto print = [&] {
    canvas.CurrentX(4);
    canvas.CurrentY(2);
    canvas.Print(kLine);
  };
  print();  // faces opened, glyphs rendered
  pango.Show();
  double veltSeconds = 0;
  double pangoSeconds = 0;
  for (auto _ : state) {
    velt::TextEngine::Instance().ClearShapedLines();
    auto start = Clock::now();
    print();
    benchmark::ClobberMemory();
    const double elapsed = secondsSince(start);
    veltSeconds += elapsed;
    state.SetIterationTime(elapsed);

    start = Clock::now();
    pango.Show();
    benchmark::ClobberMemory();
    pangoSeconds += secondsSince(start);
  }
  state.counters["pango_ns"] = 1e9 * pangoSeconds / static_cast<double>(state.iterations());
  state.counters["speedup_vs_pango"] = pangoSeconds / veltSeconds;
}
BENCHMARK(BM_MixedLineUncached)->UseManualTime();

}  // namespace
