// veltButton on a headless form: its looks pixel by pixel, the icon and caption
// layouts measured with the pinned font, events, and persistence.

#include "velt/controls/buttons/veltButton.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "support/ButtonLook.hpp"
#include "support/ExpectError.hpp"
#include "support/HeadlessForm.hpp"
#include "velt/foundation/ColorScheme.hpp"
#include "velt/platform/ImageList.hpp"
#include "velt/platform/Picture.hpp"
#include "velt/platform/PropertyBag.hpp"

namespace velt {
namespace {

using test::HasButtonChrome;
using test::InkBox;
using test::IsFaceWithCaption;
using test::Region;

constexpr OLE_COLOR kWhite = 0xFFFFFF;
constexpr OLE_COLOR kDarkBlue = 0xC00000;
constexpr OLE_COLOR kOrange = 38631;
constexpr OLE_COLOR kIconColor = 0x0000FF;  // pure red: no palette colour comes near it
constexpr int32_t kIcon = 16;

const ColorScheme kNormal = SchemeNormal(kWhite, kDarkBlue, kWhite);
const ColorScheme kPressed = SchemePressed(kWhite, kDarkBlue, kWhite);
const ColorScheme kDisabled = SchemeDisabled(kWhite, kDarkBlue, kWhite);
const ColorScheme kFocused = SchemeFocused(kWhite, kOrange, kDarkBlue);

std::shared_ptr<ImageList> solidIcons(int count) {
  auto list = std::make_shared<ImageList>();
  for (int i = 0; i < count; ++i) {
    std::vector<uint32_t> pixels(kIcon * kIcon, 0xFF000000u | OleToPixel(kIconColor));
    list->ListImages().Add(std::make_shared<Picture>(kIcon, kIcon, std::move(pixels)));
  }
  return list;
}

float fix(double value) {
  return static_cast<float>(std::trunc(value));
}

InkBox box(int32_t left, int32_t top, int32_t width, int32_t height) {
  return InkBox{left, top, left + width - 1, top + height - 1};
}

::testing::AssertionResult SameBox(const InkBox& actual, const InkBox& expected) {
  if (actual.left == expected.left && actual.top == expected.top &&
      actual.right == expected.right && actual.bottom == expected.bottom)
    return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure()
         << "(" << actual.left << "," << actual.top << ")-(" << actual.right << "," << actual.bottom
         << "), expected (" << expected.left << "," << expected.top << ")-(" << expected.right
         << "," << expected.bottom << ")";
}

class veltButtonTest : public ::testing::Test {
 protected:
  void add(int32_t width, int32_t height) {
    button = hf.form.Add<veltButton>("veltButton1", 10, 10, width, height);
    site = hf.form.FindSite("veltButton1");
  }
  const Canvas& surface() { return site->Surface(); }
  // The face as the button paints it now, without caption and icon.
  Canvas bareFace() {
    const std::string caption = button->Caption();
    const int16_t index = button->ImageIndex();
    button->Caption("");
    button->ImageIndex(0);
    Canvas bare = surface();
    button->Caption(caption);
    button->ImageIndex(index);
    return bare;
  }
  float centredX(const std::string& text) {
    return fix(surface().ScaleWidth() / 2.0 - surface().TextWidth(text) / 2.0);
  }
  float centredY(const std::string& text) {
    return fix(surface().ScaleHeight() / 2.0 - surface().TextHeight(text) / 2.0);
  }
  // The caption drawn centred, in the colour, on the current face.
  ::testing::AssertionResult centredCaptionIn(OLE_COLOR color) {
    const Canvas bare = bareFace();
    const std::string& caption = button->Caption();
    return IsFaceWithCaption(surface(), bare, caption, centredX(caption), centredY(caption), color);
  }
  // Where the caption's ink lies when printed at (x, y).
  InkBox inkAt(const std::string& text, float x, float y) {
    const InkBox ink = test::InkOfText(surface().Font(), text);
    const auto dx = static_cast<int32_t>(x);
    const auto dy = static_cast<int32_t>(y);
    return InkBox{ink.left + dx, ink.top + dy, ink.right + dx, ink.bottom + dy};
  }
  void hoverAndTick() {
    hf.system->PostMouseMove(50, 20);
    hf.Run();
    hf.Tick();
  }

