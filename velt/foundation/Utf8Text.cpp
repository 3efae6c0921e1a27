#include "velt/foundation/Utf8Text.hpp"

#include <string>

#include "velt/platform/Error.hpp"
#include "velt/platform/Utf8.hpp"

namespace velt {

namespace {

// A byte that starts no well-formed sequence counts as one character.
struct Decoded {
  char32_t codePoint;
  size_t length;
  bool valid;
};

Decoded decodeAt(std::string_view text, size_t pos) {
  const Utf8::Decoded decoded = Utf8::DecodeAt(text, pos);
  return {decoded.codePoint, decoded.valid ? decoded.length : 1, decoded.valid};
}

size_t charLength(std::string_view text, size_t pos) {
  return decodeAt(text, pos).length;
}

// The byte offset reached after skipping count characters from pos (the end of
// the text at most).
size_t skipChars(std::string_view text, size_t pos, int64_t count) {
  while (count > 0 && pos < text.size()) {
    pos += charLength(text, pos);
    --count;
  }
  return pos;
}

void requireNotNegative(const char* routine, const char* what, int32_t value) {
  if (value < 0) {
    throw Error(errInvalidProcedureCall,
                std::string(routine) + ": " + what + " " + std::to_string(value) + " is negative");
  }
}

void requireStart(const char* routine, int32_t start) {
  if (start < 1) {
    throw Error(errInvalidProcedureCall,
                std::string(routine) + ": start " + std::to_string(start) + " is below 1");
  }
}

// Latin Extended-A pairs its letters as (upper, lower) neighbours; in two runs the
// upper case letter has the odd code.
bool oddIsUpperInLatinExtendedA(char32_t c) {
  return (c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E);
}

bool pairedInLatinExtendedA(char32_t c) {
  return c >= 0x100 && c <= 0x17E && c != 0x130 && c != 0x131 && c != 0x138 && c != 0x149 &&
         c != 0x178;
}

char32_t upperOf(char32_t c) {
  if (c >= 'a' && c <= 'z') return c - 32;
  if (c >= 0xE0 && c <= 0xFE && c != 0xF7) return c - 32;
  if (c == 0xFF) return 0x178;
  if (pairedInLatinExtendedA(c)) {
    const bool isLower = oddIsUpperInLatinExtendedA(c) ? (c % 2 == 0) : (c % 2 == 1);
    return isLower ? c - 1 : c;
  }
  if (c == 0x3C2) return 0x3A3;  // final sigma
  if (c >= 0x3B1 && c <= 0x3C9) return c - 32;
  if (c >= 0x430 && c <= 0x44F) return c - 32;
  if (c >= 0x450 && c <= 0x45F) return c - 80;
  return c;
}

char32_t lowerOf(char32_t c) {
  if (c >= 'A' && c <= 'Z') return c + 32;
  if (c >= 0xC0 && c <= 0xDE && c != 0xD7) return c + 32;
  if (c == 0x178) return 0xFF;
  if (pairedInLatinExtendedA(c)) {
    const bool isUpper = oddIsUpperInLatinExtendedA(c) ? (c % 2 == 1) : (c % 2 == 0);
    return isUpper ? c + 1 : c;
  }
  if (c >= 0x391 && c <= 0x3A9 && c != 0x3A2) return c + 32;
  if (c >= 0x410 && c <= 0x42F) return c + 32;
  if (c >= 0x400 && c <= 0x40F) return c + 80;
  return c;
}

template <typename Map>
std::string mapCase(std::string_view text, Map map) {
  std::string out;
  out.reserve(text.size());
  size_t pos = 0;
  while (pos < text.size()) {
    const Decoded decoded = decodeAt(text, pos);
    if (!decoded.valid) {
      out += text[pos];
    } else {
      Utf8::Append(out, map(decoded.codePoint));
    }
    pos += decoded.length;
  }
  return out;
}

// Whether the match of find at pos ends on a character boundary of text, so it
// does not take only the first bytes of a longer character.
bool endsOnBoundary(std::string_view text, size_t pos, size_t matchLength) {
  const size_t end = pos + matchLength;
  while (pos < end)
    pos += charLength(text, pos);
  return pos == end;
}

}  // namespace

int32_t Len(std::string_view text) {
  int32_t count = 0;
  for (size_t pos = 0; pos < text.size(); pos += charLength(text, pos))
    ++count;
  return count;
}

std::string Left(std::string_view text, int32_t length) {
  requireNotNegative("Left", "length", length);
  return std::string(text.substr(0, skipChars(text, 0, length)));
}

std::string Right(std::string_view text, int32_t length) {
  requireNotNegative("Right", "length", length);
  const int32_t skipped = Len(text) - length;
  return std::string(text.substr(skipChars(text, 0, skipped)));
}

std::string Mid(std::string_view text, int32_t start) {
  requireStart("Mid", start);
  return std::string(text.substr(skipChars(text, 0, int64_t{start} - 1)));
}

std::string Mid(std::string_view text, int32_t start, int32_t length) {
  requireStart("Mid", start);
  requireNotNegative("Mid", "length", length);
  const size_t begin = skipChars(text, 0, int64_t{start} - 1);
  const size_t end = skipChars(text, begin, length);
  return std::string(text.substr(begin, end - begin));
}

std::string LTrim(std::string_view text) {
  const size_t first = text.find_first_not_of(' ');
  return first == std::string_view::npos ? std::string() : std::string(text.substr(first));
}

std::string RTrim(std::string_view text) {
  const size_t last = text.find_last_not_of(' ');
  return last == std::string_view::npos ? std::string() : std::string(text.substr(0, last + 1));
}

std::string Trim(std::string_view text) {
  const size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return std::string();
  const size_t last = text.find_last_not_of(' ');
  return std::string(text.substr(first, last - first + 1));
}

int32_t InStr(std::string_view text, std::string_view find) {
  return InStr(1, text, find);
}

int32_t InStr(int32_t start, std::string_view text, std::string_view find) {
  requireStart("InStr", start);
  if (text.empty()) return 0;
  if (find.empty()) return start <= Len(text) + 1 ? start : 0;
  size_t pos = skipChars(text, 0, int64_t{start} - 1);
  for (int32_t position = start; pos < text.size(); ++position) {
    if (text.substr(pos).starts_with(find) && endsOnBoundary(text, pos, find.size())) {
      return position;
    }
    pos += charLength(text, pos);
  }
  return 0;
}

std::string UCase(std::string_view text) {
  return mapCase(text, upperOf);
}

std::string LCase(std::string_view text) {
  return mapCase(text, lowerOf);
}

}  // namespace velt
