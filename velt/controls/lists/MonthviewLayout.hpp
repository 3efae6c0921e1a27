#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "velt/platform/Geometry.hpp"

namespace velt {

class Canvas;

// The month view's geometry and the day each grid cell shows: a header of
// five elements (the month name between its arrows, the year arrows stacked
// to its right), then a row of weekday names, then 6 rows of 7 cells, weeks
// starting on Monday. Everything is measured with the surface's font; the
// month view paints and hit-tests from this one object.
class MonthviewLayout {
 public:
  static constexpr int32_t kCells = 42;
  static constexpr int32_t kColumns = 7;
  static constexpr int32_t kHeaderElements = 5;
  static constexpr int32_t kMonths = 12;

  // Header elements, numbered as hoverHeader counts them.
  enum HeaderElement : int16_t {
    heNone = 0,
    heMonthName = 1,
    heNextMonth = 2,
    hePreviousMonth = 3,
    heNextYear = 4,
    hePreviousYear = 5,
  };

  struct Box {
    int32_t Top = 0;
    int32_t Left = 0;
    int32_t Height = 0;
    int32_t Width = 0;
    // Strictly inside on all four sides: a point on an edge is in neither box.
    bool Holds(float x, float y) const;
  };
  struct Cell : Box {
    int16_t Day = 0;  // 0: an empty cell
  };

  // margin, headerHeight and the 42 cells from the surface's font.
  void LayOutGrid(const Canvas& surface);
  // The five header elements: the month-name element as wide as the widest
  // "month year" label plus 32, centred on the surface's width.
  void LayOutHeader(const Canvas& surface, const std::array<std::string, kMonths>& monthNames,
                    int16_t year);
  // The day numbers of the month's cells (month 1 to 12); cells before the
  // first and after the last stay 0.
  void FillDays(int16_t year, int16_t month);

  // The control's own size in pixels: half a margin right of cell 7 and below
  // cell 42.
  SizeL OwnSize() const;

  // 1-based cell under the point that shows a day, 0 for none.
  int16_t DayCellAt(float x, float y) const;
  // The header element under the point, heNone for none.
  int16_t HeaderAt(float x, float y) const;

  const Cell& CellAt(int32_t position) const { return cells_.at(position - 1); }
  const Box& Header(int32_t element) const { return header_.at(element - 1); }
  int32_t Margin() const { return margin_; }
  int32_t HeaderHeight() const { return headerHeight_; }

 private:
  std::array<Cell, kCells> cells_{};
  std::array<Box, kHeaderElements> header_{};
  int32_t margin_ = 0;
  int32_t headerHeight_ = 0;
};

}  // namespace velt
