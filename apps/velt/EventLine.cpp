#include "apps/velt/EventLine.hpp"

#include <nlohmann/json.hpp>

namespace velt::tool {

std::string EventLine::Format(const std::string& name, std::span<const Variant> arguments) {
  std::string line = name;
  for (const Variant& argument : arguments)
    line += " " + FormatValue(argument);
  return line;
}

std::string EventLine::FormatValue(const Variant& value) {
  switch (value.Type()) {
    case VariantType::Empty:
      return "Empty";
    case VariantType::String:
      return Quote(value.ToString());
    case VariantType::Font:
    case VariantType::Object:
      return value.TypeName();
    default:
      // Variant's own text is the shortest that reads back as the same
      // number, and True/False for Booleans.
      return value.ToString();
  }
}

std::string EventLine::Quote(std::string_view text) {
  return nlohmann::json(std::string(text))
      .dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

}  // namespace velt::tool
