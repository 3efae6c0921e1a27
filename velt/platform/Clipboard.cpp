#include "velt/platform/Clipboard.hpp"

#include <cstddef>
#include <cstdint>

#include "velt/platform/Error.hpp"
#include "velt/platform/Utf8.hpp"

namespace velt {

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
    const Utf8::Decoded decoded = Utf8::DecodeAt(text, at);
    if (!decoded.valid)
      throw Error(errInvalidProcedureCall, std::string(where) +
                                               ": the text is not valid UTF-8 (byte " +
                                               std::to_string(at + 1) + ")");
    at += decoded.length;
  }
}

}  // namespace velt
