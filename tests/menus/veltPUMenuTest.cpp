// veltPUMenu on a headless form: opening, placement and flips, the wait for
// the buttons, hover and click, closing, pixels from the colour formulas,
// persistence, and handlers that re-open the menu or destroy the form (run
// these under the address sanitizer too).

#include "velt/controls/menus/veltPUMenu.hpp"

#include <gtest/gtest.h>

#include <utility>

#include <memory>
#include <string>
#include <vector>

#include "host/Probe.hpp"
#include "support/ExpectError.hpp"
#include "support/HeadlessForm.hpp"
#include "support/Pixels.hpp"
#include "velt/controls/menus/MenuLayout.hpp"
#include "velt/foundation/Colors.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/ImageList.hpp"
#include "velt/platform/Picture.hpp"
#include "velt/platform/PopupWindow.hpp"
#include "velt/platform/PropertyBag.hpp"

namespace velt {
namespace {

using test::PixelAt;
using test::Region;
using Lines = std::vector<std::string>;

constexpr int32_t kTwips = 15;
constexpr OLE_COLOR kIconColor = 0x0000FF;

// The menu colours by their entry numbers, from the blend formulas.
struct Shades {
  OLE_COLOR c2, c4, c7, c8, c9, c10, c11;
};
Shades shadesOf(OLE_COLOR back, OLE_COLOR fore, OLE_COLOR selection) {
  return Shades{BlendColor(back, fore, 230),      BlendColor(back, fore, 170),
                BlendColor(back, fore, 120),      BlendColor(0, fore, 140),
                BlendColor(back, selection, 230), BlendColor(back, selection, 180),
                BlendColor(back, selection, 130)};
}

Canvas pinnedCanvas(bool bold = false) {
  Canvas canvas(1, 1);
  canvas.Font(test::PinnedFont());
  canvas.Font()->Bold(bold);
  return canvas;
}
int32_t textRow() {
  return pinnedCanvas().TextHeight("I") + 8;
}

std::shared_ptr<ImageList> solidIcons(int16_t width, int16_t height) {
  auto list = std::make_shared<ImageList>();
  std::vector<uint32_t> pixels(static_cast<size_t>(width) * height,
                               0xFF000000u | OleToPixel(kIconColor));
  list->ListImages().Add(std::make_shared<Picture>(width, height, std::move(pixels)));
  return list;
}

class veltPUMenuTest : public ::testing::Test {
 protected:
  veltPUMenuTest() {
    menu = hf.form.Add<veltPUMenu>("veltPUMenu1", 600, 400, 100, 100);
    site = hf.form.FindSite("veltPUMenu1");
    opener = std::make_shared<testing::Probe>();
    hf.form.AddControl(opener, "Opener", 0, 0, 300, 300);
  }

  // Items 1 open, 2 separator, 3 title, 4 checked check row.
  void addItems() {
    MenuItems& items = *menu->MenuItem;
    items.Add("open", "Open");
    items.Add("", "", 0, true, "", "", itPlaceholder);
    items.Add("sect", "Section", 0, true, "", "", itTitle);
    items.Add("wrap", "Wrap lines", 0, true, "", "", itCheck, true);
  }
  void openAt(int32_t x, int32_t y, const std::string& group = "", int16_t openerWidth = 0) {
    menu->CreateMenu(x * kTwips, y * kTwips, group, openerWidth);
  }
  // Opens at a place in twips and returns where CreateMenu says it opened.
  std::vector<int32_t> openWrittenBack(int32_t x, int32_t y, int16_t openerWidth) {
    std::string group;
    menu->CreateMenu(x, y, group, openerWidth);
    return {x, y};
  }
  const Canvas& face() { return menu->Window()->Surface(); }
  RectL rect() { return menu->Window()->WindowRect(); }
  const MenuItemListing& row(int16_t position) { return *menu->Listings()->Item(position); }
  int32_t middleOf(int16_t position) {
    return rect().Top + row(position).Top() + row(position).Height() / 2;
  }
  void hover(int16_t position) {
    hf.system->PostMouseMove(rect().Left + 10, middleOf(position));
    hf.Run();
  }
  void clickRow(int16_t position) {
    hover(position);
    hf.system->PostMouseDown(1, rect().Left + 10, middleOf(position));
    hf.system->PostMouseUp(1, rect().Left + 10, middleOf(position));
    hf.Run();
  }

