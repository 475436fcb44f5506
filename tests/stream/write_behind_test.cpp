// What the system is asked while a file grows, and in what order.
#include "stream/write_behind.h"

#include <cstdint>
#include <string>

#include <gtest/gtest.h>

#include "tests/stream/scripted_page_cache.h"

namespace {

using VLM_KPF::WriteBehind;
constexpr std::uint64_t kMiB = ScriptedPageCache::kMiB;
constexpr int kFile = 5;
constexpr int kNext = 6;
constexpr int kKept = kFile + ScriptedPageCache::kKept;

class WriteBehindTest : public testing::Test {
 protected:
  /// The file grows from one whole MiB to another in steps of half a MiB.
  std::string grow(int file, std::uint64_t from, std::uint64_t to) {
    for (std::uint64_t half = 2 * from + 1; half <= 2 * to; ++half) {
      behind.written(file, half * kMiB / 2);
    }
    return cache.said();
  }

  ScriptedPageCache cache;
  WriteBehind behind{cache};
};

TEST_F(WriteBehindTest, EveryFullChunkIsStartedOnce) {
  EXPECT_EQ(grow(kFile, 0, 7), "");
  EXPECT_EQ(grow(kFile, 7, 15), "start 5 0-8\n");
  EXPECT_EQ(grow(kFile, 15, 16), "start 5 8-16\n");
}

TEST_F(WriteBehindTest, WhatLiesAWindowBehindIsDroppedAfterTheDeviceHasNewWork) {
  EXPECT_EQ(grow(kFile, 0, 39), "start 5 0-8\nstart 5 8-16\nstart 5 16-24\nstart 5 24-32\n");
  EXPECT_EQ(grow(kFile, 39, 40), "start 5 32-40\ndrop 5 0-8\n");
  EXPECT_EQ(grow(kFile, 40, 56), "start 5 40-48\ndrop 5 8-16\nstart 5 48-56\ndrop 5 16-24\n");
}

TEST_F(WriteBehindTest, ChunksEndAtTheirBordersWhateverTheRecordsSize) {
  behind.written(kFile, 11 * kMiB + 16);
  EXPECT_EQ(cache.said(), "start 5 0-8\n");
  behind.written(kFile, 25 * kMiB + 32);
  EXPECT_EQ(cache.said(), "start 5 8-24\n");
}

TEST_F(WriteBehindTest, NobodyWaitsForWhatWasStartedInTheSameCall) {
  behind.written(kFile, 64 * kMiB);
  EXPECT_EQ(cache.said(), "start 5 0-64\n");
  behind.written(kFile, 128 * kMiB);
  EXPECT_EQ(cache.said(), "start 5 64-128\ndrop 5 0-64\n");
}

TEST_F(WriteBehindTest, TheWindowReachesBackIntoTheFileBefore) {
  behind.written(kFile, 48 * kMiB);
  behind.written(kFile, 50 * kMiB + 7);
  cache.said();
  behind.nextFile(kFile);
  EXPECT_EQ(cache.said(), "start 5 48-50+\nkeep 5\n");
  EXPECT_EQ(grow(kNext, 0, 8), "start 6 0-8\ndrop 1005 0-24\n");
  EXPECT_EQ(grow(kNext, 8, 24), "start 6 8-16\ndrop 1005 24-32\nstart 6 16-24\ndrop 1005 32-40\n");
  EXPECT_EQ(grow(kNext, 24, 32), "start 6 24-32\ndrop 1005 40-50+\nrelease 1005\n");
  EXPECT_EQ(grow(kNext, 32, 40), "start 6 32-40\ndrop 6 0-8\n");
}

TEST_F(WriteBehindTest, AFileBelowTheWindowKeepsItsPages) {
  grow(kFile, 0, 31);
  behind.nextFile(kFile);
  EXPECT_EQ(cache.said(), "");
  EXPECT_EQ(grow(kNext, 0, 8), "start 6 0-8\n");
}

TEST_F(WriteBehindTest, ASmallFileEndsTheWaitForTheOneBefore) {
  grow(kFile, 0, 40);
  behind.nextFile(kFile);
  grow(kNext, 0, 8);
  behind.nextFile(kNext);
  EXPECT_EQ(cache.said(), "release " + std::to_string(kKept) + "\n");
}

TEST_F(WriteBehindTest, WithoutADescriptorTheOldFilesPagesStay) {
  cache.full = true;
  grow(kFile, 0, 40);
  behind.nextFile(kFile);
  EXPECT_EQ(cache.said(), "keep 5\n");
  EXPECT_EQ(grow(kNext, 0, 16), "start 6 0-8\nstart 6 8-16\n");
}

TEST_F(WriteBehindTest, TheEndOfTheRecordingReleasesAndForgets) {
  grow(kFile, 0, 40);
  behind.nextFile(kFile);
  cache.said();
  behind.finish();
  EXPECT_EQ(cache.said(), "release 1005\n");
  behind.finish();
  EXPECT_EQ(grow(kNext, 0, 8), "start 6 0-8\n");
}

TEST(WriteBehind, ReleasesWhenItEnds) {
  ScriptedPageCache cache;
  {
    WriteBehind behind(cache);
    behind.written(kFile, 40 * kMiB);
    behind.nextFile(kFile);
    cache.said();
  }
  EXPECT_EQ(cache.said(), "release 1005\n");
}

}  // namespace
