#pragma once

#include <optional>
#include <ostream>
#include <span>
#include <string>

namespace velt::tool {

// `velt gallery`: the gallery in a window, live, or rendered headless to a
// PNG when there is no display (or --headless asks for it). Exit status: 0
// done, 2 bad usage or a file that cannot be written, 1 anything unexpected.
// Messages go to err, starting with "velt gallery: ".
class GalleryCommand {
 public:
  static constexpr const char* kDefaultOut = "gallery.png";

  struct Options {
    bool Help = false;
    bool Headless = false;
    bool Events = false;
    std::optional<std::string> Out;
  };

  GalleryCommand(std::ostream& out, std::ostream& err);

  // The arguments after the word "gallery".
  int Run(std::span<const std::string> arguments);

  static Options Parse(std::span<const std::string> arguments);
  static const char* Usage();

 private:
  int run(const Options& options);
  int runHeadless(const Options& options, const std::string& reason);
  int fail(const std::string& message, int status);

  std::ostream& out_;
  std::ostream& err_;
};

}  // namespace velt::tool
