#include "velt/platform/Clipboard.hpp"

#include <cstddef>
#include <cstdint>

#include "velt/platform/Error.hpp"

namespace velt {

namespace {

// Length of the well-formed sequence starting at text[at], or 0 when it is
// not: overlong forms, surrogates and code points past U+10FFFF are refused.
size_t sequenceLength(const std::string& text, size_t at) {
  const auto byte = [&text](size_t i) { return static_cast<uint8_t>(text[i]); };
  const uint8_t lead = byte(at);
  if (lead < 0x80) return 1;
  size_t length = 0;
  uint32_t min = 0;
  uint32_t code = 0;
  if ((lead & 0xE0) == 0xC0) {
    length = 2, min = 0x80, code = lead & 0x1F;
  } else if ((lead & 0xF0) == 0xE0) {
    length = 3, min = 0x800, code = lead & 0x0F;
  } else if ((lead & 0xF8) == 0xF0) {
    length = 4, min = 0x10000, code = lead & 0x07;
  } else {
    return 0;
  }
  if (at + length > text.size()) return 0;
  for (size_t i = 1; i < length; ++i) {
    if ((byte(at + i) & 0xC0) != 0x80) return 0;
    code = (code << 6) | (byte(at + i) & 0x3F);
  }
  if (code < min || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) return 0;
  return length;
}

}  // namespace

Clipboard::~Clipboard() = default;

void Clipboard::SetText(const std::string& text) {
  CheckUtf8("Clipboard.SetText", text);
  setText(text);
}

void Clipboard::CheckUtf8(const char* where, const std::string& text) {
  // Desktop clipboards carry text as C strings: a NUL would cut it short.
  if (const size_t nul = text.find('\0'); nul != std::string::npos)
    throw Error(errInvalidProcedureCall, std::string(where) +
                                             ": the text holds a NUL character (byte " +
                                             std::to_string(nul + 1) + ")");
  for (size_t at = 0; at < text.size();) {
    const size_t length = sequenceLength(text, at);
    if (length == 0)
      throw Error(errInvalidProcedureCall, std::string(where) +
                                               ": the text is not valid UTF-8 (byte " +
                                               std::to_string(at + 1) + ")");
    at += length;
  }
}

}  // namespace velt
