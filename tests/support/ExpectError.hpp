#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>

#include "velt/platform/Error.hpp"

namespace velt::test {

// Runs f, expects it to raise velt::Error with the number given, and returns
// the error's description so a test can check what it names.
inline std::string errorOf(int32_t number, const std::function<void()>& f) {
  try {
    f();
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), number) << error.what();
    return error.Description();
  }
  ADD_FAILURE() << "no error " << number << " raised";
  return {};
}

}  // namespace velt::test
