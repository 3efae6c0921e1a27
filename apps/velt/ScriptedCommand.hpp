#pragma once

#include <istream>
#include <ostream>
#include <span>
#include <string>
#include <vector>

namespace velt::tool {

struct ScriptCommand;

// What the commands that play input scripts (`velt run`, `velt snap`) share:
// their streams and exit statuses, reading a script, and reporting what their
// work throws on err after "velt NAME: ".
class ScriptedCommand {
 public:
  static constexpr int kOk = 0;
  static constexpr int kFailure = 1;
  static constexpr int kBadInput = 2;

  virtual ~ScriptedCommand() = default;
  ScriptedCommand(const ScriptedCommand&) = delete;
  ScriptedCommand& operator=(const ScriptedCommand&) = delete;

  // The arguments after the command's name. A bad script line and any
  // velt::Error are the user's mistakes (kBadInput); anything else is
  // unexpected (kFailure).
  int Run(std::span<const std::string> arguments);

 protected:
  ScriptedCommand(const char* name, std::ostream& out, std::ostream& err, std::istream& in);

  // Reads the arguments and does the work; returns the exit status.
  virtual int execute(std::span<const std::string> arguments) = 0;

  // The script in the file `input`, or on standard input for "-"; `source`
  // receives the name its messages use.
  std::vector<ScriptCommand> readScript(const std::string& input, std::string& source);
  int fail(const std::string& message, int status);
  std::ostream& out() { return out_; }

 private:
  const char* name_;
  std::ostream& out_;
  std::ostream& err_;
  std::istream& in_;
};

}  // namespace velt::tool
