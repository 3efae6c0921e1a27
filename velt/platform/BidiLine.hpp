#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

struct UBiDi;

namespace velt {

// A stretch of a line in one direction: code points [start, start + length)
// in logical order.
struct BidiRun {
  int32_t start = 0;
  int32_t length = 0;
  bool rightToLeft = false;
};

// Reorders one line for display with ICU's bidirectional algorithm. The
// paragraph direction comes from the line's first strong character, or is
// right-to-left when asked for.
class BidiLine {
 public:
  BidiLine();
  ~BidiLine();
  BidiLine(const BidiLine&) = delete;
  BidiLine& operator=(const BidiLine&) = delete;

  // The line's runs in visual order, left to right. Valid until the next call.
  const std::vector<BidiRun>& Runs(std::span<const char32_t> line, bool rightToLeft);

 private:
  bool reorder(std::span<const char32_t> line, bool rightToLeft);

  UBiDi* bidi_;
  std::u16string utf16_;
  std::vector<int32_t> codePointAt_;  // UTF-16 index to code point index
  std::vector<BidiRun> runs_;
};

}  // namespace velt
