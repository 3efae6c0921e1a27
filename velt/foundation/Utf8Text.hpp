#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace velt {

// Character-counting text helpers on UTF-8 strings. Positions and lengths count
// characters (code points), 1-based like the classic string functions. A byte
// that does not belong to a well-formed UTF-8 sequence counts as one character
// of its own and is kept as it is.

int32_t Len(std::string_view text);

// The first / last length characters (all of them when length is larger).
// A negative length is error 5.
std::string Left(std::string_view text, int32_t length);
std::string Right(std::string_view text, int32_t length);

// The characters from position start on, to the end or at most length of them;
// empty when start is past the end. start below 1 or a negative length is
// error 5.
std::string Mid(std::string_view text, int32_t start);
std::string Mid(std::string_view text, int32_t start, int32_t length);

// Without leading / trailing / surrounding spaces (only " ", as the classic
// functions do; tabs and line breaks stay).
std::string LTrim(std::string_view text);
std::string RTrim(std::string_view text);
std::string Trim(std::string_view text);

// The position of the first occurrence of find in text at or after position
// start, or 0. An empty text gives 0; an empty find gives start while start is
// at most one past the end. start below 1 is error 5. Comparison is exact.
int32_t InStr(std::string_view text, std::string_view find);
int32_t InStr(int32_t start, std::string_view text, std::string_view find);

// Upper / lower case of the letters of Basic Latin, Latin-1, Latin Extended-A,
// the Greek and the Cyrillic alphabets; everything else is kept.
std::string UCase(std::string_view text);
std::string LCase(std::string_view text);

}  // namespace velt
