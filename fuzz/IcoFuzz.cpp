// .ico and .cur files from anywhere: any bytes give images whose described
// size holds for the decoded pixels, or none; nothing reads past the input.
#include <cstdint>
#include <cstdlib>
#include <span>
#include <vector>

#include "velt/utilities/IcoReader.hpp"
#include "velt/utilities/IconBitmap.hpp"
#include "velt/utilities/IconFile.hpp"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::span<const uint8_t> bytes(data, size);
  for (const velt::IconImage& image : velt::IcoReader::Images(bytes)) {
    if (image.Width < 1 || image.Height < 1 || image.Width > velt::IconBitmap::kMaxSide ||
        image.Height > velt::IconBitmap::kMaxSide)
      std::abort();
    const auto picture = velt::IconBitmap::Decode(image);
    if (picture && (picture->Width() != image.Width || picture->Height() != image.Height))
      std::abort();
  }
  // The whole path a file takes: recognizing it, choosing an image, fitting it.
  const auto file = velt::IconFile::FromBytes(std::vector<uint8_t>(bytes.begin(), bytes.end()));
  const auto icon = file.Render(0, 16);
  if (icon && (icon->Width() != 16 || icon->Height() != 16)) std::abort();
  return 0;
}
