#pragma once

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "velt/platform/Picture.hpp"
#include "velt/platform/Png.hpp"

// Icon files written by the tests themselves: bitmap and PNG images, .ico
// and .cur directories, and small PE files with icon resources.
namespace velt::test {

using Bytes = std::vector<uint8_t>;

inline void put16(Bytes& out, uint32_t value) {
  out.push_back(static_cast<uint8_t>(value));
  out.push_back(static_cast<uint8_t>(value >> 8));
}
inline void put32(Bytes& out, uint32_t value) {
  put16(out, value & 0xFFFF);
  put16(out, value >> 16);
}
inline void set32(Bytes& out, size_t at, uint32_t value) {
  for (int i = 0; i < 4; ++i)
    out[at + static_cast<size_t>(i)] = static_cast<uint8_t>(value >> (8 * i));
}

// A bitmap image as icons hold it. `values` are top-down, palette indices for
// depths up to 8 and 0xAARRGGBB otherwise; `transparent` marks AND-mask bits.
struct BitmapRecipe {
  static BitmapRecipe Of(int32_t width, int32_t height, int32_t bitCount,
                         std::vector<uint32_t> values, std::vector<bool> transparent = {}) {
    BitmapRecipe recipe;
    recipe.width = width, recipe.height = height, recipe.bitCount = bitCount;
    recipe.values = std::move(values), recipe.transparent = std::move(transparent);
    return recipe;
  }
  int32_t width = 0;
  int32_t height = 0;
  int32_t bitCount = 32;
  std::vector<uint32_t> palette;  // 0x00RRGGBB
  std::vector<uint32_t> values;
  std::vector<bool> transparent;
  bool withMask = true;
};

inline Bytes bitmapImage(const BitmapRecipe& recipe) {
  Bytes out;
  put32(out, 40);
  put32(out, static_cast<uint32_t>(recipe.width));
  put32(out, static_cast<uint32_t>(recipe.height * 2));
  put16(out, 1);
  put16(out, static_cast<uint32_t>(recipe.bitCount));
  for (int i = 0; i < 4; ++i)
    put32(out, 0);  // compression, image size, resolution
  put32(out, static_cast<uint32_t>(recipe.palette.size()));
  put32(out, 0);
  for (uint32_t colour : recipe.palette)
    put32(out, colour);
  const size_t stride = (static_cast<size_t>(recipe.width) * recipe.bitCount + 31) / 32 * 4;
  for (int32_t y = recipe.height - 1; y >= 0; --y) {
    Bytes row(stride, 0);
    for (int32_t x = 0; x < recipe.width; ++x) {
      const uint32_t v = recipe.values[static_cast<size_t>(y * recipe.width + x)];
      if (recipe.bitCount >= 24) {
        const size_t at = static_cast<size_t>(x) * static_cast<size_t>(recipe.bitCount / 8);
        for (int c = 0; c < recipe.bitCount / 8; ++c)
          row[at + static_cast<size_t>(c)] = static_cast<uint8_t>(v >> (8 * c));
      } else {
        const size_t bit = static_cast<size_t>(x) * static_cast<size_t>(recipe.bitCount);
        row[bit / 8] |= static_cast<uint8_t>(v << (8 - recipe.bitCount - bit % 8));
      }
    }
    out.insert(out.end(), row.begin(), row.end());
  }
  if (!recipe.withMask) return out;
  const size_t maskStride = (static_cast<size_t>(recipe.width) + 31) / 32 * 4;
  for (int32_t y = recipe.height - 1; y >= 0; --y) {
    Bytes row(maskStride, 0);
    for (int32_t x = 0; x < recipe.width; ++x)
      if (!recipe.transparent.empty() &&
          recipe.transparent[static_cast<size_t>(y * recipe.width + x)])
        row[static_cast<size_t>(x) / 8] |= static_cast<uint8_t>(0x80 >> (x % 8));
    out.insert(out.end(), row.begin(), row.end());
  }
  return out;
}

// A 32-bit image of one colour, which tells the images of an icon apart.
inline Bytes solidBitmap(int32_t side, uint32_t argb) {
  BitmapRecipe recipe;
  recipe.width = recipe.height = side;
  recipe.values.assign(static_cast<size_t>(side * side), argb);
  return bitmapImage(recipe);
}

inline Bytes fileBytes(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(in), {});
}

inline void writeBytes(const std::filesystem::path& path, const Bytes& bytes) {
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
}

inline Bytes pngImage(const Picture& picture, const std::filesystem::path& scratch) {
  Png::Write(scratch.string(), picture);
  return fileBytes(scratch);
}

inline Bytes solidPng(int32_t side, uint32_t argb, const std::filesystem::path& scratch) {
  return pngImage(
      Picture(side, side, std::vector<uint32_t>(static_cast<size_t>(side * side), argb)), scratch);
}

