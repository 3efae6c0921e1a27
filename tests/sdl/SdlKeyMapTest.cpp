// The SDL key map: SDL keys to classic virtual-key codes, modifier masks, and
// the KeyPress codes of keys and typed text.

#include "velt/platform/sdl/SdlKeyMap.hpp"

#include <SDL.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace velt {
namespace {

int16_t code(SDL_Keycode key, SDL_Scancode scancode = SDL_SCANCODE_UNKNOWN) {
  return SdlKeyMap::KeyCode(key, scancode);
}

TEST(SdlKeyMapTest, KeysGetTheirClassicCodes) {
  struct Case {
    SDL_Keycode key;
    int16_t expected;
  };
  const Case cases[] = {
      {SDLK_RETURN, 13},       {SDLK_KP_ENTER, 13},   {SDLK_SPACE, 32},
      {SDLK_TAB, 9},           {SDLK_ESCAPE, 27},     {SDLK_BACKSPACE, 8},
      {SDLK_DELETE, 46},       {SDLK_INSERT, 45},     {SDLK_HOME, 36},
      {SDLK_END, 35},          {SDLK_PAGEUP, 33},     {SDLK_PAGEDOWN, 34},
      {SDLK_LEFT, 37},         {SDLK_UP, 38},         {SDLK_RIGHT, 39},
      {SDLK_DOWN, 40},         {SDLK_LSHIFT, 16},     {SDLK_RSHIFT, 16},
      {SDLK_LCTRL, 17},        {SDLK_RCTRL, 17},      {SDLK_LALT, 18},
      {SDLK_RALT, 18},         {SDLK_KP_0, 96},       {SDLK_KP_9, 105},
      {SDLK_KP_PLUS, 107},     {SDLK_KP_MINUS, 109},  {SDLK_SEMICOLON, 186},
      {SDLK_EQUALS, 187},      {SDLK_COMMA, 188},     {SDLK_MINUS, 189},
      {SDLK_PERIOD, 190},      {SDLK_SLASH, 191},     {SDLK_BACKQUOTE, 192},
      {SDLK_LEFTBRACKET, 219}, {SDLK_BACKSLASH, 220}, {SDLK_RIGHTBRACKET, 221},
      {SDLK_QUOTE, 222},
  };
  for (const Case& c : cases)
    EXPECT_EQ(code(c.key), c.expected) << SDL_GetKeyName(c.key);
  const SDL_Keycode functionKeys[] = {SDLK_F1, SDLK_F2, SDLK_F3, SDLK_F4,  SDLK_F5,  SDLK_F6,
                                      SDLK_F7, SDLK_F8, SDLK_F9, SDLK_F10, SDLK_F11, SDLK_F12};
  for (int i = 0; i < 12; ++i)
    EXPECT_EQ(code(functionKeys[i]), 112 + i) << "F" << i + 1;
}

TEST(SdlKeyMapTest, LettersAndDigitsFollowTheTypedCharacter) {
  for (char c = 'a'; c <= 'z'; ++c)
    EXPECT_EQ(code(c, SDL_SCANCODE_A), 'A' + (c - 'a')) << c;
  for (char c = '0'; c <= '9'; ++c)
    EXPECT_EQ(code(c, SDL_SCANCODE_A), c) << c;
  // On a French layout the key in the place of Q types "a": it is the A key.
  EXPECT_EQ(code(SDLK_a, SDL_SCANCODE_Q), 65);
}

TEST(SdlKeyMapTest, KeysTypingNoAsciiFallBackToTheirPlace) {
  // German "ä" sits where the US apostrophe is; Cyrillic letters on the letter keys.
  EXPECT_EQ(code(0xE4, SDL_SCANCODE_APOSTROPHE), 222);
  EXPECT_EQ(code(0x444, SDL_SCANCODE_A), 65);
  EXPECT_EQ(code(0x44F, SDL_SCANCODE_Z), 90);
  EXPECT_EQ(code(0x431, SDL_SCANCODE_0), 48);
  EXPECT_EQ(code(0x431, SDL_SCANCODE_1), 49);
}

TEST(SdlKeyMapTest, UnknownKeysHaveNoCode) {
  EXPECT_EQ(code(SDLK_AUDIONEXT, SDL_SCANCODE_AUDIONEXT), 0);
  EXPECT_EQ(code(SDLK_UNKNOWN, SDL_SCANCODE_UNKNOWN), 0);
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

TEST(SdlKeyMapTest, KeysThatTypeControlCharacters) {
  EXPECT_EQ(SdlKeyMap::ControlCharacter(13, 0), 13);
  EXPECT_EQ(SdlKeyMap::ControlCharacter(13, 2), 10);
  EXPECT_EQ(SdlKeyMap::ControlCharacter(8, 0), 8);
  EXPECT_EQ(SdlKeyMap::ControlCharacter(8, 2), 127);
  EXPECT_EQ(SdlKeyMap::ControlCharacter(27, 0), 27);
  EXPECT_EQ(SdlKeyMap::ControlCharacter(9, 1), 9);
  EXPECT_EQ(SdlKeyMap::ControlCharacter(9, 2), 0);
  EXPECT_EQ(SdlKeyMap::ControlCharacter('A', 2), 1);
  EXPECT_EQ(SdlKeyMap::ControlCharacter('Z', 3), 26);
}

TEST(SdlKeyMapTest, OrdinaryKeysAndAltTypeNoControlCharacter) {
  EXPECT_EQ(SdlKeyMap::ControlCharacter('A', 0), 0);  // its text arrives on its own
  EXPECT_EQ(SdlKeyMap::ControlCharacter('1', 2), 0);
  EXPECT_EQ(SdlKeyMap::ControlCharacter(37, 0), 0);
  EXPECT_EQ(SdlKeyMap::ControlCharacter(13, 4), 0);
  EXPECT_EQ(SdlKeyMap::ControlCharacter('A', 6), 0);
}

TEST(SdlKeyMapTest, TextGivesOneCodePerCharacterWithLatin1Kept) {
  EXPECT_EQ(SdlKeyMap::TextCharacters("a"), std::vector<int16_t>{97});
  EXPECT_EQ(SdlKeyMap::TextCharacters("\xC3\xA4"), std::vector<int16_t>{228});  // ä
  EXPECT_EQ(SdlKeyMap::TextCharacters("\xC3\xBF"), std::vector<int16_t>{255});  // ÿ
  EXPECT_EQ(SdlKeyMap::TextCharacters("A\xC3\x9F!"), (std::vector<int16_t>{65, 223, 33}));
  EXPECT_TRUE(SdlKeyMap::TextCharacters("").empty());
}

TEST(SdlKeyMapTest, TextBeyondLatin1KeepsItsUtf16Units) {
  EXPECT_EQ(SdlKeyMap::TextCharacters("\xD0\xB6"), std::vector<int16_t>{0x436});  // Cyrillic zhe
  // The euro sign, U+20AC, and a character past U+7FFF come out as signed units.
  EXPECT_EQ(SdlKeyMap::TextCharacters("\xE2\x82\xAC"), std::vector<int16_t>{0x20AC});
  EXPECT_EQ(SdlKeyMap::TextCharacters("\xEF\xBC\xA1"), std::vector<int16_t>{-223});  // U+FF21
  // U+1F600 as its surrogate pair D83D DE00.
  EXPECT_EQ(SdlKeyMap::TextCharacters("\xF0\x9F\x98\x80"),
            (std::vector<int16_t>{static_cast<int16_t>(0xD83D), static_cast<int16_t>(0xDE00)}));
}

TEST(SdlKeyMapTest, MalformedTextBecomesReplacementCharacters) {
  const auto replacement = static_cast<int16_t>(0xFFFD);
  // A lone continuation byte, a lead byte cut short, an overlong slash, an encoded surrogate.
  EXPECT_EQ(SdlKeyMap::TextCharacters("\x80"
                                      "a"),
            (std::vector<int16_t>{replacement, 97}));
  EXPECT_EQ(SdlKeyMap::TextCharacters("\xE2\x82"),
            (std::vector<int16_t>{replacement, replacement}));
  EXPECT_EQ(SdlKeyMap::TextCharacters("\xC0\xAF")[0], replacement);
  EXPECT_EQ(SdlKeyMap::TextCharacters("\xED\xA0\x80")[0], replacement);
}

}  // namespace
}  // namespace velt
