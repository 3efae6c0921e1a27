// veltColorPicker on a headless form: the columns, marker, swatches and
// readout pixel by pixel, which points pick and which do not, what a pick
// reads from the surface, event order, the Color property and persistence.

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <memory>
#include <string>
#include <vector>

#include "support/ExpectError.hpp"
#include "support/HeadlessForm.hpp"
#include "support/Pixels.hpp"
#include "velt/controls/lists/veltColorPicker.hpp"
#include "velt/foundation/Colors.hpp"
#include "velt/foundation/NumberText.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/PropertyBag.hpp"

namespace velt {
namespace {

using test::PixelAt;
using test::Region;

constexpr OLE_COLOR kWhite = 0xFFFFFF;
constexpr OLE_COLOR kBlack = 0;
constexpr OLE_COLOR kRed = 0x0000FF;
constexpr OLE_COLOR kOrange = 38631;
constexpr int32_t kWidth = 170;
constexpr int32_t kHeight = 90;
constexpr int32_t kLeft = 10;  // where the picker sits on the form
constexpr int32_t kTop = 10;

const std::vector<OLE_COLOR> kMiddles = {0x808080,
                                         kRed,
                                         BlendColor(kRed, 0x00FFFF, 128),
                                         0x00FFFF,
                                         0x00FF00,
                                         BlendColor(0x00FF00, 0xFF0000, 128),
                                         0xFF0000,
                                         BlendColor(0xFF0000, kRed, 128)};

// A column's colour in row y: white to its middle colour over rows 0..h, the
// middle colour to black over rows H-h..H-1 (h = H / 2), the second half drawn
// last.
OLE_COLOR columnAt(OLE_COLOR middle, int32_t y, int32_t height = kHeight) {
  const int32_t h = height / 2;
  if (y >= height - h) return test::GradientAt(middle, kBlack, h, y - (height - h));
  return test::GradientAt(kWhite, middle, h + 1, y);
}

class ColorPickerTest : public ::testing::Test {
 protected:
  void SetUp() override {
    picker = hf.form.Add<veltColorPicker>("veltColorPicker1", kLeft, kTop, kWidth, kHeight);
    site = hf.form.FindSite("veltColorPicker1");
    log = std::make_unique<test::EventLog>(*site);
  }
  const Canvas& surface() { return site->Surface(); }
  OLE_COLOR at(int32_t x, int32_t y) { return PixelAt(surface(), x, y); }

  // Presses and releases the left button at the picker's own (x, y).
  void clickAt(int32_t x, int32_t y) {
    hf.system->PostMouseDown(1, kLeft + x, kTop + y);
    hf.system->PostMouseUp(1, kLeft + x, kTop + y);
    hf.Run();
  }

  // The outline square of side 2r+1 around (x, y) is all the colour.
  ::testing::AssertionResult ringOf(int32_t x, int32_t y, int32_t r, OLE_COLOR color) {
    for (int32_t i = -r; i <= r; ++i) {
      for (auto [px, py] : {std::pair{x + i, y - r}, std::pair{x + i, y + r},
                            std::pair{x - r, y + i}, std::pair{x + r, y + i}}) {
        if (at(px, py) != color)
          return ::testing::AssertionFailure() << "(" << px << "," << py << ") is 0x" << std::hex
                                               << at(px, py) << ", expected 0x" << color;
      }
    }
    return ::testing::AssertionSuccess();
  }

  // The readout lines as the picker prints them for the colour, in black on
  // white, compared where no column or swatch is.
  ::testing::AssertionResult readoutShows(OLE_COLOR picked) {
    Canvas expected(kWidth, kHeight);
    expected.Font(surface().Font());
    const RGBTriple rgb = ColorToRGB(picked);
    const std::vector<std::pair<std::string, std::pair<float, float>>> texts = {
        {"R: " + std::to_string(rgb.Red), {115, 10}},
        {"G: " + std::to_string(rgb.Green), {115, 25}},
        {"B: " + std::to_string(rgb.Blue), {115, 40}},
        {HexDigits(static_cast<int32_t>(picked)), {90, 65}}};
    for (const auto& [text, spot] : texts) {
      expected.CurrentX(spot.first);
      expected.CurrentY(spot.second);
      expected.Print(text);
    }
    for (Region region : {Region{111, 0, kWidth, 61}, Region{80, 61, kWidth, kHeight}}) {
      const test::InkBox wrong = test::DifferenceBox(surface(), expected, region);
      if (!wrong.Empty())
        return ::testing::AssertionFailure()
               << "readout differs in (" << wrong.left << "," << wrong.top << ")-(" << wrong.right
               << "," << wrong.bottom << ")";
    }
    return ::testing::AssertionSuccess();
  }

