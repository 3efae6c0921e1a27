#include "apps/velt/PropertyArgument.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "support/ExpectError.hpp"
#include "support/HeadlessForm.hpp"
#include "velt/controls/ControlRegistry.hpp"
#include "velt/controls/buttons/veltButton.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/Font.hpp"

namespace velt::tool {
namespace {

::testing::AssertionResult IsLong(const Variant& value, int32_t expected) {
  if (value.Type() == VariantType::Long && value.ToLong() == expected)
    return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << value.TypeName() << " " << value.ToString();
}

using test::errorOf;

TEST(PropertyArgumentTest, IntegersInDecimalAndBothHexNotationsThatFitALong) {
  // &hffff is 65535, not the 16-bit -1.
  const std::vector<std::pair<const char*, int32_t>> cases = {{"-7", -7},
                                                              {"&HFF", 255},
                                                              {"&hffff", 65535},
                                                              {"0x0096E7", 0x0096E7},
                                                              {"0XC00000", 0xC00000},
                                                              {"2147483647", 2147483647}};
  for (const auto& [text, value] : cases)
    EXPECT_TRUE(IsLong(PropertyArgument::ParseValue(text), value)) << text;
  // A system colour keeps its bit pattern.
  EXPECT_EQ(PropertyArgument::ParseValue("&H8000000F").ToColor(), 0x8000000Fu);
  for (const char* text : {"2147483648", "&H100000000"})
    errorOf(6, [&] { PropertyArgument::ParseValue(text); });
}

TEST(PropertyArgumentTest, BooleansAndText) {
  for (const char* text : {"True", "FALSE"}) {
    const Variant value = PropertyArgument::ParseValue(text);
    EXPECT_EQ(value.Type(), VariantType::Boolean);
    EXPECT_EQ(value.ToBoolean(), text[0] == 'T');
  }
  for (const char* text : {"Hello world", "8.25", "&H", "0xZZ", "", "-", "+5", " 5", "Truely"}) {
    const Variant value = PropertyArgument::ParseValue(text);
    EXPECT_EQ(value.Type(), VariantType::String) << text;
    EXPECT_EQ(value.ToString(), text);
  }
}

TEST(PropertyArgumentTest, NameAndValueSplitAtTheFirstEquals) {
  const PropertyArgument argument = PropertyArgument::Parse("Caption=a=b");
  EXPECT_EQ(argument.Name(), "Caption");
  EXPECT_EQ(argument.Value().ToString(), "a=b");

  EXPECT_NE(errorOf(5, [] { PropertyArgument::Parse("Caption"); }).find("Caption"),
            std::string::npos);
  errorOf(5, [] { PropertyArgument::Parse("=5"); });
  EXPECT_NE(errorOf(6, [] { PropertyArgument::Parse("ImageIndex=4294967296"); }).find("ImageIndex"),
            std::string::npos);
}

TEST(PropertyArgumentTest, FontsByNameSizeAndStyles) {
  const auto font = PropertyArgument::ParseFont("DejaVu Serif, 12.5, bold ,Italic");
  EXPECT_EQ(font->Name(), "DejaVu Serif");
  EXPECT_FLOAT_EQ(font->Size(), 12.5f);
  EXPECT_TRUE(font->Bold());
  EXPECT_TRUE(font->Italic());
  EXPECT_TRUE(PropertyArgument::ParseFont("Mono,9,underline,strikethrough")->Strikethrough());

  for (const char* bad : {"", ",9", "Mono", "Mono,big", "Mono,0", "Mono,9,heavy"})
    EXPECT_NE(errorOf(380, [&] { PropertyArgument::ParseFont(bad); }).find("font"),
              std::string::npos)
        << bad;
}

class ApplyPropertyTest : public ::testing::Test {
 protected:
  ApplyPropertyTest() { button = hf.form.Add<veltButton>("veltButton1", 0, 0, 100, 30); }
  void apply(const std::string& text) {
    PropertyArgument::Parse(text).ApplyTo(buttonClass, *button);
  }

  const ControlClass& buttonClass = ControlRegistry::Standard().ClassNamed("veltButton");
  test::HeadlessForm hf;
  std::shared_ptr<veltButton> button;
};

TEST_F(ApplyPropertyTest, EveryKindOfButtonPropertyFromText) {
  for (const char* text :
       {"BackColor=&H204080", "Caption=OK then", "Enabled=False", "Font=DejaVu Sans,10,bold"})
    apply(text);
  EXPECT_EQ(button->BackColor(), 0x204080u);
  EXPECT_EQ(button->Caption(), "OK then");
  EXPECT_FALSE(button->Enabled());
  EXPECT_FLOAT_EQ(button->Font()->Size(), 10.0f);
  // The font object is the host's, shared by reference.
  EXPECT_EQ(button->Font(), hf.form.FindSite("veltButton1")->Font());
}

TEST_F(ApplyPropertyTest, MistakesNameThePropertyAndLeaveItAsItWas) {
  struct Case {
    const char* text;
    int32_t number;
    const char* named;
  };
  for (const Case& c :
       {Case{"Colour=5", 5, "Colour"}, Case{"ImageIndex=abc", 13, "ImageIndex"},
        Case{"ImageIndex=40000", 6, "ImageIndex"}, Case{"ImageList=list1", 13, "ImageList"},
        Case{"Font=DejaVu Sans", 380, "Font"}}) {
    EXPECT_NE(errorOf(c.number, [&] { apply(c.text); }).find(c.named), std::string::npos) << c.text;
  }
  EXPECT_EQ(button->ImageIndex(), 0);
  EXPECT_TRUE(button->Enabled());
}

}  // namespace
}  // namespace velt::tool
