#include "velt/platform/GlyphCache.hpp"

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_SIZES_H
#include FT_SYNTHESIS_H
#include FT_TRUETYPE_TABLES_H

#include <hb-ft.h>
#include <hb.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "velt/platform/SymbolFont.hpp"

namespace velt {

namespace {

// Light hinting: vertical-only, so shapes keep their design widths while stems
// and the baseline snap to whole pixels.
constexpr FT_Int32 kLoadFlags = FT_LOAD_TARGET_LIGHT;

int32_t ceilPixels(FT_Pos value26) {
  return static_cast<int32_t>((value26 + 63) >> 6);
}
int32_t roundPixels(FT_Pos value26) {
  return static_cast<int32_t>((value26 + 32) >> 6);
}

// Font units to 26.6 pixels at the active size.
FT_Pos scaled(FT_Face face, FT_Long units) {
  return FT_MulFix(units, face->size->metrics.y_scale);
}

constexpr int32_t kBoldWeight = 550;  // where Font::Bold starts

const TT_OS2* os2Table(FT_Face face) {
  const auto* os2 = static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
  return os2 && os2->version != 0xFFFF ? os2 : nullptr;
}

// The weight the file was designed with, on the 100..900 scale.
int32_t faceWeight(FT_Face face) {
  const TT_OS2* os2 = os2Table(face);
  if (os2 && os2->usWeightClass >= 1 && os2->usWeightClass <= 1000) return os2->usWeightClass;
  return (face->style_flags & FT_STYLE_FLAG_BOLD) ? 700 : 400;
}

// Glyph indices below this live in the flat array.
constexpr size_t kLowGlyphs = 1024;

uint8_t scaleGray(uint8_t value, int numGrays) {
  if (numGrays == 256 || numGrays < 2) return value;
  return static_cast<uint8_t>(value * 255 / (numGrays - 1));
}

}  // namespace

GlyphCache::GlyphCache(FT_FaceRec_* face, int32_t pixelSize, GlyphStyle style)
    : face_(face),
      pixelSize_(std::max(pixelSize, 1)),
      symbolDigits_(style.symbolDigits),
      low_(kLowGlyphs) {
  selectSize();
  chooseSynthesis(style);
  measure();
  measureBands();
  createShapingFont();
}

GlyphCache::~GlyphCache() {
  if (hbFont_) hb_font_destroy(hbFont_);
  if (size_) FT_Done_Size(size_);
}

void GlyphCache::Clear() {
  for (Glyph& glyph : low_)
    glyph = Glyph{};
  others_.clear();
  coverage_.clear();
  lanes_.clear();
  colors_.clear();
}

uint32_t GlyphCache::GlyphIndex(char32_t codePoint) const {
  return face_ ? FT_Get_Char_Index(face_, codePoint) : 0;
}

// HarfBuzz reads the face's tables and works at the cache's size in 26.6
// pixels, unhinted; the drawing keeps the hinted advances and adds only what
// shaping changed (kerning, marks set on their base).
void GlyphCache::createShapingFont() {
  if (!face_ || !FT_IS_SFNT(face_)) return;  // HarfBuzz reads OpenType tables
  hb_face_t* hbFace = hb_ft_face_create_referenced(face_);
  hbFont_ = hb_font_create(hbFace);
  hb_face_destroy(hbFace);
  const int scale = pixelSize_ * 64;
  hb_font_set_scale(hbFont_, scale, scale);
  hb_font_set_ppem(hbFont_, static_cast<unsigned>(pixelSize_), static_cast<unsigned>(pixelSize_));
}

void GlyphCache::selectSize() {
  if (!face_ || FT_New_Size(face_, &size_) != 0) {
    face_ = nullptr;
    size_ = nullptr;
    return;
  }
  FT_Activate_Size(size_);
  colorFace_ = FT_HAS_COLOR(face_);
  if (FT_IS_SCALABLE(face_)) {
    FT_Set_Pixel_Sizes(face_, 0, static_cast<FT_UInt>(pixelSize_));
  } else if (face_->num_fixed_sizes > 0) {
    // A bitmap font: the strike nearest to the asked size. Colour strikes are
    // few and large (emoji come at 109 pixels), so they are scaled to the size.
    int best = 0;
    for (int i = 1; i < face_->num_fixed_sizes; ++i)
      if (std::abs(face_->available_sizes[i].height - pixelSize_) <
          std::abs(face_->available_sizes[best].height - pixelSize_))
        best = i;
    FT_Select_Size(face_, best);
    const FT_Pos strikePpem = face_->available_sizes[best].y_ppem;
    if (colorFace_ && strikePpem > 0) colorScale_ = pixelSize_ * 64.0 / strikePpem;
  }
}

void GlyphCache::chooseSynthesis(GlyphStyle style) {
  if (!face_) return;
  syntheticBold_ = style.bold && faceWeight(face_) < kBoldWeight;
  syntheticItalic_ = style.italic && !(face_->style_flags & FT_STYLE_FLAG_ITALIC);
}

void GlyphCache::measure() {
  if (!face_ || (colorFace_ && !FT_IS_SCALABLE(face_))) {
    metrics_.ascent = (pixelSize_ * 4 + 4) / 5;
    metrics_.descent = (pixelSize_ + 4) / 5;
    metrics_.lineHeight = metrics_.ascent + metrics_.descent;
    return;
  }
  const FT_Size_Metrics& m = size_->metrics;
  metrics_.ascent = ceilPixels(m.ascender);
  metrics_.descent = ceilPixels(-m.descender);
  metrics_.lineHeight = std::max(ceilPixels(m.height), metrics_.ascent + metrics_.descent);
}

void GlyphCache::measureBands() {
  const int32_t descent = metrics_.descent;
  if (!face_ || (colorFace_ && !FT_IS_SCALABLE(face_))) {
    underline_ = {std::min(1, std::max(descent - 1, 0)), 1};
    strikeout_ = {-std::max(metrics_.ascent / 3, 1), 1};
    return;
  }
  FT_Activate_Size(size_);
  // FreeType gives the underline's centre; the band starts half a stroke above.
  const FT_Pos thickness26 = std::max<FT_Pos>(scaled(face_, face_->underline_thickness), 64);
  const int32_t thickness = std::max(roundPixels(thickness26), 1);
  int32_t top = roundPixels(-scaled(face_, face_->underline_position) - thickness26 / 2);
  // Keep it off the glyphs and inside the line where the descent allows.
  top = std::max(top, 1);
  top = std::min(top, std::max(descent - thickness, 0));
  underline_ = {top, thickness};

  const TT_OS2* os2 = os2Table(face_);
  if (os2 && os2->yStrikeoutSize > 0) {
    const int32_t strokeRows = std::max(roundPixels(scaled(face_, os2->yStrikeoutSize)), 1);
    // The table gives the top of the stroke above the baseline.
    strikeout_ = {-std::max(roundPixels(scaled(face_, os2->yStrikeoutPosition)), strokeRows),
                  strokeRows};
  } else {
    strikeout_ = {-std::max(roundPixels(pixelSize_ * 64 / 4 + thickness26 / 2), 1), thickness};
  }
}

Glyph& GlyphCache::load(uint32_t glyphIndex, Glyph& glyph) {
  if (glyphIndex & kSymbolGlyph)
    glyph = SymbolFont::Render(glyphIndex & ~kSymbolGlyph, pixelSize_, coverage_);
  else
    glyph = renderFromFace(glyphIndex);
  appendLanes();
  glyph.ready = true;
  return glyph;
}

void GlyphCache::appendLanes() {
  lanes_.reserve(coverage_.size() * kLanesPerPixel);
  for (size_t i = lanes_.size() / kLanesPerPixel; i < coverage_.size(); ++i)
    lanes_.insert(lanes_.end(), kLanesPerPixel, coverage_[i]);
}

bool GlyphCache::loadGlyph(uint32_t glyphIndex) {
  const FT_Int32 flags = colorFace_ ? (kLoadFlags | FT_LOAD_COLOR) : kLoadFlags;
  if (FT_Load_Glyph(face_, glyphIndex, flags) == 0) return true;
  // A broken glyph draws as the face's missing-glyph shape.
  return glyphIndex != 0 && FT_Load_Glyph(face_, 0, flags) == 0;
}

Glyph GlyphCache::renderFromFace(uint32_t glyphIndex) {
  Glyph glyph;
  glyph.offset = coverage_.size();
  if (!face_) return glyph;
  FT_Activate_Size(size_);
  if (!loadGlyph(glyphIndex)) return glyph;

  FT_GlyphSlot slot = face_->glyph;
  if (syntheticItalic_ && slot->format == FT_GLYPH_FORMAT_OUTLINE) FT_GlyphSlot_Oblique(slot);
  if (syntheticBold_ && !colorFace_) FT_GlyphSlot_Embolden(slot);
  glyph.advance = roundPixels(static_cast<FT_Pos>(slot->advance.x * colorScale_));
  if (slot->format != FT_GLYPH_FORMAT_BITMAP && FT_Render_Glyph(slot, FT_RENDER_MODE_NORMAL) != 0)
    return glyph;
  if (slot->bitmap.pixel_mode == FT_PIXEL_MODE_BGRA) {
    appendColor(slot, glyph);
    return glyph;
  }
  glyph.left = slot->bitmap_left;
  glyph.top = slot->bitmap_top;
  appendBitmap(&slot->bitmap, glyph);
  return glyph;
}

// Scales the slot's premultiplied BGRA bitmap by colorScale_, each target pixel
// the average of the source pixels its square covers (whole source pixels, so
// a downscale by ten averages ten by ten pixels).
void GlyphCache::appendColor(const void* source, Glyph& glyph) {
  const auto* slot = static_cast<const FT_GlyphSlotRec*>(source);
  const FT_Bitmap& bitmap = slot->bitmap;
  if (bitmap.width == 0 || bitmap.rows == 0) return;
  const double scale = colorScale_;
  const auto srcW = static_cast<int32_t>(bitmap.width);
  const auto srcH = static_cast<int32_t>(bitmap.rows);
  const int32_t width = std::max(1, static_cast<int32_t>(std::lround(srcW * scale)));
  const int32_t height = std::max(1, static_cast<int32_t>(std::lround(srcH * scale)));
  const unsigned char* base =
      bitmap.pitch >= 0 ? bitmap.buffer : bitmap.buffer - bitmap.pitch * (srcH - 1);
  glyph.color = true;
  glyph.offset = colors_.size();
  glyph.width = width;
  glyph.height = height;
  glyph.left = static_cast<int32_t>(std::lround(slot->bitmap_left * scale));
  glyph.top = static_cast<int32_t>(std::lround(slot->bitmap_top * scale));
  colors_.reserve(colors_.size() + static_cast<size_t>(width) * height);
  for (int32_t y = 0; y < height; ++y) {
    const int32_t sy0 = y * srcH / height;
    const int32_t sy1 = std::max(sy0 + 1, (y + 1) * srcH / height);
    for (int32_t x = 0; x < width; ++x) {
      const int32_t sx0 = x * srcW / width;
      const int32_t sx1 = std::max(sx0 + 1, (x + 1) * srcW / width);
      uint32_t sum[4] = {0, 0, 0, 0};
      for (int32_t sy = sy0; sy < sy1; ++sy) {
        const unsigned char* px = base + static_cast<ptrdiff_t>(sy) * bitmap.pitch + sx0 * 4;
        for (int32_t sx = sx0; sx < sx1; ++sx, px += 4)
          for (int c = 0; c < 4; ++c)
            sum[c] += px[c];
      }
      const uint32_t n = static_cast<uint32_t>((sy1 - sy0) * (sx1 - sx0));
      const uint32_t b = (sum[0] + n / 2) / n, g = (sum[1] + n / 2) / n;
      const uint32_t r = (sum[2] + n / 2) / n, a = (sum[3] + n / 2) / n;
      colors_.push_back(a << 24 | r << 16 | g << 8 | b);
    }
  }
}

void GlyphCache::appendBitmap(const void* source, Glyph& glyph) {
  const FT_Bitmap& bitmap = *static_cast<const FT_Bitmap*>(source);
  const bool gray = bitmap.pixel_mode == FT_PIXEL_MODE_GRAY;
  const bool mono = bitmap.pixel_mode == FT_PIXEL_MODE_MONO;
  if ((!gray && !mono) || bitmap.width == 0 || bitmap.rows == 0) return;

  const auto width = static_cast<int32_t>(bitmap.width);
  const auto rows = static_cast<int32_t>(bitmap.rows);
  // A negative pitch means the rows are stored bottom-up.
  const unsigned char* row =
      bitmap.pitch >= 0 ? bitmap.buffer : bitmap.buffer - bitmap.pitch * (rows - 1);
  coverage_.reserve(coverage_.size() + static_cast<size_t>(width) * rows);
  for (int32_t y = 0; y < rows; ++y, row += bitmap.pitch) {
    for (int32_t x = 0; x < width; ++x) {
      if (gray)
        coverage_.push_back(scaleGray(row[x], bitmap.num_grays));
      else
        coverage_.push_back((row[x >> 3] & (0x80 >> (x & 7))) ? 255 : 0);
    }
  }
  glyph.width = width;
  glyph.height = rows;
}

}  // namespace velt
