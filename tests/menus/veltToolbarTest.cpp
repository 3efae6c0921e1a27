// veltToolbar on a headless form: the item geometry shared by painting and
// hit-testing, the bar height, press and release on every kind of item, the
// menus (opening, sharing, switching, the keyboard, choosing, closing), pixels
// from the colour formulas, persistence, and handlers that clear the items or
// remove the toolbar (run these under the address sanitizer too).

#include "velt/controls/menus/veltToolbar.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "support/HeadlessForm.hpp"
#include "support/Pixels.hpp"
#include "velt/controls/menus/MenuItemListing.hpp"
#include "velt/controls/menus/veltPUMenu.hpp"
#include "velt/foundation/Colors.hpp"
#include "velt/platform/ImageList.hpp"
#include "velt/platform/Picture.hpp"
#include "velt/platform/PopupWindow.hpp"
#include "velt/platform/PropertyBag.hpp"

namespace velt {
namespace {

using Lines = std::vector<std::string>;

constexpr int32_t kAt = 20;  // the toolbar's left and top on the form and the screen
constexpr int16_t kLeft = 1;
constexpr OLE_COLOR kIconColor = 0x0000FF;

enum : int16_t { kNew = 1, kBold, kSeparator, kFile, kPlaceholder, kCaption, kEdit, kOff };

std::shared_ptr<ImageList> solidIcons(int16_t side) {
  auto list = std::make_shared<ImageList>();
  std::vector<uint32_t> pixels(static_cast<size_t>(side) * side,
                               0xFF000000u | OleToPixel(kIconColor));
  list->ListImages().Add(std::make_shared<Picture>(side, side, std::move(pixels)));
  return list;
}

Canvas pinned() {
  Canvas canvas(1, 1);
  canvas.Font(test::PinnedFont());
  return canvas;
}

class ToolbarTest : public ::testing::Test {
 protected:
  ToolbarTest() {
    bar = hf.form.Add<veltToolbar>("veltToolbar1", kAt, kAt, 500, 40);
    site = hf.form.FindSite("veltToolbar1");
    log = std::make_unique<test::EventLog>(*site);
  }

  // One item of every kind; the two menu buttons have entries.
  void fill() {
    ToolbarItems& items = bar->ToolbarItems;
    items.Add("new", "New");
    items.Add("bold", "Bold", 0, mitCheckButton);
    items.Add("sep", "", 0, mitSeparator);
    items.Add("file", "File", 0, mitMenu)->ToolbarMenuItems->Add("open", "Open");
    bar->ToolbarItems.Item(kFile)->ToolbarMenuItems->Add("quit", "Quit");
    items.Add("gap", "", 0, mitPlaceholder);
    items.Add("title", "Caption", 0, mitCaption);
    items.Add("edit", "Edit", 0, mitMenu2)->ToolbarMenuItems->Add("undo", "Undo");
    items.Add("off", "Off", 0, mitNormalButton, false, false);
  }
  const ToolbarCell& cell(int16_t index) { return *bar->Layout().CellOf(index); }
  int32_t midX(int16_t index) { return cell(index).ButtonLeft() + cell(index).Width / 2; }
  int32_t midY() { return kToolbarItemTop + bar->Layout().ItemHeight / 2; }
  void move(int32_t x, int32_t y) {
    hf.system->PostMouseMove(kAt + x, kAt + y);
    hf.Run();
  }
  void moveOnto(int16_t index) { move(midX(index), midY()); }
  void click(int16_t index, int16_t button = kLeft) {
    hf.system->PostMouseDown(button, kAt + midX(index), kAt + midY());
    hf.system->PostMouseUp(button, kAt + midX(index), kAt + midY());
    hf.Run();
  }
  bool menuOpen() { return bar->veltPUMenu1()->Window()->Visible(); }
  RectL menuRect() { return bar->veltPUMenu1()->Window()->WindowRect(); }
  void chooseRow(int16_t position) {
    const MenuItemListing& row = *bar->veltPUMenu1()->Listings()->Item(position);
    const int32_t x = menuRect().Left + 10;
    const int32_t y = menuRect().Top + row.Top() + row.Height() / 2;
    hf.system->PostMouseMove(x, y);
    hf.system->PostMouseDown(kLeft, x, y);
    hf.system->PostMouseUp(kLeft, x, y);
    hf.Run();
  }
  void removeToolbar() {
    if (hf.form.FindSite("veltToolbar1")) hf.form.RemoveControl("veltToolbar1");
  }

