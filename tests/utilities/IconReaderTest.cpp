#include <gtest/gtest.h>

#include <unistd.h>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "utilities/IconFixtures.hpp"
#include "velt/utilities/IcoReader.hpp"
#include "velt/utilities/IconBitmap.hpp"
#include "velt/utilities/PeIconReader.hpp"

namespace velt::test {
namespace {

namespace fs = std::filesystem;

constexpr uint32_t kRed = 0xFFFF0000, kGreen = 0xFF00FF00, kBlue = 0xFF0000FF;

fs::path scratchPng() {
  return fs::temp_directory_path() / ("velt-icon-reader-" + std::to_string(::getpid()) + ".png");
}

// A 4x2 image per depth: top row palette 0,1,2,3 (or the colours), bottom
// row with the mask set on its first two pixels.
BitmapRecipe depthRecipe(int32_t bitCount) {
  BitmapRecipe recipe = BitmapRecipe::Of(4, 2, bitCount, {});
  if (bitCount <= 8) {
    recipe.palette = {0x000000, 0xFF0000, 0x00FF00, 0x0000FF};
    if (bitCount == 1) recipe.palette.resize(2);
    recipe.values = {0, 1, bitCount == 1 ? 0u : 2u, bitCount == 1 ? 1u : 3u, 1, 1, 1, 0};
  } else {
    const uint32_t alpha = bitCount == 32 ? 0xFF000000 : 0;
    recipe.values = {alpha | 0,        alpha | 0xFF0000, alpha | 0x00FF00, alpha | 0x0000FF,
                     alpha | 0xFF0000, alpha | 0xFF0000, alpha | 0xFF0000, alpha | 0};
  }
  recipe.transparent = {false, false, false, false, true, true, false, false};
  return recipe;
}

TEST(IconBitmapTest, DecodesEveryDepthWithItsMask) {
  for (int32_t bitCount : {1, 4, 8, 24, 32}) {
    SCOPED_TRACE(bitCount);
    const Bytes bytes = bitmapImage(depthRecipe(bitCount));
    const auto image = IconBitmap::Describe(bytes);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->Width, 4);
    EXPECT_EQ(image->Height, 2);
    EXPECT_EQ(image->BitCount, bitCount);
    const auto picture = IconBitmap::Decode(*image);
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->Pixel(0, 0), 0xFF000000u);
    EXPECT_EQ(picture->Pixel(1, 0), kRed);
    EXPECT_EQ(picture->Pixel(3, 0), bitCount == 1 ? kRed : kBlue);
    EXPECT_EQ(picture->Pixel(2, 0), bitCount == 1 ? 0xFF000000u : kGreen);
    // An opaque 32-bit image keeps its own alpha and ignores the mask.
    const uint32_t masked = bitCount == 32 ? kRed : 0u;
    EXPECT_EQ(picture->Pixel(0, 1), masked);
    EXPECT_EQ(picture->Pixel(1, 1), masked);
    EXPECT_EQ(picture->Pixel(2, 1), kRed);
  }
}

TEST(IconBitmapTest, ThirtyTwoBitAlphaIsKeptAndAllZeroAlphaFallsBackToTheMask) {
  BitmapRecipe recipe = BitmapRecipe::Of(2, 1, 32, {0x80FF0000, 0x00000000}, {false, false});
  auto picture = IconBitmap::Decode(*IconBitmap::Describe(bitmapImage(recipe)));
  EXPECT_EQ(picture->Pixel(0, 0), 0x80FF0000u);
  EXPECT_EQ(picture->Pixel(1, 0), 0u);
  recipe.values = {0x00FF0000, 0x0000FF00};
  recipe.transparent = {true, false};
  picture = IconBitmap::Decode(*IconBitmap::Describe(bitmapImage(recipe)));
  EXPECT_EQ(picture->Pixel(0, 0), 0u);
  EXPECT_EQ(picture->Pixel(1, 0), kGreen);
}

TEST(IconBitmapTest, RefusesMalformedHeadersAndShortData) {
  const Bytes good = bitmapImage(depthRecipe(8));
  const std::vector<std::pair<const char*, std::function<void(Bytes&)>>> damages = {
      {"header size", [](Bytes& b) { set32(b, 0, 12); }},
      {"zero width", [](Bytes& b) { set32(b, 4, 0); }},
      {"huge width", [](Bytes& b) { set32(b, 4, 100000); }},
      {"negative height", [](Bytes& b) { set32(b, 8, 0xFFFFFFFC); }},
      {"depth 7", [](Bytes& b) { b[14] = 7; }},
      {"compressed", [](Bytes& b) { set32(b, 16, 1); }},
      {"palette too long", [](Bytes& b) { set32(b, 32, 257); }},
      {"cut in the colour rows", [](Bytes& b) { b.resize(40 + 16 + 4); }},
      {"cut in the mask", [](Bytes& b) { b.resize(b.size() - 1); }},
  };
  for (const auto& [what, damage] : damages) {
    SCOPED_TRACE(what);
    Bytes bytes = good;
    damage(bytes);
    EXPECT_FALSE(IconBitmap::Describe(bytes));
    EXPECT_FALSE(IconBitmap::Decode(IconImage{4, 2, 8, false, bytes}));
  }
}

