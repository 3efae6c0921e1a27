#include "velt/controls/range/RangeModel.hpp"

#include <algorithm>
#include <limits>
#include <utility>

#include "velt/platform/Error.hpp"

namespace velt {

namespace {

constexpr int32_t kLongMin = std::numeric_limits<int32_t>::min();
constexpr int32_t kLongMax = std::numeric_limits<int32_t>::max();

}  // namespace

RangeModel::RangeModel(std::string owner, Width width, int32_t min, int32_t max, int32_t value)
    : owner_(std::move(owner)), width_(width), min_(min), max_(max), value_(value) {}

bool RangeModel::SetMin(int32_t min) {
  if (min >= max_) {
    if (max_ == kLongMin)
      throw Error(errOverflow, owner_ + ".Min: no value lies below Max " + std::to_string(max_));
    min = max_ - 1;
  }
  checkWidth(min, max_, "Min");
  min_ = min;
  if (value_ >= min_) return false;
  value_ = min_;
  return true;
}

bool RangeModel::SetMax(int32_t max) {
  if (max <= min_) {
    if (min_ == kLongMax)
      throw Error(errOverflow, owner_ + ".Max: no value lies above Min " + std::to_string(min_));
    max = min_ + 1;
  }
  checkWidth(min_, max, "Max");
  max_ = max;
  if (value_ <= max_) return false;
  value_ = max_;
  return true;
}

int32_t RangeModel::Clamp(int32_t value) const {
  return std::clamp(value, min_, max_);
}

void RangeModel::Reset(int32_t min, int32_t max, int32_t value) {
  min_ = min;
  max_ = max;
  value_ = value;
}

void RangeModel::Load(int32_t min, int32_t max, int32_t value) {
  if (max <= min) {
    if (min != kLongMax)
      max = min + 1;
    else if (max != kLongMin)
      min = max - 1;
    else
      throw Error(errOverflow, owner_ + ".ReadProperties: no range fits Min " +
                                   std::to_string(min) + " and Max " + std::to_string(max));
  }
  checkWidth(min, max, "ReadProperties");
  Reset(min, max, std::clamp(value, min, max));
}

// A control with thumb arithmetic on Max - Min needs it as a 32-bit number.
void RangeModel::checkWidth(int32_t min, int32_t max, const char* setter) const {
  if (width_ == Width::FitsLong && static_cast<int64_t>(max) - min > kLongMax)
    throw Error(errOverflow, owner_ + "." + setter + ": the range " + std::to_string(min) + ".." +
                                 std::to_string(max) + " is wider than 32 bits");
}

}  // namespace velt
