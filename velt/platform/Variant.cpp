#include "velt/platform/Variant.hpp"

#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>

#include "velt/platform/Error.hpp"
#include "velt/platform/Rounding.hpp"

namespace velt {

namespace {

enum class ParseResult { Ok, NotANumber, Overflow };

constexpr std::string_view kBlanks = " \t\r\n";

std::string_view trimBlanks(std::string_view text) {
  const auto first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  const auto last = text.find_last_not_of(kBlanks);
  return text.substr(first, last - first + 1);
}

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

int hexDigitValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// "&H" followed by up to eight hex digits. Up to four digits are a 16-bit
// value ("&HFFFF" is -1), more a 32-bit one; a trailing "&" forces 32 bits.
ParseResult parseHex(std::string_view text, double& out) {
  std::string_view digits = text.substr(2);
  bool forceLong = false;
  if (!digits.empty() && digits.back() == '&') {
    forceLong = true;
    digits.remove_suffix(1);
  }
  if (digits.empty()) return ParseResult::NotANumber;
  uint64_t value = 0;
  size_t significant = 0;
  for (char c : digits) {
    const int digit = hexDigitValue(c);
    if (digit < 0) return ParseResult::NotANumber;
    if (significant > 0 || digit != 0) ++significant;
    if (significant > 8) return ParseResult::Overflow;
    value = value * 16 + static_cast<uint64_t>(digit);
  }
  if (digits.size() <= 4 && !forceLong) {
    out = static_cast<int16_t>(static_cast<uint16_t>(value));
  } else {
    out = static_cast<int32_t>(static_cast<uint32_t>(value));
  }
  return ParseResult::Ok;
}

// Moves i past a run of digits and returns how many there were.
size_t skipDigits(std::string_view text, size_t& i) {
  const size_t start = i;
  while (i < text.size() && isDigit(text[i]))
    ++i;
  return i - start;
}

bool skipSign(std::string_view text, size_t& i) {
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) return text[i++] == '-';
  return false;
}

// Checks the shape [sign] digits [. digits] [e [sign] digits] with at least one
// mantissa digit, and tells whether the exponent is negative.
bool isDecimalShape(std::string_view text, bool& negativeExponent) {
  size_t i = 0;
  skipSign(text, i);
  size_t mantissaDigits = skipDigits(text, i);
  if (i < text.size() && text[i] == '.') mantissaDigits += skipDigits(text, ++i);
  if (mantissaDigits == 0) return false;
  negativeExponent = false;
  if (i < text.size() && (text[i] == 'e' || text[i] == 'E')) {
    negativeExponent = skipSign(text, ++i);
    if (skipDigits(text, i) == 0) return false;
  }
  return i == text.size();
}

ParseResult parseDecimal(std::string_view text, double& out) {
  bool negativeExponent = false;
  if (!isDecimalShape(text, negativeExponent)) return ParseResult::NotANumber;
  const bool negative = text.front() == '-';
  if (text.front() == '+' || text.front() == '-') text.remove_prefix(1);
  double value = 0.0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  if (result.ec == std::errc::result_out_of_range) {
    if (!negativeExponent) return ParseResult::Overflow;
    value = 0.0;  // too small to represent: it reads as zero
  } else if (result.ec != std::errc() || result.ptr != text.data() + text.size()) {
    return ParseResult::NotANumber;
  }
  out = negative ? -value : value;
  return ParseResult::Ok;
}

ParseResult parseNumber(std::string_view text, double& out) {
  text = trimBlanks(text);
  if (text.size() >= 2 && text[0] == '&' && (text[1] == 'H' || text[1] == 'h'))
    return parseHex(text, out);
  return parseDecimal(text, out);
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    const auto lower = [](char c) { return (c >= 'A' && c <= 'Z') ? char(c - 'A' + 'a') : c; };
    if (lower(a[i]) != lower(b[i])) return false;
  }
  return true;
}

std::string quoted(const std::string& text) {
  constexpr size_t kMaxShown = 60;
  if (text.size() <= kMaxShown) return "\"" + text + "\"";
  return "\"" + text.substr(0, kMaxShown) + "...\"";
}

std::string numberText(double value) {
  if (value == std::floor(value) && std::fabs(value) < 1e15)
    return std::to_string(static_cast<int64_t>(value));
  char buffer[64];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  return std::string(buffer, result.ptr);
}

[[noreturn]] void overflow(double value, const char* target) {
  throw Error(errOverflow, "Overflow: " + numberText(value) + " does not fit in " + target);
}

double roundedInRange(double value, double low, double high, const char* target) {
  const double rounded = RoundHalfEven(value);
  if (std::isnan(rounded) || rounded < low || rounded > high) overflow(value, target);
  return rounded;
}

