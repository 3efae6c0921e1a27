#pragma once

// What the range-control tests share: the palettes of white on dark blue,
// pixel expectations (a two-half gradient box, runs of one colour along a
// line), and a fixture that sites a control at (10, 10) of a headless form,
// drives it in the control's own pixels and reloads its stored properties.

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "support/ExpectError.hpp"
#include "support/HeadlessForm.hpp"
#include "support/Pixels.hpp"
#include "velt/foundation/ColorScheme.hpp"
#include "velt/platform/Canvas.hpp"
#include "velt/platform/PropertyBag.hpp"

namespace velt::test {

using Names = std::vector<std::string>;
using Spans = std::vector<std::pair<int32_t, int32_t>>;  // inclusive [first, last]

constexpr OLE_COLOR kWhite = 0xFFFFFF;
constexpr OLE_COLOR kDarkBlue = 0xC00000;
inline const ColorScheme kNormal = SchemeNormal(kWhite, kDarkBlue, kWhite);
inline const ColorScheme kHover = SchemeHover(kWhite, kDarkBlue, kWhite);
inline const ColorScheme kDisabled = SchemeDisabled(kWhite, kDarkBlue, kWhite);

// The colour at `pos` (a row for stacked halves, a column for halves side by
// side) of a GradientBox3 that starts at `start` and is `extent` long across
// its halves: c1 -> c2 from the start over h + 1 pixels, then c2 -> c3 over
// the last h pixels counted back from `extent` (h = extent / 2), the second
// half painted over the first.
inline OLE_COLOR BoxAt(OLE_COLOR c1, OLE_COLOR c2, OLE_COLOR c3, int32_t start, int32_t extent,
                       int32_t pos) {
  const int32_t h = extent / 2;
  if (pos >= extent - h) return GradientAt(c2, c3, h, pos - (extent - h));
  return GradientAt(c1, c2, h + 1, pos - start);
}

// Runs of the exact colour along row `fixed` (horizontal) or column `fixed`.
inline Spans RunsOf(const Canvas& image, OLE_COLOR color, int32_t fixed, bool alongColumn) {
  Spans runs;
  const int32_t n = alongColumn ? image.ScaleHeight() : image.ScaleWidth();
  for (int32_t i = 0; i < n; ++i) {
    const OLE_COLOR c = alongColumn ? PixelAt(image, fixed, i) : PixelAt(image, i, fixed);
    if (c != color) continue;
    if (!runs.empty() && runs.back().second == i - 1)
      runs.back().second = i;
    else
      runs.emplace_back(i, i);
  }
  return runs;
}

class RangeControlTest : public ::testing::Test {
 protected:
  template <typename Control>
  std::shared_ptr<Control> add(const std::string& name, int32_t width, int32_t height) {
    auto control = hf.form.Add<Control>(name, 10, 10, width, height);
    site = hf.form.FindSite(name);
    return control;
  }
  const Canvas& surface() { return site->Surface(); }
  void move(int32_t x, int32_t y) { hf.system->PostMouseMove(10 + x, 10 + y); }
  void press(int32_t x, int32_t y) { hf.system->PostMouseDown(1, 10 + x, 10 + y); }
  void release(int32_t x, int32_t y) { hf.system->PostMouseUp(1, 10 + x, 10 + y); }
  void clickAt(int32_t x, int32_t y, int16_t button = 1) {
    hf.system->PostMouseDown(button, 10 + x, 10 + y);
    hf.system->PostMouseUp(button, 10 + x, 10 + y);
    hf.Run();
  }
  // A new control sited from `bag` after a trip through JSON; what it stores
  // again must be what it was loaded from.
  template <typename Control>
  std::shared_ptr<Control> reload(const PropertyBag& bag, int32_t width, int32_t height) {
    const PropertyBag loaded = PropertyBag::FromJsonText(bag.ToJsonText());
    auto copy = std::make_shared<Control>();
    hf.form.AddControl(copy, "Copy", 0, 300, width, height, &loaded);
    PropertyBag again;
    copy->WriteProperties(again);
    EXPECT_EQ(again.ToJsonText(), bag.ToJsonText());
    return copy;
  }

  HeadlessForm hf;
  Site* site = nullptr;
};

}  // namespace velt::test
