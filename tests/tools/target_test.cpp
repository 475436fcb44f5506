#include "tools/kpf/recording/target.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <string>
#include <vector>

#include "tests/support/files.h"
#include "tools/kpf/terminal/tool_error.h"

namespace {

using namespace KPF_TOOL;
namespace fs = std::filesystem;

/// The outcome of the ToolError that `action` throws; kDone when it throws none.
template <class Action>
Outcome outcomeOf(const Action& action) {
  try {
    action();
  } catch (const ToolError& error) {
    EXPECT_FALSE(error.advice().empty());
    return error.outcome();
  }
  return Outcome::kDone;
}

TEST(HeaderPath, WithoutAFolderLiesInTheCurrentOne) {
  EXPECT_EQ(headerPath("clip.kpf"), "./clip.kpf");
  EXPECT_EQ(headerPath("./clip.kpf"), "./clip.kpf");
  EXPECT_EQ(headerPath("/data/clip.kpf"), "/data/clip.kpf");
  EXPECT_EQ(headerPath("../clip.x"), "../clip.x");
}

TEST(HeaderPath, NeedsNameAndExtension) {
  for (const char* name : {"clip", "", ".kpf", "clip.", "folder/", "folder.d/clip"}) {
    EXPECT_EQ(outcomeOf([&] { headerPath(name); }), Outcome::kWrongUsage) << name;
  }
}

class Target : public testing::Test {
 protected:
  void make(const std::string& name) {
    fs::create_directories(fs::path(folder_ / name).parent_path());
    TEST_SUPPORT::writeText(folder_ / name, "text");
  }

  /// As much of a header file as tells a recording.
  static std::string recording() { return "v3.0" + std::string(2994, '\0'); }

  TEST_SUPPORT::TemporaryFolder folder_;
  const std::string header_ = folder_ / "clip.kpf";
};

TEST_F(Target, IsFreeAtFirst) {
  EXPECT_TRUE(filesOf(header_).empty());
  EXPECT_EQ(outcomeOf([&] { clearTarget(header_, false); }), Outcome::kDone);
}

TEST_F(Target, HeaderStatusAndDataFilesBelongToARecording) {
  const std::vector<std::string> names = {"clip.kpf", "clip.kpf.incomplete.txt",
                                          "clip/clip_0001.div", "clip/clip_12345.div"};
  std::vector<std::string> expected;
  for (const auto& name : names) {
    make(name);
    expected.push_back(folder_ / name);
  }
  auto found = filesOf(header_);
  std::sort(found.begin(), found.end());
  EXPECT_EQ(found, expected);
}

TEST_F(Target, OtherFilesBelongToSomebodyElse) {
  for (const char* name : {"clip.txt", "clip.incomplete.txt", "clip/notes.txt", "clip/clip_001.div",
                           "clip/clip_0001.div.bak", "clip/other_0001.div", "clip/clip_000a.div",
                           "clip2/clip2_0001.div", "clip/sub/clip_0001.div"}) {
    make(name);
  }
  EXPECT_EQ(filesOf(header_), std::vector<std::string>{});
}

TEST_F(Target, ThatIsTakenIsKeptUnlessForced) {
  make("clip/clip_0001.div");
  EXPECT_EQ(outcomeOf([&] { clearTarget(header_, false); }), Outcome::kRefused);
  EXPECT_TRUE(fs::exists(folder_ / "clip/clip_0001.div"));
}

TEST_F(Target, ForcedLosesTheRecordingAndNothingElse) {
  TEST_SUPPORT::writeText(header_, recording());
  for (const char* name : {"clip.kpf.incomplete.txt", "clip/clip_0001.div", "clip/clip_0002.div",
                           "clip/notes.txt", "clip.txt"}) {
    make(name);
  }
  clearTarget(header_, true);
  EXPECT_EQ(TEST_SUPPORT::entriesBelow(folder_.path()),
            (std::vector<std::string>{"clip", "clip.txt", "clip/notes.txt"}));
}

TEST_F(Target, ThatIsNoRecordingIsKeptEvenIfForced) {
  std::string other = recording();
  other[1] = '4';
  for (const std::string& text : {std::string("text"), recording() + "x", other, std::string()}) {
    TEST_SUPPORT::writeText(header_, text);
    EXPECT_EQ(outcomeOf([&] { clearTarget(header_, true); }), Outcome::kRefused);
    EXPECT_EQ(TEST_SUPPORT::readText(header_), text);
  }
}

TEST_F(Target, DataWithoutAHeaderAreKeptEvenIfForced) {
  // Of a recording whose header was renamed: it has them still to find.
  TEST_SUPPORT::writeText(folder_ / "renamed.kpf", recording());
  make("clip/clip_0001.div");
  EXPECT_EQ(outcomeOf([&] { clearTarget(header_, true); }), Outcome::kRefused);
  EXPECT_TRUE(fs::exists(folder_ / "clip/clip_0001.div"));
}

TEST_F(Target, ThatIsReadIsKeptEvenIfForced) {
  TEST_SUPPORT::writeText(header_, recording());
  make("clip/clip_0001.div");
  fs::create_hard_link(folder_ / "clip/clip_0001.div", folder_ / "input.raw");
  const FileIds input({folder_ / "input.raw"});
  EXPECT_EQ(outcomeOf([&] { clearTarget(header_, true, input); }), Outcome::kRefused);
  EXPECT_TRUE(fs::exists(header_));
  EXPECT_TRUE(fs::exists(folder_ / "clip/clip_0001.div"));
}

TEST_F(Target, ThatIsCheckedIsNotRemoved) {
  TEST_SUPPORT::writeText(header_, recording());
  EXPECT_EQ(outcomeOf([&] { checkTarget(header_, true); }), Outcome::kDone);
  EXPECT_TRUE(fs::exists(header_));
}

#ifndef _WIN32  // no holes in files, and folders that are missing have room
TEST_F(Target, MayHaveTheRoomOfTheOlderRecording) {
  make("clip/clip_0001.div");
  const std::string file = folder_ / "clip/clip_0001.div";
  // A hole: it has a size, and takes no room.
  const std::uint64_t free = fs::space(folder_.path()).available;
  fs::resize_file(file, free);
  EXPECT_EQ(outcomeOf([&] { checkRoom(header_, free + free / 2); }), Outcome::kDone);
  fs::remove(file);
  EXPECT_EQ(outcomeOf([&] { checkRoom(header_, free + free / 2); }), Outcome::kRefused);
}

TEST_F(Target, NeedsItsFolder) {
  EXPECT_EQ(outcomeOf([&] { checkRoom(folder_ / "missing/clip.kpf", 1); }), Outcome::kRefused);
}
#endif

TEST_F(Target, NeedsRoom) {
  EXPECT_EQ(outcomeOf([&] { checkRoom(header_, 1); }), Outcome::kDone);
  EXPECT_EQ(outcomeOf([&] { checkRoom(header_, std::numeric_limits<std::uint64_t>::max()); }),
            Outcome::kRefused);
}

TEST_F(Target, AnObstacleIsNamedAsFarAsTheDiskShowsIt) {
  EXPECT_EQ(obstacleTo(header_, true, 1), "its files were moved or removed meanwhile");
  make("clip/clip_0001.div");
  EXPECT_EQ(obstacleTo(header_, false, 1), "its files were moved or removed meanwhile");
  EXPECT_EQ(obstacleTo(header_, true, std::numeric_limits<std::uint64_t>::max()),
            "the disk is full");
  EXPECT_EQ(obstacleTo(header_, true, 0),
            "the system did not take the others, see the lines above");
}

}  // namespace
