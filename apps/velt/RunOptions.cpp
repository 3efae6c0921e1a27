#include "apps/velt/RunOptions.hpp"

#include "apps/velt/ArgumentReader.hpp"

namespace velt::tool {

RunOptions RunOptions::Parse(std::span<const std::string> arguments) {
  RunOptions options;
  ArgumentReader reader(arguments, "run");
  while (reader.Next()) {
    const std::string& word = reader.Word();
    if (word == "--headless") {
      reader.Flag(options.Headless);
    } else if (word == "--input") {
      reader.ValueOnce(options.Input);
    } else if (word == "--out") {
      reader.ValueOnce(options.Out);
    } else if (word == "--save") {
      reader.ValueOnce(options.Save);
    } else if (word == "--events") {
      reader.Flag(options.Events);
    } else if (word == "--help" || word == "-h") {
      reader.Flag(options.Help);
    } else if (reader.IsOption()) {
      reader.Problem("unknown option " + word);
    } else if (options.Form.empty()) {
      options.Form = word;
    } else {
      reader.Problem("one form at a time: \"" + options.Form + "\" and \"" + word + "\"");
    }
  }
  if (options.Help) return options;
  if (options.Form.empty()) ArgumentReader::Problem("no form file named", "run");
  if (options.Input && !options.Headless)
    ArgumentReader::Problem("--input plays a script headless; add --headless", "run");
  return options;
}

}  // namespace velt::tool
