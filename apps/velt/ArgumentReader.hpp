#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>

namespace velt::tool {

// Walks the arguments of one command of the tool, splitting "--name=value"
// into the option and its value; an option's value may also be the next
// argument. Problems are error 5 ending in "(see velt COMMAND --help)".
class ArgumentReader {
 public:
  ArgumentReader(std::span<const std::string> arguments, std::string command);

  // Moves to the next argument; false at the end.
  bool Next();
  const std::string& Word() const { return word_; }
  bool IsOption() const { return word_.size() > 1 && word_[0] == '-'; }
  // The option's value; error 5 when there is none.
  std::string Value();
  // Error 5 when the option was given a value with "=".
  void NoValue() const;

  // Error 5 with the text and the hint to the command's help.
  [[noreturn]] void Problem(const std::string& text) const;
  [[noreturn]] static void Problem(const std::string& text, const std::string& command);

  // Takes the option's value unless it was given before.
  void ValueOnce(std::optional<std::string>& target);
  // Sets a flag option (no value allowed).
  void Flag(bool& target);

 private:
  std::span<const std::string> arguments_;
  std::string command_;
  size_t index_ = 0;
  std::string word_;
  std::optional<std::string> inlineValue_;
};

}  // namespace velt::tool