  test::HeadlessForm hf;
  std::shared_ptr<veltToolbar> bar;
  Site* site = nullptr;
  std::unique_ptr<test::EventLog> log;
};

TEST_F(ToolbarTest, ItemsStartAtSevenAndTakeTheirCaptionIconAndArrowWidths) {
  bar->ImageList(solidIcons(20));
  fill();
  bar->ToolbarItems.Item(kNew)->IconIndex(1);
  bar->ToolbarItems.Refresh();
  Canvas c = pinned();
  const int32_t arrow = kToolbarArrowGap + c.TextWidth("6");
  const int32_t expected[] = {20 + c.TextWidth("New") + 15,
                              c.TextWidth("Bold") + 15,
                              15,
                              c.TextWidth("File") + 15,
                              15,
                              c.TextWidth("Caption") + 15,
                              c.TextWidth("Edit") + 15 + arrow,
                              c.TextWidth("Off") + 15};
  int32_t x = 7;
  ASSERT_EQ(bar->Layout().Cells.size(), 8u);
  for (int16_t i = 1; i <= 8; ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(cell(i).Left, x);
    EXPECT_EQ(cell(i).Width, expected[i - 1]);
    EXPECT_EQ(cell(i).HasIcon, i == kNew);
    x += expected[i - 1];
  }
  // A font changed in place lays the captions out again.
  bar->Font()->Size(16);
  bar->ToolbarItems.Refresh();
  c.Font()->Size(16);
  EXPECT_EQ(cell(kBold).Width, c.TextWidth("Bold") + 15);
}

TEST_F(ToolbarTest, BarHeightFollowsTextOrTallerImagesAndComesBackAfterEveryResize) {
  const int32_t text = pinned().TextHeight("I");
  EXPECT_EQ(bar->BarHeight(), text + 14);
  EXPECT_EQ(site->Height(), (text + 14) * 15);
  bar->ImageList(solidIcons(static_cast<int16_t>(text + 9)));
  EXPECT_EQ(bar->BarHeight(), text + 9 + 14);
  site->Move(site->Left(), site->Top(), 300 * 15, 100 * 15);
  EXPECT_EQ(site->Surface().ScaleHeight(), text + 9 + 14);
  EXPECT_EQ(site->Surface().ScaleWidth(), 300);  // the width is free
  bar->ImageList(solidIcons(4));                 // shorter than the text
  EXPECT_EQ(site->Surface().ScaleHeight(), text + 14);
}

TEST_F(ToolbarTest, ItemsThatDoNotFitAreHiddenAndNotHit) {
  fill();
  const int32_t fits = cell(kFile).ButtonLeft() + cell(kFile).Width + 1;  // right border beyond it
  site->Move(site->Left(), site->Top(), fits * 15, site->Height());
  ASSERT_EQ(bar->Layout().Cells.size(), static_cast<size_t>(kFile));
  site->Move(site->Left(), site->Top(), (fits - 1) * 15, site->Height());
  EXPECT_EQ(bar->Layout().Cells.size(), static_cast<size_t>(kFile - 1));
  move(fits - 3, midY());
  EXPECT_EQ(bar->HoveredIndex(), 0);
  // An item added to the full bar is hidden too; a change to a shown item
  // still shows with it, as with any change of the collection.
  bar->ToolbarItems.Item(kNew)->Caption("Newer");
  bar->ToolbarItems.Add("more", "More");
  EXPECT_EQ(cell(kNew).Width, pinned().TextWidth("Newer") + 15);
  EXPECT_EQ(bar->Layout().Cells.size(), static_cast<size_t>(kFile - 1));
}

// Columns of the drawn button, rows strictly between 6 and h + 6.
TEST_F(ToolbarTest, HitTestingTakesTheButtonsColumnsAndTheStrictItemRows) {
  fill();
  const int32_t h = bar->Layout().ItemHeight;
  const ToolbarCell& bold = cell(kBold);
  struct Case {
    int32_t x, y;
    int16_t hovered;
  } cases[] = {
      {bold.ButtonLeft(), midY(), kBold},
      {bold.ButtonLeft() - 1, midY(), kNew},
      {bold.ButtonLeft() + bold.Width - 1, midY(), kBold},
      {bold.ButtonLeft() + bold.Width, midY(), 0},  // the separator's column
      {midX(kBold), 7, kBold},
      {midX(kBold), 6, 0},
      {midX(kBold), h + 5, kBold},
      {midX(kBold), h + 6, 0},
      {cell(kNew).ButtonLeft() - 1, midY(), 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::to_string(c.x) + "," + std::to_string(c.y));
    move(300, 1);  // off every item, hover gone
    move(c.x, c.y);
    EXPECT_EQ(bar->HoveredIndex(), c.hovered);
  }
}

TEST_F(ToolbarTest, PressAndReleaseOnEachKindOfItem) {
  fill();
  struct Case {
    int16_t item;
    int16_t button;
    Lines events;
    bool pressedAfter, menuAfter;
  } cases[] = {
      {kNew, kLeft, {"ItemClicked(i1, String:new)"}, false, false},
      {kBold, kLeft, {"ItemClicked(i2, String:bold)"}, false, false},
      {kFile, kLeft, {"ItemClicked(i4, String:file)"}, true, true},
      {kEdit, kLeft, {"ItemClicked(i7, String:edit)"}, true, true},
      {kSeparator, kLeft, {}, false, false},
      {kPlaceholder, kLeft, {}, false, false},
      {kCaption, kLeft, {}, false, false},
      {kOff, kLeft, {}, false, false},
      {kNew, 2, {}, false, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.item);
    bar->veltPUMenu1()->KillMenu();
    hf.Tick();
    log->Clear();
    click(c.item, c.button);
    EXPECT_EQ(log->Lines(), c.events);
    EXPECT_EQ(bar->Pressed(), c.pressedAfter);
    EXPECT_EQ(menuOpen(), c.menuAfter);
  }
  EXPECT_FALSE(bar->ToolbarItems.Item(kBold)->Checked());  // the host toggles it, not the bar
}

TEST_F(ToolbarTest, AMenuOpensUnderItsButtonWithTheItemsOwnEntries) {
  fill();
  bar->ToolbarItems.Add("empty", "Empty", 0, mitMenu);
  click(kFile);
  const std::shared_ptr<veltPUMenu> menu = bar->veltPUMenu1();
  EXPECT_EQ(menu->MenuItem, bar->ToolbarItems.Item(kFile)->ToolbarMenuItems);  // shared
  const RectL window = site->WindowRect();
  EXPECT_EQ(menuRect().Left, window.Left + cell(kFile).ButtonLeft());
  EXPECT_EQ(menuRect().Top, window.Top + bar->Layout().ItemHeight + 9);
  EXPECT_EQ(menu->OpenWidth(), cell(kFile).Width);
  EXPECT_EQ(bar->MenuAnchor(), (PointL{cell(kFile).Left, bar->Layout().ItemHeight + 6}));
  EXPECT_EQ(bar->MenuItemIndex(), kFile);
  moveOnto(9);  // the empty one: an empty menu, not the last one's entries
  EXPECT_TRUE(menuOpen());
  EXPECT_EQ(menu->MenuItem->Count(), 0);
  EXPECT_NE(menu->MenuItem, bar->ToolbarItems.Item(9)->ToolbarMenuItems);
}

TEST_F(ToolbarTest, WhileAMenuIsOpenMovingSwitchesOrClosesIt) {
  fill();
  struct Case {
    int16_t onto;
    bool open;
    int32_t entries;
  } cases[] = {{kOff, true, 2},  // a disabled button changes nothing
               {kEdit, true, 1},       {kFile, true, 2},         {kNew, false, 0},
               {kSeparator, false, 0}, {kPlaceholder, false, 0}, {kCaption, false, 0}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.onto);
    bar->veltPUMenu1()->KillMenu();
    hf.Tick();
    click(kFile);
    moveOnto(c.onto);
    EXPECT_EQ(menuOpen(), c.open);
    if (c.open) {
      EXPECT_EQ(bar->veltPUMenu1()->Listings()->Count(), c.entries);
    }
  }
  hf.Tick();  // Closed clears the state
  EXPECT_EQ(bar->HoveredIndex(), 0);
  EXPECT_FALSE(bar->Pressed());
}

TEST_F(ToolbarTest, ChoosingAnEntryRaisesMenuItemClickedWithBothIndicesAndKeys) {
  fill();
  click(kFile);
  moveOnto(kEdit);
  log->Clear();
  chooseRow(1);
  EXPECT_EQ(log->Lines(), Lines{"MenuItemClicked(i7, String:edit, i1, String:undo)"});
  hf.Tick();
  EXPECT_FALSE(menuOpen());
  EXPECT_FALSE(bar->Pressed());
  EXPECT_EQ(bar->HoveredIndex(), 0);
}

TEST_F(ToolbarTest, LeftAndRightMoveBetweenMenusRoundTheEndsAndEscapeCloses) {
  fill();
  click(kFile);
  const auto key = [&](int16_t code) {
    hf.system->PostKeyDown(code);
    hf.Run();
    return bar->MenuItemIndex();
  };
  EXPECT_EQ(key(39), kEdit);
  EXPECT_EQ(key(39), kFile);
  EXPECT_EQ(key(37), kEdit);
  EXPECT_EQ(bar->veltPUMenu1()->MenuItem, bar->ToolbarItems.Item(kEdit)->ToolbarMenuItems);
  EXPECT_EQ(bar->HoveredIndex(), kEdit);
  key(27);
  hf.Tick();
  EXPECT_FALSE(menuOpen());
  EXPECT_EQ(bar->HoveredIndex(), 0);
}

TEST_F(ToolbarTest, LeavingTheBarTakesTheHoverAwayButNotFromAnOpenMenusButton) {
  fill();
  moveOnto(kNew);
  ASSERT_EQ(bar->HoveredIndex(), kNew);
  hf.system->PostMouseMove(kAt + 300, kAt + 200);  // the bar hears nothing of this
  hf.Run();
  hf.Tick();
  EXPECT_EQ(bar->HoveredIndex(), 0);
  EXPECT_FALSE(bar->HoverTimerRunning());
  click(kFile);
  hf.system->PostMouseMove(menuRect().Left + 5, menuRect().Top + 5);
  hf.Run();
  hf.Tick();
  EXPECT_EQ(bar->HoveredIndex(), kFile);
}

// Handlers may clear the items or remove the toolbar in the middle of its
// own input handling.
TEST_F(ToolbarTest, HandlersThatClearTheItemsOrRemoveTheToolbarAreSafe) {
  for (int round = 0; round < 4; ++round) {
    SCOPED_TRACE(round);
    removeToolbar();
    bar = hf.form.Add<veltToolbar>("veltToolbar1", kAt, kAt, 500, 40);
    fill();
    const bool remove = round % 2 == 1;
    const auto act = [this, remove] {
      if (remove)
        removeToolbar();
      else
        bar->ToolbarItems.Clear();
    };
    Connection connection =
        round < 2 ? bar->ItemClicked.connect([&](int16_t, const std::string&) { act(); })
                  : bar->MenuItemClicked.connect(
                        [&](int16_t, const std::string&, int16_t, const std::string&) { act(); });
    click(round < 2 ? kNew : kFile);
    if (round >= 2) chooseRow(1);
    hf.Tick(5);
    move(10, 10);
    EXPECT_EQ(hf.form.FindSite("veltToolbar1") == nullptr, remove);
    if (!remove) {
      EXPECT_EQ(bar->ToolbarItems.Count(), 0);
    }
  }
}

// The button backgrounds by state, from the top fill row under the frame; the
// separator's two lines; captions in the text or disabled colour; the arrow
// and the icon.
TEST_F(ToolbarTest, PaintingFollowsTheStateAndTheColourFormulas) {
  fill();
  bar->ImageList(solidIcons(12));
  bar->ToolbarItems.Item(kBold)->Checked(true);
  bar->ToolbarItems.Item(kNew)->IconIndex(1);
  bar->ToolbarItems.Refresh();
  const ColorScheme& k = bar->Colors();
  const Canvas& face = site->Surface();
  const int32_t rows = bar->Layout().ItemHeight + 6;
  const auto fillAt = [&](int16_t index) {
    return test::PixelAt(face, cell(index).ButtonLeft() + 2, 4);
  };
  EXPECT_EQ(fillAt(kBold), test::GradientAt(k.Accent1, k.Accent2, rows, 1));  // checked
  EXPECT_EQ(test::PixelAt(face, cell(kBold).ButtonLeft(), 3), k.EdgeDark);
  moveOnto(kNew);
  EXPECT_EQ(fillAt(kNew), test::GradientAt(k.Accent1, k.Accent2, rows, 1));
  moveOnto(kBold);
  EXPECT_EQ(fillAt(kBold), test::GradientAt(k.Accent1, k.Accent3, rows, 1));
  bar->OnMouseDown(kLeft, 0, static_cast<float>(midX(kNew)), static_cast<float>(midY()));
  EXPECT_EQ(fillAt(kNew), test::GradientAt(k.Accent3, k.Accent1, rows, 1));
  bar->OnMouseUp(kLeft, 0, static_cast<float>(midX(kNew)), static_cast<float>(midY()));
  click(kFile);
  EXPECT_EQ(fillAt(kFile), test::GradientAt(k.FillTop, k.EdgeDark, rows, 1));

  const int32_t line = cell(kSeparator).Left + cell(kSeparator).Width / 4;
  EXPECT_EQ(test::PixelAt(face, line, 6), k.EdgeDark);
  EXPECT_EQ(test::PixelAt(face, line + 1, 6), k.FillTop);
  const auto region = [&](int16_t index, int32_t from) {
    return test::Region{cell(index).Left + from, 0, cell(index).ButtonLeft() + cell(index).Width,
                        face.ScaleHeight()};
  };
  EXPECT_GT(test::CountColor(face, k.Text, region(kCaption, 0)), 0);
  EXPECT_EQ(test::CountColor(face, k.Text, region(kOff, 0)), 0);
  EXPECT_GT(test::CountColor(face, k.EdgeDark, region(kOff, 1)), 0);
  const int32_t arrowLeft = pinned().TextWidth("Edit") + kToolbarArrowGap;
  EXPECT_GT(test::CountColor(face, k.Text, region(kEdit, arrowLeft)), 0);
  EXPECT_FALSE(test::ColorBox(face, kIconColor, region(kNew, -2)).Empty());
  EXPECT_EQ(test::PixelAt(face, 1, 0), k.EdgeLight);
  EXPECT_EQ(test::PixelAt(face, 5, face.ScaleHeight() - 1), k.EdgeDark);
}

TEST_F(ToolbarTest, PropertiesAreStoredUnderTheirKeysAndHandedToTheMenu) {
  EXPECT_EQ(bar->ID(), 14);
  auto icons = solidIcons(8);
  bar->BackColor(0x102030);
  bar->SelectionColor(0x00FF00);
  bar->ImageList(icons);
  bar->MenuImageList(icons);
  const std::shared_ptr<veltPUMenu> menu = bar->veltPUMenu1();
  EXPECT_EQ(menu->BackColor(), 0x102030u);
  EXPECT_EQ(menu->SelectionColor(), 0x00FF00u);
  EXPECT_EQ(menu->ImageList(), icons);
  EXPECT_EQ(bar->Colors().Accent1, BlendColor(0x102030, 0x00FF00, 230));
  auto font = test::PinnedFont();
  bar->Font(font);
  EXPECT_EQ(menu->Font(), font);
  PropertyBag bag;
  bar->WriteProperties(bag);
  EXPECT_EQ(bag.Keys(), (Lines{"BackColor", "SelectionColor", "MenuImageList", "Imagelist"}));
  PropertyBag empty;
  bar->ReadProperties(empty);
  EXPECT_EQ(bar->BackColor(), 0xFFFFFFu);
  EXPECT_EQ(bar->ForeColor(), 0xC00000u);
  EXPECT_EQ(bar->SelectionColor(), 33023u);
  EXPECT_EQ(bar->ImageList(), nullptr);
  EXPECT_EQ(menu->ImageList(), nullptr);
}

}  // namespace
}  // namespace velt
