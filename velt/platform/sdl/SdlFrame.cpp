#include "velt/platform/sdl/SdlFrame.hpp"

#include <SDL.h>

#include <algorithm>
#include <cstring>

#include "velt/platform/Error.hpp"

namespace velt {

namespace {

// The canvas layout, 0x00RRGGBB in a 32-bit word.
constexpr uint32_t kCanvasFormat = SDL_PIXELFORMAT_RGB888;

uint32_t flagsOf(SdlFrame::Kind kind) {
  if (kind == SdlFrame::Kind::Form) return SDL_WINDOW_HIDDEN;
  // A pop-up menu window is not managed by the desktop on X11: it shows where
  // it is put and does not take the activation from the form.
  return SDL_WINDOW_HIDDEN | SDL_WINDOW_BORDERLESS | SDL_WINDOW_ALWAYS_ON_TOP |
         SDL_WINDOW_SKIP_TASKBAR | SDL_WINDOW_POPUP_MENU;
}

// SDL windows are at least one pixel wide and high.
int atLeastOne(int32_t value) {
  return std::max<int32_t>(1, value);
}

bool hasArea(const RectL& rect) {
  return rect.Width() > 0 && rect.Height() > 0;
}

class SurfaceLock {
 public:
  explicit SurfaceLock(SDL_Surface* surface) : surface_(surface) {
    locked_ = SDL_MUSTLOCK(surface_) && SDL_LockSurface(surface_) == 0;
  }
  ~SurfaceLock() {
    if (locked_) SDL_UnlockSurface(surface_);
  }
  SurfaceLock(const SurfaceLock&) = delete;
  SurfaceLock& operator=(const SurfaceLock&) = delete;

 private:
  SDL_Surface* surface_;
  bool locked_ = false;
};

}  // namespace

SdlFrame::SdlFrame(Kind kind, const std::string& caption, const RectL& rect) : rect_(rect) {
  window_ = SDL_CreateWindow(caption.c_str(), rect.Left, rect.Top, atLeastOne(rect.Width()),
                             atLeastOne(rect.Height()), flagsOf(kind));
  if (!window_)
    throw Error(errInvalidProcedureCall, "SdlWindowSystem: SDL could not make the window '" +
                                             caption + "': " + SDL_GetError());
  id_ = SDL_GetWindowID(window_);
}

SdlFrame::~SdlFrame() {
  SDL_DestroyWindow(window_);
}

void SdlFrame::Place(const RectL& rect) {
  rect_ = rect;
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
  SDL_GetWindowPosition(window_, &x, &y);
  SDL_GetWindowSize(window_, &width, &height);
  if (width != atLeastOne(rect.Width()) || height != atLeastOne(rect.Height()))
    SDL_SetWindowSize(window_, atLeastOne(rect.Width()), atLeastOne(rect.Height()));
  if (x != rect.Left || y != rect.Top) SDL_SetWindowPosition(window_, rect.Left, rect.Top);
  mapOrUnmap();
}

void SdlFrame::Caption(const std::string& text) {
  const char* current = SDL_GetWindowTitle(window_);
  if (text != (current ? current : "")) SDL_SetWindowTitle(window_, text.c_str());
}

void SdlFrame::Show(bool visible) {
  shown_ = visible;
  mapOrUnmap();
}

void SdlFrame::mapOrUnmap() {
  const bool map = shown_ && hasArea(rect_);
  if (map == mapped_) return;
  mapped_ = map;
  if (map) {
    SDL_ShowWindow(window_);
  } else {
    SDL_HideWindow(window_);
  }
  drawn_.clear();  // a newly mapped window shows nothing of what was drawn
  drawnWidth_ = drawnHeight_ = 0;
}

bool SdlFrame::Draw(const Canvas& image, bool force) {
  const int32_t width = image.ScaleWidth();
  const int32_t height = image.ScaleHeight();
  const size_t count = static_cast<size_t>(width) * static_cast<size_t>(height);
  const bool same = width == drawnWidth_ && height == drawnHeight_ && drawn_.size() == count &&
                    std::memcmp(drawn_.data(), image.Pixels(), count * sizeof(uint32_t)) == 0;
  if ((same && !force) || !mapped_) return false;
  SDL_Surface* surface = SDL_GetWindowSurface(window_);
  if (!surface) return false;
  const int copyWidth = std::min<int>(width, surface->w);
  const int copyHeight = std::min<int>(height, surface->h);
  if (copyWidth > 0 && copyHeight > 0) {
    SurfaceLock lock(surface);
    SDL_ConvertPixels(copyWidth, copyHeight, kCanvasFormat, image.Pixels(),
                      width * static_cast<int>(sizeof(uint32_t)), surface->format->format,
                      surface->pixels, surface->pitch);
  }
  if (SDL_UpdateWindowSurface(window_) != 0) return false;
  drawn_.assign(image.Pixels(), image.Pixels() + count);
  drawnWidth_ = width;
  drawnHeight_ = height;
  return true;
}

Canvas SdlFrame::Read() const {
  SDL_Surface* surface = SDL_GetWindowSurface(window_);
  if (!surface) return Canvas(0, 0);
  Canvas image(surface->w, surface->h);
  {
    SurfaceLock lock(surface);
    SDL_ConvertPixels(surface->w, surface->h, surface->format->format, surface->pixels,
                      surface->pitch, kCanvasFormat, image.Pixels(),
                      surface->w * static_cast<int>(sizeof(uint32_t)));
  }
  uint32_t* pixels = image.Pixels();
  for (size_t i = 0, n = static_cast<size_t>(surface->w) * surface->h; i < n; ++i)
    pixels[i] &= 0x00FFFFFF;
  return image;
}

}  // namespace velt
