#pragma once

#include <ostream>
#include <span>
#include <string>

namespace velt::tool {

// `velt search DIR PATTERN [--dirs] [--attr N] [--recursive] [--separator C]`:
// runs one of the library's searches and prints each result on a line as
// Path, Filename, DateTime, attribute number and Size, separated by tabs.
// Exit status: 0 done (also when nothing was found: the searches never
// fail), 2 bad usage. Messages go to err, starting with "velt search: ".
class SearchCommand {
 public:
  static constexpr int kOk = 0;
  static constexpr int kBadInput = 2;

  SearchCommand(std::ostream& out, std::ostream& err);

  // The arguments after the word "search".
  int Run(std::span<const std::string> arguments);

  static const char* Usage();

 private:
  std::ostream& out_;
  std::ostream& err_;
};

// The command on the process's standard streams; argv holds the arguments
// after "search".
int RunSearchCommand(int argc, char** argv);

}  // namespace velt::tool
