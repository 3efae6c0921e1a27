// The present pacer: windows go to the screen only after a change, at most
// once a frame.

#include "velt/platform/sdl/PresentPacer.hpp"

#include <gtest/gtest.h>

#include <optional>

#include "velt/platform/Error.hpp"

namespace velt {
namespace {

TEST(PresentPacerTest, NothingIsDueWithoutAChange) {
  PresentPacer pacer;
  EXPECT_FALSE(pacer.Due(0));
  EXPECT_EQ(pacer.WaitMs(1000), std::nullopt);
}

TEST(PresentPacerTest, TheFirstChangeIsDueAtOnce) {
  PresentPacer pacer;
  pacer.Invalidate();
  EXPECT_TRUE(pacer.Due(5));
  EXPECT_EQ(pacer.WaitMs(5), 0);
}

TEST(PresentPacerTest, AChangeSoonAfterAPresentWaitsForTheFrameToEnd) {
  PresentPacer pacer(16);
  pacer.Invalidate();
  pacer.Presented(100);
  EXPECT_FALSE(pacer.Dirty());
  pacer.Invalidate();
  EXPECT_FALSE(pacer.Due(101));
  EXPECT_EQ(pacer.WaitMs(101), 15);
  EXPECT_FALSE(pacer.Due(115));
  EXPECT_TRUE(pacer.Due(116));
  EXPECT_EQ(pacer.WaitMs(130), 0);
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

TEST(PresentPacerTest, ALateChangeIsDueAtOnce) {
  PresentPacer pacer(16);
  pacer.Invalidate();
  pacer.Presented(0);
  pacer.Invalidate();
  EXPECT_TRUE(pacer.Due(500));
}

TEST(PresentPacerTest, AFrameShorterThanAMillisecondIsRefused) {
  try {
    PresentPacer pacer(0);
    FAIL() << "a frame of 0 ms was taken";
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), errInvalidProcedureCall) << error.what();
  }
}

}  // namespace
}  // namespace velt
