#include "velt/platform/sdl/SdlClipboard.hpp"

#include <SDL.h>

#include "velt/platform/Error.hpp"

namespace velt {

std::string SdlClipboard::GetText() const {
  char* text = SDL_GetClipboardText();  // "" when there is none; never null in practice
  std::string result = text ? text : "";
  SDL_free(text);
  return result;
}

bool SdlClipboard::HasText() const {
  return SDL_HasClipboardText() == SDL_TRUE;
}

void SdlClipboard::Clear() {
  setText("");
}

void SdlClipboard::setText(const std::string& text) {
  if (SDL_SetClipboardText(text.c_str()) != 0)
    throw Error(errInvalidProcedureCall,
                std::string("Clipboard.SetText: the desktop refused the text: ") + SDL_GetError());
}

}  // namespace velt
