#pragma once

#include <ostream>
#include <span>
#include <string>

namespace velt::tool {

// `velt icon FILE|NAME [--index N] [--small] [--mask COLOR] --out X.png`,
// `velt icon --type .EXT [--small] [--mask COLOR] --out X.png` and
// `velt icon --count FILE|NAME`: the library's IconExtractor from the command
// line. Exit status: 0 done, 1 when the location holds no such icon (the
// picture, MaskColor alone, is still written), 2 bad usage or a failure
// (the registry's icon location without a number, a picture that cannot be
// written). Messages go to err, starting with "velt icon: ".
class IconCommand {
 public:
  static constexpr int kOk = 0;
  static constexpr int kNoIcon = 1;
  static constexpr int kBadInput = 2;

  IconCommand(std::ostream& out, std::ostream& err);

  // The arguments after the word "icon".
  int Run(std::span<const std::string> arguments);

  static const char* Usage();

 private:
  std::ostream& out_;
  std::ostream& err_;
};

}  // namespace velt::tool
