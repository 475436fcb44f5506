// The system's own page cache: what it takes as advice, and what a recording leaves in it.
#include "stream/page_cache.h"

#include <cstdint>
#include <filesystem>

#include <fcntl.h>
#include <unistd.h>

#include "tests/stream/stream_test.h"
#include "tests/support/cached_pages.h"
#include "tests/support/file_size_limit.h"

namespace {

using TEST_SUPPORT::cachedBytes;
using TEST_SUPPORT::cachedBytesBelow;
using VLM_KPF::PageCache;

constexpr std::uintmax_t kMiB = 1U << 20;

class CachedPages : public StreamTest {
 protected:
  void SetUp() override {
    if (!TEST_SUPPORT::givesPagesBack(folder.path())) {
      GTEST_SKIP() << "the temporary folder lies on a file system that keeps its pages";
    }
  }

  /// Records so many frames of 1 MiB, `each` a data file.
  void record(unsigned frames, unsigned each) {
    VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration;
    configuration.width = (1U << 20) - 16;
    configuration.height = 1;
    configuration.bitsPerPixel = 8;
    configuration.frameRate = 1;
    configuration.frameCount = frames;
    ASSERT_EQ(stream.prepareForWriting(name, configuration), 3U);
    stream.framesPerDivFile = each;
    for (unsigned n = 0; n < frames; ++n) stream.vxAddPlaceholderFrame();
    ASSERT_EQ(stream.closeStream(), 5U);
  }
};

TEST_F(CachedPages, OfALongRecordingStayBelowTheBound) {
  record(144, 144);
  EXPECT_LE(cachedBytesBelow(folder.path()), 64 * kMiB);
  EXPECT_EQ(std::filesystem::file_size(folder.path() / "rec" / "rec_0001.div"), 144 * kMiB);
}

TEST_F(CachedPages, OfManyDataFilesStayBelowTheSameBound) {
  record(144, 48);
  EXPECT_LE(cachedBytesBelow(folder.path()), 64 * kMiB);
}

TEST_F(CachedPages, OfASmallRecordingAreLeftAlone) {
  record(24, 24);
  EXPECT_GE(cachedBytes(folder.path() / "rec" / "rec_0001.div"), 23 * kMiB);
}

TEST_F(CachedPages, AreDroppedOnlyWhereAsked) {
  const std::filesystem::path file = folder.path() / "file";
  TEST_SUPPORT::writeBytes(file, TEST_SUPPORT::Bytes(24 * kMiB, 1));
  const int descriptor = open(file.c_str(), O_RDWR | O_CLOEXEC);
  PageCache::system().startWriting(descriptor, {0, 24 * kMiB});
  EXPECT_EQ(cachedBytes(file), 24 * kMiB);
  PageCache::system().dropWritten(descriptor, {8 * kMiB, 16 * kMiB});
  EXPECT_EQ(cachedBytes(file), 16 * kMiB);
  unsigned char byte = 0;
  EXPECT_EQ(pread(descriptor, &byte, 1, 12 * kMiB), 1);
  EXPECT_EQ(byte, 1);
  close(descriptor);
}

TEST(SystemPageCache, TakesPagesWithAFileThatNobodySees) {
  const TEST_SUPPORT::TemporaryFolder folder;
  const int pages = PageCache::system().takePages(folder.path(), 6 * kMiB + 3);
  if (pages < 0) GTEST_SKIP() << "the file system has no files without a name";
  EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
  EXPECT_NE(fcntl(pages, F_GETFD) & FD_CLOEXEC, 0);
  EXPECT_EQ(lseek(pages, 0, SEEK_END), static_cast<off_t>(6 * kMiB + 3));
  PageCache::system().keepPages(pages, 2 * kMiB);
  EXPECT_EQ(lseek(pages, 0, SEEK_END), static_cast<off_t>(2 * kMiB));
  PageCache::system().release(pages);
  EXPECT_EQ(fcntl(pages, F_GETFD), -1);
}

TEST(SystemPageCache, TakesNoPagesThatAFileMayNotHave) {
  const TEST_SUPPORT::TemporaryFolder folder;
  const TEST_SUPPORT::FileSizeLimit limit(3 * kMiB);
  EXPECT_EQ(PageCache::system().takePages(folder.path(), 4 * kMiB), -1);
}

TEST(SystemPageCache, TakesNoPagesInAFolderThatIsGone) {
  const TEST_SUPPORT::TemporaryFolder folder;
  EXPECT_EQ(PageCache::system().takePages(folder.path() / "gone", kMiB), -1);
}

TEST(SystemPageCache, TakesAdviceAboutWhatIsNoFile) {
  int pipes[2];
  ASSERT_EQ(pipe2(pipes, O_CLOEXEC), 0);
  for (const int descriptor : {-1, pipes[1]}) {
    PageCache::system().startWriting(descriptor, {0, kMiB});
    PageCache::system().dropWritten(descriptor, {0, kMiB});
    PageCache::system().keepPages(descriptor, 0);
  }
  EXPECT_EQ(PageCache::system().keepOpen(-1), -1);
  EXPECT_EQ(write(pipes[1], "x", 1), 1);  // and leaves it in use
  close(pipes[0]);
  close(pipes[1]);
}

TEST(SystemPageCache, KeepsAFileOpenThatChildrenDoNotInherit) {
  const TEST_SUPPORT::TemporaryFolder folder;
  const int descriptor = open((folder / "file").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
  const int kept = PageCache::system().keepOpen(descriptor);
  ASSERT_GE(kept, 0);
  EXPECT_NE(fcntl(kept, F_GETFD) & FD_CLOEXEC, 0);
  close(descriptor);
  EXPECT_EQ(write(kept, "x", 1), 1);
  PageCache::system().release(kept);
  EXPECT_EQ(fcntl(kept, F_GETFD), -1);
}

}  // namespace
