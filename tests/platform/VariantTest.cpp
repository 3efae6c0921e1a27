#include "velt/platform/Variant.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>

#include "support/ExpectError.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/Picture.hpp"

namespace velt {
namespace {

using test::errorOf;

TEST(VariantTest, ConstructorsPickTheIntendedTypeAndEmptyReadsAsZeroBlankFalseAndNothing) {
  EXPECT_EQ(Variant().Type(), VariantType::Empty);
  EXPECT_EQ(Variant(true).Type(), VariantType::Boolean);
  EXPECT_EQ(Variant(int16_t{5}).Type(), VariantType::Integer);
  EXPECT_EQ(Variant(5).Type(), VariantType::Long);
  EXPECT_EQ(Variant(1.5f).Type(), VariantType::Single);
  EXPECT_EQ(Variant("text").Type(), VariantType::String);
  EXPECT_EQ(Variant(nullptr).Type(), VariantType::Object);
  EXPECT_EQ(Variant(nullptr).TypeName(), "Nothing");

  const Variant empty;
  EXPECT_TRUE(empty.IsEmpty());
  EXPECT_EQ(empty.ToLong(), 0);
  EXPECT_EQ(empty.ToString(), "");
  EXPECT_FALSE(empty.ToBoolean());
  EXPECT_EQ(empty.ToFont(), nullptr);
}

TEST(VariantTest, BooleanIsMinusOneAndReadsFromText) {
  EXPECT_EQ(Variant(true).ToInteger(), -1);
  EXPECT_EQ(Variant(true).ToString(), "True");
  EXPECT_TRUE(Variant("tRUE").ToBoolean());
  EXPECT_FALSE(Variant(" False ").ToBoolean());
  EXPECT_TRUE(Variant("0.5").ToBoolean());
  EXPECT_FALSE(Variant("0").ToBoolean());
  EXPECT_TRUE(Variant(2).ToBoolean());
  EXPECT_NE(errorOf(errTypeMismatch, [] { Variant("yes").ToBoolean(); }).find("\"yes\""),
            std::string::npos);
}

TEST(VariantTest, WholeNumbersRoundHalfToEvenAndOverflow) {
  EXPECT_EQ(Variant(2.5).ToInteger(), 2);
  EXPECT_EQ(Variant(3.5).ToInteger(), 4);
  EXPECT_EQ(Variant(-2.5).ToLong(), -2);
  EXPECT_EQ(Variant(-32768.5).ToInteger(), -32768);
  errorOf(errOverflow, [] { Variant(32767.5).ToInteger(); });
  EXPECT_EQ(Variant(2147483647.0).ToLong(), 2147483647);
  errorOf(errOverflow, [] { Variant(2147483647.5).ToLong(); });
  errorOf(errOverflow, [] { Variant(std::nan("")).ToLong(); });
  errorOf(errOverflow, [] { Variant(1e39).ToSingle(); });
  EXPECT_EQ(Variant("2.5").ToInteger(), 2);
}

TEST(VariantTest, TextReadsAsDecimalOrHexNumber) {
  EXPECT_EQ(Variant("  12 ").ToLong(), 12);
  EXPECT_EQ(Variant("\t-1.5e2").ToDouble(), -150.0);
  EXPECT_EQ(Variant("+.5").ToDouble(), 0.5);
  EXPECT_EQ(Variant("1E-400").ToDouble(), 0.0);
  EXPECT_EQ(Variant("&hffff").ToLong(), -1);  // a 16-bit literal stays 16-bit
  EXPECT_EQ(Variant("&HFFFF&").ToLong(), 65535);
  EXPECT_EQ(Variant("&H10000").ToLong(), 65536);
  EXPECT_EQ(Variant("&H0000FFFF").ToLong(), 65535);
  EXPECT_EQ(Variant("&HFFFFFFFF").ToLong(), -1);
  errorOf(errOverflow, [] { Variant("&H123456789").ToLong(); });
  errorOf(errOverflow, [] { Variant("1e999").ToDouble(); });
  for (const char* text : {"", " ", "12abc", "1e", "-", ".", "&H", "&HG1", "1 2", "0x10", "nan",
                           "inf", "1,5", "--1"}) {
    const std::string message = errorOf(errTypeMismatch, [&] { Variant(text).ToDouble(); });
    EXPECT_NE(message.find(std::string("\"") + text + "\""), std::string::npos) << message;
  }
}

TEST(VariantTest, NumbersBecomeShortestText) {
  EXPECT_EQ(Variant(10.0).ToString(), "10");
  EXPECT_EQ(Variant(0.1f).ToString(), "0.1");
  EXPECT_EQ(Variant(0.00001).ToString(), "0.00001");
  EXPECT_EQ(Variant(0.000001).ToString(), "1E-06");
  EXPECT_EQ(Variant(1e20).ToString(), "1E+20");
  EXPECT_EQ(Variant(123456789012345.0).ToString(), "123456789012345");
  EXPECT_EQ(Variant(1.5e15).ToString(), "1.5E+15");
  EXPECT_EQ(Variant(16777216.0f).ToString(), "1.6777216E+07");
  EXPECT_EQ(Variant::Color(0xFFFFFFFF).ToString(), "4294967295");
  for (double value : {1.0 / 3.0, 123.456, 1e-300, -9.87654321e200, 5e-324})
    EXPECT_EQ(Variant(Variant(value).ToString()).ToDouble(), value);
}

TEST(VariantTest, ColorKeepsItsBitPatternAsLong) {
  EXPECT_EQ(Variant::Color(0x80000005).ToLong(), static_cast<int32_t>(0x80000005));
  EXPECT_EQ(Variant(-1).ToColor(), 0xFFFFFFFFu);
  EXPECT_EQ(Variant(int16_t{-1}).ToColor(), 0xFFFFFFFFu);
  EXPECT_EQ(Variant(4294967295.0).ToColor(), 0xFFFFFFFFu);
  errorOf(errOverflow, [] { Variant(4294967296.0).ToColor(); });
  errorOf(errOverflow, [] { Variant::Color(0x80000005).ToInteger(); });
  EXPECT_EQ(Variant::Color(0xC0C0C0).ToDouble(), 12632256.0);
}

TEST(VariantTest, FontsAndObjectsConvertOnlyToThemselvesChangeTypeByTheSameRules) {
  const auto font = Font::Ambient();
  const std::shared_ptr<Object> picture = std::make_shared<Picture>(1, 1);
  EXPECT_EQ(Variant(font).ToFont(), font);
  EXPECT_EQ(Variant(picture).ToObject(), picture);
  const Variant fromFont(font);
  const Variant fromObject(picture);
  errorOf(errTypeMismatch, [&] { fromFont.ToString(); });
  errorOf(errTypeMismatch, [&] { fromFont.ToObject(); });
  errorOf(errTypeMismatch, [&] { fromObject.ToFont(); });
  errorOf(errTypeMismatch, [] { Variant(0).ToFont(); });
  EXPECT_NE(errorOf(errTypeMismatch, [&] { fromFont.ToColor(); }).find("Font to Color"),
            std::string::npos);

  // ChangeType converts by the same rules.
  const Variant value = Variant("12").ChangeType(VariantType::Long);
  EXPECT_EQ(value.Type(), VariantType::Long);
  EXPECT_EQ(value.ToLong(), 12);
  EXPECT_EQ(Variant().ChangeType(VariantType::Font).Type(), VariantType::Font);
  EXPECT_EQ(Variant(1.5).ChangeType(VariantType::String).ToString(), "1.5");
  errorOf(errTypeMismatch, [] { Variant("x").ChangeType(VariantType::Integer); });
}

TEST(VariantTest, EqualityIsTypeAware) {
  EXPECT_EQ(Variant(int16_t{5}), Variant(5));
  EXPECT_EQ(Variant(5.0f), Variant::Color(5));
  EXPECT_EQ(Variant(true), Variant(-1));
  EXPECT_NE(Variant(), Variant(0));
  EXPECT_NE(Variant("5"), Variant(5));
  EXPECT_NE(Variant("a"), Variant("A"));
  EXPECT_NE(Variant::Color(0xFFFFFFFF), Variant(-1));
  const auto font = Font::Ambient();
  EXPECT_EQ(Variant(font), Variant(font));
  EXPECT_NE(Variant(font), Variant(font->Clone()));
  EXPECT_NE(Variant(std::make_shared<Picture>(1, 1)), Variant(std::make_shared<Picture>(1, 1)));
  EXPECT_EQ(Variant(nullptr), Variant(std::shared_ptr<Object>()));
}

}  // namespace
}  // namespace velt
