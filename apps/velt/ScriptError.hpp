#pragma once

#include <cstdint>
#include <string>

#include "velt/platform/Error.hpp"

namespace velt::tool {

// A script line that cannot be read, or that failed while it ran: the error
// with the line's number and text. what() reads
// `SOURCE line N "TEXT": problem`.
class ScriptError : public Error {
 public:
  ScriptError(int32_t number, const std::string& problem, std::string source, int32_t line,
              std::string lineText);

  const std::string& Source() const noexcept { return source_; }
  int32_t Line() const noexcept { return line_; }
  const std::string& LineText() const noexcept { return lineText_; }
  const char* what() const noexcept override { return message_.c_str(); }

 private:
  std::string source_;
  int32_t line_;
  std::string lineText_;
  std::string message_;
};

}  // namespace velt::tool
