#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "velt/platform/Canvas.hpp"
#include "velt/platform/Geometry.hpp"

struct SDL_Window;

namespace velt {

// One SDL window showing an image: a form's client area or a pop-up. The
// window keeps a copy of what it drew last, so drawing the same image again
// costs a comparison and nothing goes to the screen.
class SdlFrame {
 public:
  enum class Kind {
    Form,   // a normal window with a title bar
    Popup,  // borderless, above the others, outside the task bar, never activated
  };

  // A hidden window at the rectangle (screen pixels). Error 5 with SDL's
  // reason when SDL cannot make it.
  SdlFrame(Kind kind, const std::string& caption, const RectL& rect);
  ~SdlFrame();
  SdlFrame(const SdlFrame&) = delete;
  SdlFrame& operator=(const SdlFrame&) = delete;

  SDL_Window* Window() const { return window_; }
  uint32_t Id() const { return id_; }

  // Position and size; a window of no width or height is kept off the screen.
  void Place(const RectL& rect);
  void Caption(const std::string& text);
  void Show(bool visible);
  // Asked to show (it may still be off the screen for having no area).
  bool Shown() const { return shown_; }
  // Whether the window is mapped on the screen now.
  bool OnScreen() const { return mapped_; }

  // Copies the image to the window when it differs from the one drawn last
  // or when forced (the window was uncovered, say). Returns whether it drew.
  bool Draw(const Canvas& image, bool force);
  // The pixels of the window as drawn (0x00RRGGBB), its size.
  Canvas Read() const;

 private:
  void mapOrUnmap();

  SDL_Window* window_ = nullptr;
  uint32_t id_ = 0;
  RectL rect_;
  bool shown_ = false;
  bool mapped_ = false;
  std::vector<uint32_t> drawn_;
  int32_t drawnWidth_ = 0;
  int32_t drawnHeight_ = 0;
};

}  // namespace velt
