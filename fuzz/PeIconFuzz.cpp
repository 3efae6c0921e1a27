// Executables and libraries from anywhere (Wine, portable programs): any
// bytes give icon groups whose images decode within their limits, or none.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <span>

#include "velt/utilities/IconBitmap.hpp"
#include "velt/utilities/IconPicture.hpp"
#include "velt/utilities/PeIconReader.hpp"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const velt::PeIconReader reader(std::span<const uint8_t>(data, size));
  if (reader.GroupCount() < 0) std::abort();
  for (int32_t group = 0; group < std::min(reader.GroupCount(), 4); ++group) {
    const auto images = reader.GroupAt(group);
    for (size_t i : velt::IconPicture::Preference(images, 32)) {
      const auto picture = velt::IconBitmap::Decode(images[i]);
      if (picture) velt::IconPicture::Fit(*picture, 32);
    }
  }
  reader.GroupWithId(1);
  return 0;
}
