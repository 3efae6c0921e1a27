#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace velt {

// A file name pattern as the classic directory enumeration matches it:
// - "*" matches any run of characters, also none;
// - "?" matches exactly one character;
// - a "." followed only by "*"s up to the end also matches the end of the
//   name, so "*.*" matches every name, also one without a dot, and
//   "readme.*" matches "readme";
// - every other character matches itself without regard to case (Unicode
//   simple case folding: "A" matches "a", "Ä" matches "ä");
// - an empty pattern matches every name, as a bare folder lists all of it.
// Characters are code points; a byte that is not part of valid UTF-8 counts
// as one character and matches only the same byte (or a wildcard), so names
// in other encodings still match. Matching takes time proportional to the
// product of both lengths at worst, never more.
class WildcardPattern {
 public:
  explicit WildcardPattern(std::string_view pattern);

  bool Matches(std::string_view name) const;
  // True for patterns that match any name ("", "*", "*.*", "**").
  bool MatchesEverything() const { return matchesEverything_; }
  const std::string& Text() const { return text_; }

 private:
  bool matchesAscii(std::string_view name) const;
  bool matchesCharacters(std::string_view name) const;

  std::string text_;
  // Case-folded code points, raw bytes and the wildcard tokens.
  std::vector<uint32_t> tokens_;
  bool matchesEverything_ = false;
  // Every token is an ASCII character or a wildcard: names that are plain
  // ASCII can then be matched byte by byte.
  bool asciiTokens_ = true;
};

}  // namespace velt
