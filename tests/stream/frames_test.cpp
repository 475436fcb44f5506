// Frames, placeholders, data files.
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/stream/stream_test.h"

namespace {

using TEST_SUPPORT::Bytes;
using TEST_SUPPORT::entriesBelow;
using VX_KPF_PACKED::VxKPFPacked;

class Frames : public StreamTest {
 protected:
  std::string refusal(int frames, int count) const {
    return "queueFrame: seqNum=" + std::to_string(frames) +
           " but frame_count=" + std::to_string(count) + "\n";
  }
};

Bytes operator+(Bytes left, const Bytes& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

TEST_F(Frames, AreWrittenBackToBackAndStampedWithTheirPlace) {
  prepare(3);
  EXPECT_EQ(stream.addFrame(smallFrame(0xAA)), 3U);
  EXPECT_EQ(stream.addFrame(smallFrame(0xBB)), 3U);
  EXPECT_EQ(stream.addFrame(smallFrame(0xCC)), 4U);
  EXPECT_FALSE(stream.divFile.is_open());
  EXPECT_EQ(stream.streamStatus, 4U);
  EXPECT_EQ(divBytes("0001"),
            smallRecord(0, 100, 0xAA) + smallRecord(1, 101, 0xBB) + smallRecord(2, 102, 0xCC));
  EXPECT_EQ(output(), "");
}

TEST_F(Frames, AreOnDiskBeforeTheNextOneComes) {
  prepare(2);
  stream.addFrame(smallFrame(0xAA));
  EXPECT_EQ(divBytes("0001"), smallRecord(0, 100, 0xAA));
}

TEST_F(Frames, KeepAHeaderThatTheyBring) {
  prepare(2);
  auto frame = smallFrame(1);
  frame->setHeader(77, -3, 123456);
  stream.addFrame(std::move(frame));
  EXPECT_EQ(divBytes("0001"), (Bytes{77, 0, 0, 0, 0xFD, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
                                     0x40, 0xE2, 0x01, 0}) +
                                  Bytes(12, 1));
}

TEST_F(Frames, RollOverToTheNextFileWhenOneIsFull) {
  prepare(5);
  stream.framesPerDivFile = 2;
  for (unsigned char i = 0; i < 5; ++i) stream.addFrame(smallFrame(i));
  EXPECT_EQ(entriesBelow(folder.path() / "rec"),
            (std::vector<std::string>{"rec_0001.div", "rec_0002.div", "rec_0003.div"}));
  EXPECT_EQ(divBytes("0001"), smallRecord(0, 100, 0) + smallRecord(1, 101, 1));
  EXPECT_EQ(divBytes("0002"), smallRecord(2, 102, 2) + smallRecord(3, 103, 3));
  EXPECT_EQ(divBytes("0003"), smallRecord(4, 104, 4));
}

TEST_F(Frames, BeyondTheCountAreRefused) {
  prepare(3);
  for (unsigned char i = 0; i < 3; ++i) stream.addFrame(smallFrame(i));
  const Bytes before = divBytes("0001");
  output();
  EXPECT_EQ(stream.addFrame(smallFrame(9)), 4U);
  EXPECT_EQ(output(), refusal(3, 3));
  EXPECT_EQ(stream.seqNum, 3U);
  EXPECT_EQ(divBytes("0001"), before);
}

// The count is checked before the file is switched: a full stream begins no new file.
TEST_F(Frames, BeyondTheCountBeginNoFile) {
  prepare(2);
  stream.framesPerDivFile = 2;
  for (unsigned char i = 0; i < 3; ++i) stream.addFrame(smallFrame(i));
  EXPECT_EQ(entriesBelow(folder.path() / "rec"), std::vector<std::string>{"rec_0001.div"});
}

TEST_F(Frames, WithoutAConfigurationAreRefused) {
  EXPECT_EQ(stream.addFrame(smallFrame(1)), 2U);
  EXPECT_EQ(output(), refusal(0, 0));
}

TEST_F(Frames, ThatAreMissingAreRefused) {
  prepare(1);
  EXPECT_EQ(stream.addFrame(nullptr), 3U);
  EXPECT_EQ(output(), "queueFrame: imageptr is nullptr!?\n");
  EXPECT_TRUE(entriesBelow(folder.path() / "rec").empty());
}

TEST_F(Frames, WithoutPixelsAreRefusedAndMayLeaveAnEmptyFile) {
  prepare(1);
  EXPECT_EQ(stream.addFrame(std::make_unique<VxKPFPacked>()), 3U);
  EXPECT_EQ(output(), "queueFrame: There is no packed data!\n");
  EXPECT_EQ(stream.seqNum, 0U);
  EXPECT_EQ(divBytes("0001"), Bytes{});
}

TEST_F(Frames, WithoutAHeaderAreRefusedByTheQueue) {
  prepare(1);
  stream.queueFrame(smallFrame(1));
  EXPECT_EQ(output(), "queueFrame: There is no header!\n");
  stream.queueFrame(std::make_unique<VxKPFPacked>());  // the header is looked at first
  EXPECT_EQ(output(), "queueFrame: There is no header!\n");
  EXPECT_EQ(stream.seqNum, 0U);
}

TEST_F(Frames, OfAnotherSizeAreWrittenAsTheyAre) {
  prepare(2);
  auto frame = std::make_unique<VxKPFPacked>();
  const Bytes record(16 + 5, 3);
  frame->setPackedData(record.data(), 16 + 5, 5, 1, 8);
  stream.addFrame(std::move(frame));
  stream.addFrame(smallFrame(4));
  EXPECT_EQ(divBytes("0001"), record + smallRecord(1, 101, 4));
}

TEST_F(Frames, WithoutPixelsInTheConfigurationAreOnlyHeaders) {
  auto c = smallConfiguration(2);
  c.width = 0;
  ASSERT_EQ(stream.prepareForWriting(name, c), 3U);
  for (const unsigned status : {3U, 4U}) {
    auto frame = std::make_unique<VxKPFPacked>();
    const unsigned char image[4] = {};
    frame->setTiffImageData(image, 0, 2, 12);
    EXPECT_EQ(stream.addFrame(std::move(frame)), status);
  }
  EXPECT_EQ(divBytes("0001").size(), 32U);
}

TEST_F(Frames, OldDataFilesAreOverwrittenAsFramesArrive) {
  std::filesystem::create_directory(folder.path() / "rec");
  TEST_SUPPORT::writeText(folder / "rec/rec_0001.div", std::string(1000, 'x'));
  TEST_SUPPORT::writeText(folder / "rec/rec_0002.div", "older");
  prepare(2);
  stream.addFrame(smallFrame(1));
  EXPECT_EQ(divBytes("0001"), smallRecord(0, 100, 1));
  EXPECT_EQ(divBytes("0002"), (Bytes{'o', 'l', 'd', 'e', 'r'}));
}

TEST_F(Frames, PlaceholderIsZeroFromFirstToLastByteAndTakesANumber) {
  prepare(3);
  stream.addFrame(smallFrame(0xAA));
  EXPECT_EQ(stream.vxAddPlaceholderFrame(), 3U);
  stream.addFrame(smallFrame(0xBB));
  EXPECT_EQ(divBytes("0001"), smallRecord(0, 100, 0xAA) + Bytes(28, 0) + smallRecord(2, 102, 0xBB));
}

TEST_F(Frames, PlaceholderAsTheLastFrameLeavesTheStreamWriting) {
  prepare(1);
  EXPECT_EQ(stream.vxAddPlaceholderFrame(), 3U);
  EXPECT_EQ(stream.streamStatus, 3U);
  EXPECT_FALSE(stream.divFile.is_open());
  EXPECT_EQ(stream.isStreamWriterComplete(), 4U);
  EXPECT_EQ(stream.closeStream(), 5U);
  EXPECT_FALSE(std::filesystem::exists(statusFile));
}

TEST_F(Frames, FrameRefusedAfterALastPlaceholderFindsTheStreamComplete) {
  prepare(1);
  stream.vxAddPlaceholderFrame();
  EXPECT_EQ(stream.addFrame(smallFrame(1)), 4U);
  EXPECT_EQ(output(), refusal(1, 1));
}

TEST_F(Frames, PlaceholderBeyondTheCountPullsTheStatusBack) {
  prepare(1);
  stream.addFrame(smallFrame(1));
  EXPECT_EQ(stream.vxAddPlaceholderFrame(), 3U);
  EXPECT_EQ(output(), refusal(1, 1));
  EXPECT_EQ(stream.streamStatus, 3U);
  EXPECT_EQ(stream.seqNum, 1U);
  EXPECT_EQ(divBytes("0001"), smallRecord(0, 100, 1));
  EXPECT_EQ(stream.closeStream(), 5U);
  EXPECT_FALSE(std::filesystem::exists(statusFile));
}

}  // namespace