TEST(IcoReaderTest, ListsBitmapAndPngImagesInOrderAndSkipsBrokenEntries) {
  const fs::path scratch = scratchPng();
  Bytes file = icoFile({solidBitmap(16, kRed), bitmapImage(depthRecipe(4)),
                        solidPng(48, kBlue, scratch), solidBitmap(32, kGreen)});
  fs::remove(scratch);
  set32(file, 6 + 16 * 3 + 12, static_cast<uint32_t>(file.size()));  // last entry leaves the file
  const auto images = IcoReader::Images(file);
  ASSERT_EQ(images.size(), 3u);
  EXPECT_EQ(images[0].Width, 16);
  EXPECT_EQ(images[1].BitCount, 4);
  EXPECT_TRUE(images[2].IsPng);
  EXPECT_EQ(images[2].Width, 48);
  EXPECT_EQ(IconBitmap::Decode(images[2])->Pixel(47, 47), kBlue);
  EXPECT_EQ(IcoReader::Images(icoFile({solidBitmap(8, kRed)}, 2)).size(), 1u);  // a cursor
}

TEST(IcoReaderTest, AnythingButAnIconDirectoryHasNoImages) {
  const Bytes good = icoFile({solidBitmap(16, kRed)});
  const std::vector<std::pair<const char*, std::function<void(Bytes&)>>> damages = {
      {"empty", [](Bytes& b) { b.clear(); }},
      {"type 3", [](Bytes& b) { b[2] = 3; }},
      {"no images", [](Bytes& b) { b[4] = 0; }},
      {"more entries than bytes", [](Bytes& b) { b[4] = 0xFF, b[5] = 0xFF; }},
      {"size wraps", [](Bytes& b) { set32(b, 6 + 8, 0xFFFFFFF0); }},
  };
  for (const auto& [what, damage] : damages) {
    SCOPED_TRACE(what);
    Bytes bytes = good;
    damage(bytes);
    EXPECT_TRUE(IcoReader::Images(bytes).empty());
  }
}

TEST(PeIconReaderTest, CountsGroupsInFileOrderAndFindsThemByIdentifier) {
  for (bool wide : {false, true}) {
    SCOPED_TRACE(wide ? "PE32+" : "PE32");
    const Bytes file = peFile({{40, {solidBitmap(16, kBlue)}},
                               {2, {solidBitmap(16, kRed), solidBitmap(32, kRed)}},
                               {7, {solidBitmap(32, kGreen)}}},
                              wide);
    ASSERT_TRUE(PeIconReader::Recognizes(file));
    const PeIconReader reader(file);
    ASSERT_EQ(reader.GroupCount(), 3);
    // The directory keeps identifiers ascending: 2, 7, 40.
    EXPECT_EQ(reader.GroupAt(0).size(), 2u);
    EXPECT_EQ(IconBitmap::Decode(reader.GroupAt(1)[0])->Pixel(0, 0), kGreen);
    EXPECT_EQ(IconBitmap::Decode(reader.GroupWithId(40)[0])->Pixel(0, 0), kBlue);
    EXPECT_TRUE(reader.GroupAt(3).empty());
    EXPECT_TRUE(reader.GroupAt(-1).empty());
    EXPECT_TRUE(reader.GroupWithId(3).empty());
  }
}

TEST(PeIconReaderTest, DamagedHeadersOrResourcesGiveNoGroups) {
  const Bytes good = peFile({{1, {solidBitmap(16, kRed)}}});
  const size_t optional = 0x40 + 24, section = optional + 224;
  const std::vector<std::pair<const char*, std::function<void(Bytes&)>>> damages = {
      {"no MZ", [](Bytes& b) { b[0] = 'X'; }},
      {"PE offset outside", [](Bytes& b) { set32(b, 0x3C, 0xFFFFFFF0); }},
      {"unknown magic", [&](Bytes& b) { b[optional] = 0x07; }},
      {"no resource directory", [&](Bytes& b) { set32(b, optional + 92, 2); }},
      {"resource outside every section", [&](Bytes& b) { set32(b, optional + 96 + 16, 0x900000); }},
      {"raw data outside the file", [&](Bytes& b) { set32(b, section + 20, 0xFFFFFF00); }},
      {"section cut short", [&](Bytes& b) { set32(b, section + 16, 8); }},
      {"directory claims 65535 entries",
       [](Bytes& b) { b[0x200 + 14] = 0xFF, b[0x200 + 15] = 0xFF; }},
      {"file cut in the resources", [](Bytes& b) { b.resize(0x240); }},
  };
  for (const auto& [what, damage] : damages) {
    SCOPED_TRACE(what);
    Bytes bytes = good;
    damage(bytes);
    const PeIconReader reader(bytes);
    EXPECT_TRUE(reader.GroupCount() == 0 || reader.GroupAt(0).empty()) << reader.GroupCount();
  }
}

}  // namespace
}  // namespace velt::test
