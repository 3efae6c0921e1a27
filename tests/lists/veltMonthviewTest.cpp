// veltMonthview on a headless form: the calendar arithmetic behind the grid,
// the properties and their keys, self-sizing, the marks in pixels, the mouse
// rules (strict cells, empty cells, the header arrows repeating while held),
// the month menu, and a Click handler that removes the control.

#include "velt/controls/lists/veltMonthview.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "support/ExpectError.hpp"
#include "support/HeadlessForm.hpp"
#include "support/Pixels.hpp"
#include "velt/controls/menus/MenuItems.hpp"
#include "velt/controls/menus/veltPUMenu.hpp"
#include "velt/foundation/Colors.hpp"
#include "velt/platform/CalendarDate.hpp"
#include "velt/platform/Canvas.hpp"
#include "velt/platform/PopupWindow.hpp"
#include "velt/platform/PropertyBag.hpp"
#include "velt/platform/Variant.hpp"

namespace velt {
namespace {

using Layout = MonthviewLayout;
using Lines = std::vector<std::string>;

constexpr int32_t kAt = 10;  // the calendar's left and top on the form
constexpr int16_t kLeft = 1;

class MonthviewTest : public ::testing::Test {
 protected:
  void SetUp() override {
    view = hf.form.Add<veltMonthview>("veltMonthview1", kAt, kAt, 300, 300);
    site = hf.form.FindSite("veltMonthview1");
    log = std::make_unique<test::EventLog>(*site);
  }
  void show(int16_t year, int16_t month) {
    view->iYear(year);
    view->iMonth(month);
  }
  // The first and last cells that show a day.
  std::pair<int, int> dayRange() const {
    int first = 0;
    int last = 0;
    for (int k = 1; k <= Layout::kCells; ++k) {
      const int16_t day = view->Layout().CellAt(k).Day;
      if (day == 0) continue;
      if (first == 0) first = k;
      EXPECT_EQ(day, k - first + 1) << "cell " << k;
      last = k;
    }
    return {first, last};
  }
  int cellOfDay(int16_t day) const {
    for (int k = 1; k <= Layout::kCells; ++k)
      if (view->Layout().CellAt(k).Day == day) return k;
    return 0;
  }
  void move(float x, float y) {
    hf.system->PostMouseMove(kAt + static_cast<int32_t>(x), kAt + static_cast<int32_t>(y));
  }
  void press(float x, float y) {
    hf.system->PostMouseDown(kLeft, kAt + static_cast<int32_t>(x), kAt + static_cast<int32_t>(y));
  }
  void release(float x, float y) {
    hf.system->PostMouseUp(kLeft, kAt + static_cast<int32_t>(x), kAt + static_cast<int32_t>(y));
  }
  static PointL middle(const Layout::Box& box) {
    return PointL{box.Left + box.Width / 2, box.Top + box.Height / 2};
  }
  OLE_COLOR at(int32_t x, int32_t y) { return test::PixelAt(site->Surface(), x, y); }

