#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace velt {

// ((Value / 10) * (Percent / 10) * 100) / 100 in double precision, in that
// order, truncated toward zero; 0 when the result does not fit 32 bits.
int32_t PercentOf(int32_t Value, int16_t Percent);

// The value's hexadecimal digits (upper case), padded with zeros to six
// characters; a value above 0xFFFFFF keeps all its digits. A negative value is
// error 5.
std::string HexDigits(int32_t Value);

// Text without surrounding spaces, with "0" put in front until it is Length
// characters long. Longer text is returned trimmed, never cut.
std::string PadZeros(std::string_view Text, int16_t Length);

}  // namespace velt
