#include "velt/platform/SystemColors.hpp"

#include <gtest/gtest.h>

#include "support/ExpectError.hpp"

namespace velt {
namespace {

TEST(SystemColorsTest, ClassicTableAndResolve) {
  SystemColors::Reset();
  EXPECT_EQ(SystemColors::Get(COLOR_BTNFACE), RGB(192, 192, 192));
  EXPECT_EQ(SystemColors::Get(COLOR_HIGHLIGHT), RGB(0, 0, 128));
  EXPECT_EQ(SystemColors::Get(COLOR_WINDOW), 0xFFFFFFu);
  EXPECT_EQ(SystemColors::Get(COLOR_WINDOWTEXT), 0u);
  EXPECT_EQ(SystemColors::Get(24), RGB(255, 255, 225));
  EXPECT_EQ(SystemColors::Get(-1), 0u);
  EXPECT_EQ(SystemColors::Get(SystemColors::kCount), 0u);
  EXPECT_EQ(SystemColors::Resolve(kSystemColorFlag | COLOR_BTNSHADOW), RGB(128, 128, 128));
  EXPECT_EQ(SystemColors::Resolve(0x123456), 0x123456u);
  EXPECT_EQ(SystemColors::Resolve(kSystemColorFlag | 99), 0u);
}

TEST(SystemColorsTest, SetAndReset) {
  SystemColors::Set(COLOR_BTNFACE, 0x00F0F0F0);
  EXPECT_EQ(SystemColors::Resolve(kSystemColorFlag | COLOR_BTNFACE), 0xF0F0F0u);
  EXPECT_EQ(SystemColors::Get(COLOR_BTNSHADOW), RGB(128, 128, 128));
  for (int32_t index : {-1, 31})
    test::errorOf(errInvalidProcedureCall, [&] { SystemColors::Set(index, 0); });
  SystemColors::Reset();
  EXPECT_EQ(SystemColors::Get(COLOR_BTNFACE), 0xC0C0C0u);
  EXPECT_EQ(SystemColors::ClassicDefaults()[COLOR_3DLIGHT], 0xC0C0C0u);
}

}  // namespace
}  // namespace velt
