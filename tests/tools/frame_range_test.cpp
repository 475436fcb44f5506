#include "tools/kpf/frames/frame_range.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace {

using KPF_TOOL::FrameRange;

constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();

TEST(FrameRange, WithoutBoundsHoldsEverything) {
  const FrameRange all;
  EXPECT_EQ(all.first(), 0U);
  EXPECT_TRUE(all.holds(0));
  EXPECT_TRUE(all.holds(kMost));
  EXPECT_FALSE(all.endsBefore(kMost));
  EXPECT_EQ(all.framesOf(0), 0U);
  EXPECT_EQ(all.framesOf(7), 7U);
}

TEST(FrameRange, BothBoundsAreIncluded) {
  const FrameRange range{3, 5};
  EXPECT_EQ(range.first(), 3U);
  EXPECT_FALSE(range.holds(2));
  EXPECT_TRUE(range.holds(3));
  EXPECT_TRUE(range.holds(5));
  EXPECT_FALSE(range.holds(6));
  EXPECT_EQ(range.framesOf(100), 3U);
}

TEST(FrameRange, EndsBehindItsLastFrameOnly) {
  const FrameRange range{3, 5};
  EXPECT_FALSE(range.endsBefore(0));  // not there yet
  EXPECT_FALSE(range.endsBefore(5));
  EXPECT_TRUE(range.endsBefore(6));
}

TEST(FrameRange, OneFrame) {
  const FrameRange range{4, 4};
  EXPECT_TRUE(range.holds(4));
  EXPECT_EQ(range.framesOf(5), 1U);
  EXPECT_EQ(range.framesOf(4), 0U);
}

TEST(FrameRange, IsCutAtTheLastFrameThatIsThere) {
  EXPECT_EQ((FrameRange{3, 50}.framesOf(10)), 7U);
  EXPECT_EQ((FrameRange{3, {}}.framesOf(10)), 7U);
  EXPECT_EQ((FrameRange{9, {}}.framesOf(10)), 1U);
  EXPECT_EQ((FrameRange{{}, 2}.framesOf(10)), 3U);
}

TEST(FrameRange, MayAskForNothing) {
  EXPECT_EQ((FrameRange{10, {}}.framesOf(10)), 0U);
  EXPECT_EQ((FrameRange{5, 4}.framesOf(10)), 0U);
  EXPECT_EQ((FrameRange{kMost, kMost}.framesOf(10)), 0U);
}

TEST(FrameRange, TheLargestNumberDoesNotWrap) {
  EXPECT_EQ((FrameRange{0, kMost}.framesOf(10)), 10U);
  EXPECT_EQ((FrameRange{0, kMost}.framesOf(kMost)), kMost);
}

}  // namespace
