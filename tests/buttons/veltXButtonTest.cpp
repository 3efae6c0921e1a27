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
const ColorScheme kNormal = SchemeNormal(kWhite, kDarkBlue, kWhite);

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

// The symbol glyph and a text caption alike: centred horizontally, one pixel
// above the vertical centre, in each state's colour; focus changes nothing.
TEST_F(veltXButtonTest, CaptionIsCentredOnePixelHighInEachStatesColour) {
  add(17, 17, "6");
  glyph->Font(std::make_shared<Font>("Webdings", 8.25f));
  EXPECT_TRUE(HasButtonChrome(surface(), kNormal));
  EXPECT_TRUE(glyphDrawnIn(kNormal.Text));
  const Canvas before = surface();
  site->SetFocus();
  hf.Run();
  ASSERT_EQ(glyph->HasFocus(), 1);
  EXPECT_TRUE(test::DifferenceBox(surface(), before).Empty()) << "focused looks unfocused";

  site->MovePixels(10, 10, 60, 24);
  glyph->Font(test::PinnedFont());
  glyph->Caption("Go");
  EXPECT_TRUE(glyphDrawnIn(kNormal.Text));
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
  test::EventLog log(*site);
  glyph->Enabled(false);
  const ColorScheme disabled = SchemeDisabled(kWhite, kDarkBlue, kWhite);
  EXPECT_TRUE(HasButtonChrome(surface(), disabled));
  EXPECT_TRUE(glyphDrawnIn(disabled.EdgeDark));
  glyph->Enabled(true);
  hf.system->PostMouseUp(1, 15, 15);
  hf.Run();
  EXPECT_EQ(log.Names(), (std::vector<std::string>{"MouseUp"})) << "disabling dropped the press";
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
