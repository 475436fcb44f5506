#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

#include "memory/vx_frame_memory.h"

namespace {

using VX_FRAME_MEMORY::FrameMemory;
using VX_FRAME_MEMORY::SpareFrame;

constexpr std::size_t kLarge = 3 << 20;  // bytes, far above what an allocator keeps to itself

SpareFrame frames;

TEST(FrameMemory, NoBytesAreStillAnArray) { EXPECT_NE(frames.allocate(0), nullptr); }

TEST(FrameMemory, NextLargeFrameOfTheSizeGetsTheReleasedBlock) {
  FrameMemory first = frames.allocate(kLarge);
  const void* const block = first.get();
  first.reset();
  EXPECT_EQ(frames.allocate(kLarge).get(), block);
}

TEST(FrameMemory, BlocksInUseAreApart) {
  const FrameMemory first = frames.allocate(kLarge);
  const FrameMemory second = frames.allocate(kLarge);
  ASSERT_NE(first.get(), second.get());
  std::memset(first.get(), 1, kLarge);
  std::memset(second.get(), 2, kLarge);
  EXPECT_EQ(first[kLarge - 1], 1);
  EXPECT_EQ(second[0], 2);
}

TEST(FrameMemory, AnotherSizeGetsABlockOfItsOwn) {
  frames.allocate(kLarge).reset();
  const FrameMemory larger = frames.allocate(2 * kLarge);
  std::memset(larger.get(), 3, 2 * kLarge);  // a sanitizer sees where this is too small
  EXPECT_EQ(larger[2 * kLarge - 1], 3);
}

TEST(FrameMemory, PurposesDoNotTakeEachOthersBlocks) {
  SpareFrame others;
  FrameMemory first = frames.allocate(kLarge);
  const void* const block = first.get();
  first.reset();
  EXPECT_NE(others.allocate(kLarge).get(), block);
  EXPECT_EQ(frames.allocate(kLarge).get(), block);
}

}  // namespace
