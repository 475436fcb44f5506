// Data files that cannot be opened or written.
#include "tests/stream/stream_test.h"

#ifndef _WIN32
#include <cstddef>
#include <filesystem>
#include <memory>

#include "tests/support/file_size_limit.h"
#endif

namespace {

using TEST_SUPPORT::Bytes;

class FailingDisk : public StreamTest {};

TEST_F(FailingDisk, FolderInTheDataFilesPlaceRefusesEveryFrame) {
  std::filesystem::create_directories(folder.path() / "rec" / "rec_0001.div");
  prepare(3);
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(stream.addFrame(smallFrame(1)), 3U);
    EXPECT_EQ(output(), "queueFrame: the divFile is not open.\n");
  }
  EXPECT_EQ(stream.vxAddPlaceholderFrame(), 3U);
  EXPECT_EQ(stream.seqNum, 0U);
  // The number is taken: making room now changes nothing for this file.
  std::filesystem::remove(folder.path() / "rec" / "rec_0001.div");
  stream.addFrame(smallFrame(1));
  EXPECT_EQ(stream.seqNum, 0U);
  stream.closeStream();
  EXPECT_EQ(TEST_SUPPORT::readText(statusFile), kStatusText);
}

#ifndef _WIN32

TEST_F(FailingDisk, HeaderOnAFullDeviceEndsThePreparation) {
  std::filesystem::create_symlink("/dev/full", folder.path() / "rec.kpf");
  EXPECT_EQ(stream.prepareForWriting(name, smallConfiguration(1)), 21U);
  EXPECT_EQ(stream.streamStatus, 21U);
  EXPECT_EQ(output(),
            "initializeHeader: io stream write failed.\n"
            "prepareForWriting: Unable to initialize KPF Packed header.\n");
  EXPECT_FALSE(std::filesystem::exists(folder.path() / "rec"));
}

TEST_F(FailingDisk, FrameOnAFullDeviceCountsButIsNotSilent) {
  prepare(3);
  std::filesystem::create_symlink("/dev/full", folder.path() / "rec" / "rec_0001.div");
  for (unsigned written = 1; written <= 2; ++written) {
    EXPECT_EQ(stream.addFrame(smallFrame(1)), 3U);
    EXPECT_EQ(output(), "queueFrame: io stream write failed.\n");
    EXPECT_EQ(stream.seqNum, written);
  }
  EXPECT_EQ(stream.addFrame(smallFrame(1)), 4U);
}

/// A frame of 100 x 50 pixels at 8 bits, larger than what a stream gathers before it writes.
std::unique_ptr<VX_KPF_PACKED::VxKPFPacked> largeFrame(unsigned char fill) {
  auto frame = std::make_unique<VX_KPF_PACKED::VxKPFPacked>();
  const Bytes record(16 + 5000, fill);
  frame->setPackedData(record.data(), 16 + 5000, 100, 50, 8);
  return frame;
}

class DiskThatRecovers : public FailingDisk, public testing::WithParamInterface<bool> {};

// Both ways in which a record reaches the disk: gathered with its header, and as it is.
TEST_P(DiskThatRecovers, KeepsEveryOtherFrameAtItsPlace) {
  const bool large = GetParam();
  auto c = smallConfiguration(4);
  if (large) c.width = 100, c.height = 50, c.bitsPerPixel = 8;
  ASSERT_EQ(stream.prepareForWriting(name, c), 3U);
  const std::size_t recordSize = 16 + stream.frameSize;
  const auto frame = [large](unsigned char fill) {
    return large ? largeFrame(fill) : smallFrame(fill);
  };

  stream.addFrame(frame(1));
  output();
  {
    // The second record tears behind its header.
    const TEST_SUPPORT::FileSizeLimit limit(recordSize + 20);
    EXPECT_EQ(stream.addFrame(frame(2)), 3U);
  }
  EXPECT_EQ(output(), "queueFrame: io stream write failed.\n");
  EXPECT_EQ(divBytes("0001").size(), recordSize);
  stream.addFrame(frame(3));
  EXPECT_EQ(stream.addFrame(frame(4)), 4U);

  const Bytes bytes = divBytes("0001");
  ASSERT_EQ(bytes.size(), 4 * recordSize);
  const auto record = [&](std::size_t n) {
    const auto from = bytes.begin() + static_cast<std::ptrdiff_t>(n * recordSize);
    return Bytes(from, from + static_cast<std::ptrdiff_t>(recordSize));
  };
  EXPECT_EQ(record(0).back(), 1);
  EXPECT_EQ(record(1), Bytes(recordSize, 0));  // reads as a placeholder
  EXPECT_EQ(record(2).back(), 3);
  EXPECT_EQ(record(3)[16], 4);
  EXPECT_EQ(output(), "");
}

