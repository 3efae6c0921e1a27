#pragma once

#include <istream>
#include <ostream>
#include <span>
#include <string>

#include "apps/velt/ScriptedCommand.hpp"

namespace velt {

class FormFile;

namespace tool {

struct RunOptions;

// `velt run`: a form file's form in a window until the user closes it, or
// headless with an input script played. It can write a PNG of the form at
// the end and save the form's stored properties back to a form file. The form
// file and the script are read and checked before anything runs, so a
// mistake writes nothing. Exit status: 0 done, 2 bad usage, a bad form file
// or script or an error while running, 1 no display for a window or anything
// unexpected. Messages go to err, starting with "velt run: ".
class RunCommand : public ScriptedCommand {
 public:
  RunCommand(std::ostream& out, std::ostream& err, std::istream& in);

  static const char* Usage();

 private:
  int execute(std::span<const std::string> arguments) override;
  int run(const RunOptions& options);
  int runHeadless(const RunOptions& options, const FormFile& file);
  int runWindow(const RunOptions& options, const FormFile& file);
};

}  // namespace tool
}  // namespace velt
