#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

#include "apps/velt/GalleryCommand.hpp"
#include "apps/velt/IconCommand.hpp"
#include "apps/velt/RunCommand.hpp"
#include "apps/velt/SearchCommand.hpp"
#include "apps/velt/SnapCommand.hpp"

namespace {

constexpr const char* kUsage =
    "usage: velt gallery [--headless] [--out FILE.png] [--events]\n"
    "           every control in a window, live (headless to gallery.png without a display)\n"
    "       velt run FORM.json [--headless [--input SCRIPT]] [--events] [--out FILE.png]\n"
    "                          [--save OUT.json]\n"
    "           run a form file in a window or headless, and save it back\n"
    "       velt snap CONTROL [--size WxH] [--prop Name=Value]... [--input SCRIPT] ...\n"
    "           render one control, play input, print its events\n"
    "       velt search DIR PATTERN [--dirs] [--recursive] ...\n"
    "           search files and folders as the library's Search does\n"
    "       velt icon FILE|NAME [--index N] [--small] [--mask COLOR] --out X.png\n"
    "       velt icon --type .EXT [--small] --out X.png | velt icon --count FILE\n"
    "           icons from files, the icon theme and by file type (IconExtractor)\n"
    "       velt about\n"
    "           what the library holds so far\n"
    "       velt --version\n"
    "`velt COMMAND --help` tells more about each command.\n";

// What the library offers so far.
void printInventory() {
  std::puts("veltObjects " VELT_VERSION_STRING);
  std::puts("built so far:");
  std::puts("  platform:   Error, Variant, Event, PropertyBag (JSON), Font, Picture, ImageList,");
  std::puts("              PNG read/write, Canvas (gradients, lines, pixels, text, icons),");
  std::puts("              TextEngine (FreeType + fontconfig), SystemColors, RegistryView,");
  std::puts("              headless and SDL2 window systems, pop-up windows");
  std::puts("  foundation: colours and schemes, gradient routines, number and path text,");
  std::puts("              window alpha and shadow, registry and shell routines, control frame");
  std::puts("  host:       Form, Site, input routing, focus, capture, timers, form files (JSON)");
  std::puts("  controls:   veltButton (veltXButton as a part), veltProgressBar, veltScrollBar,");
  std::puts("              veltSlider, veltPUMenu with its item collections, veltLabel,");
  std::puts("              veltColorPicker, veltTab; the control registry");
  std::puts("  utilities:  file search, IconExtractor (icon files, executables, icon theme)");
  std::puts("  tool:       velt gallery, velt run (form files), velt snap, velt search, velt icon");
  std::puts("not yet: veltToolbar, veltTextBox, veltListbox, veltMonthview, veltDropDown");
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  const std::string command = arguments.empty() ? "about" : arguments[0];
  const auto rest = std::span<const std::string>(arguments).subspan(arguments.empty() ? 0 : 1);
  if (command == "--version") {
    std::puts(VELT_VERSION_STRING);
    return 0;
  }
  if (command == "about") {
    printInventory();
    return 0;
  }
  if (command == "--help" || command == "help" || command == "-h") {
    std::fputs(kUsage, stdout);
    return 0;
  }
  if (command == "gallery") return velt::tool::GalleryCommand(std::cout, std::cerr).Run(rest);
  if (command == "run") return velt::tool::RunCommand(std::cout, std::cerr, std::cin).Run(rest);
  if (command == "snap") return velt::tool::SnapCommand(std::cout, std::cerr, std::cin).Run(rest);
  if (command == "search") return velt::tool::SearchCommand(std::cout, std::cerr).Run(rest);
  if (command == "icon") return velt::tool::IconCommand(std::cout, std::cerr).Run(rest);
  std::fprintf(stderr, "velt: unknown command '%s'\n%s", command.c_str(), kUsage);
  return 2;
}
