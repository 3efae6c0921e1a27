#include "velt/platform/TextEngine.hpp"

#include "velt/platform/Utf8.hpp"

#include <ft2build.h>
#include FT_FREETYPE_H

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <memory>
#include <unordered_map>

#include "velt/platform/FontResolver.hpp"
#include "velt/platform/GlyphCache.hpp"
#include "velt/platform/SymbolFont.hpp"
#include "velt/platform/Utf8.hpp"

namespace velt {

namespace {

constexpr int32_t kRegularWeight = 400;
constexpr int32_t kBoldWeight = 550;  // where Font::Bold starts

// Reads code points from UTF-8. Each maximal ill-formed subsequence becomes one
// U+FFFD, so broken text still draws something in place of every bad byte run.
class Utf8Reader {
 public:
  explicit Utf8Reader(std::string_view text) : text_(text) {}

  bool Next(char32_t& codePoint) {
    if (pos_ >= text_.size()) return false;
    const auto lead = static_cast<unsigned char>(text_[pos_]);
    if (lead < 0x80) {  // captions are mostly ASCII: no call for them
      codePoint = lead;
      ++pos_;
      return true;
    }
    const Utf8::Decoded decoded = Utf8::DecodeAt(text_, pos_);
    codePoint = decoded.codePoint;
    pos_ += decoded.length;
    return true;
  }

 private:
  std::string_view text_;
  size_t pos_ = 0;
};

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

struct TextEngine::Impl {
  // A font description resolved to its glyph cache.
  struct Resolved {
    GlyphCache* cache = nullptr;
    std::string family;
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
    if (found != lookups.end()) return found->second;

    const bool symbol = SymbolFont::IsSymbolFont(font.Name());
    const std::string family = symbol ? FontResolver::kDefaultFamily : font.Name();
    const ResolvedFace face = resolver.Resolve(family, weight, font.Italic(), pixels);
    GlyphStyle style{weight >= kBoldWeight, font.Italic(), symbol};
    Resolved resolved{&cacheFor(face, pixels, style), symbol ? SymbolFont::kName : face.family};
    return lookups.emplace(key, std::move(resolved)).first->second;
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

  FT_Library library = nullptr;
  FontResolver resolver;
  std::unordered_map<std::string, FT_Face> faces;
  std::unordered_map<std::string, std::unique_ptr<GlyphCache>> caches;
  std::unordered_map<std::string, Resolved> lookups;
  std::array<Recent, 8> recent;
  size_t nextRecent = 0;
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

int32_t TextEngine::LineWidth(const Font& font, std::string_view line) {
  GlyphCache& cache = *impl_->resolve(font).cache;
  Utf8Reader reader(line);
  int64_t width = 0;
  char32_t codePoint = 0;
  while (reader.Next(codePoint))
    width += cache.Get(codePoint).advance;
  return static_cast<int32_t>(std::clamp<int64_t>(width, INT32_MIN, INT32_MAX));
}

void TextEngine::DrawLine(uint32_t* pixels, int32_t width, int32_t height, int32_t x, int32_t y,
                          uint32_t rgb, const Font& font, std::string_view line) {
  if (!pixels || width <= 0 || height <= 0) return;
  const Surface surface{pixels, width, height};
  rgb &= 0xFFFFFFu;
  GlyphCache& cache = *impl_->resolve(font).cache;
  const int64_t baseline = static_cast<int64_t>(y) + cache.Metrics().ascent;

  const PairLanes color = colorLanes(rgb);
  Utf8Reader reader(line);
  int64_t pen = x;
  char32_t codePoint = 0;
  while (reader.Next(codePoint)) {
    const Glyph& glyph = cache.Get(codePoint);
    if (glyph.width > 0)
      blitGlyph(surface, pen + glyph.left, baseline - glyph.top, glyph, cache.CoverageLanes(glyph),
                color);
    pen += glyph.advance;
  }

  if (font.Underline())
    fillBand(surface, x, pen, baseline + cache.Underline().top, cache.Underline().thickness, rgb);
  if (font.Strikethrough())
    fillBand(surface, x, pen, baseline + cache.Strikeout().top, cache.Strikeout().thickness, rgb);
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
}

}  // namespace velt
