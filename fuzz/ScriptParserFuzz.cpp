// Input scripts (velt snap --input, velt run --input): any text either parses
// into commands within the documented limits or is refused with a ScriptError
// naming the line.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "apps/velt/ScriptCommand.hpp"
#include "apps/velt/ScriptError.hpp"
#include "apps/velt/ScriptParser.hpp"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  try {
    using velt::tool::ScriptParser;
    for (const velt::tool::ScriptCommand& command : ScriptParser::Parse(text, "fuzz")) {
      if (command.Milliseconds < 0 || command.Milliseconds > ScriptParser::kMaxWait) std::abort();
      if (std::abs(command.X) > ScriptParser::kMaxCoordinate ||
          std::abs(command.Y) > ScriptParser::kMaxCoordinate)
        std::abort();
      if (command.Line < 1) std::abort();
    }
  } catch (const velt::tool::ScriptError& error) {
    // The message names the source and the line, and stays short however long the line.
    if (error.Source() != "fuzz" || error.Line() < 1) std::abort();
    if (std::string_view(error.what()).size() > 1000) std::abort();
  }
  return 0;
}
