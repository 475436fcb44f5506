#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <cstring>
#include <thread>
#include <vector>

#include "memory/vx_frame_memory.h"

namespace {

using VX_FRAME_MEMORY::FrameMemory;
using VX_FRAME_MEMORY::SpareFrame;

constexpr std::size_t kLarge = 3 << 20;  // bytes, far above what an allocator keeps to itself

constinit SpareFrame frames;

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
  static constinit SpareFrame others;
  FrameMemory first = frames.allocate(kLarge);
  const void* const block = first.get();
  first.reset();
  EXPECT_NE(others.allocate(kLarge).get(), block);
  EXPECT_EQ(frames.allocate(kLarge).get(), block);
}

// Two who are handed one block overwrite each other's mark, and both give the block back.
TEST(FrameMemory, ThreadsAreNeverHandedOneBlock) {
  constexpr int kThreads = 4;
  constexpr int kRounds = 200000;           // the moment in which it could happen is short
  constexpr std::size_t kSize = 128 << 10;  // the smallest that is handed on
  std::atomic<int> strange{0};
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&strange, own = static_cast<unsigned char>(i + 1)] {
      for (int round = 0; round < kRounds; ++round) {
        const FrameMemory frame = frames.allocate(kSize);
        volatile unsigned char* const mark = frame.get() + kSize - 1;
        *mark = own;
        for (int look = 0; look < 10; ++look) strange += *mark != own ? 1 : 0;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(strange, 0);
}

}  // namespace
