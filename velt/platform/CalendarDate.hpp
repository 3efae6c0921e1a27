#pragma once

#include <cstdint>
#include <string_view>

namespace velt {

// A day of the proleptic Gregorian calendar as a user writes it: the year
// (0 and negative years count astronomically: year 0 is 1 BC), month 1 to 12,
// day 1 to the month's last.
struct CalendarDate {
  int32_t Year = 0;
  int16_t Month = 1;
  int16_t Day = 1;

  bool operator==(const CalendarDate&) const = default;

  // Today in the machine's local time zone.
  static CalendarDate LocalToday();
  // "YYYY-MM-DD" (a year of up to nine digits, with an optional leading "-");
  // error 5 quoting the text when it is not such a date or the day does not
  // exist.
  static CalendarDate Parse(std::string_view text);

  // Days of the month (1 to 12; 0 for any other month). February has 29 in
  // years divisible by 4 but not by 100, or by 400.
  static int16_t DaysInMonth(int32_t year, int16_t month);
  // The day of the week, Monday 1 to Sunday 7; defined for every year the
  // type holds.
  static int16_t Weekday(int32_t year, int16_t month, int16_t day);

  bool Exists() const;
};

}  // namespace velt
