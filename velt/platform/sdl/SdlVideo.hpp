#pragma once

#include <string>

namespace velt {

// SDL's video subsystem, open for the lifetime of this object. SDL keeps one
// event queue per process, so only one may exist at a time.
class SdlVideo {
 public:
  // driver: an SDL video driver by name ("x11", "wayland", "offscreen"), or
  // empty for SDL's own choice, which needs a display (DISPLAY or
  // WAYLAND_DISPLAY) unless SDL_VIDEODRIVER names a driver. Error 5 saying
  // why when there is no display, one is open already, or SDL fails.
  explicit SdlVideo(const std::string& driver);
  ~SdlVideo();
  SdlVideo(const SdlVideo&) = delete;
  SdlVideo& operator=(const SdlVideo&) = delete;

  // The driver SDL runs ("x11", ...).
  const std::string& Driver() const { return driver_; }

 private:
  std::string driver_;
};

}  // namespace velt
