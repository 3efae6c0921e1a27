#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace velt {

// SDL's keyboard input in the classic terms the controls expect: virtual-key
// codes for KeyDown and KeyUp, the Shift mask, and the character codes of
// KeyPress. SDL values come in as plain integers (SDL_Keycode, SDL_Scancode,
// SDL_Keymod) so that this header needs no SDL.
class SdlKeyMap {
 public:
  static constexpr int16_t kShiftMask = 1;
  static constexpr int16_t kCtrlMask = 2;
  static constexpr int16_t kAltMask = 4;

  // The virtual-key code of a key (Enter 13, Left 37, "A" 65, F1 112, ...), or
  // 0 for a key without one. Letters, digits and punctuation follow the
  // character the key types; keys that type no ASCII character (a Cyrillic
  // letter, a German umlaut) fall back to their position on a US keyboard.
  static int16_t KeyCode(int32_t sdlKeycode, int32_t sdlScancode);

  // Shift 1, Ctrl 2, Alt 4 from SDL's modifier state.
  static int16_t ShiftState(uint16_t sdlKeymod);

  // The KeyPress code a key down produces by itself, as the classic desktop
  // turns keys into characters where no text input arrives for them: Enter
  // 13 (10 with Ctrl), Backspace 8 (127 with Ctrl), Escape 27, Tab 9 and
  // Ctrl+letter 1 to 26. 0 when the key types nothing of the kind; nothing
  // while Alt is held.
  static int16_t ControlCharacter(int16_t keyCode, int16_t shift);

  // The KeyPress codes for typed UTF-8 text, one per UTF-16 unit as the
  // classic Unicode character code gives it: Latin-1 keeps its values ("ä" is
  // 228), characters from U+8000 come out negative, characters past U+FFFF as
  // two surrogate codes. A malformed sequence gives U+FFFD.
  static std::vector<int16_t> TextCharacters(std::string_view utf8);
};

}  // namespace velt
