#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "velt/platform/TextEngine.hpp"

struct FT_FaceRec_;
struct FT_SizeRec_;

namespace velt {

// One rendered glyph: an 8-bit coverage bitmap placed relative to the pen on the
// baseline, and the whole-pixel advance the pen moves on by.
struct Glyph {
  int32_t advance = 0;
  int32_t left = 0;  // first bitmap column, right of the pen
  int32_t top = 0;   // first bitmap row, above the baseline
  int32_t width = 0;
  int32_t height = 0;
  size_t offset = 0;  // first coverage byte in the cache's store
  bool ready = false;
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

// The glyphs of one face at one pixel size and style, each rendered once on
// first use. ASCII lives in a flat array, everything else in a hash map; the
// coverage of all glyphs shares one store, so a cached lookup never allocates.
class GlyphCache {
 public:
  // The face stays owned by the caller and must outlive the cache; a null face
  // (no font installed) gives empty glyphs and nominal metrics.
  GlyphCache(FT_FaceRec_* face, int32_t pixelSize, GlyphStyle style);
  ~GlyphCache();
  GlyphCache(const GlyphCache&) = delete;
  GlyphCache& operator=(const GlyphCache&) = delete;

  const LineMetrics& Metrics() const { return metrics_; }
  const TextBand& Underline() const { return underline_; }
  const TextBand& Strikeout() const { return strikeout_; }

  const Glyph& Get(char32_t codePoint) {
    if (codePoint < ascii_.size()) {
      Glyph& glyph = ascii_[codePoint];
      return glyph.ready ? glyph : load(codePoint, glyph);
    }
    Glyph& glyph = others_[codePoint];
    return glyph.ready ? glyph : load(codePoint, glyph);
  }
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
  Glyph& load(char32_t codePoint, Glyph& glyph);
  void appendLanes();
  Glyph renderFromFace(char32_t codePoint);
  bool loadOutline(char32_t codePoint);
  void appendBitmap(const void* bitmap, Glyph& glyph);
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
  LineMetrics metrics_;
  TextBand underline_;
  TextBand strikeout_;
  std::array<Glyph, 128> ascii_{};
  std::unordered_map<char32_t, Glyph> others_;
  std::vector<uint8_t> coverage_;
  std::vector<uint16_t> lanes_;  // kLanesPerPixel for every coverage byte
};

}  // namespace velt