// An .ico (type 1) or .cur (type 2) file of the images in this order.
inline Bytes icoFile(const std::vector<Bytes>& images, uint16_t type = 1) {
  Bytes out;
  put16(out, 0);
  put16(out, type);
  put16(out, static_cast<uint32_t>(images.size()));
  uint32_t offset = static_cast<uint32_t>(6 + 16 * images.size());
  for (const Bytes& image : images) {
    put32(out, 0);  // width, height, colours, reserved: the reader does not trust them
    put32(out, 1);  // planes (hotspot x of a cursor), depth (hotspot y)
    put32(out, static_cast<uint32_t>(image.size()));
    put32(out, offset);
    offset += static_cast<uint32_t>(image.size());
  }
  for (const Bytes& image : images)
    out.insert(out.end(), image.begin(), image.end());
  return out;
}

// A PE file (PE32, or PE32+ when wide) with one resource section. Each group
// is an icon group resource with the given identifier whose images become
// icon resources numbered from 1 across all groups.
inline Bytes peFile(const std::vector<std::pair<uint16_t, std::vector<Bytes>>>& groups,
                    bool wide = false) {
  constexpr uint32_t kRawStart = 0x200, kRva = 0x1000;
  // type -> id -> data, in the ascending order resource directories keep.
  std::map<uint32_t, std::map<uint32_t, Bytes>> resources;
  uint16_t nextIcon = 1;
  for (const auto& [id, images] : groups) {
    Bytes group;
    put16(group, 0);
    put16(group, 1);
    put16(group, static_cast<uint32_t>(images.size()));
    for (const Bytes& image : images) {
      put32(group, 0);
      put32(group, 1);
      put16(group, static_cast<uint32_t>(image.size()) & 0xFFFF);
      put16(group, static_cast<uint32_t>(image.size()) >> 16);
      put16(group, nextIcon);
      resources[3][nextIcon++] = image;
    }
    resources[14][id] = group;
  }
  // Directories first, then data entries, then the data itself.
  size_t leaves = 0;
  for (const auto& [type, items] : resources)
    leaves += items.size();
  const size_t typeDirs = 16 + 8 * resources.size();
  size_t nameDirs = 0;
  for (const auto& [type, items] : resources)
    nameDirs += 16 + 8 * items.size();
  const size_t langDirs = leaves * 24;
  const size_t dataEntries = typeDirs + nameDirs + langDirs;
  size_t blobAt = dataEntries + 16 * leaves;
  Bytes section(blobAt, 0);
  auto directory = [&](size_t at, size_t count) {
    set32(section, at + 12, static_cast<uint32_t>(count) << 16);
  };
  directory(0, resources.size());
  size_t nameAt = typeDirs, langAt = typeDirs + nameDirs, entryAt = dataEntries, t = 0;
  for (const auto& [type, items] : resources) {
    set32(section, 16 + 8 * t, type);
    set32(section, 20 + 8 * t++, 0x80000000u | static_cast<uint32_t>(nameAt));
    directory(nameAt, items.size());
    size_t n = 0;
    for (const auto& [id, data] : items) {
      set32(section, nameAt + 16 + 8 * n, id);
      set32(section, nameAt + 20 + 8 * n++, 0x80000000u | static_cast<uint32_t>(langAt));
      directory(langAt, 1);
      set32(section, langAt + 16, 1033);
      set32(section, langAt + 20, static_cast<uint32_t>(entryAt));
      set32(section, entryAt, kRva + static_cast<uint32_t>(blobAt));
      set32(section, entryAt + 4, static_cast<uint32_t>(data.size()));
      section.insert(section.end(), data.begin(), data.end());
      while (section.size() % 4 != 0)
        section.push_back(0);
      blobAt = section.size();
      langAt += 24;
      entryAt += 16;
    }
    nameAt += 16 + 8 * items.size();
  }
  Bytes out(0x40, 0);
  out[0] = 'M';
  out[1] = 'Z';
  set32(out, 0x3C, 0x40);
  put32(out, 0x00004550);  // "PE\0\0"
  put16(out, wide ? 0x8664 : 0x14C);
  put16(out, 1);
  put32(out, 0);
  put32(out, 0);
  put32(out, 0);
  const uint32_t optionalSize = wide ? 240 : 224;
  put16(out, optionalSize);
  put16(out, 0x2102);
  const size_t optional = out.size();
  out.resize(optional + optionalSize, 0);
  out[optional] = 0x0B;
  out[optional + 1] = wide ? 0x02 : 0x01;
  const size_t directories = optional + (wide ? 112 : 96);
  set32(out, directories - 4, 16);
  set32(out, directories + 16, kRva);
  set32(out, directories + 20, static_cast<uint32_t>(section.size()));
  const size_t header = out.size();
  out.resize(header + 40, 0);
  std::copy_n(".rsrc", 5, out.begin() + static_cast<long>(header));
  set32(out, header + 8, static_cast<uint32_t>(section.size()));
  set32(out, header + 12, kRva);
  set32(out, header + 16, static_cast<uint32_t>(section.size()));
  set32(out, header + 20, kRawStart);
  out.resize(kRawStart, 0);
  out.insert(out.end(), section.begin(), section.end());
  return out;
}

}  // namespace velt::test
