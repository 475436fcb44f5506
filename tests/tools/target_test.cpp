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
  for (const char* name : {"clip.kpf", "clip.kpf.incomplete.txt", "clip/clip_0001.div",
                           "clip/clip_0002.div", "clip/notes.txt", "clip.txt"}) {
    make(name);
  }
  clearTarget(header_, true);
  EXPECT_EQ(TEST_SUPPORT::entriesBelow(folder_.path()),
            (std::vector<std::string>{"clip", "clip.txt", "clip/notes.txt"}));
}

TEST_F(Target, NeedsRoom) {
  EXPECT_EQ(outcomeOf([&] { checkRoom(header_, 1); }), Outcome::kDone);
  EXPECT_EQ(outcomeOf([&] { checkRoom(header_, std::numeric_limits<std::uint64_t>::max()); }),
            Outcome::kRefused);
}

TEST_F(Target, NeedsItsFolder) {
  EXPECT_EQ(outcomeOf([&] { checkRoom(folder_ / "missing/clip.kpf", 1); }), Outcome::kRefused);
}

}  // namespace
