#include "velt/foundation/NumberText.hpp"

#include <cmath>
#include <limits>

#include "velt/foundation/Utf8Text.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/Rounding.hpp"

namespace velt {

namespace {

constexpr char kHexDigits[] = "0123456789ABCDEF";
constexpr int16_t kColorDigits = 6;

}  // namespace

int32_t PercentOf(int32_t Value, int16_t Percent) {
  const double result = ((Value / 10.0) * (Percent / 10.0) * 100.0) / 100.0;
  const double truncated = Fix(result);
  if (!std::isfinite(truncated) || truncated < std::numeric_limits<int32_t>::min() ||
      truncated > std::numeric_limits<int32_t>::max()) {
    return 0;
  }
  return static_cast<int32_t>(truncated);
}

std::string HexDigits(int32_t Value) {
  if (Value < 0) {
    throw Error(errInvalidProcedureCall,
                "HexDigits: value " + std::to_string(Value) + " is negative");
  }
  std::string digits;
  int32_t rest = Value;
  int32_t quotient = 0;
  do {
    quotient = rest / 16;
    digits.insert(digits.begin(), kHexDigits[rest - 16 * quotient]);
    rest = quotient;
  } while (quotient >= 16);
  digits.insert(digits.begin(), kHexDigits[quotient]);
  return PadZeros(digits, kColorDigits);
}

std::string PadZeros(std::string_view Text, int16_t Length) {
  std::string padded = Trim(Text);
  const int32_t missing = Length - Len(padded);
  if (missing > 0) padded.insert(0, static_cast<size_t>(missing), '0');
  return padded;
}

}  // namespace velt
