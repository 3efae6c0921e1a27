#pragma once

#include <istream>
#include <ostream>
#include <span>
#include <string>
#include <vector>

namespace velt {

class ControlClass;

namespace tool {

struct ScriptCommand;
struct SnapOptions;

// `velt snap`: one control on a headless form, its properties set, an input
// script played, a PNG written and the events printed. Everything the user
// gives is read and checked before anything runs, so a mistake writes
// nothing. Exit status: 0 done, 2 bad usage, input or an error of the library
// while running, 1 anything unexpected. Messages go to err, starting with
// "velt snap: ".
class SnapCommand {
 public:
  static constexpr int kOk = 0;
  static constexpr int kFailure = 1;
  static constexpr int kBadInput = 2;

  SnapCommand(std::ostream& out, std::ostream& err, std::istream& in);

  // The arguments after the word "snap".
  int Run(std::span<const std::string> arguments);

  static const char* Usage();

 private:
  int run(const SnapOptions& options);
  void listControls();
  const ControlClass& creatableClass(const std::string& name) const;
  std::vector<ScriptCommand> readScript(const std::string& input, std::string& source);
  int fail(const std::string& message, int status);

  std::ostream& out_;
  std::ostream& err_;
  std::istream& in_;
};

}  // namespace tool
}  // namespace velt
