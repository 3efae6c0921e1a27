#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

#include "apps/velt/SnapCommand.hpp"

namespace {

constexpr const char* kUsage =
    "usage: velt about            what the library holds so far\n"
    "       velt snap CONTROL ...  render one control, play input, print its events\n"
    "                              (velt snap --help tells more)\n"
    "       velt --version\n";

// What the library offers so far.
void printInventory() {
  std::puts("veltObjects " VELT_VERSION_STRING);
  std::puts("built so far:");
  std::puts("  platform:   Error, Variant, Event, PropertyBag (JSON), Font, Picture, ImageList,");
  std::puts("              PNG read/write, Canvas (gradients, lines, pixels, text, icons),");
  std::puts("              TextEngine (FreeType + fontconfig), SystemColors, RegistryView,");
  std::puts("              headless window system, pop-up windows");
  std::puts("  foundation: colours and schemes, gradient routines, number and path text,");
  std::puts("              window alpha and shadow, registry and shell routines, control frame");
  std::puts("  host:       Form, Site, input routing, focus, capture, timers");
  std::puts("  controls:   veltButton (veltXButton as a part), control registry");
  std::puts("  tool:       velt snap");
  std::puts("not yet: the other controls, utilities, `velt gallery`, `velt run`");
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  const std::string command = arguments.empty() ? "about" : arguments[0];
  if (command == "--version") {
    std::puts(VELT_VERSION_STRING);
    return 0;
  }
  if (command == "about") {
    printInventory();
    return 0;
  }
  if (command == "--help" || command == "help") {
    std::fputs(kUsage, stdout);
    return 0;
  }
  if (command == "snap") {
    velt::tool::SnapCommand snap(std::cout, std::cerr, std::cin);
    return snap.Run(std::span<const std::string>(arguments).subspan(1));
  }
  std::fprintf(stderr, "velt: unknown command '%s'\n%s", command.c_str(), kUsage);
  return 2;
}
