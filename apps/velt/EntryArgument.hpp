#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace velt {

class ComboDatas;

namespace tool {

// A list entry given by `velt snap --entry`, the arguments of ComboDatas::Add
// separated by "|": Key|Caption|Value|Icon|Comment. Fields left out (or
// empty) take Add's defaults; Icon is an integer (decimal, &H or 0x).
struct EntryArgument {
  std::string Key;
  std::string Caption;
  std::string Value;
  int16_t Icon = 0;
  std::string Comment;

  // Error 5 naming --entry and the field that is wrong.
  static EntryArgument Parse(std::string_view text);
  // Errors of Add (457 for a key in use) reach the caller.
  void AddTo(ComboDatas& items) const;
};

}  // namespace tool
}  // namespace velt
