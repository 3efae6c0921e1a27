#include "velt/controls/lists/ComboData.hpp"

#include <atomic>
#include <utility>

namespace velt {

namespace {

std::atomic<uint64_t> captionEditCount{0};

}  // namespace

void ComboData::Caption(const std::string& value) {
  caption_ = value;
  captionEditCount.fetch_add(1, std::memory_order_relaxed);
}

ComboData& ComboData::operator=(const ComboData& other) {
  ComboData copy(other);
  return *this = std::move(copy);
}

ComboData& ComboData::operator=(ComboData&& other) noexcept {
  caption_ = std::move(other.caption_);
  value_ = std::move(other.value_);
  icon_ = other.icon_;
  index_ = other.index_;
  comment_ = std::move(other.comment_);
  key_ = std::move(other.key_);
  captionEditCount.fetch_add(1, std::memory_order_relaxed);
  return *this;
}

uint64_t ComboData::captionEdits() noexcept {
  return captionEditCount.load(std::memory_order_relaxed);
}

}  // namespace velt
