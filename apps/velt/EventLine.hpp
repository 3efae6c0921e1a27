#pragma once

#include <span>
#include <string>
#include <string_view>

#include "velt/platform/Variant.hpp"

namespace velt::tool {

// An event as one line of text: its name, then its arguments, each after a
// single space. Integers and colours print in decimal, Single and Double
// values in their shortest form without trailing zeros ("10", "10.5"),
// Booleans as True or False, strings in JSON double quotes; a font or an
// object prints its type name ("Font", "Object", or "Nothing" when not set)
// and an Empty argument "Empty".
class EventLine {
 public:
  static std::string Format(const std::string& name, std::span<const Variant> arguments);
  static std::string FormatValue(const Variant& value);
  // JSON string syntax: quotes, backslashes and control characters escaped,
  // anything else as it is (bytes that are not UTF-8 become U+FFFD).
  static std::string Quote(std::string_view text);
};

}  // namespace velt::tool
