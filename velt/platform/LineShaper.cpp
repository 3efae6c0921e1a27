#include "velt/platform/LineShaper.hpp"

#include <hb.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <cmath>

#include "velt/platform/FontChain.hpp"
#include "velt/platform/GlyphCache.hpp"
#include "velt/platform/SymbolFont.hpp"
#include "velt/platform/Utf8.hpp"

namespace velt {

namespace {

constexpr char32_t kZeroWidthJoiner = 0x200D;
constexpr char32_t kTextPresentation = 0xFE0E;
constexpr char32_t kEmojiPresentation = 0xFE0F;

bool isRegionalIndicator(char32_t c) {
  return c >= 0x1F1E6 && c <= 0x1F1FF;
}

// Whether c continues the grapheme cluster that prev belongs to: marks,
// joiners and variation selectors, an emoji after a joiner, the second of
// a pair of regional indicators. Nothing below the combining marks does.
bool extendsCluster(char32_t prev, char32_t c, int32_t& indicators) {
  if (c < 0x300) {
    indicators = 0;
    return false;
  }
  if (isRegionalIndicator(c)) {
    const bool pairs = isRegionalIndicator(prev) && indicators % 2 == 1;
    indicators = pairs ? indicators + 1 : 1;
    return pairs;
  }
  indicators = 0;
  if (prev == kZeroWidthJoiner &&
      u_hasBinaryProperty(static_cast<UChar32>(c), UCHAR_EXTENDED_PICTOGRAPHIC))
    return true;
  const auto kind = u_getIntPropertyValue(static_cast<UChar32>(c), UCHAR_GRAPHEME_CLUSTER_BREAK);
  return kind == U_GCB_EXTEND || kind == U_GCB_SPACING_MARK || kind == U_GCB_ZWJ;
}

bool showsAsEmoji(const char32_t* first, const char32_t* last) {
  for (const char32_t* c = first; c != last; ++c) {
    if (*c == kEmojiPresentation) return true;
    if (*c == kTextPresentation) return false;
  }
  if (*first < 0x2000) return false;
  return u_hasBinaryProperty(static_cast<UChar32>(*first), UCHAR_EMOJI_PRESENTATION) ||
         isRegionalIndicator(*first);
}

bool isRealScript(hb_script_t script) {
  return script != HB_SCRIPT_COMMON && script != HB_SCRIPT_INHERITED && script != HB_SCRIPT_UNKNOWN;
}

int32_t roundPixels(hb_position_t value26) {
  return static_cast<int32_t>(std::lround(value26 / 64.0));
}

}  // namespace

LineShaper::LineShaper() : buffer_(hb_buffer_create()) {}

LineShaper::~LineShaper() {
  hb_buffer_destroy(buffer_);
}

ShapedLine LineShaper::Shape(FontChain& fonts, std::string_view line, bool rightToLeft) {
  decode(line);
  ShapedLine shaped;
  shaped.length = static_cast<int32_t>(text_.size());
  if (text_.empty()) return shaped;
  chooseFaces(fonts);
  int32_t pen = 0;
  for (const BidiRun& run : bidi_.Runs(text_, rightToLeft)) {
    splitRun(run);
    if (run.rightToLeft) std::reverse(items_.begin(), items_.end());
    for (const Item& item : items_)
      shapeItem(item, run.rightToLeft, shaped, pen);
  }
  shaped.width = pen;
  return shaped;
}

void LineShaper::decode(std::string_view line) {
  text_.clear();
  size_t pos = 0;
  while (pos < line.size()) {
    const auto lead = static_cast<unsigned char>(line[pos]);
    if (lead < 0x80) {
      text_.push_back(lead);
      ++pos;
      continue;
    }
    const Utf8::Decoded decoded = Utf8::DecodeAt(line, pos);
    text_.push_back(decoded.codePoint);
    pos += decoded.length;
  }
}

void LineShaper::chooseFaces(FontChain& fonts) {
  faces_.assign(text_.size(), nullptr);
  int32_t indicators = 0;
  size_t start = 0;
  while (start < text_.size()) {
    size_t end = start + 1;
    while (end < text_.size() && extendsCluster(text_[end - 1], text_[end], indicators))
      ++end;
    const bool emoji = text_[start] >= 0x300 || end - start > 1
                           ? showsAsEmoji(text_.data() + start, text_.data() + end)
                           : false;
    std::fill(faces_.begin() + static_cast<ptrdiff_t>(start),
              faces_.begin() + static_cast<ptrdiff_t>(end), fonts.FaceFor(text_[start], emoji));
    start = end;
  }
}

// Pieces of one direction run in logical order, a new one where the face
// changes or where a character of another script follows (characters common
// to all scripts and marks go with what they stand in).
void LineShaper::splitRun(const BidiRun& run) {
  items_.clear();
  hb_unicode_funcs_t* unicode = hb_unicode_funcs_get_default();
  const int32_t end = run.start + run.length;
  Item item{run.start, run.start, faces_[static_cast<size_t>(run.start)], HB_SCRIPT_COMMON};
  for (int32_t p = run.start; p < end; ++p) {
    GlyphCache* face = faces_[static_cast<size_t>(p)];
    const hb_script_t script = hb_unicode_script(unicode, text_[static_cast<size_t>(p)]);
    const bool real = isRealScript(script);
    const bool newScript =
        real && isRealScript(static_cast<hb_script_t>(item.script)) && script != item.script;
    if (p > item.start && (face != item.face || newScript)) {
      item.end = p;
      items_.push_back(item);
      item = {p, p, face, HB_SCRIPT_COMMON};
    }
    if (real && !isRealScript(static_cast<hb_script_t>(item.script))) item.script = script;
  }
  item.end = end;
  items_.push_back(item);
}

void LineShaper::shapeItem(const Item& item, bool rightToLeft, ShapedLine& line, int32_t& pen) {
  hb_font_t* font = item.face->ShapingFont();
  if (!font) {
    placeUnshaped(item, rightToLeft, line, pen);
    return;
  }
  hb_buffer_clear_contents(buffer_);
  hb_buffer_add_codepoints(buffer_, reinterpret_cast<const uint32_t*>(text_.data()),
                           static_cast<int>(text_.size()), static_cast<unsigned>(item.start),
                           item.end - item.start);
  hb_buffer_set_direction(buffer_, rightToLeft ? HB_DIRECTION_RTL : HB_DIRECTION_LTR);
  hb_buffer_set_script(buffer_, static_cast<hb_script_t>(item.script));
  hb_buffer_set_language(buffer_, hb_language_get_default());
  hb_shape(font, buffer_, nullptr, 0);

  unsigned count = 0;
  const hb_glyph_info_t* infos = hb_buffer_get_glyph_infos(buffer_, &count);
  const hb_glyph_position_t* positions = hb_buffer_get_glyph_positions(buffer_, &count);
  clusterStarts_.clear();
  for (unsigned i = 0; i < count; ++i)
    clusterStarts_.push_back(infos[i].cluster);
  std::sort(clusterStarts_.begin(), clusterStarts_.end());
  const auto clusterEnd = [&](uint32_t start) {
    auto next = std::upper_bound(clusterStarts_.begin(), clusterStarts_.end(), start);
    return next == clusterStarts_.end() ? item.end : static_cast<int32_t>(*next);
  };

  const bool symbol = item.face->SymbolDigits();
  for (unsigned i = 0; i < count; ++i) {
    const uint32_t cluster = infos[i].cluster;
    uint32_t index = infos[i].codepoint;
    const char32_t source = text_[cluster];
    if (symbol && SymbolFont::HasGlyph(source)) index = GlyphCache::kSymbolGlyph | source;
    const int32_t hinted = item.face->Get(index).advance;
    const hb_position_t shapedChange =
        positions[i].x_advance - hb_font_get_glyph_h_advance(font, infos[i].codepoint);
    const int32_t advance = hinted + roundPixels(shapedChange);
    line.glyphs.push_back({item.face, index, pen + roundPixels(positions[i].x_offset),
                           roundPixels(positions[i].y_offset)});
    if (line.clusters.empty() || i == 0 || infos[i - 1].cluster != cluster)
      line.clusters.push_back(
          {static_cast<int32_t>(cluster), clusterEnd(cluster), pen, pen, rightToLeft});
    pen += advance;
    line.clusters.back().right = pen;
  }
}

// A face HarfBuzz cannot read (a bitmap or Type 1 font, or none installed at
// all) draws glyph by glyph from its character map, each character a cluster.
void LineShaper::placeUnshaped(const Item& item, bool rightToLeft, ShapedLine& line, int32_t& pen) {
  for (int32_t i = 0; i < item.end - item.start; ++i) {
    const int32_t p = rightToLeft ? item.end - 1 - i : item.start + i;
    const char32_t c = text_[static_cast<size_t>(p)];
    const uint32_t index = item.face->SymbolDigits() && SymbolFont::HasGlyph(c)
                               ? GlyphCache::kSymbolGlyph | c
                               : item.face->GlyphIndex(c);
    line.glyphs.push_back({item.face, index, pen, 0});
    line.clusters.push_back({p, p + 1, pen, pen, rightToLeft});
    pen += item.face->Get(index).advance;
    line.clusters.back().right = pen;
  }
}

}  // namespace velt
