#pragma once

#include <gtest/gtest.h>

#include "velt/foundation/ColorScheme.hpp"

namespace velt::test {

// All twelve entries equal.
inline ::testing::AssertionResult SameScheme(const ColorScheme& actual,
                                             const ColorScheme& expected) {
  for (int i = 0; i < ColorScheme::kCount; ++i) {
    if (actual[i] != expected[i])
      return ::testing::AssertionFailure() << "entry " << i << " is 0x" << std::hex << actual[i]
                                           << ", expected 0x" << expected[i];
  }
  return ::testing::AssertionSuccess();
}

}  // namespace velt::test
