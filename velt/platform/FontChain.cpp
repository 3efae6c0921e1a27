#include "velt/platform/FontChain.hpp"

#include "velt/platform/FontFallback.hpp"
#include "velt/platform/GlyphCache.hpp"

namespace velt {

FontChain::FontChain(GlyphCache* primary, ListOf lists, CacheOf caches)
    : primary_(primary), lists_(std::move(lists)), caches_(std::move(caches)) {}

GlyphCache* FontChain::FaceFor(char32_t codePoint, bool emoji) {
  if (codePoint < ascii_.size() && !emoji) {
    GlyphCache*& slot = ascii_[codePoint];
    if (!slot) slot = choose(codePoint, false);
    return slot;
  }
  auto& chosen = chosen_[emoji ? 1 : 0];
  auto found = chosen.find(codePoint);
  if (found != chosen.end()) return found->second;
  GlyphCache* face = choose(codePoint, emoji);
  chosen.emplace(codePoint, face);
  return face;
}

GlyphCache* FontChain::choose(char32_t codePoint, bool emoji) {
  if (emoji)
    if (const FontFallback* list = lists_(true))
      if (const ResolvedFace* face = list->FaceFor(codePoint))
        if (GlyphCache* cache = caches_(*face); cache && cache->HasCharacter(codePoint))
          return cache;
  if (primary_->HasCharacter(codePoint)) return primary_;
  if (const FontFallback* list = lists_(false))
    if (const ResolvedFace* face = list->FaceFor(codePoint))
      if (GlyphCache* cache = caches_(*face); cache && cache->HasCharacter(codePoint)) return cache;
  return primary_;
}

}  // namespace velt
