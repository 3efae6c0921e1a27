#include "velt/controls/text/DataFormats.hpp"

#include <unicode/locid.h>
#include <unicode/unistr.h>

#include <array>

#include "velt/platform/Utf8.hpp"

namespace velt {

namespace {

enum Classes : uint32_t {
  kUpper = 1,    // A-Z
  kLower = 2,    // a-z
  kDigits = 4,   // 0-9
  kSigns = 8,    // . , - / * +
  kGerman = 16,  // ü Ü ö Ö ä Ä ß
  kBack = 32,    // Backspace
  kEvery = 64,   // every key, whatever it is
};
enum class Case { Keep, Upper, Lower };

struct Format {
  uint32_t admits;
  Case letterCase;
};

constexpr uint32_t kAlpha = kUpper | kLower | kGerman | kBack;
constexpr std::array<Format, 17> kFormats = {{
    {kEvery, Case::Keep},                              // df_AllChars
    {kAlpha, Case::Keep},                              // df_AlphaOnly
    {kDigits | kBack, Case::Keep},                     // df_NumOnly
    {kDigits | kSigns | kGerman | kBack, Case::Keep},  // df_NumAndChars
    {kAlpha | kDigits, Case::Keep},                    // df_NumAndAlpha
    {kAlpha | kDigits | kSigns, Case::Keep},           // df_NumAndAlphaChars
    {kEvery, Case::Upper},                             // df_UCase
    {kAlpha, Case::Upper},                             // df_UCaseAlphaOnly
    {kAlpha | kDigits, Case::Upper},                   // df_UCaseNumAndAlpha
    {kAlpha | kDigits | kSigns, Case::Upper},          // df_UCaseNumAndAlphaChars
    {kEvery, Case::Lower},                             // df_LCase
    {kAlpha, Case::Lower},                             // df_LCaseAlphaOnly
    {kAlpha | kDigits, Case::Lower},                   // df_LCaseNumAndAlpha
    {kAlpha | kDigits | kSigns, Case::Lower},          // df_LCaseNumAndAlphaChars
    {kAlpha | kSigns, Case::Keep},                     // df_AlphaAndChars
    {kAlpha | kSigns, Case::Upper},                    // df_UCaseAlphaAndChars
    {kAlpha | kSigns, Case::Lower},                    // df_LCaseAlphaAndChars
}};

uint32_t classOf(char32_t c) {
  if (c >= U'A' && c <= U'Z') return kUpper;
  if (c >= U'a' && c <= U'z') return kLower;
  if (c >= U'0' && c <= U'9') return kDigits;
  if (c == 8) return kBack;
  switch (c) {
    case U'.':
    case U',':
    case U'-':
    case U'/':
    case U'*':
    case U'+':
      return kSigns;
    case U'ü':
    case U'Ü':
    case U'ö':
    case U'Ö':
    case U'ä':
    case U'Ä':
    case U'ß':
      return kGerman;
    default:
      return 0;
  }
}

// The locale's mapping of one character, kept where it gives several
// characters or leaves Latin-1; control characters and surrogate halves stay.
char32_t changeCase(char32_t c, Case letterCase) {
  if (letterCase == Case::Keep || c < 0x20 || (c >= 0x7F && c < 0xA0) ||
      (c >= 0xD800 && c <= 0xDFFF))
    return c;
  icu::UnicodeString text(static_cast<UChar32>(c));
  if (letterCase == Case::Upper)
    text.toUpper(icu::Locale::getDefault());
  else
    text.toLower(icu::Locale::getDefault());
  if (text.countChar32() != 1) return c;
  const auto mapped = static_cast<char32_t>(text.char32At(0));
  if ((c <= 0xFF && mapped > 0xFF) || (c <= 0xFFFF && mapped > 0xFFFF)) return c;
  return mapped;
}

// 0 when refused.
char32_t filtered(char32_t c, int32_t format) {
  if (format < 0 || format >= static_cast<int32_t>(kFormats.size())) return 0;
  const Format& rule = kFormats[static_cast<size_t>(format)];
  if (!(rule.admits & kEvery) && (c > 0xFF || !(rule.admits & classOf(c)))) return 0;
  return changeCase(c, rule.letterCase);
}

}  // namespace

int16_t FilterKey(int16_t keyAscii, int32_t format) {
  const auto unit = static_cast<char16_t>(keyAscii);
  return static_cast<int16_t>(static_cast<char16_t>(filtered(unit, format)));
}

std::string FilterPaste(std::string_view text, int32_t format) {
  std::string out;
  out.reserve(text.size());
  for (size_t at = 0; at < text.size();) {
    const Utf8::Decoded decoded = Utf8::DecodeAt(text, at);
    at += decoded.length;
    const char32_t c = filtered(decoded.codePoint, format);
    Utf8::Append(out, c == 0 ? U' ' : c);
  }
  return out;
}

}  // namespace velt
