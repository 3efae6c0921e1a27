#include "velt/utilities/IcoReader.hpp"

#include "velt/utilities/ByteReader.hpp"
#include "velt/utilities/IconBitmap.hpp"

namespace velt {

namespace {

constexpr uint64_t kDirectorySize = 6;
constexpr uint64_t kEntrySize = 16;
constexpr uint16_t kIconType = 1;
constexpr uint16_t kCursorType = 2;

}  // namespace

bool IcoReader::Recognizes(std::span<const uint8_t> file) {
  const ByteReader reader(file);
  const uint16_t type = reader.U16(2);
  return reader.Has(0, kDirectorySize) && reader.U16(0) == 0 &&
         (type == kIconType || type == kCursorType) && reader.U16(4) > 0;
}

std::vector<IconImage> IcoReader::Images(std::span<const uint8_t> file) {
  std::vector<IconImage> images;
  if (!Recognizes(file)) return images;
  const ByteReader reader(file);
  const uint16_t count = reader.U16(4);
  if (!reader.Has(kDirectorySize, kEntrySize * count)) return images;
  for (uint16_t i = 0; i < count; ++i) {
    const uint64_t entry = kDirectorySize + kEntrySize * i;
    const auto bytes = reader.Range(reader.U32(entry + 12), reader.U32(entry + 8));
    if (bytes.empty()) continue;
    if (auto image = IconBitmap::Describe(bytes)) images.push_back(*image);
  }
  return images;
}

}  // namespace velt
