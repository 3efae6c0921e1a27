#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "apps/velt/EntryArgument.hpp"
#include "apps/velt/ImageStrip.hpp"
#include "apps/velt/MenuItemArgument.hpp"
#include "apps/velt/ToolArgument.hpp"
#include "velt/platform/Geometry.hpp"

namespace velt::tool {

// The command line of `velt snap`, after the word "snap". Options take their
// value as the next argument or after "=" ("--size=80x24").
struct SnapOptions {
  static constexpr int32_t kMaxSide = 4096;

  bool Help = false;
  bool List = false;
  std::string Control;
  std::optional<SizeL> Size;
  std::vector<std::string> Properties;  // "Name=Value", in the order given
  std::vector<MenuItemArgument> Items;  // --item, in the order given
  std::vector<ToolArgument> Tools;      // --tool, each with the --item options after it
  std::vector<EntryArgument> Entries;   // --entry, in the order given
  std::optional<bool> Sorted;           // --sorted
  std::optional<ImageStrip> Images;     // --imagelist
  std::optional<std::string> Input;     // a file, or "-" for standard input
  std::optional<std::string> Out;
  bool Screen = false;
  bool Events = false;

  // Error 5 naming the argument for anything that does not fit the usage.
  static SnapOptions Parse(std::span<const std::string> arguments);
  // "WxH" with both sides 1..kMaxSide; error 5 otherwise.
  static SizeL ParseSize(std::string_view text);
};

}  // namespace velt::tool
