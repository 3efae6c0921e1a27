#include "velt/platform/sdl/SdlKeyMap.hpp"

#include "velt/platform/Utf8.hpp"

#include <SDL.h>

#include <array>
#include <cstddef>
#include <utility>

namespace velt {

namespace {

constexpr int16_t kVkBack = 8;
constexpr int16_t kVkTab = 9;
constexpr int16_t kVkReturn = 13;
constexpr int16_t kVkEscape = 27;
constexpr int16_t kVkA = 65;
constexpr int16_t kVkZ = 90;

struct KeyPair {
  int32_t from;
  int16_t to;
};

// Keys with a code of their own, by SDL keycode.
constexpr std::array kNamedKeys = {
    KeyPair{SDLK_BACKSPACE, 8},    KeyPair{SDLK_TAB, 9},         KeyPair{SDLK_CLEAR, 12},
    KeyPair{SDLK_RETURN, 13},      KeyPair{SDLK_KP_ENTER, 13},   KeyPair{SDLK_RETURN2, 13},
    KeyPair{SDLK_LSHIFT, 16},      KeyPair{SDLK_RSHIFT, 16},     KeyPair{SDLK_LCTRL, 17},
    KeyPair{SDLK_RCTRL, 17},       KeyPair{SDLK_LALT, 18},       KeyPair{SDLK_RALT, 18},
    KeyPair{SDLK_PAUSE, 19},       KeyPair{SDLK_CAPSLOCK, 20},   KeyPair{SDLK_ESCAPE, 27},
    KeyPair{SDLK_SPACE, 32},       KeyPair{SDLK_PAGEUP, 33},     KeyPair{SDLK_PAGEDOWN, 34},
    KeyPair{SDLK_END, 35},         KeyPair{SDLK_HOME, 36},       KeyPair{SDLK_LEFT, 37},
    KeyPair{SDLK_UP, 38},          KeyPair{SDLK_RIGHT, 39},      KeyPair{SDLK_DOWN, 40},
    KeyPair{SDLK_PRINTSCREEN, 44}, KeyPair{SDLK_INSERT, 45},     KeyPair{SDLK_DELETE, 46},
    KeyPair{SDLK_HELP, 47},        KeyPair{SDLK_LGUI, 91},       KeyPair{SDLK_RGUI, 92},
    KeyPair{SDLK_APPLICATION, 93}, KeyPair{SDLK_KP_0, 96},       KeyPair{SDLK_KP_1, 97},
    KeyPair{SDLK_KP_2, 98},        KeyPair{SDLK_KP_3, 99},       KeyPair{SDLK_KP_4, 100},
    KeyPair{SDLK_KP_5, 101},       KeyPair{SDLK_KP_6, 102},      KeyPair{SDLK_KP_7, 103},
    KeyPair{SDLK_KP_8, 104},       KeyPair{SDLK_KP_9, 105},      KeyPair{SDLK_KP_MULTIPLY, 106},
    KeyPair{SDLK_KP_PLUS, 107},    KeyPair{SDLK_KP_MINUS, 109},  KeyPair{SDLK_KP_PERIOD, 110},
    KeyPair{SDLK_KP_DECIMAL, 110}, KeyPair{SDLK_KP_DIVIDE, 111}, KeyPair{SDLK_NUMLOCKCLEAR, 144},
    KeyPair{SDLK_SCROLLLOCK, 145}, KeyPair{SDLK_F1, 112},        KeyPair{SDLK_F2, 113},
    KeyPair{SDLK_F3, 114},         KeyPair{SDLK_F4, 115},        KeyPair{SDLK_F5, 116},
    KeyPair{SDLK_F6, 117},         KeyPair{SDLK_F7, 118},        KeyPair{SDLK_F8, 119},
    KeyPair{SDLK_F9, 120},         KeyPair{SDLK_F10, 121},       KeyPair{SDLK_F11, 122},
    KeyPair{SDLK_F12, 123},        KeyPair{SDLK_F13, 124},       KeyPair{SDLK_F14, 125},
    KeyPair{SDLK_F15, 126},        KeyPair{SDLK_F16, 127},       KeyPair{SDLK_F17, 128},
    KeyPair{SDLK_F18, 129},        KeyPair{SDLK_F19, 130},       KeyPair{SDLK_F20, 131},
    KeyPair{SDLK_F21, 132},        KeyPair{SDLK_F22, 133},       KeyPair{SDLK_F23, 134},
    KeyPair{SDLK_F24, 135},
};

// Punctuation, by the character the key types: the classic OEM key codes.
constexpr std::array kPunctuation = {
    KeyPair{';', 186}, KeyPair{':', 186},  KeyPair{'=', 187},  KeyPair{'+', 187}, KeyPair{',', 188},
    KeyPair{'<', 226}, KeyPair{'-', 189},  KeyPair{'_', 189},  KeyPair{'.', 190}, KeyPair{'>', 226},
    KeyPair{'/', 191}, KeyPair{'?', 191},  KeyPair{'#', 191},  KeyPair{'`', 192}, KeyPair{'~', 192},
    KeyPair{'[', 219}, KeyPair{'{', 219},  KeyPair{'\\', 220}, KeyPair{'|', 220}, KeyPair{']', 221},
    KeyPair{'}', 221}, KeyPair{'\'', 222}, KeyPair{'"', 222},
};

// Keys that type no ASCII character, by their place on a US keyboard.
constexpr std::array kPositions = {
    KeyPair{SDL_SCANCODE_SEMICOLON, 186},      KeyPair{SDL_SCANCODE_EQUALS, 187},
    KeyPair{SDL_SCANCODE_COMMA, 188},          KeyPair{SDL_SCANCODE_MINUS, 189},
    KeyPair{SDL_SCANCODE_PERIOD, 190},         KeyPair{SDL_SCANCODE_SLASH, 191},
    KeyPair{SDL_SCANCODE_GRAVE, 192},          KeyPair{SDL_SCANCODE_LEFTBRACKET, 219},
    KeyPair{SDL_SCANCODE_BACKSLASH, 220},      KeyPair{SDL_SCANCODE_NONUSHASH, 220},
    KeyPair{SDL_SCANCODE_RIGHTBRACKET, 221},   KeyPair{SDL_SCANCODE_APOSTROPHE, 222},
    KeyPair{SDL_SCANCODE_NONUSBACKSLASH, 226},
};

template <size_t N>
int16_t lookUp(const std::array<KeyPair, N>& table, int32_t from) {
  for (const KeyPair& pair : table)
    if (pair.from == from) return pair.to;
  return 0;
}

int16_t byCharacter(int32_t keycode) {
  if (keycode >= 'a' && keycode <= 'z') return static_cast<int16_t>(keycode - 'a' + kVkA);
  if (keycode >= '0' && keycode <= '9') return static_cast<int16_t>(keycode);
  return lookUp(kPunctuation, keycode);
}

int16_t byPosition(int32_t scancode) {
  if (scancode >= SDL_SCANCODE_A && scancode <= SDL_SCANCODE_Z)
    return static_cast<int16_t>(scancode - SDL_SCANCODE_A + kVkA);
  if (scancode >= SDL_SCANCODE_1 && scancode <= SDL_SCANCODE_9)
    return static_cast<int16_t>(scancode - SDL_SCANCODE_1 + '1');
  if (scancode == SDL_SCANCODE_0) return '0';
  return lookUp(kPositions, scancode);
}

int16_t unit(uint32_t value) {
  return static_cast<int16_t>(static_cast<uint16_t>(value));
}

}  // namespace

int16_t SdlKeyMap::KeyCode(int32_t sdlKeycode, int32_t sdlScancode) {
  if (int16_t code = lookUp(kNamedKeys, sdlKeycode)) return code;
  if (int16_t code = byCharacter(sdlKeycode)) return code;
  return byPosition(sdlScancode);
}

int16_t SdlKeyMap::ShiftState(uint16_t sdlKeymod) {
  int16_t shift = 0;
  if (sdlKeymod & KMOD_SHIFT) shift |= kShiftMask;
  if (sdlKeymod & KMOD_CTRL) shift |= kCtrlMask;
  if (sdlKeymod & KMOD_ALT) shift |= kAltMask;
  return shift;
}

int16_t SdlKeyMap::ControlCharacter(int16_t keyCode, int16_t shift) {
  if (shift & kAltMask) return 0;
  const bool ctrl = (shift & kCtrlMask) != 0;
  switch (keyCode) {
    case kVkReturn:
      return ctrl ? 10 : 13;
    case kVkBack:
      return ctrl ? 127 : 8;
    case kVkEscape:
      return 27;
    case kVkTab:
      return ctrl ? 0 : 9;
    default:
      break;
  }
  if (ctrl && keyCode >= kVkA && keyCode <= kVkZ) return static_cast<int16_t>(keyCode - kVkA + 1);
  return 0;
}

std::vector<int16_t> SdlKeyMap::TextCharacters(std::string_view utf8) {
  std::vector<int16_t> codes;
  for (size_t at = 0; at < utf8.size();) {
    // A malformed byte is one U+FFFD, as a text field shows it.
    const Utf8::Decoded decoded = Utf8::DecodeAt(utf8, at);
    const uint32_t code = decoded.codePoint;
    at += decoded.valid ? decoded.length : 1;
    if (code < 0x10000) {
      codes.push_back(unit(code));
    } else {
      const uint32_t offset = code - 0x10000;
      codes.push_back(unit(0xD800 + (offset >> 10)));
      codes.push_back(unit(0xDC00 + (offset & 0x3FF)));
    }
  }
  return codes;
}

}  // namespace velt
