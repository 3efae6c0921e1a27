#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "velt/platform/BidiLine.hpp"
#include "velt/platform/ShapedLine.hpp"

struct hb_buffer_t;

namespace velt {

class FontChain;
class GlyphCache;

// Lays out one line of UTF-8 text: each grapheme cluster gets the face of the
// font chain that has it, the line is reordered into runs of one direction
// (BidiLine), each run is split where the face or the script changes, and each
// piece is shaped by HarfBuzz (kerning, joining, marks on their bases,
// ligatures). Advances are the hinted whole-pixel ones of the glyph cache plus
// what shaping changed, so a line without kerning keeps the pixel positions of
// glyph-by-glyph drawing.
class LineShaper {
 public:
  LineShaper();
  ~LineShaper();
  LineShaper(const LineShaper&) = delete;
  LineShaper& operator=(const LineShaper&) = delete;

  ShapedLine Shape(FontChain& fonts, std::string_view line, bool rightToLeft);

 private:
  struct Item {
    int32_t start;
    int32_t end;
    GlyphCache* face;
    uint32_t script;
  };
  void decode(std::string_view line);
  void chooseFaces(FontChain& fonts);
  void splitRun(const BidiRun& run);
  void shapeItem(const Item& item, bool rightToLeft, ShapedLine& line, int32_t& pen);
  void placeUnshaped(const Item& item, bool rightToLeft, ShapedLine& line, int32_t& pen);

  hb_buffer_t* buffer_;
  BidiLine bidi_;
  std::vector<char32_t> text_;
  std::vector<GlyphCache*> faces_;  // per code point
  std::vector<Item> items_;
  std::vector<uint32_t> clusterStarts_;
};

}  // namespace velt
