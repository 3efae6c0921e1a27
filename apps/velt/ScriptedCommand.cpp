#include "apps/velt/ScriptedCommand.hpp"

#include <exception>
#include <new>

#include "apps/velt/ScriptCommand.hpp"
#include "apps/velt/ScriptError.hpp"
#include "apps/velt/ScriptParser.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/RegularFile.hpp"

namespace velt::tool {

namespace {

constexpr const char* kStandardInputName = "standard input";
// Far beyond any script a person writes; a bound for what is read at all.
constexpr uint64_t kMaxScriptBytes = uint64_t{16} << 20;

std::string readBounded(std::istream& in) {
  std::string text;
  char buffer[64 * 1024];
  while (in.read(buffer, sizeof buffer) || in.gcount() > 0) {
    text.append(buffer, static_cast<size_t>(in.gcount()));
    if (text.size() > kMaxScriptBytes)
      throw Error(errPathFileAccess, std::string("the input script on ") + kStandardInputName +
                                         " is larger than the limit of " +
                                         std::to_string(kMaxScriptBytes) + " bytes");
  }
  return text;
}

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
  } catch (const std::bad_alloc&) {
    // Input too big for this machine is still the input's fault.
    return fail("out of memory", kBadInput);
  } catch (const std::exception& error) {
    return fail(std::string("unexpected failure: ") + error.what(), kFailure);
  } catch (...) {
    return fail("unexpected failure", kFailure);
  }
}

std::vector<ScriptCommand> ScriptedCommand::readScript(const std::string& input,
                                                       std::string& source) {
  std::string text;
  if (input == "-") {
    source = kStandardInputName;
    text = readBounded(in_);
  } else {
    source = input;
    try {
      text = RegularFile::ReadText(input, kMaxScriptBytes);
    } catch (const Error& error) {
      throw Error(error.Number(), "the input script " + error.Description());
    }
  }
  return ScriptParser::Parse(text, source);
}

int ScriptedCommand::fail(const std::string& message, int status) {
  err_ << "velt " << name_ << ": " << message << std::endl;
  return status;
}

}  // namespace velt::tool
