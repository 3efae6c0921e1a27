#pragma once

#include <optional>
#include <span>
#include <string>

namespace velt::tool {

// The command line of `velt run`, after the word "run". Options take their
// value as the next argument or after "=" ("--out=form.png").
struct RunOptions {
  bool Help = false;
  std::string Form;  // the form file
  bool Headless = false;
  std::optional<std::string> Input;  // a script file, or "-" for standard input
  std::optional<std::string> Out;
  std::optional<std::string> Save;
  bool Events = false;

  // Error 5 naming the argument for anything that does not fit the usage
  // (--input without --headless among them).
  static RunOptions Parse(std::span<const std::string> arguments);
};

}  // namespace velt::tool
