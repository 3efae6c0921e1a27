// veltColorPicker on a headless form: the columns, marker, swatches and
// readout pixel by pixel, which points pick, what a pick reads from the
// surface, event order, the Color property and persistence.

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "support/ExpectError.hpp"
#include "support/HeadlessForm.hpp"
#include "support/Pixels.hpp"
#include "velt/controls/lists/veltColorPicker.hpp"
#include "velt/foundation/Colors.hpp"
#include "velt/foundation/NumberText.hpp"
#include "velt/platform/PropertyBag.hpp"

namespace velt {
namespace {

using test::Region;
using Lines = std::vector<std::string>;

constexpr OLE_COLOR kWhite = 0xFFFFFF;
constexpr OLE_COLOR kBlack = 0;
constexpr OLE_COLOR kRed = 0x0000FF;
constexpr OLE_COLOR kOrange = 38631;
constexpr int32_t kWidth = 170;
constexpr int32_t kHeight = 90;
constexpr int32_t kAt = 10;  // the picker's left and top on the form

// The middle colours of the eight columns.
// clang-format off
const OLE_COLOR kMiddles[] = {
    0x808080, kRed,                                BlendColor(kRed, 0x00FFFF, 128), 0x00FFFF,
    0x00FF00, BlendColor(0x00FF00, 0xFF0000, 128), 0xFF0000, BlendColor(0xFF0000, kRed, 128)};
// clang-format on

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
    picker = hf.form.Add<veltColorPicker>("veltColorPicker1", kAt, kAt, kWidth, kHeight);
    site = hf.form.FindSite("veltColorPicker1");
    log = std::make_unique<test::EventLog>(*site);
  }
  OLE_COLOR at(int32_t x, int32_t y) { return test::PixelAt(site->Surface(), x, y); }
  void press(int16_t button, int32_t x, int32_t y) {
    hf.system->PostMouseDown(button, kAt + x, kAt + y);
    hf.Run();
  }
  void clickAt(int32_t x, int32_t y, int16_t button = 1) {
    hf.system->PostMouseDown(button, kAt + x, kAt + y);
    hf.system->PostMouseUp(button, kAt + x, kAt + y);
    hf.Run();
  }

  // The marker: a black square outline of side 7 around (x, y), a white one
  // of side 5 inside it.
  ::testing::AssertionResult markerAt(int32_t x, int32_t y) {
    for (auto [r, color] : {std::pair{3, kBlack}, std::pair{2, kWhite}})
      for (int32_t i = -r; i <= r; ++i)
        for (auto [px, py] : {std::pair{x + i, y - r}, std::pair{x + i, y + r},
                              std::pair{x - r, y + i}, std::pair{x + r, y + i}})
          if (at(px, py) != color)
            return ::testing::AssertionFailure() << "wrong at (" << px << "," << py << ")";
    return ::testing::AssertionSuccess();
  }

  // Both 19 x 19 swatches, and the readout of the picked colour printed in
  // black on white where no column or swatch is.
  ::testing::AssertionResult shows(OLE_COLOR picked, OLE_COLOR color) {
    const int upper = test::CountColor(site->Surface(), picked, Region{91, 11, 110, 30});
    const int lower = test::CountColor(site->Surface(), color, Region{91, 41, 110, 60});
    if (upper != 19 * 19 || lower != 19 * 19)
      return ::testing::AssertionFailure() << upper << " and " << lower << " swatch pixels right";
    Canvas expected(kWidth, kHeight);
    expected.Font(site->Surface().Font());
    const RGBTriple rgb = ColorToRGB(picked);
    const std::tuple<std::string, float, float> texts[] = {
        {"R: " + std::to_string(rgb.Red), 115, 10},
        {"G: " + std::to_string(rgb.Green), 115, 25},
        {"B: " + std::to_string(rgb.Blue), 115, 40},
        {HexDigits(int32_t(picked)), 90, 65}};
    for (const auto& [text, x, y] : texts) {
      expected.CurrentX(x);
      expected.CurrentY(y);
      expected.Print(text);
    }
    for (Region region : {Region{111, 0, kWidth, 61}, Region{80, 61, kWidth, kHeight}})
      if (!test::DifferenceBox(site->Surface(), expected, region).Empty())
        return ::testing::AssertionFailure() << "the readout differs";
    return ::testing::AssertionSuccess();
  }

  test::HeadlessForm hf;
  std::shared_ptr<veltColorPicker> picker;
  Site* site = nullptr;
  std::unique_ptr<test::EventLog> log;
};

TEST_F(ColorPickerTest, FreshPickerShowsColumnsMarkerWhitePickedAndTheOrangeColour) {
  EXPECT_EQ(picker->Color(), kOrange);
  EXPECT_TRUE(shows(kWhite, kOrange));
  EXPECT_TRUE(markerAt(3, 3));
  for (int32_t column = 0; column < 8; ++column)
    for (int32_t x : {column * 10, column * 10 + 9})
      for (int32_t y = 7; y < kHeight; ++y)
        ASSERT_EQ(at(x, y), columnAt(kMiddles[column], y)) << "x " << x << " y " << y;

  site->MovePixels(kAt, kAt, 200, 121);  // only the columns take the height
  for (int32_t y = 7; y < 121; ++y)
    ASSERT_EQ(at(15, y), columnAt(kRed, y, 121)) << y;
  EXPECT_TRUE(shows(kWhite, kOrange));
}

