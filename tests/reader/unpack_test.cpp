#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <vector>

#include "reader/kpf_reader.h"
#include "tests/reader/recording_bytes.h"

namespace {

using KPF_READER::Header;
using TEST_SUPPORT::Bytes;
using testing::ElementsAre;
using Samples = std::vector<std::uint16_t>;

Header geometry(std::uint32_t width, std::uint32_t height, bool packed12) {
  Header header;
  header.width = width;
  header.height = height;
  header.packed12 = packed12;
  return header;
}

Samples unpacked(const Header& header, const Bytes& pixels) {
  Samples samples(header.pixelCount(), 0x5555);
  KPF_READER::unpackPixels(header, pixels, samples);
  return samples;
}

TEST(Unpack, EvenWidthRowsFollowEachOther) {
  const Bytes pixels{0xAB, 0x3C, 0x12, 0x01, 0x23, 0x45};
  EXPECT_THAT(unpacked(geometry(2, 2, true), pixels), ElementsAre(0xABC0, 0x1230, 0x0130, 0x4520));
}

TEST(Unpack, OddWidthRowsBeginAtTheCutHalf) {
  // Rows of width 3 begin at bytes 0, 4 and 9; the third column was never stored.
  const Bytes pixels{0xAB, 0x3C, 0x12, 0xEE, 0x01, 0x23, 0x45, 0xEE, 0xEE, 0x67, 0x89, 0xAB, 0xEE};
  EXPECT_THAT(unpacked(geometry(3, 3, true), pixels),
              ElementsAre(0xABC0, 0x1230, 0, 0x0130, 0x4520, 0, 0x6790, 0xAB80, 0));
}

TEST(Unpack, WidthOneAt12BitsIsAllZero) {
  EXPECT_THAT(unpacked(geometry(1, 3, true), {0xFF, 0xFF, 0xFF, 0xFF}), ElementsAre(0, 0, 0));
}

TEST(Unpack, EightBitSamplesMoveToTheUpperByte) {
  EXPECT_THAT(unpacked(geometry(3, 1, false), {0x00, 0x7F, 0xFF}), ElementsAre(0, 0x7F00, 0xFF00));
}

TEST(Unpack, FrameWithoutPixelsGivesNoSamples) {
  EXPECT_THAT(unpacked(geometry(0, 5, true), {}), testing::IsEmpty());
}

TEST(Unpack, BufferThatIsTooSmallIsRefused) {
  Samples five(5);
  Samples six(6);
  const Header header = geometry(3, 2, false);
  EXPECT_THROW(KPF_READER::unpackPixels(header, Bytes(6), five), std::invalid_argument);
  EXPECT_THROW(KPF_READER::unpackPixels(header, Bytes(5), six), std::invalid_argument);
}

TEST(Unpack, LargerBufferKeepsItsRest) {
  Samples samples(4, 0x5555);
  KPF_READER::unpackPixels(geometry(3, 1, false), Bytes{1, 2, 3}, samples);
  EXPECT_THAT(samples, ElementsAre(0x0100, 0x0200, 0x0300, 0x5555));
}

TEST(BetweenRows, UnusedBytesOfOddRowsAreFound) {
  const Header header = geometry(3, 3, true);
  Bytes pixels{1, 1, 1, 0, 1, 1, 1, 0, 0, 1, 1, 1, 0};
  EXPECT_EQ(KPF_READER::findByteBetweenRows(header, pixels), std::nullopt);
  for (const std::size_t at : {12U, 8U, 7U, 3U}) {
    pixels[at] = 9;
    EXPECT_EQ(KPF_READER::findByteBetweenRows(header, pixels), at);
  }
}

TEST(BetweenRows, OtherFramesHaveNone) {
  const Bytes pixels(9, 0xFF);
  EXPECT_EQ(KPF_READER::findByteBetweenRows(geometry(3, 3, false), pixels), std::nullopt);
  EXPECT_EQ(KPF_READER::findByteBetweenRows(geometry(2, 3, true), pixels), std::nullopt);
}

class UnpackedRecord : public TEST_READER::HandMade {};

TEST_F(UnpackedRecord, ComesFromItsPlace) {
  Samples samples(6);
  open().unpack(3, samples);
  EXPECT_THAT(samples, ElementsAre(31 << 8, 32 << 8, 33 << 8, 34 << 8, 35 << 8, 36 << 8));
}

}  // namespace
