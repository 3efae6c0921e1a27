// veltButton and the glyph button veltXButton on a headless form: their looks
// pixel by pixel, the icon and caption layouts measured with the pinned font,
// and persistence.

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
#include "velt/controls/buttons/veltXButton.hpp"
#include "velt/foundation/ColorScheme.hpp"
#include "velt/platform/ImageList.hpp"
#include "velt/platform/Picture.hpp"
#include "velt/platform/PropertyBag.hpp"

namespace velt {
namespace {

using test::HasButtonChrome;
using test::InkBox;
using Names = std::vector<std::string>;

constexpr OLE_COLOR kWhite = 0xFFFFFF;
constexpr OLE_COLOR kDarkBlue = 0xC00000;
constexpr OLE_COLOR kIconColor = 0x0000FF;  // pure red: no palette colour comes near it
constexpr int32_t kIcon = 16;

const ColorScheme kNormal = SchemeNormal(kWhite, kDarkBlue, kWhite);
const ColorScheme kHover = SchemeHover(kWhite, kDarkBlue, kWhite);
const ColorScheme kPressed = SchemePressed(kWhite, kDarkBlue, kWhite);
const ColorScheme kDisabled = SchemeDisabled(kWhite, kDarkBlue, kWhite);

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

InkBox box(int32_t left, int32_t top, int32_t size) {
  return InkBox{left, top, left + size - 1, top + size - 1};
}

class veltButtonTest : public ::testing::Test {
 protected:
  void add(int32_t width, int32_t height, bool withIcon = false) {
    button = hf.form.Add<veltButton>("veltButton1", 10, 10, width, height);
    site = hf.form.FindSite("veltButton1");
    control = button.get();
    if (!withIcon) return;
    button->ImageList(solidIcons(1));
    button->ImageIndex(1);
  }
  const Canvas& surface() { return site->Surface(); }
  // The face as the control paints it now, without caption and icon.
  Canvas bareFace() {
    const std::string caption = control->Caption();
    const int16_t index = button ? button->ImageIndex() : 0;
    control->Caption("");
    if (button) button->ImageIndex(0);
    Canvas bare = site->Surface();
    control->Caption(caption);
    if (button) button->ImageIndex(index);
    return bare;
  }
  float centredX(const std::string& text) {
    return fix(surface().ScaleWidth() / 2.0 - surface().TextWidth(text) / 2.0);
  }
  float centredY(const std::string& text) {
    return fix(surface().ScaleHeight() / 2.0 - surface().TextHeight(text) / 2.0);
  }
  ::testing::AssertionResult captionAt(float x, float y, OLE_COLOR color) {
    const Canvas bare = bareFace();
    return test::IsFaceWithCaption(surface(), bare, control->Caption(), x, y, color);
  }
  ::testing::AssertionResult centredCaptionIn(OLE_COLOR color) {
    return captionAt(centredX(control->Caption()), centredY(control->Caption()), color);
  }
  // Where the caption's ink lies when printed at (x, y).
  InkBox inkAt(const std::string& text, float x, float y) {
    const InkBox ink = test::InkOfText(surface().Font(), text);
    const auto dx = static_cast<int32_t>(x);
    const auto dy = static_cast<int32_t>(y);
    return InkBox{ink.left + dx, ink.top + dy, ink.right + dx, ink.bottom + dy};
  }
  void runAndTick() {
    hf.Run();
    hf.Tick();
  }

