#pragma once

#include <cstdint>
#include <string>

namespace velt {

// Min, Max and Value of a range control, with the corrections the controls'
// setters share: a Min at or above Max becomes Max - 1, a Max at or below Min
// becomes Min + 1 (error 6 when that neighbour does not exist), and the new end
// pulls Value into the range. Whether Max - Min has to fit 32 bits, and whether
// Value set on its own is kept inside the range, is each control's choice.
class RangeModel {
 public:
  enum class Width {
    Any,       // Max - Min may be any difference of two Longs
    FitsLong,  // error 6 when Max - Min does not fit 32 bits
  };

  // `owner` names the control in error messages ("veltSlider").
  RangeModel(std::string owner, Width width, int32_t min, int32_t max, int32_t value);

  int32_t Min() const { return min_; }
  int32_t Max() const { return max_; }
  int32_t Value() const { return value_; }

  // Each returns true when Value had to move into the new range.
  bool SetMin(int32_t min);
  bool SetMax(int32_t max);
  void SetValue(int32_t value) { value_ = value; }  // as given
  int32_t Clamp(int32_t value) const;

  // All three as given, unchecked.
  void Reset(int32_t min, int32_t max, int32_t value);
  // A stored set with the setters' corrections, so Min < Max and Value inside
  // hold for it too: Max becomes Min + 1 (Min becomes Max - 1 when Min is the
  // largest Long).
  void Load(int32_t min, int32_t max, int32_t value);

 private:
  void checkWidth(int32_t min, int32_t max, const char* setter) const;

  std::string owner_;
  Width width_;
  int32_t min_;
  int32_t max_;
  int32_t value_;
};

}  // namespace velt
