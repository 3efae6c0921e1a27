#include "velt/controls/lists/ComboData.hpp"

#include <atomic>

namespace velt {

namespace {

std::atomic<uint64_t> captionEditCount{0};

}  // namespace

void ComboData::Caption(const std::string& value) {
  caption_ = value;
  captionEditCount.fetch_add(1, std::memory_order_relaxed);
}

uint64_t ComboData::captionEdits() noexcept {
  return captionEditCount.load(std::memory_order_relaxed);
}

}  // namespace velt
