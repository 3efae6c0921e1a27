#include "velt/platform/FontFallback.hpp"

#include <fontconfig/fontconfig.h>

namespace velt {

FontFallback::FontFallback(_FcFontSet* sorted) : fonts_(sorted) {
  if (!fonts_) return;
  for (int i = 0; i < fonts_->nfont; ++i) {
    const FcPattern* font = fonts_->fonts[i];
    FcChar8* file = nullptr;
    FcCharSet* charset = nullptr;
    if (FcPatternGetString(font, FC_FILE, 0, &file) != FcResultMatch ||
        FcPatternGetCharSet(font, FC_CHARSET, 0, &charset) != FcResultMatch)
      continue;
    ResolvedFace face;
    face.file = reinterpret_cast<const char*>(file);
    int index = 0;
    if (FcPatternGetInteger(font, FC_INDEX, 0, &index) == FcResultMatch) face.index = index;
    FcChar8* family = nullptr;
    if (FcPatternGetString(font, FC_FAMILY, 0, &family) == FcResultMatch)
      face.family = reinterpret_cast<const char*>(family);
    faces_.push_back(std::move(face));
    charsets_.push_back(charset);
  }
}

FontFallback::~FontFallback() {
  if (fonts_) FcFontSetDestroy(fonts_);
}

const ResolvedFace* FontFallback::FaceFor(char32_t codePoint) const {
  for (size_t i = 0; i < faces_.size(); ++i)
    if (FcCharSetHasChar(charsets_[i], codePoint)) return &faces_[i];
  return nullptr;
}

}  // namespace velt
