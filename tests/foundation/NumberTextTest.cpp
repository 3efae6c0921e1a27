#include "velt/foundation/NumberText.hpp"

#include <gtest/gtest.h>

#include <cstdio>
#include <limits>
#include <tuple>

#include "support/ExpectError.hpp"

namespace velt {
namespace {

constexpr int32_t kMax = std::numeric_limits<int32_t>::max();
constexpr int32_t kMin = std::numeric_limits<int32_t>::min();

// Truncation toward zero (-7 * 33% is -2, not -3), the order of the floating
// point steps (7.5 * 16.4 is 122.99999999999999, not the 123 that Value *
// Percent / 100 gives), and 0 for a result beyond 32 bits.
TEST(PercentOf, TruncatesTowardZeroInItsOwnStepOrderAndGivesZeroBeyond32Bits) {
  const std::tuple<int32_t, int16_t, int32_t> cases[] = {
      {200, 50, 100},    {1000, 25, 250}, {7, 33, 2},        {-7, 33, -2},   {-200, 50, -100},
      {200, -50, -100},  {0, 99, 0},      {99, 0, 0},        {9, 10, 0},     {75, 164, 122},
      {92, 125, 114},    {100, 164, 164}, {kMax, 100, kMax}, {kMax, 101, 0}, {kMax, 32767, 0},
      {kMin, 100, kMin}, {kMin, 101, 0},  {kMin, -32768, 0}};
  for (const auto& [value, percent, expected] : cases)
    EXPECT_EQ(PercentOf(value, percent), expected) << value << " " << percent;
}

TEST(HexDigits, SixUpperCaseDigitsWiderValuesWholeNegativesRejected) {
  char expected[16];
  for (int32_t v = 0; v <= 0xFFFFFF; v += 0x1F3) {
    std::snprintf(expected, sizeof expected, "%06X", static_cast<unsigned>(v));
    ASSERT_EQ(HexDigits(v), expected);
  }
  EXPECT_EQ(HexDigits(0xFFFFFF), "FFFFFF");
  EXPECT_EQ(HexDigits(0x1000000), "1000000");
  EXPECT_EQ(HexDigits(kMax), "7FFFFFFF");
  test::errorOf(errInvalidProcedureCall, [] { HexDigits(-1); });
}

TEST(PadZeros, PadsTrimmedTextOnTheLeftCountingCharacters) {
  const std::tuple<const char*, int16_t, const char*> cases[] = {
      {"7", 2, "07"},        {"12", 2, "12"},
      {"123", 2, "123"},     {" 7 ", 2, "07"},
      {"  123  ", 2, "123"}, {"", 3, "000"},
      {"   ", 1, "0"},       {"5", 0, "5"},
      {"5", -4, "5"},        {"\xC3\xA4", 3, "00\xC3\xA4"}};
  for (const auto& [text, length, expected] : cases)
    EXPECT_EQ(PadZeros(text, length), expected) << "\"" << text << "\" " << length;
}

}  // namespace
}  // namespace velt
