#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "velt/controls/lists/MonthviewLayout.hpp"
#include "velt/foundation/ColorScheme.hpp"
#include "velt/foundation/HoverTracker.hpp"
#include "velt/platform/Event.hpp"
#include "velt/platform/Types.hpp"
#include "velt/platform/UserControl.hpp"

namespace velt {

class Canvas;
class Font;
class Timer;
class veltPUMenu;

// An owner-drawn month calendar: a header with the month name and year between
// four arrows, a row of weekday names and 6 x 7 day cells, weeks starting on
// Monday. Pressing a day selects it (Click); the arrows step the month (stopping
// at January and December) and the year, repeating every Timer1 tick (200 ms)
// while held; the month name opens a menu of the twelve months (veltPUMenu1).
// Today's date, from the window system's clock, gets a mark of its own. The
// control sizes itself to its grid in the font it is given.
//
// It takes the frame's pieces (hover tracking, event raising) but has its own
// looks: marks for the hovered, the selected and today's cell, and a light
// button face behind a hovered header element.
class veltMonthview : public UserControl, public std::enable_shared_from_this<veltMonthview> {
 public:
  static constexpr int16_t kID = 7;
  static constexpr OLE_COLOR kDefaultBackColor = 0xFFFFFF;
  static constexpr OLE_COLOR kDefaultForeColor = 0xC00000;
  static constexpr OLE_COLOR kDefaultSelectionColor = 33023;  // 0x0080FF, an orange
  static constexpr int16_t kDefaultDay = 1;
  static constexpr int16_t kDefaultMonth = 2;
  static constexpr int16_t kDefaultYear = 2005;
  static constexpr const char* kDefaultWeekdayName = "Mo,Tu,We,Th,Fr,Sa,Su";
  static constexpr const char* kDefaultMonthName =
      "January,February,March,April,May,June,July,August,September,October,November,December";
  static constexpr const char* kMenuName = "veltPUMenu1";
  static constexpr const char* kRepeatTimerName = "Timer1";
  static constexpr int32_t kRepeatInterval = 200;  // milliseconds
  static constexpr const char* kGlyphFontName = "Webdings";

  veltMonthview() = default;
  veltMonthview(const veltMonthview&) = delete;
  veltMonthview& operator=(const veltMonthview&) = delete;
  ~veltMonthview() override;

  std::string ClassName() const override { return "veltMonthview"; }
  int16_t ID() const override { return kID; }

  // Public field: True while the month menu is open.
  bool bMenuOpen = false;

  // Properties, in the order they are stored. Enabled and Font are the host's
  // and raise error 91 while the control is not sited. iDay and iYear are
  // stored as given (a day the month lacks selects no cell); iMonth is clamped
  // to 1..12.
  OLE_COLOR BackColor() const { return backColor_; }
  void BackColor(OLE_COLOR color);
  OLE_COLOR ForeColor() const { return foreColor_; }
  void ForeColor(OLE_COLOR color);
  OLE_COLOR SelectionColor() const { return selectionColor_; }
  void SelectionColor(OLE_COLOR color);
  bool Enabled() const;
  void Enabled(bool enabled);
  std::shared_ptr<velt::Font> Font() const;
  void Font(std::shared_ptr<velt::Font> font);  // by reference; nullptr is error 91
  int16_t iDay() const { return day_; }
  void iDay(int16_t day);
  int16_t iMonth() const { return month_; }
  void iMonth(int16_t month);
  int16_t iYear() const { return year_; }
  void iYear(int16_t year);
  // Comma-separated names, Monday first and January first; missing names show
  // empty.
  const std::string& WeekdayName() const { return weekdayName_; }
  void WeekdayName(const std::string& names);
  const std::string& MonthName() const { return monthName_; }
  void MonthName(const std::string& names);

  // Events, in the order of the event interface. Click follows a press on a
  // day; DblClick a double click on the selected day.
  Event<int16_t /*Button*/, int16_t /*Shift*/, float /*X*/, float /*Y*/> MouseDown;
  Event<int16_t /*Button*/, int16_t /*Shift*/, float /*X*/, float /*Y*/> MouseMove;
  Event<int16_t /*Button*/, int16_t /*Shift*/, float /*X*/, float /*Y*/> MouseUp;
  Event<> Click;
  Event<> DblClick;

