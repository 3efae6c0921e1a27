// veltListbox on a headless form: the row arithmetic, the scroll coupling
// with its bar, shortening and indentation, the highlight, frame and icons in
// pixels, the mouse and keyboard rules with their event order, selecting by
// key, value or caption, and handlers of ItemClicked that pull the list away.

#include "velt/controls/lists/veltListbox.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "support/ExpectError.hpp"
#include "support/HeadlessForm.hpp"
#include "support/Pixels.hpp"
#include "velt/controls/lists/ListboxLayout.hpp"
#include "velt/controls/range/veltScrollBar.hpp"
#include "velt/foundation/Utf8Text.hpp"
#include "velt/platform/Canvas.hpp"
#include "velt/platform/ImageList.hpp"
#include "velt/platform/Picture.hpp"

namespace velt {
namespace {

using Lines = std::vector<std::string>;

constexpr int32_t kAt = 10;  // the list's left and top on the form
constexpr int32_t kWidth = 150;
constexpr int16_t kLeft = 1;
constexpr OLE_COLOR kRed = 0x0000FF;

int32_t letterHeight() {
  Canvas canvas(10, 10);
  canvas.Font(test::PinnedFont());
  return canvas.TextHeight("I");
}

// A list `rows` rows high (no image list) at (kAt, kAt), with `count` entries
// keyed k1, k2, ... and captioned "Entry 1", "Entry 2", ...
class ListboxTest : public ::testing::Test {
 protected:
  void make(int32_t rows, int32_t count, bool hoverSelect = false) {
    t = letterHeight();
    list = hf.form.Add<veltListbox>("veltListbox1", kAt, kAt, kWidth, rows * (t + 4) + 1);
    site = hf.form.FindSite("veltListbox1");
    list->HoverSelect(hoverSelect);
    for (int32_t i = 1; i <= count; ++i)
      list->ListboxItems.Add("k" + std::to_string(i), "Entry " + std::to_string(i));
    log = std::make_unique<test::EventLog>(*site);
  }
  std::vector<int> laidOut() const {
    std::vector<int> rows;
    for (const auto& row : list->TempListboxItems)
      rows.push_back(row->Index());
    return rows;
  }
  int32_t rowY(int position) const {  // the middle of the row laid out for the position
    for (const auto& row : list->TempListboxItems)
      if (row->Index() == position) return row->Top() + row->Height() / 2;
    return -1000;
  }
  void move(int32_t x, int32_t y) { hf.system->PostMouseMove(kAt + x, kAt + y); }
  void press(int32_t x, int32_t y) { hf.system->PostMouseDown(kLeft, kAt + x, kAt + y); }
  void release(int32_t x, int32_t y) { hf.system->PostMouseUp(kLeft, kAt + x, kAt + y); }
  void key(int16_t code) {
    site->SetFocus();
    hf.system->PostKeyDown(code);
    hf.Run();
  }
  OLE_COLOR at(int32_t x, int32_t y) { return test::PixelAt(site->Surface(), x, y); }
  int32_t barWidth() { return site->FindChild(veltListbox::kScrollBarName)->Bounds().Width(); }

