// A real veltListbox on a headless form, 300x400 with 16-pixel icons and 25
// entries of 30-character captions, one of them highlighted: one full repaint
// timed against cairo drawing the same rows (gradient highlight and its
// outline, icons, captions, the frame) on an image of the same size in the
// same run. speedup_vs_cairo is cairo's time over ours.
//
// The second figure repaints a list of 100 entries and one of 32,000 in turns:
// the rows laid out are all a repaint touches, so ratio_large_vs_small should
// stay near 1.

#include <benchmark/benchmark.h>
#include <cairo.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "bench/SameRunTiming.hpp"
#include "velt/controls/lists/veltListbox.hpp"
#include "velt/controls/menus/MenuItemListing.hpp"
#include "velt/controls/range/veltScrollBar.hpp"
#include "velt/host/Form.hpp"
#include "velt/host/Site.hpp"
#include "velt/platform/Font.hpp"
#include "velt/platform/HeadlessWindowSystem.hpp"
#include "velt/platform/ImageList.hpp"
#include "velt/platform/Picture.hpp"

namespace {

using velt::bench::alternate;
using velt::bench::Clock;
using velt::bench::secondsSince;

constexpr int32_t kWidth = 300;
constexpr int32_t kHeight = 400;
constexpr int32_t kIconSize = 16;
constexpr int32_t kIcons = 4;
constexpr int32_t kEntries = 25;
constexpr int16_t kSelected = 3;
constexpr int32_t kScrollBarWidth = 17;
constexpr const char* kFamily = "DejaVu Sans";
constexpr float kPoints = 8.25f;
constexpr double kPixels = 11.0;  // 8.25 points at 96 DPI

std::vector<uint32_t> discPixels(uint32_t rgb) {
  return velt::bench::discPixels(kIconSize, rgb);
}

const std::vector<uint32_t> kIconColors = {0x2E8B57, 0xC0392B, 0x2980B9, 0xE67E22};

std::string caption(int32_t entry) {
  std::string text = "Entry " + std::to_string(entry) + " of the benchmark list";
  text.resize(30, '.');
  return text;
}

struct ListOnForm {
  explicit ListOnForm(int32_t entries)
      : system(std::make_shared<velt::HeadlessWindowSystem>()), form(system) {
    form.Font(std::make_shared<velt::Font>(kFamily, kPoints));
    images = std::make_shared<velt::ImageList>();
    for (uint32_t color : kIconColors)
      images->ListImages().Add(
          std::make_shared<velt::Picture>(kIconSize, kIconSize, discPixels(color)));
    list = form.Add<velt::veltListbox>("veltListbox1", 0, 0, kWidth, kHeight);
    list->ImageList(images);
    for (int32_t entry = 1; entry <= entries; ++entry)
      list->ListboxItems.Add("", caption(entry), "", static_cast<int16_t>(1 + entry % kIcons));
    list->SelectedItem(kSelected);
    list->veltScrollBar1()->Value(1);
  }
  // Setting the image list stores it and repaints, nothing else.
  void Repaint() { list->ImageList(images); }