INSTANTIATE_TEST_SUITE_P(Sizes, DiskThatRecovers, testing::Bool());

// The file is taken up again by its descriptor: where it lies meanwhile, and what has its name now,
// makes no difference.
class FolderThatMoves : public FailingDisk {
 protected:
  FolderThatMoves() {
    prepare(4);
    stream.addFrame(smallFrame(1));
  }
  void failOneFrame() {
    const TEST_SUPPORT::FileSizeLimit limit(28 + 10);
    EXPECT_EQ(stream.addFrame(smallFrame(2)), 3U);
    EXPECT_EQ(output(), "queueFrame: io stream write failed.\n");
  }
  /// Frames 2 and 3 are taken, and frame 1 reads as a placeholder.
  void expectTheRest(const std::filesystem::path& file) {
    EXPECT_EQ(stream.addFrame(smallFrame(3)), 3U);
    EXPECT_EQ(stream.addFrame(smallFrame(4)), 4U);
    EXPECT_EQ(output(), "");
    if (file.empty()) return;
    const Bytes bytes = TEST_SUPPORT::readBytes(file);
    ASSERT_EQ(bytes.size(), 4U * 28);
    EXPECT_EQ(Bytes(bytes.begin() + 28, bytes.begin() + 56), Bytes(28, 0));
    EXPECT_EQ(bytes[2 * 28 + 16], 3);
    EXPECT_EQ(bytes[3 * 28 + 16], 4);
  }

  const std::filesystem::path rec = folder.path() / "rec";
};

TEST_F(FolderThatMoves, GoesOnAfterAFailedWrite) {
  std::filesystem::rename(rec, folder.path() / "moved");
  failOneFrame();
  expectTheRest(folder.path() / "moved" / "rec_0001.div");
  EXPECT_FALSE(std::filesystem::exists(rec));
}

TEST_F(FolderThatMoves, LeavesTheFileThatHasItsNameNow) {
  std::filesystem::rename(rec, folder.path() / "moved");
  std::filesystem::create_directory(rec);
  const Bytes other(500, 7);
  TEST_SUPPORT::writeBytes(rec / "rec_0001.div", other);
  failOneFrame();
  expectTheRest(folder.path() / "moved" / "rec_0001.div");
  EXPECT_EQ(divBytes("0001"), other);
}

TEST_F(FolderThatMoves, OrIsRemovedTakesEveryFurtherFrame) {
  std::filesystem::remove_all(rec);
  failOneFrame();
  expectTheRest({});
  EXPECT_EQ(stream.seqNum, 4U);
}

TEST_F(FailingDisk, ThatStaysFullLeavesTheWholeRecords) {
  prepare(5);
  stream.addFrame(smallFrame(1));
  stream.addFrame(smallFrame(2));
  {
    const TEST_SUPPORT::FileSizeLimit limit(2 * 28 + 10);
    for (int i = 0; i < 3; ++i) stream.addFrame(smallFrame(9));
  }
  EXPECT_EQ(stream.seqNum, 5U);
  Bytes expected = smallRecord(0, 100, 1);
  const Bytes second = smallRecord(1, 101, 2);
  expected.insert(expected.end(), second.begin(), second.end());
  EXPECT_EQ(divBytes("0001"), expected);
}

#endif

}  // namespace
