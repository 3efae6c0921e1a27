#include "apps/velt/PropertyArgument.hpp"

#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "velt/controls/ControlClass.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/Font.hpp"
#include "velt/platform/JsonText.hpp"

namespace velt::tool {

namespace {

constexpr int64_t kLimit = std::numeric_limits<int64_t>::max() / 16;

char asciiLower(char c) {
  return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i)
    if (asciiLower(a[i]) != asciiLower(b[i])) return false;
  return true;
}

int digitValue(char c, int base) {
  int value = -1;
  if (c >= '0' && c <= '9') value = c - '0';
  if (c >= 'a' && c <= 'f') value = c - 'a' + 10;
  if (c >= 'A' && c <= 'F') value = c - 'A' + 10;
  return value < base ? value : -1;
}

// The digits as a number, held at kLimit once it grows past it (still an
// integer, only far out of any range asked for); nothing for other text.
std::optional<int64_t> digitsValue(std::string_view digits, int base) {
  if (digits.empty()) return std::nullopt;
  int64_t value = 0;
  for (char c : digits) {
    const int digit = digitValue(c, base);
    if (digit < 0) return std::nullopt;
    value = value >= kLimit ? kLimit : value * base + digit;
  }
  return value;
}

bool hasHexPrefix(std::string_view text) {
  return text.size() > 2 && ((text[0] == '&' && asciiLower(text[1]) == 'h') ||
                             (text[0] == '0' && asciiLower(text[1]) == 'x'));
}

std::string_view trimSpaces(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t'))
    text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t'))
    text.remove_suffix(1);
  return text;
}

std::vector<std::string_view> splitAtCommas(std::string_view text) {
  std::vector<std::string_view> parts;
  for (;;) {
    const size_t comma = text.find(',');
    parts.push_back(trimSpaces(text.substr(0, comma)));
    if (comma == std::string_view::npos) return parts;
    text.remove_prefix(comma + 1);
  }
}

[[noreturn]] void badFont(std::string_view text, const std::string& problem) {
  throw Error(errInvalidPropertyValue, "font " + QuotedPrefix(text) + ": " + problem +
                                           " (expected Name,Size[,bold][,italic]" +
                                           "[,underline][,strikethrough])");
}

float fontSize(std::string_view text, std::string_view sizeText) {
  try {
    return Variant(std::string(sizeText)).ToSingle();
  } catch (const Error&) {
    badFont(text, "size " + QuotedPrefix(sizeText) + " is not a number");
  }
}

void applyFontStyle(Font& font, std::string_view text, std::string_view style) {
  if (equalsIgnoringCase(style, "bold"))
    font.Bold(true);
  else if (equalsIgnoringCase(style, "italic"))
    font.Italic(true);
  else if (equalsIgnoringCase(style, "underline"))
    font.Underline(true);
  else if (equalsIgnoringCase(style, "strikethrough"))
    font.Strikethrough(true);
  else
    badFont(text, "unknown style " + QuotedPrefix(style));
}

[[noreturn]] void rethrowNaming(const ControlClass& controlClass, const std::string& property) {
  try {
    throw;
  } catch (const Error& error) {
    throw Error(error.Number(), controlClass.Name() + "." + property + ": " + error.Description());
  }
}

}  // namespace

PropertyArgument::PropertyArgument(std::string name, std::string text, Variant value)
    : name_(std::move(name)), text_(std::move(text)), value_(std::move(value)) {}

PropertyArgument PropertyArgument::Parse(std::string_view text) {
  const size_t equals = text.find('=');
  if (equals == std::string_view::npos)
    throw Error(errInvalidProcedureCall,
                "property \"" + std::string(text) + "\" has no value (expected Name=Value)");
  const std::string_view name = trimSpaces(text.substr(0, equals));
  if (name.empty())
    throw Error(errInvalidProcedureCall,
                "property \"" + std::string(text) + "\" has no name (expected Name=Value)");
  const std::string_view valueText = text.substr(equals + 1);
  try {
    return PropertyArgument(std::string(name), std::string(valueText), ParseValue(valueText));
  } catch (const Error& error) {
    throw Error(error.Number(), std::string(name) + ": " + error.Description());
  }
}

std::optional<int64_t> PropertyArgument::ParseInteger(std::string_view text) {
  if (hasHexPrefix(text)) return digitsValue(text.substr(2), 16);
  if (!text.empty() && text.front() == '-') {
    const std::optional<int64_t> magnitude = digitsValue(text.substr(1), 10);
    if (!magnitude) return std::nullopt;
    return -*magnitude;
  }
  return digitsValue(text, 10);
}

Variant PropertyArgument::ParseValue(std::string_view text) {
  if (equalsIgnoringCase(text, "True")) return Variant(true);
  if (equalsIgnoringCase(text, "False")) return Variant(false);
  const std::optional<int64_t> integer = ParseInteger(text);
  if (!integer) return Variant(std::string(text));
  if (hasHexPrefix(text)) {
    if (*integer > std::numeric_limits<uint32_t>::max())
      throw Error(errOverflow, QuotedPrefix(text) + " has more than eight hex digits");
    return Variant(static_cast<int32_t>(static_cast<uint32_t>(*integer)));
  }
  if (*integer < std::numeric_limits<int32_t>::min() ||
      *integer > std::numeric_limits<int32_t>::max())
    throw Error(errOverflow, QuotedPrefix(text) + " does not fit in a Long");
  return Variant(static_cast<int32_t>(*integer));
}

std::shared_ptr<Font> PropertyArgument::ParseFont(std::string_view text) {
  const std::vector<std::string_view> parts = splitAtCommas(text);
  if (parts[0].empty()) badFont(text, "no font name");
  if (parts.size() < 2) badFont(text, "no size");
  auto font = std::make_shared<Font>(std::string(parts[0]), Font::kDefaultSize);
  const float size = fontSize(text, parts[1]);
  try {
    font->Size(size);
  } catch (const Error& error) {
    badFont(text, error.Description());
  }
  for (size_t i = 2; i < parts.size(); ++i)
    applyFontStyle(*font, text, parts[i]);
  return font;
}

Variant PropertyArgument::ValueFor(const ControlClass& controlClass) const {
  const ControlClass::Property& property = controlClass.PropertyNamed(name_);
  switch (property.Type) {
    case VariantType::Font:
      try {
        return Variant(ParseFont(text_));
      } catch (const Error&) {
        rethrowNaming(controlClass, property.Name);
      }
    case VariantType::Object:
      throw Error(errTypeMismatch, controlClass.Name() + "." + property.Name +
                                       " holds an object, which cannot be given as text");
    default:
      return controlClass.Convert(property.Name, value_);
  }
}

void PropertyArgument::ApplyTo(const ControlClass& controlClass, UserControl& control) const {
  const Variant value = ValueFor(controlClass);
  controlClass.SetProperty(control, name_, value);
}

}  // namespace velt::tool
