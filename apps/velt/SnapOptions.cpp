#include "apps/velt/SnapOptions.hpp"

#include "apps/velt/ArgumentReader.hpp"

namespace velt::tool {

namespace {

[[noreturn]] void usageProblem(const std::string& text) {
  ArgumentReader::Problem(text, "snap");
}

template <typename T>
void setOnce(std::optional<T>& target, T value, const std::string& option) {
  if (target) usageProblem(option + " given twice");
  target = std::move(value);
}

// 1 or True sorts, 0 or False does not (any letter case).
bool sortedFlag(const std::string& text) {
  std::string lower;
  for (char c : text)
    lower += (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
  if (lower == "1" || lower == "true") return true;
  if (lower == "0" || lower == "false") return false;
  usageProblem("--sorted \"" + text + "\" is not 1 (True) or 0 (False)");
}

int32_t side(std::string_view text, std::string_view whole) {
  constexpr size_t kMaxDigits = 5;
  bool digits = !text.empty() && text.size() <= kMaxDigits;
  int32_t value = 0;
  for (char c : text) {
    digits = digits && c >= '0' && c <= '9';
    value = value * 10 + (c - '0');
  }
  if (!digits || value < 1 || value > SnapOptions::kMaxSide)
    usageProblem("size \"" + std::string(whole) + "\" is not WxH with sides 1.." +
                 std::to_string(SnapOptions::kMaxSide));
  return value;
}

void readOption(ArgumentReader& reader, SnapOptions& options) {
  const std::string& word = reader.Word();
  if (word == "--size") {
    setOnce(options.Size, SnapOptions::ParseSize(reader.Value()), word);
  } else if (word == "--prop") {
    options.Properties.push_back(reader.Value());
  } else if (word == "--item") {
    MenuItemArgument item = MenuItemArgument::Parse(reader.Value());
    if (options.Tools.empty())
      options.Items.push_back(std::move(item));
    else
      options.Tools.back().Menu.push_back(std::move(item));
  } else if (word == "--tool") {
    options.Tools.push_back(ToolArgument::Parse(reader.Value()));
  } else if (word == "--entry") {
    options.Entries.push_back(EntryArgument::Parse(reader.Value()));
  } else if (word == "--sorted") {
    setOnce(options.Sorted, sortedFlag(reader.Value()), word);
  } else if (word == "--imagelist") {
    setOnce(options.Images, ImageStrip::Parse(reader.Value()), word);
  } else if (word == "--input") {
    setOnce(options.Input, reader.Value(), word);
  } else if (word == "--out") {
    setOnce(options.Out, reader.Value(), word);
  } else if (word == "--screen") {
    reader.NoValue();
    options.Screen = true;
  } else if (word == "--events") {
    reader.NoValue();
    options.Events = true;
  } else if (word == "--list") {
    reader.NoValue();
    options.List = true;
  } else if (word == "--help" || word == "-h") {
    reader.NoValue();
    options.Help = true;
  } else {
    usageProblem("unknown option " + word);
  }
}

}  // namespace

SnapOptions SnapOptions::Parse(std::span<const std::string> arguments) {
  SnapOptions options;
  ArgumentReader reader(arguments, "snap");
  while (reader.Next()) {
    if (reader.IsOption()) {
      readOption(reader, options);
    } else if (options.Control.empty()) {
      options.Control = reader.Word();
    } else {
      usageProblem("one control at a time: \"" + options.Control + "\" and \"" + reader.Word() +
                   "\"");
    }
  }
  if (options.Help || options.List) return options;
  if (options.Control.empty()) usageProblem("no control named");
  return options;
}

SizeL SnapOptions::ParseSize(std::string_view text) {
  const size_t cross = text.find_first_of("xX");
  if (cross == std::string_view::npos)
    usageProblem("size \"" + std::string(text) + "\" is not WxH");
  return SizeL{side(text.substr(0, cross), text), side(text.substr(cross + 1), text)};
}

}  // namespace velt::tool
