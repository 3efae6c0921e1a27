#include "velt/platform/sdl/SdlDisplayWait.hpp"

#include <SDL.h>
#include <SDL_syswm.h>
#include <poll.h>

#include <algorithm>
#include <climits>

namespace velt {

void SdlDisplayWait::Attach(SDL_Window* window) {
#if defined(SDL_VIDEO_DRIVER_X11)
  if (display_ || !window) return;
  SDL_SysWMinfo info;
  SDL_VERSION(&info.version);
  if (SDL_GetWindowWMInfo(window, &info) != SDL_TRUE || info.subsystem != SDL_SYSWM_X11) return;
  display_ = info.info.x11.display;
  socket_ = ConnectionNumber(info.info.x11.display);
#else
  (void)window;
#endif
}

bool SdlDisplayWait::Sleep(int64_t ms) {
  ms = std::clamp<int64_t>(ms, 0, INT_MAX);
#if defined(SDL_VIDEO_DRIVER_X11)
  if (display_) {
    auto* display = static_cast<Display*>(display_);
    // Events read while answering a request of ours wait in the library, not
    // on the socket. (Its own query for them reads the socket, which is what
    // the sleep means to save.)
    if (QLength(display) != 0) return false;
    pollfd connection{socket_, POLLIN, 0};
    // A signal (Ctrl+C) ends the sleep as "not quiet", so SDL's pump sees it.
    return poll(&connection, 1, static_cast<int>(ms)) == 0;
  }
#endif
  SDL_Delay(static_cast<uint32_t>(ms));
  return false;
}

}  // namespace velt
