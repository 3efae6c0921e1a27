#include "velt/platform/TextEngine.hpp"

#include <ft2build.h>
#include FT_FREETYPE_H

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <memory>
#include <unordered_map>

#include "velt/platform/FontChain.hpp"
#include "velt/platform/FontFallback.hpp"
#include "velt/platform/FontResolver.hpp"
#include "velt/platform/GlyphCache.hpp"
#include "velt/platform/LineShaper.hpp"
#include "velt/platform/SymbolFont.hpp"

namespace velt {

namespace {

constexpr int32_t kRegularWeight = 400;
constexpr int32_t kBoldWeight = 550;  // where Font::Bold starts

struct Surface {
  uint32_t* pixels;
  int32_t width;
  int32_t height;
};

// dst = (colour * coverage + dst * (255 - coverage) + 127) / 255 for each byte
// of each pixel, floor(t / 255) taken as (t + (t >> 8) + 1) >> 8, exact for
// every t these sums reach. Coverage 0 leaves the byte and 255 gives the
// colour, so no pixel needs a branch. Two pixels at a time on 16-bit lanes,
// written with generic vectors: glyph rows are a few pixels long, too short
// for the loop vectoriser's set-up, and no processor's intrinsics are needed.
using PairBytes = uint8_t __attribute__((vector_size(8)));
using PairLanes = uint16_t __attribute__((vector_size(16)));

PairLanes loadPixels(const uint32_t* pixels, size_t bytes) {
  PairBytes loaded{};
  std::memcpy(&loaded, pixels, bytes);
  return __builtin_convertvector(loaded, PairLanes);
}

void storePixels(uint32_t* pixels, PairLanes lanes, size_t bytes) {
  const PairBytes packed = __builtin_convertvector(lanes, PairBytes);
  std::memcpy(pixels, &packed, bytes);
}

PairLanes blendPair(PairLanes dst, PairLanes color, PairLanes c) {
  const PairLanes t = color * c + dst * (255 - c) + 127;
  return (t + (t >> 8) + 1) >> 8;
}

// The coverage of `pixels` pixels from lanes (four per pixel).
PairLanes loadCoverage(const uint16_t* lanes, size_t pixels) {
  PairLanes c{};
  std::memcpy(&c, lanes, pixels * GlyphCache::kLanesPerPixel * sizeof(uint16_t));
  return c;
}

// The text colour in both pixels of a pair.
PairLanes colorLanes(uint32_t rgb) {
  const uint32_t colors[2] = {rgb, rgb};
  return loadPixels(colors, sizeof colors);
}

void blendRow(uint32_t* pixels, const uint16_t* coverage, int64_t count, PairLanes color) {
  constexpr size_t kPair = 2 * sizeof(uint32_t);
  constexpr size_t kStride = GlyphCache::kLanesPerPixel;
  int64_t i = 0;
  for (; i + 2 <= count; i += 2) {
    const PairLanes dst = loadPixels(pixels + i, kPair);
    storePixels(pixels + i, blendPair(dst, color, loadCoverage(coverage + i * kStride, 2)), kPair);
  }
  if (i < count) {
    const PairLanes dst = loadPixels(pixels + i, sizeof(uint32_t));
    storePixels(pixels + i, blendPair(dst, color, loadCoverage(coverage + i * kStride, 1)),
                sizeof(uint32_t));
  }
}

void blitGlyph(const Surface& surface, int64_t left, int64_t top, const Glyph& glyph,
               const uint16_t* coverage, PairLanes color) {
  const int64_t x0 = std::max<int64_t>(left, 0);
  const int64_t x1 = std::min<int64_t>(left + glyph.width, surface.width);
  const int64_t y0 = std::max<int64_t>(top, 0);
  const int64_t y1 = std::min<int64_t>(top + glyph.height, surface.height);
  if (x0 >= x1 || y0 >= y1) return;
  constexpr int64_t kStride = GlyphCache::kLanesPerPixel;
  for (int64_t y = y0; y < y1; ++y)
    blendRow(surface.pixels + y * surface.width + x0,
             coverage + ((y - top) * glyph.width + (x0 - left)) * kStride, x1 - x0, color);
}

// A colour glyph's premultiplied pixels over the image: dst = src + dst * (255 - alpha) / 255.
void blitColor(const Surface& surface, int64_t left, int64_t top, const Glyph& glyph,
               const uint32_t* colors) {
  const int64_t x0 = std::max<int64_t>(left, 0);
  const int64_t x1 = std::min<int64_t>(left + glyph.width, surface.width);
  const int64_t y0 = std::max<int64_t>(top, 0);
  const int64_t y1 = std::min<int64_t>(top + glyph.height, surface.height);
  for (int64_t y = y0; y < y1; ++y) {
    uint32_t* dst = surface.pixels + y * surface.width;
    const uint32_t* src = colors + (y - top) * glyph.width - left;
    for (int64_t x = x0; x < x1; ++x) {
      const uint32_t s = src[x];
      const uint32_t keep = 255 - (s >> 24);
      uint32_t out = 0;
      for (int shift = 0; shift < 24; shift += 8) {
        const uint32_t channel =
            ((s >> shift) & 0xFF) + (((dst[x] >> shift) & 0xFF) * keep + 127) / 255;
        out |= std::min<uint32_t>(channel, 255) << shift;
      }
      dst[x] = out;
    }
  }
}

void fillBand(const Surface& surface, int64_t left, int64_t right, int64_t top, int32_t rows,
              uint32_t rgb) {
  const int64_t x0 = std::max<int64_t>(left, 0);
  const int64_t x1 = std::min<int64_t>(right, surface.width);
  const int64_t y0 = std::max<int64_t>(top, 0);
  const int64_t y1 = std::min<int64_t>(top + rows, surface.height);
  for (int64_t y = y0; y < y1 && x0 < x1; ++y)
    std::fill(surface.pixels + y * surface.width + x0, surface.pixels + y * surface.width + x1,
              rgb);
}

std::string lowerAscii(std::string_view text) {
  std::string lower(text);
  for (char& c : lower)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return lower;
}

// Points at 96 DPI to a whole em in pixels: 8.25 pt is 11 px.
int32_t pixelSizeOf(const Font& font) {
  const double pixels = static_cast<double>(font.Size()) * 96.0 / 72.0;
  return std::max<int32_t>(static_cast<int32_t>(std::lround(pixels)), 1);
}

int32_t weightOf(const Font& font) {
  return font.Weight() == 0 ? kRegularWeight : font.Weight();
}

}  // namespace

// Lines are looked up by their text without building a key string.
struct TextHash {
  using is_transparent = void;
  size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
};
using LineCache = std::unordered_map<std::string, ShapedLine, TextHash, std::equal_to<>>;

// Shaped lines kept per font before the cache starts over, and the longest
// line kept: the cache stays small whatever the captions are.
constexpr size_t kMaxCachedLines = 2048;
constexpr size_t kMaxCachedLineBytes = 16384;

struct TextEngine::Impl {
  // A font description resolved to its faces and its shaped lines, one cache
  // for each paragraph direction rule.
  struct Resolved {
    GlyphCache* cache = nullptr;
    std::string family;
    std::unique_ptr<FontChain> chain;
    LineCache lines[2];
  };
  // The last few fonts seen, compared field by field so the usual call finds
  // its cache without building a key.
  struct Recent {
    std::string name;
    float size = 0;
    int16_t weight = -1;
    bool italic = false;
    Resolved* resolved = nullptr;
  };