  // Both 19 x 19 swatch interiors are the colours, inside black frames.
  ::testing::AssertionResult swatchesShow(OLE_COLOR picked, OLE_COLOR color) {
    const int upper = test::CountColor(surface(), picked, Region{91, 11, 110, 30});
    const int lower = test::CountColor(surface(), color, Region{91, 41, 110, 60});
    if (upper != 19 * 19 || lower != 19 * 19)
      return ::testing::AssertionFailure() << upper << " and " << lower << " swatch pixels right";
    for (int32_t top : {10, 40}) {
      auto frame = ringOf(100, top + 10, 10, kBlack);
      if (!frame) return frame << " (swatch frame at y " << top << ")";
    }
    return ::testing::AssertionSuccess();
  }

  test::HeadlessForm hf;
  std::shared_ptr<veltColorPicker> picker;
  Site* site = nullptr;
  std::unique_ptr<test::EventLog> log;
};

// ---- Looks ------------------------------------------------------------------

TEST_F(ColorPickerTest, FreshPickerShowsColumnsMarkerWhitePickedAndTheOrangeColour) {
  EXPECT_EQ(picker->ID(), 1);
  EXPECT_EQ(picker->Color(), kOrange);
  EXPECT_EQ(picker->PickedColor(), kWhite);
  EXPECT_TRUE(swatchesShow(kWhite, kOrange));
  EXPECT_TRUE(readoutShows(kWhite));
  EXPECT_TRUE(ringOf(3, 3, 3, kBlack));
  EXPECT_TRUE(ringOf(3, 3, 2, kWhite));
  ASSERT_EQ(kMiddles[0], BlendColor(kWhite, kBlack, 128));
  for (int32_t column = 0; column < 8; ++column) {
    for (int32_t x : {column * 10, column * 10 + 9}) {
      for (int32_t y = 7; y < kHeight; ++y)
        ASSERT_EQ(at(x, y), columnAt(kMiddles[column], y)) << "x " << x << " y " << y;
    }
  }
}

TEST_F(ColorPickerTest, OnlyTheColumnsTakeTheControlsHeight) {
  site->MovePixels(kLeft, kTop, 200, 121);
  for (int32_t y = 7; y < 121; ++y)
    ASSERT_EQ(at(15, y), columnAt(kRed, y, 121)) << y;
  EXPECT_TRUE(swatchesShow(kWhite, kOrange));
  EXPECT_TRUE(readoutShows(kWhite));
}

// ---- Picking ----------------------------------------------------------------

// A press picks the pixel under it and moves the marker there; a move with the
// button held and the release pick again, each raising MouseMove first.
TEST_F(ColorPickerTest, LeftPressMovesAndReleasePickThePixelAndMoveTheMarker) {
  hf.system->PostMouseDown(1, kLeft + 15, kTop + 60);
  hf.Run();
  const OLE_COLOR expected = columnAt(kRed, 60);
  EXPECT_EQ(picker->PickedColor(), expected);
  EXPECT_TRUE(swatchesShow(expected, kOrange));
  EXPECT_TRUE(readoutShows(expected));
  EXPECT_TRUE(ringOf(15, 60, 3, kBlack));
  EXPECT_TRUE(ringOf(15, 60, 2, kWhite));
  EXPECT_EQ(at(15, 60), expected) << "the centre keeps the column";
  EXPECT_EQ(at(3, 3), columnAt(kMiddles[0], 3)) << "the old marker is gone";
  for (int32_t y : {3, 45, 86}) {  // white, the middle red, almost black
    hf.system->PostMouseMove(kLeft + 15, kTop + y);
    hf.Run();
    EXPECT_EQ(picker->PickedColor(), columnAt(kRed, y)) << y;
  }
  hf.system->PostMouseUp(1, kLeft + 25, kTop + 70);
  hf.Run();
  EXPECT_EQ(log->Lines(),
            (std::vector<std::string>{"MouseMove(i1, i0, f15, f60)", "MouseDown(i1, i0, f15, f60)",
                                      "MouseMove(i1, i0, f15, f3)", "MouseMove(i1, i0, f15, f45)",
                                      "MouseMove(i1, i0, f15, f86)", "MouseMove(i1, i0, f25, f70)",
                                      "MouseUp(i1, i0, f25, f70)"}));
  EXPECT_EQ(picker->MarkerX(), 25);
  EXPECT_EQ(picker->PickedColor(), columnAt(kMiddles[2], 70));
}

TEST_F(ColorPickerTest, PointsWithinTheEdgeMarginsAreRefusedButStillReported) {
  const struct {
    int32_t x, y;
    bool picks;
  } points[] = {{3, 3, true},    {2, 50, false},   {50, 2, false},
                {166, 86, true}, {167, 50, false}, {50, 87, false}};
  for (const auto& point : points) {
    clickAt(40, 40);
    log->Clear();
    clickAt(point.x, point.y);
    const bool moved = picker->MarkerX() == point.x && picker->MarkerY() == point.y;
    EXPECT_EQ(moved, point.picks) << point.x << "," << point.y;
    EXPECT_EQ(log->Names(),
              (std::vector<std::string>{"MouseMove", "MouseDown", "MouseMove", "MouseUp"}));
  }
}

TEST_F(ColorPickerTest, OnlyTheLeftButtonAlonePicks) {
  clickAt(15, 60);
  const OLE_COLOR picked = picker->PickedColor();
  hf.system->PostMouseDown(2, kLeft + 45, kTop + 30);
  hf.system->PostMouseMove(kLeft + 46, kTop + 30);
  hf.system->PostMouseUp(2, kLeft + 46, kTop + 30);
  hf.system->PostMouseDown(1, kLeft + 15, kTop + 60);
  hf.system->PostMouseDown(2, kLeft + 55, kTop + 30);
  hf.system->PostMouseMove(kLeft + 56, kTop + 30);  // both held: Button 3
  hf.Run();
  EXPECT_EQ(picker->PickedColor(), picked);
  EXPECT_EQ(picker->MarkerX(), 15);
  EXPECT_EQ(log->Lines().back(), "MouseMove(i3, i0, f56, f30)");
}

// The release picks again, at the marker's centre, which the marker leaves
// alone; so the colour is checked while the button is still held.
TEST_F(ColorPickerTest, APickBesideTheMarkerReadsTheMarkersOwnPixels) {
  clickAt(40, 50);
  hf.system->PostMouseDown(1, kLeft + 43, kTop + 50);  // the right edge of the black outline
  hf.Run();
  EXPECT_EQ(picker->PickedColor(), kBlack);
  hf.system->PostMouseMove(kLeft + 41, kTop + 51);  // the white outline of the marker at (43, 50)
  hf.Run();
  EXPECT_EQ(picker->PickedColor(), kWhite);
  clickAt(100, 50);
  EXPECT_EQ(picker->PickedColor(), kOrange) << "the lower swatch can be picked too";
}

// ---- Color and persistence --------------------------------------------------

// Color repaints the lower swatch only and must be plain RGB; it is the one
// stored property, and a bad stored one is an error naming it.
TEST_F(ColorPickerTest, ColorRepaintsTheLowerSwatchOnlyAndIsTheOneStoredProperty) {
  PropertyBag bag;
  picker->WriteProperties(bag);
  EXPECT_EQ(bag.Count(), 0u);
  clickAt(15, 60);
  const OLE_COLOR picked = picker->PickedColor();
  site->ClearChangedProperties();
  picker->Color(0x0A0B0C);
  EXPECT_EQ(site->ChangedProperties(), (std::vector<std::string>{"Color"}));
  EXPECT_TRUE(swatchesShow(picked, 0x0A0B0C));
  EXPECT_TRUE(readoutShows(picked));
  for (OLE_COLOR bad : {OLE_COLOR{0x80000005}, OLE_COLOR{0x01000000}})
    test::errorOf(errInvalidPropertyValue, [&] { picker->Color(bad); });
  picker->WriteProperties(bag);
  EXPECT_EQ(bag.Keys(), (std::vector<std::string>{"Color"}));

  PropertyBag loaded = PropertyBag::FromJson(bag.ToJson());
  auto copy = std::make_shared<veltColorPicker>();
  Site& copySite = hf.form.AddControl(copy, "Copy", 200, 200, kWidth, kHeight, &loaded);
  EXPECT_EQ(copy->PickedColor(), kWhite);
  EXPECT_EQ(test::CountColor(copySite.Surface(), 0x0A0B0C, Region{91, 41, 110, 60}), 19 * 19);
  for (const Variant& value : {Variant("orange"), Variant::Color(0x80000005)}) {
    PropertyBag bad;
    bad.WriteProperty("Color", value);
    try {
      hf.form.AddControl(std::make_shared<veltColorPicker>(), "Bad", 0, 0, kWidth, kHeight, &bad);
      ADD_FAILURE() << "no error";
    } catch (const Error& error) {
      EXPECT_NE(std::string(error.what()).find("Color"), std::string::npos) << error.what();
    }
  }
}

}  // namespace
}  // namespace velt
