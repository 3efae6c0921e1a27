#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "velt/platform/Variant.hpp"

namespace velt {

class ControlClass;
class Font;
class UserControl;

namespace tool {

// A property given as text, "Name=Value", by `--prop` or a script's `prop`.
// The value reads as an integer (decimal, or hexadecimal after "&H" or "0x",
// up to eight digits, kept as the 32-bit pattern so "&H8000000F" is a system
// colour) held as a Long, as True or False (any letter case) held as a
// Boolean, and as text otherwise. A Font property takes text of the form
// "Name,Size[,bold][,italic][,underline][,strikethrough]"; an object property
// (an image list) cannot be given as text.
class PropertyArgument {
 public:
  // Error 5 when there is no "=" or no name before it.
  static PropertyArgument Parse(std::string_view text);
  // Error 6 for a decimal integer outside the 32-bit range.
  static Variant ParseValue(std::string_view text);
  // A decimal, &H or 0x integer; nothing for other text or a value beyond 64 bits.
  static std::optional<int64_t> ParseInteger(std::string_view text);
  // Error 380 naming what is wrong.
  static std::shared_ptr<velt::Font> ParseFont(std::string_view text);

  const std::string& Name() const { return name_; }
  const std::string& Text() const { return text_; }  // the value as written
  const Variant& Value() const { return value_; }

  // The value as the class's property takes it. Errors name the property.
  Variant ValueFor(const ControlClass& controlClass) const;
  // Sets the property through the control's own setter.
  void ApplyTo(const ControlClass& controlClass, UserControl& control) const;

 private:
  PropertyArgument(std::string name, std::string text, Variant value);

  std::string name_;
  std::string text_;
  Variant value_;
};

}  // namespace tool
}  // namespace velt
