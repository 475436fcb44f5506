// What is derived from a stream's name.
#include <filesystem>
#include <string>
#include <vector>

#include "paths/native_path.h"
#include "tests/stream/stream_test.h"

namespace {

using PATHS::nativePath;
using VLM_KPF::VxKPFPackedStream;

class Names : public StreamTest {
 protected:
  /// Prepares under `given`, relative to the test's folder, and keeps folder and base name.
  unsigned prepareAs(const std::string& given) {
    VxKPFPackedStream writer;
    const unsigned status = writer.prepareForWriting(given, smallConfiguration(1));
    divFolder = writer.divFolder;
    baseName = writer.baseName;
    keptName = writer.streamName;
    return status;
  }

  std::string divFolder, baseName, keptName;
};

TEST_F(Names, FolderIsTheNameWithoutItsExtension) {
  ASSERT_EQ(prepareAs(folder / "clip.kpf"), 3U);
  EXPECT_EQ(divFolder, folder / "clip/");
  EXPECT_EQ(baseName, "clip");
  EXPECT_EQ(keptName, folder / "clip.kpf");
  EXPECT_TRUE(std::filesystem::is_directory(folder.path() / "clip"));
}

TEST_F(Names, BareNameTakesTheBackslash) {
  ASSERT_EQ(prepareAs("clip.kpf"), 3U);
  EXPECT_EQ(divFolder, "clip\\");
  EXPECT_EQ(baseName, "clip");
}

TEST_F(Names, NameWithOnlyBackslashesTakesTheBackslash) {
  std::filesystem::create_directory("rec");
  ASSERT_EQ(prepareAs("rec\\clip.kpf"), 3U);
  EXPECT_EQ(divFolder, "rec\\clip\\");
  EXPECT_EQ(baseName, "clip");
}

TEST_F(Names, SlashGoesBeforeBackslash) {
  std::filesystem::create_directory("rec");
#ifdef _WIN32
  std::filesystem::create_directory("rec/a");
#endif
  ASSERT_EQ(prepareAs("rec/a\\clip.kpf"), 3U);
  EXPECT_EQ(divFolder, "rec/a\\clip/");
  EXPECT_EQ(baseName, "a\\clip");
}

TEST_F(Names, LastDotMayLieInAFolderName) {
  std::filesystem::create_directories("top/rec.old");
  ASSERT_EQ(prepareAs("top/rec.old/clip"), 3U);
  EXPECT_EQ(divFolder, "top/rec/");
  EXPECT_EQ(baseName, "rec");
  EXPECT_TRUE(std::filesystem::is_regular_file("top/rec.old/clip"));
}

// The separator is sought in front of the dot: there is none left in this name.
TEST_F(Names, SeparatorBehindTheLastDotIsNotSeen) {
  std::filesystem::create_directory("clip.d");
  ASSERT_EQ(prepareAs("clip.d/x"), 3U);
  EXPECT_EQ(divFolder, "clip\\");
  EXPECT_EQ(baseName, "clip");
}

TEST_F(Names, FolderThatEndsInTheSeparatorGetsNoSecondOne) {
  std::filesystem::create_directory("rec");
  ASSERT_EQ(prepareAs("rec/.kpf"), 3U);
  EXPECT_EQ(divFolder, "rec/");
  EXPECT_EQ(baseName, "");
}

TEST_F(Names, FolderNeedNotLieBesideTheHeaderFile) {
  std::filesystem::create_directory("a.b");
  ASSERT_EQ(prepareAs("./a.b/clip"), 3U);
  EXPECT_TRUE(std::filesystem::is_directory("a"));
  ASSERT_EQ(prepareAs("a.b/x.kpf"), 3U);
  EXPECT_TRUE(std::filesystem::is_directory("a.b/x"));
}

TEST_F(Names, WithoutADotNothingIsMade) {
  output();
  {
    VxKPFPackedStream writer;
    EXPECT_EQ(writer.prepareForWriting("clip", smallConfiguration(1)), 22U);
    EXPECT_EQ(writer.streamStatus, 22U);
    EXPECT_EQ(writer.streamName, "");
    EXPECT_EQ(output(), "prepareForWriting: streamName is missing a file extension!\n");
    EXPECT_TRUE(TEST_SUPPORT::entriesBelow(folder.path()).empty());
  }
  // Its end leaves a status file, under the name that it never got.
  EXPECT_EQ(TEST_SUPPORT::entriesBelow(folder.path()), std::vector<std::string>{".incomplete.txt"});
}

TEST_F(Names, NothingBeforeTheLastDotIsRefused) {
  output();
  VxKPFPackedStream writer;
  EXPECT_EQ(writer.prepareForWriting(".kpf", smallConfiguration(1)), 22U);
  EXPECT_EQ(output(), "prepareForWriting: streamName has nothing before its file extension!\n");
  EXPECT_TRUE(TEST_SUPPORT::entriesBelow(folder.path()).empty());
}

TEST_F(Names, EmptyNameIsRefused) { EXPECT_EQ(prepareAs(""), 22U); }

TEST_F(Names, FileNumberHasFourDigitsOrMore) {
  VxKPFPackedStream writer;
  ASSERT_EQ(writer.prepareForWriting(folder / "clip.kpf", smallConfiguration(20000)), 3U);
  writer.framesPerDivFile = 1;
  for (const unsigned place : {0U, 11U, 9998U, 9999U}) {
    writer.seqNum = place;
    writer.addFrame(smallFrame(1));
  }
  EXPECT_EQ(TEST_SUPPORT::entriesBelow(folder.path() / "clip"),
            (std::vector<std::string>{"clip_0001.div", "clip_0012.div", "clip_10000.div",
                                      "clip_9999.div"}));
}

TEST_F(Names, PerCentSignsAndLineFeedsAreJustCharacters) {
  ASSERT_EQ(prepareAs("100%s%n.kpf"), 3U);
  EXPECT_EQ(baseName, "100%s%n");
#ifndef _WIN32
  ASSERT_EQ(prepareAs("./two\nlines.kpf"), 3U);
  EXPECT_EQ(divFolder, "./two\nlines/");
#endif
}

// UTF-8, and bytes that are not: on Windows those are of the code page.
TEST_F(Names, BytesBeyondAsciiMeanTheSameForEveryFile) {
  for (const std::string stem : {"r\xc3\xa4um", "r\xe4um", "\x80uro"}) {
    VxKPFPackedStream writer;
    std::string given = folder / "";
    given.append(stem).append(".kpf");
    ASSERT_EQ(writer.prepareForWriting(given, smallConfiguration(2)), 3U);
    EXPECT_EQ(writer.addFrame(smallFrame(1)), 3U);
    EXPECT_EQ(writer.seqNum, 1U);
    writer.closeStream();
    EXPECT_TRUE(std::filesystem::exists(nativePath(given)));
    EXPECT_TRUE(std::filesystem::exists(nativePath(given + ".incomplete.txt")));
    std::string div = folder / "";
    div.append(stem).append("/").append(stem).append("_0001.div");
    EXPECT_EQ(TEST_SUPPORT::readBytes(nativePath(div)).size(), 28U);
  }
}

}  // namespace
