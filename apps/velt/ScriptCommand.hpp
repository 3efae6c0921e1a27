#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace velt::tool {

// What a line of an input script asks for.
enum class ScriptVerb {
  Move,      // move X Y
  Down,      // down B X Y
  Up,        // up B X Y
  Click,     // click X Y
  DblClick,  // dblclick X Y
  KeyDown,   // keydown CODE [SHIFT]
  KeyUp,     // keyup CODE [SHIFT]
  Key,       // key CODE
  Char,      // char CODE
  Text,      // text STRING
  Wait,      // wait MS
  Focus,     // focus
  Blur,      // blur
  Prop,      // prop Name=Value
  Shot,      // shot FILE.png
  Menu,      // menu X Y
  Wheel,     // wheel X Y N
  Get,       // get NAME
  Today,     // today YYYY-MM-DD
  Clip,      // clip TEXT
};

// One parsed line of a script. Only the fields of its verb are meaningful.
struct ScriptCommand {
  // A keydown or keyup without SHIFT reports the modifier keys the script holds.
  static constexpr int16_t kShiftAsHeld = -1;

  ScriptVerb Verb = ScriptVerb::Wait;
  int32_t Line = 0;    // 1-based
  std::string Source;  // the line as written
  int32_t X = 0;
  int32_t Y = 0;
  int16_t Button = 0;            // 1 left, 2 right, 4 middle
  int16_t Code = 0;              // key code, the character code of char, or the wheel's notches
  int16_t Shift = kShiftAsHeld;  // Shift 1, Ctrl 2, Alt 4
  int64_t Milliseconds = 0;
  std::vector<int16_t> Characters;  // text: one KeyPress code per character
  // prop: "Name=Value"; shot: the file; get: the name; today: the date; clip: the text
  std::string Argument;
};

}  // namespace velt::tool
