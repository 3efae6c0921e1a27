#include "velt/controls/ControlRegistry.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <set>
#include <string>

#include "support/ExpectError.hpp"
#include "support/HeadlessForm.hpp"
#include "support/Pixels.hpp"
#include "velt/controls/buttons/veltButton.hpp"
#include "velt/controls/buttons/veltXButton.hpp"
#include "velt/controls/lists/veltListbox.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/ImageList.hpp"
#include "velt/platform/PropertyBag.hpp"

namespace velt {
namespace {

const ControlRegistry& registry() {
  return ControlRegistry::Standard();
}

bool mentions(const std::string& message, const std::string& what) {
  return message.find(what) != std::string::npos;
}

// Parts (veltXButton) are known but not created on their own; names are
// matched in any letter case, and unknown ones are errors naming them.
TEST(ControlRegistryTest, CreatesCreatableClassesByNameInAnyLetterCase) {
  const auto names = registry().CreatableNames();
  EXPECT_NE(std::find(names.begin(), names.end(), "veltButton"), names.end());
  EXPECT_EQ(std::find(names.begin(), names.end(), "veltXButton"), names.end());
  ASSERT_NE(registry().Find("veltXButton"), nullptr);
  EXPECT_FALSE(registry().Find("veltXButton")->Creatable());
  EXPECT_TRUE(mentions(test::errorOf(5, [] { registry().Create("veltXButton"); }), "veltXButton"));

  const std::shared_ptr<UserControl> control = registry().Create("VELTBUTTON");
  ASSERT_NE(std::dynamic_pointer_cast<veltButton>(control), nullptr);
  EXPECT_EQ(registry().ClassNamed("veltbutton").DefaultSize(), (SizeL{100, 30}));
  EXPECT_TRUE(mentions(test::errorOf(5, [] { registry().Create("veltNothing"); }), "veltNothing"));
  EXPECT_TRUE(
      mentions(test::errorOf(5, [] { registry().ClassNamed("veltButton").PropertyNamed("Shape"); }),
               "Shape"));
}

TEST(ControlRegistryTest, EveryCreatableNameMakesAControlOfThatClass) {
  std::set<int16_t> ids;
  for (const std::string& name : registry().CreatableNames()) {
    SCOPED_TRACE(name);
    const std::shared_ptr<UserControl> control = registry().Create(name);
    ASSERT_NE(control, nullptr);
    EXPECT_EQ(control->ClassName(), name);
    EXPECT_TRUE(ids.insert(control->ID()).second) << "type code " << control->ID() << " twice";
  }
}

// A value of the property's type that differs from the one given.
Variant otherValue(const Variant& current, VariantType type) {
  switch (type) {
    case VariantType::Color:
      return Variant::Color(current.ToColor() ^ 0x123456);
    case VariantType::Boolean:
      return Variant(!current.ToBoolean());
    case VariantType::Integer:
      return Variant(static_cast<int16_t>(current.ToInteger() + 1));
    case VariantType::Long:
      return Variant(current.ToLong() + 1);
    case VariantType::String:
      return Variant(current.ToString() + "x");
    case VariantType::Font:
      return Variant(std::make_shared<Font>("DejaVu Sans", 12.0f));
    case VariantType::Object:
      return Variant(std::shared_ptr<Object>(std::make_shared<ImageList>()));
    default:
      return current;
  }
}

// Each property of each class: the getter reads back what the setter took, and
// the control stores it under the property's own key (what form files rely on).
TEST(ControlRegistryTest, EveryPropertyReachesItsOwnSetterAndIsStoredUnderItsName) {
  for (const std::string& name : registry().CreatableNames()) {
    const ControlClass& controlClass = registry().ClassNamed(name);
    for (const ControlClass::Property& property : controlClass.Properties()) {
      SCOPED_TRACE(name + "." + property.Name);
      test::HeadlessForm hf;
      const SizeL size = controlClass.DefaultSize();
      Site& site =
          hf.form.AddControl(controlClass.Create(), name + "1", 0, 0, size.width, size.height);
      UserControl& control = *site.Control();
      // A list box's SelectedItem must name one of its entries.
      if (auto* list = dynamic_cast<veltListbox*>(&control))
        for (const char* key : {"a", "b"})
          list->ListboxItems.Add(key);
      const Variant before = controlClass.GetProperty(control, property.Name);
      EXPECT_EQ(before.Type(), property.Type);
      const Variant wanted = otherValue(before, property.Type);
      controlClass.SetProperty(control, property.Name, wanted);
      const Variant after = controlClass.GetProperty(control, property.Name);
      EXPECT_EQ(after, wanted) << after.ToString() << " read back, " << wanted.ToString() << " set";

      PropertyBag bag;
      hf.form.WriteProperties(site, bag);
      EXPECT_TRUE(bag.Contains(property.Key()));
    }
  }
}

class RegistryPropertyTest : public ::testing::Test {
 protected:
  RegistryPropertyTest() {
    button = hf.form.Add<veltButton>("veltButton1", 0, 0, 100, 30);
    site = hf.form.FindSite("veltButton1");
    site->ClearChangedProperties();
  }
  const ControlClass& buttonClass = registry().ClassNamed("veltButton");
  test::HeadlessForm hf;
  std::shared_ptr<veltButton> button;
  Site* site = nullptr;
};

// Values of another type are converted on the way in, and come out typed.
TEST_F(RegistryPropertyTest, SettingGoesThroughTheSetterAndRepaints) {
  const Canvas before = site->Surface();
  buttonClass.SetProperty(*button, "backcolor", Variant(int32_t{0x204080}));
  EXPECT_EQ(button->BackColor(), 0x204080u);
  EXPECT_EQ(site->ChangedProperties(), (std::vector<std::string>{"BackColor"}));
  EXPECT_FALSE(test::DifferenceBox(site->Surface(), before).Empty());

  buttonClass.SetProperty(*button, "Caption", Variant(int32_t{42}));
  EXPECT_EQ(button->Caption(), "42");
  buttonClass.SetProperty(*button, "Enabled", Variant("False"));
  EXPECT_FALSE(button->Enabled());
  auto list = std::make_shared<ImageList>();
  buttonClass.SetProperty(*button, "ImageList", Variant(std::shared_ptr<Object>(list)));
  EXPECT_EQ(button->ImageList(), list);
  buttonClass.SetProperty(*button, "ImageList", Variant(nullptr));
  EXPECT_EQ(buttonClass.GetProperty(*button, "ImageList").TypeName(), "Nothing");
}

TEST_F(RegistryPropertyTest, BadValuesAreErrorsNamingThePropertyAndChangeNothing) {
  EXPECT_TRUE(mentions(
      test::errorOf(13, [&] { buttonClass.SetProperty(*button, "ImageIndex", Variant("abc")); }),
      "veltButton.ImageIndex"));
  EXPECT_TRUE(mentions(
      test::errorOf(6, [&] { buttonClass.Convert("ImageIndex", Variant(int32_t{70000})); }),
      "ImageIndex"));
  EXPECT_EQ(button->ImageIndex(), 0);
  EXPECT_TRUE(site->ChangedProperties().empty());
}

TEST_F(RegistryPropertyTest, AControlOfAnotherClassIsRefused) {
  auto glyph = hf.form.Add<veltXButton>("Glyph", 0, 40, 17, 17);
  test::errorOf(13, [&] { buttonClass.SetProperty(*glyph, "Caption", Variant("5")); });
  EXPECT_EQ(glyph->Caption(), "Glyph");
  registry().ClassOf(*glyph).SetProperty(*glyph, "Caption", Variant("5"));
  EXPECT_EQ(glyph->Caption(), "5");
}

}  // namespace
}  // namespace velt
