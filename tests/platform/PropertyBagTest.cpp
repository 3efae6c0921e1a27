#include "velt/platform/PropertyBag.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>

#include <nlohmann/json.hpp>

#include "support/ExpectError.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/Picture.hpp"

namespace velt {
namespace {

using nlohmann::json;

using test::errorOf;

bool mentions(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

TEST(PropertyBagTest, ReadsDefaultsAndConvertsToTheDefaultsType) {
  PropertyBag bag;
  bag.WriteProperty("Max", "12");
  EXPECT_EQ(bag.ReadProperty("Missing", 7).ToLong(), 7);
  const Variant max = bag.ReadProperty("Max", 0);
  EXPECT_EQ(max.Type(), VariantType::Long);
  EXPECT_EQ(max.ToLong(), 12);
  EXPECT_EQ(bag.ReadProperty("Max").Type(), VariantType::String);
  EXPECT_EQ(bag.ReadProperty("Max", Variant::Color(0)).Type(), VariantType::Color);
}

TEST(PropertyBagTest, ConversionFailureNamesKeyStoredAndExpected) {
  PropertyBag bag;
  bag.WriteProperty("Caption", "abc");
  bag.WriteProperty("Value", 100000);
  const std::string message = errorOf(errTypeMismatch, [&] { bag.ReadProperty("Caption", 0); });
  EXPECT_TRUE(mentions(message, "\"Caption\"")) << message;
  EXPECT_TRUE(mentions(message, "String \"abc\"")) << message;
  EXPECT_TRUE(mentions(message, "Long")) << message;
  EXPECT_TRUE(
      mentions(errorOf(errOverflow, [&] { bag.ReadProperty("Value", int16_t{0}); }), "\"Value\""));
  EXPECT_EQ(bag.Count(), 2u);  // failed reads leave the bag alone
  EXPECT_EQ(bag.ReadProperty("Caption").ToString(), "abc");
}

TEST(PropertyBagTest, WritingTheDefaultStoresNothingAndKeepsKeyOrder) {
  PropertyBag bag;
  bag.WriteProperty("BackColor", Variant::Color(0xFFFFFF), Variant::Color(0xFFFFFF));
  EXPECT_FALSE(bag.Contains("BackColor"));
  bag.WriteProperty("B", 1, 0);
  bag.WriteProperty("A", 2, 0);
  bag.WriteProperty("C", 3, 0);
  bag.WriteProperty("B", 4, 0);  // a rewrite keeps the first position
  EXPECT_EQ(bag.Keys(), (std::vector<std::string>{"B", "A", "C"}));
  EXPECT_EQ(bag.ReadProperty("B").ToLong(), 4);
  bag.WriteProperty("A", int16_t{0}, 0);  // equal across numeric types: removed
  EXPECT_EQ(bag.Keys(), (std::vector<std::string>{"B", "C"}));
  bag.Remove("B");
  bag.Remove("absent");
  EXPECT_EQ(bag.Keys(), (std::vector<std::string>{"C"}));
}

TEST(PropertyBagTest, EveryTypeSurvivesTheJsonRoundTrip) {
  PropertyBag bag;
  auto font = std::make_shared<Font>("DejaVu Sans", 9.75f);
  font->Italic(true);
  font->Weight(600);
  font->Charset(2);
  bag.WriteProperty("Enabled", false, true);
  bag.WriteProperty("Value", int16_t{-3});
  bag.WriteProperty("Max", 70000);
  bag.WriteProperty("BackColor", Variant::Color(0x8000000F));
  bag.WriteProperty("Ratio", 0.1f);
  bag.WriteProperty("Caption",
                    "Gr\xc3\xbc\xc3\x9f"
                    "e \"quoted\"");
  bag.WriteProperty("Font", font);

  const json document = bag.ToJson();
  EXPECT_EQ(document["BackColor"], json(0x8000000Fu));
  EXPECT_EQ(document["Ratio"].dump(), "0.1");
  EXPECT_EQ(document["Font"]["Font"]["Weight"], json(600));

  const PropertyBag back = PropertyBag::FromJsonText(bag.ToJsonText());
  EXPECT_EQ(back.Keys(), bag.Keys());
  EXPECT_FALSE(back.ReadProperty("Enabled", true).ToBoolean());
  EXPECT_EQ(back.ReadProperty("Value", int16_t{0}).ToInteger(), -3);
  EXPECT_EQ(back.ReadProperty("Max", 0).ToLong(), 70000);
  EXPECT_EQ(back.ReadProperty("BackColor", Variant::Color(0)).ToColor(), 0x8000000Fu);
  EXPECT_EQ(back.ReadProperty("Ratio", 0.0f).ToSingle(), 0.1f);
  EXPECT_EQ(back.ReadProperty("Caption", "").ToString(),
            "Gr\xc3\xbc\xc3\x9f"
            "e \"quoted\"");
  const auto readFont = back.ReadProperty("Font", Font::Ambient()).ToFont();
  ASSERT_NE(readFont, nullptr);
  EXPECT_TRUE(readFont->SameLook(*font));
  EXPECT_EQ(readFont->Charset(), 2);
  EXPECT_EQ(back.ToJson(), document);
}

TEST(PropertyBagTest, DamagedValueFailsOnlyItsOwnKey) {
  const json document = json::parse(R"({
    "List": [1, 2],
    "NoName": {"Font": {"Size": 8}},
    "Negative": {"Font": {"Name": "x", "Size": -1}},
    "BadBold": {"Font": {"Name": "x", "Size": 8, "Bold": "yes"}},
    "Unknown": {"Picture": "a.png"},
    "TwoTags": {"Font": {"Name": "x", "Size": 8}, "Ref": "y"},
    "Good": 5
  })");
  const PropertyBag bag = PropertyBag::FromJson(document);
  for (const char* key : {"List", "NoName", "Negative", "BadBold", "Unknown", "TwoTags"}) {
    const std::string message = errorOf(errTypeMismatch, [&] { bag.ReadProperty(key); });
    EXPECT_TRUE(mentions(message, std::string("\"") + key + "\"")) << message;
  }
  EXPECT_TRUE(mentions(errorOf(errTypeMismatch, [&] { bag.ReadProperty("Unknown"); }), "Picture"));
  EXPECT_EQ(bag.ReadProperty("Good", 0).ToLong(), 5);
  EXPECT_EQ(bag.ToJson(), document);
}

TEST(PropertyBagTest, JsonTextKeepsTheFileOrderMustBeAnObjectAndGivesErrorPositions) {
  const PropertyBag bag = PropertyBag::FromJsonText(R"({"Zeta": 1, "Alpha": null, "Mid": "x"})");
  EXPECT_EQ(bag.Keys(), (std::vector<std::string>{"Zeta", "Alpha", "Mid"}));
  EXPECT_TRUE(bag.ReadProperty("Alpha").IsEmpty());
  EXPECT_LT(bag.ToJsonText().find("Zeta"), bag.ToJsonText().find("Alpha"));
  EXPECT_TRUE(
      mentions(errorOf(errTypeMismatch, [] { PropertyBag::FromJsonText("[1]"); }), "array"));
  errorOf(errTypeMismatch, [] { PropertyBag::FromJson(json(3)); });
  const std::string message =
      errorOf(errTypeMismatch, [] { PropertyBag::FromJsonText("{\n  \"A\": tru }"); });
  EXPECT_TRUE(mentions(message, "PropertyBag JSON")) << message;
  EXPECT_TRUE(mentions(message, "line 2")) << message;
  errorOf(errTypeMismatch, [] { PropertyBag::FromJsonText(R"({"A": 1e999})"); });
}

// Refused while parsing, before anything walks the document: nesting that
// would exhaust the stack of a copy or a dump, and a key given twice.
TEST(PropertyBagTest, DeepNestingAndDuplicateKeysAreRefusedWithTheirPath) {
  const std::string deep =
      R"({"Caption": )" + std::string(50000, '[') + std::string(50000, ']') + "}";
  const std::string message = errorOf(errTypeMismatch, [&] { PropertyBag::FromJsonText(deep); });
  EXPECT_EQ(message,
            "PropertyBag JSON: /Caption/0/0/0/0/0/0/0/0/0/0/0/.../0/0/0/0 (256 levels): "
            "nested deeper than 256 levels");
  EXPECT_EQ(errorOf(errTypeMismatch,
                    [] { PropertyBag::FromJsonText(R"({"A": {"width": 10, "width": 20}})"); }),
            "PropertyBag JSON: /A/width: the key \"width\" appears twice");
  EXPECT_EQ(PropertyBag::FromJsonText(std::string(255, '[').insert(0, "{\"A\": ") +
                                      std::string(255, ']') + "}")
                .Count(),
            1u);
}

TEST(PropertyBagTest, ObjectReferencesGoThroughResolverAndNamer) {
  const std::shared_ptr<Object> images = std::make_shared<Picture>(1, 1);
  PropertyBag bag;
  bag.WriteProperty("ImageList", images);
  EXPECT_TRUE(mentions(errorOf(errObjectNotSet, [&] { bag.ToJson(); }), "\"ImageList\""));
  bag.Namer([&](const Object& object) { return &object == images.get() ? "ImageList1" : ""; });
  const json document = bag.ToJson();
  EXPECT_EQ(document["ImageList"], json({{"Ref", "ImageList1"}}));

  PropertyBag loaded = PropertyBag::FromJson(document);
  std::string message = errorOf(errObjectNotSet, [&] { loaded.ReadProperty("ImageList"); });
  EXPECT_TRUE(mentions(message, "\"ImageList\"") && mentions(message, "\"ImageList1\"")) << message;
  std::map<std::string, std::shared_ptr<Object>> known{{"ImageList1", images}};
  loaded.Resolver(
      [&](const std::string& name) { return known.count(name) ? known[name] : nullptr; });
  EXPECT_EQ(loaded.ReadProperty("ImageList", nullptr).ToObject(), images);
  errorOf(errTypeMismatch,
          [] { PropertyBag::FromJsonText(R"({"R": {"Ref": 3}})").ReadProperty("R"); });
}

TEST(PropertyBagTest, AFontReadIsOneSharedObjectPerKeyAFontWrittenASnapshot) {
  const PropertyBag bag =
      PropertyBag::FromJsonText(R"({"Font": {"Font": {"Name": "Serif", "Size": 12, "Extra": 1}}})");
  const std::string written = bag.ToJsonText();
  const auto first = bag.ReadProperty("Font").ToFont();
  EXPECT_EQ(bag.ReadProperty("Font", Font::Ambient()).ToFont(), first);
  EXPECT_EQ(bag.ToJsonText(), written);  // an unchanged font is written back as it came
  first->Bold(true);
  EXPECT_EQ(bag.ToJson()["Font"]["Font"]["Bold"], json(true));

  PropertyBag other;
  auto font = std::make_shared<Font>("Serif", 10.0f);
  other.WriteProperty("Font", font);
  font->Size(20.0f);
  EXPECT_EQ(other.ReadProperty("Font").ToFont()->Size(), 10.0f);
  EXPECT_EQ(other.ToJson()["Font"]["Font"]["Size"], json(10.0));
  other.WriteProperty("Font", font, font);  // the default itself: removed
  EXPECT_FALSE(other.Contains("Font"));
}

}  // namespace
}  // namespace velt
