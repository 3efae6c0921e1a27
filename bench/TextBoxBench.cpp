// One keystroke into a text box holding 200 characters with the caret at the
// end, timed against cairo drawing the same 201-character line on an image
// of the editor's size in the same run. Each iteration starts from a text
// never shown before (its first characters count the iterations), so the
// keystroke shapes its new line as a user's would; glyphs stay cached on both
// sides. The keystroke is the whole path: KeyPress to the box's filter and
// events, the edit, keeping the caret in view and the repaint.

#include <benchmark/benchmark.h>
#include <cairo.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

#include "bench/SameRunTiming.hpp"
#include "velt/controls/text/SingleLineEdit.hpp"
#include "velt/controls/text/veltTextBox.hpp"
#include "velt/host/Form.hpp"
#include "velt/host/Site.hpp"
#include "velt/platform/Font.hpp"
#include "velt/platform/HeadlessWindowSystem.hpp"

namespace {

using velt::bench::Clock;
using velt::bench::secondsSince;

constexpr int32_t kBoxWidth = 300;
constexpr const char* kFamily = "DejaVu Sans";
constexpr float kPoints = 8.25f;
constexpr double kPixels = 11.0;  // 8.25 points at 96 DPI
constexpr size_t kLength = 200;

// 200 characters of prose whose first eight are the iteration number.
std::string textNumbered(int64_t iteration) {
  std::string number = std::to_string(iteration);
  number.insert(0, 8 - std::min<size_t>(number.size(), 8), '0');
  std::string text = number + " The quick brown fox jumps over the lazy dog; ";
  while (text.size() < kLength)
    text += "pack my box with five dozen liquor jugs, ";
  text.resize(kLength);
  return text;
}

struct CairoLine {
  CairoLine(int32_t width, int32_t height)
      : surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height)),
        cr(cairo_create(surface)) {
    cairo_select_font_face(cr, kFamily, CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(cr, kPixels);
    cairo_font_options_t* options = cairo_font_options_create();
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_SLIGHT);
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_ON);
    cairo_set_font_options(cr, options);
    cairo_font_options_destroy(options);
    cairo_font_extents(cr, &font);
  }
  ~CairoLine() {
    cairo_destroy(cr);
    cairo_surface_destroy(surface);
  }
  CairoLine(const CairoLine&) = delete;
  CairoLine& operator=(const CairoLine&) = delete;

  // The field's background, then the line scrolled so its end shows.
  void Show(const std::string& text, int32_t width) {
    cairo_set_source_rgb(cr, 1, 1, 1);
    cairo_paint(cr);
    cairo_text_extents_t extents;
    cairo_text_extents(cr, text.c_str(), &extents);
    cairo_set_source_rgb(cr, 0.5, 0.0, 0.1);
    cairo_move_to(cr, width - 2 - extents.x_advance, font.ascent);
    cairo_show_text(cr, text.c_str());
    cairo_surface_flush(surface);
  }

  cairo_surface_t* surface;
  cairo_t* cr;
  cairo_font_extents_t font{};
};

void BM_TextBoxKeystroke(benchmark::State& state) {
  auto system = std::make_shared<velt::HeadlessWindowSystem>();
  velt::Form form(system);
  form.Font(std::make_shared<velt::Font>(kFamily, kPoints));
  auto box = form.Add<velt::veltTextBox>("veltTextBox1", 0, 0, kBoxWidth, 20);
  velt::Site& editorSite = *form.FindSite("veltTextBox1")->FindChild("Text1");
  editorSite.SetFocus();
  velt::SingleLineEdit& editor = *box->Text1();
  CairoLine cairo(editorSite.Image().ScaleWidth(), editorSite.Image().ScaleHeight());

  double veltSeconds = 0;
  double cairoSeconds = 0;
  int64_t iteration = 0;
  for (auto _ : state) {
    const std::string text = textNumbered(++iteration);
    box->Text(text);
    box->SelStart(static_cast<int32_t>(kLength));
    int16_t key = 'x';
    auto start = Clock::now();
    editor.OnKeyPress(key);
    benchmark::ClobberMemory();
    const double elapsed = secondsSince(start);
    veltSeconds += elapsed;
    state.SetIterationTime(elapsed);

    const std::string typed = text + "x";
    start = Clock::now();
    cairo.Show(typed, editorSite.Image().ScaleWidth());
    benchmark::ClobberMemory();
    cairoSeconds += secondsSince(start);
  }
  if (box->Text().size() != kLength + 1) state.SkipWithError("the keystroke typed nothing");
  state.counters["cairo_ns"] = 1e9 * cairoSeconds / static_cast<double>(state.iterations());
  state.counters["ratio_vs_cairo"] = veltSeconds / cairoSeconds;
}
BENCHMARK(BM_TextBoxKeystroke)->UseManualTime();

}  // namespace
