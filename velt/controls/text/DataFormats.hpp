#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace velt {

// The text box's input filters: which typed characters it admits and in which
// letter case. Key codes are KeyPress codes (UTF-16 units; Latin-1 characters
// keep their values, so "ä" is 228). The character classes are Latin-1: the
// letters A-Z and a-z, the digits, the six signs . , - / * + and the German
// letters ü Ü ö Ö ä Ä ß; Backspace (8) passes every filter that has classes.
// Characters outside Latin-1 pass only the filters that admit every key.
enum DataFormats : int32_t {
  df_AllChars = 0,
  df_AlphaOnly = 1,
  df_NumOnly = 2,
  df_NumAndChars = 3,
  df_NumAndAlpha = 4,
  df_NumAndAlphaChars = 5,
  df_UCase = 6,
  df_UCaseAlphaOnly = 7,
  df_UCaseNumAndAlpha = 8,
  df_UCaseNumAndAlphaChars = 9,
  df_LCase = 10,
  df_LCaseAlphaOnly = 11,
  df_LCaseNumAndAlpha = 12,
  df_LCaseNumAndAlphaChars = 13,
  df_AlphaAndChars = 14,
  df_UCaseAlphaAndChars = 15,
  df_LCaseAlphaAndChars = 16,
};

// The code a typed key becomes under the filter: 0 when refused, else the
// code in the filter's letter case (the locale's mapping of the one
// character; a mapping to several characters, such as "ß" to "SS", or out of
// Latin-1 for a Latin-1 character, keeps the character). A format outside
// 0..16 refuses everything.
int16_t FilterKey(int16_t keyAscii, int32_t format);

// Pasted text under the filter: every admitted character in its filtered
// form, every refused one a space. Characters beyond U+FFFF are whole
// characters here and pass only where every key does.
std::string FilterPaste(std::string_view text, int32_t format);

}  // namespace velt
