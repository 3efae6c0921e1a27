#pragma once

#include <cstdint>

struct SDL_Window;

namespace velt {

// Sleeps until a time or until the display has something to say, whichever
// comes first. Reading the display (SDL's pump) is a round of system calls;
// a sleep that ends with nothing arrived and nothing held unread lets an idle
// timer tick skip it. Only an X11 connection can tell; elsewhere this is a
// plain sleep that never calls the display quiet.
class SdlDisplayWait {
 public:
  // Finds the display connection through one of its windows (once).
  void Attach(SDL_Window* window);
  // Sleeps at most `ms` milliseconds; true when the display stayed quiet:
  // nothing came in on its connection and nothing read earlier waits in it.
  bool Sleep(int64_t ms);

 private:
  void* display_ = nullptr;  // the X11 Display, when SDL runs on X11
  int socket_ = -1;
};

}  // namespace velt
