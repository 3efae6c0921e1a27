#include "velt/platform/ImageList.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <string>

#include "support/ExpectError.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/Png.hpp"
#include "velt/platform/SystemColors.hpp"

namespace velt {
namespace {

using test::errorOf;

std::shared_ptr<Picture> filled(int32_t width, int32_t height, uint32_t argb) {
  return std::make_shared<Picture>(
      width, height, std::vector<uint32_t>(static_cast<size_t>(width * height), argb));
}

TEST(ImageListTest, SizeComesFromTheFirstImageAndIsThenFixed) {
  ImageList list;
  errorOf(errInvalidPropertyValue, [&] { list.ListImages().Add(filled(2000, 4, 0)); });
  errorOf(errInvalidPicture, [&] { list.ListImages().Add(std::make_shared<Picture>(0, 0)); });
  EXPECT_EQ(list.ImageWidth(), 0);
  list.ListImages().Add(filled(16, 12, 0xFF000000));
  EXPECT_EQ(list.ImageHeight(), 12);
  list.ImageWidth(16);  // the same value is no change
  errorOf(errInvalidPropertyValue, [&] { list.ImageWidth(32); });
  list.ListImages().Clear();
  list.ImageWidth(32);
  errorOf(errInvalidPropertyValue, [&] { list.ImageHeight(1025); });
  EXPECT_EQ(list.ImageWidth(), 32);
}

TEST(ImageListTest, ItemsByPositionAndKey) {
  ImageList list;
  ListImages& images = list.ListImages();
  images.Add(filled(4, 4, 0xFF0000FF), "blue");
  images.Add(filled(4, 4, 0xFF00FF00));
  images.Add(filled(4, 4, 0xFFFF0000), "red");
  EXPECT_EQ(images.Item("red")->Index(), 3);
  EXPECT_EQ(images.Item(1)->Key(), "blue");
  EXPECT_EQ(images.Item(2)->Picture()->Pixel(0, 0), 0xFF00FF00u);
  std::string message = errorOf(errSubscriptOutOfRange, [&] { images.Item(4); });
  EXPECT_NE(message.find("4"), std::string::npos);
  EXPECT_NE(message.find("3"), std::string::npos);
  EXPECT_NE(errorOf(errSubscriptOutOfRange, [&] { images.Item("green"); }).find("\"green\""),
            std::string::npos);
  EXPECT_NE(errorOf(errKeyAlreadyExists, [&] { images.Add(filled(4, 4, 0), "red"); }).find("red"),
            std::string::npos);
  errorOf(errObjectNotSet, [&] { images.Add(std::shared_ptr<Picture>()); });
  EXPECT_EQ(images.Count(), 3);
}

TEST(ImageListTest, RemovedImagesAndThoseOutlivingTheirListAreDetached) {
  auto list = std::make_shared<ImageList>();
  ListImages& images = list->ListImages();
  auto first = images.Add(filled(2, 2, 0xFF111111), "a");
  auto second = images.Add(filled(2, 2, 0xFF222222), "b");
  auto third = images.Add(filled(2, 2, 0xFF333333), "c");
  images.Remove(1);
  EXPECT_EQ(first->Index(), 0);
  EXPECT_EQ(third->Index(), 2);
  errorOf(errObjectNotSet, [&] { first->ExtractIcon(); });
  EXPECT_EQ(first->Picture()->Pixel(1, 1), 0xFF111111u);
  images.Remove("c");
  EXPECT_EQ(images.Count(), 1);
  errorOf(errSubscriptOutOfRange, [&] { images.Remove(2); });
  images.Add(filled(2, 2, 0), "a");  // a removed key is free again
  second->ExtractIcon();
  list.reset();
  errorOf(errObjectNotSet, [&] { second->ExtractIcon(); });
  EXPECT_EQ(second->Picture()->Pixel(0, 0), 0xFF222222u);
}

TEST(ImageListTest, ExtractIconMasksTheMaskColour) {
  ImageList list;
  auto source = filled(2, 1, 0xFFC0C0C0);
  source->Pixel(1, 0, 0xFF102030);
  auto image = list.ListImages().Add(source);
  const auto icon = image->ExtractIcon();
  EXPECT_EQ(icon->Pixel(0, 0) >> 24, 0u);
  EXPECT_EQ(icon->Pixel(1, 0), 0xFF102030u);
  EXPECT_EQ(image->Picture()->Pixel(0, 0), 0xFFC0C0C0u);  // the stored image is untouched
  EXPECT_NE(image->ExtractIcon()->Handle(), icon->Handle());

  list.MaskColor(0x302010);  // OLE order: red 0x10, green 0x20, blue 0x30
  EXPECT_EQ(image->ExtractIcon()->Pixel(1, 0) >> 24, 0u);
  EXPECT_EQ(image->ExtractIcon()->Pixel(0, 0), 0xFFC0C0C0u);
  list.UseMaskColor(false);
  EXPECT_EQ(image->ExtractIcon()->Pixel(1, 0), 0xFF102030u);

  SystemColors::Set(COLOR_BTNFACE, 0x302010);
  list.UseMaskColor(true);
  list.MaskColor(kSystemColorFlag | COLOR_BTNFACE);
  EXPECT_EQ(image->ExtractIcon()->Pixel(1, 0) >> 24, 0u);
  SystemColors::Reset();
}

TEST(ImageListTest, OtherSizesAreScaled) {
  ImageList list;
  list.ImageWidth(2);
  list.ImageHeight(2);
  // Quadrants of a 4x4 image shrink to one pixel each.
  auto quadrants = filled(4, 4, 0xFFFF0000);
  for (int32_t y = 0; y < 4; ++y)
    for (int32_t x = 0; x < 4; ++x)
      if (x >= 2) quadrants->Pixel(x, y, y >= 2 ? 0xFF0000FF : 0xFF00FF00);
  auto shrunk = list.ListImages().Add(quadrants)->Picture();
  ASSERT_EQ(shrunk->Width(), 2);
  EXPECT_EQ(shrunk->Pixel(1, 0), 0xFF00FF00u);
  EXPECT_EQ(shrunk->Pixel(1, 1), 0xFF0000FFu);

  // Averages: checkerboard to mid grey; clear pixels lower alpha, not the colour.
  auto checker = filled(4, 4, 0xFF000000);
  auto halfClear = filled(4, 4, 0xFFFF0000);
  for (int32_t y = 0; y < 4; ++y)
    for (int32_t x = 0; x < 4; ++x) {
      if ((x + y) % 2) checker->Pixel(x, y, 0xFFFFFFFF);
      if (x % 2) halfClear->Pixel(x, y, 0x00000000);
    }
  EXPECT_EQ(list.ListImages().Add(checker)->Picture()->Pixel(1, 1), 0xFF808080u);
  EXPECT_EQ(list.ListImages().Add(halfClear)->Picture()->Pixel(0, 1), 0x80FF0000u);

  // Growing keeps a flat colour flat.
  ImageList big;
  big.ImageWidth(5);
  big.ImageHeight(3);
  auto grown = big.ListImages().Add(filled(2, 2, 0xFF336699))->Picture();
  ASSERT_EQ(grown->Height(), 3);
  for (int32_t y = 0; y < 3; ++y)
    for (int32_t x = 0; x < 5; ++x)
      EXPECT_EQ(grown->Pixel(x, y), 0xFF336699u);
}

TEST(ImageListTest, AddsFromPngFiles) {
  const auto path = std::filesystem::temp_directory_path() /
                    ("velt-imagelist-" + std::to_string(getpid()) + ".png");
  Png::Write(path.string(), *filled(3, 3, 0xFFABCDEF));
  ImageList list;
  auto image = list.ListImages().Add(path.string(), "file");
  std::filesystem::remove(path);
  EXPECT_EQ(list.ImageWidth(), 3);
  EXPECT_EQ(image->Picture()->Pixel(2, 2), 0xFFABCDEFu);
  errorOf(errFileNotFound, [&] { list.ListImages().Add(path.string(), "other"); });
}

}  // namespace
}  // namespace velt
