// A 100x30 push button face painted the way the button paints it, timed against
// the same drawing done with cairo in the same run, and the shading alone timed
// against a solid fill of the same pixels. Figures are ratios, so they do not
// depend on the machine.

#include <benchmark/benchmark.h>
#include <cairo.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

#include "bench/SameRunTiming.hpp"
#include "velt/foundation/ButtonFace.hpp"
#include "velt/foundation/ColorScheme.hpp"
#include "velt/platform/Canvas.hpp"
#include "velt/platform/Font.hpp"
#include "velt/platform/Rounding.hpp"

namespace {

using velt::bench::Clock;
using velt::bench::secondsSince;

constexpr int32_t kWidth = 100;
constexpr int32_t kHeight = 30;
constexpr const char* kCaption = "Button";
constexpr const char* kFamily = "DejaVu Sans";
constexpr float kPoints = 8.25f;
constexpr double kPixelsPerPoint = 96.0 / 72.0;

velt::ColorScheme buttonScheme() {
  return velt::SchemeNormal(0xFFFFFF, 0xC00000, 0xFFFFFF);
}

// What the button's repaint draws: the surface cleared, the face with its
// edges, and the centred caption.
void paintShading(velt::Canvas& canvas, const velt::ColorScheme& p) {
  canvas.Clear();
  velt::PaintButtonFace(canvas, 0xFFFFFF, p);
}

void paintButton(velt::Canvas& canvas, const velt::ColorScheme& p) {
  paintShading(canvas, p);
  const double w = canvas.ScaleWidth();
  const double h = canvas.ScaleHeight();
  velt::PrintCaption(
      canvas, static_cast<float>(velt::Fix(w / 2 - canvas.TextWidth(kCaption) / 2.0)),
      static_cast<float>(velt::Fix(h / 2 - canvas.TextHeight(kCaption) / 2.0)), kCaption, p.Text);
}

// cairo wants 0..1 channels; OLE colours keep red in the low byte.
void addStop(cairo_pattern_t* pattern, double offset, velt::OLE_COLOR color) {
  cairo_pattern_add_color_stop_rgb(pattern, offset, (color & 0xFF) / 255.0,
                                   ((color >> 8) & 0xFF) / 255.0, ((color >> 16) & 0xFF) / 255.0);
}

void setColor(cairo_t* cr, velt::OLE_COLOR color) {
  cairo_set_source_rgb(cr, (color & 0xFF) / 255.0, ((color >> 8) & 0xFF) / 255.0,
                       ((color >> 16) & 0xFF) / 255.0);
}

void fillGradient(cairo_t* cr, double x, double y, double w, double h, double x1, double y1,
                  velt::OLE_COLOR from, velt::OLE_COLOR to) {
  cairo_pattern_t* pattern = cairo_pattern_create_linear(x, y, x1, y1);
  addStop(pattern, 0, from);
  addStop(pattern, 1, to);
  cairo_set_source(cr, pattern);
  cairo_rectangle(cr, x, y, w, h);
  cairo_fill(cr);
  cairo_pattern_destroy(pattern);
}

// A one-pixel line along pixel centres, shaded from one end to the other.
void strokeGradient(cairo_t* cr, double x0, double y0, double x1, double y1, velt::OLE_COLOR from,
                    velt::OLE_COLOR to) {
  cairo_pattern_t* pattern = cairo_pattern_create_linear(x0, y0, x1, y1);
  addStop(pattern, 0, from);
  addStop(pattern, 1, to);
  cairo_set_source(cr, pattern);
  cairo_move_to(cr, x0, y0);
  cairo_line_to(cr, x1, y1);
  cairo_stroke(cr);
  cairo_pattern_destroy(pattern);
}

// The same picture through cairo: two linear gradients, three shaded lines, a
// plain line and the centred caption at the same pixel size.
void paintButtonCairo(cairo_t* cr, const velt::ColorScheme& p) {
  const double w = kWidth;
  const double h = kHeight;
  const double half = kHeight / 2;
  setColor(cr, 0xFFFFFF);
  cairo_paint(cr);
  fillGradient(cr, 0, 0, w, half + 1, 0, half + 1, p.FillTop, p.FillMiddle);
  fillGradient(cr, 0, h - half, w, half, 0, h, p.FillMiddle, p.FillBottom);
  cairo_set_line_width(cr, 1.0);
  strokeGradient(cr, 1, 0.5, w - 1, 0.5, p.EdgeLight, p.EdgeMid);
  strokeGradient(cr, 0.5, 1, 0.5, h - 1, p.EdgeLight, p.EdgeDark);
  setColor(cr, p.EdgeDark);
  cairo_move_to(cr, 1, h - 0.5);
  cairo_line_to(cr, w - 1, h - 0.5);
  cairo_stroke(cr);
  strokeGradient(cr, w - 0.5, 1, w - 0.5, h - 1, p.EdgeMid, p.EdgeDark);

  cairo_select_font_face(cr, kFamily, CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
  cairo_set_font_size(cr, kPoints * kPixelsPerPoint);
  cairo_text_extents_t text;
  cairo_text_extents(cr, kCaption, &text);
  cairo_font_extents_t font;
  cairo_font_extents(cr, &font);
  setColor(cr, p.Text);
  cairo_move_to(cr, velt::Fix(w / 2 - text.x_advance / 2),
                velt::Fix(h / 2 - font.height / 2) + font.ascent);
  cairo_show_text(cr, kCaption);
}

struct CairoTarget {
  CairoTarget()
      : surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, kWidth, kHeight)),
        cr(cairo_create(surface)) {}
  ~CairoTarget() {
    cairo_destroy(cr);
    cairo_surface_destroy(surface);
  }
  CairoTarget(const CairoTarget&) = delete;
  CairoTarget& operator=(const CairoTarget&) = delete;

