// The SDL key map: SDL keys to classic virtual-key codes, modifier masks, and
// the KeyPress codes of keys and typed text.

#include "velt/platform/sdl/SdlKeyMap.hpp"

#include <SDL.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <utility>
#include <vector>

namespace velt {
namespace {

int16_t code(SDL_Keycode key, SDL_Scancode scancode = SDL_SCANCODE_UNKNOWN) {
  return SdlKeyMap::KeyCode(key, scancode);
}

TEST(SdlKeyMapTest, NamedKeysGetTheirClassicCodes) {
  const std::pair<SDL_Keycode, int16_t> cases[] = {
      {SDLK_RETURN, 13},        {SDLK_KP_ENTER, 13},     {SDLK_TAB, 9},
      {SDLK_BACKSPACE, 8},      {SDLK_ESCAPE, 27},       {SDLK_SPACE, 32},
      {SDLK_PAGEUP, 33},        {SDLK_HOME, 36},         {SDLK_LEFT, 37},
      {SDLK_DOWN, 40},          {SDLK_INSERT, 45},       {SDLK_DELETE, 46},
      {SDLK_RSHIFT, 16},        {SDLK_LCTRL, 17},        {SDLK_RALT, 18},
      {SDLK_KP_0, 96},          {SDLK_KP_9, 105},        {SDLK_KP_PLUS, 107},
      {SDLK_KP_MINUS, 109},     {SDLK_F1, 112},          {SDLK_F12, 123},
      {SDLK_SEMICOLON, 186},    {SDLK_EQUALS, 187},      {SDLK_COMMA, 188},
      {SDLK_MINUS, 189},        {SDLK_PERIOD, 190},      {SDLK_SLASH, 191},
      {SDLK_BACKQUOTE, 192},    {SDLK_LEFTBRACKET, 219}, {SDLK_BACKSLASH, 220},
      {SDLK_RIGHTBRACKET, 221}, {SDLK_QUOTE, 222},       {SDLK_UNKNOWN, 0},
  };
  for (const auto& [key, expected] : cases)
    EXPECT_EQ(code(key), expected) << SDL_GetKeyName(key);
  EXPECT_EQ(code(SDLK_AUDIONEXT, SDL_SCANCODE_AUDIONEXT), 0) << "a key without a code";
}

TEST(SdlKeyMapTest, LettersAndDigitsFollowTheTypedCharacterOtherKeysTheirPlace) {
  for (char c = 'a'; c <= 'z'; ++c)
    EXPECT_EQ(code(c, SDL_SCANCODE_A), 'A' + (c - 'a')) << c;
  for (char c = '0'; c <= '9'; ++c)
    EXPECT_EQ(code(c, SDL_SCANCODE_A), c) << c;
  // On a French layout the key in the place of Q types "a": it is the A key.
  EXPECT_EQ(code(SDLK_a, SDL_SCANCODE_Q), 65);
  // German "ä" sits where the US apostrophe is; Cyrillic letters on the letter keys.
  EXPECT_EQ(code(0xE4, SDL_SCANCODE_APOSTROPHE), 222);
  EXPECT_EQ(code(0x444, SDL_SCANCODE_A), 65);
  EXPECT_EQ(code(0x44F, SDL_SCANCODE_Z), 90);
  EXPECT_EQ(code(0x431, SDL_SCANCODE_0), 48);
  EXPECT_EQ(code(0x431, SDL_SCANCODE_1), 49);
}

TEST(SdlKeyMapTest, ModifierStateBecomesTheShiftMask) {
  EXPECT_EQ(SdlKeyMap::ShiftState(KMOD_NONE), 0);
  EXPECT_EQ(SdlKeyMap::ShiftState(KMOD_LSHIFT), 1);
  EXPECT_EQ(SdlKeyMap::ShiftState(KMOD_RSHIFT), 1);
  EXPECT_EQ(SdlKeyMap::ShiftState(KMOD_RCTRL), 2);
  EXPECT_EQ(SdlKeyMap::ShiftState(KMOD_LALT), 4);
  EXPECT_EQ(SdlKeyMap::ShiftState(KMOD_LSHIFT | KMOD_RCTRL | KMOD_RALT), 7);
  // Lock keys and the GUI key are no part of it.
  EXPECT_EQ(SdlKeyMap::ShiftState(KMOD_CAPS | KMOD_NUM | KMOD_LGUI), 0);
}

TEST(SdlKeyMapTest, OnlyKeysThatTypeAControlCharacterGiveOne) {
  struct Case {
    int16_t keyCode, shift, expected;
  };
  // Ordinary keys type their text on their own; with Alt no key types a control character.
  const Case cases[] = {
      {13, 0, 13}, {13, 2, 10},  {8, 0, 8},   {8, 2, 127}, {27, 0, 27}, {9, 1, 9},  {9, 2, 0},
      {'A', 2, 1}, {'Z', 3, 26}, {'A', 0, 0}, {'1', 2, 0}, {37, 0, 0},  {13, 4, 0}, {'A', 6, 0},
  };
  for (const Case& c : cases)
    EXPECT_EQ(SdlKeyMap::ControlCharacter(c.keyCode, c.shift), c.expected)
        << c.keyCode << " shift " << c.shift;
}

TEST(SdlKeyMapTest, TextGivesItsUtf16UnitsAndOneReplacementPerMalformedByte) {
  const auto r = static_cast<int16_t>(0xFFFD);
  const std::pair<const char*, std::vector<int16_t>> cases[] = {
      {"", {}},
      {"A\xC3\x9F!", {65, 223, 33}},
      {"\xC3\xA4\xC3\xBF", {228, 255}},
      {"\xD0\xB6\xE2\x82\xAC", {0x436, 0x20AC}},
      {"\xEF\xBC\xA1", {-223}},  // U+FF21: units past U+7FFF come out signed
      {"\xF0\x9F\x98\x80", {static_cast<int16_t>(0xD83D), static_cast<int16_t>(0xDE00)}},
      {"\x80z", {r, 'z'}},
      {"\xE2\x82", {r, r}},         // cut short
      {"\xC0\xAF", {r, r}},         // an overlong slash
      {"\xED\xA0\x80", {r, r, r}},  // an encoded surrogate
  };
  for (const auto& [text, expected] : cases)
    EXPECT_EQ(SdlKeyMap::TextCharacters(text), expected) << text;
}

}  // namespace
}  // namespace velt
