// Icons against libpng decoding the same PNG in the same run (the
// reference: png_image reading from memory, no file access):
// - ExtractIconOfFileType(".txt", SmallIcon) warm: the registry view, the
//   icon theme's answer and the decoded icon are all kept, so a call is
//   lookups plus drawing 16 x 16 pixels over MaskColor. Reference: the
//   theme's PNG that call resolves to.
// - A 48-image .ico in memory, parsed and decoded each time (no cache):
//   the directory, the choice of the best of 48 images and the decode of a
//   32 x 32 PNG among them. Reference: that same PNG.
// Figures are ratios: velt time / libpng time.

#include <benchmark/benchmark.h>
#include <png.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/utilities/IconFixtures.hpp"
#include "velt/foundation/SystemRoutines.hpp"
#include "velt/utilities/IconExtractor.hpp"
#include "velt/utilities/IconFile.hpp"
#include "velt/utilities/IconTheme.hpp"

namespace {

using velt::test::Bytes;

Bytes decodeWithLibpng(const Bytes& file) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  if (!png_image_begin_read_from_memory(&image, file.data(), file.size())) return {};
  image.format = PNG_FORMAT_BGRA;
  Bytes pixels(PNG_IMAGE_SIZE(image));
  png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr);
  return pixels;
}

// The file ExtractIconOfFileType(".txt", SmallIcon) draws, as the registry
// and the icon theme name it.
std::string textIconFile() {
  const std::string type = velt::ReadRegistryString(velt::HKEY_CLASSES_ROOT, ".txt", "");
  const std::string icon =
      velt::ReadRegistryString(velt::HKEY_CLASSES_ROOT, type + "\\DefaultIcon", "");
  return velt::IconTheme::Current()->Lookup(icon.substr(0, icon.find(',')), 16);
}

void BM_FileTypeIconWarm(benchmark::State& state) {
  velt::IconExtractor extractor;
  extractor.ExtractIconOfFileType(".txt", velt::SmallIcon);
  for (auto _ : state)
    benchmark::DoNotOptimize(extractor.ExtractIconOfFileType(".txt", velt::SmallIcon));
}
BENCHMARK(BM_FileTypeIconWarm);

void BM_FileTypeIconReferenceLibpng(benchmark::State& state) {
  const std::string path = textIconFile();
  const Bytes file = velt::test::fileBytes(path);
  if (file.empty() || decodeWithLibpng(file).empty()) {
    state.SkipWithError(("no PNG for .txt in the icon theme: \"" + path + "\"").c_str());
    return;
  }
  for (auto _ : state)
    benchmark::DoNotOptimize(decodeWithLibpng(file));
}
BENCHMARK(BM_FileTypeIconReferenceLibpng);

struct FortyEight {
  Bytes ico;
  Bytes png;  // the 32 x 32 image the extractor picks
};

const FortyEight& fortyEight() {
  static const FortyEight files = [] {
    const auto scratch = std::filesystem::temp_directory_path() / "velt-icon-bench.png";
    FortyEight made;
    std::vector<Bytes> images;
    for (int32_t i = 0; i < 48; ++i) {
      // Sides 8 to 54, each as a PNG and then as a bitmap of the same
      // depth: of two equals the earlier wins, so the 32 x 32 PNG is drawn.
      const int32_t side = 8 + 2 * (i % 24);
      const uint32_t colour = 0xFF000000u | static_cast<uint32_t>(i * 0x050301);
      images.push_back(i < 24 ? velt::test::solidPng(side, colour, scratch)
                              : velt::test::solidBitmap(side, colour));
      if (side == 32 && i < 24) made.png = images.back();
    }
    std::filesystem::remove(scratch);
    made.ico = velt::test::icoFile(images);
    return made;
  }();
  return files;
}

void BM_FortyEightIconIco(benchmark::State& state) {
  // The file's bytes are in memory, as the reference's are.
  const auto file = velt::IconFile::FromBytes(fortyEight().ico);
  for (auto _ : state)
    benchmark::DoNotOptimize(file.Render(0, 32));
}
BENCHMARK(BM_FortyEightIconIco);

void BM_FortyEightIconReferenceLibpng(benchmark::State& state) {
  const FortyEight& files = fortyEight();
  for (auto _ : state)
    benchmark::DoNotOptimize(decodeWithLibpng(files.png));
}
BENCHMARK(BM_FortyEightIconReferenceLibpng);

}  // namespace
