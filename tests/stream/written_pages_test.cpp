// What a writer asks about the pages of its data files.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "tests/stream/scripted_page_cache.h"
#include "tests/stream/stream_test.h"
#ifndef _WIN32
#include <sys/resource.h>

#include "tests/support/file_size_limit.h"
#endif

namespace {

/// Records of 2 MiB: 8-bit frames that fill it but for the header.
class WrittenPages : public StreamTest {
 protected:
  WrittenPages() {
    configuration.width = (2U << 20) - 16;
    configuration.height = 1;
    configuration.bitsPerPixel = 8;
    configuration.frameRate = 1;
    configuration.frameCount = 60;
    writer.prepareForWriting(name, configuration);
    writer.framesPerDivFile = 20;
  }

  std::string add(int frames) {
    for (int i = 0; i < frames; ++i) writer.vxAddPlaceholderFrame();
    return withoutDescriptors(cache.said());
  }

  /// "start 7 0-8" as "start 0-8": which numbers the system gives is not the test's.
  static std::string withoutDescriptors(const std::string& said) {
    std::string kept;
    for (std::size_t line = 0; line < said.size();) {
      const std::size_t end = said.find('\n', line) + 1;
      const std::size_t number = said.find(' ', line);
      const std::size_t range = said.find(' ', number + 1);
      kept += said.substr(line, number - line);
      kept += range < end ? said.substr(range, end - range) : "\n";
      line = end;
    }
    return kept;
  }

  VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration;
  ScriptedPageCache cache;
  VLM_KPF::VxKPFPackedStream writer{cache};
};

TEST_F(WrittenPages, AreThereBeforeTheFirstFrame) {
  EXPECT_EQ(cache.said(), "take rec 0-12\n");
  EXPECT_EQ(add(2), "hold 0-10\nstart 0-2\nhold 0-8\nstart 2-4\n");
  writer.closeStream();
  EXPECT_EQ(withoutDescriptors(cache.said()), "release\n");
}

TEST_F(WrittenPages, AreStartedAndDroppedAcrossDataFiles) {
  add(5);
  EXPECT_EQ(add(1), "hold 0-0\nrelease\ndrop 0-2\nstart 10-12\n");
  EXPECT_EQ(add(1), "drop 0-4\nstart 12-14\n");
  add(12);
  EXPECT_EQ(add(1), "drop 20-30\nstart 38-40\n");
  EXPECT_EQ(add(2), "keep\ndrop 22-32\nstart 0-2\ndrop 24-34\nstart 2-4\n");
  EXPECT_EQ(divBytes("0001").size(), 40U << 20);
}

TEST_F(WrittenPages, AreLeftWhenTheRecordingEnds) {
  add(24);
  writer.closeStream();
  EXPECT_EQ(withoutDescriptors(cache.said()), "release\n");
}

TEST_F(WrittenPages, OfTheLastWindowAreLeftAfterTheLastFrame) {
  add(60);
  writer.closeStream();
  EXPECT_EQ(cache.said(), "");
}

/// A frame of 2 MiB whose every byte tells where it is.
std::unique_ptr<VX_KPF_PACKED::VxKPFPacked> frameFrom(unsigned first, TEST_SUPPORT::Bytes& record) {
  record.resize(2U << 20);
  std::uint32_t state = first;
  for (unsigned char& byte : record) {
    state = state * 1664525U + 1013904223U;
    byte = static_cast<unsigned char>(state >> 24U);
  }
  auto frame = std::make_unique<VX_KPF_PACKED::VxKPFPacked>();
  frame->setPackedData(record.data(), 2U << 20, (2U << 20) - 16, 1, 8);
  return frame;
}

TEST_F(WrittenPages, HoldWhatOneWriteWouldLeave) {
  TEST_SUPPORT::Bytes expected;
  for (unsigned n = 1; n <= 3; ++n) {
    TEST_SUPPORT::Bytes record;
    writer.addFrame(frameFrom(n, record));
    expected.insert(expected.end(), record.begin() + 16, record.end());
  }
  writer.closeStream();
  TEST_SUPPORT::Bytes pixels = divBytes("0001");
  ASSERT_EQ(pixels.size(), 6U << 20);
  for (int n = 2; n >= 0; --n) {
    const auto header = pixels.begin() + n * (2 << 20);
    pixels.erase(header, header + 16);
  }
  EXPECT_TRUE(pixels == expected);
}

#ifndef _WIN32
TEST_F(WrittenPages, OfATornRecordAreCutOff) {
  writer.vxAddPlaceholderFrame();
  TEST_SUPPORT::Bytes record;
  {
    const TEST_SUPPORT::FileSizeLimit limit((2U << 20) + 100000);
    writer.addFrame(frameFrom(1, record));
  }
  EXPECT_EQ(divBytes("0001").size(), 2U << 20);
  writer.addFrame(frameFrom(2, record));
  const TEST_SUPPORT::Bytes bytes = divBytes("0001");
  ASSERT_EQ(bytes.size(), 6U << 20);
  EXPECT_TRUE(std::all_of(bytes.begin(), bytes.begin() + (4 << 20), [](int b) { return b == 0; }));
  EXPECT_TRUE(std::equal(bytes.begin() + (4 << 20) + 16, bytes.end(), record.begin() + 16));
}

TEST_F(WrittenPages, TheFirstFrameFindsABlockForItsPixels) {
  configuration.width = (3U << 20) - 16;  // no other test leaves a block of this size
  const TEST_SUPPORT::Bytes image(3U << 20, 1);
  stream.prepareForWriting(name, configuration);
  const auto faults = [] {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_minflt;
  };
  const long before = faults();
  auto frame = std::make_unique<VX_KPF_PACKED::VxKPFPacked>();
  frame->setTiffImageData(image.data(), configuration.width, 1, 8);
  EXPECT_LT(faults() - before, 100);  // of the 768 that the frame takes
}

TEST_F(WrittenPages, AreNotAskedForWhenTheWriteFailed) {
  std::filesystem::create_symlink("/dev/full", folder.path() / "rec" / "rec_0001.div");
  EXPECT_EQ(add(20).find("start"), std::string::npos);
  EXPECT_EQ(writer.seqNum, 20U);
}
#endif

}  // namespace
