#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "velt/platform/TextEngine.hpp"

struct FT_FaceRec_;
struct FT_SizeRec_;
struct hb_font_t;

namespace velt {

// One rendered glyph: an 8-bit coverage bitmap (or, for a colour glyph,
// premultiplied 0xAARRGGBB pixels) placed relative to the pen on the baseline,
// and the whole-pixel advance the pen moves on by.
struct Glyph {
  int32_t advance = 0;
  int32_t left = 0;  // first bitmap column, right of the pen
  int32_t top = 0;   // first bitmap row, above the baseline
  int32_t width = 0;
  int32_t height = 0;
  size_t offset = 0;  // first coverage byte (or colour pixel) in the cache's store
  bool ready = false;
  bool color = false;
};

// A horizontal band of whole rows: `top` rows below the baseline (negative
// above it), `thickness` rows high. The row right under the glyphs is 0.
struct TextBand {
  int32_t top = 0;
  int32_t thickness = 1;
};

// The style asked for. What the face's file lacks of it is synthesized: bold
// by emboldening the outlines, italic by shearing them.
struct GlyphStyle {
  bool bold = false;
  bool italic = false;
  bool symbolDigits = false;  // 3, 4, 5, 6 are the symbol font's triangles
};

// The glyphs of one face at one pixel size and style, addressed by the face's
// glyph index and each rendered once on first use. Low indices (where a font
// keeps Latin) live in a flat array, the rest in a hash map; the coverage of all
// glyphs shares one store, so a cached lookup never allocates. Colour glyphs
// (bitmap strikes, layered colour) are scaled to the cache's pixel size.
// The cache also carries the HarfBuzz font that shapes text with this face.
class GlyphCache {
 public:
  // Glyph indices with this bit stand for the symbol font's own shape of the
  // code point in the low bits.
  static constexpr uint32_t kSymbolGlyph = 0x80000000u;

  // The face stays owned by the caller and must outlive the cache; a null face
  // (no font installed) gives empty glyphs and nominal metrics.
  GlyphCache(FT_FaceRec_* face, int32_t pixelSize, GlyphStyle style);
  ~GlyphCache();
  GlyphCache(const GlyphCache&) = delete;
  GlyphCache& operator=(const GlyphCache&) = delete;

  const LineMetrics& Metrics() const { return metrics_; }
  const TextBand& Underline() const { return underline_; }
  const TextBand& Strikeout() const { return strikeout_; }

  const Glyph& Get(uint32_t glyphIndex) {
    if (glyphIndex < low_.size()) {
      Glyph& glyph = low_[glyphIndex];
      return glyph.ready ? glyph : load(glyphIndex, glyph);
    }
    Glyph& glyph = others_[glyphIndex];
    return glyph.ready ? glyph : load(glyphIndex, glyph);
  }
  // The face's glyph for a code point; 0 (the missing-glyph shape) when it has none.
  uint32_t GlyphIndex(char32_t codePoint) const;
  bool HasCharacter(char32_t codePoint) const { return GlyphIndex(codePoint) != 0; }
  bool SymbolDigits() const { return symbolDigits_; }
  // The shaping font (nullptr without a face or for a face that is not an
  // OpenType/TrueType file); positions in 26.6 pixels.
  hb_font_t* ShapingFont() const { return hbFont_; }
  // A colour glyph's premultiplied pixels. Valid like CoverageLanes.
  const uint32_t* ColorPixels(const Glyph& glyph) const { return colors_.data() + glyph.offset; }
  // The glyph's coverage with each value repeated four times, once for each
  // byte of a pixel, as 16-bit lanes: the form blending loads directly.
  // Valid until the next Get that renders a new glyph.
  const uint16_t* CoverageLanes(const Glyph& glyph) const {
    return lanes_.data() + glyph.offset * kLanesPerPixel;
  }
  static constexpr size_t kLanesPerPixel = 4;

  // Forgets every rendered glyph (metrics stay).
  void Clear();

 private:
  Glyph& load(uint32_t glyphIndex, Glyph& glyph);
  void appendLanes();
  Glyph renderFromFace(uint32_t glyphIndex);
  bool loadGlyph(uint32_t glyphIndex);
  void appendBitmap(const void* bitmap, Glyph& glyph);
  void appendColor(const void* bitmap, Glyph& glyph);
  void createShapingFont();
  void selectSize();
  void chooseSynthesis(GlyphStyle style);
  void measure();
  void measureBands();

  FT_FaceRec_* face_;
  FT_SizeRec_* size_ = nullptr;
  int32_t pixelSize_;
  bool syntheticBold_ = false;
  bool syntheticItalic_ = false;
  bool symbolDigits_ = false;
  bool colorFace_ = false;
  double colorScale_ = 1.0;  // a bitmap strike's pixels to the asked size
  hb_font_t* hbFont_ = nullptr;
  LineMetrics metrics_;
  TextBand underline_;
  TextBand strikeout_;
  std::vector<Glyph> low_;
  std::unordered_map<uint32_t, Glyph> others_;
  std::vector<uint8_t> coverage_;
  std::vector<uint16_t> lanes_;  // kLanesPerPixel for every coverage byte
  std::vector<uint32_t> colors_;
};

}  // namespace velt
