#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace velt {

// The one UTF-8 decoder of the library. Only well-formed sequences decode: no
// overlong forms, no surrogates, nothing above U+10FFFF.
class Utf8 {
 public:
  static constexpr char32_t kReplacement = 0xFFFD;

  struct Decoded {
    char32_t codePoint;  // kReplacement when not valid
    size_t length;       // bytes of the sequence, or of the maximal ill-formed
                         // subsequence when not valid; at least 1
    bool valid;
  };

  // The character starting at text[at]; at must be inside the text.
  static Decoded DecodeAt(std::string_view text, size_t at);
  static bool IsValid(std::string_view text);
  static void Append(std::string& out, char32_t codePoint);
};

}  // namespace velt