// Shortest text that reads back as the same value, in fixed notation for
// moderate magnitudes and as "1.5E+20" beyond them.
template <typename T>
std::string formatFloating(T value, int maxFixedExponent) {
  if (std::isnan(value)) return "NaN";
  if (std::isinf(value)) return value < 0 ? "-Infinity" : "Infinity";
  if (value == 0) return "0";
  char buffer[64];
  const auto result =
      std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::scientific);
  const std::string_view text(buffer, static_cast<size_t>(result.ptr - buffer));
  const size_t ePos = text.find('e');
  std::string sign;
  std::string digits;
  for (char c : text.substr(0, ePos)) {
    if (c == '-') sign = "-";
    if (isDigit(c)) digits += c;
  }
  int exponent = 0;
  std::string_view expText = text.substr(ePos + 1);
  if (expText.front() == '+') expText.remove_prefix(1);
  std::from_chars(expText.data(), expText.data() + expText.size(), exponent);

  if (exponent < -5 || exponent >= maxFixedExponent) {
    std::string mantissa = digits.substr(0, 1);
    if (digits.size() > 1) mantissa += "." + digits.substr(1);
    const std::string expDigits = std::to_string(std::abs(exponent));
    return sign + mantissa + "E" + (exponent < 0 ? "-" : "+") + (expDigits.size() < 2 ? "0" : "") +
           expDigits;
  }
  if (exponent < 0)
    return sign + "0." + std::string(static_cast<size_t>(-exponent - 1), '0') + digits;
  const size_t integerDigits = static_cast<size_t>(exponent) + 1;
  if (digits.size() <= integerDigits)
    return sign + digits + std::string(integerDigits - digits.size(), '0');
  return sign + digits.substr(0, integerDigits) + "." + digits.substr(integerDigits);
}

}  // namespace

Variant Variant::Color(OLE_COLOR color) {
  Variant result;
  result.value_ = ColorValue{color};
  return result;
}

const char* Variant::TypeName(VariantType type) {
  switch (type) {
    case VariantType::Empty:
      return "Empty";
    case VariantType::Boolean:
      return "Boolean";
    case VariantType::Integer:
      return "Integer";
    case VariantType::Long:
      return "Long";
    case VariantType::Single:
      return "Single";
    case VariantType::Double:
      return "Double";
    case VariantType::String:
      return "String";
    case VariantType::Color:
      return "Color";
    case VariantType::Font:
      return "Font";
    case VariantType::Object:
      return "Object";
  }
  return "Unknown";
}

std::string Variant::TypeName() const {
  if (Type() == VariantType::Font && !std::get<std::shared_ptr<velt::Font>>(value_))
    return "Nothing";
  if (Type() == VariantType::Object && !std::get<std::shared_ptr<velt::Object>>(value_))
    return "Nothing";
  return TypeName(Type());
}

bool Variant::isNumeric() const {
  switch (Type()) {
    case VariantType::Boolean:
    case VariantType::Integer:
    case VariantType::Long:
    case VariantType::Single:
    case VariantType::Double:
    case VariantType::Color:
      return true;
    default:
      return false;
  }
}

double Variant::numericValue() const {
  switch (Type()) {
    case VariantType::Boolean:
      return std::get<bool>(value_) ? -1.0 : 0.0;
    case VariantType::Integer:
      return std::get<int16_t>(value_);
    case VariantType::Long:
      return std::get<int32_t>(value_);
    case VariantType::Single:
      return std::get<float>(value_);
    case VariantType::Double:
      return std::get<double>(value_);
    case VariantType::Color:
      return std::get<ColorValue>(value_).value;
    default:
      return 0.0;
  }
}

void Variant::mismatch(VariantType target) const {
  std::string shown = TypeName();
  if (Type() == VariantType::String) shown += " " + quoted(std::get<std::string>(value_));
  throw Error(errTypeMismatch,
              "Type mismatch: cannot convert " + shown + " to " + TypeName(target));
}

double Variant::toNumber(VariantType target) const {
  if (isNumeric()) return numericValue();
  switch (Type()) {
    case VariantType::Empty:
      return 0.0;
    case VariantType::String: {
      const std::string& text = std::get<std::string>(value_);
      double value = 0.0;
      switch (parseNumber(text, value)) {
        case ParseResult::Ok:
          return value;
        case ParseResult::Overflow:
          throw Error(errOverflow, "Overflow: the number " + quoted(text) + " does not fit in " +
                                       TypeName(target));
        case ParseResult::NotANumber:
          break;
      }
      mismatch(target);
    }
    default:
      mismatch(target);
  }
}

bool Variant::ToBoolean() const {
  if (Type() == VariantType::Boolean) return std::get<bool>(value_);
  if (Type() == VariantType::String) {
    const std::string_view text = trimBlanks(std::get<std::string>(value_));
    if (equalsIgnoringCase(text, "true")) return true;
    if (equalsIgnoringCase(text, "false")) return false;
  }
  if (Type() == VariantType::Font || Type() == VariantType::Object) mismatch(VariantType::Boolean);
  return toNumber(VariantType::Boolean) != 0.0;
}

