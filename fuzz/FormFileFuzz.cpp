// Form files: any text either parses or is refused with velt::Error; a parsed
// file creates its form headless (or refuses with velt::Error), and the form
// captured back writes a file that parses again.
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

#include "velt/controls/ControlRegistry.hpp"
#include "velt/host/Form.hpp"
#include "velt/host/FormFile.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/HeadlessWindowSystem.hpp"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const velt::ControlRegistry& types = velt::ControlRegistry::Standard();
  velt::FormFile file;
  try {
    // A folder that does not exist: picture references fail instead of
    // reading whatever the machine holds.
    file = velt::FormFile::Parse(text, "/nonexistent/fuzz.json", types);
  } catch (const velt::Error&) {
    return 0;
  }
  // Keep the work per input bounded: huge forms are valid but slow to render.
  if (static_cast<int64_t>(file.Width) * file.Height > 1024 * 1024 || file.Controls.size() > 64)
    return 0;
  try {
    auto system = std::make_shared<velt::HeadlessWindowSystem>();
    std::unique_ptr<velt::Form> form = file.CreateForm(system, types);
    const velt::FormFile captured = velt::FormFile::Capture(*form, types);
    velt::FormFile::Parse(captured.ToJsonText(), "/nonexistent/again.json", types);
  } catch (const velt::Error&) {
  }
  return 0;
}
