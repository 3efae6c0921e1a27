#include "velt/platform/CalendarDate.hpp"

#include <charconv>
#include <ctime>
#include <string>

#include "velt/platform/Error.hpp"

namespace velt {

namespace {

// A whole number of one to `maxDigits` digits, with an optional leading "-"
// where `signedAllowed`, filling the text.
template <typename T>
bool wholeNumber(std::string_view text, size_t maxDigits, bool signedAllowed, T& value) {
  const bool negative = text.starts_with('-');
  if (negative && !signedAllowed) return false;
  const size_t digits = text.size() - (negative ? 1 : 0);
  if (digits == 0 || digits > maxDigits) return false;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc{} && end == text.data() + text.size();
}

// Days from 1970-01-01 to the date (the civil-from-days inverse), in 64 bits
// so no year of 32 bits overflows.
int64_t daysFromEpoch(int64_t year, int64_t month, int64_t day) {
  year -= month <= 2 ? 1 : 0;
  const int64_t era = (year >= 0 ? year : year - 399) / 400;
  const int64_t yearOfEra = year - era * 400;
  const int64_t dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
  const int64_t dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
  return era * 146097 + dayOfEra - 719468;
}

}  // namespace

CalendarDate CalendarDate::LocalToday() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  if (!localtime_r(&now, &local)) gmtime_r(&now, &local);
  return CalendarDate{local.tm_year + 1900, static_cast<int16_t>(local.tm_mon + 1),
                      static_cast<int16_t>(local.tm_mday)};
}

CalendarDate CalendarDate::Parse(std::string_view text) {
  CalendarDate date;
  const size_t dayDash = text.rfind('-');
  const size_t monthDash =
      dayDash == std::string_view::npos || dayDash == 0 ? dayDash : text.rfind('-', dayDash - 1);
  const bool parsed =
      monthDash != std::string_view::npos && monthDash != 0 && monthDash != dayDash &&
      wholeNumber(text.substr(0, monthDash), 9, true, date.Year) &&
      wholeNumber(text.substr(monthDash + 1, dayDash - monthDash - 1), 2, false, date.Month) &&
      wholeNumber(text.substr(dayDash + 1), 2, false, date.Day);
  if (!parsed || !date.Exists())
    throw Error(errInvalidProcedureCall,
                "\"" + std::string(text.substr(0, 40)) + "\" is not a date written YYYY-MM-DD");
  return date;
}

int16_t CalendarDate::DaysInMonth(int32_t year, int16_t month) {
  switch (month) {
    case 4:
    case 6:
    case 9:
    case 11:
      return 30;
    case 2:
      return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0) ? 29 : 28;
    default:
      return month >= 1 && month <= 12 ? 31 : 0;
  }
}

int16_t CalendarDate::Weekday(int32_t year, int16_t month, int16_t day) {
  // 1970-01-01 was a Thursday (4).
  const int64_t days = daysFromEpoch(year, month, day);
  const int64_t fromMonday = ((days + 3) % 7 + 7) % 7;
  return static_cast<int16_t>(fromMonday + 1);
}

bool CalendarDate::Exists() const {
  return Day >= 1 && Day <= DaysInMonth(Year, Month);
}

}  // namespace velt
