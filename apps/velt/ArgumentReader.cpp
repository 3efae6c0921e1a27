#include "apps/velt/ArgumentReader.hpp"

#include <utility>

#include "velt/platform/Error.hpp"

namespace velt::tool {

ArgumentReader::ArgumentReader(std::span<const std::string> arguments, std::string command)
    : arguments_(arguments), command_(std::move(command)) {}

bool ArgumentReader::Next() {
  if (index_ >= arguments_.size()) return false;
  const std::string& argument = arguments_[index_++];
  const size_t equals = argument.find('=');
  if (argument.rfind("--", 0) == 0 && equals != std::string::npos) {
    word_ = argument.substr(0, equals);
    inlineValue_ = argument.substr(equals + 1);
  } else {
    word_ = argument;
    inlineValue_.reset();
  }
  return true;
}

std::string ArgumentReader::Value() {
  if (inlineValue_) return *inlineValue_;
  if (index_ >= arguments_.size()) Problem(word_ + " needs a value");
  return arguments_[index_++];
}

void ArgumentReader::NoValue() const {
  if (inlineValue_) Problem(word_ + " takes no value");
}

void ArgumentReader::Problem(const std::string& text) const {
  Problem(text, command_);
}

void ArgumentReader::Problem(const std::string& text, const std::string& command) {
  throw Error(errInvalidProcedureCall, text + " (see velt " + command + " --help)");
}

void ArgumentReader::ValueOnce(std::optional<std::string>& target) {
  if (target) Problem(word_ + " given twice");
  target = Value();
}

void ArgumentReader::Flag(bool& target) {
  NoValue();
  target = true;
}

}  // namespace velt::tool
