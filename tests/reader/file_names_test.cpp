#include <filesystem>

#include "tests/reader/recording_bytes.h"

namespace {

using KPF_READER::Recording;
using TEST_READER::headerBytes;
using TEST_READER::recordRun;
using TEST_SUPPORT::Bytes;
using TEST_SUPPORT::CurrentFolder;
using TEST_SUPPORT::writeBytes;
namespace fs = std::filesystem;

/// Starts from an empty current folder.
class FileNames : public testing::Test {
 protected:
  void writeRecording(const fs::path& header, const fs::path& div) {
    fs::create_directories((folder.path() / header).parent_path());
    fs::create_directories((folder.path() / div).parent_path());
    writeBytes(header, headerBytes());
    writeBytes(div, recordRun(0, 1));
  }

  TEST_SUPPORT::TemporaryFolder folder;
  CurrentFolder current{folder.path()};
};

TEST_F(FileNames, FolderIsTheNameWithoutItsExtension) {
  writeRecording("a/clip.kpf", "a/clip/clip_0001.div");
  EXPECT_EQ(Recording("a/clip.kpf").recordCount(), 2U);
  EXPECT_EQ(Recording("a/clip.kpf").divFilePath(12), "a/clip/clip_0012.div");
  EXPECT_EQ(Recording("./a/clip.kpf").recordCount(), 2U);
}

TEST_F(FileNames, ExtensionBeginsAtTheLastDot) {
  writeRecording("./clip.v2.kpf", "clip.v2/clip.v2_0001.div");
  EXPECT_EQ(Recording("./clip.v2.kpf").recordCount(), 2U);
}

TEST_F(FileNames, LastDotMayStandInAFolderName) {
  writeRecording("x/rec.old/clip", "x/rec/rec_0001.div");
  EXPECT_EQ(Recording("x/rec.old/clip").recordCount(), 2U);
  EXPECT_EQ(Recording("x/rec.old/clip").divFilePath(1), "x/rec/rec_0001.div");
}

TEST_F(FileNames, WithoutAnExtensionThereIsNoFolder) {
  writeBytes("clip", headerBytes());
  TEST_READER::expectError([] { Recording("clip"); }, "clip", 0,
                           "the name has no extension, so the data has no folder");
}

TEST_F(FileNames, NumbersOfFiveDigitsAreFound) {
  writeRecording("./clip.kpf", "clip/clip_12345.div");
  writeBytes("clip.kpf", TEST_READER::with(headerBytes(), 468, {0xFF, 0xFF, 0xFF, 0xFF}));
  EXPECT_EQ(Recording("./clip.kpf").divFiles().at(0).number, 12345U);
  EXPECT_EQ(Recording("./clip.kpf").record(0).place, 24688U);
}

TEST_F(FileNames, OtherSpellingsOfANumberAreNotDataFiles) {
  writeRecording("./clip.kpf", "clip/clip_0001.div");
  for (const char* name : {"clip_2.div", "clip_00002.div", "clip_0000.div", "clip_0002.DIV",
                           "clip_0002.div~", "clip_-002.div", "clip_0002", "clip_.div",
                           "clip_99999999999.div", "CLIP_0002.div", "other_0002.div"}) {
    writeBytes(fs::path("clip") / name, recordRun(2, 3));
  }
  EXPECT_EQ(Recording("./clip.kpf").divFiles().size(), 1U);
}

#ifndef _WIN32
// Only where a backslash is a letter like any other.

TEST_F(FileNames, BareNameWasWrittenBesideWithABackslash) {
  writeRecording("./clip.kpf", R"(clip\clip_0001.div)");
  EXPECT_EQ(Recording("clip.kpf").recordCount(), 2U);
  EXPECT_EQ(Recording("clip.kpf").divFilePath(2), R"(clip\clip_0002.div)");
}

TEST_F(FileNames, BareNameIsAlsoFoundFromElsewhere) {
  writeRecording("a/clip.kpf", R"(a/clip\clip_0001.div)");
  EXPECT_EQ(Recording("a/clip.kpf").recordCount(), 2U);
  EXPECT_EQ(Recording(folder / "a/clip.kpf").recordCount(), 2U);
}

TEST_F(FileNames, BareNameIsFoundInAFolderToo) {
  writeRecording("./clip.kpf", "clip/clip_0001.div");
  EXPECT_EQ(Recording("clip.kpf").recordCount(), 2U);
}

TEST_F(FileNames, FilesOfTheWritersOwnRuleComeFirst) {
  writeRecording("./clip.kpf", R"(clip\clip_0001.div)");
  writeRecording("./clip.kpf", "clip/clip_0001.div");
  EXPECT_EQ(Recording("clip.kpf").divFiles().at(0).path, R"(clip\clip_0001.div)");
  EXPECT_EQ(Recording("./clip.kpf").divFiles().at(0).path, "./clip/clip_0001.div");
}

TEST_F(FileNames, BackslashesSeparateWhereThereIsNoSlash) {
  writeRecording(R"(./rec\clip.kpf)", R"(rec\clip\clip_0001.div)");
  EXPECT_EQ(Recording(R"(rec\clip.kpf)").recordCount(), 2U);
}

TEST_F(FileNames, BackslashIsPartOfTheNameBesideASlash) {
  writeRecording(R"(a/rec\clip.kpf)", R"(a/rec\clip/rec\clip_0001.div)");
  EXPECT_EQ(Recording(R"(a/rec\clip.kpf)").recordCount(), 2U);
}
#endif

}  // namespace
