// The header file, byte for byte.
#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <string>

#include "tests/stream/stream_test.h"

namespace {

using TEST_SUPPORT::Bytes;
using TEST_SUPPORT::readBytes;
using VLM_INTERNAL::VXP_STREAM_CONFIGURATION;
using VLM_KPF::VxKPFPackedStream;

void put(Bytes& image, std::size_t offset, const Bytes& bytes) {
  std::copy(bytes.begin(), bytes.end(), image.begin() + static_cast<std::ptrdiff_t>(offset));
}

void put(Bytes& image, std::size_t offset, const std::string& text) {
  put(image, offset, Bytes(text.begin(), text.end()));
}

/// What every header file holds, whatever its configuration.
Bytes fixedBytes() {
  Bytes image(2998, 0);
  put(image, 0, "v3.0");
  put(image, 164, Bytes{0, 0, 0, 0, 0, 0, 0xF0, 0x3F});  // 1.0
  for (const std::size_t offset : {208U, 278U, 308U, 384U, 444U}) put(image, offset, "Converted");
  image[473] = 1;
  put(image, 483, Bytes{0, 0, 0, 0, 0, 0, 0x4E, 0x40});  // 60.0
  put(image, 491, "v3.0");
  image[1766] = 1;
  return image;
}

class HeaderFile : public StreamTest {
 protected:
  Bytes write(const VXP_STREAM_CONFIGURATION& configuration) {
    EXPECT_EQ(stream.prepareForWriting(name, configuration), 3U);
    return readBytes(name);
  }

  static Bytes identifierOf(const Bytes& image) {
    return {image.begin() + 1698, image.begin() + 1714};
  }