int16_t Variant::ToInteger() const {
  if (Type() == VariantType::Integer) return std::get<int16_t>(value_);
  if (Type() == VariantType::Color) {
    const int32_t asLong = ToLong();
    if (asLong < -32768 || asLong > 32767) overflow(asLong, "Integer");
    return static_cast<int16_t>(asLong);
  }
  if (Type() == VariantType::Font || Type() == VariantType::Object) mismatch(VariantType::Integer);
  return static_cast<int16_t>(
      roundedInRange(toNumber(VariantType::Integer), -32768.0, 32767.0, "Integer"));
}

int32_t Variant::ToLong() const {
  if (Type() == VariantType::Long) return std::get<int32_t>(value_);
  // A colour keeps its bit pattern: system colours become negative Longs.
  if (Type() == VariantType::Color) return static_cast<int32_t>(std::get<ColorValue>(value_).value);
  if (Type() == VariantType::Font || Type() == VariantType::Object) mismatch(VariantType::Long);
  return static_cast<int32_t>(
      roundedInRange(toNumber(VariantType::Long), -2147483648.0, 2147483647.0, "Long"));
}

float Variant::ToSingle() const {
  if (Type() == VariantType::Single) return std::get<float>(value_);
  if (Type() == VariantType::Font || Type() == VariantType::Object) mismatch(VariantType::Single);
  const double value = toNumber(VariantType::Single);
  if (std::isfinite(value) && std::fabs(value) > std::numeric_limits<float>::max())
    overflow(value, "Single");
  return static_cast<float>(value);
}

double Variant::ToDouble() const {
  if (Type() == VariantType::Font || Type() == VariantType::Object) mismatch(VariantType::Double);
  return toNumber(VariantType::Double);
}

std::string Variant::ToString() const {
  switch (Type()) {
    case VariantType::Empty:
      return "";
    case VariantType::Boolean:
      return std::get<bool>(value_) ? "True" : "False";
    case VariantType::Integer:
      return std::to_string(std::get<int16_t>(value_));
    case VariantType::Long:
      return std::to_string(std::get<int32_t>(value_));
    case VariantType::Single:
      return formatFloating(std::get<float>(value_), 7);
    case VariantType::Double:
      return formatFloating(std::get<double>(value_), 15);
    case VariantType::String:
      return std::get<std::string>(value_);
    case VariantType::Color:
      return std::to_string(std::get<ColorValue>(value_).value);
    default:
      mismatch(VariantType::String);
  }
}

OLE_COLOR Variant::ToColor() const {
  if (Type() == VariantType::Color) return std::get<ColorValue>(value_).value;
  if (Type() == VariantType::Font || Type() == VariantType::Object) mismatch(VariantType::Color);
  // Negative numbers keep their 32-bit pattern, as a Long holding a system colour does.
  const double value =
      roundedInRange(toNumber(VariantType::Color), -2147483648.0, 4294967295.0, "Color");
  if (value < 0) return static_cast<OLE_COLOR>(static_cast<int32_t>(value));
  return static_cast<OLE_COLOR>(value);
}

std::shared_ptr<velt::Font> Variant::ToFont() const {
  if (Type() == VariantType::Empty) return nullptr;
  if (Type() != VariantType::Font) mismatch(VariantType::Font);
  return std::get<std::shared_ptr<velt::Font>>(value_);
}

std::shared_ptr<velt::Object> Variant::ToObject() const {
  if (Type() == VariantType::Empty) return nullptr;
  if (Type() != VariantType::Object) mismatch(VariantType::Object);
  return std::get<std::shared_ptr<velt::Object>>(value_);
}

Variant Variant::ChangeType(VariantType type) const {
  if (type == Type()) return *this;
  switch (type) {
    case VariantType::Empty:
      return Variant();
    case VariantType::Boolean:
      return Variant(ToBoolean());
    case VariantType::Integer:
      return Variant(ToInteger());
    case VariantType::Long:
      return Variant(ToLong());
    case VariantType::Single:
      return Variant(ToSingle());
    case VariantType::Double:
      return Variant(ToDouble());
    case VariantType::String:
      return Variant(ToString());
    case VariantType::Color:
      return Color(ToColor());
    case VariantType::Font:
      return Variant(ToFont());
    case VariantType::Object:
      return Variant(ToObject());
  }
  return *this;
}

bool operator==(const Variant& a, const Variant& b) {
  if (a.isNumeric() && b.isNumeric()) return a.numericValue() == b.numericValue();
  if (a.Type() != b.Type()) return false;
  switch (a.Type()) {
    case VariantType::String:
      return std::get<std::string>(a.value_) == std::get<std::string>(b.value_);
    case VariantType::Font:
      return std::get<std::shared_ptr<velt::Font>>(a.value_) ==
             std::get<std::shared_ptr<velt::Font>>(b.value_);
    case VariantType::Object:
      return std::get<std::shared_ptr<velt::Object>>(a.value_) ==
             std::get<std::shared_ptr<velt::Object>>(b.value_);
    default:
      return true;  // Empty
  }
}

}  // namespace velt
