#include "velt/utilities/SvgRenderer.hpp"

#include <cairo.h>
#include <librsvg/rsvg.h>

#include <vector>

namespace velt {

namespace {

// cairo keeps premultiplied native-endian ARGB; pictures keep straight alpha.
uint32_t straight(uint32_t premultiplied) {
  const uint32_t alpha = premultiplied >> 24;
  if (alpha == 0) return 0;
  auto channel = [&](int shift) {
    const uint32_t value = (premultiplied >> shift & 0xFF) * 255 + alpha / 2;
    return std::min<uint32_t>(value / alpha, 255) << shift;
  };
  return alpha << 24 | channel(16) | channel(8) | channel(0);
}

}  // namespace

bool SvgRenderer::Parses(std::span<const uint8_t> bytes) {
  if (bytes.empty() || bytes.size() > kMaxBytes) return false;
  GError* error = nullptr;
  RsvgHandle* handle = rsvg_handle_new_from_data(bytes.data(), bytes.size(), &error);
  g_clear_error(&error);
  if (!handle) return false;
  g_object_unref(handle);
  return true;
}

std::shared_ptr<Picture> SvgRenderer::Render(std::span<const uint8_t> bytes, int32_t side) {
  if (bytes.empty() || bytes.size() > kMaxBytes || side < 1 || side > 1024) return nullptr;
  GError* error = nullptr;
  RsvgHandle* handle = rsvg_handle_new_from_data(bytes.data(), bytes.size(), &error);
  if (!handle) {
    g_clear_error(&error);
    return nullptr;
  }
  cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, side, side);
  cairo_t* cairo = cairo_create(surface);
  const RsvgRectangle viewport{0, 0, static_cast<double>(side), static_cast<double>(side)};
  const bool drawn = rsvg_handle_render_document(handle, cairo, &viewport, &error) != 0 &&
                     cairo_status(cairo) == CAIRO_STATUS_SUCCESS;
  g_clear_error(&error);
  cairo_destroy(cairo);
  cairo_surface_flush(surface);
  std::shared_ptr<Picture> picture;
  if (drawn) {
    std::vector<uint32_t> pixels(static_cast<size_t>(side) * static_cast<size_t>(side));
    const unsigned char* data = cairo_image_surface_get_data(surface);
    const int stride = cairo_image_surface_get_stride(surface);
    for (int32_t y = 0; y < side; ++y) {
      const auto* row =
          reinterpret_cast<const uint32_t*>(data + static_cast<ptrdiff_t>(y) * stride);
      for (int32_t x = 0; x < side; ++x)
        pixels[static_cast<size_t>(y * side + x)] = straight(row[x]);
    }
    picture = std::make_shared<Picture>(side, side, std::move(pixels));
  }
  cairo_surface_destroy(surface);
  g_object_unref(handle);
  return picture;
}

}  // namespace velt
