// The whole load path of `velt run FORM.json --headless --input - --events
// --out OUT.png --save OUT.json`: the form file up to the first NUL byte, the
// script after it. Whatever the bytes, the command ends with status 0 or 2
// (a clear error), never 1 (an unexpected failure), a crash or a hang.
//
// The form file lies in a folder of its own beside pictures of every kind a
// reference may meet: a good PNG, a link to it, a link to /dev/zero, a FIFO, a
// folder and a damaged file.
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "apps/velt/RunCommand.hpp"
#include "apps/velt/ScriptCommand.hpp"
#include "apps/velt/ScriptParser.hpp"
#include "velt/controls/ControlRegistry.hpp"
#include "velt/host/FormFile.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/Picture.hpp"
#include "velt/platform/Png.hpp"

namespace {

namespace fs = std::filesystem;

const fs::path& folder() {
  static const fs::path made = [] {
    const fs::path path = fs::temp_directory_path() / ("velt-run-fuzz-" + std::to_string(getpid()));
    fs::remove_all(path);
    fs::create_directories(path / "dir.png");
    velt::Png::Write((path / "red.png").string(),
                     velt::Picture(4, 4, std::vector<uint32_t>(16, 0xFFFF0000)));
    fs::create_symlink("red.png", path / "link.png");
    fs::create_symlink("/dev/zero", path / "zero.png");
    ::mkfifo((path / "fifo.png").c_str(), 0600);
    std::ofstream(path / "bad.png") << "\x89PNG\r\n\x1a\n damaged";
    return path;
  }();
  return made;
}

// Keeps the work per input bounded: large forms and long waits are valid but slow.
bool affordable(std::string_view form, std::string_view script) {
  try {
    const velt::FormFile file = velt::FormFile::Parse(form, (folder() / "form.json").string(),
                                                      velt::ControlRegistry::Standard());
    if (static_cast<int64_t>(file.Width) * file.Height > 512 * 512 || file.Controls.size() > 32)
      return false;
    int64_t waited = 0;
    for (const auto& command : velt::tool::ScriptParser::Parse(script, "fuzz")) {
      waited += command.Milliseconds;
      if (command.Verb == velt::tool::ScriptVerb::Shot) return false;  // writes anywhere
    }
    return waited <= 2000;
  } catch (const velt::Error&) {
    return true;  // refused early, cheaply, by the command too
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const size_t split = bytes.find('\0');
  const std::string_view form = bytes.substr(0, split);
  const std::string_view script =
      split == std::string_view::npos ? std::string_view() : bytes.substr(split + 1);
  if (!affordable(form, script)) return 0;

  const fs::path formPath = folder() / "form.json";
  std::ofstream(formPath, std::ios::binary | std::ios::trunc)
      .write(form.data(), static_cast<std::streamsize>(form.size()));
  std::ostringstream out, err;
  std::istringstream in{std::string(script)};
  fs::create_directories(folder() / "saved");
  const std::vector<std::string> arguments = {formPath.string(),
                                              "--headless",
                                              "--input",
                                              "-",
                                              "--events",
                                              "--out",
                                              (folder() / "out.png").string(),
                                              "--save",
                                              (folder() / "saved" / "out.json").string()};
  velt::tool::RunCommand command(out, err, in);
  const int status = command.Run(arguments);
  if (status != 0 && status != 2) {
    std::fputs(err.str().c_str(), stderr);
    std::abort();
  }
  fs::remove_all(folder() / "saved");
  return 0;
}
