#include "velt/platform/WildcardPattern.hpp"

#include <unicode/uchar.h>

#include <algorithm>

namespace velt {

namespace {

// Tokens above every code point: raw bytes first, then the wildcards.
constexpr uint32_t kRawByte = 0x110000;
constexpr uint32_t kAnyRun = 0x200000;
constexpr uint32_t kAnyOne = 0x200001;
constexpr uint32_t kDotOrEnd = 0x200002;

bool isContinuation(unsigned char byte) {
  return (byte & 0xC0) == 0x80;
}

// The code point starting at text[at], advancing at past it; a byte that does
// not start a well-formed sequence (overlong, surrogate, beyond U+10FFFF,
// truncated) is returned on its own as a raw byte token.
uint32_t decodeCharacter(std::string_view text, size_t& at) {
  const auto lead = static_cast<unsigned char>(text[at]);
  if (lead < 0x80) {
    ++at;
    return lead;
  }
  size_t length = 0;
  uint32_t value = 0;
  uint32_t smallest = 0;
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2, value = lead & 0x1F, smallest = 0x80;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3, value = lead & 0x0F, smallest = 0x800;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4, value = lead & 0x07, smallest = 0x10000;
  }
  if (length == 0 || text.size() - at < length) {
    ++at;
    return kRawByte + lead;
  }
  for (size_t i = 1; i < length; ++i) {
    const auto next = static_cast<unsigned char>(text[at + i]);
    if (!isContinuation(next)) {
      ++at;
      return kRawByte + lead;
    }
    value = (value << 6) | (next & 0x3F);
  }
  if (value < smallest || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) {
    ++at;
    return kRawByte + lead;
  }
  at += length;
  return value;
}

uint32_t foldAscii(uint32_t c) {
  return c - 'A' < 26u ? c + ('a' - 'A') : c;
}

uint32_t foldCharacter(uint32_t c) {
  if (c < 0x80) return foldAscii(c);
  if (c >= kRawByte) return c;
  return static_cast<uint32_t>(u_foldCase(static_cast<UChar32>(c), U_FOLD_CASE_DEFAULT));
}

bool isAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

// Whether only "*"s follow position at (and at least one does).
bool onlyStarsFollow(std::string_view pattern, size_t at) {
  return at < pattern.size() && pattern.find_first_not_of('*', at) == std::string_view::npos;
}

// The classic single-backtrack match: a "*" remembers where it started, and
// on a mismatch it takes one more character and the rest is tried again.
// Remembering only the last "*" is enough because what lies between two "*"s
// is best matched as early as possible. next(at) reads the folded character
// at at and advances at.
template <typename ReadCharacter>
bool matchTokens(const std::vector<uint32_t>& tokens, size_t nameSize, ReadCharacter next) {
  constexpr size_t kNoStar = static_cast<size_t>(-1);
  size_t token = 0;
  size_t at = 0;
  size_t starToken = kNoStar;
  size_t starAt = 0;
  while (true) {
    if (token < tokens.size()) {
      const uint32_t wanted = tokens[token];
      if (wanted == kAnyRun) {
        starToken = ++token;
        starAt = at;
        continue;
      }
      if (at < nameSize) {
        size_t after = at;
        const uint32_t c = next(after);
        if (wanted == c || wanted == kAnyOne || (wanted == kDotOrEnd && c == '.')) {
          ++token;
          at = after;
          continue;
        }
      } else if (wanted == kDotOrEnd) {
        ++token;
        continue;
      }
    } else if (at == nameSize) {
      return true;
    }
    if (starToken == kNoStar || starAt >= nameSize) return false;
    next(starAt);
    at = starAt;
    token = starToken;
  }
}

}  // namespace

WildcardPattern::WildcardPattern(std::string_view pattern) : text_(pattern) {
  tokens_.reserve(pattern.size());
  for (size_t at = 0; at < pattern.size();) {
    const char c = pattern[at];
    if (c == '*') {
      ++at;
      // A run of stars is one star.
      if (tokens_.empty() || tokens_.back() != kAnyRun) tokens_.push_back(kAnyRun);
    } else if (c == '?') {
      ++at;
      tokens_.push_back(kAnyOne);
    } else if (c == '.' && onlyStarsFollow(pattern, at + 1)) {
      ++at;
      tokens_.push_back(kDotOrEnd);
    } else {
      const uint32_t folded = foldCharacter(decodeCharacter(pattern, at));
      if (folded >= 0x80 && folded < kAnyRun) asciiTokens_ = false;
      tokens_.push_back(folded);
    }
  }
  const bool onlyWildRuns = std::all_of(tokens_.begin(), tokens_.end(), [](uint32_t token) {
    return token == kAnyRun || token == kDotOrEnd;
  });
  matchesEverything_ = tokens_.empty() || (onlyWildRuns && tokens_.front() == kAnyRun);
}

bool WildcardPattern::Matches(std::string_view name) const {
  if (matchesEverything_) return true;
  if (asciiTokens_ && isAscii(name)) return matchesAscii(name);
  return matchesCharacters(name);
}

bool WildcardPattern::matchesAscii(std::string_view name) const {
  return matchTokens(tokens_, name.size(), [name](size_t& at) {
    return foldAscii(static_cast<unsigned char>(name[at++]));
  });
}

bool WildcardPattern::matchesCharacters(std::string_view name) const {
  return matchTokens(tokens_, name.size(),
                     [name](size_t& at) { return foldCharacter(decodeCharacter(name, at)); });
}

}  // namespace velt
