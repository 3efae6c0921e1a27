// A real veltToolbar on a headless form, 600x30 with 12 items (14-pixel icons
// and captions), one check button checked and one button under the pointer:
// one full repaint timed against cairo drawing the same (the shaded bar and
// its border, the two button backgrounds with their frames, icons, captions)
// on an image of the same size in the same run. speedup_vs_cairo is cairo's
// time over ours.

#include <benchmark/benchmark.h>
#include <cairo.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "bench/SameRunTiming.hpp"
#include "velt/controls/menus/veltToolbar.hpp"
#include "velt/host/Form.hpp"
#include "velt/platform/Font.hpp"
#include "velt/platform/HeadlessWindowSystem.hpp"
#include "velt/platform/ImageList.hpp"
#include "velt/platform/Picture.hpp"

namespace {

using velt::bench::alternate;
using velt::bench::Clock;
using velt::bench::secondsSince;

constexpr int32_t kWidth = 600;
constexpr int32_t kIconSize = 14;
constexpr int32_t kItems = 12;
constexpr int16_t kChecked = 3;
constexpr int16_t kHovered = 6;
constexpr const char* kFamily = "DejaVu Sans";
constexpr float kPoints = 8.25f;
constexpr double kPixels = 11.0;  // 8.25 points at 96 DPI

const std::vector<uint32_t> kIconColors = {0x2E8B57, 0xC0392B, 0x2980B9, 0xE67E22};

std::vector<uint32_t> discPixels(uint32_t rgb) {
  return velt::bench::discPixels(kIconSize, rgb);
}

struct ToolbarOnForm {
  ToolbarOnForm() : system(std::make_shared<velt::HeadlessWindowSystem>()), form(system) {
    form.Font(std::make_shared<velt::Font>(kFamily, kPoints));
    images = std::make_shared<velt::ImageList>();
    for (uint32_t color : kIconColors)
      images->ListImages().Add(
          std::make_shared<velt::Picture>(kIconSize, kIconSize, discPixels(color)));
    bar = form.Add<velt::veltToolbar>("veltToolbar1", 0, 0, kWidth, 30);
    bar->ImageList(images);
    for (int32_t item = 1; item <= kItems; ++item)
      bar->ToolbarItems.Add(
          "", "F" + std::to_string(item), static_cast<int16_t>(1 + item % kIconColors.size()),
          item == kChecked ? velt::mitCheckButton : velt::mitNormalButton, item == kChecked);
    const velt::ToolbarCell& hovered = *bar->Layout().CellOf(kHovered);
    bar->OnMouseMove(0, 0, static_cast<float>(hovered.Left), 10.0f);
  }
  // Refresh tells the toolbar its items changed: a full repaint.
  void Repaint() { bar->ToolbarItems.Refresh(); }