// A press picks the pixel under it and moves the marker there; a move with the
// button held and the release pick again, each raising MouseMove first. A pick
// reads the surface: beside the marker, its own outline.
TEST_F(ColorPickerTest, LeftPressMovesAndReleasePickThePixelAndMoveTheMarker) {
  press(1, 15, 60);
  const OLE_COLOR expected = columnAt(kRed, 60);
  EXPECT_TRUE(shows(expected, kOrange));
  EXPECT_TRUE(markerAt(15, 60));
  EXPECT_EQ(at(15, 60), expected) << "the centre keeps the column";
  EXPECT_EQ(at(3, 3), columnAt(kMiddles[0], 3)) << "the old marker is gone";
  hf.system->PostMouseMove(kAt + 15, kAt + 86);
  hf.system->PostMouseUp(1, kAt + 25, kAt + 70);
  hf.Run();
  EXPECT_EQ(log->Lines(), (Lines{"MouseMove(i1, i0, f15, f60)", "MouseDown(i1, i0, f15, f60)",
                                 "MouseMove(i1, i0, f15, f86)", "MouseMove(i1, i0, f25, f70)",
                                 "MouseUp(i1, i0, f25, f70)"}));
  EXPECT_EQ(picker->MarkerX(), 25);
  EXPECT_EQ(picker->PickedColor(), columnAt(kMiddles[2], 70));
  press(1, 28, 70);  // the right edge of the black outline
  EXPECT_EQ(picker->PickedColor(), kBlack);
  hf.system->PostMouseMove(kAt + 26, kAt + 71);  // the white outline of the marker at (28, 70)
  hf.Run();
  EXPECT_EQ(picker->PickedColor(), kWhite);
  hf.system->PostMouseMove(kAt + 100, kAt + 50);
  hf.Run();
  EXPECT_EQ(picker->PickedColor(), kOrange) << "the lower swatch";
}

TEST_F(ColorPickerTest, OnlyTheLeftButtonAloneInsideTheEdgeMarginsPicksButAllIsReported) {
  const struct {
    int32_t x, y;
    int16_t button;
    bool picks;
  } points[] = {{3, 3, 1, true},     {2, 50, 1, false},  {50, 2, 1, false}, {166, 86, 1, true},
                {167, 50, 1, false}, {50, 87, 1, false}, {50, 50, 2, false}};
  for (const auto& point : points) {
    clickAt(40, 40);
    log->Clear();
    clickAt(point.x, point.y, point.button);
    const bool moved = picker->MarkerX() == point.x && picker->MarkerY() == point.y;
    EXPECT_EQ(moved, point.picks) << point.x << "," << point.y;
    EXPECT_EQ(log->Names(), (Lines{"MouseMove", "MouseDown", "MouseMove", "MouseUp"}));
  }
  press(1, 15, 60);
  press(2, 55, 30);
  hf.system->PostMouseMove(kAt + 56, kAt + 30);  // both held: Button 3
  hf.Run();
  EXPECT_EQ(picker->MarkerX(), 15);
  EXPECT_EQ(log->Lines().back(), "MouseMove(i3, i0, f56, f30)");
}

// Color repaints the lower swatch only and must be plain RGB; it is the one
// stored property, and a bad stored one is an error naming it.
TEST_F(ColorPickerTest, ColorRepaintsTheLowerSwatchOnlyAndIsTheOneStoredProperty) {
  clickAt(15, 60);
  site->ClearChangedProperties();
  picker->Color(0x0A0B0C);
  EXPECT_EQ(site->ChangedProperties(), Lines{"Color"});
  EXPECT_TRUE(shows(picker->PickedColor(), 0x0A0B0C));
  test::errorOf(errInvalidPropertyValue, [&] { picker->Color(0x01000000); });
  PropertyBag bag;
  picker->WriteProperties(bag);
  EXPECT_EQ(bag.Keys(), Lines{"Color"});

  PropertyBag loaded = PropertyBag::FromJson(bag.ToJson());
  auto copy = std::make_shared<veltColorPicker>();
  hf.form.AddControl(copy, "Copy", 200, 200, kWidth, kHeight, &loaded);
  EXPECT_EQ(copy->Color(), 0x0A0B0Cu);
  PropertyBag bad;
  bad.WriteProperty("Color", Variant::Color(0x80000005));
  const std::string message = test::errorOf(errInvalidPropertyValue, [&] {
    hf.form.AddControl(std::make_shared<veltColorPicker>(), "Bad", 0, 0, kWidth, kHeight, &bad);
  });
  EXPECT_NE(message.find("Color"), std::string::npos) << message;
}

}  // namespace
}  // namespace velt
