#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>

namespace velt {

// Writes moments as the user writes date and time: ICU's default locale and
// time zone, short date and medium time ("15.06.21, 12:34:56" in German,
// "6/15/21, 12:34:56 PM" in American English). The locale and zone are
// taken when the object is made. Opening the formatter costs far more than
// formatting, so one object is meant for a whole job; it also remembers the
// last texts it made, because the files of one folder tend to share their
// times. Without a usable formatter it falls back to "YYYY-MM-DD HH:MM:SS"
// in local time.
class DateTimeText {
 public:
  DateTimeText();
  ~DateTimeText();
  DateTimeText(const DateTimeText&) = delete;
  DateTimeText& operator=(const DateTimeText&) = delete;

  // The text for a moment in seconds since 1970-01-01 UTC, to be shared by
  // everything made at that moment.
  const std::shared_ptr<const std::string>& SharedText(int64_t secondsSinceEpoch);

 private:
  struct Remembered {
    int64_t seconds = 0;
    std::shared_ptr<const std::string> text;  // nothing while unused
  };

  std::string format(int64_t secondsSinceEpoch) const;

  void* formatter_ = nullptr;  // UDateFormat*
  std::array<Remembered, 256> remembered_;
};

}  // namespace velt
