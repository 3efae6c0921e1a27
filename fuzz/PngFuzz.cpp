// PNG files from anywhere (icons, image lists): any bytes either decode to a
// picture within the size limit or are refused with velt::Error.
#include <cstdint>
#include <cstdlib>
#include <span>

#include "velt/platform/Error.hpp"
#include "velt/platform/ImageList.hpp"
#include "velt/platform/Png.hpp"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::shared_ptr<velt::Picture> picture;
  try {
    picture = velt::Png::ReadMemory(std::span<const uint8_t>(data, size));
  } catch (const velt::Error&) {
    return 0;
  }
  if (!picture || picture->Width() < 1 || picture->Height() < 1 ||
      picture->Width() > velt::Png::kMaxSize || picture->Height() > velt::Png::kMaxSize)
    std::abort();

  // Whatever decodes can be scaled into an image list and turned into an icon.
  velt::ImageList list;
  list.ImageWidth(16);
  list.ImageHeight(16);
  list.ListImages().Add(picture)->ExtractIcon();
  return 0;
}
