#include "apps/velt/ScriptError.hpp"

#include <utility>

#include "apps/velt/EventLine.hpp"

namespace velt::tool {

ScriptError::ScriptError(int32_t number, const std::string& problem, std::string source,
                         int32_t line, std::string lineText)
    : Error(number, problem),
      source_(std::move(source)),
      line_(line),
      lineText_(std::move(lineText)),
      message_(source_ + " line " + std::to_string(line_) + " " + EventLine::Quote(lineText_) +
               ": " + problem) {}

}  // namespace velt::tool
