#include "apps/velt/ScriptedCommand.hpp"

#include <exception>
#include <fstream>
#include <sstream>

#include "apps/velt/ScriptCommand.hpp"
#include "apps/velt/ScriptError.hpp"
#include "apps/velt/ScriptParser.hpp"
#include "velt/platform/Error.hpp"

namespace velt::tool {

namespace {

constexpr const char* kStandardInputName = "standard input";

}  // namespace

ScriptedCommand::ScriptedCommand(const char* name, std::ostream& out, std::ostream& err,
                                 std::istream& in)
    : name_(name), out_(out), err_(err), in_(in) {}

int ScriptedCommand::Run(std::span<const std::string> arguments) {
  try {
    return execute(arguments);
  } catch (const ScriptError& error) {
    return fail(error.what(), kBadInput);
  } catch (const Error& error) {
    return fail(error.Description(), kBadInput);
  } catch (const std::exception& error) {
    return fail(std::string("unexpected failure: ") + error.what(), kFailure);
  } catch (...) {
    return fail("unexpected failure", kFailure);
  }
}

std::vector<ScriptCommand> ScriptedCommand::readScript(const std::string& input,
                                                       std::string& source) {
  std::ostringstream text;
  if (input == "-") {
    source = kStandardInputName;
    text << in_.rdbuf();
  } else {
    source = input;
    std::ifstream file(input, std::ios::binary);
    if (!file) throw Error(errFileNotFound, "cannot open the input script \"" + input + "\"");
    text << file.rdbuf();
  }
  return ScriptParser::Parse(text.str(), source);
}

int ScriptedCommand::fail(const std::string& message, int status) {
  err_ << "velt " << name_ << ": " << message << std::endl;
  return status;
}

}  // namespace velt::tool
