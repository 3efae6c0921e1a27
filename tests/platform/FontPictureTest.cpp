#include <gtest/gtest.h>

#include <cmath>
#include <set>

#include "support/ExpectError.hpp"
#include "velt/platform/Font.hpp"
#include "velt/platform/Picture.hpp"

namespace velt {
namespace {

using test::errorOf;

TEST(FontTest, SharedByReferenceWithRevisionOnRealChanges) {
  auto font = Font::Ambient();
  EXPECT_FLOAT_EQ(font->Size(), 8.25f);
  const std::shared_ptr<Font> sameObject = font;
  const uint64_t start = font->Revision();
  sameObject->Italic(true);
  EXPECT_TRUE(font->Italic());
  EXPECT_EQ(font->Revision(), start + 1);
  font->Italic(true);
  font->Name("sans-serif");
  font->Size(8.25f);
  EXPECT_EQ(font->Revision(), start + 1);  // setting the same value is no change
  font->Charset(2);
  EXPECT_EQ(font->Revision(), start + 2);

  const auto copy = font->Clone();
  EXPECT_TRUE(copy->SameLook(*font));
  copy->Size(12.0f);
  EXPECT_FLOAT_EQ(font->Size(), 8.25f);
  EXPECT_FALSE(copy->SameLook(*font));
}

TEST(FontTest, BoldFollowsWeight) {
  Font font;
  font.Bold(true);
  EXPECT_EQ(font.Weight(), 700);
  font.Weight(550);
  EXPECT_TRUE(font.Bold());
  font.Weight(549);
  EXPECT_FALSE(font.Bold());
}

TEST(FontTest, OutOfRangeSizesAndWeightsAreError380) {
  Font font;
  for (float size : {0.0f, -1.0f, 2048.5f, std::nanf("")})
    errorOf(errInvalidPropertyValue, [&] { font.Size(size); });
  errorOf(errInvalidPropertyValue, [] { Font("x", 0.0f); });
  errorOf(errInvalidPropertyValue, [&] { font.Weight(1001); });
  EXPECT_FLOAT_EQ(font.Size(), 8.25f);
  font.Size(2048.0f);
  EXPECT_FLOAT_EQ(font.Size(), 2048.0f);
}

TEST(PictureTest, EveryPictureHasItsOwnHandle) {
  Picture a(2, 2);
  Picture b(2, 2);
  a.Pixel(1, 1, 0xFF00FF00);
  Picture copy(a);
  std::set<uint32_t> handles{a.Handle(), b.Handle(), copy.Handle()};
  EXPECT_EQ(handles.size(), 3u);
  EXPECT_EQ(handles.count(0u), 0u);
  const uint32_t before = b.Handle();
  b = a;
  EXPECT_EQ(b.Handle(), before);
  copy.Pixel(1, 1, 0);
  EXPECT_EQ(a.Pixel(1, 1), 0xFF00FF00u);  // copies share no pixels
}

TEST(PictureTest, PixelsOutsideAreIgnoredAndBadSizesRefused) {
  Picture picture(3, 2);
  EXPECT_EQ(picture.Pixel(0, 0), 0u);  // starts transparent
  picture.Pixel(3, 0, 0xFFFFFFFF);
  picture.Pixel(-1, 1, 0xFFFFFFFF);
  for (int32_t i = 0; i < 6; ++i)
    EXPECT_EQ(picture.Pixels()[i], 0u);
  errorOf(errInvalidProcedureCall, [] { Picture(-1, 2); });
  errorOf(errInvalidProcedureCall, [] { Picture(2, 2, std::vector<uint32_t>(3)); });
}

}  // namespace
}  // namespace velt
