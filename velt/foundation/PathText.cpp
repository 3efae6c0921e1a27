#include "velt/foundation/PathText.hpp"

#include "velt/foundation/Utf8Text.hpp"

namespace velt {

namespace {

// Neither separator byte occurs inside a multibyte UTF-8 sequence, so a byte
// search is safe.
constexpr std::string_view kSeparators = "\\/";

}  // namespace

std::string FileNameOfPath(std::string_view Path) {
  const size_t last = Path.find_last_of(kSeparators);
  if (last == std::string_view::npos) return Trim(Path);
  return std::string(Path.substr(last + 1));
}

std::string FolderOfPath(std::string_view Path) {
  const size_t last = Path.find_last_of(kSeparators);
  if (last == std::string_view::npos) return Trim(Path);
  return std::string(Path.substr(0, last + 1));
}

}  // namespace velt
