#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "velt/platform/Font.hpp"
#include "velt/platform/ShapedLine.hpp"

namespace velt {

// Vertical metrics of a resolved font, in pixels.
struct LineMetrics {
  int32_t ascent = 0;      // baseline below the line's top
  int32_t descent = 0;     // below the baseline
  int32_t lineHeight = 0;  // full line: ascent, descent and leading
};

// Lays out, rasterizes and measures text: fontconfig finds a face for a Font
// and, for characters it lacks, a fallback face; lines are reordered for
// display (bidirectional text) and shaped by HarfBuzz; FreeType renders
// grayscale anti-aliased glyphs (colour emoji in colour), kept in a cache per
// (face, pixel size, style). Shaped lines are cached per (font, text), so
// repainting a caption does not shape it again. A family that does not exist
// falls back to the default sans-serif. The family "Webdings" (any case) is
// the library's own symbol font.
// Every routine takes one line (no line breaks). The paragraph direction is
// that of the line's first strong character unless rightToLeft asks for
// right-to-left.
// One instance per process; not thread-safe (everything runs on the UI thread).
class TextEngine {
 public:
  static TextEngine& Instance();

  LineMetrics Metrics(const Font& font);
  // Advance width of one line of UTF-8 text, in pixels: what DrawLine draws.
  int32_t LineWidth(const Font& font, std::string_view line, bool rightToLeft = false);
  // Draws one line with its top-left corner at (x, y) into a 0x00RRGGBB image,
  // blending colour (0x00RRGGBB) by glyph coverage, colour glyphs in their own
  // colours, clipped to the image; draws the underline and strikethrough the
  // font asks for.
  void DrawLine(uint32_t* pixels, int32_t width, int32_t height, int32_t x, int32_t y, uint32_t rgb,
                const Font& font, std::string_view line, bool rightToLeft = false);
  // The line as laid out for drawing: clusters, cut positions, cursor positions.
  const ShapedLine& Shape(const Font& font, std::string_view line, bool rightToLeft = false);

  // The file and family fontconfig chose for a font (for tests and diagnostics).
  std::string ResolvedFamily(const Font& font);
  // The families of the screen fonts, sorted, without duplicates.
  std::vector<std::string> ScreenFonts();

  // Forgets every rendered glyph and shaped line (faces and font lookups stay),
  // so the next drawing lays out and renders afresh. For benchmarks of the
  // uncached path.
  void ClearCache();
  // Forgets the shaped lines only: the next drawing lays out afresh with the
  // glyphs already rendered.
  void ClearShapedLines();

  ~TextEngine();
  TextEngine(const TextEngine&) = delete;
  TextEngine& operator=(const TextEngine&) = delete;

 private:
  TextEngine();
  struct Impl;
  Impl* impl_;
};

}  // namespace velt