  test::HeadlessForm hf;
  std::shared_ptr<veltMonthview> view;
  Site* site = nullptr;
  std::unique_ptr<test::EventLog> log;
};

TEST(CalendarDateTest, MonthLengthsAndWeekdaysFollowTheGregorianRules) {
  struct Case {
    int32_t year;
    int16_t month;
    int16_t days;
    int16_t firstWeekday;  // Monday 1
  };
  for (const Case& c :
       {Case{1900, 2, 28, 4}, Case{2000, 2, 29, 2}, Case{2004, 2, 29, 7}, Case{2005, 2, 28, 2},
        Case{2024, 1, 31, 1}, Case{2023, 10, 31, 7}, Case{2024, 9, 30, 7}, Case{1970, 1, 31, 4},
        Case{1, 1, 31, 1}, Case{0, 2, 29, 2}, Case{-1, 2, 28, 1}, Case{-100, 2, 28, 4}}) {
    EXPECT_EQ(CalendarDate::DaysInMonth(c.year, c.month), c.days) << c.year << "-" << c.month;
    EXPECT_EQ(CalendarDate::Weekday(c.year, c.month, 1), c.firstWeekday)
        << c.year << "-" << c.month;
  }
  // Every year an Integer holds: the 400-year cycle is a whole number of weeks.
  for (int32_t year : {-32768, -32767, -401, 32367, 32767}) {
    const int32_t other = year > 0 ? year - 400 : year + 400;
    for (int16_t month = 1; month <= 12; ++month)
      EXPECT_EQ(CalendarDate::Weekday(year, month, 1), CalendarDate::Weekday(other, month, 1))
          << year << "-" << month;
  }
}

TEST(CalendarDateTest, ParsesOnlyDaysThatExist) {
  EXPECT_EQ(CalendarDate::Parse("2024-02-29"), (CalendarDate{2024, 2, 29}));
  EXPECT_EQ(CalendarDate::Parse("-44-3-15"), (CalendarDate{-44, 3, 15}));
  for (const char* bad : {"", "2023-02-29", "2024-13-01", "2024-00-10", "2024-1-32", "2024-01",
                          "2024-01-01x", "2024--1-01", "x-01-01", "1234567890-01-01", "--"}) {
    const std::string what =
        test::errorOf(errInvalidProcedureCall, [&] { CalendarDate::Parse(bad); });
    EXPECT_NE(what.find("YYYY-MM-DD"), std::string::npos) << bad;
  }
  HeadlessWindowSystem system;
  test::errorOf(errInvalidProcedureCall, [&] { system.SetToday(CalendarDate{2023, 2, 29}); });
  EXPECT_EQ(system.Today(), HeadlessWindowSystem::kDefaultToday);
}

TEST_F(MonthviewTest, TheGridStartsOnTheFirstsWeekdayAndEndsWithTheMonth) {
  struct Case {
    int16_t year;
    int16_t month;
    int first;
    int last;
  };
  for (const Case& c : {Case{2024, 1, 1, 31}, Case{2023, 10, 7, 37}, Case{1900, 2, 4, 31},
                        Case{2000, 2, 2, 30}, Case{2004, 2, 7, 35}, Case{2005, 2, 2, 29},
                        Case{0, 1, 6, 36}, Case{-32768, 2, 0, 0}, Case{32767, 12, 0, 0}}) {
    show(c.year, c.month);
    const auto [first, last] = dayRange();
    if (c.first == 0) {  // the far ends: any weekday, but a whole month
      EXPECT_GE(first, 1);
      EXPECT_EQ(last - first + 1, CalendarDate::DaysInMonth(c.year, c.month));
      continue;
    }
    EXPECT_EQ(first, c.first) << c.year << "-" << c.month;
    EXPECT_EQ(last, c.last) << c.year << "-" << c.month;
  }
}

TEST_F(MonthviewTest, PropertiesClampTheMonthOnlyAndReportTheirOwnNames) {
  EXPECT_EQ(view->ID(), 7);
  EXPECT_EQ((std::tuple{view->iDay(), view->iMonth(), view->iYear()}), (std::tuple{1, 2, 2005}));
  site->ClearChangedProperties();
  for (const auto& [given, kept] :
       {std::pair<int16_t, int16_t>{13, 12}, {0, 1}, {-300, 1}, {12, 12}, {1, 1}}) {
    view->iMonth(given);
    EXPECT_EQ(view->iMonth(), kept) << given;
  }
  view->iDay(40);
  view->iYear(-7);
  EXPECT_EQ(view->iDay(), 40);
  EXPECT_EQ(view->iYear(), -7);
  EXPECT_EQ(site->ChangedProperties(),
            (Lines{"iMonth", "iMonth", "iMonth", "iMonth", "iMonth", "iDay", "iYear"}));
}

TEST_F(MonthviewTest, StoresUnderTheBagKeysAndReadsThemBack) {
  view->iDay(29);
  view->iMonth(9);
  view->iYear(1999);
  view->WeekdayName("M,T");
  const PropertyBag saved = site->Save();
  EXPECT_EQ(saved.ReadProperty("Day", Variant(int16_t{0})).ToInteger(), 29);
  EXPECT_EQ(saved.ReadProperty("Month", Variant(int16_t{0})).ToInteger(), 9);
  EXPECT_EQ(saved.ReadProperty("Year", Variant(int16_t{0})).ToInteger(), 1999);

  PropertyBag stored = saved;
  stored.WriteProperty("Month", Variant(int16_t{44}), Variant(int16_t{2}));
  auto copy = std::make_shared<veltMonthview>();
  hf.form.AddControl(copy, "copy", 400, 10, 10, 10, &stored);
  EXPECT_EQ((std::tuple{copy->iDay(), copy->iMonth(), copy->iYear()}), (std::tuple{29, 12, 1999}));
  EXPECT_EQ(copy->WeekdayName(), "M,T");

  PropertyBag wrong;
  wrong.WriteProperty("Year", Variant(std::string("soon")), Variant(int16_t{2005}));
  test::errorOf(errTypeMismatch, [&] {
    hf.form.AddControl(std::make_shared<veltMonthview>(), "wrong", 0, 0, 9, 9, &wrong);
  });
}

TEST_F(MonthviewTest, SizesItselfToItsGridAndGrowsWithItsFont) {
  const Canvas& canvas = site->Surface();
  const Layout& layout = view->Layout();
  const int32_t margin = canvas.TextWidth("WWO");
  EXPECT_EQ(layout.Margin(), margin);
  EXPECT_EQ(layout.CellAt(1).Left, margin);
  EXPECT_EQ(layout.CellAt(1).Top, margin + 2 * canvas.TextHeight("I"));
  EXPECT_EQ(layout.CellAt(8).Top, layout.CellAt(1).Top + canvas.TextHeight("I") + 1);
  EXPECT_EQ(layout.CellAt(2).Left, margin + canvas.TextWidth("WW") + 3);
  const RectL bounds = site->Bounds();
  EXPECT_EQ(bounds.Width(), margin / 2 + layout.CellAt(7).Left + layout.CellAt(7).Width);
  EXPECT_EQ(bounds.Height(), margin / 2 + layout.CellAt(42).Top + layout.CellAt(42).Height);
  // The month name is centred; the month arrows sit left of it, the year arrows right.
  const Layout::Box& name = layout.Header(Layout::heMonthName);
  EXPECT_LE(std::abs(name.Left * 2 + name.Width - bounds.Width()), 1);
  EXPECT_EQ(layout.Header(Layout::heNextMonth).Left + 16, name.Left);
  EXPECT_EQ(layout.Header(Layout::hePreviousMonth).Left + 32, name.Left);
  EXPECT_EQ(layout.Header(Layout::heNextYear).Left, name.Left + name.Width);
  EXPECT_EQ(layout.Header(Layout::hePreviousYear).Top, name.Top + name.Height / 2 - 1);

  auto font = test::PinnedFont();
  font->Size(14);
  view->Font(font);
  EXPECT_GT(site->Bounds().Width(), bounds.Width());
  EXPECT_GT(site->Bounds().Height(), bounds.Height());
}

TEST_F(MonthviewTest, MarksTodayTheSelectionAndTheHoveredCell) {
  ASSERT_EQ(hf.system->Today(), (CalendarDate{2005, 2, 16}));  // the headless default
  const ColorScheme& s = view->Scheme();
  const auto inside = [&](int16_t day) {  // a pixel of the mark the day number leaves free
    const Layout::Cell& cell = view->Layout().CellAt(cellOfDay(day));
    return at(cell.Left + 1, cell.Top + 1);
  };
  const auto edge = [&](int16_t day) {
    const Layout::Cell& cell = view->Layout().CellAt(cellOfDay(day));
    return at(cell.Left, cell.Top);
  };
  EXPECT_EQ(inside(16), s.FillTop);  // today: flat
  EXPECT_EQ(edge(16), s.EdgeDark);
  EXPECT_EQ(inside(1),
            test::GradientAt(s.FillTop, s.FillBottom, view->Layout().CellAt(2).Width, 1));
  EXPECT_EQ(inside(2), s.Back);
  EXPECT_EQ(edge(2), s.Back);
  hf.system->SetToday(CalendarDate{2005, 2, 9});  // the calendar repaints at once
  EXPECT_EQ(inside(9), s.FillTop);
  EXPECT_EQ(inside(16), s.Back);

  const Layout::Cell& hovered = view->Layout().CellAt(cellOfDay(20));
  move(hovered.Left + 5, hovered.Top + 5);
  hf.Run();
  EXPECT_EQ(view->HoverCell(), cellOfDay(20));
  EXPECT_EQ(inside(20), test::GradientAt(s.Accent1, s.Accent3, hovered.Width, 1));
  view->iDay(20);
  EXPECT_EQ(inside(20),
            test::GradientAt(BlendColor(s.Accent1, s.FillTop, 128),
                             BlendColor(s.Accent3, s.FillBottom, 128), hovered.Width, 1));
  // The pointer leaves without a move the control hears: the hover ends on the next tick.
  hf.system->SetCursor(0, 0);
  hf.Tick(2);
  EXPECT_EQ(view->HoverCell(), 0);

  view->iMonth(3);  // today is not in March
  EXPECT_EQ(inside(16), s.Back);
  view->iDay(0);  // no day 0: nothing is selected, not even the empty cells
  const Layout::Cell& empty = view->Layout().CellAt(1);  // 1 March 2005 is a Tuesday
  EXPECT_EQ(at(empty.Left, empty.Top), s.Back);
  EXPECT_EQ(at(empty.Left + 1, empty.Top + 1), s.Back);
}

TEST_F(MonthviewTest, AShortWeekdayListLeavesTheOtherHeadingsEmpty) {
  const Layout& layout = view->Layout();
  const test::Region band{0, layout.HeaderHeight(), 1000, layout.CellAt(1).Top};
  const auto columns = [&](int from, int to) {
    test::Region r = band;
    r.left = layout.CellAt(from).Left - 2;
    r.right = layout.CellAt(to).Left + layout.CellAt(to).Width + 2;
    return r;
  };
  const Canvas full = site->Surface();
  view->WeekdayName("Mo,Tu");
  const Canvas& shortList = site->Surface();
  EXPECT_TRUE(test::DifferenceBox(shortList, full, columns(1, 2)).Empty());
  EXPECT_FALSE(test::DifferenceBox(shortList, full, columns(3, 7)).Empty());
  EXPECT_EQ(test::CountColor(shortList, view->Scheme().Back, columns(3, 7)),
            (columns(3, 7).right - columns(3, 7).left) * (band.bottom - band.top));
}

TEST_F(MonthviewTest, APressSelectsOnlyStrictlyInsideACellThatShowsADay) {
  show(2023, 10);  // 1 October is a Sunday: cells 1 to 6 are empty
  const Layout::Cell& fifth = view->Layout().CellAt(cellOfDay(5));
  const Layout::Cell& empty = view->Layout().CellAt(3);
  struct Case {
    float x;
    float y;
    int16_t day;  // selected afterwards; 0 = unchanged
  };
  const float left = static_cast<float>(fifth.Left);
  const float top = static_cast<float>(fifth.Top);
  const float right = left + static_cast<float>(fifth.Width);
  const float bottom = top + static_cast<float>(fifth.Height);
  for (const Case& c :
       {Case{left, top + 3, 0}, Case{right, top + 3, 0}, Case{left + 3, top, 0},
        Case{left + 3, bottom, 0}, Case{left + 1, top + 1, 5}, Case{right - 1, bottom - 1, 5},
        Case{static_cast<float>(empty.Left + 5), static_cast<float>(empty.Top + 5), 0}}) {
    view->iDay(1);
    log->Clear();
    view->OnMouseDown(kLeft, 0, c.x, c.y);
    view->OnMouseUp(kLeft, 0, c.x, c.y);
    EXPECT_EQ(view->iDay(), c.day == 0 ? 1 : c.day) << c.x << "," << c.y;
    const Lines expected =
        c.day == 0 ? Lines{"MouseDown", "MouseUp"} : Lines{"Click", "MouseDown", "MouseUp"};
    EXPECT_EQ(log->Names(), expected) << c.x << "," << c.y;
  }
  log->Clear();
  view->OnMouseDown(2, 0, left + 3, top + 3);  // other buttons do nothing
  view->OnMouseUp(2, 0, left + 3, top + 3);
  EXPECT_TRUE(log->Lines().empty());
  EXPECT_EQ(view->iDay(), 1);
}

TEST_F(MonthviewTest, AHeldArrowStepsEveryTimerTickAndStopsAtTheEnds) {
  struct Case {
    Layout::HeaderElement element;
    int16_t month;
    int32_t heldMs;
    int16_t monthAfter;
    int16_t yearAfter;
  };
  for (const Case& c :
       {Case{Layout::heNextMonth, 3, 599, 6, 2005}, Case{Layout::heNextMonth, 3, 600, 7, 2005},
        Case{Layout::heNextMonth, 10, 2000, 12, 2005},
        Case{Layout::hePreviousMonth, 3, 1000, 1, 2005}, Case{Layout::heNextYear, 5, 400, 5, 2008},
        Case{Layout::hePreviousYear, 5, 200, 5, 2003}}) {
    show(2005, c.month);
    const PointL spot = middle(view->Layout().Header(c.element));
    move(spot.x, spot.y);
    press(spot.x, spot.y);
    hf.Run();
    EXPECT_TRUE(view->RepeatTimerRunning());
    hf.Tick(c.heldMs);
    release(spot.x, spot.y);
    hf.Run();
    EXPECT_FALSE(view->RepeatTimerRunning());
    hf.Tick(1000);  // released: no more steps
    EXPECT_EQ(view->iMonth(), c.monthAfter) << c.element << " held " << c.heldMs;
    EXPECT_EQ(view->iYear(), c.yearAfter) << c.element << " held " << c.heldMs;
  }
  // The year stops at the ends of an Integer instead of overflowing.
  show(std::numeric_limits<int16_t>::max(), 1);
  const PointL up = middle(view->Layout().Header(Layout::heNextYear));
  view->OnMouseDown(kLeft, 0, static_cast<float>(up.x), static_cast<float>(up.y));
  view->OnMouseUp(kLeft, 0, static_cast<float>(up.x), static_cast<float>(up.y));
  EXPECT_EQ(view->iYear(), std::numeric_limits<int16_t>::max());
}

TEST_F(MonthviewTest, TheMonthMenuListsTheMonthsBelowTheNameAndSetsThePickedOne) {
  view->MonthName("Jan,Feb,Mar,Apr,May");
  const std::shared_ptr<veltPUMenu> menu = view->veltPUMenu1();
  ASSERT_EQ(menu->MenuItem->Count(), 12);
  EXPECT_EQ(menu->MenuItem->Item(int16_t{5})->Caption(), "May");
  EXPECT_EQ(menu->MenuItem->Item(int16_t{6})->Caption(), "");

  const Layout::Box name = view->Layout().Header(Layout::heMonthName);
  const PointL spot = middle(name);
  move(spot.x, spot.y);
  press(spot.x, spot.y);
  release(spot.x, spot.y);
  hf.Run();
  ASSERT_TRUE(menu->MenuVisible);
  EXPECT_TRUE(view->bMenuOpen);
  EXPECT_FALSE(view->RepeatTimerRunning());
  const RectL window = site->WindowRect();
  const RectL shown = menu->Window()->WindowRect();
  EXPECT_EQ(shown.Left, window.Left + name.Left);
  EXPECT_EQ(shown.Top, window.Top + name.Top + name.Height);
  EXPECT_EQ(menu->OpenWidth(), name.Width);

  const auto row = menu->Listings()->Item(int16_t{4});  // April
  const int32_t rowY = shown.Top + row->Top() + row->Height() / 2;
  hf.system->PostMouseMove(shown.Left + 10, rowY);
  hf.system->PostMouseDown(kLeft, shown.Left + 10, rowY);
  hf.system->PostMouseUp(kLeft, shown.Left + 10, rowY);
  hf.Run();
  hf.Tick(2);
  EXPECT_EQ(view->iMonth(), 4);
  EXPECT_FALSE(view->bMenuOpen);
  EXPECT_EQ(view->HoverHeader(), 0);
}

TEST_F(MonthviewTest, ADoubleClickIsRaisedOnlyOnTheSelectedDay) {
  show(2023, 10);  // cells 1 to 6 are empty
  const auto doubleClick = [&](PointL spot) {
    log->Clear();
    hf.system->PostMouseMove(kAt + spot.x, kAt + spot.y);
    for (int press = 0; press < 2; ++press) {
      hf.system->PostMouseDown(kLeft, kAt + spot.x, kAt + spot.y);
      hf.system->PostMouseUp(kLeft, kAt + spot.x, kAt + spot.y);
    }
    hf.Run();
    Lines names;
    for (const std::string& name : log->Names())
      if (name != "MouseMove") names.push_back(name);
    return names;
  };
  const Layout::Cell& day = view->Layout().CellAt(cellOfDay(12));
  EXPECT_EQ(doubleClick(middle(day)),
            (Lines{"Click", "MouseDown", "MouseUp", "Click", "MouseDown", "DblClick", "MouseUp"}));
  EXPECT_EQ(view->iDay(), 12);
  EXPECT_EQ(doubleClick(middle(view->Layout().CellAt(2))),
            (Lines{"MouseDown", "MouseUp", "MouseDown", "MouseUp"}));
  // The header's year arrow: no DblClick either, the year steps twice.
  EXPECT_EQ(doubleClick(middle(view->Layout().Header(Layout::heNextYear))),
            (Lines{"MouseDown", "MouseUp", "MouseDown", "MouseUp"}));
  EXPECT_EQ(view->iYear(), 2025);
  // The hovered day is no longer the selected one; the right button never counts.
  view->iYear(2023);
  const PointL spot = middle(day);
  view->OnMouseMove(0, 0, static_cast<float>(spot.x), static_cast<float>(spot.y));
  view->iDay(13);
  log->Clear();
  view->OnDblClick(kLeft, 0, static_cast<float>(spot.x), static_cast<float>(spot.y));
  view->iDay(12);
  view->OnDblClick(2, 0, static_cast<float>(spot.x), static_cast<float>(spot.y));
  EXPECT_TRUE(log->Lines().empty());
}

TEST_F(MonthviewTest, AClickHandlerMayRemoveTheControl) {
  const Layout::Cell& cell = view->Layout().CellAt(cellOfDay(10));
  const Connection removal = view->Click.connect([&] { hf.form.RemoveControl("veltMonthview1"); });
  move(cell.Left + 4, cell.Top + 4);
  press(cell.Left + 4, cell.Top + 4);
  release(cell.Left + 4, cell.Top + 4);
  hf.Run();
  hf.Tick(500);
  EXPECT_EQ(hf.form.FindSite("veltMonthview1"), nullptr);
  EXPECT_EQ(log->Names(), (Lines{"MouseMove", "Click"}));
}

}  // namespace
}  // namespace velt