  std::shared_ptr<velt::HeadlessWindowSystem> system;
  velt::Form form;
  std::shared_ptr<velt::ImageList> images;
  std::shared_ptr<velt::veltToolbar> bar;
};

void setRgb(cairo_t* cr, uint32_t ole) {
  cairo_set_source_rgb(cr, (ole & 0xFF) / 255.0, ((ole >> 8) & 0xFF) / 255.0,
                       ((ole >> 16) & 0xFF) / 255.0);
}

void shade(cairo_t* cr, double x, double y, double w, double h, uint32_t from, uint32_t to,
           bool vertical) {
  cairo_pattern_t* ramp =
      cairo_pattern_create_linear(x, y, vertical ? x : x + w, vertical ? y + h : y);
  cairo_pattern_add_color_stop_rgb(ramp, 0, (from & 0xFF) / 255.0, ((from >> 8) & 0xFF) / 255.0,
                                   ((from >> 16) & 0xFF) / 255.0);
  cairo_pattern_add_color_stop_rgb(ramp, 1, (to & 0xFF) / 255.0, ((to >> 8) & 0xFF) / 255.0,
                                   ((to >> 16) & 0xFF) / 255.0);
  cairo_set_source(cr, ramp);
  cairo_rectangle(cr, x, y, w, h);
  cairo_fill(cr);
  cairo_pattern_destroy(ramp);
}

// The same picture with cairo, items where the toolbar laid them out.
struct CairoToolbar {
  struct Item {
    int32_t buttonLeft;
    int32_t left;
    int32_t width;
    int32_t icon;
    std::string caption;
    bool checked;
    bool hovered;
  };
  explicit CairoToolbar(const velt::veltToolbar& bar)
      : colors(bar.Colors()),
        height(bar.BarHeight()),
        itemHeight(bar.Layout().ItemHeight),
        surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, kWidth, height)),
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
    for (const velt::ToolbarCell& cell : bar.Layout().Cells) {
      const auto item = bar.ToolbarItems.Item(cell.Index);
      items.push_back(Item{cell.ButtonLeft(), cell.Left, cell.Width, item->IconIndex() - 1,
                           item->Caption(), cell.Index == kChecked, cell.Index == kHovered});
    }
  }
  ~CairoToolbar() {
    for (cairo_surface_t* icon : icons)
      cairo_surface_destroy(icon);
    cairo_destroy(cr);
    cairo_surface_destroy(surface);
  }
  CairoToolbar(const CairoToolbar&) = delete;
  CairoToolbar& operator=(const CairoToolbar&) = delete;

  void button(const Item& item, uint32_t from, uint32_t to) {
    shade(cr, item.buttonLeft, 3, item.width, itemHeight + 6, from, to, true);
    setRgb(cr, colors.EdgeDark);
    cairo_rectangle(cr, item.buttonLeft + 0.5, 3.5, item.width - 1, itemHeight + 5);
    cairo_stroke(cr);
  }

  void Draw() {
    const double half = height / 2.0;
    shade(cr, 0, 0, kWidth, half, colors.FillTop, colors.FillMiddle, true);
    shade(cr, 0, half, kWidth, half, colors.FillMiddle, colors.FillBottom, true);
    shade(cr, 1, 0, kWidth - 2, 1, colors.EdgeLight, colors.EdgeMid, false);
    shade(cr, 0, 1, 1, height - 2, colors.EdgeLight, colors.EdgeDark, true);
    shade(cr, kWidth - 1, 1, 1, height - 2, colors.EdgeMid, colors.EdgeDark, true);
    setRgb(cr, colors.EdgeDark);
    cairo_rectangle(cr, 1, height - 1, kWidth - 2, 1);
    cairo_fill(cr);
    cairo_set_line_width(cr, 1);
    for (const Item& item : items) {
      if (item.hovered)
        button(item, colors.Accent1, item.checked ? colors.Accent3 : colors.Accent2);
      else if (item.checked)
        button(item, colors.Accent1, colors.Accent2);
      cairo_set_source_surface(cr, icons[item.icon], item.buttonLeft + 5,
                               6 + (itemHeight - kIconSize) / 2);
      cairo_paint(cr);
      setRgb(cr, colors.Text);
      cairo_move_to(cr, item.left + kIconSize + 3, 6 + font.ascent);
      cairo_show_text(cr, item.caption.c_str());
    }
    cairo_surface_flush(surface);
  }

  velt::ColorScheme colors;
  int32_t height;
  int32_t itemHeight;
  cairo_surface_t* surface;
  cairo_t* cr;
  cairo_font_extents_t font{};
  std::vector<cairo_surface_t*> icons;
  std::vector<Item> items;
};

void BM_ToolbarRepaint(benchmark::State& state) {
  ToolbarOnForm fixture;
  if (fixture.bar->Layout().Cells.size() != kItems || fixture.bar->HoveredIndex() != kHovered) {
    state.SkipWithError("the items do not all fit the bar, or none is hovered");
    return;
  }
  CairoToolbar cairo(*fixture.bar);
  const auto [ours, theirs] = alternate(
      state, [&] { fixture.Repaint(); }, [&] { cairo.Draw(); });
  state.counters["items"] = static_cast<double>(cairo.items.size());
  state.counters["cairo_ns"] = 1e9 * theirs / static_cast<double>(state.iterations());
  state.counters["speedup_vs_cairo"] = theirs / ours;
}
BENCHMARK(BM_ToolbarRepaint)->UseManualTime();

}  // namespace
