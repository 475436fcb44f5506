// Pictures without a codec, byte by byte.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <string>

#include "tests/support/files.h"
#include "tools/kpf/frames/framing.h"
#include "tools/kpf/plain/plain_output.h"
#include "tools/kpf/terminal/tool_error.h"

#ifndef _WIN32
#include "tests/support/file_size_limit.h"
#endif

namespace {

using namespace KPF_TOOL;
using TEST_SUPPORT::entriesBelow;
using TEST_SUPPORT::readText;
using TEST_SUPPORT::writeText;

std::string rateOf(double rate) {
  PictureFormat format;
  format.frameRate = rate;
  const std::string head = y4mFraming(format).before;
  const std::size_t begin = head.find(" F") + 2;
  return head.substr(begin, head.find(' ', begin) - begin);
}

TEST(Y4m, TellsRatesAsTheSmallestRatio) {
  EXPECT_EQ(rateOf(25), "25:1");
  EXPECT_EQ(rateOf(12.5), "25:2");
  EXPECT_EQ(rateOf(30000 / 1001.0), "30000:1001");
  EXPECT_EQ(rateOf(1 / 3.0), "1:3");
  EXPECT_EQ(rateOf(29.97), "2997:100");
  EXPECT_EQ(rateOf(0.001), "1:1000");
  EXPECT_EQ(rateOf(1000000), "1000000:1");
}

TEST(Y4m, TellsNoRateThatNobodyCanMean) {
  for (const double rate : {0.0, -1.0, 5e-324, 1e-4, 1000001.0, 1e300}) {
    EXPECT_EQ(rateOf(rate), "0:0") << rate;
  }
}

class Plain : public testing::Test {
 protected:
  std::unique_ptr<PictureOutput> open(const std::string& name, PictureFormat format) {
    return openPlainOutput({folder_ / name, false, {}}, format);
  }

  TEST_SUPPORT::TemporaryFolder folder_;
  const PictureFormat deep_{2, 1, Samples::k16Bit, 25, 7, 2};
  const unsigned char frame_[4] = {0x30, 0x12, 0xF0, 0xFF};  // 0x1230, 0xFFF0
};

TEST_F(Plain, VideoIsHeaderAndFrames) {
  const auto output = open("clip.y4m", deep_);
  output->add(frame_);
  output->add(frame_);
  output->finish();
  EXPECT_EQ(readText(folder_ / "clip.y4m"),
            "YUV4MPEG2 W2 H1 F25:1 Ip A1:1 Cmono16\n"
            "FRAME\n\x30\x12\xF0\xFF"
            "FRAME\n\x30\x12\xF0\xFF");
}

TEST_F(Plain, ImagesBeginTheirSamplesWithTheHighByte) {
  const auto output = open("f_%03d.PGM", deep_);
  output->add(frame_);
  output->add(frame_);
  output->finish();
  EXPECT_THAT(entriesBelow(folder_.path()), testing::ElementsAre("f_007.PGM", "f_008.PGM"));
  EXPECT_EQ(readText(folder_ / "f_008.PGM"), "P5\n2 1\n65535\n\x12\x30\xFF\xF0");
}

TEST_F(Plain, BareFramesHaveNothingAroundThem) {
  const auto output = open("clip.raw", deep_);
  output->add(frame_);
  output->finish();
  EXPECT_EQ(readText(folder_ / "clip.raw"), "\x30\x12\xF0\xFF");
}

TEST_F(Plain, WhatIsNotFinishedLeavesNothing) {
  for (const char* name : {"clip.y4m", "clip.raw"}) open(name, deep_)->add(frame_);
  PictureFormat one = deep_;
  one.frames = 1;
  open("one.pgm", one)->add(frame_);
  EXPECT_THAT(entriesBelow(folder_.path()), testing::IsEmpty());
}

TEST_F(Plain, WhatIsThereIsKept) {
  writeText(folder_ / "f_008.pgm", "mine");
  EXPECT_THROW(open("f_%03d.pgm", deep_), ToolError);
  EXPECT_EQ(readText(folder_ / "f_008.pgm"), "mine");
}

TEST_F(Plain, OtherExtensionsAreNotPlain) {
  EXPECT_EQ(open("clip.mkv", deep_), nullptr);
  EXPECT_EQ(open("raw", deep_), nullptr);
}

#ifndef _WIN32
TEST_F(Plain, FullDiskIsToldAndLeavesWhatWasThere) {
  writeText(folder_ / "clip.raw", "older");
  const TEST_SUPPORT::FileSizeLimit limit(4);
  const auto output = openPlainOutput({folder_ / "clip.raw", true, {}}, deep_);
  const auto addThree = [&] {
    for (int i = 0; i < 3; ++i) output->add(frame_);
    output->finish();
  };
  EXPECT_THAT(addThree, testing::ThrowsMessage<ToolError>(testing::HasSubstr("cannot write")));
  EXPECT_EQ(readText(folder_ / "clip.raw"), "older");
}
#endif

}  // namespace