  test::HeadlessForm hf;
  std::shared_ptr<veltPUMenu> menu;
  Site* site = nullptr;
  std::shared_ptr<testing::Probe> opener;
};

TEST_F(veltPUMenuTest, WidthFitsTheWidestCaptionOfAllGroupsAndRowsComeFromOneGroup) {
  addItems();
  menu->MenuItem->Add("far", "A much longer caption, bold", 0, true, "", "other", itNormal, false,
                      true);
  openAt(10, 10);
  const int32_t b = textRow();
  const int32_t widest = pinnedCanvas(true).TextWidth("A much longer caption, bold");
  EXPECT_EQ(rect().Width(), 18 + widest + 32);
  EXPECT_EQ(rect().Height(), b + 3 + 2 * b + b + 4);
  ASSERT_EQ(menu->Listings()->Count(), 4);
  const std::vector<int32_t> tops{2, 2 + b, 5 + b, 5 + 3 * b};
  for (int16_t i = 1; i <= 4; ++i)
    EXPECT_EQ(row(i).Top(), tops[i - 1]) << i;
  menu->ClearItems();  // empty: only the border, four pixels high
  openAt(10, 10);
  EXPECT_EQ((std::vector{rect().Width(), rect().Height()}), (std::vector{18 + 32, 4}));
  EXPECT_EQ(test::CountColor(face(), menu->Colors().EdgeDark), 2 * 50 + 2 * 2);
}

// Opened at the pointer, or flipped where it would pass the screen's edge; the
// place used is written back in twips.
TEST_F(veltPUMenuTest, OpensAtThePointerFlipsAtTheEdgesAndLeavesTheOpenerGapOnlyDownward) {
  addItems();
  hf.system->SetCursor(100, 50);
  EXPECT_EQ(openWrittenBack(0, 0, 0), (std::vector{100 * kTwips, 50 * kTwips}));
  const PopupWindow& window = *menu->Window();
  EXPECT_EQ((std::vector{rect().Left, rect().Top}), (std::vector{100, 50}));
  EXPECT_TRUE(window.Visible() && window.Topmost() && window.ToolWindow() && window.DropShadow());
  EXPECT_EQ(window.EffectiveAlpha(), veltPUMenu::kWindowAlpha);
  EXPECT_TRUE(menu->MenuVisible && menu->State() == veltPUMenu::msOpen);
  const int32_t w = rect().Width();
  const int32_t h = rect().Height();
  const OLE_COLOR frame = menu->Colors().EdgeDark;

  openAt(1024 - w, 768 - h, "", 20);  // touching both edges exactly: no flip
  EXPECT_EQ(rect(), (RectL{1024 - w, 768 - h, 1024, 768}));
  EXPECT_EQ(menu->OpenWidth(), 20);
  EXPECT_EQ(PixelAt(face(), 0, 0), frame);
  EXPECT_EQ(test::ColorBox(face(), frame, Region{1, 0, w, 1}), (test::InkBox{20, 0, w - 1, 0}));

  EXPECT_EQ(openWrittenBack((1025 - w) * kTwips, (769 - h) * kTwips, 20),
            (std::vector{(1025 - 2 * w) * kTwips, (769 - 2 * h) * kTwips}));
  EXPECT_EQ(rect().Left, 1025 - 2 * w);
  EXPECT_EQ(menu->OpenWidth(), 0);
  EXPECT_EQ(test::CountColor(face(), frame, Region{0, 0, w, 1}), w);
}

TEST_F(veltPUMenuTest, RightPressOpensAMenuThatSurvivesTheReleaseOverItOrOutside) {
  addItems();
  test::EventLog log(*site);
  veltPUMenu::MenuState whileHeld = veltPUMenu::msIdle;
  opener->onMouseDown = [&] { menu->CreateMenu(); };
  hf.system->PostMouseDown(2, 50, 60);
  hf.system->PostAction([&] { whileHeld = menu->State(); });
  hf.system->PostWait(5);
  hf.system->PostMouseUp(2, 5, 5);  // outside the menu
  hf.Run();
  hf.Tick(5);
  EXPECT_EQ(whileHeld, veltPUMenu::msOpening);
  EXPECT_EQ(rect().Left, 50);
  EXPECT_EQ(menu->State(), veltPUMenu::msOpen);
  EXPECT_TRUE(log.Lines().empty());
}

TEST_F(veltPUMenuTest, MenuClosedWhileTheButtonIsStillHeldReportsClosedOnce) {
  test::EventLog log(*site);
  opener->onMouseDown = [&] { menu->CreateMenu(); };
  hf.system->PostMouseDown(2, 50, 60);
  hf.system->PostAction([&] { hf.form.FindSite("Opener")->SetFocus(); });
  hf.system->PostWait(3);
  hf.system->PostMouseUp(2, 50, 60);
  hf.Run();
  hf.Tick(5);
  EXPECT_EQ(log.Names(), (Lines{"Closed"}));
  EXPECT_EQ(menu->State(), veltPUMenu::msIdle);
}

// What the wait for the buttons relies on: the headless system lets go of
// buttons a script left held at the second idle DoEvents in a row.
TEST_F(veltPUMenuTest, HeadlessButtonReleaseOnlyAtASecondIdleDoEventsInARow) {
  hf.system->PostMouseDown(1, 5, 5);
  hf.system->PostMouseDown(4, 6, 6);
  hf.Run();
  opener->clear();
  hf.system->DoEvents();
  hf.Tick(3);  // time moved: a timer tick's DoEvents starts afresh
  hf.system->DoEvents();
  EXPECT_EQ(hf.system->MouseButtons(), 1 | 4);
  hf.system->DoEvents();
  EXPECT_EQ(hf.system->MouseButtons(), 0);
  EXPECT_EQ(opener->calls, (Lines{"MouseUp 1 0 6 6", "MouseUp 4 0 6 6"}));
}

// A caption wider than the screen (and than an Integer of twips) makes a menu
// the screen's width, never the width of the menu open before, kept on the
// screen; a menu taller than the room below its point moves up, one taller
// than the screen starts at its top, the screen's height.
TEST_F(veltPUMenuTest, AMenuIsKeptOnTheScreenNoWiderAndNoTallerThanIt) {
  addItems();
  openAt(10, 10);
  menu->MenuItem->Add("", std::string(400, 'W'));
  openAt(30, 30);
  EXPECT_EQ(rect(), (RectL{0, 30, 1024, 30 + rect().Height()}));
  EXPECT_EQ(menu->State(), veltPUMenu::msOpen);

  menu->ClearItems();
  for (int i = 0; i < 200; ++i)
    menu->MenuItem->Add("", "Row " + std::to_string(i));
  openAt(100, 100);
  EXPECT_EQ(rect().Top, 0);
  EXPECT_EQ(rect().Height(), 768);
  EXPECT_TRUE(menu->MenuVisible);
  menu->ClearItems();
  const int32_t rows = 700 / textRow() + 1;
  for (int i = 0; i < rows; ++i)
    menu->MenuItem->Add("", "Row " + std::to_string(i));
  openAt(100, 700);
  EXPECT_EQ(rect(), (RectL{100, 0, rect().Right, rows * textRow() + 4}))
      << "taller than the room above its point too";
}

// Two hundred rows scroll: the wheel, an arrow row the pointer rests on, a
// click on an arrow row, and keys that move the highlight out of sight all
// bring other rows between the arrow rows, and the rows there are the ones hit.
TEST_F(veltPUMenuTest, AMenuTallerThanTheScreenScrolls) {
  for (int i = 1; i <= 200; ++i)
    menu->MenuItem->Add("k" + std::to_string(i), "Row " + std::to_string(i));
  openAt(100, 100);
  const int32_t arrow = kMenuArrowRowHeight;
  const auto rowUnder = [&](int32_t y) {
    hf.system->PostMouseMove(rect().Left + 40, y);
    hf.Run();
    return menu->SelectedIndex();
  };
  const int32_t firstRowMiddle = rect().Top + 1 + arrow + 1 + textRow() / 2;
  EXPECT_EQ(rowUnder(firstRowMiddle), 1);
  EXPECT_EQ(rowUnder(rect().Top + 3), 0) << "the top arrow row is no row";
  hf.system->PostMouseWheel(rect().Left + 40, firstRowMiddle, -1);
  hf.Run();
  EXPECT_EQ(menu->ScrollTop(), 3 * textRow());
  EXPECT_EQ(rowUnder(firstRowMiddle), 4);
  hf.system->PostMouseWheel(rect().Left + 40, firstRowMiddle, 50);
  hf.Run();
  EXPECT_EQ(menu->ScrollTop(), 0) << "not above the first row";

  rowUnder(rect().Bottom - 3);  // resting on the bottom arrow row
  hf.Tick(veltPUMenu::kScrollInterval * 2);
  EXPECT_EQ(menu->ScrollTop(), 2 * textRow());
  rowUnder(firstRowMiddle);
  hf.Tick(veltPUMenu::kScrollInterval * 2);
  EXPECT_EQ(menu->ScrollTop(), 2 * textRow()) << "the pointer left the arrow row";
  hf.system->PostMouseDown(1, rect().Left + 40, rect().Top + 3);
  hf.system->PostMouseUp(1, rect().Left + 40, rect().Top + 3);
  hf.Run();
  EXPECT_EQ(menu->ScrollTop(), textRow()) << "a click on an arrow row scrolls a row";
  EXPECT_TRUE(menu->Window()->Visible());

  for (int up = 0; up < 3; ++up)  // from row 3, still highlighted: 2, 1, round to the last
    hf.system->PostKeyDown(38);
  hf.Run();
  EXPECT_EQ(menu->SelectedIndex(), 200);
  EXPECT_EQ(row(200).Top() + arrow - menu->ScrollTop() + row(200).Height(),
            rect().Height() - 1 - arrow)
      << "the last row shows right above the bottom arrow row";
}

// The keyboard: Up and Down walk the selectable rows round, the first letter
// jumps to the next caption beginning with it, Enter chooses as a click does
// and Escape closes with Closed only.
TEST_F(veltPUMenuTest, KeysMoveTheHighlightChooseAndClose) {
  addItems();  // 1 Open, 2 separator, 3 title, 4 Wrap lines
  menu->MenuItem->Add("wide", "wider");
  test::EventLog log(*site);
  openAt(100, 100);
  const auto keys = [&](const std::vector<int16_t>& codes, bool press = false) {
    for (int16_t code : codes)
      press ? hf.system->PostKeyPress(code) : hf.system->PostKeyDown(code);
    hf.Run();
    return menu->SelectedIndex();
  };
  const std::vector<std::pair<std::vector<int16_t>, int16_t>> walks = {
      {{40}, 1}, {{40}, 4}, {{40}, 5}, {{40}, 1}, {{38}, 5}, {{38, 38}, 1}};
  for (const auto& [codes, expected] : walks)
    EXPECT_EQ(keys(codes), expected);
  EXPECT_EQ(keys({'w'}, true), 4);
  EXPECT_EQ(keys({'W'}, true), 5) << "the next one, ignoring case";
  EXPECT_EQ(keys({'s'}, true), 5) << "titles are not chosen";
  keys({13});
  hf.Tick();
  EXPECT_EQ(log.Lines(), (Lines{"ItemClick(i5, String:wide)", "Closed()"}));
  EXPECT_FALSE(menu->MenuVisible);
  log.Clear();
  openAt(100, 100);
  keys({40, 27});
  hf.Tick();
  EXPECT_EQ(log.Lines(), (Lines{"Closed()"}));
}

// Hit-testing follows painting when items change under an open menu: a row
// whose item went is blank, one showing a separator now draws a separator, and
// neither is hit: a click there only closes the menu.
TEST_F(veltPUMenuTest, RowsOfRemovedItemsAreNotHit) {
  addItems();
  test::EventLog log(*site);
  for (bool all : {false, true}) {
    openAt(100, 100);
    while (menu->MenuItem->Count() > (all ? 0 : 3))
      menu->MenuItem->Remove(1);
    clickRow(1);
    hf.Tick();
    EXPECT_EQ(log.Lines(), (Lines{"Closed()"})) << (all ? "all removed" : "the first removed");
    log.Clear();
  }
}

// ItemClick comes while the menu still shows; the menu then hides and Closed
// follows on the next tick. Other rows neither highlight nor click.
TEST_F(veltPUMenuTest, OnlyNormalAndCheckRowsHighlightAndClickThenTheMenuCloses) {
  addItems();
  test::EventLog log(*site);
  openAt(100, 100);
  const std::vector<int16_t> expected{1, 0, 0, 4};
  for (int16_t i = 1; i <= 4; ++i) {
    hover(i);
    EXPECT_EQ(menu->SelectedIndex(), expected[i - 1]) << i;
  }
  hf.system->PostMouseMove(rect().Left + 10, rect().Top + row(1).Top());  // on the edge
  hf.Run();
  EXPECT_EQ(menu->SelectedIndex(), 0);
  for (int16_t i : {2, 3}) {
    openAt(100, 100);
    clickRow(i);
    EXPECT_FALSE(menu->Window()->Visible());
  }
  hf.Tick();
  std::vector<bool> shownInHandler;
  Connection c = menu->ItemClick.connect([&](int16_t, const std::string&) {
    shownInHandler = {menu->Window()->Visible(), menu->MenuVisible};
  });
  openAt(100, 100);
  clickRow(4);
  EXPECT_EQ(log.Lines(), (Lines{"Closed()", "ItemClick(i4, String:wrap)"}));
  EXPECT_EQ(shownInHandler, (std::vector<bool>{true, true}));
  EXPECT_EQ(menu->State(), veltPUMenu::msClosing);
  EXPECT_TRUE(menu->MenuVisible);
  hf.Tick(3);
  EXPECT_EQ(log.Names(), (Lines{"Closed", "ItemClick", "Closed"}));
  EXPECT_FALSE(menu->MenuVisible);
}

// The timer polls the left and right buttons outside the window (its right and
// bottom edges are still inside); focus loss and KillMenu close it too.
TEST_F(veltPUMenuTest, PressOutsideFocusLossAndKillMenuHideItAndClosedFollows) {
  addItems();
  test::EventLog log(*site);
  openAt(100, 100);
  const auto pollAt = [&](int32_t x, int32_t y, int32_t buttons) {
    hf.system->SetCursor(x, y);
    hf.system->SetButtons(buttons);
    hf.Tick();
  };
  pollAt(rect().Right + 1, rect().Top, 4);  // the middle button is no press that counts
  pollAt(rect().Right, rect().Bottom, 1);
  EXPECT_EQ(menu->State(), veltPUMenu::msOpen);
  pollAt(rect().Left - 1, rect().Top, 2);  // hidden and reported in the same tick
  EXPECT_EQ(menu->State(), veltPUMenu::msIdle);
  EXPECT_EQ(log.Names(), (Lines{"Closed"}));

  hf.system->SetButtons(0);
  openAt(100, 100);
  hf.system->PostMouseDown(1, 10, 10);  // a press on the form takes the focus
  hf.Run();
  EXPECT_EQ(menu->State(), veltPUMenu::msClosing);
  hf.Tick();
  openAt(100, 100);
  menu->KillMenu();
  hf.Tick(5);
  menu->KillMenu();  // nothing up: nothing follows
  hf.Tick(5);
  EXPECT_EQ(log.Names(), (Lines{"Closed", "Closed", "Closed"}));
}

TEST_F(veltPUMenuTest, BorderHighlightSeparatorTitleAndCaptionsFollowTheColours) {
  addItems();
  menu->BackColor(0xF8F0E0);
  menu->ForeColor(0x503010);
  menu->SelectionColor(0x2080F0);
  const Shades s = shadesOf(0xF8F0E0, 0x503010, 0x2080F0);
  openAt(100, 100);
  hover(1);
  const int32_t w = rect().Width();
  const int32_t h = rect().Height();
  const int32_t separatorY = row(2).Top() + 1;
  for (int32_t y = 0; y < h; ++y) {
    ASSERT_EQ(PixelAt(face(), 0, y), s.c7) << y;
    if (y != separatorY) {
      ASSERT_EQ(PixelAt(face(), w - 1, y), s.c7) << y;
    }
  }
  for (int32_t x = 3; x <= w - 4; ++x) {
    ASSERT_EQ(PixelAt(face(), x, row(1).Top() + 1), test::GradientAt(s.c10, s.c9, w - 6, x - 3));
    ASSERT_EQ(PixelAt(face(), x, row(3).Top() + 1), test::GradientAt(s.c4, s.c2, w - 6, x - 3));
  }
  for (int32_t x = 1; x <= w - 1; ++x)
    ASSERT_EQ(PixelAt(face(), x, separatorY), test::GradientAt(s.c2, s.c7, w, x - 1)) << x;
  EXPECT_GT(test::CountColor(face(), s.c8, Region{18, row(1).Top(), w - 3, row(2).Top()}), 0);
  EXPECT_GT(test::CountColor(face(), s.c7, Region{18, row(3).Top() + 8, w - 4, row(4).Top()}), 0);

  menu->BackColor(0xFFFFFF);  // repaints the open menu at once
  EXPECT_EQ(PixelAt(face(), 0, 0), BlendColor(0xFFFFFF, 0x503010, 120));
}

TEST_F(veltPUMenuTest, CheckFramesOnlyForCheckedCheckRows) {
  menu->MenuItem->Add("n", "Normal, checked", 0, true, "", "", itNormal, true);
  menu->MenuItem->Add("u", "Check, unchecked", 0, true, "", "", itCheck, false);
  menu->MenuItem->Add("k", "Check, checked", 0, true, "", "", itCheck, true);
  openAt(100, 100);
  const Shades s = shadesOf(0xFFFFFF, 0xC00000, 33023);
  const int32_t bottom = row(3).Top() + row(3).Height() - 2;
  EXPECT_EQ(test::ColorBox(face(), s.c7, Region{1, row(1).Top(), 12, bottom + 1}),
            (test::InkBox{4, row(3).Top() + 1, 9, bottom}));
  EXPECT_EQ(PixelAt(face(), 5, row(3).Top() + 2), s.c9);
  EXPECT_EQ(PixelAt(face(), 8, bottom - 1), s.c9);
}

TEST_F(veltPUMenuTest, ImageListWidensTheColumnHeightensTheRowsAndDrawsIcons) {
  const int32_t b = textRow();
  const auto tall = static_cast<int16_t>(b + 3);
  menu->ImageList(solidIcons(20, tall));
  addItems();
  menu->MenuItem->Item(int16_t{1})->Icon(1);
  menu->MenuItem->Item(int16_t{4})->Icon(7);  // no such image: left out
  openAt(100, 100);
  EXPECT_EQ(row(1).Height(), tall + 4);
  EXPECT_EQ(row(3).Height(), tall + 16);
  const int32_t top = row(1).Top();
  const int32_t iconTop = top + (tall + 4) / 2 - tall / 2;
  EXPECT_EQ(test::ColorBox(face(), kIconColor), (test::InkBox{7, iconTop, 26, iconTop + tall - 1}));
  EXPECT_EQ(rect().Width(), 38 + pinnedCanvas().TextWidth("Wrap lines") + 32);

  menu->ImageList(solidIcons(8, 8));  // images smaller than a text row
  openAt(100, 100);
  EXPECT_EQ(row(1).Height(), b);
  EXPECT_EQ(row(3).Height(), 2 * b);
}

TEST_F(veltPUMenuTest, PropertiesAreStoredUnderTheirNamesInTableOrder) {
  auto list = solidIcons(16, 16);
  menu->BackColor(0x010203);
  menu->ForeColor(0x040506);
  menu->Font(std::make_shared<Font>("DejaVu Serif", 12));
  menu->ImageList(list);
  menu->SelectionColor(0x070809);
  PropertyBag bag;
  menu->WriteProperties(bag);
  EXPECT_EQ(bag.Keys(), (Lines{"BackColor", "ForeColor", "Font", "ImageList", "SelectionColor"}));
  auto copy = std::make_shared<veltPUMenu>();
  hf.form.AddControl(copy, "Copy", 0, 0, 10, 10, &bag);
  EXPECT_EQ((std::vector{copy->BackColor(), copy->ForeColor(), copy->SelectionColor()}),
            (std::vector<OLE_COLOR>{0x010203, 0x040506, 0x070809}));
  EXPECT_EQ(copy->Font()->Size(), 12);
  EXPECT_EQ(copy->ImageList(), list);
  EXPECT_EQ(copy->Colors().Accent3, BlendColor(0x010203, 0x070809, 130));
  PropertyBag wrong;
  wrong.WriteProperty("ImageList",
                      Variant(std::static_pointer_cast<Object>(std::make_shared<Picture>(1, 1))));
  test::errorOf(errTypeMismatch, [&] {
    hf.form.AddControl(std::make_shared<veltPUMenu>(), "Wrong", 0, 0, 10, 10, &wrong);
  });
}

TEST_F(veltPUMenuTest, FixedSizeOwnFontCopyAndRemoval) {
  site->Move(0, 0, 3000, 1500);
  EXPECT_EQ((std::vector{site->Width(), site->Height()}),
            (std::vector{veltPUMenu::kControlSize, veltPUMenu::kControlSize}));

  menu->MenuItem->Add("b", "Bold", 0, true, "", "", itNormal, false, true);
  openAt(10, 10);
  EXPECT_FALSE(menu->Font()->Bold());
  EXPECT_NE(face().Font(), menu->Font());

  std::weak_ptr<PopupWindow> window = menu->Window();
  hf.form.RemoveControl("veltPUMenu1");
  EXPECT_FALSE(window.lock()->Visible() || window.lock()->Layered());
  EXPECT_EQ(menu->MenuItem, nullptr);
  EXPECT_THROW(menu->CreateMenu(), Error);
  veltPUMenu loose;
  EXPECT_THROW(loose.Font(), Error);
}

// A second CreateMenu while open moves and relays the menu without closing it.
// A group other than the root selects and reports its items by their place
// among all items.
TEST_F(veltPUMenuTest, OpeningAgainWhileOpenOrFromItsHandlersKeepsItOpen) {
  addItems();
  menu->MenuItem->Add("x", "Extra", 0, true, "", "more");
  test::EventLog log(*site);
  openAt(100, 100);
  hf.Tick(2);
  openAt(300, 200, "more");
  EXPECT_EQ(rect().Left, 300);
  EXPECT_EQ(rect().Height(), textRow() + 4);
  hf.Tick(5);
  EXPECT_EQ(menu->State(), veltPUMenu::msOpen);
  EXPECT_TRUE(log.Lines().empty());
  hover(1);
  EXPECT_EQ(menu->SelectedIndex(), 5);

  Connection again =
      menu->ItemClick.connect([&](int16_t, const std::string&) { openAt(300, 200, "more"); });
  clickRow(1);
  hf.Tick(5);
  EXPECT_EQ(menu->State(), veltPUMenu::msOpen);
  EXPECT_EQ(rect().Left, 300);
  EXPECT_EQ(log.Lines(), (Lines{"ItemClick(i5, String:x)"}));

  again.disconnect();
  int reopened = 0;
  Connection reopen = menu->Closed.connect([&] {
    if (reopened++ == 0) openAt(50, 50);
  });
  menu->KillMenu();
  hf.Tick(5);
  EXPECT_EQ(menu->State(), veltPUMenu::msOpen);
  EXPECT_EQ(rect().Left, 50);
  EXPECT_EQ(log.Names(), (Lines{"ItemClick", "Closed"}));
}

// A menu with one row on a second form, which its handlers destroy.
class veltPUMenuLifetimeTest : public veltPUMenuTest {
 protected:
  veltPUMenuLifetimeTest() {
    auto menu = form->Add<veltPUMenu>("veltPUMenu1", 0, 0, 47, 47);
    menu->MenuItem->Add("a", "Alpha");
    weak = menu;
    raw = menu.get();
  }

