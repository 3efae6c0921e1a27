#include "apps/velt/BarFields.hpp"

#include "apps/velt/PropertyArgument.hpp"
#include "velt/platform/Error.hpp"

namespace velt::tool {

namespace {

bool sameLetters(std::string_view word, std::string_view lower) {
  if (word.size() != lower.size()) return false;
  for (size_t i = 0; i < word.size(); ++i) {
    const char c = word[i];
    if ((c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c) != lower[i]) return false;
  }
  return true;
}

}  // namespace

BarFields::BarFields(std::string option, std::string_view whole)
    : option_(std::move(option)), whole_(whole) {
  for (;;) {
    const size_t bar = whole.find('|');
    fields_.push_back(whole.substr(0, bar));
    if (bar == std::string_view::npos) return;
    whole.remove_prefix(bar + 1);
  }
}

std::optional<std::string_view> BarFields::At(size_t position) const {
  if (position >= fields_.size() || fields_[position].empty()) return std::nullopt;
  return fields_[position];
}

std::string BarFields::Text(size_t position) const {
  return std::string(At(position).value_or(""));
}

int64_t BarFields::Integer(size_t position, const char* name, int64_t low, int64_t high,
                           int64_t absent) const {
  const std::optional<std::string_view> field = At(position);
  if (!field) return absent;
  const std::optional<int64_t> value = PropertyArgument::ParseInteger(*field);
  if (!value || *value < low || *value > high)
    Problem(std::string(name) + " \"" + std::string(*field) + "\" is not an integer " +
            std::to_string(low) + ".." + std::to_string(high));
  return *value;
}

bool BarFields::Boolean(size_t position, const char* name, bool absent) const {
  const std::optional<std::string_view> field = At(position);
  if (!field) return absent;
  if (sameLetters(*field, "true")) return true;
  if (sameLetters(*field, "false")) return false;
  Problem(std::string(name) + " \"" + std::string(*field) + "\" is not True or False");
}

void BarFields::AtMost(size_t count, const char* names) const {
  if (fields_.size() > count)
    Problem("more than " + std::to_string(count) + " fields (" + names + ")");
}

void BarFields::Problem(const std::string& text) const {
  throw Error(errInvalidProcedureCall, option_ + " \"" + std::string(whole_) + "\": " + text);
}

}  // namespace velt::tool
