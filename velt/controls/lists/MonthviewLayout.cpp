#include "velt/controls/lists/MonthviewLayout.hpp"

#include <algorithm>

#include "velt/platform/CalendarDate.hpp"
#include "velt/platform/Canvas.hpp"
#include "velt/platform/Rounding.hpp"

namespace velt {

namespace {

// Arrow elements are this wide; the month name is this much wider than its label.
constexpr int32_t kArrowWidth = 16;
constexpr int32_t kLabelPadding = 32;
constexpr int32_t kNameHeightPadding = 6;
// Gaps between cells.
constexpr int32_t kColumnGap = 3;
constexpr int32_t kRowGap = 1;

int32_t rounded(double value) {
  return static_cast<int32_t>(RoundHalfEven(value));
}

}  // namespace

bool MonthviewLayout::Box::Holds(float x, float y) const {
  return Left < x && x < Left + Width && Top < y && y < Top + Height;
}

void MonthviewLayout::LayOutGrid(const Canvas& surface) {
  const int32_t lineHeight = surface.TextHeight("I");
  margin_ = surface.TextWidth("WWO");
  headerHeight_ = 2 * lineHeight;
  const int32_t cellWidth = surface.TextWidth("WW");
  int32_t x = margin_;
  int32_t y = margin_ + headerHeight_;
  for (int32_t k = 0; k < kCells; ++k) {
    Cell& cell = cells_[k];
    cell.Top = y;
    cell.Left = x;
    cell.Height = lineHeight;
    cell.Width = cellWidth;
    x += cellWidth + kColumnGap;
    if ((k + 1) % kColumns == 0) {
      x = margin_;
      y += lineHeight + kRowGap;
    }
  }
}

void MonthviewLayout::LayOutHeader(const Canvas& surface,
                                   const std::array<std::string, kMonths>& monthNames,
                                   int16_t year) {
  const std::string yearText = " " + std::to_string(year);
  int32_t widest = 0;
  for (const std::string& name : monthNames)
    widest = std::max(widest, surface.TextWidth(name + yearText));
  Box& name = header_[heMonthName - 1];
  name.Height = rounded(surface.TextHeight("I") + kNameHeightPadding);
  name.Width = widest + kLabelPadding;
  name.Top = rounded(headerHeight_ / 2.0 - name.Height / 2.0);
  name.Left = rounded(surface.ScaleWidth() / 2.0 - name.Width / 2.0);
  Box& nextMonth = header_[heNextMonth - 1];
  nextMonth = Box{name.Top, name.Left - kArrowWidth, name.Height, kArrowWidth};
  Box& previousMonth = header_[hePreviousMonth - 1];
  previousMonth = Box{name.Top, nextMonth.Left - kArrowWidth, name.Height, kArrowWidth};
  Box& nextYear = header_[heNextYear - 1];
  nextYear = Box{name.Top, name.Left + name.Width, name.Height / 2, kArrowWidth};
  header_[hePreviousYear - 1] =
      Box{nextYear.Top + nextYear.Height - 1, nextYear.Left, nextYear.Height, kArrowWidth};
}

void MonthviewLayout::FillDays(int16_t year, int16_t month) {
  const int32_t days = CalendarDate::DaysInMonth(year, month);
  const int32_t first = CalendarDate::Weekday(year, month, 1);
  for (int32_t k = 1; k <= kCells; ++k)
    cells_[k - 1].Day =
        static_cast<int16_t>(k >= first && k <= first + days - 1 ? k - first + 1 : 0);
}

SizeL MonthviewLayout::OwnSize() const {
  const Cell& lastColumn = cells_[kColumns - 1];
  const Cell& last = cells_[kCells - 1];
  return SizeL{margin_ / 2 + lastColumn.Left + lastColumn.Width,
               margin_ / 2 + last.Top + last.Height};
}

int16_t MonthviewLayout::DayCellAt(float x, float y) const {
  for (int32_t k = 0; k < kCells; ++k)
    if (cells_[k].Day != 0 && cells_[k].Holds(x, y)) return static_cast<int16_t>(k + 1);
  return 0;
}

int16_t MonthviewLayout::HeaderAt(float x, float y) const {
  for (int32_t e = 0; e < kHeaderElements; ++e)
    if (header_[e].Holds(x, y)) return static_cast<int16_t>(e + 1);
  return heNone;
}

}  // namespace velt
