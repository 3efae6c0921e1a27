#include "velt/platform/sdl/SdlVideo.hpp"

#include <SDL.h>

#include <cstdlib>

#include "velt/platform/Error.hpp"

namespace velt {

namespace {

bool open_ = false;

bool hasEnvironment(const char* name) {
  const char* value = std::getenv(name);
  return value && *value;
}

// Hints read when the subsystem starts.
void setStartHints() {
  // Window opacity needs the desktop's compositor running.
  SDL_SetHint(SDL_HINT_VIDEO_X11_NET_WM_BYPASS_COMPOSITOR, "0");
  // An application with forms must not keep the screen saver away.
  SDL_SetHint(SDL_HINT_VIDEO_ALLOW_SCREENSAVER, "1");
  // Closing windows is the window system's business; pop-ups count as
  // windows to SDL, so its rule for the last window would not fit anyway.
  SDL_SetHint(SDL_HINT_QUIT_ON_LAST_WINDOW_CLOSE, "0");
  // The click that activates a window also acts on what it hits.
  SDL_SetHint(SDL_HINT_MOUSE_FOCUS_CLICKTHROUGH, "1");
}

}  // namespace

SdlVideo::SdlVideo(const std::string& driver) {
  if (open_)
    throw Error(errInvalidProcedureCall,
                "SdlWindowSystem: one is open already (SDL has one event queue per process)");
  if (driver.empty() && !hasEnvironment("SDL_VIDEODRIVER") && !hasEnvironment("DISPLAY") &&
      !hasEnvironment("WAYLAND_DISPLAY"))
    throw Error(errInvalidProcedureCall,
                "SdlWindowSystem: no display to open windows on (neither DISPLAY nor "
                "WAYLAND_DISPLAY is set)");
  setStartHints();
  if (!driver.empty())
    SDL_SetHintWithPriority(SDL_HINT_VIDEODRIVER, driver.c_str(), SDL_HINT_OVERRIDE);
  const int status = SDL_InitSubSystem(SDL_INIT_VIDEO);
  if (!driver.empty()) SDL_ResetHint(SDL_HINT_VIDEODRIVER);
  if (status != 0)
    throw Error(errInvalidProcedureCall,
                std::string("SdlWindowSystem: SDL could not open the video driver") +
                    (driver.empty() ? "" : " '" + driver + "'") + ": " + SDL_GetError());
  const char* running = SDL_GetCurrentVideoDriver();
  driver_ = running ? running : "";
  // X11 takes the images straight (shared memory). SDL's default there puts
  // them through an OpenGL texture, and to get one it silently recreates each
  // window, which puts a pop-up back at (0, 0). Other drivers have no direct
  // way, so they keep the texture.
  if (driver_ == "x11") SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
  SDL_StartTextInput();
  open_ = true;
}

SdlVideo::~SdlVideo() {
  SDL_StopTextInput();
  SDL_QuitSubSystem(SDL_INIT_VIDEO);
  open_ = false;
}

}  // namespace velt
