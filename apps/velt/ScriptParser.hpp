#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "apps/velt/ScriptCommand.hpp"

namespace velt::tool {

// Reads an input script: one command a line, "#" starts a comment, blank lines
// are skipped, command words match in any letter case. Numbers are decimal or
// hexadecimal ("&H" or "0x"). The argument of text, prop and shot runs to the
// end of the line (or to a "#"), surrounding blanks dropped; written in JSON
// double quotes it may hold "#", blanks at its ends and escapes ("\t", "\u00e4").
//
// Limits: coordinates within +-1000000, buttons 1, 2 or 4, key codes 0..255,
// shift 0..7, character codes 0..65535 (above 32767 they wrap to the negative
// 16-bit value, as an Integer holding them does), waits 0..3600000 ms.
class ScriptParser {
 public:
  static constexpr int32_t kMaxCoordinate = 1000000;
  static constexpr int64_t kMaxWait = 3600000;

  // Every command of the text; the first bad line is a ScriptError (number 5)
  // naming the source, the line's number and its text.
  static std::vector<ScriptCommand> Parse(std::string_view text, const std::string& source);
  // One line; nothing for a blank or comment line.
  static std::optional<ScriptCommand> ParseLine(std::string_view line, int32_t number,
                                                const std::string& source);
};

}  // namespace velt::tool