  Impl() { FT_Init_FreeType(&library); }
  ~Impl() {
    lookups.clear();
    caches.clear();  // their sizes belong to the faces
    for (auto& [key, face] : faces)
      if (face) FT_Done_Face(face);
    if (library) FT_Done_FreeType(library);
  }

  Resolved& resolve(const Font& font) {
    for (Recent& r : recent)
      if (r.resolved && r.size == font.Size() && r.weight == font.Weight() &&
          r.italic == font.Italic() && r.name == font.Name())
        return *r.resolved;
    Resolved& resolved = lookup(font);
    Recent& slot = recent[nextRecent];
    nextRecent = (nextRecent + 1) % recent.size();
    slot = {font.Name(), font.Size(), font.Weight(), font.Italic(), &resolved};
    return resolved;
  }

  Resolved& lookup(const Font& font) {
    const int32_t pixels = pixelSizeOf(font);
    const int32_t weight = weightOf(font);
    const std::string key = lowerAscii(font.Name()) + '\n' + std::to_string(pixels) + '\n' +
                            std::to_string(weight) + (font.Italic() ? "i" : "r");
    auto found = lookups.find(key);
    if (found != lookups.end()) return *found->second;

    const bool symbol = SymbolFont::IsSymbolFont(font.Name());
    const std::string family = symbol ? FontResolver::kDefaultFamily : font.Name();
    const ResolvedFace face = resolver.Resolve(family, weight, font.Italic(), pixels);
    GlyphStyle style{weight >= kBoldWeight, font.Italic(), symbol};
    auto resolved = std::make_unique<Resolved>();
    resolved->cache = &cacheFor(face, pixels, style);
    resolved->family = symbol ? SymbolFont::kName : face.family;
    const GlyphStyle fallbackStyle{style.bold, style.italic, false};
    const bool italic = font.Italic();
    resolved->chain = std::make_unique<FontChain>(
        resolved->cache,
        [this, family, weight, italic, pixels](bool emoji) {
          return &fallbackFor(emoji ? "emoji" : family, weight, italic, pixels);
        },
        [this, pixels, fallbackStyle](const ResolvedFace& fallback) {
          return &cacheFor(fallback, pixels, fallbackStyle);
        });
    return *lookups.emplace(key, std::move(resolved)).first->second;
  }

