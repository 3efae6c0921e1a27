#pragma once

#include <cstdint>
#include <optional>

namespace velt {

// Decides when a window system with real windows puts its images on the
// screen: only after something may have changed, and at most once a frame
// however often the controls repaint. Times are the caller's clock in
// milliseconds.
class PresentPacer {
 public:
  static constexpr int32_t kFrameMs = 16;  // about one 60 Hz display frame

  explicit PresentPacer(int32_t frameMs = kFrameMs);  // error 5 below 1

  // Something may have changed since the last present.
  void Invalidate() { dirty_ = true; }
  bool Dirty() const { return dirty_; }
  // Dirty, and a whole frame has passed since the last present (or there was
  // none yet).
  bool Due(int64_t nowMs) const;
  // How long until Due: 0 when due now, nothing while no change waits.
  std::optional<int64_t> WaitMs(int64_t nowMs) const;
  // The windows were brought up to date at nowMs.
  void Presented(int64_t nowMs);

 private:
  int32_t frameMs_;
  bool dirty_ = false;
  std::optional<int64_t> lastMs_;
};

}  // namespace velt
