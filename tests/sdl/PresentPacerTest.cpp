// The present pacer: windows go to the screen only after a change, at most
// once a frame.

#include "velt/platform/sdl/PresentPacer.hpp"

#include <gtest/gtest.h>

#include <optional>

#include "support/ExpectError.hpp"

namespace velt {
namespace {

TEST(PresentPacerTest, AChangeIsDueAtOnceThenAtTheEndOfTheFrame) {
  PresentPacer pacer(16);
  EXPECT_FALSE(pacer.Due(0));
  EXPECT_EQ(pacer.WaitMs(1000), std::nullopt) << "nothing waits without a change";
  pacer.Invalidate();
  EXPECT_TRUE(pacer.Due(5)) << "nothing was presented yet";
  EXPECT_EQ(pacer.WaitMs(5), 0);
  pacer.Presented(100);
  EXPECT_FALSE(pacer.Dirty());
  EXPECT_FALSE(pacer.Due(200));
  pacer.Invalidate();
  EXPECT_EQ(pacer.WaitMs(101), 15);
  EXPECT_FALSE(pacer.Due(115));
  EXPECT_TRUE(pacer.Due(116));
  EXPECT_EQ(pacer.WaitMs(500), 0) << "a late change is due at once";
  test::errorOf(errInvalidProcedureCall, [] { PresentPacer pacer(0); });
}

TEST(PresentPacerTest, ManyChangesInOneFrameMakeOnePresent) {
  PresentPacer pacer(16);
  int presents = 0;
  // A control repainting every millisecond for a tenth of a second.
  for (int64_t now = 0; now < 100; ++now) {
    pacer.Invalidate();
    if (pacer.Due(now)) {
      pacer.Presented(now);
      ++presents;
    }
  }
  EXPECT_EQ(presents, 7);  // at 0, 16, 32, 48, 64, 80, 96
  EXPECT_TRUE(pacer.Dirty()) << "the changes after the last present still wait";
}

}  // namespace
}  // namespace velt
