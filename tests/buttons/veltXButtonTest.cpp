// veltXButton: the glyph button other controls are built from.

#include "velt/controls/buttons/veltXButton.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "support/ButtonLook.hpp"
#include "support/HeadlessForm.hpp"
#include "velt/foundation/ColorScheme.hpp"
#include "velt/platform/PropertyBag.hpp"

namespace velt {
namespace {

using test::HasButtonChrome;

constexpr OLE_COLOR kWhite = 0xFFFFFF;
constexpr OLE_COLOR kDarkBlue = 0xC00000;

class veltXButtonTest : public ::testing::Test {
 protected:
  void add(int32_t width, int32_t height, const std::string& caption) {
    glyph = hf.form.Add<veltXButton>("veltXButton1", 10, 10, width, height);
    site = hf.form.FindSite("veltXButton1");
    glyph->Caption(caption);
  }
  const Canvas& surface() { return site->Surface(); }
  // The caption printed once, centred horizontally and one pixel above the
  // vertical centre, in the colour, on the face the glyph button paints now.
  ::testing::AssertionResult glyphDrawnIn(OLE_COLOR color) {
    const std::string caption = glyph->Caption();
    glyph->Caption("");
    const Canvas bare = surface();
    glyph->Caption(caption);
    const double w = surface().ScaleWidth();
    const double h = surface().ScaleHeight();
    const auto x = static_cast<float>(std::trunc(w / 2 - surface().TextWidth(caption) / 2.0));
    const auto y = static_cast<float>(std::trunc(h / 2 - surface().TextHeight(caption) / 2.0) - 1);
    return test::IsFaceWithCaption(surface(), bare, caption, x, y, color);
  }

  test::HeadlessForm hf;
  std::shared_ptr<veltXButton> glyph;
  Site* site = nullptr;
};

TEST_F(veltXButtonTest, SymbolGlyphIsCentredOnePixelHigh) {
  add(17, 17, "6");
  EXPECT_EQ(glyph->ID(), 15);
  EXPECT_EQ(glyph->ClassName(), "veltXButton");
  glyph->Font(std::make_shared<Font>("Webdings", 8.25f));
  EXPECT_TRUE(HasButtonChrome(surface(), SchemeNormal(kWhite, kDarkBlue, kWhite)));
  EXPECT_TRUE(glyphDrawnIn(SchemeNormal(kWhite, kDarkBlue, kWhite).Text));
}

TEST_F(veltXButtonTest, TextCaptionIsAlsoOnePixelHigh) {
  add(60, 24, "Go");
  EXPECT_TRUE(glyphDrawnIn(SchemeNormal(kWhite, kDarkBlue, kWhite).Text));
}

TEST_F(veltXButtonTest, FocusedGlyphButtonLooksLikeAnUnfocusedOne) {
  add(17, 17, "5");
  const Canvas before = surface();
  site->SetFocus();
  hf.Run();
  ASSERT_EQ(glyph->HasFocus(), 1);
  EXPECT_TRUE(test::DifferenceBox(surface(), before).Empty());
}

TEST_F(veltXButtonTest, EachStateHasItsPaletteAndDisabledTextIsEdgeDark) {
  add(40, 20, "H");
  hf.system->PostMouseMove(15, 15);
  hf.Run();
  hf.Tick();
  EXPECT_TRUE(HasButtonChrome(surface(), SchemeHover(kWhite, kDarkBlue, kWhite)));
  hf.system->PostMouseDown(1, 15, 15);
  hf.Run();
  hf.Tick();
  const ColorScheme pressed = SchemePressed(kWhite, kDarkBlue, kWhite);
  EXPECT_TRUE(HasButtonChrome(surface(), pressed));
  EXPECT_TRUE(glyphDrawnIn(pressed.Text));
  glyph->Enabled(false);
  const ColorScheme disabled = SchemeDisabled(kWhite, kDarkBlue, kWhite);
  EXPECT_TRUE(HasButtonChrome(surface(), disabled));
  EXPECT_TRUE(glyphDrawnIn(disabled.EdgeDark));
}

TEST_F(veltXButtonTest, DisablingWhilePressedMeansNoClick) {
  add(17, 17, "6");
  test::EventLog log(*site);
  hf.system->PostMouseMove(15, 15);
  hf.system->PostMouseDown(1, 15, 15);
  hf.Run();
  glyph->Enabled(false);
  glyph->Enabled(true);
  hf.system->PostMouseUp(1, 15, 15);
  hf.Run();
  EXPECT_EQ(log.Names(), (std::vector<std::string>{"MouseMove", "MouseDown", "MouseUp"}));
}

TEST_F(veltXButtonTest, RaisesTheFrameEventsInOrder) {
  add(17, 17, "6");
  site->SetFocus();
  test::EventLog log(*site);
  hf.system->PostMouseMove(12, 13);
  hf.system->PostMouseDown(1, 12, 13, 4);
  hf.system->PostMouseUp(1, 12, 13);
  hf.system->PostKeyDown(32, 0);
  hf.system->PostKeyPress(32);
  hf.system->PostKeyUp(32, 0);
  hf.Run();
  EXPECT_EQ(log.Lines(),
            (std::vector<std::string>{"MouseMove(i0, i0, f2, f3)", "MouseDown(i1, i4, f2, f3)",
                                      "Click()", "MouseUp(i1, i0, f2, f3)", "KeyDown(i32, i0)",
                                      "Click()", "KeyPress(i32)", "KeyUp(i32, i0)"}));
}

TEST_F(veltXButtonTest, StoresOnlyTheFrameProperties) {
  add(17, 17, "5");
  glyph->BackColor(0x111111);
  PropertyBag bag;
  glyph->WriteProperties(bag);
  EXPECT_EQ(bag.Keys(), (std::vector<std::string>{"BackColor", "Caption"}));
  const PropertyBag loaded = PropertyBag::FromJson(bag.ToJson());
  auto copy = std::make_shared<veltXButton>();
  hf.form.AddControl(copy, "Copy", 0, 100, 17, 17, &loaded);
  EXPECT_EQ(copy->BackColor(), 0x111111u);
  EXPECT_EQ(copy->Caption(), "5");
}

}  // namespace
}  // namespace velt
