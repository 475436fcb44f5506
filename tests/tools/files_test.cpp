// What stands in the way of a file, and when it gets its name.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <string>
#include <system_error>

#include "tests/support/files.h"
#include "tools/kpf/files/file_system.h"
#include "tools/kpf/files/image_pattern.h"
#include "tools/kpf/files/new_file.h"
#include "tools/kpf/terminal/tool_error.h"

namespace {

using namespace KPF_TOOL;
using TEST_SUPPORT::entriesBelow;
using TEST_SUPPORT::readText;
using TEST_SUPPORT::writeText;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::UnorderedElementsAre;
namespace fs = std::filesystem;

TEST(ImagePattern, IsOneNumberPaddedWithZeros) {
  for (const char* name : {"f_%06d.png", "%01d", "50%/f_%02d.tif"}) {
    const auto pattern = ImagePattern::parse(name);
    ASSERT_TRUE(pattern) << name;
    EXPECT_TRUE(pattern->isPadded()) << name;
  }
  for (const char* name : {"f_%d.png", "f_%6d.png", "f_%0d.png"}) {
    const auto pattern = ImagePattern::parse(name);
    ASSERT_TRUE(pattern) << name;
    EXPECT_FALSE(pattern->isPadded()) << name;
  }
  for (const char* name :
       {"f.png", "%03d_%03d.png", "%", "f_%03x", "f_%03", "%-3d", "%099d", "%%", "%03d/f.png"}) {
    EXPECT_FALSE(ImagePattern::parse(name)) << name;
  }
}

TEST(ImagePattern, HasNoOtherPlaceInItsFolders) {
  EXPECT_EQ(ImagePattern::parse("f_%d.png")->withFoldersEscaped(), "f_%d.png");
  EXPECT_EQ(ImagePattern::parse("50%/%d/f_%03d.png")->withFoldersEscaped(), "50%%/%%d/f_%03d.png");
}

TEST(ImagePattern, NamesEachNumber) {
  const auto pattern = ImagePattern::parse("a/f_%03d.png");
  EXPECT_EQ(pattern->nameOf(7), "a/f_007.png");
  EXPECT_EQ(pattern->nameOf(12345), "a/f_12345.png");
}

class Files : public testing::Test {
 protected:
  /// What checkFree or a new file of that name says; nothing when it may be written.
  std::string complaintAbout(const std::string& name, bool force, const FileIds& input = {}) {
    const Destination destination{folder_ / name, force, input};
    try {
      checkFree(destination.name, destination);
    } catch (const ToolError& error) {
      EXPECT_EQ(error.outcome(), Outcome::kRefused);
      EXPECT_FALSE(error.advice().empty());
      return error.what();
    }
    return "";
  }

  /// @return false on Windows, where a hard link takes its place.
  static bool makeSymlink(const std::string& target, const std::string& link) {
#ifdef _WIN32
    if (fs::exists(target)) fs::create_hard_link(target, link);
    return false;
#else
    fs::create_symlink(target, link);
    return true;
#endif
  }

