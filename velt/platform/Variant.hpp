#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <variant>

#include "velt/platform/Font.hpp"
#include "velt/platform/Object.hpp"
#include "velt/platform/Types.hpp"

namespace velt {

enum class VariantType {
  Empty,
  Boolean,
  Integer,
  Long,
  Single,
  Double,
  String,
  Color,
  Font,
  Object
};

// A value of one of the types properties and event arguments travel as. The
// conversions follow the classic rules: Empty reads as 0, "" or False; True is -1
// as a number; numbers round half to even on the way to Integer and Long and
// raise error 6 when they do not fit; text that is not a number is error 13.
class Variant {
 public:
  Variant() = default;
  Variant(bool value) : value_(value) {}
  Variant(int16_t value) : value_(value) {}
  Variant(int32_t value) : value_(value) {}
  Variant(float value) : value_(value) {}
  Variant(double value) : value_(value) {}
  Variant(std::string value) : value_(std::move(value)) {}
  Variant(const char* value) : value_(std::string(value ? value : "")) {}
  Variant(std::shared_ptr<velt::Font> font) : value_(std::move(font)) {}
  Variant(std::shared_ptr<velt::Object> object) : value_(std::move(object)) {}
  // An object reference that is not set (Nothing).
  Variant(std::nullptr_t) : value_(std::shared_ptr<velt::Object>()) {}

  static Variant Color(OLE_COLOR color);

  VariantType Type() const { return static_cast<VariantType>(value_.index()); }
  bool IsEmpty() const { return Type() == VariantType::Empty; }
  std::string TypeName() const;
  static const char* TypeName(VariantType type);

  bool ToBoolean() const;
  int16_t ToInteger() const;
  int32_t ToLong() const;
  float ToSingle() const;
  double ToDouble() const;
  std::string ToString() const;
  OLE_COLOR ToColor() const;
  std::shared_ptr<velt::Font> ToFont() const;
  std::shared_ptr<velt::Object> ToObject() const;

  // The value converted to another type by the rules above (Empty stays Empty
  // only when Empty is asked for).
  Variant ChangeType(VariantType type) const;

  // Numbers (Boolean and Color included) compare by value across types, text
  // exactly, fonts and objects by identity; different kinds are never equal.
  friend bool operator==(const Variant& a, const Variant& b);

 private:
  struct ColorValue {
    OLE_COLOR value;
  };
  using Storage =
      std::variant<std::monostate, bool, int16_t, int32_t, float, double, std::string, ColorValue,
                   std::shared_ptr<velt::Font>, std::shared_ptr<velt::Object>>;

  bool isNumeric() const;
  double numericValue() const;                // for numeric kinds only
  double toNumber(VariantType target) const;  // error 13 for what is no number
  [[noreturn]] void mismatch(VariantType target) const;

  Storage value_;
};

}  // namespace velt