  cairo_surface_t* surface;
  cairo_t* cr;
};

velt::Canvas buttonCanvas() {
  velt::Canvas canvas(kWidth, kHeight);
  canvas.Font(std::make_shared<velt::Font>(kFamily, kPoints));
  return canvas;
}

// Paints `batch` faces with the library, then `batch` with cairo, every
// iteration. Reported time is the library's full repaint; velt_ns and cairo_ns
// are per paint and speedup_vs_cairo the one over the other.
void compareWithCairo(benchmark::State& state, int batch) {
  velt::Canvas canvas = buttonCanvas();
  CairoTarget cairo;
  const velt::ColorScheme scheme = buttonScheme();
  double velt = 0;
  double reference = 0;
  for (auto _ : state) {
    auto start = Clock::now();
    for (int i = 0; i < batch; ++i) {
      paintButton(canvas, scheme);
      benchmark::ClobberMemory();
    }
    const double elapsed = secondsSince(start);
    velt += elapsed;
    state.SetIterationTime(elapsed);

    start = Clock::now();
    for (int i = 0; i < batch; ++i) {
      paintButtonCairo(cairo.cr, scheme);
      cairo_surface_flush(cairo.surface);
      benchmark::ClobberMemory();
    }
    reference += secondsSince(start);
  }
  const auto paints = static_cast<double>(state.iterations()) * batch;
  state.counters["velt_ns"] = 1e9 * velt / paints;
  state.counters["cairo_ns"] = 1e9 * reference / paints;
  state.counters["speedup_vs_cairo"] = reference / velt;
}

// The two alternate paint by paint, each starting after the other has run:
// hard on both, as a repaint after other work is.
void BM_ButtonFace(benchmark::State& state) {
  compareWithCairo(state, 1);
}
BENCHMARK(BM_ButtonFace)->UseManualTime();

// Each side repaints a batch in a row, its caches warm, as a control
// repainted on every mouse move does: the usual way two routines are timed.
void BM_ButtonFaceBatches(benchmark::State& state) {
  compareWithCairo(state, 64);
}
BENCHMARK(BM_ButtonFaceBatches)->UseManualTime();

// The shading alone (clear, two gradients, four edges: what changes between the
// hover and pressed looks) against writing one colour to the same 100x30 pixels.
// ratio_vs_solid is how many solid fills one repaint costs.
void BM_ButtonShading(benchmark::State& state) {
  velt::Canvas canvas = buttonCanvas();
  const velt::ColorScheme scheme = buttonScheme();
  double shading = 0;
  double solid = 0;
  uint32_t color = 0x336699;
  for (auto _ : state) {
    auto start = Clock::now();
    paintShading(canvas, scheme);
    benchmark::ClobberMemory();
    const double elapsed = secondsSince(start);
    shading += elapsed;
    state.SetIterationTime(elapsed);

    start = Clock::now();
    std::fill_n(canvas.Pixels(), kWidth * kHeight, color++);
    benchmark::ClobberMemory();
    solid += secondsSince(start);
  }
  state.counters["solid_ns"] = 1e9 * solid / static_cast<double>(state.iterations());
  state.counters["ratio_vs_solid"] = shading / solid;
}
BENCHMARK(BM_ButtonShading)->UseManualTime();

}  // namespace
