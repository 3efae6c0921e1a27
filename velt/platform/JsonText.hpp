#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

namespace velt {

// JSON read from outside: nesting deeper than kMaxJsonDepth is refused while
// parsing (a deep document would overflow the stack of every routine that
// walks it later: copying, comparing, writing), and so is a key that appears
// twice in one object (the second would silently win). Errors are velt::Error
// 13 whose message starts with the JSON pointer of the place ("/" for the
// document): "/controls/3: the key \"width\" appears twice". Memory running out
// while the document is built is error 7 with the pointer of the place reached.
constexpr size_t kMaxJsonDepth = 256;
nlohmann::ordered_json ParseJsonText(std::string_view text);

// "/controls/2/properties/BackColor" from its parts ("~" and "/" escaped);
// a part longer than a message should quote is cut short, and a pointer of
// more than 16 parts shows its first 12 and last 4 with its depth.
std::string JsonPointerText(const std::vector<std::string>& parts);

// A value for an error message: the text in quotes, cut after a short prefix
// (at a character boundary) with "..." and its length in bytes, so a huge
// value never makes a huge message.
std::string QuotedPrefix(std::string_view text, size_t maxBytes = 60);

}  // namespace velt
