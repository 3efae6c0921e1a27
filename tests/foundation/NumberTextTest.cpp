#include "velt/foundation/NumberText.hpp"

#include <gtest/gtest.h>

#include <cstdio>
#include <limits>

#include "velt/platform/Error.hpp"

namespace velt {
namespace {

TEST(PercentOf, TruncatesTowardZero) {
  EXPECT_EQ(PercentOf(200, 50), 100);
  EXPECT_EQ(PercentOf(1000, 25), 250);
  EXPECT_EQ(PercentOf(7, 33), 2);    // 2.31
  EXPECT_EQ(PercentOf(-7, 33), -2);  // -2.31, not -3
  EXPECT_EQ(PercentOf(-200, 50), -100);
  EXPECT_EQ(PercentOf(200, -50), -100);
  EXPECT_EQ(PercentOf(0, 99), 0);
  EXPECT_EQ(PercentOf(99, 0), 0);
  EXPECT_EQ(PercentOf(9, 10), 0);  // 0.9
}

TEST(PercentOf, KeepsTheOrderOfItsFloatingPointSteps) {
  // 7.5 * 16.4 is 122.99999999999999 in doubles, not 123 as Value * Percent / 100
  // would give.
  EXPECT_EQ(PercentOf(75, 164), 122);
  EXPECT_EQ(PercentOf(92, 125), 114);
  EXPECT_EQ(PercentOf(100, 164), 164);
}

TEST(PercentOf, ResultsBeyond32BitsGiveZero) {
  const int32_t max = std::numeric_limits<int32_t>::max();
  const int32_t min = std::numeric_limits<int32_t>::min();
  EXPECT_EQ(PercentOf(max, 100), max);
  EXPECT_EQ(PercentOf(max, 101), 0);
  EXPECT_EQ(PercentOf(max, 32767), 0);
  EXPECT_EQ(PercentOf(min, 100), min);
  EXPECT_EQ(PercentOf(min, 101), 0);
  EXPECT_EQ(PercentOf(min, -32768), 0);
}

TEST(HexDigits, SixUpperCaseDigitsWithLeadingZeros) {
  EXPECT_EQ(HexDigits(255), "0000FF");
  EXPECT_EQ(HexDigits(5), "000005");
  EXPECT_EQ(HexDigits(0), "000000");
  EXPECT_EQ(HexDigits(16), "000010");
  EXPECT_EQ(HexDigits(256), "000100");
  EXPECT_EQ(HexDigits(0xFFFFFF), "FFFFFF");
  EXPECT_EQ(HexDigits(0xC00000), "C00000");
  char expected[16];
  for (int32_t v = 0; v <= 0xFFFFFF; v += 0x1F3) {
    std::snprintf(expected, sizeof expected, "%06X", static_cast<unsigned>(v));
    ASSERT_EQ(HexDigits(v), expected);
  }
}

TEST(HexDigits, WiderValuesKeepAllDigitsAndNegativesAreRejected) {
  EXPECT_EQ(HexDigits(0x1000000), "1000000");
  EXPECT_EQ(HexDigits(std::numeric_limits<int32_t>::max()), "7FFFFFFF");
  try {
    HexDigits(-1);
    ADD_FAILURE() << "no error for -1";
  } catch (const Error& e) {
    EXPECT_EQ(e.Number(), errInvalidProcedureCall);
  }
}

TEST(PadZeros, PadsTrimmedTextOnTheLeft) {
  EXPECT_EQ(PadZeros("7", 2), "07");
  EXPECT_EQ(PadZeros("12", 2), "12");
  EXPECT_EQ(PadZeros("123", 2), "123");
  EXPECT_EQ(PadZeros(" 7 ", 2), "07");
  EXPECT_EQ(PadZeros("  123  ", 2), "123");
  EXPECT_EQ(PadZeros("", 3), "000");
  EXPECT_EQ(PadZeros("   ", 1), "0");
  EXPECT_EQ(PadZeros("5", 0), "5");
  EXPECT_EQ(PadZeros("5", -4), "5");
  // Length counts characters, not bytes.
  EXPECT_EQ(PadZeros("\xC3\xA4", 3), "00\xC3\xA4");
}

}  // namespace
}  // namespace velt
