// What a writer asks about the pages of its data files.
#include <cstddef>
#include <filesystem>
#include <string>
#include "tests/stream/scripted_page_cache.h"

#include "tests/stream/stream_test.h"

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

#ifndef _WIN32
TEST_F(WrittenPages, AreNotAskedForWhenTheWriteFailed) {
  std::filesystem::create_symlink("/dev/full", folder.path() / "rec" / "rec_0001.div");
  EXPECT_EQ(add(20).find("start"), std::string::npos);
  EXPECT_EQ(writer.seqNum, 20U);
}
#endif

}  // namespace