  // The parts and the control's fields, read-only, for tools and tests.
  std::shared_ptr<veltPUMenu> veltPUMenu1() const { return menu_; }
  const MonthviewLayout& Layout() const { return layout_; }
  const ColorScheme& Scheme() const { return scheme_; }
  int16_t HoverCell() const { return hoverCell_; }
  int16_t HoverHeader() const { return hoverHeader_; }
  bool Pressed() const { return pressed_; }
  bool RepeatTimerRunning() const;
  bool HoverTimerRunning() const { return hover_.Running(); }

  // UserControl.
  void Initialize(ControlHost& host) override;
  void InitProperties() override;
  void ReadProperties(PropertyBag& bag) override;
  void WriteProperties(PropertyBag& bag) override;
  void Resize() override;
  void Terminate() override;
  void OnMouseDown(int16_t button, int16_t shift, float x, float y) override;
  void OnMouseMove(int16_t button, int16_t shift, float x, float y) override;
  void OnMouseUp(int16_t button, int16_t shift, float x, float y) override;
  void OnDblClick(int16_t button, int16_t shift, float x, float y) override;
  void OnKeyDown(int16_t& /*keyCode*/, int16_t& /*shift*/) override {}
  void OnKeyUp(int16_t& /*keyCode*/, int16_t& /*shift*/) override {}
  void OnKeyPress(int16_t& /*keyAscii*/) override {}
  void OnEnterFocus() override {}
  void OnExitFocus() override {}

 private:
  using MouseEvent = Event<int16_t, int16_t, float, float>;

  bool sited() const { return host_ != nullptr; }
  ControlHost& host() const;  // error 91 while not sited
  void markChanged(const char* name);
  Canvas& surface() const;

  // Parts and layout.
  void createMenu();
  void fillMenu();
  void copyLooksToMenu();
  void splitNames();
  void layOut();
  void sizeToGrid();
  void colorsChanged();

  // Painting.
  void draw();
  void drawCells(Canvas& canvas, OLE_COLOR text) const;
  void drawMark(Canvas& canvas, const MonthviewLayout::Cell& cell, OLE_COLOR from,
                OLE_COLOR to) const;
  void drawWeekdays(Canvas& canvas) const;
  void drawHeader(Canvas& canvas, OLE_COLOR text) const;
  void drawHeaderFace(Canvas& canvas, const MonthviewLayout::Box& box) const;
  bool showsToday(int16_t day) const;
  void hoverFinding(HoverTracker::Finding finding);

  // Input.
  void headerAction();
  void openMonthMenu();
  void onRepeatTick();
  void onMenuItemClick(int16_t itemIndex);
  void onMenuClosed();
  void raiseMouse(const char* name, const MouseEvent& event, int16_t button, int16_t shift, float x,
                  float y);

  ControlHost* host_ = nullptr;
  OLE_COLOR backColor_ = kDefaultBackColor;
  OLE_COLOR foreColor_ = kDefaultForeColor;
  OLE_COLOR selectionColor_ = kDefaultSelectionColor;
  int16_t day_ = kDefaultDay;
  int16_t month_ = kDefaultMonth;
  int16_t year_ = kDefaultYear;
  std::string weekdayName_ = kDefaultWeekdayName;
  std::string monthName_ = kDefaultMonthName;
  std::array<std::string, 7> weekdays_;
  std::array<std::string, MonthviewLayout::kMonths> months_;
  ColorScheme scheme_;
  MonthviewLayout layout_;
  bool pressed_ = false;
  int16_t hoverCell_ = 0;
  int16_t hoverHeader_ = 0;
  bool sizing_ = false;
  HoverTracker hover_;
  std::shared_ptr<Timer> repeat_;
  std::shared_ptr<veltPUMenu> menu_;
  std::vector<Connection> connections_;
};

}  // namespace velt