  const FontFallback& fallbackFor(const std::string& family, int32_t weight, bool italic,
                                  int32_t pixels) {
    const std::string key = lowerAscii(family) + '\n' + std::to_string(weight) +
                            (italic ? "i" : "r") + std::to_string(pixels);
    auto found = fallbacks.find(key);
    if (found != fallbacks.end()) return *found->second;
    return *fallbacks.emplace(key, resolver.Fallback(family, weight, italic, pixels)).first->second;
  }

  GlyphCache& cacheFor(const ResolvedFace& face, int32_t pixels, GlyphStyle style) {
    const std::string key = face.file + '\n' + std::to_string(face.index) + '\n' +
                            std::to_string(pixels) + (style.bold ? "b" : "") +
                            (style.italic ? "i" : "") + (style.symbolDigits ? "s" : "");
    auto found = caches.find(key);
    if (found != caches.end()) return *found->second;
    auto cache = std::make_unique<GlyphCache>(faceFor(face), pixels, style);
    return *caches.emplace(key, std::move(cache)).first->second;
  }

  FT_Face faceFor(const ResolvedFace& face) {
    if (face.file.empty() || !library) return nullptr;
    const std::string key = face.file + '\n' + std::to_string(face.index);
    auto found = faces.find(key);
    if (found != faces.end()) return found->second;
    FT_Face opened = nullptr;
    if (FT_New_Face(library, face.file.c_str(), face.index, &opened) != 0) opened = nullptr;
    if (opened) FT_Select_Charmap(opened, FT_ENCODING_UNICODE);
    faces.emplace(key, opened);
    return opened;
  }

  // A caption is usually measured and then drawn: the line asked for last is
  // compared before the cache is hashed.
  const ShapedLine& shape(Resolved& resolved, std::string_view line, bool rightToLeft) {
    if (last.line && last.resolved == &resolved && last.rightToLeft == rightToLeft &&
        *last.text == line)
      return *last.line;
    if (line.size() > kMaxCachedLineBytes) {  // laid out each time, never kept
      longText.assign(line);
      longLine = shaper.Shape(*resolved.chain, line, rightToLeft);
      last = {&resolved, rightToLeft, &longText, &longLine};
      return longLine;
    }
    LineCache& lines = resolved.lines[rightToLeft ? 1 : 0];
    auto found = lines.find(line);
    if (found == lines.end()) {
      if (lines.size() >= kMaxCachedLines) lines.clear();
      ShapedLine shaped = shaper.Shape(*resolved.chain, line, rightToLeft);
      found = lines.emplace(std::string(line), std::move(shaped)).first;
    }
    last = {&resolved, rightToLeft, &found->first, &found->second};
    return found->second;
  }
  const ShapedLine& shape(const Font& font, std::string_view line, bool rightToLeft) {
    return shape(resolve(font), line, rightToLeft);
  }

