#include "velt/platform/Utf8.hpp"

#include <cstdint>

namespace velt {

namespace {

struct Shape {
  size_t length;
  uint8_t secondLow;
  uint8_t secondHigh;
};

// The sequence a lead byte starts and the range its second byte must fall in;
// the narrowed ranges are what rule out overlong forms, surrogates and values
// above U+10FFFF. Length 0: the byte starts no sequence.
Shape shapeOf(uint8_t lead) {
  if (lead >= 0xC2 && lead <= 0xDF) return {2, 0x80, 0xBF};
  if (lead == 0xE0) return {3, 0xA0, 0xBF};
  if (lead == 0xED) return {3, 0x80, 0x9F};
  if (lead >= 0xE1 && lead <= 0xEF) return {3, 0x80, 0xBF};
  if (lead == 0xF0) return {4, 0x90, 0xBF};
  if (lead == 0xF4) return {4, 0x80, 0x8F};
  if (lead >= 0xF1 && lead <= 0xF3) return {4, 0x80, 0xBF};
  return {0, 0, 0};
}

}  // namespace

Utf8::Decoded Utf8::DecodeAt(std::string_view text, size_t at) {
  const auto lead = static_cast<uint8_t>(text[at]);
  if (lead < 0x80) return {lead, 1, true};
  const Shape shape = shapeOf(lead);
  if (shape.length == 0) return {kReplacement, 1, false};
  char32_t codePoint = lead & (0x7Fu >> shape.length);
  uint8_t low = shape.secondLow;
  uint8_t high = shape.secondHigh;
  for (size_t i = 1; i < shape.length; ++i) {
    if (at + i >= text.size()) return {kReplacement, i, false};
    const auto next = static_cast<uint8_t>(text[at + i]);
    if (next < low || next > high) return {kReplacement, i, false};
    codePoint = (codePoint << 6) | (next & 0x3Fu);
    low = 0x80;
    high = 0xBF;
  }
  return {codePoint, shape.length, true};
}

bool Utf8::IsValid(std::string_view text) {
  for (size_t at = 0; at < text.size();) {
    const Decoded decoded = DecodeAt(text, at);
    if (!decoded.valid) return false;
    at += decoded.length;
  }
  return true;
}

void Utf8::Append(std::string& out, char32_t codePoint) {
  if (codePoint < 0x80) {
    out += static_cast<char>(codePoint);
  } else if (codePoint < 0x800) {
    out += static_cast<char>(0xC0 | (codePoint >> 6));
    out += static_cast<char>(0x80 | (codePoint & 0x3F));
  } else if (codePoint < 0x10000) {
    out += static_cast<char>(0xE0 | (codePoint >> 12));
    out += static_cast<char>(0x80 | ((codePoint >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (codePoint & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (codePoint >> 18));
    out += static_cast<char>(0x80 | ((codePoint >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((codePoint >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (codePoint & 0x3F));
  }
}

}  // namespace velt