  static void putIdentifier(Bytes& image, const Bytes& identifier) {
    put(image, 1698, identifier);
    put(image, 1714, identifier);
  }
};

TEST_F(HeaderFile, OfAFullConfigurationIsAsWrittenByHand) {
  VXP_STREAM_CONFIGURATION c;
  c.text1 = "not written", c.text3 = c.text1, c.text4 = c.text1, c.text6 = c.text1;
  c.text7 = c.text1, c.value1 = -1, c.value2 = -1, c.value4 = -1, c.value6 = -1, c.value8 = -1;
  c.text2 = "second text", c.text5 = "fifth text";
  c.width = 1280, c.height = 1024, c.frameRate = 1000, c.value3 = -2, c.bitsPerPixel = 12;
  c.frameCount = 0x01020304, c.value5 = 2, c.value7 = 3;
  c.startSeconds = 0xFFFFFFFF, c.startMicroseconds = 0xFFFFFFFF;
  const Bytes written = write(c);

  Bytes expected = fixedBytes();
  put(expected, 5, "fifth text");
  put(expected, 156, Bytes{0, 0, 0, 0, 0, 0, 0x08, 0x40});     // 3.0
  put(expected, 176, Bytes{0x00, 0x05, 0x00, 0x04});           // 1280, 1024
  put(expected, 180, Bytes{1, 0, 0, 0});                       // 12 bits
  put(expected, 184, Bytes{0, 0, 0, 0, 0, 0x40, 0x8F, 0x40});  // 1000.0
  put(expected, 200, Bytes{0, 0, 0, 0, 0, 0, 0, 0xC0});        // -2.0
  put(expected, 324, "second text");
  put(expected, 464, Bytes{0x44, 0x04, 0, 0});  // 1092
  put(expected, 468, Bytes{4, 3, 2, 1});
  put(expected, 1770, Bytes{0, 0, 0, 0, 0, 0x40, 0x8F, 0x40});
  put(expected, 1806, Bytes{2, 0, 0, 0});
  putIdentifier(expected, identifierOf(written));
  EXPECT_EQ(written, expected);
}

TEST_F(HeaderFile, OfABareConfigurationIsAsWrittenByHand) {
  VXP_STREAM_CONFIGURATION c;
  c.bitsPerPixel = 8;
  c.frameCount = 1;
  const Bytes written = write(c);

  Bytes expected = fixedBytes();
  put(expected, 464, Bytes{0xFF, 0xFF, 0xFF, 0x07});  // 2147483647 / 16
  put(expected, 468, Bytes{1, 0, 0, 0});
  putIdentifier(expected, identifierOf(written));
  EXPECT_EQ(written, expected);
}

TEST_F(HeaderFile, OfExtremeNumbersIsAsWrittenByHand) {
  VXP_STREAM_CONFIGURATION c;
  c.width = 70000, c.height = 2, c.bitsPerPixel = 16, c.frameCount = 0xFFFFFFFF;
  c.frameRate = -2147483647 - 1, c.value3 = 2147483647, c.value7 = -1, c.value5 = 3;
  const Bytes written = write(c);

  Bytes expected = fixedBytes();
  put(expected, 156, Bytes{0, 0, 0, 0, 0, 0, 0xF0, 0xBF});              // -1.0
  put(expected, 176, Bytes{0x70, 0x11, 0x02, 0x00});                    // 4464 = 70000 - 65536
  put(expected, 180, Bytes{1, 0, 0, 0});                                // not 8 bits
  put(expected, 184, Bytes{0, 0, 0, 0, 0, 0, 0xE0, 0xC1});              // -2^31
  put(expected, 200, Bytes{0, 0, 0xC0, 0xFF, 0xFF, 0xFF, 0xDF, 0x41});  // 2^31 - 1
  put(expected, 464, Bytes{0xF1, 0x27, 0, 0});                          // 2147483647 / 210016
  put(expected, 468, Bytes{0xFF, 0xFF, 0xFF, 0xFF});
  put(expected, 1770, Bytes{0, 0, 0, 0, 0, 0, 0xE0, 0xC1});
  putIdentifier(expected, identifierOf(written));
  EXPECT_EQ(written, expected);
}

TEST_F(HeaderFile, DepthFieldTellsOnlyEightFromTheRest) {
  for (const int bits : {8, 10, 12, 16, 0}) {
    VxKPFPackedStream other;
    VXP_STREAM_CONFIGURATION c = smallConfiguration(1);
    c.bitsPerPixel = bits;
    ASSERT_EQ(other.prepareForWriting(name, c), 3U);
    EXPECT_EQ(readBytes(name)[180], bits == 8 ? 0 : 1) << bits;
  }
}

TEST_F(HeaderFile, SelectorIsRecordedOnlyWhenItIsOneOrTwo) {
  for (const int value : {-1, 0, 1, 2, 3, 256 + 1}) {
    VxKPFPackedStream other;
    VXP_STREAM_CONFIGURATION c = smallConfiguration(1);
    c.value5 = value;
    ASSERT_EQ(other.prepareForWriting(name, c), 3U);
    const Bytes image = readBytes(name);
    const auto expected = static_cast<unsigned char>(value == 1 || value == 2 ? value : 0);
    EXPECT_EQ(Bytes(image.begin() + 1806, image.begin() + 1810), (Bytes{expected, 0, 0, 0}));
  }
}

TEST_F(HeaderFile, LongText5IsCutToItsFieldWithoutATerminator) {
  VXP_STREAM_CONFIGURATION c = smallConfiguration(1);
  c.text5 = std::string(200, 'x');
  const Bytes image = write(c);
  EXPECT_EQ(Bytes(image.begin() + 5, image.begin() + 156), Bytes(151, 'x'));
  EXPECT_EQ(Bytes(image.begin() + 156, image.begin() + 164), Bytes(8, 0));
}

TEST_F(HeaderFile, TextsStopAtAZeroByte) {
  VXP_STREAM_CONFIGURATION c = smallConfiguration(1);
  c.text2 = std::string("ab\0cd", 5);
  c.text5 = std::string("ef\0gh", 5);
  const Bytes image = write(c);
  EXPECT_EQ(Bytes(image.begin() + 324, image.begin() + 330), (Bytes{'a', 'b', 0, 0, 0, 0}));
  EXPECT_EQ(Bytes(image.begin() + 5, image.begin() + 11), (Bytes{'e', 'f', 0, 0, 0, 0}));
}

TEST_F(HeaderFile, SeventyBytesOfText2ReachBehindTheFixedTextThatFollows) {
  VXP_STREAM_CONFIGURATION c = smallConfiguration(1);
  c.text2 = std::string(70, 'x');
  c.text2.back() = 'y';
  const Bytes image = write(c);
  EXPECT_EQ(Bytes(image.begin() + 324, image.begin() + 384), Bytes(60, 'x'));
  EXPECT_EQ(std::string(image.begin() + 384, image.begin() + 393), "Converted");
  EXPECT_EQ(image[393], 'y');
  EXPECT_EQ(image[394], 0);
}

TEST_F(HeaderFile, Text2OfItsFieldLengthStaysInside) {
  VXP_STREAM_CONFIGURATION c = smallConfiguration(1);
  c.text2 = std::string(60, 'x');
  const Bytes image = write(c);
  EXPECT_EQ(image[383], 'x');
  EXPECT_EQ(std::string(image.begin() + 384, image.begin() + 393), "Converted");
  EXPECT_EQ(Bytes(image.begin() + 393, image.begin() + 444), Bytes(51, 0));
}

// A text that fills the image is seen wherever nothing is stored after it: in the unused rest of
// the fixed texts and in the regions that nothing is written to.
TEST_F(HeaderFile, OverlongText2IsCutAtTheEndOfTheImage) {
  for (const std::size_t length : {2674U, 2675U, 5000U}) {
    VxKPFPackedStream other;
    VXP_STREAM_CONFIGURATION c = smallConfiguration(1);
    c.text2 = std::string(length, 'x');
    ASSERT_EQ(other.prepareForWriting(name, c), 3U);
    const Bytes image = readBytes(name);

    ASSERT_EQ(image.size(), 2998U);
    Bytes expected = fixedBytes();
    put(expected, 176, Bytes{4, 0, 2, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xF0, 0x3F});
    std::fill(expected.begin() + 324, expected.end(), static_cast<unsigned char>('x'));
    put(expected, 384, "Converted");
    put(expected, 444, "Converted");
    put(expected, 460,
        Bytes{0, 0, 0, 0, 0x24, 0x49, 0x92, 0x04, 1, 0, 0, 0, 0});  // (2^31 - 1) / 28
    put(expected, 473, Bytes{1, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    put(expected, 483, Bytes{0, 0, 0, 0, 0, 0, 0x4E, 0x40, 'v', '3', '.', '0', 0, 0, 0});
    putIdentifier(expected, identifierOf(image));
    put(expected, 1746, Bytes(20, 0));
    put(expected, 1766, Bytes{1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xF0, 0x3F});
    put(expected, 1802, Bytes(8, 0));
    put(expected, 1882, Bytes(4, 0));
    EXPECT_EQ(image, expected) << length;
  }
}

TEST_F(HeaderFile, IdentifierIsDrawnFromTheGeneratorSeededWithTheSecond) {
  Bytes drawn(16);
  std::time_t before = 0;
  do {  // until both fall into one second
    before = std::time(nullptr);
    VxKPFPackedStream::guidGen(drawn.data());
  } while (std::time(nullptr) != before);
  std::srand(static_cast<unsigned>(before));
  Bytes expected;
  for (int part = 0; part < 4; ++part) {
    const auto value = static_cast<unsigned>(std::rand());
    for (const unsigned shift : {0U, 8U, 16U, 24U}) {
      expected.push_back(static_cast<unsigned char>(value >> shift));
    }
  }
  EXPECT_EQ(drawn, expected);
}

TEST_F(HeaderFile, IdentifierStandsTwice) {
  const Bytes image = write(smallConfiguration(1));
  EXPECT_EQ(identifierOf(image), Bytes(image.begin() + 1714, image.begin() + 1730));
  EXPECT_NE(identifierOf(image), Bytes(16, 0));
}

TEST_F(HeaderFile, WithoutAStreamNothingIsWritten) {
  stream.setConfiguration(smallConfiguration(1));
  output();
  EXPECT_FALSE(stream.initializeHeader(nullptr));
  EXPECT_EQ(output(), "initializeHeader: streamPtr is null!\n");
  EXPECT_EQ(stream.streamStatus, 2U);
}

TEST_F(HeaderFile, FailedWriteSetsTheStatus) {
  stream.setConfiguration(smallConfiguration(1));
  std::ofstream closed;
  output();
  EXPECT_FALSE(stream.initializeHeader(&closed));
  EXPECT_EQ(output(), "initializeHeader: io stream write failed.\n");
  EXPECT_EQ(stream.streamStatus, 13U);
}

TEST_F(HeaderFile, IsWrittenFromTheBeginningOfTheStream) {
  stream.setConfiguration(smallConfiguration(1));
  std::ofstream file(folder / "h.kpf", std::ios::binary);
  file << "something before";
  EXPECT_TRUE(stream.initializeHeader(&file));
  file.close();
  EXPECT_EQ(readBytes(folder / "h.kpf").size(), 2998U);
}

TEST(StreamConstants, AreTheTextsOfTheFormat) {
  EXPECT_EQ(VxKPFPackedStream::KPF_PACKED_HEADER_EXTENSION, "kpf");
  EXPECT_EQ(VxKPFPackedStream::KPF_PACKED_DIV_EXTENSION, "div");
  EXPECT_EQ(VxKPFPackedStream::KPF_PACKED_FILE_v3_0, "v3.0");
  EXPECT_EQ(VxKPFPackedStream::KPF_PACKED_CONVERTED, "Converted");
  EXPECT_EQ(VxKPFPackedStream::VELMAR_GENERATED, "Velmar Generated");
}

}  // namespace
