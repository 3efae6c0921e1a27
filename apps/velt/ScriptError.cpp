#include "apps/velt/ScriptError.hpp"

#include <utility>

#include "apps/velt/EventLine.hpp"

namespace velt::tool {

namespace {

// A line is quoted by its first 80 bytes at most, so a huge line makes no huge message.
std::string shownLine(const std::string& text) {
  constexpr size_t kMaxShown = 80;
  if (text.size() <= kMaxShown) return EventLine::Quote(text);
  size_t cut = kMaxShown;
  while (cut > 0 && (static_cast<unsigned char>(text[cut]) & 0xC0) == 0x80)
    --cut;
  return EventLine::Quote(text.substr(0, cut)) + "... (" + std::to_string(text.size()) + " bytes)";
}

}  // namespace

ScriptError::ScriptError(int32_t number, const std::string& problem, std::string source,
                         int32_t line, std::string lineText)
    : Error(number, problem),
      source_(std::move(source)),
      line_(line),
      lineText_(std::move(lineText)),
      message_(source_ + " line " + std::to_string(line_) + " " + shownLine(lineText_) + ": " +
               problem) {}

}  // namespace velt::tool
