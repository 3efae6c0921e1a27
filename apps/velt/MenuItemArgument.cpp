#include "apps/velt/MenuItemArgument.hpp"

#include <limits>
#include <optional>
#include <vector>

#include "apps/velt/PropertyArgument.hpp"
#include "velt/controls/menus/MenuItems.hpp"
#include "velt/platform/Error.hpp"

namespace velt::tool {

namespace {

constexpr size_t kFieldCount = 9;

std::vector<std::string_view> fields(std::string_view text) {
  std::vector<std::string_view> result;
  for (;;) {
    const size_t bar = text.find('|');
    result.push_back(text.substr(0, bar));
    if (bar == std::string_view::npos) return result;
    text.remove_prefix(bar + 1);
  }
}

bool sameLetters(std::string_view word, std::string_view lower) {
  if (word.size() != lower.size()) return false;
  for (size_t i = 0; i < word.size(); ++i) {
    const char c = word[i];
    if ((c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c) != lower[i]) return false;
  }
  return true;
}

class FieldReader {
 public:
  FieldReader(std::string_view whole, std::vector<std::string_view> fields)
      : whole_(whole), fields_(std::move(fields)) {}

  // The field at position (0-based), or nothing when it is absent or empty.
  std::optional<std::string_view> At(size_t position) const {
    if (position >= fields_.size() || fields_[position].empty()) return std::nullopt;
    return fields_[position];
  }

  std::string Text(size_t position) const { return std::string(At(position).value_or("")); }

  int64_t Integer(size_t position, const char* name, int64_t low, int64_t high,
                  int64_t absent) const {
    const std::optional<std::string_view> field = At(position);
    if (!field) return absent;
    const std::optional<int64_t> value = PropertyArgument::ParseInteger(*field);
    if (!value || *value < low || *value > high)
      problem(std::string(name) + " \"" + std::string(*field) + "\" is not an integer " +
              std::to_string(low) + ".." + std::to_string(high));
    return *value;
  }

  bool Boolean(size_t position, const char* name, bool absent) const {
    const std::optional<std::string_view> field = At(position);
    if (!field) return absent;
    if (sameLetters(*field, "true")) return true;
    if (sameLetters(*field, "false")) return false;
    problem(std::string(name) + " \"" + std::string(*field) + "\" is not True or False");
  }

  [[noreturn]] void problem(const std::string& text) const {
    throw Error(errInvalidProcedureCall, "--item \"" + std::string(whole_) + "\": " + text);
  }

 private:
  std::string_view whole_;
  std::vector<std::string_view> fields_;
};

}  // namespace

MenuItemArgument MenuItemArgument::Parse(std::string_view text) {
  std::vector<std::string_view> parts = fields(text);
  const size_t count = parts.size();
  const FieldReader in(text, std::move(parts));
  if (count > kFieldCount)
    in.problem("more than " + std::to_string(kFieldCount) +
               " fields (Key|Caption|Icon|Enabled|Child|Group|ItemType|Checked|Bold)");
  MenuItemArgument item;
  item.Key = in.Text(0);
  item.Caption = in.Text(1);
  item.Icon = static_cast<int16_t>(
      in.Integer(2, "Icon", 0, std::numeric_limits<int16_t>::max(), item.Icon));
  item.Enabled = in.Boolean(3, "Enabled", item.Enabled);
  item.Child = in.Text(4);
  item.Group = in.Text(5);
  item.ItemType = static_cast<eItemType>(in.Integer(6, "ItemType", itNormal, itTitle, itNormal));
  item.Checked = in.Boolean(7, "Checked", item.Checked);
  item.Bold = in.Boolean(8, "Bold", item.Bold);
  return item;
}

void MenuItemArgument::AddTo(MenuItems& items) const {
  items.Add(Key, Caption, Icon, Enabled, Child, Group, ItemType, Checked, Bold);
}

}  // namespace velt::tool
