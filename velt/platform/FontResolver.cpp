#include "velt/platform/FontResolver.hpp"

#include <fontconfig/fontconfig.h>

#include <algorithm>
#include <array>
#include <memory>
#include <string_view>

#include "velt/platform/FontFallback.hpp"

namespace velt {

namespace {

struct PatternDeleter {
  void operator()(FcPattern* p) const { FcPatternDestroy(p); }
};
using PatternPtr = std::unique_ptr<FcPattern, PatternDeleter>;

struct FontSetDeleter {
  void operator()(FcFontSet* s) const { FcFontSetDestroy(s); }
};
struct ObjectSetDeleter {
  void operator()(FcObjectSet* s) const { FcObjectSetDestroy(s); }
};

// Names that stand for a kind of face rather than one family: fontconfig's
// choice for them is always the right answer.
constexpr std::array<std::string_view, 11> kGenericFamilies = {
    "sans-serif", "sans",    "serif", "monospace", "mono",         "system-ui",
    "cursive",    "fantasy", "emoji", "math",      "ui-sans-serif"};

const FcChar8* fcString(const std::string& s) {
  return reinterpret_cast<const FcChar8*>(s.c_str());
}

bool sameName(const char* a, const std::string& b) {
  return FcStrCmpIgnoreCase(reinterpret_cast<const FcChar8*>(a), fcString(b)) == 0;
}

bool isGeneric(const std::string& family) {
  return std::any_of(kGenericFamilies.begin(), kGenericFamilies.end(),
                     [&](std::string_view g) { return sameName(std::string(g).c_str(), family); });
}

PatternPtr requestPattern(FcConfig* config, const std::string& family, int32_t weight, bool italic,
                          double pixelSize) {
  PatternPtr pattern(FcPatternCreate());
  FcPatternAddString(pattern.get(), FC_FAMILY, fcString(family));
  FcPatternAddDouble(pattern.get(), FC_WEIGHT, FcWeightFromOpenTypeDouble(weight));
  FcPatternAddInteger(pattern.get(), FC_SLANT, italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
  FcPatternAddDouble(pattern.get(), FC_PIXEL_SIZE, pixelSize);
  FcConfigSubstitute(config, pattern.get(), FcMatchPattern);
  FcDefaultSubstitute(pattern.get());
  return pattern;
}

// The families the request binds firmly after the configuration ran: the name
// itself and the configuration's metric-compatible aliases (Arial for
// Liberation Sans), but not the weak defaults appended for every request.
std::vector<std::string> firmFamilies(FcPattern* pattern) {
  std::vector<std::string> names;
  FcPatternIter it;
  FcPatternIterStart(pattern, &it);
  if (!FcPatternFindIter(pattern, &it, FC_FAMILY)) return names;
  const int count = FcPatternIterValueCount(pattern, &it);
  for (int i = 0; i < count; ++i) {
    FcValue value;
    FcValueBinding binding;
    if (FcPatternIterGetValue(pattern, &it, i, &value, &binding) != FcResultMatch) continue;
    if (value.type == FcTypeString && binding != FcValueBindingWeak)
      names.emplace_back(reinterpret_cast<const char*>(value.u.s));
  }
  return names;
}

std::vector<std::string> familiesOf(const FcPattern* font) {
  std::vector<std::string> names;
  FcChar8* name = nullptr;
  for (int i = 0; FcPatternGetString(font, FC_FAMILY, i, &name) == FcResultMatch; ++i)
    names.emplace_back(reinterpret_cast<const char*>(name));
  return names;
}

bool isFamilyRequested(const FcPattern* font, const std::vector<std::string>& firm) {
  for (const std::string& have : familiesOf(font))
    for (const std::string& want : firm)
      if (sameName(have.c_str(), want)) return true;
  return false;
}

// The font's own spelling of the requested family when it has that name among
// its names (a condensed face lists the plain family first), else its first.
std::string displayFamily(const FcPattern* font, const std::string& requested) {
  const std::vector<std::string> names = familiesOf(font);
  if (names.empty()) return {};
  for (const std::string& name : names)
    if (sameName(name.c_str(), requested)) return name;
  return names.front();
}

ResolvedFace describe(const FcPattern* font, const std::string& requested) {
  ResolvedFace face;
  FcChar8* file = nullptr;
  if (FcPatternGetString(font, FC_FILE, 0, &file) == FcResultMatch)
    face.file = reinterpret_cast<const char*>(file);
  int index = 0;
  if (FcPatternGetInteger(font, FC_INDEX, 0, &index) == FcResultMatch) face.index = index;
  face.family = displayFamily(font, requested);
  return face;
}

PatternPtr match(FcConfig* config, FcPattern* request) {
  FcResult result = FcResultNoMatch;
  return PatternPtr(FcFontMatch(config, request, &result));
}

}  // namespace

FontResolver::FontResolver() : config_(FcInitLoadConfigAndFonts()) {}

FontResolver::~FontResolver() {
  if (config_) FcConfigDestroy(config_);
}

ResolvedFace FontResolver::Resolve(const std::string& family, int32_t weight, bool italic,
                                   double pixelSize) const {
  const std::string wanted = family.empty() ? std::string(kDefaultFamily) : family;
  PatternPtr request = requestPattern(config_, wanted, weight, italic, pixelSize);
  PatternPtr font = match(config_, request.get());
  if (font && (isGeneric(wanted) || isFamilyRequested(font.get(), firmFamilies(request.get()))))
    return describe(font.get(), wanted);

  request = requestPattern(config_, kDefaultFamily, weight, italic, pixelSize);
  font = match(config_, request.get());
  if (!font) return {};  // no font installed at all: the renderer draws nothing
  return describe(font.get(), kDefaultFamily);
}

std::unique_ptr<FontFallback> FontResolver::Fallback(const std::string& family, int32_t weight,
                                                     bool italic, double pixelSize) const {
  const std::string wanted = family.empty() ? std::string(kDefaultFamily) : family;
  PatternPtr request = requestPattern(config_, wanted, weight, italic, pixelSize);
  FcResult result = FcResultNoMatch;
  return std::make_unique<FontFallback>(
      FcFontSort(config_, request.get(), FcTrue, nullptr, &result));
}

std::vector<std::string> FontResolver::Families() const {
  PatternPtr all(FcPatternCreate());
  std::unique_ptr<FcObjectSet, ObjectSetDeleter> objects(FcObjectSetBuild(FC_FAMILY, nullptr));
  std::unique_ptr<FcFontSet, FontSetDeleter> fonts(FcFontList(config_, all.get(), objects.get()));
  std::vector<std::string> names;
  if (!fonts) return names;
  for (int i = 0; i < fonts->nfont; ++i)
    for (std::string& name : familiesOf(fonts->fonts[i]))
      names.push_back(std::move(name));
  std::sort(names.begin(), names.end());
  names.erase(std::unique(names.begin(), names.end()), names.end());
  return names;
}

}  // namespace velt
