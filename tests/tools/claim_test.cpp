#include "tools/kpf/recording/claim.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/support/files.h"
#include "tools/kpf/terminal/tool_error.h"

namespace {

using KPF_TOOL::Claim;
using KPF_TOOL::ToolError;
namespace fs = std::filesystem;

class ClaimTest : public testing::Test {
 protected:
  TEST_SUPPORT::TemporaryFolder folder_;
  const std::string header_ = folder_ / "clip.kpf";
  const fs::path data_ = folder_ / "clip";
};

TEST_F(ClaimTest, IsOnesOwnUntilItEnds) {
  {
    const Claim first(header_);
    EXPECT_NO_THROW(first.demand());
    const Claim second(header_);
    EXPECT_THROW(second.demand(), ToolError);
    EXPECT_FALSE(Claim(folder_ / "other.kpf").isOthers());
  }
  EXPECT_FALSE(Claim(header_).isOthers());
}

TEST_F(ClaimTest, LeavesNoFolderBehindThatNothingCameInto) {
  {
    const Claim claim(header_);
    EXPECT_TRUE(fs::is_directory(data_));
    const Claim refused(header_);
  }
  EXPECT_FALSE(fs::exists(data_));
  {
    const Claim claim(header_);
    TEST_SUPPORT::writeText(data_ / "clip_0001.div", "record");
  }
  EXPECT_TRUE(fs::exists(data_ / "clip_0001.div"));
}

TEST_F(ClaimTest, KeepsAFolderThatWasThere) {
  fs::create_directory(data_);
  { const Claim claim(header_); }
  EXPECT_TRUE(fs::exists(data_));
}

TEST_F(ClaimTest, WithoutAFolderNobodyElseHasIt) {
  const std::string nowhere = folder_ / "missing/clip.kpf";
  EXPECT_FALSE(Claim(nowhere).isOthers());
  TEST_SUPPORT::writeText(data_, "a file");
  EXPECT_FALSE(Claim(header_).isOthers());
  EXPECT_TRUE(fs::is_regular_file(data_));
}

}  // namespace
