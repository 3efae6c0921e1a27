#include "apps/velt/EntryArgument.hpp"

#include <cstdint>
#include <optional>
#include <vector>

#include "apps/velt/PropertyArgument.hpp"
#include "velt/controls/lists/ComboDatas.hpp"
#include "velt/platform/Error.hpp"

namespace velt::tool {

namespace {

constexpr size_t kFieldCount = 5;

[[noreturn]] void problem(std::string_view whole, const std::string& text) {
  throw Error(errInvalidProcedureCall, "--entry \"" + std::string(whole) + "\": " + text);
}

}  // namespace

EntryArgument EntryArgument::Parse(std::string_view text) {
  std::vector<std::string> fields;
  for (std::string_view rest = text;;) {
    const size_t bar = rest.find('|');
    fields.emplace_back(rest.substr(0, bar));
    if (bar == std::string_view::npos) break;
    rest.remove_prefix(bar + 1);
  }
  if (fields.size() > kFieldCount)
    problem(text, "more than " + std::to_string(kFieldCount) +
                      " fields (Key|Caption|Value|Icon|Comment)");
  fields.resize(kFieldCount);
  EntryArgument entry{fields[0], fields[1], fields[2], 0, fields[4]};
  if (!fields[3].empty()) {
    const std::optional<int64_t> icon = PropertyArgument::ParseInteger(fields[3]);
    if (!icon || *icon < INT16_MIN || *icon > INT16_MAX)
      problem(text, "Icon \"" + fields[3] + "\" is not an integer -32768..32767");
    entry.Icon = static_cast<int16_t>(*icon);
  }
  return entry;
}

void EntryArgument::AddTo(ComboDatas& items) const {
  items.Add(Key, Caption, Value, Icon, Comment);
}

}  // namespace velt::tool
