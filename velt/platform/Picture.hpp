#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "velt/platform/Object.hpp"

namespace velt {

// An image with straight (not premultiplied) alpha, pixels 0xAARRGGBB row by
// row. Every picture gets a process-unique, non-zero Handle(), the identity an
// icon handle has: copies share nothing, so a copy gets its own handle.
class Picture : public Object {
 public:
  Picture(int32_t width, int32_t height);  // fully transparent; error 5 for negative sizes
  Picture(int32_t width, int32_t height, std::vector<uint32_t> pixels);
  Picture(const Picture& other);
  Picture& operator=(const Picture& other);

  int32_t Width() const { return width_; }
  int32_t Height() const { return height_; }
  uint32_t Handle() const { return handle_; }

  uint32_t Pixel(int32_t x, int32_t y) const;       // 0 outside the image
  void Pixel(int32_t x, int32_t y, uint32_t argb);  // ignored outside the image
  const uint32_t* Pixels() const { return pixels_.data(); }
  uint32_t* Pixels() { return pixels_.data(); }

 private:
  static uint32_t nextHandle();

  int32_t width_;
  int32_t height_;
  std::vector<uint32_t> pixels_;
  uint32_t handle_;
};

}  // namespace velt
