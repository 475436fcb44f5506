#include "tools/kpf/frames/recorded_frames.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "kpf_reader.h"
#include "tests/support/files.h"
#include "vlm_internal.h"

namespace {

using namespace KPF_TOOL;
using TEST_SUPPORT::TemporaryFolder;
using Bytes = std::vector<unsigned char>;

/// Recordings of two frames of 4 x 2 pixels, made by the library from left-justified samples.
class RecordedFrames : public testing::Test {
 protected:
  std::string record(int bits, const std::vector<Bytes>& images) {
    std::string name = folder_ / ("clip" + std::to_string(bits) + ".kpf");
    VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration;
    configuration.width = 4;
    configuration.height = 2;
    configuration.bitsPerPixel = bits;
    configuration.frameRate = 50;
    configuration.frameCount = static_cast<unsigned>(images.size());
    configuration.startSeconds = 1700000000;
    const unsigned stream = vxCreatePackStreamer(name, configuration);
    for (const Bytes& image : images) vxAddTiffImageData(stream, image.data());
    vxClosePackStreamer(stream);
    return name;
  }

  std::string eight() {
    return record(8, {{1, 2, 3, 4, 5, 6, 7, 8}, {11, 12, 13, 14, 15, 16, 17, 18}});
  }

  /// 0x1230, 0x4560 and so on: the lowest four bits are none that a recording keeps.
  std::string twelve() {
    return record(12, {{0x30, 0x12, 0x60, 0x45, 0x90, 0x78, 0xC0, 0xAB,  //
                        0xF0, 0xDE, 0x10, 0x32, 0x40, 0x65, 0x70, 0x98}});
  }

  static Bytes copied(FrameSource& source, std::size_t stride) {
    Bytes out(stride * source.height(), 0xA5);
    source.copyTo(out.data(), stride);
    return out;
  }

