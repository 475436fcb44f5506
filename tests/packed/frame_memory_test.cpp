#include <gtest/gtest.h>

#include <cstring>

#include "packed/vx_frame_memory.h"

namespace {

using VX_KPF_PACKED::allocateFrameMemory;
using VX_KPF_PACKED::FrameMemory;

constexpr std::size_t kLarge = 3 << 20;  // bytes, far above what an allocator keeps to itself

TEST(FrameMemory, NoBytesAreStillAnArray) { EXPECT_NE(allocateFrameMemory(0), nullptr); }

TEST(FrameMemory, NextLargeFrameOfTheSizeGetsTheReleasedBlock) {
  FrameMemory first = allocateFrameMemory(kLarge);
  const void* const block = first.get();
  first.reset();
  EXPECT_EQ(allocateFrameMemory(kLarge).get(), block);
}

TEST(FrameMemory, BlocksInUseAreApart) {
  const FrameMemory first = allocateFrameMemory(kLarge);
  const FrameMemory second = allocateFrameMemory(kLarge);
  ASSERT_NE(first.get(), second.get());
  std::memset(first.get(), 1, kLarge);
  std::memset(second.get(), 2, kLarge);
  EXPECT_EQ(first[kLarge - 1], 1);
  EXPECT_EQ(second[0], 2);
}

TEST(FrameMemory, AnotherSizeGetsABlockOfItsOwn) {
  allocateFrameMemory(kLarge).reset();
  const FrameMemory larger = allocateFrameMemory(2 * kLarge);
  std::memset(larger.get(), 3, 2 * kLarge);  // a sanitizer sees where this is too small
  EXPECT_EQ(larger[2 * kLarge - 1], 3);
}

}  // namespace
