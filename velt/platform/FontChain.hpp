#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <unordered_map>

#include "velt/platform/FontResolver.hpp"

namespace velt {

class GlyphCache;
class FontFallback;

// The faces one font draws with: its own face first, then for each character
// that face lacks the best face of fontconfig's sorted fallback list that has
// it. Emoji shown as emoji look in the emoji list first. The choice is made
// once per character and kept; a character no face has draws from the font's
// own face (its missing-glyph box).
class FontChain {
 public:
  // Opens (or finds) the glyph cache of a fallback face at the chain's size.
  using CacheOf = std::function<GlyphCache*(const ResolvedFace&)>;
  // The sorted list for text (emoji false) or for emoji, made on first use.
  using ListOf = std::function<const FontFallback*(bool emoji)>;

  FontChain(GlyphCache* primary, ListOf lists, CacheOf caches);

  GlyphCache* Primary() const { return primary_; }
  GlyphCache* FaceFor(char32_t codePoint, bool emoji);

 private:
  GlyphCache* choose(char32_t codePoint, bool emoji);

  GlyphCache* primary_;
  ListOf lists_;
  CacheOf caches_;
  std::array<GlyphCache*, 128> ascii_{};
  std::unordered_map<char32_t, GlyphCache*> chosen_[2];
};

}  // namespace velt