  test::HeadlessForm hf;
  std::shared_ptr<veltListbox> list;
  Site* site = nullptr;
  std::unique_ptr<test::EventLog> log;
  int32_t t = 0;
};

TEST(ListboxLayoutTest, RowSpansCutTheEndWhenFirstPlusEndPassesTheCount) {
  // first, visible rows, count -> first laid-out position, last
  const std::vector<std::tuple<int, int, int, int, int>> cases = {{1, 5, 10, 1, 6},
                                                                  {3, 5, 10, 3, 10},
                                                                  {2, 5, 10, 2, 7},
                                                                  {1, 5, 3, 1, 3},
                                                                  {6, 5, 10, 6, 10},
                                                                  {50, 5, 0, 50, 0},
                                                                  {1, 5, 40000, 1, 6},
                                                                  {32760, 20, 40000, 32760, 32767},
                                                                  {-70000, 5, 10, -32768, -32763}};
  for (const auto& [first, visible, count, from, to] : cases) {
    const ListboxRowSpan span = ListboxRowsFrom(first, visible, count);
    EXPECT_EQ(span.First, from) << first << "," << visible << "," << count;
    EXPECT_EQ(span.Last, to) << first << "," << visible << "," << count;
  }
}

// Text 13 high: rows are 17; 20-pixel images make them 24, but the visible
// count divides by the taller of image and text plus 5.
TEST(ListboxLayoutTest, RowHeightAndVisibleRowsFollowTheTallerOfTextAndImage) {
  ImageList small;
  small.ImageHeight(10);
  ImageList tall;
  tall.ImageHeight(20);
  // image list, scale height -> row height, visible rows
  const std::vector<std::tuple<const ImageList*, int, int, int>> cases = {
      {nullptr, 86, 17, 5}, {nullptr, 85, 17, 4}, {&small, 86, 17, 4},
      {&small, 91, 17, 5},  {&tall, 101, 24, 4},  {&tall, 100, 24, 3}};
  for (const auto& [images, height, row, visible] : cases) {
    EXPECT_EQ(ListboxRowHeight(13, images), row) << height;
    EXPECT_EQ(ListboxVisibleRows(height, 13, images), visible) << height;
  }
}

TEST(ListboxLayoutTest, ShortensOneCharacterAPassUntilStrictlyNarrower) {
  Canvas canvas(10, 10);
  canvas.Font(test::PinnedFont());
  const std::string caption = "A caption much too long to fit the row";
  const int32_t full = canvas.TextWidth(caption);
  EXPECT_EQ(ListboxShortened(canvas, caption, full), caption);  // as wide as the room
  EXPECT_EQ(ListboxShortened(canvas, "abc", 1), "abc");         // never below four
  for (const int32_t width : {full - 1, full / 2, 30}) {
    const std::string shown = ListboxShortened(canvas, caption, width);
    ASSERT_EQ(Right(shown, 3), "...") << width;
    EXPECT_LT(canvas.TextWidth(shown), width);
    const int32_t kept = Len(shown) - 3;
    EXPECT_EQ(Left(shown, kept), Left(caption, kept));
    // The first pass cuts four characters, each later one one; the pass
    // before the last did not fit.
    if (kept < Len(caption) - 4) {
      EXPECT_GE(canvas.TextWidth(Left(caption, kept + 1) + "..."), width) << width;
    }
  }
  // Letters with a combining accent lose the accent together with its letter.
  std::string accents;
  for (int i = 0; i < 20; ++i)
    accents += "e\xCC\x81";
  const std::string cut = ListboxShortened(canvas, accents, canvas.TextWidth(accents) / 2);
  EXPECT_EQ(Right(cut, 3), "...");
  EXPECT_EQ((Len(cut) - 3) % 2, 0) << cut;
  EXPECT_EQ(ListboxWithoutTabs("\ta\tb"), "ab");
  EXPECT_EQ(ListboxTabCount("\ta\tb\t"), 3);
}

// The bar's own corrections: Min 1 and Max Count - v + 1 at least Min + 1,
// Value 0 pulled up to 1; disabled while every entry fits.
TEST_F(ListboxTest, AddingEntriesCouplesTheScrollRange) {
  // entries -> bar Min, Max, Value, Enabled, rows laid out
  const std::vector<std::tuple<int, int, int, int, bool, std::vector<int>>> cases = {
      {3, 1, 2, 1, false, {1, 2, 3}},
      {10, 1, 6, 1, true, {1, 2, 3, 4, 5, 6}},
  };
  for (const auto& [count, min, max, value, enabled, rows] : cases) {
    SCOPED_TRACE(count);
    if (hf.form.FindSite("veltListbox1")) hf.form.RemoveControl("veltListbox1");
    make(5, count);
    const auto bar = list->veltScrollBar1();
    EXPECT_EQ(std::tuple(bar->Min(), bar->Max(), bar->Value(), bar->Enabled()),
              std::tuple(min, max, value, enabled));
    EXPECT_EQ(laidOut(), rows);
    EXPECT_EQ(list->SelectedItem(), 1);  // stored only
    EXPECT_EQ(list->Highlight(), 0);
    EXPECT_TRUE(log->Lines().empty());
  }
  list->veltScrollBar1()->Value(3);
  EXPECT_EQ(laidOut(), (std::vector<int>{3, 4, 5, 6, 7, 8, 9, 10}));
}

TEST_F(ListboxTest, SelectingMovesTheBarAndTheLayoutStartsThere) {
  make(5, 3);
  key(40);  // Down
  EXPECT_EQ(list->SelectedItem(), 2);
  EXPECT_EQ(list->veltScrollBar1()->Value(), 2);
  EXPECT_EQ(laidOut(), (std::vector<int>{2, 3}));
  EXPECT_EQ(log->Lines(), (Lines{"ItemClicked(i2, String:k2)", "KeyDown(i40, i0)"}));
}

TEST_F(ListboxTest, EmptyListDrawsNothingAndRefreshOnlyDisablesTheBar) {
  make(5, 0);
  list->Refresh();
  const auto bar = list->veltScrollBar1();
  EXPECT_EQ(std::tuple(bar->Min(), bar->Max(), bar->Value(), bar->Enabled()),
            std::tuple(1, 100, 50, false));
  const int32_t w = site->Surface().ScaleWidth() - barWidth() - 4;
  EXPECT_EQ(test::CountColor(site->Surface(), 0xFFFFFF, test::Region{0, 0, w, 80}), w * 80);
}

// Keys step through SelectedItem, so ItemClicked comes before KeyDown; at the
// ends nothing but KeyDown is raised.
TEST_F(ListboxTest, KeysMoveTheSelection) {
  make(5, 20);
  // key, selected before -> selected after (0: nothing selected)
  const std::vector<std::tuple<int16_t, int16_t, int16_t>> cases = {
      {38, 1, 0}, {40, 20, 0}, {38, 5, 4}, {40, 5, 6},  {34, 1, 6}, {34, 18, 20},
      {33, 9, 4}, {33, 3, 1},  {36, 7, 1}, {35, 7, 20}, {36, 1, 0}};
  for (const auto& [code, before, after] : cases) {
    SCOPED_TRACE(testing::Message() << code << " from " << before);
    list->SelectedItem(before);
    log->Clear();
    key(code);
    const std::string down = "KeyDown(i" + std::to_string(code) + ", i0)";
    if (after == 0) {
      EXPECT_EQ(log->Lines(), Lines{down});
      EXPECT_EQ(list->SelectedItem(), before);
    } else {
      EXPECT_EQ(log->Lines(), (Lines{"ItemClicked(i" + std::to_string(after) + ", String:k" +
                                         std::to_string(after) + ")",
                                     down}));
      EXPECT_EQ(list->SelectedItem(), after);
    }
  }
}

TEST_F(ListboxTest, SelectItemMatchesKeyElseValueElseCaption) {
  make(5, 0);
  list->ListboxItems.Add("a", "Apple", "red");
  list->ListboxItems.Add("b", "Banana", "yellow");
  list->ListboxItems.Add("c", "Cherry", "red");
  // key, value, caption -> position
  const std::vector<std::tuple<std::string, std::string, std::string, int>> cases = {
      {"b", "red", "Cherry", 2}, {"", "red", "Banana", 1}, {"", "", "Cherry", 3}, {"B", "", "", 1},
      {"", "", "", 1},           {"x", "yellow", "", 1},   {"", "yellow", "", 2}};
  for (const auto& [k, v, c, position] : cases) {
    list->SelectedItem(3);
    log->Clear();
    list->SelectItem(k, v, c);
    EXPECT_EQ(list->SelectedItem(), position) << k << "/" << v << "/" << c;
    EXPECT_EQ(log->Names(), Lines{"ItemClicked"});
  }
  test::errorOf(9, [&] { list->SelectedItem(7); });
  EXPECT_EQ(list->Highlight(), 7);
}

TEST_F(ListboxTest, ClickOnARowSelectsItInEventOrder) {
  make(5, 10);
  press(20, rowY(3));
  release(20, rowY(3));
  hf.Run();
  EXPECT_EQ(log->Lines(), (Lines{"MouseDown(i1, i0, f20, f" + std::to_string(rowY(3)) + ")",
                                 "Click()", "ItemClicked(i3, String:k3)",
                                 "MouseUp(i1, i0, f20, f" + std::to_string(rowY(3)) + ")"}));
  EXPECT_EQ(list->SelectedItem(), 3);
  EXPECT_EQ(list->Highlight(), 3);
  // A right click raises nothing; a release below the last row selects nothing.
  log->Clear();
  hf.form.RemoveControl("veltListbox1");
  make(8, 2);
  hf.system->PostMouseDown(2, kAt + 20, kAt + 5);
  hf.system->PostMouseUp(2, kAt + 20, kAt + 5);
  press(20, 100);
  release(20, 100);
  hf.Run();
  EXPECT_EQ(log->Names(), (Lines{"MouseDown", "Click", "MouseUp"}));
  EXPECT_EQ(list->Highlight(), 0);
}

// With HoverSelect the selection follows the pointer silently (not over the
// bar's side); the release clicks the highlighted entry.
TEST_F(ListboxTest, HoverSelectFollowsThePointerAndClicksOnRelease) {
  make(5, 10, true);
  move(20, rowY(4));
  hf.Run();
  EXPECT_EQ(list->SelectedItem(), 4);
  EXPECT_EQ(list->Highlight(), 4);
  EXPECT_EQ(log->Names(), Lines{"MouseMove"});
  move(kWidth - barWidth() - 3, rowY(2));  // right of the rows' span
  hf.Run();
  EXPECT_EQ(list->Highlight(), 4);
  log->Clear();
  press(20, rowY(4));
  release(20, rowY(6));
  hf.Run();
  EXPECT_EQ(log->Names(), (Lines{"MouseDown", "Click", "ItemClicked", "MouseUp"}));
  EXPECT_EQ(log->Lines()[2], "ItemClicked(i4, String:k4)");
}

// Three rows a notch through the bar (toward the user scrolls down); a list
// that fits does not scroll.
TEST_F(ListboxTest, TheWheelScrollsThreeRowsANotch) {
  make(5, 40);
  const auto bar = list->veltScrollBar1();
  // notches -> bar Value
  const std::vector<std::pair<int16_t, int>> cases = {{-1, 4}, {-2, 10}, {1, 7}, {5, 1}, {-20, 36}};
  for (const auto& [notches, value] : cases) {
    hf.system->PostMouseWheel(kAt + 20, kAt + 20, notches);
    hf.Run();
    EXPECT_EQ(bar->Value(), value) << notches;
    EXPECT_EQ(laidOut().front(), value);
  }
  hf.system->PostMouseWheel(kAt + kWidth - 8, kAt + 30, 1);  // over the bar
  hf.Run();
  EXPECT_EQ(bar->Value(), 33);
  EXPECT_TRUE(log->Lines().empty());
  hf.form.RemoveControl("veltListbox1");
  make(5, 3);
  hf.system->PostMouseWheel(kAt + 20, kAt + 20, -1);
  hf.Run();
  EXPECT_EQ(laidOut().front(), 1);
}

// Pixels of row 2 highlighted (the layout starts at it): the fill starts at (3, Top + 3), the
// outline runs from (2, Top + 2) to (SW - B - 4, Top + Height); the selection tints while focused.
// The frame is dark, the inner frame shows while hovered.
TEST_F(ListboxTest, HighlightFrameAndHoverLook) {
  make(5, 10);
  list->SelectedItem(2);
  const ColorScheme& s = list->Scheme();
  ASSERT_EQ(laidOut().front(), 2);
  const int32_t top = 0;
  const int32_t right = kWidth - barWidth() - 4;
  EXPECT_EQ(at(3, top + 3), s.FillTop);
  EXPECT_EQ(at(2, top + 2), s.EdgeDark);
  EXPECT_EQ(at(right, top + t + 4), s.EdgeDark);
  EXPECT_EQ(at(right + 1, top + 5), s.Back);
  EXPECT_EQ(at(0, 0), s.EdgeDark);
  EXPECT_EQ(at(kWidth - 1, 40), s.EdgeDark);
  EXPECT_EQ(at(1, 1), s.Back);
  site->SetFocus();
  list->SelectedItem(2);
  EXPECT_EQ(at(3, top + 3), s.Accent2);
  move(20, 60);
  hf.Run();
  hf.Tick();
  EXPECT_EQ(at(1, 1), s.Accent3);
  EXPECT_EQ(at(kWidth - 2, 30), s.Accent3);
  hf.system->PostMouseMove(500, 500);
  hf.Run();
  hf.Tick();
  EXPECT_EQ(at(1, 1), s.Back);
  EXPECT_FALSE(list->HoverTimerRunning());
}

// A tab moves a caption 9 pixels right and is not drawn; a caption too long
// is cut before the bar.
TEST_F(ListboxTest, TabsIndentAndLongCaptionsStopBeforeTheBar) {
  make(5, 0);
  list->ListboxItems.Add("", "Word");
  list->ListboxItems.Add("", "\tWord");
  list->ListboxItems.Add("", std::string(60, 'W'));
  const auto ink = [&](int row) {
    const int32_t top = (row - 1) * (t + 4);
    return test::ColorBox(site->Surface(), list->Scheme().Text,
                          test::Region{2, top + 3, kWidth - 2, top + t + 4});
  };
  const test::InkBox plain = ink(1);
  const test::InkBox indented = ink(2);
  EXPECT_EQ(indented.left, plain.left + 9);
  EXPECT_EQ(indented.right, plain.right + 9);
  EXPECT_LT(ink(3).right, kWidth - barWidth() - 4);
  // ValueFont prints each caption in the font its entry's Value names; the
  // list's own font keeps its name.
  list->ListboxItems.Item(1)->Value("DejaVu Sans Mono");
  list->ListboxItems.Item(2)->Value("DejaVu Sans");
  list->ListboxItems.Item(2)->Caption("Word");
  list->ValueFont = true;
  list->Refresh();
  EXPECT_NE(ink(1).right - ink(1).left, ink(2).right - ink(2).left);
  EXPECT_EQ(list->Font()->Name(), test::kPinnedFamily);
}

// Icons: normal while enabled, one colour (the disabled text's) when not.
TEST_F(ListboxTest, IconsInNormalAndMonochromeLooks) {
  make(5, 0);
  auto images = std::make_shared<ImageList>();
  images->ListImages().Add(std::make_shared<Picture>(
      16, 16, std::vector<uint32_t>(16 * 16, 0xFFFF0000)));  // opaque red, 0xAARRGGBB
  list->ImageList(images);
  list->ListboxItems.Add("", "Iconic", "", 1);
  list->ListboxItems.Add("", "\tMissing", "", 5);  // no such image: left out
  EXPECT_EQ(at(4 + 8, 3 + 8), kRed);
  const int32_t second = list->RowHeight();
  EXPECT_EQ(at(13 + 8, second + 3 + 8), list->Scheme().Back);
  list->Enabled(false);
  EXPECT_EQ(at(4 + 8, 3 + 8), list->Scheme().EdgeDark);
}

// A handler of ItemClicked may empty the list or remove the control; input
// and property calls then end quietly.
TEST_F(ListboxTest, ItemClickedHandlersMayClearTheListOrRemoveTheControl) {
  for (const bool remove : {false, true}) {
    for (int way = 0; way < 3; ++way) {
      SCOPED_TRACE(testing::Message() << remove << " " << way);
      if (hf.form.FindSite("veltListbox1")) hf.form.RemoveControl("veltListbox1");
      make(5, 10, way == 2);
      std::weak_ptr<veltListbox> weak = list;
      Connection handler = list->ItemClicked.connect([&, remove](int16_t, const std::string&) {
        if (remove)
          hf.form.RemoveControl("veltListbox1");
        else
          weak.lock()->ListboxItems.Clear();
      });
      if (way == 0) {
        key(40);
      } else {
        move(20, rowY(3));
        press(20, rowY(3));
        release(20, rowY(3));
        hf.Run();
      }
      list.reset();
      if (!remove) {
        ASSERT_FALSE(weak.expired());
        EXPECT_EQ(weak.lock()->ListboxItems.Count(), 0);
      }
      hf.Run();
    }
  }
}

}  // namespace
}  // namespace velt
