#pragma once

#include <istream>
#include <ostream>
#include <span>
#include <string>

#include "apps/velt/ScriptedCommand.hpp"

namespace velt {

class ControlClass;

namespace tool {

struct SnapOptions;

// `velt snap`: one control on a headless form, its properties set, an input
// script played, a PNG written and the events printed. Everything the user
// gives is read and checked before anything runs, so a mistake writes
// nothing. Exit status: 0 done, 2 bad usage, input or an error of the library
// while running, 1 anything unexpected. Messages go to err, starting with
// "velt snap: ".
class SnapCommand : public ScriptedCommand {
 public:
  SnapCommand(std::ostream& out, std::ostream& err, std::istream& in);

  static const char* Usage();

 private:
  int execute(std::span<const std::string> arguments) override;
  int run(const SnapOptions& options);
  void listControls();
  const ControlClass& creatableClass(const std::string& name) const;
};

}  // namespace tool
}  // namespace velt