  std::shared_ptr<velt::HeadlessWindowSystem> system;
  velt::Form form;
  std::shared_ptr<velt::ImageList> images;
  std::shared_ptr<velt::veltListbox> list;
};

// The same picture with cairo: rows where the list laid them out.
struct CairoList {
  explicit CairoList(const velt::veltListbox& list)
      : surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, kWidth, kHeight)),
        cr(cairo_create(surface)) {
    cairo_select_font_face(cr, kFamily, CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(cr, kPixels);
    cairo_font_options_t* options = cairo_font_options_create();
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_SLIGHT);
    cairo_set_font_options(cr, options);
    cairo_font_options_destroy(options);
    cairo_font_extents(cr, &font);
    for (uint32_t color : kIconColors) {
      cairo_surface_t* icon = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, kIconSize, kIconSize);
      auto* data = reinterpret_cast<uint32_t*>(cairo_image_surface_get_data(icon));
      const std::vector<uint32_t> pixels = discPixels(color);  // opaque or clear: premultiplied
      std::copy(pixels.begin(), pixels.end(), data);
      cairo_surface_mark_dirty(icon);
      icons.push_back(icon);
    }
    for (const auto& row : list.TempListboxItems) {
      const auto entry = list.ListboxItems.Item(row->Index());
      rows.push_back(Row{row->Top(), row->Height(), row->Index() == kSelected, entry->Icon() - 1,
                         entry->Caption()});
    }
  }
  ~CairoList() {
    for (cairo_surface_t* icon : icons)
      cairo_surface_destroy(icon);
    cairo_destroy(cr);
    cairo_surface_destroy(surface);
  }
  CairoList(const CairoList&) = delete;
  CairoList& operator=(const CairoList&) = delete;

  void Draw() {
    cairo_set_source_rgb(cr, 1, 1, 1);
    cairo_paint(cr);
    const double right = kWidth - kScrollBarWidth;
    for (const Row& row : rows) {
      if (row.highlighted) {
        cairo_pattern_t* ramp = cairo_pattern_create_linear(3, 0, right - 4, 0);
        cairo_pattern_add_color_stop_rgb(ramp, 0, 0.95, 0.93, 0.99);
        cairo_pattern_add_color_stop_rgb(ramp, 1, 0.80, 0.78, 0.95);
        cairo_set_source(cr, ramp);
        cairo_rectangle(cr, 3, row.top + 3, right - 7, row.height - 2);
        cairo_fill(cr);
        cairo_pattern_destroy(ramp);
        cairo_set_source_rgb(cr, 0.47, 0.47, 0.85);
        cairo_set_line_width(cr, 1);
        cairo_rectangle(cr, 2.5, row.top + 2.5, right - 6, row.height - 2);
        cairo_stroke(cr);
      }
      cairo_set_source_surface(cr, icons[row.icon], 4, row.top + 3);
      cairo_paint(cr);
      cairo_set_source_rgb(cr, 0.3, 0.0, 0.0);
      cairo_move_to(cr, kIconSize + 8, row.top + row.height / 2.0 - 6.5 + 1 + font.ascent);
      cairo_show_text(cr, row.caption.c_str());
    }
    cairo_set_source_rgb(cr, 0.47, 0.47, 0.85);
    cairo_rectangle(cr, 0.5, 0.5, kWidth - 1, kHeight - 1);
    cairo_stroke(cr);
    cairo_surface_flush(surface);
  }

  struct Row {
    int32_t top;
    int32_t height;
    bool highlighted;
    int32_t icon;
    std::string caption;
  };
  cairo_surface_t* surface;
  cairo_t* cr;
  cairo_font_extents_t font{};
  std::vector<cairo_surface_t*> icons;
  std::vector<Row> rows;
};

void BM_ListboxRepaint(benchmark::State& state) {
  ListOnForm fixture(kEntries);
  CairoList cairo(*fixture.list);
  const auto [ours, theirs] = alternate(
      state, [&] { fixture.Repaint(); }, [&] { cairo.Draw(); });
  state.counters["rows"] = static_cast<double>(cairo.rows.size());
  state.counters["cairo_ns"] = 1e9 * theirs / static_cast<double>(state.iterations());
  state.counters["speedup_vs_cairo"] = theirs / ours;
}
BENCHMARK(BM_ListboxRepaint)->UseManualTime();

void BM_ListboxRepaintLargeVsSmall(benchmark::State& state) {
  ListOnForm small(100);
  ListOnForm large(32000);
  const auto [smallSeconds, largeSeconds] = alternate(
      state, [&] { small.Repaint(); }, [&] { large.Repaint(); });
  state.counters["large_ns"] = 1e9 * largeSeconds / static_cast<double>(state.iterations());
  state.counters["ratio_large_vs_small"] = largeSeconds / smallSeconds;
}
BENCHMARK(BM_ListboxRepaintLargeVsSmall)->UseManualTime();

}  // namespace
