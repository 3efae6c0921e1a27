#include "velt/platform/Picture.hpp"

#include <atomic>
#include <string>

#include "velt/platform/Error.hpp"

namespace velt {

namespace {

void checkSize(int32_t width, int32_t height) {
  if (width < 0 || height < 0)
    throw Error(errInvalidProcedureCall, "Picture size " + std::to_string(width) + "x" +
                                             std::to_string(height) + " is negative");
}

}  // namespace

Picture::Picture(int32_t width, int32_t height)
    : width_(width), height_(height), handle_(nextHandle()) {
  checkSize(width, height);
  pixels_.assign(static_cast<size_t>(width) * static_cast<size_t>(height), 0u);
}

Picture::Picture(int32_t width, int32_t height, std::vector<uint32_t> pixels)
    : width_(width), height_(height), pixels_(std::move(pixels)), handle_(nextHandle()) {
  checkSize(width, height);
  if (pixels_.size() != static_cast<size_t>(width) * static_cast<size_t>(height))
    throw Error(errInvalidProcedureCall, "Picture of " + std::to_string(width) + "x" +
                                             std::to_string(height) + " given " +
                                             std::to_string(pixels_.size()) + " pixels");
}

Picture::Picture(const Picture& other)
    : Object(other),
      width_(other.width_),
      height_(other.height_),
      pixels_(other.pixels_),
      handle_(nextHandle()) {}

Picture& Picture::operator=(const Picture& other) {
  if (this != &other) {
    width_ = other.width_;
    height_ = other.height_;
    pixels_ = other.pixels_;
  }
  return *this;
}

uint32_t Picture::Pixel(int32_t x, int32_t y) const {
  if (x < 0 || y < 0 || x >= width_ || y >= height_) return 0;
  return pixels_[static_cast<size_t>(y) * width_ + x];
}

void Picture::Pixel(int32_t x, int32_t y, uint32_t argb) {
  if (x < 0 || y < 0 || x >= width_ || y >= height_) return;
  pixels_[static_cast<size_t>(y) * width_ + x] = argb;
}

uint32_t Picture::nextHandle() {
  static std::atomic<uint32_t> counter{0x1000};
  return counter.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace velt
