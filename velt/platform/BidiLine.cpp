#include "velt/platform/BidiLine.hpp"

#include <unicode/ubidi.h>

namespace velt {

namespace {

// Below the first right-to-left script and the directional controls nothing
// can turn a line around, so most lines skip the algorithm.
bool mayHaveRightToLeft(std::span<const char32_t> line) {
  for (char32_t c : line)
    if (c >= 0x590) return true;
  return false;
}

}  // namespace

BidiLine::BidiLine() : bidi_(ubidi_open()) {}

BidiLine::~BidiLine() {
  if (bidi_) ubidi_close(bidi_);
}

const std::vector<BidiRun>& BidiLine::Runs(std::span<const char32_t> line, bool rightToLeft) {
  runs_.clear();
  if (line.empty()) return runs_;
  if ((!rightToLeft && !mayHaveRightToLeft(line)) || !reorder(line, rightToLeft)) {
    runs_.push_back({0, static_cast<int32_t>(line.size()), false});
  }
  return runs_;
}

bool BidiLine::reorder(std::span<const char32_t> line, bool rightToLeft) {
  if (!bidi_) return false;
  utf16_.clear();
  codePointAt_.clear();
  for (size_t i = 0; i < line.size(); ++i) {
    const char32_t c = line[i];
    if (c >= 0x10000) {
      utf16_.push_back(static_cast<char16_t>(0xD7C0 + (c >> 10)));
      utf16_.push_back(static_cast<char16_t>(0xDC00 | (c & 0x3FF)));
      codePointAt_.push_back(static_cast<int32_t>(i));
    } else {
      utf16_.push_back(static_cast<char16_t>(c));
    }
    codePointAt_.push_back(static_cast<int32_t>(i));
  }
  codePointAt_.push_back(static_cast<int32_t>(line.size()));
  UErrorCode status = U_ZERO_ERROR;
  ubidi_setPara(bidi_, reinterpret_cast<const UChar*>(utf16_.data()),
                static_cast<int32_t>(utf16_.size()), rightToLeft ? UBIDI_RTL : UBIDI_DEFAULT_LTR,
                nullptr, &status);
  const int32_t count = ubidi_countRuns(bidi_, &status);
  if (U_FAILURE(status)) return false;
  for (int32_t i = 0; i < count; ++i) {
    int32_t start = 0;
    int32_t length = 0;
    const UBiDiDirection direction = ubidi_getVisualRun(bidi_, i, &start, &length);
    const int32_t first = codePointAt_[static_cast<size_t>(start)];
    const int32_t end = codePointAt_[static_cast<size_t>(start + length)];
    runs_.push_back({first, end - first, direction == UBIDI_RTL});
  }
  return true;
}

}  // namespace velt
