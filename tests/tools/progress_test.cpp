#include "tools/kpf/terminal/progress.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdint>

namespace {

using namespace KPF_TOOL;

TEST(ProgressText, TellsCountRateAndRemainingTime) {
  EXPECT_EQ(progressText(50, 200, "frames", 2), "50 of 200 frames, 25 frames/s, 0:06 left");
  EXPECT_EQ(progressText(1, 2, "MB", 0.5), "1 of 2 MB, 2 MB/s, 0:00 left");
}

TEST(ProgressText, MinutesAreNotWrapped) {
  EXPECT_EQ(progressText(1, 61, "frames", 1), "1 of 61 frames, 1 frames/s, 1:00 left");
  EXPECT_EQ(progressText(1, 7201, "frames", 1), "1 of 7201 frames, 1 frames/s, 120:00 left");
}

TEST(ProgressText, AtTheEndNothingIsLeft) {
  EXPECT_EQ(progressText(200, 200, "frames", 4), "200 of 200 frames, 50 frames/s, 0:00 left");
}

TEST(ProgressText, WithoutATotalThereIsNoRemainingTime) {
  EXPECT_EQ(progressText(50, 0, "frames", 2), "50 frames, 25 frames/s");
}

TEST(ProgressText, ATotalThatWasTooSmallIsNotRepeated) {
  EXPECT_EQ(progressText(51, 50, "frames", 3), "51 frames, 17 frames/s");
}

TEST(ProgressText, BeforeTheFirstUnitNobodyKnowsHowLong) {
  EXPECT_EQ(progressText(0, 9, "MB", 0.2), "0 of 9 MB, 0 MB/s");
}

/// What is written to standard error while it is a file and no terminal.
TEST(Progress, IsSilentWhereNobodyLooks) {
  if (isatty(STDERR_FILENO) != 0) GTEST_SKIP() << "run by hand on a terminal";
  testing::internal::CaptureStderr();
  {
    Progress progress(false, 3);
    for (std::uint64_t n = 0; n < 3; ++n) progress.show(n);
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

}  // namespace