  FT_Library library = nullptr;
  FontResolver resolver;
  LineShaper shaper;
  std::unordered_map<std::string, FT_Face> faces;
  std::unordered_map<std::string, std::unique_ptr<GlyphCache>> caches;
  std::unordered_map<std::string, std::unique_ptr<FontFallback>> fallbacks;
  std::unordered_map<std::string, std::unique_ptr<Resolved>> lookups;
  std::array<Recent, 8> recent;
  size_t nextRecent = 0;
  std::string longText;
  ShapedLine longLine;
  struct LastLine {
    Resolved* resolved = nullptr;
    bool rightToLeft = false;
    const std::string* text = nullptr;
    const ShapedLine* line = nullptr;
  } last;
};

TextEngine& TextEngine::Instance() {
  static TextEngine engine;
  return engine;
}

TextEngine::TextEngine() : impl_(new Impl) {}

TextEngine::~TextEngine() {
  delete impl_;
}

LineMetrics TextEngine::Metrics(const Font& font) {
  return impl_->resolve(font).cache->Metrics();
}

int32_t TextEngine::LineWidth(const Font& font, std::string_view line, bool rightToLeft) {
  return impl_->shape(font, line, rightToLeft).width;
}

const ShapedLine& TextEngine::Shape(const Font& font, std::string_view line, bool rightToLeft) {
  return impl_->shape(font, line, rightToLeft);
}

void TextEngine::DrawLine(uint32_t* pixels, int32_t width, int32_t height, int32_t x, int32_t y,
                          uint32_t rgb, const Font& font, std::string_view line, bool rightToLeft) {
  if (!pixels || width <= 0 || height <= 0) return;
  const Surface surface{pixels, width, height};
  rgb &= 0xFFFFFFu;
  Impl::Resolved& resolved = impl_->resolve(font);
  const ShapedLine& shaped = impl_->shape(resolved, line, rightToLeft);
  const GlyphCache& primary = *resolved.cache;
  const int64_t baseline = static_cast<int64_t>(y) + primary.Metrics().ascent;

  const PairLanes color = colorLanes(rgb);
  for (const PlacedGlyph& placed : shaped.glyphs) {
    const Glyph& glyph = placed.cache->Get(placed.index);
    if (glyph.width <= 0) continue;
    const int64_t left = int64_t{x} + placed.x + glyph.left;
    const int64_t top = baseline - placed.y - glyph.top;
    if (glyph.color)
      blitColor(surface, left, top, glyph, placed.cache->ColorPixels(glyph));
    else
      blitGlyph(surface, left, top, glyph, placed.cache->CoverageLanes(glyph), color);
  }

  const int64_t end = int64_t{x} + shaped.width;
  if (font.Underline())
    fillBand(surface, x, end, baseline + primary.Underline().top, primary.Underline().thickness,
             rgb);
  if (font.Strikethrough())
    fillBand(surface, x, end, baseline + primary.Strikeout().top, primary.Strikeout().thickness,
             rgb);
}

std::string TextEngine::ResolvedFamily(const Font& font) {
  return impl_->resolve(font).family;
}

std::vector<std::string> TextEngine::ScreenFonts() {
  return impl_->resolver.Families();
}

void TextEngine::ClearCache() {
  for (auto& [key, cache] : impl_->caches)
    cache->Clear();
  ClearShapedLines();
}

void TextEngine::ClearShapedLines() {
  impl_->last = {};
  for (auto& [key, resolved] : impl_->lookups)
    for (LineCache& lines : resolved->lines)
      lines.clear();
}

}  // namespace velt