  test::HeadlessForm hf;
  std::shared_ptr<veltButton> button;
  Site* site = nullptr;
};

// ---- Looks ------------------------------------------------------------------

TEST_F(veltButtonTest, EachStateHasItsShadingAndTheCaptionCentredInItsColour) {
  add(100, 30);
  EXPECT_EQ(button->Caption(), "veltButton1");
  EXPECT_TRUE(HasButtonChrome(surface(), kNormal));
  EXPECT_TRUE(centredCaptionIn(kNormal.Text));
  button->Caption("Go");
  hoverAndTick();
  EXPECT_TRUE(HasButtonChrome(surface(), SchemeHover(kWhite, kDarkBlue, kWhite)));
  hf.system->PostMouseDown(1, 50, 20);
  hf.Run();
  hf.Tick();
  EXPECT_TRUE(HasButtonChrome(surface(), kPressed));
  EXPECT_TRUE(centredCaptionIn(kPressed.Text));
  button->Enabled(false);
  EXPECT_TRUE(HasButtonChrome(surface(), kDisabled));
  EXPECT_TRUE(centredCaptionIn(kDisabled.EdgeDark));

  auto odd = hf.form.Add<veltButton>("Odd", 200, 10, 37, 31);
  odd->Caption("");
  odd->BackColor(0x204080);
  odd->ForeColor(0x00FFFF);
  EXPECT_TRUE(HasButtonChrome(hf.form.FindSite("Odd")->Surface(),
                              SchemeNormal(0x204080, 0x00FFFF, kWhite)));
}

// Held Enter clicks with the pressed look; a focused button at rest takes the
// TabSelectColor, in any other state it looks like any other.
TEST_F(veltButtonTest, FocusTintsOnlyTheRestingLook) {
  add(100, 30);
  button->Caption("Go");
  site->SetFocus();
  hf.Run();
  EXPECT_TRUE(HasButtonChrome(surface(), kFocused));
  EXPECT_TRUE(centredCaptionIn(kFocused.Text));
  hf.system->PostKeyDown(13, 0);
  hf.system->PostKeyDown(13, 0);
  hf.Run();
  EXPECT_TRUE(HasButtonChrome(surface(), kPressed));
  hf.system->PostKeyUp(13, 0);
  hf.Run();
  EXPECT_TRUE(HasButtonChrome(surface(), kFocused));
  button->TabSelectColor(0x00FF00);
  EXPECT_TRUE(HasButtonChrome(surface(), SchemeFocused(kWhite, 0x00FF00, kDarkBlue)));
  hoverAndTick();
  EXPECT_TRUE(HasButtonChrome(surface(), SchemeHover(kWhite, kDarkBlue, kWhite)));
  button->Enabled(false);
  EXPECT_TRUE(HasButtonChrome(surface(), kDisabled));
}

TEST_F(veltButtonTest, TinyButtonsAndOverlongCaptionsPaintWithoutFault) {
  for (int32_t size : {0, 1, 2, 3}) {
    auto tiny = hf.form.Add<veltButton>("Tiny" + std::to_string(size), 200, 200, size, size);
    tiny->ImageList(solidIcons(1));
    tiny->ImageIndex(1);
    tiny->Caption("A caption far wider than the button");
  }
}

// ---- Layouts ----------------------------------------------------------------

// Without a caption the icon is centred; disabled, its shape takes the
// disabled caption colour. ImageIndex 0 draws no icon.
TEST_F(veltButtonTest, IconWithoutCaptionIsCentredAndIndexZeroDrawsNone) {
  add(100, 40);
  button->ImageList(solidIcons(1));
  button->ImageIndex(1);
  button->Caption("");
  const InkBox centred = box(fix(50 - kIcon / 2.0), fix(20 - kIcon / 2.0), kIcon, kIcon);
  EXPECT_TRUE(SameBox(test::ColorBox(surface(), kIconColor), centred));
  EXPECT_EQ(test::CountColor(surface(), kIconColor), kIcon * kIcon);
  button->Enabled(false);
  EXPECT_EQ(test::CountColor(surface(), kIconColor), 0);
  const Region place{centred.left, centred.top, centred.right + 1, centred.bottom + 1};
  EXPECT_EQ(test::CountColor(surface(), kDisabled.EdgeDark, place), kIcon * kIcon);
  button->Enabled(true);
  button->ImageIndex(0);
  button->Caption("Save");
  EXPECT_EQ(test::CountColor(surface(), kIconColor), 0);
  EXPECT_TRUE(centredCaptionIn(kNormal.Text));
}

// Side by side while the icon plus 1.7 letter heights exceed the height less 6:
// the icon at X 12, the caption at the icon's width + 24, both centred
// vertically. Otherwise stacked: icon, a 5-pixel gap and one text line form a
// block centred vertically, each centred horizontally. The switch is exact.
TEST_F(veltButtonTest, IconAndCaptionSitSideBySideOrStackedFromTheExactThreshold) {
  add(120, 30);
  button->ImageList(solidIcons(1));
  button->ImageIndex(1);
  button->Caption("Open");
  const double t = surface().TextHeight("I");
  const auto firstStacked = static_cast<int32_t>(std::ceil(kIcon + 1.7 * t + 6));
  for (int32_t h : {30, firstStacked - 1, firstStacked, 60}) {
    SCOPED_TRACE(h);
    site->MovePixels(10, 10, 120, h);
    const bool stacked = h >= firstStacked;
    const double top = h / 2.0 - (kIcon + t + 5) / 2;
    const InkBox icon = stacked ? box(fix(60 - kIcon / 2.0), fix(top), kIcon, kIcon)
                                : box(12, fix(h / 2.0 - kIcon / 2.0), kIcon, kIcon);
    EXPECT_TRUE(SameBox(test::ColorBox(surface(), kIconColor), icon));
    const Region rest =
        stacked ? Region{1, icon.bottom + 1, 119, h - 1} : Region{icon.right + 1, 1, 119, h - 1};
    EXPECT_TRUE(SameBox(test::DifferenceBox(surface(), bareFace(), rest),
                        stacked ? inkAt("Open", centredX("Open"), fix(top + kIcon + 5))
                                : inkAt("Open", kIcon + 24, centredY("Open"))));
  }
}

TEST_F(veltButtonTest, IconThatCannotBeHadIsLeftOutAndTheCaptionStillPlaced) {
  add(120, 30);
  button->ImageList(solidIcons(1));
  button->Caption("Open");
  for (int16_t index : {int16_t{2}, int16_t{-1}}) {
    button->ImageIndex(index);
    const Canvas bare = bareFace();
    EXPECT_TRUE(
        IsFaceWithCaption(surface(), bare, "Open", kIcon + 24, centredY("Open"), kNormal.Text))
        << "no icon, the caption in the side-by-side place, index " << index;
  }
  button->ImageList(std::make_shared<ImageList>());
  button->ImageIndex(1);
  EXPECT_EQ(test::CountColor(surface(), kIconColor), 0);
}

// ---- Events -----------------------------------------------------------------

TEST_F(veltButtonTest, DisablingWhilePressedClearsThePressSoNoClickFollows) {
  add(100, 30);
  test::EventLog log(*site);
  hf.system->PostMouseMove(20, 20);
  hf.system->PostMouseDown(1, 20, 20);
  hf.Run();
  ASSERT_TRUE(button->MouseIsDown());
  button->Enabled(false);
  EXPECT_FALSE(button->MouseIsDown());
  button->Enabled(true);
  hf.system->PostMouseUp(1, 20, 20);
  hf.Run();
  EXPECT_EQ(log.Names(), (std::vector<std::string>{"MouseMove", "MouseDown", "MouseUp"}));
}

// ---- Properties and persistence ---------------------------------------------

TEST_F(veltButtonTest, ButtonSettersMarkChangedAndRepaint) {
  add(100, 30);
  button->ImageList(solidIcons(1));
  site->ClearChangedProperties();
  button->ImageIndex(1);
  EXPECT_GT(test::CountColor(surface(), kIconColor), 0) << "repainted at once";
  button->TabSelectColor(0x123456);
  button->ImageList(nullptr);
  EXPECT_EQ(test::CountColor(surface(), kIconColor), 0);
  EXPECT_EQ(site->ChangedProperties(),
            (std::vector<std::string>{"ImageIndex", "TabSelectColor", "ImageList"}));
}

TEST_F(veltButtonTest, PropertiesSurviveAJsonRoundTripInTableOrder) {
  add(100, 30);
  PropertyBag defaults;
  button->WriteProperties(defaults);
  EXPECT_EQ(defaults.Count(), 0u) << "defaults are not stored";

  auto icons = solidIcons(2);
  button->BackColor(0x010203);
  button->ForeColor(0x040506);
  button->Enabled(false);
  button->Font(std::make_shared<Font>(test::kPinnedFamily, 10.0f));
  button->Caption("Saved");
  button->TabSelectColor(0x0A0B0C);
  button->ImageList(icons);
  button->ImageIndex(2);
  PropertyBag bag;
  bag.Namer([](const Object&) { return std::string("Icons"); });
  button->WriteProperties(bag);
  EXPECT_EQ(bag.Keys(),
            (std::vector<std::string>{"BackColor", "ForeColor", "Enabled", "Font", "Caption",
                                      "TabSelectColor", "ImageList", "ImageIndex"}));

  PropertyBag loaded = PropertyBag::FromJson(bag.ToJson());
  loaded.Resolver([&](const std::string& name) -> std::shared_ptr<Object> {
    return name == "Icons" ? icons : nullptr;
  });
  auto copy = std::make_shared<veltButton>();
  hf.form.AddControl(copy, "Copy", 0, 100, 100, 30, &loaded);
  PropertyBag again;
  again.Namer([](const Object&) { return std::string("Icons"); });
  copy->WriteProperties(again);
  EXPECT_EQ(again.ToJson(), bag.ToJson()) << "everything read back";
  EXPECT_EQ(copy->ImageList(), icons);
}

TEST_F(veltButtonTest, WrongTypedStoredValueIsError13NamingTheKey) {
  const std::pair<const char*, Variant> stored[] = {
      {"TabSelectColor", Variant("orange")},
      {"ImageIndex", Variant("first")},
      {"ImageList", Variant(std::make_shared<Font>())},
      {"ImageList", Variant(std::static_pointer_cast<Object>(std::make_shared<Picture>(1, 1)))}};
  int n = 0;
  for (const auto& [key, value] : stored) {
    PropertyBag bag;
    bag.WriteProperty(key, value);
    const std::string message = test::errorOf(errTypeMismatch, [&] {
      hf.form.AddControl(std::make_shared<veltButton>(), "Bad" + std::to_string(n++), 0, 0, 9, 9,
                         &bag);
    });
    EXPECT_NE(message.find(key), std::string::npos) << message;
  }
}

}  // namespace
}  // namespace velt
