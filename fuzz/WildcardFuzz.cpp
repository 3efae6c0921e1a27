// Wildcard patterns come from users and scripts: any bytes as pattern and as
// name must match without crashing, in bounded time, and agree with the
// rules. The first byte splits the rest into pattern and name. Checked:
// - ASCII patterns and names against the rules written as a table
//   (pattern suffix x name suffix);
// - any bytes: ASCII letter case never matters, a pattern without wildcards
//   matches itself, and patterns that match everything do.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "velt/platform/WildcardPattern.hpp"

namespace {

char foldAscii(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

std::string upperAscii(std::string_view text) {
  std::string upper(text);
  for (char& c : upper)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return upper;
}

bool isAscii(std::string_view text) {
  for (const char c : text)
    if (static_cast<unsigned char>(c) >= 0x80) return false;
  return true;
}

bool onlyStarsFrom(std::string_view pattern, size_t at) {
  return at < pattern.size() && pattern.find_first_not_of('*', at) == std::string_view::npos;
}

// matches[i][j]: pattern from i matches name from j.
bool referenceMatch(std::string_view pattern, std::string_view name) {
  if (pattern.empty()) return true;
  const size_t p = pattern.size();
  const size_t n = name.size();
  std::vector<char> matches((p + 1) * (n + 1), 0);
  auto at = [&](size_t i, size_t j) -> char& { return matches[i * (n + 1) + j]; };
  at(p, n) = 1;
  for (size_t i = p; i-- > 0;) {
    for (size_t j = n + 1; j-- > 0;) {
      const char c = pattern[i];
      bool result;
      if (c == '*') {
        result = at(i + 1, j) || (j < n && at(i, j + 1));
      } else if (c == '.' && onlyStarsFrom(pattern, i + 1)) {
        result = j == n ? at(i + 1, j) : name[j] == '.' && at(i + 1, j + 1);
      } else if (j == n) {
        result = false;
      } else {
        result = (c == '?' || foldAscii(c) == foldAscii(name[j])) && at(i + 1, j + 1);
      }
      at(i, j) = result ? 1 : 0;
    }
  }
  return at(0, 0) != 0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const size_t split = std::min<size_t>(data[0], size - 1);
  const std::string_view rest(reinterpret_cast<const char*>(data + 1), size - 1);
  const std::string_view patternText = rest.substr(0, split);
  const std::string_view name = rest.substr(split);

  const velt::WildcardPattern pattern(patternText);
  const bool matched = pattern.Matches(name);

  if (pattern.Matches(upperAscii(name)) != matched) std::abort();
  if (pattern.MatchesEverything() && !matched) std::abort();
  if (patternText.find_first_of("*?") == std::string_view::npos && !pattern.Matches(patternText))
    std::abort();
  if (isAscii(patternText) && isAscii(name) && patternText.size() <= 256 && name.size() <= 256 &&
      referenceMatch(patternText, name) != matched)
    std::abort();
  return 0;
}