  TEST_SUPPORT::TemporaryFolder folder_;
};

TEST_F(Files, ThatMatchAPatternAreFoundByTheirNumbers) {
  for (const char* name :
       {"f_001.png", "f_1234.png", "f_01.png", "f_0001.png", "f_001.tif", "g_001.png", "f_-01.png",
        "f_00a.png", "f_.png", "f_99999999999999999999.png", "f_.p", "f_001.png.png"}) {
    writeText(folder_ / name, "");
  }
  EXPECT_THAT(ImagePattern::parse(folder_ / "f_%03d.png")->numbersThere(),
              UnorderedElementsAre(1, 1234));
  EXPECT_THAT(ImagePattern::parse(folder_ / "missing/f_%03d.png")->numbersThere(),
              testing::IsEmpty());
}

TEST_F(Files, ThatMatchAPatternHaveAFirstAndALast) {
  const auto pattern = ImagePattern::parse(folder_ / "f_%02d.png");
  EXPECT_FALSE(pattern->rangeThere());
  for (const char* name : {"f_12.png", "f_07.png", "f_100.png", "f_005.png"}) {
    writeText(folder_ / name, "");
  }
  EXPECT_EQ(pattern->rangeThere()->first, 7U);
  EXPECT_EQ(pattern->rangeThere()->last, 100U);
}

TEST_F(Files, ThatAreThereAreReplacedOnlyByForce) {
  writeText(folder_ / "old.mkv", "old");
  EXPECT_EQ(complaintAbout("new.mkv", false), "");
  EXPECT_THAT(complaintAbout("old.mkv", false), HasSubstr("is there already"));
  EXPECT_EQ(complaintAbout("old.mkv", true), "");
}

TEST_F(Files, ThatAreReadAreNeverReplacedByWhateverName) {
  writeText(folder_ / "own.mkv", "own");
  makeSymlink(folder_ / "own.mkv", folder_ / "link.mkv");
  fs::create_hard_link(folder_ / "own.mkv", folder_ / "twin.mkv");
  fs::create_directory(folder_ / "sub");
  const FileIds input({folder_ / "own.mkv", folder_ / "missing.mkv"});
  for (const char* name : {"own.mkv", "link.mkv", "twin.mkv", "sub/../own.mkv"}) {
    for (const bool force : {false, true}) {
      EXPECT_THAT(complaintAbout(name, force, input), HasSubstr("is what is read")) << name;
    }
  }
}

TEST_F(Files, ThatAreNoneAreNotReplaced) {
  fs::create_directory(folder_ / "folder.mkv");
  EXPECT_THAT(complaintAbout("folder.mkv", true), HasSubstr("is no file"));
  if (!makeSymlink(folder_ / "nowhere", folder_ / "dangling.mkv")) return;
  EXPECT_THAT(complaintAbout("dangling.mkv", false), HasSubstr("is there already"));
}

TEST_F(Files, GetTheirNamesWhenTheyAreWhole) {
  const Destination destination{folder_ / "new.mkv", false, {}};
  NewFile file(destination.name, destination);
  EXPECT_FALSE(fs::exists(destination.name));
  writeText(file.path(), "whole");
  file.commit();
  EXPECT_EQ(readText(destination.name), "whole");
  EXPECT_THAT(entriesBelow(folder_.path()), ElementsAre("new.mkv"));
}

TEST_F(Files, ThatAreNotCommittedLeaveEverythingAsItWas) {
  writeText(folder_ / "old.mkv", "old");
  const Destination destination{folder_ / "old.mkv", true, {}};
  { const NewFile file(destination.name, destination); }
  EXPECT_EQ(readText(destination.name), "old");
  EXPECT_THAT(entriesBelow(folder_.path()), ElementsAre("old.mkv"));
}

TEST_F(Files, DoNotReplaceWhatHasComeMeanwhile) {
  const Destination destination{folder_ / "new.mkv", false, {}};
  {
    NewFile file(destination.name, destination);
    writeText(destination.name, "somebody else's");
    EXPECT_THROW(file.commit(), ToolError);
  }
  EXPECT_EQ(readText(destination.name), "somebody else's");
  EXPECT_THAT(entriesBelow(folder_.path()), ElementsAre("new.mkv"));
}

#ifdef _WIN32
const auto kMoves = {moveWhereFree};
#else
/// Both ways: no file system of a test machine needs the second one.
const auto kMoves = {moveWhereFree, linkWhereFree};
#endif

TEST_F(Files, MoveOnlyWhereTheNameIsFree) {
  for (const auto move : kMoves) {
    writeText(folder_ / "from", "new");
    writeText(folder_ / "to", "old");
    EXPECT_EQ(move(folder_ / "from", folder_ / "to"), std::errc::file_exists);
    EXPECT_EQ(readText(folder_ / "to"), "old");
    EXPECT_EQ(readText(folder_ / "from"), "new");
    fs::remove(folder_ / "to");
    EXPECT_FALSE(move(folder_ / "from", folder_ / "to"));
    EXPECT_EQ(readText(folder_ / "to"), "new");
    EXPECT_THAT(entriesBelow(folder_.path()), ElementsAre("to"));
    EXPECT_EQ(move(folder_ / "missing", folder_ / "other"), std::errc::no_such_file_or_directory);
  }
}

TEST_F(Files, AreWrittenWhole) {
  const Destination destination{folder_ / "new.txt", false, {}};
  NewFile file(destination.name, destination);
  file.write("some text", 9);
  EXPECT_FALSE(fs::exists(destination.name));
  file.commit();
  EXPECT_EQ(readText(destination.name), "some text");
}

#ifndef _WIN32  // which has no disk that is always full
TEST_F(Files, TellWhyTheyAreNotWritten) {
  const Destination destination{folder_ / "new.txt", false, {}};
  NewFile file(destination.name, destination);
  fs::remove(file.path());
  fs::create_symlink("/dev/full", file.path());
  for (const std::size_t size : {std::size_t{5}, std::size_t{1} << 20U}) {  // at the close, before
    try {
      file.write(std::string(size, 'x').data(), size);
      FAIL() << size << " bytes were written";
    } catch (const ToolError& error) {
      EXPECT_THAT(error.what(), HasSubstr("new.txt: No space left on device"));
      EXPECT_EQ(error.advice(), "Free some space.");
    }
  }
}
#endif

TEST(CannotWriteFile, AdvisesByTheReason) {
  EXPECT_EQ(cannotWriteFile("x", ENOTDIR).advice(), "Make the folder first.");
  EXPECT_EQ(cannotWriteFile("x", EROFS).advice(), "Choose a folder that you may write to.");
#ifdef EDQUOT
  EXPECT_EQ(cannotWriteFile("x", EDQUOT).advice(), "Free some space.");
#endif
  EXPECT_THAT(cannotWriteFile("x", EFBIG).advice(), HasSubstr("ulimit -f"));
  EXPECT_THAT(cannotWriteFile("a\nb", EIO).what(), HasSubstr("cannot write a\\x0ab: "));
}

TEST_F(Files, NeedTheirFolder) {
  const Destination destination{folder_ / "missing/new.mkv", false, {}};
  try {
    const NewFile file(destination.name, destination);
    FAIL() << "was made";
  } catch (const ToolError& error) {
    EXPECT_EQ(error.outcome(), Outcome::kWriteFailed);
    EXPECT_THAT(error.what(), HasSubstr("missing/new.mkv: "));
    EXPECT_EQ(error.advice(), "Make the folder first.");
  }
}

}  // namespace
