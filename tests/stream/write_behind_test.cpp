// What the system is asked while a file grows, and in what order.
#include "stream/write_behind.h"

#include <cstdint>
#include <string>

#include <gtest/gtest.h>

#include "tests/stream/scripted_page_cache.h"

namespace {

using VLM_KPF::PageCache;
using VLM_KPF::WriteBehind;
constexpr std::uint64_t kMiB = ScriptedPageCache::kMiB;
constexpr int kFile = 5;
constexpr int kNext = 6;
constexpr int kKept = kFile + ScriptedPageCache::kKept;

class WriteBehindTest : public testing::Test {
 protected:
  /// The file grows from one whole MiB to another by records of half a MiB.
  std::string grow(int file, std::uint64_t from, std::uint64_t to) {
    for (std::uint64_t half = 2 * from + 1; half <= 2 * to; ++half) add(file, half * kMiB / 2);
    return cache.said();
  }

  /// One record that reaches up to byte `end`.
  void add(int file, std::uint64_t end) {
    behind.makeRoom(file);
    behind.written(file, end);
  }

  ScriptedPageCache cache;
  WriteBehind behind{cache};
};

TEST_F(WriteBehindTest, EveryFullChunkIsStartedOnce) {
  EXPECT_EQ(grow(kFile, 0, 1), "");
  EXPECT_EQ(grow(kFile, 1, 3), "start 5 0-2\n");
  EXPECT_EQ(grow(kFile, 3, 6), "start 5 2-4\nstart 5 4-6\n");
}

TEST_F(WriteBehindTest, WhatLiesAWindowBehindIsDroppedBeforeNewPagesAreTaken) {
  EXPECT_EQ(grow(kFile, 0, 10),
            "start 5 0-2\nstart 5 2-4\nstart 5 4-6\nstart 5 6-8\nstart 5 8-10\n");
  behind.makeRoom(kFile);
  EXPECT_EQ(cache.said(), "drop 5 0-2\n");
  behind.makeRoom(kFile);
  EXPECT_EQ(grow(kFile, 10, 12), "start 5 10-12\n");
  EXPECT_EQ(grow(kFile, 12, 14), "drop 5 0-4\nstart 5 12-14\n");
}

TEST_F(WriteBehindTest, PiecesAcrossTheLastBorderGoWithTheNext) {
  grow(kFile, 0, 30);
  behind.makeRoom(kFile);
  EXPECT_EQ(cache.said(), "drop 5 12-22\n");
}

TEST_F(WriteBehindTest, ChunksEndAtTheirBordersWhateverTheRecordsSize) {
  add(kFile, 5 * kMiB + 16);
  EXPECT_EQ(cache.said(), "start 5 0-4\n");
  add(kFile, 11 * kMiB + 32);
  EXPECT_EQ(cache.said(), "start 5 4-10\n");
  add(kFile, 17 * kMiB);
  EXPECT_EQ(cache.said(), "drop 5 0-2\nstart 5 10-16\n");
}

TEST_F(WriteBehindTest, NobodyWaitsForTheNewestRecord) {
  add(kFile, 64 * kMiB);
  EXPECT_EQ(cache.said(), "start 5 0-64\n");
  add(kFile, 128 * kMiB);
  EXPECT_EQ(cache.said(), "start 5 64-128\n");
  add(kFile, 192 * kMiB);
  EXPECT_EQ(cache.said(), "drop 5 0-64\nstart 5 128-192\n");
}

TEST_F(WriteBehindTest, TheWindowReachesBackIntoTheFileBefore) {
  grow(kFile, 0, 48);
  add(kFile, 49 * kMiB + 7);
  cache.said();
  behind.nextFile(kFile);
  EXPECT_EQ(cache.said(), "start 5 48-49+\nkeep 5\n");
  EXPECT_EQ(grow(kNext, 0, 4), "drop 1005 32-42\nstart 6 0-2\ndrop 1005 34-44\nstart 6 2-4\n");
  EXPECT_EQ(grow(kNext, 4, 8), "drop 1005 36-46\nstart 6 4-6\ndrop 1005 38-48\nstart 6 6-8\n");
  EXPECT_EQ(grow(kNext, 8, 11), "drop 1005 40-49+\nrelease 1005\nstart 6 8-10\ndrop 6 0-2\n");
}

TEST_F(WriteBehindTest, TheNewestRecordStaysWhenTheNextFileBegins) {
  add(kFile, 64 * kMiB);
  add(kFile, 128 * kMiB);
  behind.nextFile(kFile);
  cache.said();
  add(kNext, 64 * kMiB);
  EXPECT_EQ(cache.said(), "drop 1005 0-64\nstart 6 0-64\n");
  behind.makeRoom(kNext);
  EXPECT_EQ(cache.said(), "drop 1005 56-128\nrelease 1005\n");
}

TEST_F(WriteBehindTest, AFileThatStaysSmallKeepsItsPages) {
  behind.begin(WriteBehind::kSmall - 1);
  EXPECT_EQ(grow(kFile, 0, 31).find("drop"), std::string::npos);
  behind.nextFile(kFile);
  EXPECT_EQ(cache.said(), "");
  behind.begin(WriteBehind::kSmall);
  EXPECT_NE(grow(kNext, 0, 31).find("drop 6"), std::string::npos);
}

TEST_F(WriteBehindTest, ASmallFileGivesBackThePagesOfTheOneBefore) {
  grow(kFile, 0, 40);
  behind.nextFile(kFile);
  behind.begin(0);
  const std::string said = grow(kNext, 0, 12);
  EXPECT_NE(said.find("drop 1005"), std::string::npos);
  EXPECT_NE(said.find("release 1005"), std::string::npos);
  EXPECT_EQ(said.find("drop 6"), std::string::npos);
}

TEST_F(WriteBehindTest, AShortFileEndsTheWaitForTheOneBefore) {
  grow(kFile, 0, 40);
  behind.nextFile(kFile);
  grow(kNext, 0, 4);
  behind.nextFile(kNext);
  EXPECT_EQ(cache.said(), "release " + std::to_string(kKept) + "\n");
}

TEST_F(WriteBehindTest, WithoutADescriptorTheOldFilesPagesStay) {
  cache.full = true;
  grow(kFile, 0, 40);
  behind.nextFile(kFile);
  EXPECT_EQ(cache.said(), "keep 5\n");
  EXPECT_EQ(grow(kNext, 0, 4), "start 6 0-2\nstart 6 2-4\n");
}

TEST_F(WriteBehindTest, TheEndOfTheRecordingReleasesAndForgets) {
  grow(kFile, 0, 40);
  behind.nextFile(kFile);
  cache.said();
  behind.finish();
  EXPECT_EQ(cache.said(), "release 1005\n");
  behind.finish();
  EXPECT_EQ(grow(kNext, 0, 2), "start 6 0-2\n");
}

TEST_F(WriteBehindTest, TheFirstRecordsHaveTheirPagesBeforehand) {
  behind.prepare("data", 4 * kMiB, WriteBehind::kSmall);
  EXPECT_EQ(cache.said(), "take data 0-12\n");
  add(kFile, 4 * kMiB);
  EXPECT_EQ(cache.said(), "hold 99 0-8\nstart 5 0-4\n");
  add(kFile, 8 * kMiB);
  cache.said();
  add(kFile, 12 * kMiB);
  EXPECT_EQ(cache.said(), "hold 99 0-0\nrelease 99\nstart 5 8-12\n");
  add(kFile, 16 * kMiB);
  EXPECT_EQ(cache.said(), "drop 5 0-4\nstart 5 12-16\n");
}

TEST_F(WriteBehindTest, RecordsWithPagesBeforehandAreWrittenPieceByPiece) {
  EXPECT_EQ(behind.atOnce(16, 4 * kMiB), 4 * kMiB);
  behind.prepare("data", 4 * kMiB, WriteBehind::kSmall);
  EXPECT_EQ(behind.atOnce(16, 4 * kMiB), PageCache::kPiece - 16);
  EXPECT_EQ(behind.atOnce(PageCache::kPiece, 4 * kMiB), PageCache::kPiece);
  EXPECT_EQ(behind.atOnce(5 * PageCache::kPiece, 100), 100U);
}

TEST_F(WriteBehindTest, SmallFilesAndSmallOrHugeRecordsTakeNoPagesBeforehand) {
  behind.prepare("data", 4 * kMiB, WriteBehind::kSmall - 1);
  EXPECT_EQ(cache.said(), "");
  behind.prepare("data", WriteBehind::kLargeRecord - 1, WriteBehind::kSmall);
  behind.prepare("data", WriteBehind::kHugeRecord + 1, 1024 * kMiB);
  EXPECT_EQ(cache.said(), "");
  behind.prepare("data", WriteBehind::kLargeRecord, WriteBehind::kSmall);
  EXPECT_EQ(cache.said(), "take data 0-10+\n");
}

TEST_F(WriteBehindTest, WithoutPagesBeforehandTheFirstRecordsTakeFreshOnes) {
  cache.full = true;
  behind.prepare("data", 4 * kMiB, WriteBehind::kSmall);
  EXPECT_EQ(cache.said(), "take data 0-12\n");
  EXPECT_EQ(behind.atOnce(16, 4 * kMiB), 4 * kMiB);
  add(kFile, 4 * kMiB);
  EXPECT_EQ(cache.said(), "start 5 0-4\n");
}

TEST_F(WriteBehindTest, PagesThatNobodyUsedAreGivenBackAtTheEnd) {
  behind.prepare("data", 4 * kMiB, WriteBehind::kSmall);
  cache.said();
  behind.finish();
  EXPECT_EQ(cache.said(), "release 99\n");
  add(kFile, 4 * kMiB);
  EXPECT_EQ(cache.said(), "start 5 0-4\n");
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
