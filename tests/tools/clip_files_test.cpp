#include "tools/kpf/recording/clip_files.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "kpf_reader.h"
#include "tests/support/library_test.h"
#include "tools/kpf/recording/record_stamp.h"
#include "tools/kpf/terminal/tool_error.h"

namespace {

using namespace KPF_TOOL;
using KPF_READER::Recording;
using TEST_SUPPORT::readText;
using TEST_SUPPORT::writeText;
namespace fs = std::filesystem;

/// Records of one pixel, which is a letter.
class ClipFilesTest : public TEST_SUPPORT::LibraryTest {
 protected:
  ClipFilesTest() {
    configuration_.width = configuration_.height = 1;
    configuration_.bitsPerPixel = 8;
    configuration_.frameRate = 10;
    configuration_.frameCount = LibraryStream::kFramesUnknown;
  }

  static void add(ClipFiles& files, char letter) {
    std::vector<unsigned char> record(17);
    stampTime(record.data(), 1700000000000000000);
    record[16] = static_cast<unsigned char>(letter);
    files.add(record.data());
  }

  /// Number and pixel of each record, '-' where it is a placeholder: "0a1b-".
  static std::string recorded(const std::string& header) {
    const Recording recording(header);
    std::string text;
    for (std::uint32_t n = 0; n < recording.recordCount(); ++n) {
      const auto record = recording.record(n);
      text += record.placeholder
                  ? "-"
                  : std::to_string(record.sequenceNumber) + static_cast<char>(record.pixels[0]);
    }
    return text;
  }

  VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration_;
  CapturedOutput captured_;
};

TEST_F(ClipFilesTest, ARecordingIsWhatWasAdded) {
  ClipFiles files({"./out.kpf", false, false, {}}, configuration_, captured_);
  files.begin();
  add(files, 'a');
  files.addPlaceholder();
  add(files, 'c');
  EXPECT_TRUE(files.clips().empty());  // not before its end
  files.end();
  ASSERT_EQ(files.clips().size(), 1U);
  const Clip& clip = files.clips()[0];
  EXPECT_EQ(clip.header, "./out.kpf");
  EXPECT_EQ(clip.frames, 3U);
  EXPECT_EQ(clip.placeholders, 1U);
  EXPECT_TRUE(clip.whole);
  EXPECT_EQ(recorded("./out.kpf"), "0a-2c");
  EXPECT_EQ(Recording("./out.kpf").header().frameCount, 3U);
  EXPECT_FALSE(fs::exists("./out.kpf.incomplete.txt"));
  EXPECT_FALSE(captured_.any());
  EXPECT_GT(files.worstCall(), 0);
}

TEST_F(ClipFilesTest, NumbersBeginAnewInEachRecording) {
  writeText("out_0002.kpf", "somebody's");
  ClipFiles files({"./out.kpf", true, false, {}}, configuration_, captured_);
  for (const char letter : {'a', 'b'}) {
    files.begin();
    add(files, letter);
    files.end();
  }
  ASSERT_EQ(files.clips().size(), 2U);
  EXPECT_EQ(files.clips()[1].header, "./out_0003.kpf");
  EXPECT_EQ(files.clips()[1].frames, 1U);
  EXPECT_EQ(recorded("./out_0001.kpf") + recorded("./out_0003.kpf"), "0a0b");
  EXPECT_EQ(readText("out_0002.kpf"), "somebody's");
}

TEST_F(ClipFilesTest, DataFilesOfAnotherRecordingTakeItsNumber) {
  fs::create_directory("out_0001");
  writeText("out_0001/out_0001_0001.div", "left behind");
  ClipFiles files({"./out.kpf", true, false, {}}, configuration_, captured_);
  files.begin();
  files.end();
  EXPECT_EQ(files.clips()[0].header, "./out_0002.kpf");
  EXPECT_EQ(readText("out_0001/out_0001_0001.div"), "left behind");
}

TEST_F(ClipFilesTest, WhoeverComesSecondTakesTheNextNumber) {
  ClipFiles first({"./out.kpf", true, false, {}}, configuration_, captured_);
  ClipFiles second({"./out.kpf", true, false, {}}, configuration_, captured_);
  const Claim other("./out_0001.kpf");  // of somebody who has not written anything yet
  first.begin();
  second.begin();
  first.end();
  second.end();
  EXPECT_EQ(first.clips()[0].header, "./out_0002.kpf");
  EXPECT_EQ(second.clips()[0].header, "./out_0003.kpf");
}

TEST_F(ClipFilesTest, WhatIsThereIsKeptUntilItIsBegunByForce) {
  for (const char letter : {'a', 'b'}) {
    ClipFiles files({"./out.kpf", false, letter == 'b', {}}, configuration_, captured_);
    EXPECT_EQ(fs::exists("./out.kpf"), letter == 'b');
    files.begin();
    add(files, letter);
    files.end();
    EXPECT_EQ(recorded("./out.kpf"), std::string("0") + letter);
  }
  ClipFiles files({"./out.kpf", false, false, {}}, configuration_, captured_);
  EXPECT_THROW(files.begin(), ToolError);
  EXPECT_EQ(recorded("./out.kpf"), "0b");
}

TEST_F(ClipFilesTest, FilesThatAreTakenAwayAreNoWholeRecording) {
  ClipFiles files({"./out.kpf", false, true, {}}, configuration_, captured_);
  for (const char* const taken : {"out/out_0001.div", "out.kpf"}) {
    files.begin();
    add(files, 'a');
    EXPECT_TRUE(fs::remove(taken)) << taken;
    files.end();
    EXPECT_FALSE(files.clips().back().whole) << taken;
    EXPECT_EQ(files.clips().back().frames, 1U) << taken;
    captured_.drop();
  }
}

TEST_F(ClipFilesTest, WhatTheLibrarySaysIsTroubleAlsoWhereAllIsOnDisk) {
  ClipFiles files({"./out.kpf", false, false, {}}, configuration_, captured_);
  files.begin();
  add(files, 'a');
  std::puts("a line of the library");
  std::fflush(stdout);
  files.end();
  EXPECT_FALSE(files.clips()[0].whole);
  EXPECT_TRUE(captured_.any());  // and is told
  captured_.drop();
}

TEST_F(ClipFilesTest, ThatCannotBeBegunAreAnError) {
  ClipFiles files({"./missing/out.kpf", false, false, {}}, configuration_, captured_);
  EXPECT_THROW(files.begin(), ToolError);
  EXPECT_TRUE(files.clips().empty());
  captured_.drop();
}

}  // namespace
