// Whole recordings through the exported functions.
#include <filesystem>
#include <iterator>
#include <string>

#include "interface/vlm_internal_tables.h"
#include "tests/support/library_test.h"
#include "vlm_internal.h"

namespace {

using TEST_SUPPORT::Bytes;
using TEST_SUPPORT::readBytes;
using VLM_INTERNAL::streamVector;
using VLM_INTERNAL::VXP_STREAM_CONFIGURATION;

class StreamFunctions : public TEST_SUPPORT::LibraryTest {
 protected:
  // 3 x 2 pixels at 8 bits: rows of four bytes in, records of 22 bytes out.
  unsigned create(unsigned frameCount) {
    VXP_STREAM_CONFIGURATION configuration;
    configuration.width = 3;
    configuration.height = 2;
    configuration.bitsPerPixel = 8;
    configuration.frameRate = 2;
    configuration.frameCount = frameCount;
    configuration.startSeconds = 9;
    return vxCreatePackStreamer(name, configuration);
  }

  const std::string name = folder / "rec.kpf";
  const std::string div = folder / "rec/rec_0001.div";
  const Bytes image{1, 2, 3, 0xEE, 4, 5, 6, 0xEE};
  const Bytes packed{7, 7, 7, 7, 8, 8, 8, 8, 8, 8, 8, 8, 9, 9, 9, 9, 11, 12, 13, 14, 15, 16};
};

TEST_F(StreamFunctions, RecordOneFrameByEachRoute) {
  const unsigned stream = create(3);
  ASSERT_EQ(stream, 1U);
  EXPECT_EQ(vxAddTiffImageData(stream, image.data()), 3);
  EXPECT_EQ(vxAddPlaceholder(stream), 3);
  EXPECT_EQ(vxIsPackStreamerFinished(stream), 3);
  EXPECT_EQ(vxAddPackedData(stream, packed.data()), 4);
  EXPECT_EQ(vxIsPackStreamerFinished(stream), 4);
  EXPECT_EQ(vxClosePackStreamer(stream), 5);
  EXPECT_EQ(output(), "");

  Bytes expected{0, 0, 0, 0, 9, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 2, 3, 4, 5, 6};
  expected.resize(44);
  expected.insert(expected.end(), packed.begin(), packed.end());
  EXPECT_EQ(readBytes(div), expected);
  EXPECT_FALSE(std::filesystem::exists(name + ".incomplete.txt"));
}

TEST_F(StreamFunctions, StampCountsPlaceholders) {
  const unsigned stream = create(2);
  vxAddPlaceholder(stream);
  vxAddTiffImageData(stream, image.data());
  const Bytes bytes = readBytes(div);
  EXPECT_EQ(Bytes(bytes.begin() + 22, bytes.begin() + 38),
            (Bytes{1, 0, 0, 0, 9, 0, 0, 0, 0, 0, 0, 0, 0x20, 0xA1, 0x07, 0}));  // 9.5 s
}

TEST_F(StreamFunctions, TwelveBitStreamTakesTwoBytesASample) {
  VXP_STREAM_CONFIGURATION configuration;
  configuration.width = 2;
  configuration.height = 1;
  configuration.bitsPerPixel = 12;
  configuration.frameCount = 2;
  configuration.frameRate = 1;
  const unsigned stream = vxCreatePackStreamer(name, configuration);
  const unsigned char samples[] = {0xC0, 0xAB, 0x30, 0x12};
  vxAddTiffImageData(stream, samples);
  const unsigned char record[19] = {1, 0, 0, 0, 0, 0, 0,    0,    0,   0,
                                    0, 0, 0, 0, 0, 0, 0xAB, 0x3C, 0x12};
  EXPECT_EQ(vxAddPackedData(stream, record), 4);
  Bytes expected(16, 0);
  expected.insert(expected.end(), {0xAB, 0x3C, 0x12});
  expected.insert(expected.end(), std::begin(record), std::end(record));
  EXPECT_EQ(readBytes(div), expected);
}

TEST_F(StreamFunctions, StatisticsGiveTheCountTwice) {
  const unsigned stream = create(5);
  vxAddPlaceholder(stream);
  vxAddPlaceholder(stream);
  unsigned configured = 0, framesPacked = 0, written = 0;
  EXPECT_EQ(vxGetPackStatistics(stream, &configured, &framesPacked, &written), 0);
  EXPECT_EQ(configured, 5U);
  EXPECT_EQ(framesPacked, 2U);
  EXPECT_EQ(written, 2U);
}

TEST_F(StreamFunctions, NullPackedDataIsAPlaceholder) {
  const unsigned stream = create(1);
  EXPECT_EQ(vxAddPackedData(stream, nullptr), 4);
  EXPECT_EQ(readBytes(div), Bytes(22, 0));
}

TEST_F(StreamFunctions, ImageThatCannotBePackedChangesNothing) {
  const unsigned stream = create(1);
  EXPECT_EQ(vxAddTiffImageData(stream, nullptr), 23);
  EXPECT_EQ(output(), "vxAddTiffImageData: setTiffImageData() failed.\n");
  EXPECT_EQ(vxReplaceFrame(stream, 0, nullptr), 23);
  EXPECT_EQ(output(), "vxReplaceFrame: setTiffImageData() failed.\n");
  EXPECT_EQ(streamVector[0]->seqNum, 0U);
  EXPECT_EQ(vxAddTiffImageData(stream, image.data()), 4);
}

TEST_F(StreamFunctions, ReplacingIsNotOffered) {
  const unsigned stream = create(2);
  vxAddTiffImageData(stream, image.data());
  const Bytes before = readBytes(div);
  EXPECT_EQ(vxReplaceFrame(stream, 7, image.data()), 16);
  EXPECT_EQ(output(), "editVideoFrame: Not implemented yet. Ignoring 7\n");
  EXPECT_EQ(readBytes(div), before);
  EXPECT_EQ(vxIsPackStreamerFinished(stream), 3);
}

TEST_F(StreamFunctions, ClosingEarlyLeavesTheStatusFile) {
  const unsigned stream = create(2);
  vxAddTiffImageData(stream, image.data());
  EXPECT_EQ(vxClosePackStreamer(stream), 5);
  EXPECT_TRUE(std::filesystem::exists(name + ".incomplete.txt"));
}

TEST_F(StreamFunctions, RefusedFrameShowsInTheLog) {
  const unsigned stream = create(1);
  vxAddTiffImageData(stream, image.data());
  EXPECT_EQ(vxAddTiffImageData(stream, image.data()), 4);
  EXPECT_EQ(vxAddPlaceholder(stream), 3);
  EXPECT_EQ(output(),
            "queueFrame: seqNum=1 but frame_count=1\nqueueFrame: seqNum=1 but frame_count=1\n");
}

TEST_F(StreamFunctions, FailedCreationSaysWhyOnBothOutputs) {
  ASSERT_EQ(VX_LOG::VxLogger::factory()->loggerFile((folder / "log.txt").c_str()), 0);
  EXPECT_EQ(create(0), 0U);
  const std::string expected =
      "prepareForWriting: frameCount set to zero.\n"
      "vxCreatePackStreamer: prepareForWriting() failed [status=12]\n"
      "closeStream: KPF Packed streamStatus is not marked complete.  Writing .incomplete.txt to "
      "document incomplete status.\n";
  EXPECT_EQ(output(), expected);
  EXPECT_EQ(TEST_SUPPORT::readText(folder / "log.txt"), expected);
  EXPECT_TRUE(std::filesystem::exists(".incomplete.txt"));
}

TEST_F(StreamFunctions, StreamsAreIndependent) {
  const unsigned first = create(2);
  VXP_STREAM_CONFIGURATION configuration;
  configuration.width = 1;
  configuration.height = 1;
  configuration.bitsPerPixel = 8;
  configuration.frameCount = 1;
  configuration.frameRate = 1;
  const unsigned second = vxCreatePackStreamer(folder / "other.kpf", configuration);
  const unsigned char pixel[] = {0x55, 0, 0, 0};
  EXPECT_EQ(vxAddTiffImageData(second, pixel), 4);
  EXPECT_EQ(vxAddTiffImageData(first, image.data()), 3);
  EXPECT_EQ(readBytes(folder / "other/other_0001.div").back(), 0x55);
  EXPECT_EQ(readBytes(div).size(), 22U);
}

}  // namespace
