#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct _FcConfig;

namespace velt {

class FontFallback;

// The face file chosen for a font description.
struct ResolvedFace {
  std::string file;
  int32_t index = 0;   // face index inside the file
  std::string family;  // the family name as the file spells it
};

// Finds font files through fontconfig. A family fontconfig does not know (or
// only replaces by its general defaults) resolves to the default sans-serif,
// so a nonsense name and "sans-serif" give the same face.
class FontResolver {
 public:
  static constexpr const char* kDefaultFamily = "sans-serif";

  FontResolver();  // loads the desktop's font configuration
  ~FontResolver();
  FontResolver(const FontResolver&) = delete;
  FontResolver& operator=(const FontResolver&) = delete;

  // weight is on the 0..1000 scale of Font::Weight (400 regular, 700 bold). The
  // face found may still lack the style (a family without a bold file).
  ResolvedFace Resolve(const std::string& family, int32_t weight, bool italic,
                       double pixelSize) const;
  // fontconfig's sorted list of faces for the description, best first, each
  // adding characters the ones before it lack.
  std::unique_ptr<FontFallback> Fallback(const std::string& family, int32_t weight, bool italic,
                                         double pixelSize) const;
  // Every family name of the installed fonts, sorted, without duplicates.
  std::vector<std::string> Families() const;

 private:
  // A configuration of our own rather than fontconfig's process-wide one, so
  // that it is released with the resolver.
  _FcConfig* config_;
};

}  // namespace velt