  test::HeadlessForm hf;
  std::shared_ptr<veltButton> button;
  Site* site = nullptr;
  ControlFrame* control = nullptr;
};

TEST_F(veltButtonTest, EachStateHasItsShadingAndTheCaptionCentredInItsColour) {
  add(100, 30);
  EXPECT_TRUE(HasButtonChrome(surface(), kNormal));
  EXPECT_TRUE(centredCaptionIn(kNormal.Text));
  button->Caption("Go");
  hf.system->PostMouseMove(50, 20);
  runAndTick();
  EXPECT_TRUE(HasButtonChrome(surface(), kHover));
  hf.system->PostMouseDown(1, 50, 20);
  runAndTick();
  EXPECT_TRUE(HasButtonChrome(surface(), kPressed));
  EXPECT_TRUE(centredCaptionIn(kPressed.Text));
  ASSERT_TRUE(button->MouseIsDown());
  button->Enabled(false);
  EXPECT_FALSE(button->MouseIsDown()) << "disabling drops the press: no click follows";
  EXPECT_TRUE(HasButtonChrome(surface(), kDisabled));
  EXPECT_TRUE(centredCaptionIn(kDisabled.EdgeDark));

  auto odd = hf.form.Add<veltButton>("Odd", 200, 10, 37, 31);  // odd sizes halve truncated
  odd->BackColor(0x204080);
  odd->ForeColor(0x00FFFF);
  EXPECT_TRUE(HasButtonChrome(hf.form.FindSite("Odd")->Surface(),
                              SchemeNormal(0x204080, 0x00FFFF, kWhite)));
  for (int32_t size : {0, 1, 2, 3}) {  // tiny, with icon and overlong caption: no fault
    auto tiny = hf.form.Add<veltButton>("Tiny" + std::to_string(size), 200, 200, size, size);
    tiny->ImageList(solidIcons(1));
    tiny->ImageIndex(1);
    tiny->Caption("A caption far wider than the button");
  }
}

// A focused button at rest takes the TabSelectColor; pressed by Enter or
// hovered, it looks like any other.
// A hover tick that finds the state as it was paints nothing: a pixel set on
// the surface meanwhile stays until the state changes.
TEST_F(veltButtonTest, AHoverTickThatChangesNothingPaintsNothing) {
  add(100, 30);
  hf.system->PostMouseMove(50, 20);
  runAndTick();
  site->Surface().FillRect(0, 0, 1, 1, 0x123456);
  hf.Tick(5);
  EXPECT_EQ(test::PixelAt(surface(), 0, 0), OLE_COLOR{0x123456});
  hf.system->PostMouseDown(1, 50, 20);
  runAndTick();
  EXPECT_NE(test::PixelAt(surface(), 0, 0), OLE_COLOR{0x123456});
}

TEST_F(veltButtonTest, FocusTintsOnlyTheRestingLook) {
  add(100, 30);
  button->Caption("Go");
  button->TabSelectColor(0x00FF00);
  site->SetFocus();
  hf.Run();
  const ColorScheme focused = SchemeFocused(kWhite, 0x00FF00, kDarkBlue);
  EXPECT_TRUE(HasButtonChrome(surface(), focused));
  EXPECT_TRUE(centredCaptionIn(focused.Text));
  hf.system->PostKeyDown(13, 0);
  hf.Run();
  EXPECT_TRUE(HasButtonChrome(surface(), kPressed));
  hf.system->PostKeyUp(13, 0);
  hf.Run();
  EXPECT_TRUE(HasButtonChrome(surface(), focused));
  hf.system->PostMouseMove(50, 20);
  runAndTick();
  EXPECT_TRUE(HasButtonChrome(surface(), kHover));
}

// Without a caption the icon is centred; disabled, its shape takes the
// disabled caption colour. ImageIndex 0 draws no icon.
TEST_F(veltButtonTest, IconWithoutCaptionIsCentredAndIndexZeroDrawsNone) {
  add(100, 40, true);
  button->Caption("");
  const InkBox centred = box(fix(50 - kIcon / 2.0), fix(20 - kIcon / 2.0), kIcon);
  EXPECT_EQ(test::ColorBox(surface(), kIconColor), centred);
  EXPECT_EQ(test::CountColor(surface(), kIconColor), kIcon * kIcon);
  button->Enabled(false);
  EXPECT_EQ(test::CountColor(surface(), kIconColor), 0);
  const test::Region place{centred.left, centred.top, centred.right + 1, centred.bottom + 1};
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
  add(120, 30, true);
  button->Caption("Open");
  const double t = surface().TextHeight("I");
  const auto firstStacked = static_cast<int32_t>(std::ceil(kIcon + 1.7 * t + 6));
  for (int32_t h : {firstStacked - 1, firstStacked}) {
    SCOPED_TRACE(h);
    site->MovePixels(10, 10, 120, h);
    const bool stacked = h >= firstStacked;
    const double top = h / 2.0 - (kIcon + t + 5) / 2;
    const InkBox icon = stacked ? box(fix(60 - kIcon / 2.0), fix(top), kIcon)
                                : box(12, fix(h / 2.0 - kIcon / 2.0), kIcon);
    EXPECT_EQ(test::ColorBox(surface(), kIconColor), icon);
    const test::Region rest = stacked ? test::Region{1, icon.bottom + 1, 119, h - 1}
                                      : test::Region{icon.right + 1, 1, 119, h - 1};
    EXPECT_EQ(test::DifferenceBox(surface(), bareFace(), rest),
              stacked ? inkAt("Open", centredX("Open"), fix(top + kIcon + 5))
                      : inkAt("Open", kIcon + 24, centredY("Open")));
  }
}

// An index with no image is left out; the caption keeps the side-by-side place.
TEST_F(veltButtonTest, IconThatCannotBeHadIsLeftOutAndTheCaptionStillPlaced) {
  add(120, 30, true);
  button->Caption("Open");
  for (int16_t index : {int16_t{2}, int16_t{-1}}) {
    button->ImageIndex(index);
    EXPECT_TRUE(captionAt(kIcon + 24, centredY("Open"), kNormal.Text)) << index;
  }
  button->ImageList(std::make_shared<ImageList>());
  button->ImageIndex(1);
  EXPECT_EQ(test::CountColor(surface(), kIconColor), 0);
}

TEST_F(veltButtonTest, PropertiesSurviveAJsonRoundTripInTableOrder) {
  add(100, 30);
  PropertyBag defaults;
  button->WriteProperties(defaults);
  EXPECT_EQ(defaults.Count(), 0u) << "defaults are not stored";

  auto icons = solidIcons(2);
  site->ClearChangedProperties();
  button->TabSelectColor(0x0A0B0C);
  button->ImageList(icons);
  button->ImageIndex(2);
  EXPECT_EQ(site->ChangedProperties(), (Names{"TabSelectColor", "ImageList", "ImageIndex"}));
  EXPECT_EQ(test::CountColor(surface(), kIconColor), kIcon * kIcon) << "repainted at once";
  button->BackColor(0x010203);
  button->Caption("Saved");
  PropertyBag bag;
  bag.Namer([](const Object&) { return std::string("Icons"); });
  button->WriteProperties(bag);
  EXPECT_EQ(bag.Keys(),
            (Names{"BackColor", "Caption", "TabSelectColor", "ImageList", "ImageIndex"}));

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

// The colour and index keys fail as the frame's do; the list has its own check.
TEST_F(veltButtonTest, StoredImageListOfAnotherTypeIsError13NamingTheKey) {
  PropertyBag bag;
  bag.WriteProperty("ImageList",
                    Variant(std::static_pointer_cast<Object>(std::make_shared<Picture>(1, 1))));
  const std::string message = test::errorOf(errTypeMismatch, [&] {
    hf.form.AddControl(std::make_shared<veltButton>(), "Bad", 0, 0, 9, 9, &bag);
  });
  EXPECT_NE(message.find("ImageList"), std::string::npos) << message;
}

// Centred horizontally, one pixel above the vertical centre, in each state's
// colour; focus changes nothing; only the frame's properties are stored.
TEST_F(veltButtonTest, GlyphSitsOnePixelHighInEachStatesColourAndFocusChangesNothing) {
  auto glyph = hf.form.Add<veltXButton>("veltXButton1", 10, 10, 17, 17);
  site = hf.form.FindSite("veltXButton1");
  control = glyph.get();
  glyph->Caption("6");
  glyph->Font(std::make_shared<Font>("Webdings", 8.25f));
  const auto glyphIn = [&](OLE_COLOR color) {
    return captionAt(centredX("6"), centredY("6") - 1, color);
  };
  EXPECT_TRUE(HasButtonChrome(surface(), kNormal));
  EXPECT_TRUE(glyphIn(kNormal.Text));
  const Canvas before = surface();
  site->SetFocus();
  hf.Run();
  ASSERT_EQ(glyph->HasFocus(), 1);
  EXPECT_TRUE(test::DifferenceBox(surface(), before).Empty()) << "focused looks unfocused";
  hf.system->PostMouseMove(15, 15);
  hf.system->PostMouseDown(1, 15, 15);
  runAndTick();
  EXPECT_TRUE(HasButtonChrome(surface(), kPressed));
  EXPECT_TRUE(glyphIn(kPressed.Text));
  ASSERT_TRUE(glyph->MouseIsDown());
  glyph->Enabled(false);
  EXPECT_FALSE(glyph->MouseIsDown()) << "disabling drops the press";
  EXPECT_TRUE(glyphIn(kDisabled.EdgeDark));

  glyph->Enabled(true);
  glyph->BackColor(0x111111);
  PropertyBag bag;
  glyph->WriteProperties(bag);
  EXPECT_EQ(bag.Keys(), (Names{"BackColor", "Font", "Caption"}));
  auto copy = std::make_shared<veltXButton>();
  hf.form.AddControl(copy, "Copy", 0, 100, 17, 17, &bag);
  EXPECT_EQ(copy->BackColor(), 0x111111u);
  EXPECT_EQ(copy->Caption(), "6");
}

}  // namespace
}  // namespace velt
