#include <cstdio>
#include <cstring>
#include <string>

namespace {

// What the library offers so far; the gallery and snap commands come with the
// controls.
void printInventory() {
  std::puts("veltObjects " VELT_VERSION_STRING);
  std::puts("built so far:");
  std::puts("  platform:   Error, Variant, Event, PropertyBag (JSON), Font, Picture, ImageList,");
  std::puts("              PNG read/write, Canvas (gradients, lines, pixels, text, icons),");
  std::puts("              TextEngine (FreeType + fontconfig), SystemColors, RegistryView");
  std::puts("  foundation: colours and schemes, gradient routines, number and path text,");
  std::puts("              window alpha and shadow, registry and shell routines");
  std::puts("not yet: host and forms, controls, utilities, `velt gallery`, `velt snap`");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 1 && std::strcmp(argv[1], "--version") == 0) {
    std::puts(VELT_VERSION_STRING);
    return 0;
  }
  if (argc > 1 && std::strcmp(argv[1], "about") != 0) {
    std::fprintf(stderr, "velt: unknown command '%s' (try: velt about)\n", argv[1]);
    return 2;
  }
  printInventory();
  return 0;
}