  TemporaryFolder folder_;
};

TEST_F(RecordedFrames, TellWhatTheRecordingIs) {
  const auto source = openRecording(eight(), Samples::k8Bit);
  EXPECT_EQ(source->width(), 4U);
  EXPECT_EQ(source->height(), 2U);
  EXPECT_EQ(source->frameRate(), 50);
  EXPECT_EQ(source->frameCount(), 2U);
  EXPECT_EQ(source->rowSize(), 4U);
  EXPECT_EQ(source->frameSize(), 8U);
  EXPECT_EQ(openRecording(eight(), Samples::k16Bit)->frameSize(), 16U);
}

TEST_F(RecordedFrames, ComeOneAfterTheOther) {
  const auto source = openRecording(eight(), Samples::k8Bit);
  ASSERT_TRUE(source->next());
  EXPECT_EQ(copied(*source, 4), (Bytes{1, 2, 3, 4, 5, 6, 7, 8}));
  ASSERT_TRUE(source->next());
  EXPECT_EQ(copied(*source, 4), (Bytes{11, 12, 13, 14, 15, 16, 17, 18}));
  EXPECT_FALSE(source->next());
  EXPECT_FALSE(source->next());
}

TEST_F(RecordedFrames, AFrameMayBeCopiedAgain) {
  const auto source = openRecording(eight(), Samples::k8Bit);
  source->next();
  EXPECT_EQ(copied(*source, 4), copied(*source, 4));
}

TEST_F(RecordedFrames, RowsMayStandApart) {
  const auto source = openRecording(eight(), Samples::k8Bit);
  source->next();
  EXPECT_EQ(copied(*source, 5), (Bytes{1, 2, 3, 4, 0xA5, 5, 6, 7, 8, 0xA5}));
}

TEST_F(RecordedFrames, EightBitsFillTheUpperHalfOfSixteen) {
  const auto source = openRecording(eight(), Samples::k16Bit);
  source->next();
  EXPECT_EQ(copied(*source, 9),
            (Bytes{0, 1, 0, 2, 0, 3, 0, 4, 0xA5, 0, 5, 0, 6, 0, 7, 0, 8, 0xA5}));
}

TEST_F(RecordedFrames, TwelveBitsAreLeftJustifiedInSixteen) {
  const auto source = openRecording(twelve(), Samples::k16Bit);
  source->next();
  EXPECT_EQ(copied(*source, 8), (Bytes{0x30, 0x12, 0x60, 0x45, 0x90, 0x78, 0xC0, 0xAB,  //
                                       0xF0, 0xDE, 0x10, 0x32, 0x40, 0x65, 0x70, 0x98}));
}

TEST_F(RecordedFrames, OfTwelveBitsTheHighBytesAreTheEight) {
  const auto source = openRecording(twelve(), Samples::k8Bit);
  source->next();
  EXPECT_EQ(copied(*source, 5),
            (Bytes{0x12, 0x45, 0x78, 0xAB, 0xA5, 0xDE, 0x32, 0x65, 0x98, 0xA5}));
}

TEST_F(RecordedFrames, CanBePassedOver) {
  const auto source = openRecording(eight(), Samples::k8Bit);
  source->skip(1);
  ASSERT_TRUE(source->next());
  EXPECT_EQ(copied(*source, 4)[0], 11);
  source->skip(1);
  EXPECT_FALSE(source->next());
}

TEST_F(RecordedFrames, PassingOverTheEndIsTheEnd) {
  const auto source = openRecording(eight(), Samples::k8Bit);
  source->skip(std::uint64_t{1} << 40);
  EXPECT_FALSE(source->next());
}

TEST_F(RecordedFrames, HaveTheirRecordsTimes) {
  const auto source = openRecording(eight(), Samples::k8Bit);
  source->next();
  EXPECT_DOUBLE_EQ(source->time().value(), 1700000000.0);
  source->next();
  EXPECT_NEAR(source->time().value(), 1700000000.02, 2e-6);
}

TEST_F(RecordedFrames, LostOnesHaveNoTime) {
  const std::string name = eight();
  auto file = TEST_SUPPORT::readBytes(folder_ / "clip8/clip8_0001.div");
  std::memset(file.data(), 0, file.size() / 2);
  TEST_SUPPORT::writeBytes(folder_ / "clip8/clip8_0001.div", file);
  const auto source = openRecording(name, Samples::k8Bit);
  source->next();
  EXPECT_FALSE(source->time().has_value());
}

TEST_F(RecordedFrames, LostOnesSaySoAndAreNoFlaw) {
  const std::string name = eight();
  auto file = TEST_SUPPORT::readBytes(folder_ / "clip8/clip8_0001.div");
  std::memset(file.data(), 0, file.size() / 2);
  TEST_SUPPORT::writeBytes(folder_ / "clip8/clip8_0001.div", file);
  const auto source = openRecording(name, Samples::k16Bit);
  source->next();
  EXPECT_TRUE(source->lost());
  EXPECT_EQ(copied(*source, 9),
            (Bytes{0, 0, 0, 0, 0, 0, 0, 0, 0xA5, 0, 0, 0, 0, 0, 0, 0, 0, 0xA5}));
  source->next();
  EXPECT_FALSE(source->lost());
  EXPECT_EQ(source->flaw(), "");
}

TEST_F(RecordedFrames, AFileThatShrinksLosesItsFramesAndNoMore) {
  const std::string name = record(8, std::vector<Bytes>(1 << 16, Bytes(8, 7)));
  const auto source = openRecording(name, Samples::k8Bit);
  ASSERT_TRUE(source->next());
  std::filesystem::resize_file(folder_ / "clip8/clip8_0001.div", 1 << 20);
  source->skip(65534);
  ASSERT_TRUE(source->next());
  EXPECT_TRUE(source->lost());
  EXPECT_FALSE(source->next());
  EXPECT_EQ(source->flaw(), "1 frame is unreadable (" + (folder_ / "clip8/clip8_0001.div") +
                                ", byte 1572840: the file has become shorter)");
}

TEST_F(RecordedFrames, TheirOwnSamplesAreThoseThatLoseNothing) {
  EXPECT_EQ(samplesOf(eight()), Samples::k8Bit);
  EXPECT_EQ(samplesOf(twelve()), Samples::k16Bit);
}

TEST_F(RecordedFrames, WhatIsNoRecordingIsAnError) {
  EXPECT_THROW(openRecording(folder_ / "none.kpf", Samples::k8Bit), KPF_READER::RecordingError);
  EXPECT_THROW(samplesOf(folder_ / "none.kpf"), KPF_READER::RecordingError);
}

}  // namespace
