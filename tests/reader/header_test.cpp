#include <cstddef>
#include <filesystem>
#include <string>

#include "tests/reader/recording_bytes.h"

namespace {

using KPF_READER::Header;
using TEST_READER::headerBytes;
using TEST_SUPPORT::Bytes;
using TEST_SUPPORT::writeBytes;

class HeaderFile : public TEST_READER::HandMade {
 protected:
  Header with(std::size_t offset, const Bytes& bytes) {
    replace(offset, bytes);
    return open().header();
  }

  void expectRefusal(std::size_t offset, const Bytes& bytes, const std::string& problem) {
    replace(offset, bytes);
    TEST_READER::expectError([this] { open(); }, header, offset, problem);
  }

  void expectRefusalAtLength(std::size_t length, std::size_t offset, const std::string& problem) {
    Bytes bytes = headerBytes();
    bytes.resize(length);
    writeBytes(header, bytes);
    TEST_READER::expectError([this] { open(); }, header, offset, problem);
  }

 private:
  void replace(std::size_t offset, const Bytes& bytes) {
    writeBytes(header, TEST_READER::with(headerBytes(), offset, bytes));
  }
};

TEST_F(HeaderFile, EveryFieldIsRead) {
  const Header read = open().header();
  EXPECT_EQ(read.version, "v3.0");
  EXPECT_EQ(read.text5, "five");
  EXPECT_EQ(read.text2, "two");
  EXPECT_EQ(read.value7, 7.0);
  EXPECT_EQ(read.value3, -3.0);
  EXPECT_EQ(read.frameRate, 25.0);
  EXPECT_EQ(read.width, 3U);
  EXPECT_EQ(read.height, 2U);
  EXPECT_FALSE(read.packed12);
  EXPECT_EQ(read.framesPerDivFile, 2U);
  EXPECT_EQ(read.frameCount, 5U);
  EXPECT_EQ(read.value5, 2U);
  EXPECT_THAT(read.identifier, testing::ElementsAre(0x11, 0x12, 0, 0, 0x13, 0x14, 0, 0, 0x15, 0x16,
                                                    0, 0, 0x17, 0x18, 0, 0));
}

TEST_F(HeaderFile, SizesFollowFromGeometry) {
  const Header bytes = open().header();
  EXPECT_EQ(bytes.bitsPerPixel(), 8U);
  EXPECT_EQ(bytes.frameSize(), 6U);
  EXPECT_EQ(bytes.recordSize(), 22U);
  EXPECT_EQ(bytes.divFileCount(), 3U);
  const Header packed = with(176, {3, 0, 3, 0, 1, 0, 0, 0});
  EXPECT_EQ(packed.bitsPerPixel(), 12U);
  EXPECT_EQ(packed.frameSize(), 13U);
}

TEST_F(HeaderFile, TextsThatFillTheirFieldsEndThere) {
  EXPECT_EQ(with(5, Bytes(151, 'x')).text5, std::string(151, 'x'));
  EXPECT_EQ(with(324, Bytes(60, 'y')).text2, std::string(60, 'y'));
}

TEST_F(HeaderFile, CutShortIsRefusedWhereItEnds) {
  expectRefusalAtLength(0, 0, "the header ends after 0 of 2998 bytes");
  expectRefusalAtLength(4, 4, "the header ends after 4 of 2998 bytes");
  expectRefusalAtLength(2997, 2997, "the header ends after 2997 of 2998 bytes");
}

TEST_F(HeaderFile, OverlongIsRefusedAtTheFirstByteTooMany) {
  expectRefusalAtLength(2999, 2998, "the header is 2999 bytes long, not 2998");
}

TEST_F(HeaderFile, AnotherKindOfFileIsRefused) {
  expectRefusal(0, {'R', 'I', 'F', 'F'}, "not the header of a recording");
  expectRefusal(0, {'v', '3', '.', '0', '1'}, "not the header of a recording");
}

TEST_F(HeaderFile, PixelFormThatIsNeitherIsRefused) {
  expectRefusal(180, {2}, "the pixel form is neither 0 nor 1");
  expectRefusal(180, {0, 0, 0, 1}, "the pixel form is neither 0 nor 1");
}

TEST_F(HeaderFile, NumbersThatAreNotFiniteAreRefused) {
  const Bytes nan{0, 0, 0, 0, 0, 0, 0xF8, 0x7F};
  const Bytes minusInfinity{0, 0, 0, 0, 0, 0, 0xF0, 0xFF};
  expectRefusal(156, nan, "value7 is not a finite number");
  expectRefusal(184, nan, "the frame rate is not a finite number");
  expectRefusal(184, minusInfinity, "the frame rate is not a finite number");
  expectRefusal(200, minusInfinity, "value3 is not a finite number");
}

TEST_F(HeaderFile, FramesBeyondTheSizeOfADataFileAreRefused) {
  expectRefusal(176, {0xFF, 0xFF, 0xFF, 0xFF}, "a frame is larger than a data file can be");
  expectRefusal(176, {0xFF, 0xFF, 0xFF, 0xFF, 1}, "a frame is larger than a data file can be");
}

TEST_F(HeaderFile, DataFilesOfNoFramesAreRefused) {
  expectRefusal(464, {0, 0, 0, 0}, "data files of no frames at all");
}

TEST_F(HeaderFile, MoreFramesThanADataFileCanHoldAreRefused) {
  // 2147483647 / 22 = 97612893, in bytes 5D 74 D1 05.
  EXPECT_EQ(with(464, {0x5D, 0x74, 0xD1, 0x05}).framesPerDivFile, 97612893U);
  expectRefusal(464, {0x5E, 0x74, 0xD1, 0x05}, "more frames than a data file can hold");
}

TEST_F(HeaderFile, FramesOfNoPixelsAreRead) {
  const Header empty = with(176, {0, 0});
  EXPECT_EQ(empty.frameSize(), 0U);
  EXPECT_EQ(empty.recordSize(), 16U);
}

TEST_F(HeaderFile, NoAnnouncedFramesMeanNoDataFiles) {
  EXPECT_EQ(with(468, {0, 0, 0, 0}).divFileCount(), 0U);
  EXPECT_EQ(open().recordCount(), 0U);
}

TEST_F(HeaderFile, HugeCountWithoutDataFilesOpensEmpty) {
  std::filesystem::remove_all(folder.path() / "rec");
  EXPECT_EQ(with(464, {1, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF}).divFileCount(), 0xFFFFFFFFU);
  EXPECT_EQ(open().recordCount(), 0U);
  EXPECT_THAT(open().divFiles(), testing::IsEmpty());
}

}  // namespace
