#pragma once

#include <cstdint>
#include <vector>

#include "velt/platform/FontResolver.hpp"

struct _FcFontSet;
struct _FcCharSet;

namespace velt {

// fontconfig's sorted list of faces for one font description: the faces a
// character the chosen face lacks is looked for in, best first.
class FontFallback {
 public:
  // Takes over a set that FcFontSort returned (nullptr is an empty list).
  explicit FontFallback(_FcFontSet* sorted);
  ~FontFallback();
  FontFallback(const FontFallback&) = delete;
  FontFallback& operator=(const FontFallback&) = delete;

  // The first face of the list that has the character, or nullptr.
  const ResolvedFace* FaceFor(char32_t codePoint) const;
  size_t Size() const { return faces_.size(); }

 private:
  _FcFontSet* fonts_;
  std::vector<ResolvedFace> faces_;
  std::vector<_FcCharSet*> charsets_;  // owned by fonts_
};

}  // namespace velt
