#include "tools/kpf/records/read_behind.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <set>
#include <span>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

#include "tests/support/cached_pages.h"
#include "tests/support/files.h"
#include "tools/kpf/records/data_file.h"

namespace {

using KPF_TOOL::DataFile;
using KPF_TOOL::ReadBehind;

constexpr std::uint64_t kMiB = std::uint64_t{1} << 20;

/// A file whose chunks of 8 MiB are in memory as the test says.
class ScriptedFile : public KPF_TOOL::CachedFile {
 public:
  bool isCached(std::uint64_t offset) const override {
    asked.push_back(offset);
    return cached.contains(offset / (8 * kMiB));
  }
  void forget(std::uint64_t begin, std::uint64_t end) const override {
    forgotten.emplace_back(begin, end);
  }

  std::set<std::uint64_t> cached;
  mutable std::vector<std::uint64_t> asked;
  mutable std::vector<std::pair<std::uint64_t, std::uint64_t>> forgotten;
};

void walk(const ScriptedFile& file, std::uint64_t size, std::uint64_t from = 0) {
  ReadBehind behind;
  for (std::uint64_t at = from; at < size; at += kMiB) behind.reading(file, at, kMiB, size);
}

using Ranges = std::vector<std::pair<std::uint64_t, std::uint64_t>>;

TEST(ReadBehind, GivesBackWhatLiesFourChunksBehind) {
  const ScriptedFile file;
  walk(file, 49 * kMiB);
  EXPECT_EQ(file.forgotten, (Ranges{{0, 8 * kMiB}, {8 * kMiB, 16 * kMiB}}));
}

TEST(ReadBehind, AsksOnceAChunkForItsLastByte) {
  const ScriptedFile file;
  walk(file, 20 * kMiB);
  EXPECT_EQ(file.asked, (std::vector<std::uint64_t>{8 * kMiB - 1, 16 * kMiB - 1, 20 * kMiB - 1}));
}

TEST(ReadBehind, LeavesWhatWasThereBefore) {
  ScriptedFile file;
  file.cached = {1, 3, 6};
  walk(file, 64 * kMiB);
  EXPECT_EQ(file.forgotten, (Ranges{{0, 8 * kMiB}, {16 * kMiB, 24 * kMiB}}));
}

TEST(ReadBehind, LeavesSmallFilesAlone) {
  const ScriptedFile file;
  walk(file, 32 * kMiB);
  EXPECT_EQ(file.forgotten, Ranges{});
}

TEST(ReadBehind, BeginsWhereTheWalkBegins) {
  const ScriptedFile file;
  walk(file, 88 * kMiB, 41 * kMiB);
  EXPECT_EQ(file.asked.front(), 48 * kMiB - 1);
  EXPECT_EQ(file.forgotten, (Ranges{{40 * kMiB, 48 * kMiB}}));
}

TEST(ReadBehind, OneReadMayTakeManyChunks) {
  const ScriptedFile file;
  ReadBehind behind;
  behind.reading(file, 0, 48 * kMiB, 64 * kMiB);
  behind.reading(file, 48 * kMiB, kMiB, 64 * kMiB);
  EXPECT_EQ(file.forgotten.size(), 2U);
}

/// A real file of 80 MiB.
class CachedDataFile : public testing::Test {
 protected:
  void SetUp() override {
    if (!TEST_SUPPORT::givesPagesBack(folder_.path())) {
      GTEST_SKIP() << "the temporary folder lies on a file system that keeps its pages";
    }
    TEST_SUPPORT::writeBytes(path_, TEST_SUPPORT::Bytes(kSize, 1));
    const int descriptor = open(path_.c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(fsync(descriptor), 0);  // pages that wait for the device are not given back
    close(descriptor);
  }

  void walk() const {
    const DataFile file(path_.string());
    ReadBehind behind;
    std::vector<unsigned char> block(kMiB);
    for (std::uint64_t at = 0; at < kSize; at += kMiB) {
      behind.reading(file, at, kMiB, kSize);
      ASSERT_EQ(file.read(at, block), kMiB);
    }
  }

  static constexpr std::uint64_t kSize = 80 * kMiB;
  const TEST_SUPPORT::TemporaryFolder folder_;
  const std::filesystem::path path_ = folder_.path() / "file";
};

TEST_F(CachedDataFile, DoesNotFillTheCache) {
  const DataFile file(path_.string());
  file.forget(0, kSize);
  ASSERT_EQ(TEST_SUPPORT::cachedBytes(path_), 0U);
  EXPECT_FALSE(file.isCached(kSize - 1));
  walk();
  EXPECT_LE(TEST_SUPPORT::cachedBytes(path_), 48 * kMiB);
}

TEST_F(CachedDataFile, StaysInTheCacheWhereItWas) {
  walk();
  EXPECT_TRUE(DataFile(path_.string()).isCached(0));
  EXPECT_EQ(TEST_SUPPORT::cachedBytes(path_), kSize);
}

}  // namespace
