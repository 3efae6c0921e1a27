#include "velt/utilities/IconBitmap.hpp"

#include <png.h>

#include <algorithm>
#include <array>
#include <bit>
#include <vector>

#include "velt/utilities/ByteReader.hpp"

namespace velt {

namespace {

constexpr std::array<uint8_t, 8> kPngSignature = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
constexpr uint32_t kInfoHeaderSize = 40;
constexpr uint32_t kNoCompression = 0;

uint32_t bigEndian32(std::span<const uint8_t> bytes, size_t at) {
  return static_cast<uint32_t>(bytes[at]) << 24 | static_cast<uint32_t>(bytes[at + 1]) << 16 |
         static_cast<uint32_t>(bytes[at + 2]) << 8 | bytes[at + 3];
}

bool isPng(std::span<const uint8_t> bytes) {
  return bytes.size() >= 24 &&
         std::equal(kPngSignature.begin(), kPngSignature.end(), bytes.begin());
}

std::optional<IconImage> describePng(std::span<const uint8_t> bytes) {
  // The IHDR chunk comes first: its length, its type, then width and height.
  if (bytes[12] != 'I' || bytes[13] != 'H' || bytes[14] != 'D' || bytes[15] != 'R') return {};
  const uint32_t width = bigEndian32(bytes, 16);
  const uint32_t height = bigEndian32(bytes, 20);
  if (width < 1 || height < 1 || width > IconBitmap::kMaxSide || height > IconBitmap::kMaxSide)
    return {};
  return IconImage{static_cast<int32_t>(width), static_cast<int32_t>(height), 32, true, bytes};
}

struct BitmapLayout {
  int32_t width = 0;
  int32_t height = 0;  // of the image, not of colour rows plus mask
  int32_t bitCount = 0;
  uint64_t paletteOffset = 0;
  uint32_t paletteEntries = 0;
  uint64_t colourOffset = 0;
  uint64_t colourStride = 0;
  uint64_t maskOffset = 0;
  uint64_t maskStride = 0;
  bool hasMask = false;
};

bool knownDepth(int32_t bitCount) {
  return bitCount == 1 || bitCount == 4 || bitCount == 8 || bitCount == 24 || bitCount == 32;
}

std::optional<BitmapLayout> layoutOf(std::span<const uint8_t> bytes) {
  const ByteReader reader(bytes);
  const uint32_t headerSize = reader.U32(0);
  if (headerSize < kInfoHeaderSize || !reader.Has(0, headerSize)) return {};
  BitmapLayout layout;
  layout.width = reader.I32(4);
  const int32_t storedHeight = reader.I32(8);
  layout.bitCount = reader.U16(14);
  const uint32_t compression = reader.U32(16);
  const uint32_t coloursUsed = reader.U32(32);
  // The stored height covers the colour rows and the mask: twice the image's.
  if (layout.width < 1 || layout.width > IconBitmap::kMaxSide || storedHeight < 2 ||
      storedHeight > 2 * IconBitmap::kMaxSide || reader.U16(12) != 1 ||
      !knownDepth(layout.bitCount) || compression != kNoCompression)
    return {};
  layout.height = storedHeight / 2;
  if (layout.bitCount <= 8) {
    const uint32_t full = 1u << layout.bitCount;
    if (coloursUsed > full) return {};
    layout.paletteEntries = coloursUsed == 0 ? full : coloursUsed;
  }
  layout.paletteOffset = headerSize;
  layout.colourOffset = layout.paletteOffset + uint64_t{layout.paletteEntries} * 4;
  layout.colourStride =
      (uint64_t{static_cast<uint32_t>(layout.width)} * layout.bitCount + 31) / 32 * 4;
  layout.maskOffset =
      layout.colourOffset + layout.colourStride * static_cast<uint64_t>(layout.height);
  layout.maskStride = (static_cast<uint64_t>(layout.width) + 31) / 32 * 4;
  if (!reader.Has(layout.colourOffset, layout.maskOffset - layout.colourOffset)) return {};
  layout.hasMask =
      reader.Has(layout.maskOffset, layout.maskStride * static_cast<uint64_t>(layout.height));
  // Only 32-bit images carry their transparency without a mask.
  if (!layout.hasMask && layout.bitCount != 32) return {};
  return layout;
}

uint32_t paletteColour(const ByteReader& reader, const BitmapLayout& layout, uint32_t index) {
  if (index >= layout.paletteEntries) return 0xFF000000;  // outside the palette: black
  const uint64_t at = layout.paletteOffset + uint64_t{index} * 4;
  return 0xFF000000 | uint32_t{reader.U8(at + 2)} << 16 | uint32_t{reader.U8(at + 1)} << 8 |
         reader.U8(at);
}

uint32_t colourAt(const ByteReader& reader, const BitmapLayout& layout, uint64_t row, int32_t x) {
  const uint64_t rowStart = layout.colourOffset + row * layout.colourStride;
  switch (layout.bitCount) {
    case 32: {
      const uint64_t at = rowStart + uint64_t{static_cast<uint32_t>(x)} * 4;
      return uint32_t{reader.U8(at + 3)} << 24 | uint32_t{reader.U8(at + 2)} << 16 |
             uint32_t{reader.U8(at + 1)} << 8 | reader.U8(at);
    }
    case 24: {
      const uint64_t at = rowStart + uint64_t{static_cast<uint32_t>(x)} * 3;
      return 0xFF000000 | uint32_t{reader.U8(at + 2)} << 16 | uint32_t{reader.U8(at + 1)} << 8 |
             reader.U8(at);
    }
    default: {
      const uint64_t bit = uint64_t{static_cast<uint32_t>(x)} * layout.bitCount;
      const uint8_t byte = reader.U8(rowStart + bit / 8);
      const auto shift = static_cast<uint32_t>(8 - layout.bitCount - bit % 8);
      const uint32_t index = (byte >> shift) & ((1u << layout.bitCount) - 1);
      return paletteColour(reader, layout, index);
    }
  }
}

bool maskSet(const ByteReader& reader, const BitmapLayout& layout, uint64_t row, int32_t x) {
  const uint8_t byte =
      reader.U8(layout.maskOffset + row * layout.maskStride + static_cast<uint32_t>(x) / 8);
  return (byte >> (7 - x % 8) & 1) != 0;
}

std::shared_ptr<Picture> decodeBitmap(std::span<const uint8_t> bytes) {
  const auto layout = layoutOf(bytes);
  if (!layout) return nullptr;
  const ByteReader reader(bytes);
  std::vector<uint32_t> pixels(static_cast<size_t>(layout->width) *
                               static_cast<size_t>(layout->height));
  bool anyAlpha = false;
  for (int32_t y = 0; y < layout->height; ++y) {
    const auto row = static_cast<uint64_t>(layout->height - 1 - y);  // stored bottom up
    for (int32_t x = 0; x < layout->width; ++x) {
      const uint32_t colour = colourAt(reader, *layout, row, x);
      anyAlpha = anyAlpha || (colour >> 24) != 0;
      pixels[static_cast<size_t>(y) * static_cast<size_t>(layout->width) + static_cast<size_t>(x)] =
          colour;
    }
  }
  const bool useMask = layout->bitCount != 32 || !anyAlpha;
  if (useMask) {
    for (int32_t y = 0; y < layout->height; ++y) {
      const auto row = static_cast<uint64_t>(layout->height - 1 - y);
      for (int32_t x = 0; x < layout->width; ++x) {
        uint32_t& pixel = pixels[static_cast<size_t>(y) * static_cast<size_t>(layout->width) +
                                 static_cast<size_t>(x)];
        const bool transparent = layout->hasMask && maskSet(reader, *layout, row, x);
        pixel = transparent ? 0 : (pixel | 0xFF000000);
      }
    }
  }
  return std::make_shared<Picture>(layout->width, layout->height, std::move(pixels));
}

// libpng's simplified reader: its header is checked against the description
// (and so against kMaxSide) before any pixel memory is taken. It costs a
// third of the general reader for the small images icons hold.
std::shared_ptr<Picture> decodePng(const IconImage& image) {
  png_image png{};
  png.version = PNG_IMAGE_VERSION;
  if (!png_image_begin_read_from_memory(&png, image.Bytes.data(), image.Bytes.size()))
    return nullptr;
  if (png.width != static_cast<png_uint_32>(image.Width) ||
      png.height != static_cast<png_uint_32>(image.Height)) {
    png_image_free(&png);
    return nullptr;
  }
  // BGRA bytes are 0xAARRGGBB words on a little-endian machine.
  png.format = std::endian::native == std::endian::little ? PNG_FORMAT_BGRA : PNG_FORMAT_ARGB;
  std::vector<uint32_t> pixels(static_cast<size_t>(image.Width) *
                               static_cast<size_t>(image.Height));
  if (!png_image_finish_read(&png, nullptr, pixels.data(), 0, nullptr)) {
    png_image_free(&png);
    return nullptr;
  }
  return std::make_shared<Picture>(image.Width, image.Height, std::move(pixels));
}

}  // namespace

std::optional<IconImage> IconBitmap::Describe(std::span<const uint8_t> bytes) {
  if (isPng(bytes)) return describePng(bytes);
  const auto layout = layoutOf(bytes);
  if (!layout) return {};
  return IconImage{layout->width, layout->height, layout->bitCount, false, bytes};
}

std::shared_ptr<Picture> IconBitmap::Decode(const IconImage& image) {
  return image.IsPng ? decodePng(image) : decodeBitmap(image.Bytes);
}

}  // namespace velt