  std::unique_ptr<Form> form = std::make_unique<Form>(hf.system, "Form2");
  std::weak_ptr<veltPUMenu> weak;
  veltPUMenu* raw = nullptr;
};

TEST_F(veltPUMenuLifetimeTest, ItemClickHandlerDestroysTheForm) {
  Connection c = raw->ItemClick.connect([&](int16_t, const std::string&) { form.reset(); });
  raw->CreateMenu(100 * kTwips, 100 * kTwips);
  hf.system->PostMouseMove(110, 105);
  hf.system->PostMouseDown(1, 110, 105);
  hf.system->PostMouseUp(1, 110, 105);
  hf.Run();
  hf.Tick(3);
  EXPECT_TRUE(form == nullptr && weak.expired());
}

TEST_F(veltPUMenuLifetimeTest, ClosedHandlerDestroysTheForm) {
  Connection c = raw->Closed.connect([&] { form.reset(); });
  raw->CreateMenu(100 * kTwips, 100 * kTwips);
  raw->KillMenu();
  hf.Tick(3);
  EXPECT_TRUE(form == nullptr && weak.expired());
}

TEST_F(veltPUMenuLifetimeTest, FormDestroyedWhileCreateMenuWaitsForTheButtons) {
  hf.system->SetButtons(2);
  hf.system->PostAction([&] { form.reset(); });
  hf.system->PostAction([&] { hf.system->SetButtons(0); });
  raw->CreateMenu();
  EXPECT_TRUE(form == nullptr && weak.expired());
  EXPECT_EQ(hf.system->PendingInput(), 1u) << "returned as soon as the form went";
}

}  // namespace
}  // namespace velt
