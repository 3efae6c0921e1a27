#include "velt/platform/sdl/PresentPacer.hpp"

#include <algorithm>
#include <string>

#include "velt/platform/Error.hpp"

namespace velt {

PresentPacer::PresentPacer(int32_t frameMs) : frameMs_(frameMs) {
  if (frameMs < 1)
    throw Error(errInvalidProcedureCall,
                "PresentPacer: a frame of " + std::to_string(frameMs) + " ms is too short");
}

bool PresentPacer::Due(int64_t nowMs) const {
  const std::optional<int64_t> wait = WaitMs(nowMs);
  return wait && *wait == 0;
}

std::optional<int64_t> PresentPacer::WaitMs(int64_t nowMs) const {
  if (!dirty_) return std::nullopt;
  if (!lastMs_) return 0;
  return std::max<int64_t>(0, *lastMs_ + frameMs_ - nowMs);
}

void PresentPacer::Presented(int64_t nowMs) {
  dirty_ = false;
  lastMs_ = nowMs;
}

}  // namespace velt
