#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velt::tool {

// The fields of an option value written "A|B|C" (--item, --tool), read by
// position: absent or empty fields take the caller's default. A field that
// does not fit is error 5 naming the option, the whole value and the field.
class BarFields {
 public:
  BarFields(std::string option, std::string_view whole);

  size_t Count() const { return fields_.size(); }
  std::optional<std::string_view> At(size_t position) const;
  std::string Text(size_t position) const;
  // Decimal, &H or 0x integers within low..high.
  int64_t Integer(size_t position, const char* name, int64_t low, int64_t high,
                  int64_t absent) const;
  // True or False in any letter case.
  bool Boolean(size_t position, const char* name, bool absent) const;
  // Error 5 when there are more than count fields, naming them.
  void AtMost(size_t count, const char* names) const;

  [[noreturn]] void Problem(const std::string& text) const;

 private:
  std::string option_;
  std::string_view whole_;
  std::vector<std::string_view> fields_;
};

}  // namespace velt::tool
