#include "velt/platform/DateTimeText.hpp"

#include <unicode/udat.h>
#include <unicode/ustring.h>

#include <ctime>

namespace velt {

namespace {

UDateFormat* asFormat(void* formatter) {
  return static_cast<UDateFormat*>(formatter);
}

std::string isoLocalText(int64_t seconds) {
  const auto moment = static_cast<time_t>(seconds);
  struct tm local {};
  char text[64];
  if (localtime_r(&moment, &local) == nullptr ||
      std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local) == 0)
    return std::to_string(seconds);
  return text;
}

}  // namespace

DateTimeText::DateTimeText() {
  UErrorCode status = U_ZERO_ERROR;
  UDateFormat* format =
      udat_open(UDAT_MEDIUM, UDAT_SHORT, nullptr, nullptr, -1, nullptr, -1, &status);
  if (U_FAILURE(status)) {
    udat_close(format);
    format = nullptr;
  }
  formatter_ = format;
}

DateTimeText::~DateTimeText() {
  if (formatter_ != nullptr) udat_close(asFormat(formatter_));
}

const std::shared_ptr<const std::string>& DateTimeText::SharedText(int64_t secondsSinceEpoch) {
  const auto slot = static_cast<uint64_t>(secondsSinceEpoch) % remembered_.size();
  Remembered& entry = remembered_[slot];
  if (!entry.text || entry.seconds != secondsSinceEpoch) {
    entry.text = std::make_shared<const std::string>(format(secondsSinceEpoch));
    entry.seconds = secondsSinceEpoch;
  }
  return entry.text;
}

std::string DateTimeText::format(int64_t secondsSinceEpoch) const {
  if (formatter_ == nullptr) return isoLocalText(secondsSinceEpoch);
  UChar wide[128];
  UErrorCode status = U_ZERO_ERROR;
  const auto milliseconds = static_cast<UDate>(secondsSinceEpoch) * 1000.0;
  const int32_t wideLength =
      udat_format(asFormat(formatter_), milliseconds, wide, 128, nullptr, &status);
  char text[512];
  int32_t length = 0;
  if (U_SUCCESS(status)) u_strToUTF8(text, sizeof text, &length, wide, wideLength, &status);
  if (U_FAILURE(status)) return isoLocalText(secondsSinceEpoch);
  return std::string(text, static_cast<size_t>(length));
}

}  // namespace velt
